#include "model/graph/Decimate.h"

#include "model/graph/GraphRules.h"

#include <algorithm>
#include <cmath>

namespace sx::graph {

qint64 pixelColumn(double x, int spanMinutes, int widthPx)
{
    const double pxPerMinute =
        spanMinutes > 0 ? static_cast<double>(std::max(widthPx, 2) - 1) / spanMinutes : 1.0;
    return static_cast<qint64>(std::floor(x * pxPerMinute + 0.5));
}

std::vector<QPointF> decimate(std::span<const RecordPoint> newestFirst, const GraphView& view,
                              int widthPx)
{
    std::vector<QPointF> out;
    const auto n = static_cast<qint64>(newestFirst.size());
    if (n < 2)
        return out;
    const qint64 viewMinute = minuteOf(view.startSecs);
    // Oldest is position 0 along time; element i in time order is newestFirst[n - 1 - i].
    const auto xAt = [&](qint64 i) {
        return minuteOf(newestFirst[static_cast<size_t>(n - 1 - i)].secs) - viewMinute;
    };
    const auto firstAtOrAfter = [&](qint64 lo, qint64 x, bool strictlyAfter) {
        qint64 hi = n;
        while (lo < hi) {
            const qint64 mid = lo + (hi - lo) / 2;
            if (strictlyAfter ? xAt(mid) > x : xAt(mid) >= x)
                hi = mid;
            else
                lo = mid + 1;
        }
        return lo;
    };
    // The first drawn segment is the first whose newer end lies after minute 0.
    const qint64 firstAfterZero = firstAtOrAfter(1, 0, true);
    if (firstAfterZero >= n)
        return out;
    const qint64 begin = firstAfterZero - 1;
    // The walk stops at the first segment whose older end is at or after the span.
    const qint64 firstPastSpan = firstAtOrAfter(begin, view.spanMinutes, false);
    const qint64 end = std::min(firstPastSpan, n - 1); // last point, inclusive
    if (end <= begin)
        return out;

    const auto pointAt = [&](qint64 i) {
        return QPointF(static_cast<double>(xAt(i)),
                       static_cast<double>(newestFirst[static_cast<size_t>(n - 1 - i)].value));
    };
    qint64 i = begin;
    while (i <= end) {
        const qint64 column = pixelColumn(static_cast<double>(xAt(i)), view.spanMinutes, widthPx);
        qint64 last = i;
        qint64 lowest = i;
        qint64 highest = i;
        for (qint64 j = i + 1; j <= end && pixelColumn(static_cast<double>(xAt(j)),
                                                       view.spanMinutes, widthPx) == column;
             ++j) {
            last = j;
            const float v = newestFirst[static_cast<size_t>(n - 1 - j)].value;
            if (v < newestFirst[static_cast<size_t>(n - 1 - lowest)].value)
                lowest = j;
            if (v > newestFirst[static_cast<size_t>(n - 1 - highest)].value)
                highest = j;
        }
        qint64 picks[4] = {i, std::min(lowest, highest), std::max(lowest, highest), last};
        qint64 previous = -1;
        for (const qint64 p : picks) {
            if (p != previous)
                out.push_back(pointAt(p));
            previous = p;
        }
        i = last + 1;
    }
    return out;
}

} // namespace sx::graph
