#pragma once

#include <QtGlobal>

#include <cmath>

namespace sx::sim {

// splitmix64: tiny, fast and the same on every platform, so a seed always
// yields the same fleet (std distributions differ between library versions).
class Prng {
public:
    explicit Prng(quint64 seed = 1) : m_state(seed) {}

    quint64 next()
    {
        quint64 z = (m_state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }

    // Uniform in [0, 1).
    double unit() { return static_cast<double>(next() >> 11) * 0x1.0p-53; }

    // Uniform in [lo, hi], both included.
    int between(int lo, int hi)
    {
        if (hi <= lo)
            return lo;
        const auto span = static_cast<quint64>(hi - lo) + 1;
        return lo + static_cast<int>(next() % span);
    }

    bool chance(double p) { return unit() < p; }

    // Standard normal by Box-Muller.
    double gauss()
    {
        const double u1 = 1.0 - unit(); // (0, 1]
        const double u2 = unit();
        return std::sqrt(-2.0 * std::log(u1)) * std::cos(6.283185307179586 * u2);
    }

    // A new generator whose stream does not overlap this one's in practice.
    Prng fork(quint64 salt) { return Prng(next() ^ (salt * 0xD1B54A32D192ED03ull)); }

private:
    quint64 m_state;
};

} // namespace sx::sim
