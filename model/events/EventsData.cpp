#include "model/events/EventsData.h"

#include "model/Dialect.h"
#include "model/ReadAside.h"

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace sx::events {

namespace {

// Serial and sequence lists go to the server in slices of this many.
constexpr int kMarkSlice = 500;

// The existence tests already ask for one row in their SQL.
bool anyRow(Database& db, const QString& sql, DbError& error)
{
    Rows r = db.read(sql);
    r.setRowLimit(1);
    const bool found = r.next();
    error = r.error();
    return found;
}

QString zoneNameOf(Database& db, const QString& serial, int zone, DbError* error)
{
    Rows r = db.readFirst(zoneNameSql(serial, zone));
    QString name;
    if (r.next())
        name = r.textOr(u"SeI_Sensorname");
    if (!r.ok() && error)
        *error = r.error();
    return name;
}

} // namespace

QList<SourceEntry> buildSourceList(Database& db, const QString& serial, int unitIndex,
                                   DbError* error)
{
    QList<SourceEntry> out;
    DbError e;
    const auto fail = [&](const DbError& failure) {
        if (error)
            *error = failure;
        return QList<SourceEntry>{};
    };
    if (!db.exists(eventMemorySql(serial), &e))
        return e.isError() ? fail(e) : out;
    const DbKind kind = db.kind();
    if (anyRow(db, sourceExistsSql(kind, serial, kAllZonesSource), e))
        out.append({sourceEntryText(kAllZonesSource), unitIndex, kAllZonesSource});
    if (e.isError())
        return fail(e);
    for (int s = kFirstZone; s <= kBypassSource; ++s) {
        const bool any = anyRow(db, sourceExistsSql(kind, serial, s), e);
        if (e.isError())
            return fail(e);
        if (!any)
            continue;
        QString name;
        if (s <= kLastZone) {
            name = zoneNameOf(db, serial, s, &e);
            if (e.isError())
                return fail(e);
        }
        out.append({sourceEntryText(s, name), unitIndex, s});
    }
    out.append({sourceEntryText(kAllSourcesSource), unitIndex, kAllSourcesSource});
    return out;
}

QList<SourceEntry> allUnitsSourceList()
{
    QList<SourceEntry> out{{sourceEntryText(kAllZonesSource), -1, kAllZonesSource}};
    for (int s = kMainsSource; s <= kBypassSource; ++s)
        out.append({sourceEntryText(s), -1, s});
    out.append({sourceEntryText(kAllSourcesSource), -1, kAllSourcesSource});
    return out;
}

QString cellText(const EventsUnit& unit, const EventLine& line, const QLocale& locale)
{
    return unit.prefix + describeEvent(line.row, unit.names, locale).text;
}

namespace {

DbError readUnit(Database& db, EventsUnit& unit, bool withPrefix)
{
    if (withPrefix) {
        Rows r = db.read(unitLabelSql(unit.serial));
        QString name;
        QString location;
        if (r.next()) {
            name = r.textOr(u"SyI_Systemname");
            location = r.textOr(u"SyI_Locationnumber");
        }
        if (!r.ok())
            return r.error();
        unit.prefix = unitPrefix(unit.serial, name, location);
    }
    {
        Rows r = db.read(powerNamesSql(unit.serial));
        const int cNumber = r.column(u"PmI_Powernumber");
        const int cName = r.column(u"PmI_Powername");
        while (r.next()) {
            const qint64 n = r.integer(cNumber).value_or(0);
            if (n >= 1 && n <= qint64(unit.names.powers.size()))
                unit.names.powers[size_t(n - 1)] = r.text(cName).value_or(QString());
        }
        if (!r.ok())
            return r.error();
    }
    Rows r = db.read(zoneNamesSql(unit.serial));
    const int cNumber = r.column(u"SeI_Sensornumber");
    const int cName = r.column(u"SeI_Sensorname");
    while (r.next()) {
        const qint64 n = r.integer(cNumber).value_or(0);
        if (n >= 1 && n <= qint64(unit.names.zones.size()))
            unit.names.zones[size_t(n - 1)] = r.text(cName).value_or(QString());
    }
    return r.ok() ? DbError{} : r.error();
}

} // namespace

EventsLoad loadEvents(Database& db, const EventsRequest& request, const LineCounter& lineCounter)
{
    EventsLoad out;
    const QLocale locale;
    out.units.reserve(size_t(request.units.size()));
    for (const UnitRequest& u : request.units) {
        EventsUnit unit;
        unit.unitIndex = u.unitIndex;
        unit.serial = u.serial;
        if (DbError e = readUnit(db, unit, request.withPrefix); e.isError()) {
            out.error = e;
            return out;
        }
        const auto unitNumber = quint32(out.units.size());
        out.units.push_back(std::move(unit));
        const EventsUnit& shown = out.units.back();

        EventFilter filter;
        filter.serial = u.serial;
        filter.source = request.source;
        filter.kind = request.kind;
        filter.newOnly = request.newOnly;
        filter.period = request.period;
        Rows r = db.read(orderedEventQuerySql(db.kind(), filter));
        const int cSn = r.column(u"Event_SystemEventSN");
        const int cDate = r.column(u"Event_Datetime");
        const int cSource = r.column(u"Event_EventSource");
        const int cCondition = r.column(u"Event_Condition");
        const int cType = r.column(u"Event_SeI_Sensortype");
        const int cValue = r.column(u"Event_Value");
        const int cInfo = r.column(u"Event_Info1");
        const size_t first = out.rows.size();
        while (r.next()) {
            EventLine line;
            line.secs = r.dateTime(cDate).value_or(0);
            line.sn = r.integer(cSn).value_or(0);
            line.row.source = int(r.integer(cSource).value_or(0));
            line.row.condition = int(r.integer(cCondition).value_or(0));
            line.row.sensorType = int(r.integer(cType).value_or(0));
            line.row.value = r.real(cValue).value_or(0.0);
            if (line.row.source > kMainsSource)
                line.row.info1 = r.text(cInfo).value_or(QString());
            line.unit = unitNumber;
            // The colour and the height need the text; the grid rebuilds it
            // when the row is shown rather than keeping every text in memory.
            const EventText text = describeEvent(line.row, shown.names, locale);
            line.colour = text.colour;
            if (lineCounter) {
                line.lines = quint16(std::clamp(lineCounter(shown.prefix + text.text), 1, 0xffff));
            }
            out.rows.push_back(std::move(line));
        }
        if (!r.ok()) {
            out.error = r.error();
            return out;
        }
        // Ascending by sequence number, shown from the last row to the first.
        std::reverse(out.rows.begin() + std::ptrdiff_t(first), out.rows.end());
    }
    return out;
}

EventsLoad loadEventsAside(const ConnectionSettings& settings, const EventsRequest& request,
                           const LineCounter& lineCounter)
{
    EventsLoad result;
    if (const DbError e = readAside(
            settings, [&](Database& db) { result = loadEvents(db, request, lineCounter); });
        e.isError())
        result.error = e;
    return result;
}

DbError markEvents(Database& db, const QList<MarkTarget>& rows, int mark)
{
    if (rows.isEmpty())
        return {};
    if (DbError e = db.begin(); e.isError())
        return e;
    const QString head = u"UPDATE Events_1 SET Event_Ack="_s + QString::number(mark) +
                         u" WHERE Event_SyI_Serialnumber="_s;
    // Consecutive rows of one unit go in one statement; each names its rows by
    // key, so events the server adds meanwhile are never touched.
    qsizetype i = 0;
    while (i < rows.size()) {
        const QString& serial = rows.at(i).serial;
        QString sns;
        int n = 0;
        for (; i < rows.size() && rows.at(i).serial == serial && n < kMarkSlice; ++i, ++n) {
            if (n > 0)
                sns += u',';
            sns += QString::number(rows.at(i).sn);
        }
        const QString sql =
            head + sqlQuote(serial) + u" AND Event_SystemEventSN IN ("_s + sns + u')';
        if (DbError e = db.exec(sql); e.isError()) {
            (void)db.rollback();
            return e;
        }
    }
    if (DbError e = db.commit(); e.isError()) {
        (void)db.rollback();
        return e;
    }
    return {};
}

} // namespace sx::events
