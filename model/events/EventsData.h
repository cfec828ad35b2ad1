#pragma once

#include "model/ConnectionSettings.h"
#include "model/Database.h"
#include "model/events/EventDescription.h"
#include "model/events/EventQuery.h"

#include <QList>
#include <QString>

#include <functional>
#include <vector>

// The data of the events archive: the source list of a unit and the events of
// a choice of units, read on a worker connection into compact rows.
namespace sx::events {

// One entry of SensorSelect: its text and the pair it carries.
struct SourceEntry {
    QString text;
    int unitIndex = -1; // index in the unit list, -1 for all units
    int source = kAllSourcesSource;
};

// The entries for one unit, asking one row per existence test. Empty when the
// unit has no event memory.
[[nodiscard]] QList<SourceEntry> buildSourceList(Database& db, const QString& serial, int unitIndex,
                                                 DbError* error = nullptr);
// The entries offered for all units, without queries.
[[nodiscard]] QList<SourceEntry> allUnitsSourceList();

struct UnitRequest {
    int unitIndex = 0; // in the unit list
    QString serial;
};

struct EventsRequest {
    QList<UnitRequest> units; // in list order
    bool withPrefix = false;  // all units: each description starts with its unit
    int source = kAllSourcesSource;
    EventKind kind = EventKind::Alarms;
    bool newOnly = true;
    EventPeriod period;
};

// What every row of one unit shares.
struct EventsUnit {
    int unitIndex = 0;
    QString serial;
    QString prefix; // empty unless all units are listed
    NameCache names;
};

// One grid row, newest first within its unit.
struct EventLine {
    qint64 secs = 0;
    qint64 sn = 0;
    EventRow row;
    quint32 unit = 0;  // index into EventsLoad::units
    quint16 lines = 1; // text lines the description takes in the grid
    EventColour colour = EventColour::Normal;
};

// Text lines a cell text takes in the grid's description column. Called on
// the loading thread.
using LineCounter = std::function<int(const QString& cellText)>;

struct EventsLoad {
    std::vector<EventsUnit> units;
    std::vector<EventLine> rows;
    DbError error;
};

// The cell text of a row: the unit prefix (if any) and the description.
[[nodiscard]] QString cellText(const EventsUnit& unit, const EventLine& line,
                               const QLocale& locale = QLocale());

// The events of every unit, in list order, each unit's from its newest to its
// oldest; units are asked for in groups, a few queries a group. A counter that
// is empty gives every row one line.
[[nodiscard]] EventsLoad loadEvents(Database& db, const EventsRequest& request,
                                    const LineCounter& lineCounter = {});

// The same on a connection of its own in a worker thread; the calling thread
// keeps serving its events meanwhile.
[[nodiscard]] EventsLoad loadEventsAside(const ConnectionSettings& settings,
                                         const EventsRequest& request,
                                         const LineCounter& lineCounter = {});

// The event marks of the given rows set to `mark`, in one transaction: a
// failure leaves every row as it was. Rows are named by serial and sequence.
struct MarkTarget {
    QString serial;
    qint64 sn = 0;
};
[[nodiscard]] DbError markEvents(Database& db, const QList<MarkTarget>& rows, int mark);

} // namespace sx::events
