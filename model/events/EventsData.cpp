#include "model/events/EventsData.h"

#include "model/Dialect.h"
#include "model/ReadAside.h"

#include <QHash>
#include <QSet>

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

// Units are read in groups of this many: a few queries for a whole fleet
// rather than four a unit, each a round trip to the server.
constexpr qsizetype kUnitSlice = 500;

template <size_t N> void fillNames(std::array<QString, N>& names, Rows& r, int cNumber, int cName)
{
    const qint64 n = r.integer(cNumber).value_or(0);
    if (n >= 1 && n <= qint64(N))
        names[size_t(n - 1)] = r.text(cName).value_or(QString());
}

// The prefixes and name caches of the units from `first` on, one each serial.
DbError readUnits(Database& db, EventsLoad& out, size_t first, const QStringList& serials,
                  const QHash<QString, size_t>& unitOf, bool withPrefix)
{
    const auto unitsOf = [&](const std::optional<QString>& serial, auto&& apply) {
        const auto it = unitOf.constFind(serial.value_or(QString()));
        if (it != unitOf.cend())
            apply(out.units[*it]);
    };
    if (withPrefix) {
        QSet<QString> labelled;
        Rows r = db.read(unitLabelSql(serials));
        const int cSerial = r.column(u"SyI_Serialnumber");
        const int cName = r.column(u"SyI_Systemname");
        const int cLocation = r.column(u"SyI_Locationnumber");
        while (r.next()) {
            const QString serial = r.text(cSerial).value_or(QString());
            if (labelled.contains(serial))
                continue; // the first row of a unit is its label
            labelled.insert(serial);
            unitsOf(serial, [&](EventsUnit& u) {
                u.prefix = unitPrefix(u.serial, r.text(cName).value_or(QString()),
                                      r.text(cLocation).value_or(QString()));
            });
        }
        if (!r.ok())
            return r.error();
        for (size_t i = first; i < out.units.size(); ++i) {
            if (!labelled.contains(out.units[i].serial))
                out.units[i].prefix = unitPrefix(out.units[i].serial, {}, {});
        }
    }
    {
        Rows r = db.read(powerNamesSql(serials));
        const int cSerial = r.column(u"PmI_SyI_Serialnumber");
        const int cNumber = r.column(u"PmI_Powernumber");
        const int cName = r.column(u"PmI_Powername");
        while (r.next())
            unitsOf(r.text(cSerial),
                    [&](EventsUnit& u) { fillNames(u.names.powers, r, cNumber, cName); });
        if (!r.ok())
            return r.error();
    }
    Rows r = db.read(zoneNamesSql(serials));
    const int cSerial = r.column(u"SeI_SyI_Serialnumber");
    const int cNumber = r.column(u"SeI_Sensornumber");
    const int cName = r.column(u"SeI_Sensorname");
    while (r.next())
        unitsOf(r.text(cSerial),
                [&](EventsUnit& u) { fillNames(u.names.zones, r, cNumber, cName); });
    return r.ok() ? DbError{} : r.error();
}

} // namespace

EventsLoad loadEvents(Database& db, const EventsRequest& request, const LineCounter& lineCounter)
{
    EventsLoad out;
    const QLocale locale;
    out.units.reserve(size_t(request.units.size()));
    for (qsizetype from = 0; from < request.units.size(); from += kUnitSlice) {
        const size_t first = out.units.size();
        QStringList serials;
        QHash<QString, size_t> unitOf; // a serial's first unit in this slice
        for (const UnitRequest& u : request.units.mid(from, kUnitSlice)) {
            EventsUnit unit;
            unit.unitIndex = u.unitIndex;
            unit.serial = u.serial;
            if (!unitOf.contains(u.serial)) {
                unitOf.insert(u.serial, out.units.size());
                serials.append(u.serial);
            }
            out.units.push_back(std::move(unit));
        }
        if (DbError e = readUnits(db, out, first, serials, unitOf, request.withPrefix);
            e.isError()) {
            out.error = e;
            return out;
        }
        // A serial listed twice names two units with the same rows.
        for (size_t i = first; i < out.units.size(); ++i) {
            const EventsUnit& same = out.units[unitOf.value(out.units[i].serial)];
            if (&same != &out.units[i]) {
                out.units[i].prefix = same.prefix;
                out.units[i].names = same.names;
            }
        }

        EventFilter filter;
        filter.source = request.source;
        filter.kind = request.kind;
        filter.newOnly = request.newOnly;
        filter.period = request.period;
        Rows r = db.read(orderedEventQuerySql(db.kind(), filter, serials));
        const int cSerial = r.column(u"Event_SyI_Serialnumber");
        const int cSn = r.column(u"Event_SystemEventSN");
        const int cDate = r.column(u"Event_Datetime");
        const int cSource = r.column(u"Event_EventSource");
        const int cCondition = r.column(u"Event_Condition");
        const int cType = r.column(u"Event_SeI_Sensortype");
        const int cValue = r.column(u"Event_Value");
        const int cInfo = r.column(u"Event_Info1");
        // Rows come by sequence number; each unit's own run is kept apart.
        std::vector<std::vector<EventLine>> byUnit(out.units.size() - first);
        while (r.next()) {
            const auto it = unitOf.constFind(r.text(cSerial).value_or(QString()));
            if (it == unitOf.cend())
                continue;
            const EventsUnit& shown = out.units[*it];
            EventLine line;
            line.secs = r.dateTime(cDate).value_or(0);
            line.sn = r.integer(cSn).value_or(0);
            line.row.source = int(r.integer(cSource).value_or(0));
            line.row.condition = int(r.integer(cCondition).value_or(0));
            line.row.sensorType = int(r.integer(cType).value_or(0));
            line.row.value = r.real(cValue).value_or(0.0);
            if (line.row.source > kMainsSource)
                line.row.info1 = r.text(cInfo).value_or(QString());
            line.unit = quint32(*it);
            // The colour and the height need the text; the grid rebuilds it
            // when the row is shown rather than keeping every text in memory.
            const EventText text = describeEvent(line.row, shown.names, locale);
            line.colour = text.colour;
            if (lineCounter) {
                line.lines = quint16(std::clamp(lineCounter(shown.prefix + text.text), 1, 0xffff));
            }
            byUnit[*it - first].push_back(std::move(line));
        }
        if (!r.ok()) {
            out.error = r.error();
            return out;
        }
        // Each unit from its newest event to its oldest, the units in list order.
        for (size_t i = first; i < out.units.size(); ++i) {
            const size_t source = unitOf.value(out.units[i].serial);
            const std::vector<EventLine>& lines = byUnit[source - first];
            for (auto it = lines.rbegin(); it != lines.rend(); ++it) {
                out.rows.push_back(*it);
                out.rows.back().unit = quint32(i);
            }
        }
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
