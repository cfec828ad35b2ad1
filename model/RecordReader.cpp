#include "model/RecordReader.h"

#include "model/NativeCursors.h"
#include "model/ReadAside.h"
#include "model/SqlDateTime.h"

#include <algorithm>
#include <functional>
#include <libpq-fe.h>
#include <memory>
#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace sx::records {

namespace {

// Rows as they arrive, put in grid order at the end. Sequence numbers are kept
// only when asked: rows nearly always arrive in sequence order already.
class Collector {
public:
    Collector(size_t expected, bool keepSns) : m_keepSns(keepSns)
    {
        // Reserved, not touched: pages that no row fills never become resident.
        m_points.reserve(expected);
        if (keepSns)
            m_sns.reserve(expected);
    }
    void add(qint64 sn, qint64 secs, double value, qint64 type)
    {
        m_ascending = m_ascending && (m_points.empty() || m_lastSn <= sn);
        m_lastSn = sn;
        if (m_keepSns)
            m_sns.push_back(sn);
        m_points.push_back({secs, static_cast<float>(value), static_cast<quint8>(type)});
    }
    [[nodiscard]] bool ascending() const { return m_ascending; }
    // Ascending by sequence number walked from the end: the highest first.
    // Rows out of sequence order need the sequence numbers kept.
    std::vector<RecordPoint> take()
    {
        if (m_ascending) {
            std::reverse(m_points.begin(), m_points.end());
            return std::move(m_points);
        }
        std::vector<quint32> order(m_points.size());
        for (size_t i = 0; i < order.size(); ++i)
            order[i] = static_cast<quint32>(i);
        std::stable_sort(order.begin(), order.end(),
                         [this](quint32 a, quint32 b) { return m_sns[a] < m_sns[b]; });
        std::vector<RecordPoint> out(order.size());
        auto dst = out.begin();
        for (auto it = order.rbegin(); it != order.rend(); ++it)
            *dst++ = m_points[*it];
        return out;
    }

private:
    std::vector<RecordPoint> m_points;
    std::vector<qint64> m_sns;
    qint64 m_lastSn = 0;
    bool m_keepSns;
    bool m_ascending = true;
};

struct Columns {
    int date = -1;
    int value = -1;
    int type = -1;
    int sn = -1;
    void find(int count, const std::function<QString(int)>& name)
    {
        for (int c = 0; c < count; ++c) {
            const QString n = name(c);
            if (n.compare(u"Rec_Datetime", Qt::CaseInsensitive) == 0)
                date = c;
            else if (n.compare(u"Rec_Value", Qt::CaseInsensitive) == 0)
                value = c;
            else if (n.compare(u"Rec_Sensortype", Qt::CaseInsensitive) == 0)
                type = c;
            else if (n.compare(u"Rec_SensRecSN", Qt::CaseInsensitive) == 0)
                sn = c;
        }
    }
    [[nodiscard]] bool complete() const { return date >= 0 && value >= 0 && type >= 0 && sn >= 0; }
};

DbError missingColumns()
{
    return {kProviderErrorNumber, u"The records query lacks one of its columns."_s,
            DbFailureCause::Unknown};
}

// A year of one zone's rows shares few days: the reader parses each day once.
qint64 usableSecs(SqlDateTimeReader& read, std::string_view text)
{
    const auto secs = read(text);
    return secs && !isZeroDate(*secs) ? *secs : 0;
}

// Straight from the driver: a year of rows costs little more than the query.
RecordsLoad loadSqlite(sqlite3* h, const QString& sql, size_t expected)
{
    RecordsLoad out;
    const QByteArray text = sql.toUtf8();
    sqlite3_stmt* stmt = nullptr;
    const auto fail = [&out, h] {
        out.error.number = sqlite3_extended_errcode(h);
        if (out.error.number == 0)
            out.error.number = kProviderErrorNumber;
        out.error.description = QString::fromUtf8(sqlite3_errmsg(h));
    };
    if (sqlite3_prepare_v2(h, text.constData(), static_cast<int>(text.size()), &stmt, nullptr) !=
            SQLITE_OK ||
        !stmt) {
        fail();
        sqlite3_finalize(stmt);
        return out;
    }
    Columns col;
    col.find(sqlite3_column_count(stmt),
             [stmt](int c) { return QString::fromUtf8(sqlite3_column_name(stmt, c)); });
    if (!col.complete()) {
        sqlite3_finalize(stmt);
        out.error = missingColumns();
        return out;
    }
    // A second pass, keeping the sequence numbers, only for rows out of sequence order.
    for (const bool keepSns : {false, true}) {
        Collector rows(expected, keepSns);
        SqlDateTimeReader dates;
        int rc = SQLITE_ROW;
        while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
            const auto* when = reinterpret_cast<const char*>(sqlite3_column_text(stmt, col.date));
            const auto whenSize = static_cast<size_t>(sqlite3_column_bytes(stmt, col.date));
            rows.add(sqlite3_column_int64(stmt, col.sn),
                     when ? usableSecs(dates, std::string_view(when, whenSize)) : 0,
                     sqlite3_column_double(stmt, col.value), sqlite3_column_int64(stmt, col.type));
        }
        if (rc != SQLITE_DONE) {
            fail();
            break;
        }
        if (rows.ascending() || keepSns) {
            out.records = rows.take();
            break;
        }
        sqlite3_reset(stmt);
    }
    sqlite3_finalize(stmt);
    return out;
}

