#include "sim/ScaleSeeder.h"

#include "model/NativeCursors.h"
#include "model/Schema.h"
#include "model/SqlDateTime.h"
#include "sim/BulkInsert.h"
#include "sim/DemoFleet.h"
#include "sim/SimSchema.h"
#include "sim/StoreCounters.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cmath>
#include <optional>
#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace sx::sim {

namespace {

constexpr qint64 kChunkRows = 250000;
constexpr double kDayAngle = 2.0 * 3.14159265358979 / 1440.0;
// Messages: four in five are zones', the rest power inputs'; one unit in four
// has a few not yet delivered.
constexpr int kNewPointMessages = 3;
constexpr int kNewPowerMessages = 2;

struct Series {
    QString serial;
    int point = 0;
    int type = 0;
    double center = 0;
    double half = 1;
    int ord = 0;
    int phase = 0;
};

QString num(qint64 v)
{
    return QString::number(v);
}

QString quoted(const QString& text)
{
    return u'\'' + QString(text).replace(u'\'', u"''"_s) + u'\'';
}

QString thousands(qint64 v)
{
    QString s = QString::number(v);
    for (qsizetype i = s.size() - 3; i > 0; i -= 3)
        s.insert(i, u',');
    return s;
}

DbError failure(const QString& text)
{
    DbError e;
    e.number = kProviderErrorNumber;
    e.description = text;
    return e;
}

// The reading of a zone `t` minutes into the year: a daily swing and a slower
// drift that now and then carry it past a limit. The server's formula below
// is the same.
double reading(const Series& s, qint64 t)
{
    const double x = static_cast<double>(t);
    if (s.type == kContactSensorType)
        return std::sin(x / 97.0 + s.ord) > 0.9 ? 1.0 : 0.0;
    const double v = s.center + s.half * (0.8 * std::sin(x * kDayAngle + s.ord) +
                                          0.4 * std::sin(x / 131.0 + s.ord));
    return std::round(v * 100.0) / 100.0;
}

const QString kReadingSql =
    u"CASE WHEN type=%1 THEN CASE WHEN sin(t/97.0+ord)>0.9 THEN 1 ELSE 0 END "
    "ELSE round((center+half*(0.8*sin(t*%2+ord)+0.4*sin(t/131.0+ord)))::numeric, 2) END"_s
        .arg(kContactSensorType)
        .arg(kDayAngle, 0, 'g', 17);

// A run of whole numbers 0..count-1 named g(n), and the date-time of a number of seconds.
QString seriesPrefix(DbKind kind, qint64 count)
{
    if (kind == DbKind::PostgreSQL)
        return {};
    return u"WITH RECURSIVE g(n) AS (SELECT 0 UNION ALL SELECT n+1 FROM g WHERE n+1<"_s +
           num(count) + u") "_s;
}

QString seriesFrom(DbKind kind, qint64 count)
{
    if (kind == DbKind::PostgreSQL)
        return u"generate_series(0, "_s + num(count - 1) + u") AS g(n)"_s;
    return u"g"_s;
}

QString dateOfSecs(DbKind kind, const QString& secs)
{
    if (kind == DbKind::PostgreSQL)
        return u"(TIMESTAMP '1970-01-01 00:00:00' + ("_s + secs + u") * INTERVAL '1 second')"_s;
    return u"datetime("_s + secs + u", 'unixepoch')"_s;
}

// Zones in use with a record store, of units in use: the ones the records view lists.
const QString kLoggedZones =
    u"SeI_Used=1 AND (SeI_RecordsTable_Pagebyteswrit>0 OR SeI_RecordsTable_Lastpagesn>0) AND "
    "SeI_SyI_Serialnumber IN (SELECT SyI_Serialnumber FROM Systems_Info WHERE SyI_Used=1)"_s;

class ScaleSeeder {
public:
    ScaleSeeder(Database& db, const ScaleOptions& o) : m_db(db), m_o(o) {}

