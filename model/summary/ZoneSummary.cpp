#include "model/summary/ZoneSummary.h"

#include <QDateTime>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

namespace sx::summary {

namespace {

constexpr qint64 kDaySecs = 86400;
constexpr qint64 kJulianDay1970 = 2440588;

qint64 floorDiv(qint64 a, qint64 b)
{
    return a / b - ((a % b != 0) && ((a < 0) != (b < 0)) ? 1 : 0);
}

std::optional<Side> sideOf(double v, const ZoneRule& rule)
{
    if (rule.isContact())
        return v > 0 ? std::nullopt : std::optional(Side::Open);
    // The limits are kept in single precision: so is the reading compared,
    // as the records view colours it. The maximum is looked at first.
    const auto f = static_cast<float>(v);
    if (rule.maxLimit && f > static_cast<float>(*rule.maxLimit))
        return Side::Above;
    if (rule.minLimit && f < static_cast<float>(*rule.minLimit))
        return Side::Below;
    return std::nullopt;
}

// Wall clock of `zone` to real time and back, from the zone's transitions
// around the period (a few a year), so that a year of readings converts fast.
class WallClock {
public:
    WallClock(const QTimeZone& zone, qint64 fromWall, qint64 toWall)
    {
        const qint64 from = fromWall - 2 * kDaySecs;
        const qint64 to = toWall + 2 * kDaySecs;
        if (!zone.isValid())
            return;
        m_base = zone.offsetFromUtc(QDateTime::fromSecsSinceEpoch(from, Qt::UTC));
        const auto transitions = zone.transitions(QDateTime::fromSecsSinceEpoch(from, Qt::UTC),
                                                  QDateTime::fromSecsSinceEpoch(to, Qt::UTC));
        for (const QTimeZone::OffsetData& t : transitions)
            m_changes.push_back({t.atUtc.toSecsSinceEpoch(), t.offsetFromUtc});
        m_offsets.push_back(m_base);
        for (const Change& c : m_changes) {
            if (std::find(m_offsets.begin(), m_offsets.end(), c.offset) == m_offsets.end())
                m_offsets.push_back(c.offset);
        }
    }

    [[nodiscard]] qint64 toWall(qint64 utc) const { return utc + offsetAt(utc); }

    // A wall time the clock shows twice is the later one only when the
    // earlier would step back behind `after`; one the clock skips keeps the
    // offset in force before it.
    [[nodiscard]] qint64 toUtc(qint64 wall, qint64 after) const
    {
        std::optional<qint64> early;
        std::optional<qint64> late;
        for (const int o : m_offsets) {
            const qint64 u = wall - o;
            if (offsetAt(u) != o)
                continue;
            if (!early || u < *early) {
                late = early;
                early = u;
            } else {
                late = u;
            }
        }
        if (!early)
            return wall - offsetAt(wall - kDaySecs);
        return late && *early < after ? *late : *early;
    }

private:
    struct Change {
        qint64 atUtc;
        int offset;
    };
    [[nodiscard]] int offsetAt(qint64 utc) const
    {
        const auto it = std::upper_bound(m_changes.begin(), m_changes.end(), utc,
                                         [](qint64 u, const Change& c) { return u < c.atUtc; });
        return it == m_changes.begin() ? m_base : std::prev(it)->offset;
    }

