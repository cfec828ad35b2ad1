#pragma once

#include "model/Database.h"
#include "model/SqlDateTime.h"
#include "sim/Seeder.h"
#include "sim/StoreCounters.h"

#include <QCryptographicHash>
#include <QTest>

namespace sx::test {

// The end of every seeded history in the tests: fixed, so runs compare.
inline qint64 seedEnd()
{
    return secsFromCivil({2024, 3, 10, 12, 0, 0});
}

inline sim::SeedOptions smallSeed(int days = 2, quint64 seed = 1)
{
    return {.units = 12, .days = days, .seed = seed, .endSecs = seedEnd()};
}

inline QStringList column(Database& db, const QString& sql)
{
    QStringList out;
    Rows rows = db.read(sql);
    while (rows.next())
        out << rows.text(0).value_or(QStringLiteral("<null>"));
    if (!rows.ok())
        qWarning("query failed: %s: %s", qPrintable(sql), qPrintable(rows.error().description));
    return out;
}

// The first column of the first row, as a whole number (-1 when there is none).
inline qint64 scalar(Database& db, const QString& sql)
{
    bool ok = false;
    const qint64 v = column(db, sql).value(0).toLongLong(&ok);
    return ok ? v : -1;
}

// A hash over every field of every row, NULL told apart from empty text.
inline QByteArray digest(Database& db, const QString& sql)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    Rows rows = db.read(sql);
    while (rows.next()) {
        for (int c = 0; c < rows.columnCount(); ++c) {
            const auto t = rows.text(c);
            hash.addData(t ? t->toUtf8() : QByteArrayLiteral("\x01NULL"));
            hash.addData(QByteArrayLiteral("\x1f"));
        }
    }
    return rows.ok() ? hash.result().toHex() : QByteArray("query failed");
}

// Counts the powered points whose out-of-bounds flag disagrees with the reading and the limits
// in force (unpowered ones only when a reading is out yet not flagged).
inline QString boundsDisagree()
{
    const QString out = QStringLiteral(
        "(SeI_Sensortype=2 AND SeCC_Currvalue>0 OR SeI_Sensortype<>2 AND (SeI_Maxlimitused=1 AND "
        "SeCC_Currvalue>SeI_Maxlimit+(%1) OR SeI_Minlimitused=1 AND "
        "SeCC_Currvalue<SeI_Minlimit-(%1)))");
    return QStringLiteral(
               "SELECT COUNT(*) FROM Sensors_Info JOIN Sensors_Current_Condition ON "
               "SeCC_SyI_Serialnumber=SeI_SyI_Serialnumber AND "
               "SeCC_Sensornumber=SeI_Sensornumber WHERE COALESCE(SeCC_Outofbounds, 0)<>1 "
               "AND %1 OR SeCC_Outofbounds=1 AND SeCC_Notpowered=0 AND NOT %2")
        .arg(out.arg(u"0.001"), out.arg(u"-0.001"));
}

// Counts the record (or event) stores whose counters disagree with their rows.
inline QString storesDisagree(bool events)
{
    const qint64 bytes = events ? sim::kEventEntryBytes : sim::kRecordEntryBytes;
    return QStringLiteral(
               "SELECT COUNT(*) FROM (SELECT %1 b, %2 p, (SELECT COUNT(*) FROM %3) * %4 n "
               "FROM %5) t WHERE b <> n % %6 OR p <> n / %6")
        .arg(events ? u"SyI_EventsTable_Pagebyteswritt" : u"SeI_RecordsTable_Pagebyteswrit",
             events ? u"SyI_EventsTable_Lastpagesn" : u"SeI_RecordsTable_Lastpagesn",
             events ? u"Events_1 WHERE Event_SyI_Serialnumber=SyI_Serialnumber"
                    : u"Records WHERE Rec_SyI_Serialnumber=SeI_SyI_Serialnumber AND "
                      "Rec_SeI_Sensornumber=SeI_Sensornumber",
             QString::number(bytes), events ? u"Systems_Info" : u"Sensors_Info",
             QString::number(sim::kStorePageBytes));
}

} // namespace sx::test
