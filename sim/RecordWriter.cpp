#include "sim/RecordWriter.h"

#include "model/NativeCursors.h"
#include "model/Schema.h"
#include "model/SqlDateTime.h"
#include "sim/BulkInsert.h"

#include <charconv>
#include <cmath>
#include <libpq-fe.h>
#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace sx::sim {

namespace {

constexpr qint64 kRowsPerTransaction = 50000;

DbError failure(const QString& text)
{
    DbError e;
    e.number = kProviderErrorNumber;
    e.description = text;
    return e;
}

// "YYYY-MM-DD HH:MM:SS" into `out` (19 characters).
void writeDateTime(qint64 secs, char* out)
{
    const CivilTime t = civilFromSecs(secs);
    auto two = [](char* p, int v) {
        p[0] = static_cast<char>('0' + v / 10);
        p[1] = static_cast<char>('0' + v % 10);
    };
    const int y = t.year;
    out[0] = static_cast<char>('0' + (y / 1000) % 10);
    out[1] = static_cast<char>('0' + (y / 100) % 10);
    out[2] = static_cast<char>('0' + (y / 10) % 10);
    out[3] = static_cast<char>('0' + y % 10);
    out[4] = '-';
    two(out + 5, t.month);
    out[7] = '-';
    two(out + 8, t.day);
    out[10] = ' ';
    two(out + 11, t.hour);
    out[13] = ':';
    two(out + 14, t.minute);
    out[16] = ':';
    two(out + 17, t.second);
}

// Where the rows go; one implementation per driver.
class RecordSink {
public:
    virtual ~RecordSink() = default;
    virtual DbError start() = 0;
    virtual DbError add(qint64 secs, double value, qint64 sn) = 0;
    virtual DbError finish() = 0;
    virtual void abandon() {}
};

class SqliteSink final : public RecordSink {
public:
    SqliteSink(sqlite3* db, const RecordSeries& s) : m_db(db), m_series(s) {}
    ~SqliteSink() override
    {
        if (m_stmt)
            sqlite3_finalize(m_stmt);
    }

    DbError start() override
    {
        static const char kSql[] =
            "INSERT INTO Records (Rec_SyI_Serialnumber, Rec_SeI_Sensornumber, Rec_Datetime, "
            "Rec_Value, Rec_Sensortype, Rec_SensRecSN) VALUES (?1, ?2, ?3, ?4, ?5, ?6)";
        if (sqlite3_prepare_v2(m_db, kSql, -1, &m_stmt, nullptr) != SQLITE_OK)
            return error();
        const QByteArray serial = m_series.serial.toUtf8();
        sqlite3_bind_text(m_stmt, 1, serial.constData(), static_cast<int>(serial.size()),
                          SQLITE_TRANSIENT);
        sqlite3_bind_int(m_stmt, 2, m_series.point);
        sqlite3_bind_int(m_stmt, 5, m_series.sensorType);
        m_ownTransaction = sqlite3_get_autocommit(m_db) != 0;
        return m_ownTransaction ? exec("BEGIN") : DbError{};
    }

    DbError add(qint64 secs, double value, qint64 sn) override
    {
        char text[19];
        writeDateTime(secs, text);
        sqlite3_bind_text(m_stmt, 3, text, 19, SQLITE_STATIC);
        sqlite3_bind_double(m_stmt, 4, value);
        sqlite3_bind_int64(m_stmt, 6, sn);
        if (sqlite3_step(m_stmt) != SQLITE_DONE) {
            DbError e = error();
            sqlite3_reset(m_stmt);
            return e;
        }
        sqlite3_reset(m_stmt);
        if (m_ownTransaction && ++m_inTransaction >= kRowsPerTransaction) {
            m_inTransaction = 0;
            if (DbError e = exec("COMMIT"); e.isError())
                return e;
            return exec("BEGIN");
        }
        return {};
    }

    DbError finish() override { return m_ownTransaction ? exec("COMMIT") : DbError{}; }

    void abandon() override
    {
        if (m_ownTransaction && sqlite3_get_autocommit(m_db) == 0)
            (void)exec("ROLLBACK");
    }

private:
    DbError exec(const char* sql)
    {
        char* message = nullptr;
        if (sqlite3_exec(m_db, sql, nullptr, nullptr, &message) != SQLITE_OK) {
            DbError e = failure(QString::fromUtf8(message ? message : sqlite3_errmsg(m_db)));
            sqlite3_free(message);
            return e;
        }
        return {};
    }
    DbError error() const { return failure(QString::fromUtf8(sqlite3_errmsg(m_db))); }

    sqlite3* m_db;
    const RecordSeries& m_series;
    sqlite3_stmt* m_stmt = nullptr;
    bool m_ownTransaction = false;
    qint64 m_inTransaction = 0;
};

// COPY ... FROM STDIN in text form: one round trip for the whole series.
class PgCopySink final : public RecordSink {
public:
    PgCopySink(PGconn* conn, const RecordSeries& s) : m_conn(conn)
    {
        QByteArray serial;
        for (char c : s.serial.toUtf8()) {
            switch (c) {
            case '\\':
                serial += "\\\\";
                break;
            case '\t':
                serial += "\\t";
                break;
            case '\n':
                serial += "\\n";
                break;
            case '\r':
                serial += "\\r";
                break;
            default:
                serial += c;
            }
        }
        m_prefix = serial + '\t' + QByteArray::number(s.point) + '\t';
        m_type = QByteArray::number(s.sensorType);
        m_buffer.reserve(kFlushBytes + 256);
    }

