#pragma once

#include "../events/EventsSeed.h"
#include "sim/BulkInsert.h"

#include <functional>

// Zones and records written with plain SQL for the records view's tests; units
// as the events view's tests write them.
namespace sx::test {

// Seconds of a wall-clock time "YYYY-MM-DD HH:MM:SS".
inline qint64 at(const QString& when)
{
    return *parseSqlDateTime(QStringView(when));
}

struct ZoneRow {
    int number = 1;
    QString name; // SQL literal: "'Ψυγείο'", "''", "NULL"
    int type = 0;
    double maxLimit = 30;
    double minLimit = 10;
    int maxUsed = 1;
    int minUsed = 1;
    int pageBytes = 64;
    int lastPage = 0;
};

class RecordsSeed : public EventsSeed {
public:
    explicit RecordsSeed(Database& db) : EventsSeed(db), m_db(db) {}

    bool zone(const QString& serial, const ZoneRow& z)
    {
        return run(
            u"INSERT INTO Sensors_Info (SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensorname, SeI_Sensortype, SeI_Used, SeI_Maxlimit, SeI_Minlimit, SeI_Maxlimitused, SeI_Minlimitused, SeI_RecordsTable_Pagebyteswrit, SeI_RecordsTable_Lastpagesn) VALUES (%1, %2, %3, %4, 1, %5, %6, %7, %8, %9, %10)"_s
                .arg(sqlQuote(serial), QString::number(z.number), z.name, QString::number(z.type),
                     QString::number(z.maxLimit), QString::number(z.minLimit),
                     QString::number(z.maxUsed), QString::number(z.minUsed),
                     QString::number(z.pageBytes))
                .arg(z.lastPage));
    }

    // One record; `when` as "YYYY-MM-DD HH:MM:SS".
    bool record(const QString& serial, int point, const QString& when, double value, int type,
                qint64 sn)
    {
        return series(
            serial, point, at(when), 0, 1, [value](int) { return value; }, type, sn);
    }

    // `count` records `stepSecs` apart from `fromSecs`; value and type by index.
    bool series(const QString& serial, int point, qint64 fromSecs, qint64 stepSecs, int count,
                const std::function<double(int)>& value, int type = 0, qint64 firstSn = 1)
    {
        sim::BulkInsert rows(m_db, u"Records",
                             {u"Rec_SyI_Serialnumber"_s, u"Rec_SeI_Sensornumber"_s,
                              u"Rec_Datetime"_s, u"Rec_Value"_s, u"Rec_Sensortype"_s,
                              u"Rec_SensRecSN"_s});
        DbError e;
        for (int i = 0; i < count && !e.isError(); ++i)
            e = rows.add({serial, qint64(point), SqlDateTimeValue{fromSecs + i * stepSecs},
                          value(i), qint64(type), firstSn + i});
        return ok(e.isError() ? e : rows.finish());
    }

private:
    Database& m_db;
};

} // namespace sx::test
