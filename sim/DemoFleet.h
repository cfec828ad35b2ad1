#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace sx::sim {

// The normal band of a sensor type: limits sit at its edges, readings wander
// around its middle and now and then beyond it.
struct TypeProfile {
    double center = 0;
    double halfWidth = 1;
    bool nonNegative = true;
};
[[nodiscard]] TypeProfile typeProfile(int sensorType);

// How the seed pins a point's current condition, so every colour of the
// current view appears somewhere in the fleet.
enum class PointState {
    FromReadings, // follows the last logged value
    OutOfBounds,
    AlarmOutOfBounds,
    AlarmInBounds,
    NotPowered,
    NotPoweredAlarm,
    NotPoweredMissing, // SeCC_Notpowered NULL
};

struct DemoPoint {
    int number = 1;
    QString name;
    int type = 0;
    bool used = true;
    double minLimit = 0;
    double maxLimit = 0;
    bool minUsed = false;
    bool maxUsed = false;
    bool logged = true;    // has a record store
    int previousType = -1; // the type of the first records when it changed once
    PointState state = PointState::FromReadings;
};

struct DemoInput {
    int number = 1;
    QString name;
    bool used = true;
    bool fault = false;     // PmCC_Powerfault
    bool condition = false; // PmCC_Powercondition
};

struct DemoFault {
    int type = 0;
    QString info;
};

enum class ClockState { Set, Missing, ZeroDate };

struct DemoUnit {
    QString serial;
    QString location;
    QString name;
    QString model;
    QString softver;
    QString code;
    int online = 1;
    int used = 1;
    int notification = 0; // SyCC_Alarmcondition
    int relayB = 0;
    ClockState clock = ClockState::Set;
    bool hasEvents = true;
    bool hasNewMessages = true;
    QList<DemoPoint> points;
    QList<DemoInput> inputs;
    QList<DemoFault> faults;
};

// The demo fleet for `units` units. The first twelve are laid out by hand to
// cover every case the console distinguishes; further units are drawn from
// the seed. The same arguments always give the same fleet.
[[nodiscard]] QList<DemoUnit> buildDemoFleet(int units, quint64 seed);

} // namespace sx::sim