    DbError start() override
    {
        PGresult* res = PQexec(m_conn, "COPY Records (Rec_SyI_Serialnumber, Rec_SeI_Sensornumber, "
                                       "Rec_Datetime, Rec_Value, Rec_Sensortype, Rec_SensRecSN) "
                                       "FROM STDIN");
        const bool ok = res && PQresultStatus(res) == PGRES_COPY_IN;
        PQclear(res);
        if (!ok)
            return error();
        m_copying = true;
        return {};
    }

    DbError add(qint64 secs, double value, qint64 sn) override
    {
        char line[96];
        char* p = line;
        writeDateTime(secs, p);
        p += 19;
        *p++ = '\t';
        p = std::to_chars(p, line + sizeof(line), value, std::chars_format::fixed, 2).ptr;
        *p++ = '\t';
        m_buffer += m_prefix;
        m_buffer.append(line, p - line);
        m_buffer += m_type;
        m_buffer += '\t';
        p = std::to_chars(line, line + sizeof(line), sn).ptr;
        m_buffer.append(line, p - line);
        m_buffer += '\n';
        return m_buffer.size() >= kFlushBytes ? flush() : DbError{};
    }

    DbError finish() override
    {
        if (DbError e = flush(); e.isError())
            return e;
        m_copying = false;
        if (PQputCopyEnd(m_conn, nullptr) != 1)
            return error();
        return collect();
    }

    void abandon() override
    {
        if (m_copying) {
            m_copying = false;
            PQputCopyEnd(m_conn, "abandoned");
            (void)collect();
        }
    }

private:
    static constexpr qsizetype kFlushBytes = 1 << 20;

    DbError flush()
    {
        if (m_buffer.isEmpty())
            return {};
        if (PQputCopyData(m_conn, m_buffer.constData(), static_cast<int>(m_buffer.size())) != 1)
            return error();
        m_buffer.clear();
        return {};
    }

    DbError collect()
    {
        DbError e;
        while (PGresult* res = PQgetResult(m_conn)) {
            if (PQresultStatus(res) != PGRES_COMMAND_OK && !e.isError())
                e = failure(QString::fromUtf8(PQresultErrorMessage(res)).trimmed());
            PQclear(res);
        }
        return e;
    }

    DbError error() const { return failure(QString::fromUtf8(PQerrorMessage(m_conn)).trimmed()); }

    PGconn* m_conn;
    QByteArray m_prefix;
    QByteArray m_type;
    QByteArray m_buffer;
    bool m_copying = false;
};

class GenericSink final : public RecordSink {
public:
    GenericSink(Database& db, const RecordSeries& s)
        : m_series(s),
          m_insert(db, schema::Records::table,
                   {u"Rec_SyI_Serialnumber"_s, u"Rec_SeI_Sensornumber"_s, u"Rec_Datetime"_s,
                    u"Rec_Value"_s, u"Rec_Sensortype"_s, u"Rec_SensRecSN"_s})
    {
    }
    DbError start() override { return {}; }
    DbError add(qint64 secs, double value, qint64 sn) override
    {
        return m_insert.add({m_series.serial, qint64(m_series.point), SqlDateTimeValue{secs}, value,
                             qint64(m_series.sensorType), sn});
    }
    DbError finish() override { return m_insert.finish(); }

private:
    const RecordSeries& m_series;
    BulkInsert m_insert;
};

} // namespace

SeriesResult writeRecordSeries(Database& db, const RecordSeries& s)
{
    SeriesResult result;
    if (s.count <= 0)
        return result;
    if (!db.isOpen()) {
        result.error = failure(u"The connection to the database is closed."_s);
        return result;
    }

    std::unique_ptr<RecordSink> sink;
    const QSqlDatabase qdb = db.qtDatabase();
    if (db.kind() == DbKind::SQLite && detail::sqliteHandle(qdb))
        sink = std::make_unique<SqliteSink>(detail::sqliteHandle(qdb), s);
    else if (db.kind() == DbKind::PostgreSQL && detail::pgHandle(qdb))
        sink = std::make_unique<PgCopySink>(detail::pgHandle(qdb), s);
    else
        sink = std::make_unique<GenericSink>(db, s);

    ValueWalk walk(s.sensorType, s.minUsed, s.maxUsed, static_cast<double>(s.stepSecs),
                   WalkTempo::history(), s.seed);
    if (s.forceExcursion && (s.minUsed || s.maxUsed || s.sensorType == kContactSensorType))
        walk.forceExcursionAt(s.count / 2);

    result.error = sink->start();
    bool out = false;
    for (qint64 i = 0; i < s.count && !result.error.isError(); ++i) {
        const qint64 secs = s.fromSecs + i * s.stepSecs;
        const double v = walk.next();
        const bool nowOut =
            outOfLimits(s.sensorType, s.minUsed, s.minLimit, s.maxUsed, s.maxLimit, v);
        if (nowOut != out) {
            result.crossings.append({secs, v, nowOut});
            out = nowOut;
        }
        result.error = sink->add(secs, v, s.firstSn + i);
    }
    if (!result.error.isError())
        result.error = sink->finish();
    if (result.error.isError())
        sink->abandon();
    result.lastValue = walk.value();
    return result;
}

DbError seedRecords(Database& db, const QString& serial, int point, int sensorType, qint64 fromSecs,
                    qint64 stepSecs, qint64 count, quint64 seed)
{
    const TypeProfile prof = typeProfile(sensorType);
    RecordSeries s;
    s.serial = serial;
    s.point = point;
    s.sensorType = sensorType;
    s.fromSecs = fromSecs;
    s.stepSecs = stepSecs;
    s.count = count;
    s.seed = seed;
    s.minUsed = s.maxUsed = sensorType != kContactSensorType;
    s.minLimit = prof.center - prof.halfWidth;
    s.maxLimit = prof.center + prof.halfWidth;
    return writeRecordSeries(db, s).error;
}

} // namespace sx::sim