    int m_base = 0;
    std::vector<Change> m_changes;
    std::vector<int> m_offsets{};
};

struct Reading {
    qint64 wall = 0;
    qint64 utc = 0;
    double value = 0.0;
    std::optional<Side> side;
};

qint64 median(std::vector<qint64> v)
{
    if (v.empty())
        return 0;
    const auto mid = v.begin() + static_cast<std::ptrdiff_t>(v.size() / 2);
    std::nth_element(v.begin(), mid, v.end());
    return *mid;
}

} // namespace

qint64 minutesOf(qint64 secs)
{
    return (secs + 30) / 60;
}

QDate dayOf(qint64 secs)
{
    return QDate::fromJulianDay(kJulianDay1970 + floorDiv(secs, kDaySecs));
}

qint64 secsOf(QDate day)
{
    return (day.toJulianDay() - kJulianDay1970) * kDaySecs;
}

ZoneSummary summarise(std::vector<Sample> samples, const ZoneRule& rule, QDate first, QDate last,
                      std::optional<qint64> nowSecs, const QTimeZone& zone)
{
    ZoneSummary out;
    out.contact = rule.isContact();
    if (!first.isValid() || !last.isValid() || last < first)
        return out;
    const qint64 periodStart = secsOf(first);
    const qint64 periodEnd = secsOf(last) + kDaySecs;
    const auto dayCount = static_cast<int>(first.daysTo(last)) + 1;
    const WallClock clock(zone, periodStart, periodEnd);
    std::vector<qint64> dayStart(static_cast<size_t>(dayCount) + 1);
    for (int d = 0; d <= dayCount; ++d)
        dayStart[static_cast<size_t>(d)] =
            clock.toUtc(periodStart + d * kDaySecs, std::numeric_limits<qint64>::min());
    const qint64 startU = dayStart.front();
    const qint64 endU = nowSecs
                            ? std::clamp(clock.toUtc(*nowSecs, std::numeric_limits<qint64>::min()),
                                         startU, dayStart.back())
                            : dayStart.back();
    out.days.reserve(dayCount);
    for (int d = 0; d < dayCount; ++d)
        out.days.append(DayRow{first.addDays(d)});

    // The logging order; times alone tie or step back when the clock does.
    const bool serials =
        std::all_of(samples.begin(), samples.end(), [](const Sample& s) { return s.serial > 0; });
    std::stable_sort(samples.begin(), samples.end(), [serials](const Sample& a, const Sample& b) {
        return serials ? a.serial < b.serial : a.secs < b.secs;
    });

    // Readings that count: those of the period, the last one before it and
    // the first one after it. Those of the period lie in [firstIn, endIn).
    std::vector<Reading> all;
    all.reserve(samples.size());
    qint64 lastUtc = std::numeric_limits<qint64>::min();
    for (const Sample& s : samples) {
        const bool inPeriod = s.secs >= periodStart && s.secs < periodEnd;
        if (!s.value || !std::isfinite(*s.value) || s.sensorType != rule.sensorType) {
            if (inPeriod)
                ++out.totals.skipped;
            continue;
        }
        lastUtc = clock.toUtc(s.secs, lastUtc);
        all.push_back({s.secs, lastUtc, *s.value, sideOf(*s.value, rule)});
    }
    const auto inPeriod = [&](const Reading& r) {
        return r.wall >= periodStart && r.wall < periodEnd;
    };
    const auto firstOf = std::find_if(all.begin(), all.end(), inPeriod);
    const auto lastOf = std::find_if(all.rbegin(), all.rend(), inPeriod);
    std::vector<Reading> rs;
    size_t firstIn = 0;
    size_t endIn = 0;
    if (firstOf != all.end()) {
        if (firstOf != all.begin() && std::prev(firstOf)->wall < periodStart)
            rs.push_back(*std::prev(firstOf));
        firstIn = rs.size();
        std::copy_if(firstOf, lastOf.base(), std::back_inserter(rs), inPeriod);
        endIn = rs.size();
        if (lastOf.base() != all.end() && lastOf.base()->wall >= periodEnd)
            rs.push_back(*lastOf.base());
    } else {
        const auto after = std::find_if(all.begin(), all.end(),
                                        [&](const Reading& r) { return r.wall >= periodEnd; });
        if (after != all.begin() && std::prev(after)->wall < periodStart)
            rs.push_back(*std::prev(after));
        firstIn = endIn = rs.size();
        if (after != all.end())
            rs.push_back(*after);
    }

    // The usual interval: the median between readings of the period.
    std::vector<qint64> intervals;
    for (size_t i = firstIn; i + 1 < endIn; ++i)
        intervals.push_back(rs[i + 1].utc - rs[i].utc);
    const qint64 usual = median(std::move(intervals));
    out.totals.usualIntervalSecs = usual;

    std::vector<double> weighted(static_cast<size_t>(dayCount), 0.0);
    std::vector<qint64> weight(static_cast<size_t>(dayCount), 0);
    // Adds [from, to) (real time, cut to the period and now) to the days it
    // falls on: as a reading's time, or as time without data.
    const auto account = [&](qint64 from, qint64 to, const Reading* r) {
        from = std::max(from, startU);
        to = std::min(to, endU);
        if (to <= from)
            return qint64{0};
        auto d = static_cast<size_t>(std::upper_bound(dayStart.begin(), dayStart.end(), from) -
                                     dayStart.begin() - 1);
        for (qint64 at = from; at < to; ++d) {
            const qint64 until = std::min(to, dayStart[d + 1]);
            DayRow& day = out.days[static_cast<int>(d)];
            if (!r) {
                day.noDataSecs += until - at;
            } else {
                weighted[d] += r->value * static_cast<double>(until - at);
                weight[d] += until - at;
                if (r->side)
                    day.outsideSecs += until - at;
            }
            at = until;
        }
        return to - from;
    };
    const auto dayIndex = [&](qint64 utc) {
        const auto i = std::upper_bound(dayStart.begin(), dayStart.end(), utc) - dayStart.begin();
        return std::clamp(static_cast<int>(i) - 1, 0, dayCount - 1);
    };

    std::optional<Excursion> running;
    qint64 runningFromU = 0;
    bool extremeOfPeriod = false;
    const auto close = [&](qint64 endUtc) {
        const qint64 cut = std::min(endUtc, endU);
        if (cut > runningFromU) {
            running->runsOn = running->runsOn || endUtc > endU;
            running->endSecs = clock.toWall(cut);
            running->realSecs = cut - runningFromU;
            out.totals.longestSecs = std::max(out.totals.longestSecs, running->realSecs);
            ++out.days[dayIndex(runningFromU)].excursions;
            ++out.totals.excursions;
            out.excursions.append(*running);
        }
        running.reset();
    };
    const auto noData = [&](qint64 from, qint64 to) {
        const qint64 real = account(from, to, nullptr);
        if (real <= 0)
            return;
        const qint64 a = std::max(from, startU);
        out.gaps.append({clock.toWall(a), clock.toWall(a + real), real});
        out.totals.longestGapSecs = std::max(out.totals.longestGapSecs, real);
    };

    if (firstIn == 0)
        noData(startU, firstIn < endIn ? rs.front().utc : endU);
    for (size_t i = 0; i < rs.size(); ++i) {
        const Reading& r = rs[i];
        const bool in = i >= firstIn && i < endIn;
        if (running && (!r.side || *r.side != running->side))
            close(r.utc);
        if (!in && r.wall >= periodEnd)
            break;
        if (in) {
            DayRow& day = out.days[static_cast<int>(floorDiv(r.wall - periodStart, kDaySecs))];
            day.min = day.readings == 0 ? r.value : std::min(day.min, r.value);
            day.max = day.readings == 0 ? r.value : std::max(day.max, r.value);
            ++day.readings;
            Totals& t = out.totals;
            t.min = t.readings == 0 ? r.value : std::min(t.min, r.value);
            t.max = t.readings == 0 ? r.value : std::max(t.max, r.value);
            ++t.readings;
        }
        if (r.side && !running) {
            const bool before = !in;
            runningFromU = std::max(r.utc, startU);
            running = Excursion{before ? periodStart : r.wall, 0, 0, r.value, *r.side, before};
            extremeOfPeriod = in;
        } else if (r.side && in) {
            // The extreme is the period's own, not that of the reading before it.
            if (!std::exchange(extremeOfPeriod, true))
                running->extreme = r.value;
            running->extreme = *r.side == Side::Below ? std::min(running->extreme, r.value)
                                                      : std::max(running->extreme, r.value);
        }
        // What the reading stands for: up to the next one, or to now at the
        // end; one usual interval when a gap follows.
        const qint64 next = i + 1 < rs.size() ? rs[i + 1].utc : endU;
        if (usual > 0 && next - r.utc > kGapFactor * usual) {
            account(r.utc, r.utc + usual, &r);
            if (running) {
                running->cutByGap = true;
                close(r.utc + usual);
            }
            noData(r.utc + usual, next);
        } else {
            account(r.utc, next, &r);
        }
    }
    if (running)
        close(std::numeric_limits<qint64>::max());

    for (int d = 0; d < dayCount; ++d) {
        DayRow& day = out.days[d];
        out.totals.outsideSecs += day.outsideSecs;
        out.totals.noDataSecs += day.noDataSecs;
        if (weight[static_cast<size_t>(d)] > 0)
            day.mean = weighted[static_cast<size_t>(d)] /
                       static_cast<double>(weight[static_cast<size_t>(d)]);
        else if (day.readings > 0)
            day.mean = day.min; // a reading at the very end of what has passed
    }
    double sum = 0.0;
    qint64 total = 0;
    for (size_t d = 0; d < weighted.size(); ++d) {
        sum += weighted[d];
        total += weight[d];
    }
    if (total > 0)
        out.totals.mean = sum / static_cast<double>(total);
    else if (out.totals.readings > 0)
        out.totals.mean = out.totals.min;
    return out;
}

} // namespace sx::summary