    ScaleReport run()
    {
        if (m_o.records > 0)
            m_r.error = seedRecords();
        if (!m_r.error.isError() && m_o.messages > 0)
            m_r.error = seedMessages();
        if (!m_r.error.isError()) {
            QElapsedTimer t;
            t.start();
            say(u"indexes: making the console's indexes"_s);
            m_r.error = createConsoleIndexes(m_db);
            if (!m_r.error.isError())
                // VACUUM also marks the pages all-visible, so counts read the index alone.
                m_r.error = m_db.exec(pg() ? u"VACUUM ANALYZE"_s : u"ANALYZE"_s);
            m_r.indexSecs = t.nsecsElapsed() / 1e9;
            say(u"indexes: ready in %1 s"_s.arg(m_r.indexSecs, 0, 'f', 1));
        }
        return m_r;
    }

private:
    bool pg() const { return m_db.kind() == DbKind::PostgreSQL; }

    void say(const QString& text) const
    {
        if (m_o.progress)
            m_o.progress(text);
    }

    qint64 startSecs() const { return m_o.endSecs - (kYearMinutes - 1) * 60; }

    DbError exec(const QString& sql) { return m_db.exec(sql); }

    DbError readSeries()
    {
        Rows r = m_db.read(
            u"SELECT SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensortype FROM Sensors_Info WHERE "_s +
            kLoggedZones + u" ORDER BY SeI_SyI_Serialnumber, SeI_Sensornumber"_s);
        while (r.next()) {
            Series s;
            s.serial = r.text(0).value_or(QString());
            s.point = static_cast<int>(r.integer(1).value_or(0));
            s.type = static_cast<int>(r.integer(2).value_or(0));
            const TypeProfile p = typeProfile(s.type);
            s.center = p.center;
            s.half = p.halfWidth;
            s.ord = static_cast<int>(m_series.size() + (m_year ? 1 : 0));
            if (s.serial == m_o.yearSerial && s.point == 1 && !m_year)
                m_year = s;
            else
                m_series.append(s);
        }
        if (!r.ok())
            return r.error();
        if (!m_year)
            return failure(u"unit "_s + m_o.yearSerial + u" has no zone 1 with records"_s);
        return {};
    }

    DbError makeRecordsTable()
    {
        if (!pg() || !m_o.partitioned)
            return exec(u"DELETE FROM Records"_s);
        QString create;
        for (const QString& sql : schemaStatements(DbKind::PostgreSQL)) {
            if (sql.startsWith(u"CREATE TABLE IF NOT EXISTS Records ("_s))
                create = sql;
        }
        if (DbError e = exec(u"DROP TABLE IF EXISTS Records"_s); e.isError())
            return e;
        if (DbError e = exec(create + u" PARTITION BY RANGE (Rec_Datetime)"_s); e.isError())
            return e;
        // One partition a month, and one for whatever the live server adds later.
        CivilTime m = civilFromSecs(startSecs());
        const CivilTime last = civilFromSecs(m_o.endSecs);
        m = {m.year, m.month, 1, 0, 0, 0};
        int partitions = 0;
        while (m.year < last.year || (m.year == last.year && m.month <= last.month)) {
            const CivilTime next = m.month == 12 ? CivilTime{m.year + 1, 1, 1, 0, 0, 0}
                                                 : CivilTime{m.year, m.month + 1, 1, 0, 0, 0};
            const QString name = u"records_%1_%2"_s.arg(m.year).arg(m.month, 2, 10, QChar(u'0'));
            if (DbError e =
                    exec(u"CREATE TABLE "_s + name + u" PARTITION OF Records FOR VALUES FROM ('"_s +
                         sqlDateTimeText(secsFromCivil(m)) + u"') TO ('"_s +
                         sqlDateTimeText(secsFromCivil(next)) + u"')"_s);
                e.isError())
                return e;
            m = next;
            ++partitions;
        }
        say(u"records: partitioned by month, %1 partitions and a default one"_s.arg(partitions));
        return exec(u"CREATE TABLE records_later PARTITION OF Records DEFAULT"_s);
    }

