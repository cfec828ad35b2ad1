#include "model/graph/Readout.h"

#include "model/graph/GraphRules.h"

namespace sx::graph {

std::optional<int> nearestRecord(const std::vector<RecordPoint>& records, int first, int last,
                                 qint64 tSecs)
{
    const qint64 t = minuteOf(tSecs);
    const auto minuteAt = [&](int i) { return minuteOf(records[static_cast<size_t>(i)].secs); };
    // The first index (from the newest) whose minute is not after t.
    int lo = first;
    int hi = last + 1;
    while (lo < hi) {
        const int mid = lo + (hi - lo) / 2;
        if (minuteAt(mid) <= t)
            hi = mid;
        else
            lo = mid + 1;
    }
    if (lo > last)
        return std::nullopt;
    const qint64 before = t - minuteAt(lo);
    if (before == 0 || lo == first)
        return lo;
    const qint64 after = minuteAt(lo - 1) - t;
    return after < before ? lo - 1 : lo;
}

} // namespace sx::graph
