#pragma once

#include "model/Database.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace sx {

// The states of a unit as the overview and the unit lists show them, worst first.
enum class FleetState { Alarm, Offline, Programming, Faults, Normal };
inline constexpr int kFleetStateCount = 5;

// A zone that is out of its limits or in alarm.
struct ZoneAlert {
    int number = 0;
    QString name; // as stored, may be empty
    int sensorType = 0;
    std::optional<double> value;
    bool outOfBounds = false;
    bool alarm = false;
    std::optional<double> minLimit; // only when in force
    std::optional<double> maxLimit;
};

// A power input that reports a cut supply or a fault.
struct PowerAlert {
    int number = 0;
    QString name;
};

struct UnitSummary {
    QString serial;
    QString name; // as stored, may be empty
    QString location;
    std::optional<qint64> online;
    bool relayOn = false;
    QList<ZoneAlert> zones;
    QList<PowerAlert> powers;
    QStringList faults; // the fault texts, one per row of Systems_Faults
    int newMessages = 0;
    std::optional<qint64> newestEvent; // seconds since 1970, wall clock

    [[nodiscard]] FleetState state() const;
    [[nodiscard]] bool connected() const { return online == 1; }
    [[nodiscard]] bool inAlarm() const
    {
        return connected() && (!zones.isEmpty() || !powers.isEmpty());
    }
    // The unit list's name text: "Ανώνυμο σύστημα" for an empty name.
    [[nodiscard]] QString shownName() const;
    // Name and location as a notification title: "Ψυκτικός θάλαμος [7]".
    [[nodiscard]] QString title() const;
};

// Every unit in use, read with a fixed number of queries whatever the fleet size.
struct FleetSummary {
    QList<UnitSummary> units;

    [[nodiscard]] const UnitSummary* find(const QString& serial) const;
    [[nodiscard]] int count(FleetState state) const;
    // The worst state of any unit; Normal for an empty fleet.
    [[nodiscard]] FleetState worst() const;

    QHash<QString, qsizetype> index;
};

// The read queries, in the order they run.
struct FleetQueries {
    QString units;
    QString zones;
    QString powers;
    QString faults;
    QString messages;
};
[[nodiscard]] FleetQueries fleetQueries(DbKind kind);

// Nothing when a query failed; `error` then says why.
[[nodiscard]] std::optional<FleetSummary> readFleetSummary(Database& db, DbError* error = nullptr);

// "Συναγερμός", "Εκτός σύνδεσης", "Προγραμματισμός", "Βλάβες", "Κανονική".
[[nodiscard]] QString fleetStateWord(FleetState state);

// "[3] name", "Ανώνυμη ζώνη" for an empty name.
[[nodiscard]] QString zoneLabel(const ZoneAlert& zone);

} // namespace sx