    DbError seedRecords()
    {
        QElapsedTimer timer;
        timer.start();
        if (DbError e = readSeries(); e.isError())
            return e;
        m_r.series = m_series.size() + 1;
        const qint64 rest = std::max<qint64>(m_o.records - kYearMinutes, 1);
        const qint64 each = std::max<qint64>(1, rest / std::max<qint64>(1, m_series.size()));
        m_step = std::max<qint64>(1, kYearMinutes / each);
        m_steps = kYearMinutes / m_step;
        for (Series& s : m_series)
            s.phase = static_cast<int>((s.ord * 7919LL) % m_step);
        const qint64 total = kYearMinutes + m_steps * m_series.size();
        m_r.stepMinutes = m_step;
        say(u"records: %1 zones, one every %2 min over a year, and %3 %4 every minute: %5 rows"_s
                .arg(m_series.size())
                .arg(m_step)
                .arg(m_year->serial)
                .arg(m_year->point)
                .arg(thousands(total)));

        // The index is made again after the load: far faster than keeping it up row by row.
        if (DbError e = dropConsoleIndexes(m_db); e.isError())
            return e;
        if (DbError e = makeRecordsTable(); e.isError())
            return e;
        DbError e = pg() ? pgRecords(total, timer) : sqliteRecords(total, timer);
        if (!e.isError())
            e = updateStoreCounters();
        m_r.recordSecs = timer.nsecsElapsed() / 1e9;
        return e;
    }

    // The stores' counters follow their rows, as the demo's do.
    DbError updateStoreCounters()
    {
        const auto set = [](qint64 rows) {
            const StoreCounters c = storeCounters(rows, kRecordEntryBytes);
            return u"UPDATE Sensors_Info SET SeI_RecordsTable_Pagebyteswrit="_s + num(c.pageBytes) +
                   u", SeI_RecordsTable_Lastpagesn="_s + num(c.lastPage) + u" WHERE "_s;
        };
        if (DbError e = exec(set(m_steps) + kLoggedZones); e.isError())
            return e;
        return exec(set(kYearMinutes) + u"SeI_SyI_Serialnumber="_s + quoted(m_year->serial) +
                    u" AND SeI_Sensornumber="_s + num(m_year->point));
    }

    void progress(qint64 done, qint64 total, const QElapsedTimer& timer, qint64& lastSay) const
    {
        const qint64 ms = timer.elapsed();
        if (ms - lastSay < 5000 && done < total)
            return;
        lastSay = ms;
        say(u"records: %1 of %2 (%3%), %4 s"_s.arg(thousands(done), thousands(total))
                .arg(100.0 * double(done) / double(std::max<qint64>(1, total)), 0, 'f', 1)
                .arg(ms / 1000.0, 0, 'f', 0));
    }

    DbError fillSeriesTable(const QString& table, const QList<Series>& rows)
    {
        if (DbError e = exec(u"CREATE TEMP TABLE "_s + table +
                             u" (serial TEXT, point INTEGER, type INTEGER, center REAL, half REAL, "
                             "ord INTEGER, phase INTEGER)"_s);
            e.isError())
            return e;
        BulkInsert insert(
            m_db, table,
            {u"serial"_s, u"point"_s, u"type"_s, u"center"_s, u"half"_s, u"ord"_s, u"phase"_s});
        for (const Series& s : rows) {
            if (DbError e = insert.add({s.serial, qint64(s.point), qint64(s.type), s.center, s.half,
                                        qint64(s.ord), qint64(s.phase)});
                e.isError())
                return e;
        }
        return insert.finish();
    }

