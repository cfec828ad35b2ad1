#pragma once

#include "model/Database.h"
#include "model/Dialect.h"

#include <QString>
#include <QtTest>

namespace sx::test {

using namespace Qt::StringLiterals;

// Writes rows from a short script, statements separated by ";": a table letter,
// the unit serial, then SQL literals (NULL, 7, 'Ζώνη') separated by ",":
//   U serial,location,name,used          Z serial,zone,name,type
//   I serial,input,name                  F serial,type,info
//   E serial,zone,number,type,value,date-time,age,recipients
//   P serial,number,condition,date-time,age,recipients
inline bool seedMessages(Database& db, const QString& script)
{
    static const QHash<QChar, QString> kInsert = {
        {u'U', u"Systems_Info (SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, SyI_Used)"_s},
        {u'Z',
         u"Sensors_Info (SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensorname, SeI_Sensortype)"_s},
        {u'I', u"Powermonitoring_Info (PmI_SyI_Serialnumber, PmI_Powernumber, PmI_Powername)"_s},
        {u'F', u"Systems_Faults (SyF_SyI_Serialnumber, SyF_Faulttype, SyF_Faultinfo)"_s},
        {u'E',
         u"Sensors_Events (SeE_SyI_Serialnumber, SeE_Sensornumber, SeE_Eventnumber, SeE_Eventtype, SeE_Recordedvalue, SeE_Recordeddatetime, SeE_BeforeCounter, SeE_Recipients)"_s},
        {u'P',
         u"Powermonitoring_Events (PmE_SyI_Serialnumber, PmE_Eventnumber, PmE_Eventpowercondition, PmE_Recordeddatetime, PmE_BeforeCounter, PmE_Recipients)"_s},
    };
    for (const QString& raw : script.split(u';', Qt::SkipEmptyParts)) {
        const QString statement = raw.trimmed();
        const qsizetype comma = statement.indexOf(u',');
        const QString serial = statement.mid(2, comma - 2);
        const QString sql = u"INSERT INTO "_s + kInsert.value(statement.at(0)) + u" VALUES ("_s +
                            sqlQuote(serial) + statement.mid(comma) + u')';
        if (const DbError e = db.exec(sql); e.isError()) {
            qWarning("%s\n  in: %s", qPrintable(e.description), qPrintable(sql));
            return false;
        }
    }
    return true;
}

} // namespace sx::test
