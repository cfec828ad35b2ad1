#pragma once

#include "model/Database.h"
#include "model/Dialect.h"

#include <QString>
#include <QtTest>

// Rows of the current-condition tables written with plain SQL. Values are SQL
// literal texts ("NULL", "1", "2.5") so that a test can leave any column NULL.
namespace sx::test {

using namespace Qt::StringLiterals;

class CurrentSeed {
public:
    explicit CurrentSeed(Database& db) : m_db(db) {}

    bool unit(const QString& serial, const QString& name, const QString& online = u"1"_s,
              const QString& softver = u"'1.22'"_s, const QString& location = u"'7'"_s)
    {
        return run(
            u"INSERT INTO Systems_Info (SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, SyI_Used, SyI_Online, SyI_Softver, SyI_Model) VALUES (%1, %2, %3, 1, %4, %5, 'SENTORAX-1C')"_s
                .arg(sqlQuote(serial), location, sqlQuote(name), online, softver));
    }

    bool point(const QString& serial, int number, const QString& name, const QString& type = u"0"_s,
               const QString& used = u"1"_s, const QString& maxLimit = u"50"_s,
               const QString& minLimit = u"10"_s, const QString& maxUsed = u"0"_s,
               const QString& minUsed = u"0"_s)
    {
        return run(
            u"INSERT INTO Sensors_Info (SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensorname, SeI_Sensortype, SeI_Used, SeI_Maxlimit, SeI_Minlimit, SeI_Maxlimitused, SeI_Minlimitused, SeI_RecordsTable_Pagebyteswrit, SeI_RecordsTable_Lastpagesn) VALUES (%1, %2, %3, %4, %5, %6, %7, %8, %9, 0, 0)"_s
                .arg(sqlQuote(serial), QString::number(number), name, type, used, maxLimit,
                     minLimit, maxUsed, minUsed));
    }

    bool pointCondition(const QString& serial, int number, const QString& value,
                        const QString& outOfBounds = u"0"_s, const QString& alarm = u"0"_s,
                        const QString& notPowered = u"0"_s)
    {
        return run(
            u"INSERT INTO Sensors_Current_Condition (SeCC_SyI_Serialnumber, SeCC_Sensornumber, SeCC_Currvalue, SeCC_Outofbounds, SeCC_Alarmcondition, SeCC_Notpowered) VALUES (%1, %2, %3, %4, %5, %6)"_s
                .arg(sqlQuote(serial), QString::number(number), value, outOfBounds, alarm,
                     notPowered));
    }

    bool power(const QString& serial, int number, const QString& name, const QString& used = u"1"_s)
    {
        return run(
            u"INSERT INTO Powermonitoring_Info (PmI_SyI_Serialnumber, PmI_Powernumber, PmI_Powername, PmI_Used) VALUES (%1, %2, %3, %4)"_s
                .arg(sqlQuote(serial), QString::number(number), name, used));
    }

    bool powerCondition(const QString& serial, int number, const QString& fault,
                        const QString& condition)
    {
        return run(
            u"INSERT INTO Powermonitoring_Current_Condit (PmCC_SyI_Serialnumber, PmCC_Powernumber, PmCC_Powerfault, PmCC_Powercondition) VALUES (%1, %2, %3, %4)"_s
                .arg(sqlQuote(serial), QString::number(number), fault, condition));
    }

    bool condition(const QString& serial, const QString& alarm = u"0"_s,
                   const QString& relay = u"0"_s, const QString& rtc = u"NULL"_s)
    {
        return run(
            u"INSERT INTO Systems_Current_Condition (SyCC_SyI_Serialnumber, SyCC_Alarmcondition, SyCC_RelayBcondition, SyCC_Rtc) VALUES (%1, %2, %3, %4)"_s
                .arg(sqlQuote(serial), alarm, relay, rtc));
    }

    bool fault(const QString& serial, int type, const QString& info)
    {
        return run(
            u"INSERT INTO Systems_Faults (SyF_SyI_Serialnumber, SyF_Faulttype, SyF_Faultinfo) VALUES (%1, %2, %3)"_s
                .arg(sqlQuote(serial), QString::number(type), sqlQuote(info)));
    }

    bool newPointMessage(const QString& serial)
    {
        return run(
            u"INSERT INTO Sensors_Events (SeE_SyI_Serialnumber, SeE_Sensornumber, SeE_Eventnumber, SeE_Eventtype, SeE_Recordedvalue, SeE_BeforeCounter, SeE_Recipients) VALUES (%1, 1, 1, 1, 5, 60, 3)"_s
                .arg(sqlQuote(serial)));
    }

    bool run(const QString& sql)
    {
        const DbError e = m_db.exec(sql);
        if (e.isError())
            qWarning("%s\n  in: %s", qPrintable(e.description), qPrintable(sql));
        return !e.isError();
    }

private:
    Database& m_db;
};

} // namespace sx::test