    // The server makes the rows: a chunk of steps per statement, in time order.
    DbError pgRecords(qint64 total, const QElapsedTimer& timer)
    {
        for (const QString& sql :
             {u"SET work_mem = '256MB'"_s, u"SET maintenance_work_mem = '1GB'"_s,
              u"DROP TABLE IF EXISTS sx_scale_series"_s, u"DROP TABLE IF EXISTS sx_scale_year"_s}) {
            if (DbError e = exec(sql); e.isError())
                return e;
        }
        if (DbError e = fillSeriesTable(u"sx_scale_series"_s, m_series); e.isError())
            return e;
        if (DbError e = fillSeriesTable(u"sx_scale_year"_s, {*m_year}); e.isError())
            return e;
        const QString start = quoted(sqlDateTimeText(startSecs()));
        const qint64 perStatement =
            std::max<qint64>(1, kChunkRows / std::max<qint64>(1, m_series.size()));
        qint64 done = 0;
        qint64 lastSay = 0;
        for (qint64 k0 = 0; k0 < m_steps; k0 += perStatement) {
            const qint64 k1 = std::min(m_steps, k0 + perStatement);
            const qint64 yearEnd = k1 == m_steps ? kYearMinutes : k1 * m_step;
            const QString sql =
                u"INSERT INTO Records (Rec_SyI_Serialnumber, Rec_SeI_Sensornumber, Rec_Datetime, "
                "Rec_Value, Rec_Sensortype, Rec_SensRecSN) SELECT serial, point, TIMESTAMP "_s +
                start + u" + t * INTERVAL '1 minute', "_s + kReadingSql +
                u", type, sn FROM (SELECT s.serial, s.point, s.type, s.center, s.half, s.ord, "
                "k*"_s +
                num(m_step) + u"+s.phase AS t, k+1 AS sn FROM generate_series("_s + num(k0) +
                u", "_s + num(k1 - 1) +
                u") AS k CROSS JOIN sx_scale_series s UNION ALL SELECT y.serial, y.point, "
                "y.type, y.center, y.half, y.ord, m AS t, m+1 AS sn FROM generate_series("_s +
                num(k0 * m_step) + u", "_s + num(yearEnd - 1) +
                u") AS m CROSS JOIN sx_scale_year y) r ORDER BY t, ord"_s;
            qint64 rows = 0;
            if (DbError e = m_db.exec(sql, &rows); e.isError())
                return e;
            done += rows;
            progress(done, total, timer, lastSay);
        }
        m_r.records = done;
        (void)exec(u"DROP TABLE sx_scale_series"_s);
        (void)exec(u"DROP TABLE sx_scale_year"_s);
        return {};
    }

