#include "views/records/RecordsQuery.h"

#include "model/Dialect.h"
#include "model/Formatting.h"
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

QString zoneListSql(const QString& serial)
{
    return u"SELECT SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensortype, SeI_Maxlimit, "
           "SeI_Minlimit, SeI_Maxlimitused, SeI_Minlimitused, SeI_Sensorname, "
           "SeI_RecordsTable_Pagebyteswrit, SeI_RecordsTable_Lastpagesn FROM Sensors_Info WHERE "
           "(SeI_RecordsTable_Pagebyteswrit>0 OR SeI_RecordsTable_Lastpagesn>0) AND "
           "SeI_SyI_Serialnumber="_s +
           sqlQuote(serial);
}

QList<ZoneEntry> readZones(Database& db, const QString& serial, DbError* error)
{
    QList<ZoneEntry> zones;
    Rows r = db.read(zoneListSql(serial));
    const int cSerial = r.column(u"SeI_SyI_Serialnumber");
    const int cNumber = r.column(u"SeI_Sensornumber");
    const int cType = r.column(u"SeI_Sensortype");
    const int cMax = r.column(u"SeI_Maxlimit");
    const int cMin = r.column(u"SeI_Minlimit");
    const int cMaxUsed = r.column(u"SeI_Maxlimitused");
    const int cMinUsed = r.column(u"SeI_Minlimitused");
    const int cName = r.column(u"SeI_Sensorname");
    while (r.next()) {
        ZoneEntry z;
        z.serial = r.text(cSerial).value_or(QString());
        z.number = static_cast<qint16>(r.integer(cNumber).value_or(0));
        z.sensorType = static_cast<quint8>(r.integer(cType).value_or(0));
        z.maxLimit = static_cast<float>(r.real(cMax).value_or(0.0));
        z.minLimit = static_cast<float>(r.real(cMin).value_or(0.0));
        z.maxUsed = r.integer(cMaxUsed).value_or(0) == 1;
        z.minUsed = r.integer(cMinUsed).value_or(0) == 1;
        z.name = r.text(cName).value_or(QString());
        zones.append(z);
    }
    if (error)
        *error = r.error();
    // Ordered here rather than in SQL, so every database kind gives the same order.
    std::stable_sort(zones.begin(), zones.end(),
                     [](const ZoneEntry& a, const ZoneEntry& b) { return a.number < b.number; });
    return zones;
}

QString zoneItemText(const ZoneEntry& zone)
{
    return u'[' + QString::number(zone.number) + u"] "_s +
           (zone.name.isEmpty() ? u"Ανώνυμη ζώνη"_s : zone.name);
}

ZoneLimits zoneLimits(const ZoneEntry& zone, const QLocale& locale)
{
    ZoneLimits out;
    if (zone.sensorType == LimitRule::kContactType)
        return out;
    const QString unit = unitSuffix(zone.sensorType);
    if (zone.minUsed) {
        out.minText = formatValue(zone.minLimit, locale);
        out.minCaption = out.minText + unit;
    }
    if (zone.maxUsed) {
        out.maxText = formatValue(zone.maxLimit, locale);
        out.maxCaption = out.maxText + unit;
    }
    return out;
}

QStringList monthNames()
{
    // The third is written without its accent: workbooks and reports carry this text.
    return {u"Ιανουάριος"_s, u"Φεβρουάριος"_s, u"Μαρτιος"_s,   u"Απρίλιος"_s,    u"Μάιος"_s,
            u"Ιούνιος"_s,    u"Ιούλιος"_s,     u"Αύγουστος"_s, u"Σεπτέμβριος"_s, u"Οκτώβριος"_s,
            u"Νοέμβριος"_s,  u"Δεκέμβριος"_s,  u"ΟΛΟΙ"_s};
}

QStringList yearNames()
{
    QStringList years;
    years.reserve(kYearCount);
    for (int n = 0; n < kYearCount; ++n)
        years << QString::number(kFirstYear + n);
    return years;
}

int yearIndexOf(int year)
{
    return std::clamp(year - kFirstYear, 0, kYearCount - 1);
}

Period recordsPeriod(int yearIndex, int monthIndex)
{
    const int year = kFirstYear + yearIndex;
    if (monthIndex < 0 || monthIndex >= kWholeYearIndex) {
        return {secsFromCivil({year, 1, 1, 0, 0, 0}), secsFromCivil({year + 1, 1, 1, 0, 0, 0}) - 1};
    }
    const int month = monthIndex + 1;
    const CivilTime next =
        month == 12 ? CivilTime{year + 1, 1, 1, 0, 0, 0} : CivilTime{year, month + 1, 1, 0, 0, 0};
    return {secsFromCivil({year, month, 1, 0, 0, 0}), secsFromCivil(next) - 1};
}

size_t expectedRows(const Period& period)
{
    return period.toSecs >= period.fromSecs
               ? static_cast<size_t>((period.toSecs - period.fromSecs) / 60 + 1)
               : 0;
}

QString recordsSql(DbKind kind, const ZoneEntry& zone, const Period& period)
{
    return u"SELECT Rec_SyI_Serialnumber, Rec_SeI_Sensornumber, Rec_Datetime, Rec_Value, "
           "Rec_Sensortype, Rec_SensRecSN FROM Records WHERE Rec_SyI_Serialnumber="_s +
           sqlQuote(zone.serial) + u" AND Rec_SeI_Sensornumber="_s + QString::number(zone.number) +
           u" AND Rec_Datetime"_s +
           sqlDateRange(kind, toQDateTime(period.fromSecs), toQDateTime(period.toSecs));
}

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

qint64 usableSecs(std::string_view text)
{
    const auto secs = parseSqlDateTime(text);
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
        int rc = SQLITE_ROW;
        while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
            const auto* when = reinterpret_cast<const char*>(sqlite3_column_text(stmt, col.date));
            const auto whenSize = static_cast<size_t>(sqlite3_column_bytes(stmt, col.date));
            rows.add(sqlite3_column_int64(stmt, col.sn),
                     when ? usableSecs(std::string_view(when, whenSize)) : 0,
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
        for (int r = 0; r < count; ++r) {
            rows.add(parseIntegerText(field(r, col.sn)).value_or(0), usableSecs(field(r, col.date)),
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
