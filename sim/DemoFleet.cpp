#include "sim/DemoFleet.h"

#include "model/Schema.h"
#include "sim/Prng.h"

#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace sx::sim {

TypeProfile typeProfile(int sensorType)
{
    // Plausible bands for the unit of each type (°C, %RH, contact, bar, mbar, ...).
    static constexpr std::array<TypeProfile, 21> kProfiles = {{
        {5.0, 3.0, false},     // °C: a cold room, 2..8
        {50.0, 15.0, true},    // %RH
        {0.5, 0.5, true},      // contact input
        {6.0, 1.5, true},      // bar
        {1013.0, 15.0, true},  // mbar
        {90.0, 15.0, true},    // Psi
        {760.0, 10.0, true},   // torr
        {250.0, 50.0, true},   // Pa
        {41.0, 5.0, false},    // °F
        {293.0, 4.0, true},    // K
        {2.0, 1.5, true},      // %CO
        {5.0, 2.0, true},      // %CO2
        {20.9, 1.5, true},     // %O2
        {78.0, 2.0, true},     // %N2
        {50.0, 25.0, true},    // %
        {500.0, 200.0, true},  // lux
        {7.0, 1.0, true},      // pH
        {400.0, 200.0, true},  // ppm
        {50.0, 10.0, true},    // kJ/mol
        {1500.0, 300.0, true}, // r/m
        {25.0, 5.0, true},     // r/s
    }};
    if (sensorType < 0 || sensorType >= static_cast<int>(kProfiles.size()))
        return {};
    return kProfiles[static_cast<std::size_t>(sensorType)];
}

namespace {

const QString kPointNames[] = {
    u"Ψυγείο 1"_s,
    u"Καταψύκτης"_s,
    u"Πόρτα εισόδου"_s,
    u""_s,
    u"Θάλαμος υγρασίας"_s,
    u"Πίεση δικτύου"_s,
    u"Λέβητας"_s,
    u"Αίθουσα αναμονής"_s,
    u"Αποθήκη φαρμάκων"_s,
    u"Ψυγείο εμβολίων"_s,
    u""_s,
    u"Αντλία νερού"_s,
    u"Διάδρομος"_s,
    u"Εξωτερικός χώρος"_s,
    u"Γραφείο"_s,
    u"Κουζίνα"_s,
    u""_s,
    u"Μηχανοστάσιο"_s,
    u"Ηλεκτρολογικός πίνακας"_s,
    u"Δεξαμενή"_s,
};

const QString kInputNames[] = {u"Τροφοδοσία"_s, u"ΔΕΗ"_s, u"Γεννήτρια"_s, u"UPS"_s};

double round1(double v)
{
    return std::round(v * 10.0) / 10.0;
}

void setLimits(DemoPoint& p, bool minUsed, bool maxUsed)
{
    const TypeProfile prof = typeProfile(p.type);
    p.minLimit = round1(prof.center - prof.halfWidth);
    p.maxLimit = round1(prof.center + prof.halfWidth);
    if (p.type == kContactSensorType) {
        p.minLimit = 0;
        p.maxLimit = 1;
    }
    p.minUsed = minUsed;
    p.maxUsed = maxUsed;
}

QString randomCode(Prng& rng)
{
    const int digits = rng.between(4, 8);
    QString code;
    for (int d = 0; d < digits; ++d)
        code += QChar(u'0' + rng.between(0, 9));
    return code;
}

QList<DemoInput> makeInputs(int count, Prng& rng)
{
    QList<DemoInput> inputs;
    for (int n = 1; n <= count; ++n) {
        DemoInput in;
        in.number = n;
        in.name = rng.chance(0.2) && n > 1 ? QString() : kInputNames[n - 1];
        inputs.append(in);
    }
    return inputs;
}

QList<DemoPoint> makeRandomPoints(int unitIndex, int count, Prng& rng)
{
    QList<DemoPoint> points;
    for (int n = 1; n <= count; ++n) {
        DemoPoint p;
        p.number = n;
        p.name = rng.chance(0.75) ? kPointNames[rng.between(0, 19)] : QString();
        p.type = rng.chance(0.2) ? kContactSensorType : rng.between(0, 20);
        p.used = !(n == 2 && unitIndex % 2 == 1);
        const double r = rng.unit();
        const bool both = r < 0.45;
        setLimits(p, both || (r >= 0.65 && r < 0.8), both || (r >= 0.45 && r < 0.65));
        points.append(p);
    }
    // A point in use whose records are not kept: the records view must not offer it.
    if (unitIndex % 3 == 1)
        points.last().logged = false;
    return points;
}

// The fixed part of the fleet: one line per unit.
struct UnitPlan {
    const char16_t* serial;
    const char16_t* name;
    QStringView model;
    const char16_t* softver;
    int online;
    int used;
    int notification;
    int relayB;
    ClockState clock;
    bool hasEvents;
    bool hasNewMessages;
    int inputs;
    int points;
};

} // namespace