    // One prepared statement, a transaction every few million rows.
    DbError sqliteRecords(qint64 total, const QElapsedTimer& timer)
    {
        sqlite3* h = detail::sqliteHandle(m_db.qtDatabase());
        if (!h)
            return failure(u"no SQLite handle"_s);
        static const char kSql[] =
            "INSERT INTO Records (Rec_SyI_Serialnumber, Rec_SeI_Sensornumber, Rec_Datetime, "
            "Rec_Value, Rec_Sensortype, Rec_SensRecSN) VALUES (?1, ?2, ?3, ?4, ?5, ?6)";
        sqlite3_stmt* stmt = nullptr;
        if (sqlite3_prepare_v2(h, kSql, -1, &stmt, nullptr) != SQLITE_OK)
            return failure(QString::fromUtf8(sqlite3_errmsg(h)));
        QList<QByteArray> serials;
        for (const Series& s : m_series)
            serials << s.serial.toUtf8();
        const QByteArray yearSerial = m_year->serial.toUtf8();
        const qint64 start = startSecs();
        qint64 done = 0;
        qint64 lastSay = 0;
        DbError e = exec(u"BEGIN"_s);
        const auto put = [&](const QByteArray& serial, const Series& s, qint64 t, qint64 sn) {
            const QByteArray when = sqlDateTimeText(start + t * 60).toLatin1();
            sqlite3_bind_text(stmt, 1, serial.constData(), int(serial.size()), SQLITE_STATIC);
            sqlite3_bind_int(stmt, 2, s.point);
            sqlite3_bind_text(stmt, 3, when.constData(), int(when.size()), SQLITE_TRANSIENT);
            sqlite3_bind_double(stmt, 4, reading(s, t));
            sqlite3_bind_int(stmt, 5, s.type);
            sqlite3_bind_int64(stmt, 6, sn);
            const int rc = sqlite3_step(stmt);
            sqlite3_reset(stmt);
            if (rc != SQLITE_DONE && !e.isError())
                e = failure(QString::fromUtf8(sqlite3_errmsg(h)));
            if (++done % 2'000'000 == 0 && !e.isError()) {
                e = exec(u"COMMIT"_s);
                if (!e.isError())
                    e = exec(u"BEGIN"_s);
                progress(done, total, timer, lastSay);
            }
        };
        for (qint64 k = 0; k < m_steps && !e.isError(); ++k) {
            const qint64 yearEnd = k + 1 == m_steps ? kYearMinutes : (k + 1) * m_step;
            qint64 m = k * m_step;
            for (qsizetype i = 0; i < m_series.size() && !e.isError(); ++i) {
                const Series& s = m_series[i];
                const qint64 t = k * m_step + s.phase;
                for (; m <= t && m < yearEnd; ++m)
                    put(yearSerial, *m_year, m, m + 1);
                put(serials[i], s, t, k + 1);
            }
            for (; m < yearEnd && !e.isError(); ++m)
                put(yearSerial, *m_year, m, m + 1);
        }
        sqlite3_finalize(stmt);
        if (!e.isError())
            e = exec(u"COMMIT"_s);
        else
            (void)exec(u"ROLLBACK"_s);
        progress(done, total, timer, lastSay);
        m_r.records = done;
        return e;
    }

