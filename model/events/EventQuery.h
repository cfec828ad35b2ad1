#pragma once

#include "model/ConnectionSettings.h"

#include <QString>
#include <QStringList>

// The queries of the events archive. Access and Oracle get exactly the texts
// their drivers were written against; SQLite and PostgreSQL the same SQL, with
// the date range in their stored form (sqlDateRange).
namespace sx::events {

// Source codes of the source list besides Event_EventSource 1 to 25.
inline constexpr int kAllZonesSource = -1; // "Ζώνες παρακολούθησης": points 1 to 20
inline constexpr int kAllSourcesSource = 0; // "ΟΛΑ"
inline constexpr int kFirstZone = 1;
inline constexpr int kLastZone = 20;
inline constexpr int kMainsSource = 21;
inline constexpr int kSensorFaultSource = 22;
inline constexpr int kUnitFaultSource = 23;
inline constexpr int kDeliverySource = 24;
inline constexpr int kBypassSource = 25;

enum class EventKind { Alarms, Restorations, Both };

// Both ends included, seconds since 1970 (wall clock).
struct EventPeriod {
    qint64 fromSecs = 0;
    qint64 toSecs = 0;
};

// The month of the lists (index 0 to 11) of year 2000 + yearIndex; month index
// 12, or any index outside 0 to 11, is the whole year.
inline constexpr int kWholeYearIndex = 12;
[[nodiscard]] EventPeriod eventsPeriod(int yearIndex, int monthIndex);

struct EventFilter {
    QString serial;
    int source = kAllSourcesSource;
    EventKind kind = EventKind::Alarms;
    bool newOnly = true;
    EventPeriod period;
};

// The event query as the text builds it, without ordering. A source code
// outside -1 to 25 adds no source condition (as 0 does) and no kind condition.
[[nodiscard]] QString eventQuerySql(DbKind kind, const EventFilter& filter);
// The same, sorted by Event_SystemEventSN ascending; the view walks it backwards.
[[nodiscard]] QString orderedEventQuerySql(DbKind kind, const EventFilter& filter);
// The ordered query for several units at once, in place of the filter's own.
[[nodiscard]] QString orderedEventQuerySql(DbKind kind, const EventFilter& filter,
                                           const QStringList& serials);

// The alarm/restoration options apply to sources -1 to 21 only.
[[nodiscard]] constexpr bool kindOptionsApply(int source)
{
    return source >= kAllZonesSource && source <= kMainsSource;
}

// A source-list entry: "[3] Ψυγείο" or "[3] Ανώνυμη ζώνη" for points, the fixed
// names for -1, 0 and 21 to 25; the empty text for any other code.
[[nodiscard]] QString sourceEntryText(int source, const QString& zoneName = {});

// The unit has an event memory when this returns a row.
[[nodiscard]] QString eventMemorySql(const QString& serial);
// One row at most: whether the unit has an event of the source (-1: of any point).
[[nodiscard]] QString sourceExistsSql(DbKind kind, const QString& serial, int source);
// The name of one point, for the source list.
[[nodiscard]] QString zoneNameSql(const QString& serial, int zone);
// The unit row behind the all-units prefix.
[[nodiscard]] QString unitLabelSql(const QString& serial);
// The name caches of one unit.
[[nodiscard]] QString powerNamesSql(const QString& serial);
[[nodiscard]] QString zoneNamesSql(const QString& serial);
// The same for several units in one query each.
[[nodiscard]] QString unitLabelSql(const QStringList& serials);
[[nodiscard]] QString powerNamesSql(const QStringList& serials);
[[nodiscard]] QString zoneNamesSql(const QStringList& serials);

// Marking writes 1 (read) from the list of new events and 0 (new) from the list of all.
[[nodiscard]] constexpr int markValue(bool newOnly)
{
    return newOnly ? 1 : 0;
}

} // namespace sx::events
