#include "model/QueryHelpers.h"

#include "model/Dialect.h"

using namespace Qt::StringLiterals;

namespace sx {

QString hasFaultsSql(const QString& serial)
{
    if (serial.isEmpty())
        return u"SELECT SyF_SyI_Serialnumber FROM Systems_Faults"_s;
    return u"SELECT SyF_SyI_Serialnumber FROM Systems_Faults WHERE SyF_SyI_Serialnumber="_s +
           sqlQuote(serial);
}

QStringList hasMessagesSql(MessageKind kind, const QString& serial)
{
    const QString cond = kind == MessageKind::New ? u"<>0"_s : u"=0"_s;
    if (serial.isEmpty())
        return {u"SELECT PmE_Recipients FROM Powermonitoring_Events WHERE PmE_Recipients"_s + cond,
                u"SELECT SeE_Recipients FROM Sensors_Events WHERE SeE_Recipients"_s + cond};
    const QString quoted = sqlQuote(serial);
    return {u"SELECT PmE_SyI_Serialnumber, PmE_Recipients FROM Powermonitoring_Events WHERE PmE_SyI_Serialnumber="_s +
                quoted + u" AND PmE_Recipients"_s + cond,
            u"SELECT SeE_SyI_Serialnumber, SeE_Recipients FROM Sensors_Events WHERE SeE_SyI_Serialnumber="_s +
                quoted + u" AND SeE_Recipients"_s + cond};
}

bool hasFaults(Database& db, const QString& serial, DbError* error)
{
    return db.exists(hasFaultsSql(serial), error);
}

bool hasMessages(Database& db, MessageKind kind, const QString& serial, DbError* error)
{
    DbError failure;
    for (const QString& sql : hasMessagesSql(kind, serial)) {
        if (db.exists(sql, &failure)) {
            if (error)
                *error = {};
            return true;
        }
        if (failure.isError()) {
            if (error)
                *error = failure;
            return false;
        }
    }
    if (kind == MessageKind::New)
        return hasFaults(db, serial, error);
    if (error)
        *error = {};
    return false;
}

} // namespace sx
