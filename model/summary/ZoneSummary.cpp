#include "model/summary/ZoneSummary.h"

#include <algorithm>

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
    // The maximum is looked at first, as the records view colours a reading.
    if (rule.maxLimit && v > *rule.maxLimit)
        return Side::Above;
    if (rule.minLimit && v < *rule.minLimit)
        return Side::Below;
    return std::nullopt;
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

ZoneSummary summarise(const std::vector<Sample>& samples, const ZoneRule& rule, QDate first,
                      QDate last, std::optional<qint64> nowSecs)
{
    ZoneSummary out;
    out.contact = rule.isContact();
    if (!first.isValid() || !last.isValid() || last < first)
        return out;
    const qint64 periodStart = secsOf(first);
    const qint64 periodEnd = secsOf(last) + kDaySecs;
    const auto dayCount = static_cast<int>(first.daysTo(last)) + 1;
    out.days.reserve(dayCount);
    for (int d = 0; d < dayCount; ++d)
        out.days.append(DayRow{first.addDays(d)});
    std::vector<double> sums(static_cast<size_t>(dayCount), 0.0);
    double totalSum = 0.0;

    std::optional<Excursion> running;
    const auto close = [&](qint64 endSecs) {
        running->endSecs = endSecs;
        // Split at each midnight it spans, so every day gets its own minutes.
        for (qint64 from = running->startSecs; from < endSecs;) {
            const qint64 midnight = (floorDiv(from, kDaySecs) + 1) * kDaySecs;
            const qint64 to = std::min(midnight, endSecs);
            const auto d = static_cast<int>(floorDiv(from - periodStart, kDaySecs));
            if (d >= 0 && d < dayCount)
                out.days[d].outsideSecs += to - from;
            from = to;
        }
        out.totals.outsideSecs += running->durationSecs();
        out.totals.longestSecs = std::max(out.totals.longestSecs, running->durationSecs());
        out.excursions.append(*running);
        running.reset();
    };

    for (const Sample& s : samples) {
        if (s.secs < periodStart || s.secs >= periodEnd)
            continue;
        // A NULL value or a record of another type says nothing about this zone
        // now: it neither starts nor ends an excursion.
        if (!s.value || s.sensorType != rule.sensorType) {
            ++out.totals.skipped;
            continue;
        }
        const double v = *s.value;
        const auto d = static_cast<int>((s.secs - periodStart) / kDaySecs);
        DayRow& day = out.days[d];
        if (day.readings == 0) {
            day.min = day.max = v;
        } else {
            day.min = std::min(day.min, v);
            day.max = std::max(day.max, v);
        }
        ++day.readings;
        sums[static_cast<size_t>(d)] += v;
        totalSum += v;
        if (out.totals.readings == 0) {
            out.totals.min = out.totals.max = v;
        } else {
            out.totals.min = std::min(out.totals.min, v);
            out.totals.max = std::max(out.totals.max, v);
        }
        ++out.totals.readings;

        const std::optional<Side> side = sideOf(v, rule);
        if (running && (!side || *side != running->side))
            close(s.secs);
        if (!side)
            continue;
        if (!running) {
            running = Excursion{s.secs, s.secs, v, *side, false};
            ++day.excursions;
            ++out.totals.excursions;
        } else if (*side == Side::Above) {
            running->extreme = std::max(running->extreme, v);
        } else if (*side == Side::Below) {
            running->extreme = std::min(running->extreme, v);
        }
    }
    if (running) {
        running->runsOn = true;
        close(std::max(running->startSecs, std::min(periodEnd, nowSecs.value_or(periodEnd))));
    }
    for (int d = 0; d < dayCount; ++d) {
        if (out.days[d].readings > 0)
            out.days[d].mean = sums[static_cast<size_t>(d)] / out.days[d].readings;
    }
    if (out.totals.readings > 0)
        out.totals.mean = totalSum / out.totals.readings;
    return out;
}

} // namespace sx::summary
