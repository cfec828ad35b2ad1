#include "sim/ValueWalk.h"

#include "model/Schema.h"

#include <algorithm>
#include <cmath>

namespace sx::sim {

ValueWalk::ValueWalk(int sensorType, bool minUsed, bool maxUsed, double stepSecs, WalkTempo tempo,
                     quint64 seed)
    : m_profile(typeProfile(sensorType)), m_contact(sensorType == kContactSensorType),
      m_minUsed(minUsed), m_maxUsed(maxUsed),
      m_pull(1.0 - std::exp(-stepSecs / std::max(1.0, tempo.settleSecs))),
      m_noise(0.04 * m_profile.halfWidth * std::sqrt(std::min(1.0, m_pull * 4))),
      m_startChance(std::min(0.5, stepSecs / std::max(1.0, tempo.meanGapSecs))),
      m_minSteps(std::max<qint64>(1, std::llround(tempo.minExcursionSecs / stepSecs))),
      m_maxSteps(std::max<qint64>(1, std::llround(tempo.maxExcursionSecs / stepSecs))), m_rng(seed),
      m_value(m_contact ? 0 : m_profile.center), m_target(m_profile.center)
{
}

void ValueWalk::startExcursion()
{
    m_excursionLeft =
        m_minSteps +
        static_cast<qint64>(m_rng.unit() * static_cast<double>(m_maxSteps - m_minSteps + 1));
    // Head for a limit that is in force, so the excursion is seen.
    bool up = m_rng.chance(0.5);
    if (m_maxUsed && !m_minUsed)
        up = true;
    else if (m_minUsed && !m_maxUsed)
        up = false;
    const double reach = 1.15 + 0.35 * m_rng.unit();
    m_target = m_profile.center + (up ? reach : -reach) * m_profile.halfWidth;
}

double ValueWalk::next()
{
    if (m_excursionLeft == 0 && (m_step == m_forcedStep || m_rng.chance(m_startChance)))
        startExcursion();
    ++m_step;
    if (m_contact) {
        m_value = m_excursionLeft > 0 ? 1 : 0;
    } else {
        const double target = m_excursionLeft > 0 ? m_target : m_profile.center;
        double v = m_value + m_pull * (target - m_value) + m_noise * m_rng.gauss();
        if (m_profile.nonNegative)
            v = std::max(0.0, v);
        m_value = std::round(v * 100.0) / 100.0;
    }
    if (m_excursionLeft > 0)
        --m_excursionLeft;
    return m_value;
}

bool outOfLimits(int type, bool minUsed, double minLimit, bool maxUsed, double maxLimit,
                 double value)
{
    if (type == kContactSensorType)
        return value > 0;
    return (maxUsed && value > maxLimit) || (minUsed && value < minLimit);
}

bool outOfLimits(const DemoPoint& p, double value)
{
    return outOfLimits(p.type, p.minUsed, p.minLimit, p.maxUsed, p.maxLimit, value);
}

} // namespace sx::sim
