#pragma once

#include <QElapsedTimer>

#include <algorithm>

namespace sx::bench {

// The best of `runs` timings of `run`, in milliseconds: the least disturbed
// by whatever else the machine is doing.
template <typename F> double bestMs(int runs, F&& run)
{
    double t = 1e12;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        run();
        t = std::min(t, timer.nsecsElapsed() / 1e6);
    }
    return t;
}

} // namespace sx::bench