RecordsLoad loadPostgres(PGconn* h, const QString& sql)
{
    RecordsLoad out;
    PGresult* res = detail::pgRun(h, sql.toUtf8(), Database::kDefaultDeadlineMs, out.error);
    if (!res)
        return out;
    Columns col;
    col.find(PQnfields(res), [res](int c) { return QString::fromUtf8(PQfname(res, c)); });
    if (!col.complete()) {
        PQclear(res);
        out.error = missingColumns();
        return out;
    }
    const int count = PQntuples(res);
    const auto field = [res](int r, int c) {
        return std::string_view(PQgetvalue(res, r, c), static_cast<size_t>(PQgetlength(res, r, c)));
    };
    for (const bool keepSns : {false, true}) {
        Collector rows(static_cast<size_t>(count), keepSns);
        SqlDateTimeReader dates;
        for (int r = 0; r < count; ++r) {
            rows.add(parseIntegerText(field(r, col.sn)).value_or(0),
                     usableSecs(dates, field(r, col.date)),
                     parseRealText(field(r, col.value)).value_or(0.0),
                     parseIntegerText(field(r, col.type)).value_or(0));
        }
        if (rows.ascending() || keepSns) {
            out.records = rows.take();
            break;
        }
    }
    PQclear(res);
    return out;
}

// Any other driver, through the data layer.
RecordsLoad loadRows(Database& db, const QString& sql, size_t expected)
{
    RecordsLoad out;
    Rows r = db.read(sql);
    if (!r.ok()) {
        out.error = r.error();
        return out;
    }
    Columns col;
    col.date = r.column(u"Rec_Datetime");
    col.value = r.column(u"Rec_Value");
    col.type = r.column(u"Rec_Sensortype");
    col.sn = r.column(u"Rec_SensRecSN");
    Collector rows(expected, true);
    while (r.next()) {
        rows.add(r.integer(col.sn).value_or(0), r.dateTime(col.date).value_or(0),
                 r.real(col.value).value_or(0.0), r.integer(col.type).value_or(0));
    }
    if (!r.ok()) {
        out.error = r.error();
        return out;
    }
    out.records = rows.take();
    return out;
}

} // namespace

RecordsLoad loadRecords(Database& db, const QString& sql, size_t expectedRows)
{
    if (db.kind() == DbKind::SQLite) {
        if (sqlite3* h = detail::sqliteHandle(db.qtDatabase()))
            return loadSqlite(h, sql, expectedRows);
    } else if (db.kind() == DbKind::PostgreSQL) {
        if (PGconn* h = detail::pgHandle(db.qtDatabase()))
            return loadPostgres(h, sql);
    }
    return loadRows(db, sql, expectedRows);
}

RecordsLoad loadRecordsAside(const ConnectionSettings& settings, const QString& sql,
                             size_t expectedRows)
{
    RecordsLoad result;
    if (const DbError e =
            readAside(settings, [&](Database& db) { result = loadRecords(db, sql, expectedRows); });
        e.isError())
        result.error = e;
    return result;
}

} // namespace sx::records