QList<DemoUnit> buildDemoFleet(int units, quint64 seed)
{
    static const UnitPlan kPlan[] = {
        {u"SX100001", u"Κεντρική αποθήκη", kUnitModels[0], u"1.22", 1, 1, 1, 1, ClockState::Set,
         true, true, 4, 20},
        {u"SX100002", u"Φαρμακείο Κέντρου", kUnitModels[1], u"1.14", 1, 1, 0, 0, ClockState::Set,
         true, true, 1, 6},
        {u"SX100003", u"Ψυκτικός θάλαμος 2", kUnitModels[0], u"1.15", 1, 1, 2, 1,
         ClockState::Missing, true, false, 3, 8},
        {u"SX100004", u"Εργαστήριο", kUnitModels[2], u"1.21", 0, 1, 3, 0, ClockState::Set, true,
         true, 2, 5},
        {u"SX100005", u"Κτίριο Β", kUnitModels[3], u"2.0", 2, 1, 1, 1, ClockState::Set, true, true,
         4, 7},
        {u"SX100006", u"", kUnitModels[4], u"1.22", 1, 1, 0, 0, ClockState::Set, true, true, 2, 9},
        {u"SX'Q7", u"Αίθουσα υπολογιστών", kUnitModels[5], u"1.30", 1, 1, 2, 0, ClockState::Set,
         true, false, 3, 4},
        {u"SX100008", u"Παλαιά μονάδα", kUnitModels[6], u"1.05", 1, 0, 0, 0, ClockState::Set, false,
         false, 1, 3},
        {u"SX100009", u"Ιατρείο", kUnitModels[7], u"1.22", 1, 1, 1, 1, ClockState::Set, true, true,
         1, 6},
        {u"SX100010", u"Θερμοκήπιο", kUnitModels[8], u"1.21", 1, 1, 3, 0, ClockState::ZeroDate,
         true, true, 2, 10},
        {u"SX100011", u"Λεβητοστάσιο", kUnitModels[9], u"2.10", 1, 1, 0, 1, ClockState::Set, true,
         true, 4, 5},
        // A model outside the known list: never offered the extended notification.
        {u"SX100012", u"Αποθήκη τροφίμων", u"SENTORAX-2B", u"1.10", 1, 1, 1, 0, ClockState::Set,
         false, false, 1, 4},
    };
    constexpr int kPlanned = static_cast<int>(std::size(kPlan));
    static const QString kVersions[] = {u"1.14"_s, u"1.15"_s, u"1.21"_s, u"1.22"_s, u"2.0"_s};

    Prng rng(seed);
    QList<DemoUnit> fleet;
    for (int i = 0; i < units; ++i) {
        Prng unitRng = rng.fork(static_cast<quint64>(i) + 1);
        DemoUnit u;
        u.location = QString::number(1001 + i);
        int pointCount = 0;
        int inputCount = 0;
        if (i < kPlanned) {
            const UnitPlan& plan = kPlan[i];
            u.serial = QString::fromUtf16(plan.serial);
            u.name = QString::fromUtf16(plan.name);
            u.model = plan.model.toString();
            u.softver = QString::fromUtf16(plan.softver);
            u.online = plan.online;
            u.used = plan.used;
            u.notification = plan.notification;
            u.relayB = plan.relayB;
            u.clock = plan.clock;
            u.hasEvents = plan.hasEvents;
            u.hasNewMessages = plan.hasNewMessages;
            pointCount = plan.points;
            inputCount = plan.inputs;
        } else {
            u.serial = u"SX1%1"_s.arg(i + 1, 5, 10, QChar(u'0'));
            u.name = unitRng.chance(0.8) ? u"Μονάδα "_s + QString::number(i + 1) : QString();
            u.model = kUnitModels[unitRng.between(0, 9)].toString();
            u.softver = kVersions[unitRng.between(0, 4)];
            u.online = unitRng.chance(0.85) ? 1 : (unitRng.chance(0.5) ? 0 : 2);
            u.notification = unitRng.between(0, 1);
            u.relayB = unitRng.between(0, 1);
            u.hasNewMessages = unitRng.chance(0.6);
            pointCount = unitRng.between(3, 12);
            inputCount = unitRng.between(1, 4);
        }
        // Memorable codes for the first two units (one with a leading zero).
        u.code = i == 0 ? u"1234"_s : i == 1 ? u"0042"_s : randomCode(unitRng);
        u.inputs = makeInputs(inputCount, unitRng);

        if (i == 0) {
            for (int n = 1; n <= pointCount; ++n) {
                DemoPoint p;
                p.number = n;
                p.type = n - 1; // types 0..19 once each
                p.name = kPointNames[n - 1];
                if (p.type == kContactSensorType)
                    setLimits(p, true, true); // flags set, never shown for a contact
                else
                    setLimits(p, n % 3 != 1, n % 3 != 2);
                switch (n) {
                case 6:
                    p.state = PointState::NotPowered;
                    break;
                case 7:
                    p.state = PointState::AlarmOutOfBounds;
                    break;
                case 8:
                    p.state = PointState::OutOfBounds;
                    break;
                case 9:
                    p.state = PointState::AlarmInBounds;
                    break;
                case 10:
                    p.state = PointState::NotPoweredAlarm;
                    break;
                default:
                    break;
                }
                u.points.append(p);
            }
            u.points[4].previousType = 3; // mbar now, bar in its first records
            u.inputs[2].fault = true;
            u.inputs[2].condition = true;
            u.inputs[3].name.clear();
        } else {
            u.points = makeRandomPoints(i, pointCount, unitRng);
        }

        switch (i) {
        case 1:
            u.points[0].type = 20; // the last type code
            setLimits(u.points[0], false, true);
            u.faults = {{0, u"3"_s}};
            break;
        case 2:
            u.inputs[1].fault = true; // older than 122: shown through the fault flag
            u.faults = {{0, u"3"_s}, {0, u"4"_s}};
            break;
        case 4:
            u.inputs[3].used = false;
            break;
        case 5:
            u.points[0].state = PointState::NotPoweredMissing;
            setLimits(u.points[1], false, false);
            u.faults = {{0, u"0"_s}, {1, u"4"_s}};
            break;
        case 8:
            u.inputs[0].condition = true; // cut but no fault: red text, grey row
            u.faults = {{1, u"2"_s}, {1, u"5"_s}};
            break;
        case 9:
            u.inputs[1].condition = true; // older than 122: condition not shown
            break;
        case 10:
            u.faults = {{0, u"8"_s}, {0, u"5"_s}};
            break;
        default:
            break;
        }
        fleet.append(u);
    }
    return fleet;
}

} // namespace sx::sim
