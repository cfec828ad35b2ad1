#pragma once

#include "sim/DemoFleet.h"
#include "sim/Prng.h"

namespace sx::sim {

// How fast a reading moves, in seconds of unit time.
struct WalkTempo {
    double settleSecs = 600;        // time to close most of the gap to the target
    double meanGapSecs = 2 * 86400; // mean time between excursions past a limit
    double minExcursionSecs = 1200;
    double maxExcursionSecs = 7200;

    static WalkTempo history() { return {}; }
    static WalkTempo live() { return {20, 900, 30, 180}; }
};

// The readings of one point: a mean-reverting walk around the middle of the
// type's band, with excursions past a limit in force now and then. Contact
// inputs close for the length of an excursion.
class ValueWalk {
public:
    ValueWalk(int sensorType, bool minUsed, bool maxUsed, double stepSecs, WalkTempo tempo,
              quint64 seed);

    // Starts an excursion at the given step (counted from 0) unless one runs then.
    void forceExcursionAt(qint64 step) { m_forcedStep = step; }
    void setValue(double v) { m_value = v; }

    // The next reading, rounded to hundredths (contact inputs: 0 or 1).
    double next();
    [[nodiscard]] double value() const { return m_value; }

private:
    void startExcursion();

    TypeProfile m_profile;
    bool m_contact;
    bool m_minUsed;
    bool m_maxUsed;
    double m_pull;
    double m_noise;
    double m_startChance;
    qint64 m_minSteps;
    qint64 m_maxSteps;
    Prng m_rng;
    double m_value;
    double m_target;
    qint64 m_excursionLeft = 0;
    qint64 m_step = 0;
    qint64 m_forcedStep = -1;
};

// Whether a reading is outside the limits in force (contact: closed).
[[nodiscard]] bool outOfLimits(const DemoPoint& p, double value);
[[nodiscard]] bool outOfLimits(int type, bool minUsed, double minLimit, bool maxUsed,
                               double maxLimit, double value);

} // namespace sx::sim