    DbError seedMessages()
    {
        QElapsedTimer timer;
        timer.start();
        const DbKind kind = m_db.kind();
        if (DbError e = exec(u"DROP TABLE IF EXISTS sx_scale_units"_s); e.isError())
            return e;
        if (DbError e = exec(u"CREATE TEMP TABLE sx_scale_units (serial TEXT, ord INTEGER, "
                             "points INTEGER, inputs INTEGER)"_s);
            e.isError())
            return e;
        Rows r = m_db.read(
            u"SELECT SyI_Serialnumber, (SELECT COUNT(*) FROM Sensors_Info WHERE "
            "SeI_SyI_Serialnumber=SyI_Serialnumber), (SELECT COUNT(*) FROM Powermonitoring_Info "
            "WHERE PmI_SyI_Serialnumber=SyI_Serialnumber) FROM Systems_Info ORDER BY "
            "SyI_Serialnumber"_s);
        QList<QList<SqlValue>> units;
        while (r.next()) {
            units.append({r.text(0).value_or(QString()), qint64(units.size()),
                          std::max<qint64>(1, r.integer(1).value_or(1)),
                          std::max<qint64>(1, r.integer(2).value_or(1))});
        }
        if (!r.ok())
            return r.error();
        if (units.isEmpty())
            return failure(u"no units to give messages to"_s);
        BulkInsert insert(m_db, u"sx_scale_units",
                          {u"serial"_s, u"ord"_s, u"points"_s, u"inputs"_s});
        for (const QList<SqlValue>& u : units) {
            if (DbError e = insert.add(u); e.isError())
                return e;
        }
        if (DbError e = insert.finish(); e.isError())
            return e;

        const qint64 perUnit = std::max<qint64>(2, m_o.messages / units.size());
        const qint64 power = std::max<qint64>(1, perUnit / 5);
        const qint64 point = perUnit - power;
        // Spread over the year before the end.
        const qint64 pointGap = std::max<qint64>(60, 365 * 86400 / point);
        const qint64 powerGap = std::max<qint64>(60, 365 * 86400 / power);
        const QString end = num(m_o.endSecs);
        const qint64 epoch = secsFromCivil({1970, 1, 1, 0, 0, 0});
        // Seconds before the end: the n-th of `count` with `gap` between two, the newest an hour
        // old.
        const auto ageOf = [](qint64 count, qint64 gap) {
            return u"(("_s + num(count - 1) + u"-n)*"_s + num(gap) + u"+3600)"_s;
        };
        const QString age = ageOf(point, pointGap);
        const QString powerAge = ageOf(power, powerGap);
        for (const QString& sql :
             {u"DELETE FROM Sensors_Events"_s, u"DELETE FROM Powermonitoring_Events"_s}) {
            if (DbError e = exec(sql); e.isError())
                return e;
        }
        say(u"messages: %1 a unit for %2 units (%3 of zones, %4 of power inputs)"_s.arg(perUnit)
                .arg(units.size())
                .arg(point)
                .arg(power));
        const QString pointSql =
            seriesPrefix(kind, point) +
            u"INSERT INTO Sensors_Events (SeE_SyI_Serialnumber, SeE_Sensornumber, "
            "SeE_Eventnumber, SeE_Eventtype, SeE_Recordedvalue, SeE_Recordeddatetime, "
            "SeE_BeforeCounter, SeE_Recipients) SELECT serial, n % points + 1, n + 1, n % 2, "
            "20 + n % 10, "_s +
            dateOfSecs(kind, end + u"-"_s + num(epoch) + u"-"_s + age) + u", "_s + age +
            u", CASE WHEN ord % 4 = 0 AND n >= "_s + num(point - kNewPointMessages) +
            u" THEN 3 ELSE 0 END FROM sx_scale_units CROSS JOIN "_s + seriesFrom(kind, point);
        const QString powerSql =
            seriesPrefix(kind, power) +
            u"INSERT INTO Powermonitoring_Events (PmE_SyI_Serialnumber, PmE_Eventnumber, "
            "PmE_Eventpowercondition, PmE_Recordeddatetime, PmE_BeforeCounter, PmE_Recipients) "
            "SELECT serial, n + 1, CASE WHEN inputs > 1 THEN (inputs - 1) * 16 + n % 2 ELSE n % "
            "2 END, "_s +
            dateOfSecs(kind, end + u"-"_s + num(epoch) + u"-"_s + powerAge) + u", "_s + powerAge +
            u", CASE WHEN ord % 4 = 0 AND n >= "_s + num(power - kNewPowerMessages) +
            u" THEN 1 ELSE 0 END FROM sx_scale_units CROSS JOIN "_s + seriesFrom(kind, power);
        if (DbError e = m_db.exec(pointSql, &m_r.pointMessages); e.isError())
            return e;
        if (DbError e = m_db.exec(powerSql, &m_r.powerMessages); e.isError())
            return e;
        const qint64 newUnits = (qint64(units.size()) + 3) / 4;
        m_r.newMessages = newUnits * (std::min<qint64>(point, kNewPointMessages) +
                                      std::min<qint64>(power, kNewPowerMessages));
        (void)exec(u"DROP TABLE sx_scale_units"_s);
        m_r.messageSecs = timer.nsecsElapsed() / 1e9;
        say(u"messages: %1 of zones and %2 of power inputs (%3 new) in %4 s"_s
                .arg(thousands(m_r.pointMessages), thousands(m_r.powerMessages),
                     thousands(m_r.newMessages))
                .arg(m_r.messageSecs, 0, 'f', 1));
        return {};
    }

    Database& m_db;
    const ScaleOptions& m_o;
    ScaleReport m_r;
    QList<Series> m_series;
    std::optional<Series> m_year;
    qint64 m_step = 1;
    qint64 m_steps = 0;
};

} // namespace

ScaleReport seedScale(Database& db, const ScaleOptions& options)
{
    ScaleSeeder seeder(db, options);
    return seeder.run();
}

} // namespace sx::sim
