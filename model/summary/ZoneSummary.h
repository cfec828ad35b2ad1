#pragma once

#include <QDate>
#include <QList>
#include <QString>
#include <QTimeZone>

#include <optional>
#include <vector>

// The monthly (or yearly) summary of one zone: a row per day, the excursions
// beyond the limits and the totals. Plain data in, plain data out.
namespace sx::summary {

inline constexpr int kContactType = 2;

// One logged record; `value` is empty where the column was NULL.
struct Sample {
    qint64 secs = 0; // wall clock seconds since 1970, as stored
    std::optional<double> value;
    int sensorType = 0;
    qint64 serial = 0; // Rec_SensRecSN: the logging order, where times tie or step back
};

// The zone as it is now: its type and the limits in force.
struct ZoneRule {
    int sensorType = 0;
    std::optional<double> minLimit;
    std::optional<double> maxLimit;
    [[nodiscard]] bool isContact() const { return sensorType == kContactType; }
};

// Which limit an excursion broke; for a contact zone every run is an opening.
enum class Side { Above, Below, Open };

// A stretch outside the limits (or a contact left open): from the first
// reading beyond the limit to the first reading back inside. Times are wall
// clock as stored; the duration is the real time elapsed inside the period.
struct Excursion {
    qint64 startSecs = 0;
    qint64 endSecs = 0;
    qint64 realSecs = 0;
    double extreme = 0.0; // the highest value above, the lowest below
    Side side = Side::Above;
    bool startedBefore = false; // began in the previous period: counted from its start
    bool runsOn = false;        // goes on past the end of the period (or now): cut there
    bool cutByGap = false;      // the readings stop: it ends one usual interval after the last
    [[nodiscard]] qint64 durationSecs() const { return realSecs; }
};

// A stretch without readings: longer than three usual intervals between two
// readings, less the usual interval the earlier reading stands for.
struct Gap {
    qint64 startSecs = 0; // wall clock
    qint64 endSecs = 0;
    qint64 realSecs = 0; // inside the period
};

struct DayRow {
    QDate day;
    int readings = 0; // usable readings; 0 leaves min, mean and max empty
    double min = 0.0;
    double mean = 0.0; // weighted by the time each reading stands for
    double max = 0.0;
    qint64 outsideSecs = 0; // the part of excursions that falls on this day
    qint64 noDataSecs = 0;  // the part of gaps that falls on this day
    int excursions = 0;     // excursions that start on this day
};

struct Totals {
    int readings = 0;
    int skipped = 0; // NULL, not-a-number and infinite values, records of another type
    double min = 0.0;
    double mean = 0.0;
    double max = 0.0;
    qint64 outsideSecs = 0;
    int excursions = 0;
    qint64 longestSecs = 0;
    qint64 noDataSecs = 0;
    qint64 longestGapSecs = 0;
    qint64 usualIntervalSecs = 0; // the median interval between readings of the period
};

struct ZoneSummary {
    bool contact = false;
    QList<DayRow> days;
    QList<Excursion> excursions;
    QList<Gap> gaps;
    Totals totals;
};

// An interval longer than this many usual intervals is a gap.
inline constexpr int kGapFactor = 3;

// Summarises `samples` over the days from `first` to `last` (wall clock days
// of `zone`). Samples may include the last reading before the period and the
// first after it, so that what crosses the period's edges is counted in the
// right period. Only readings with a finite value and the zone's present type
// count; a value exactly on a limit is inside (compared in the single
// precision the limits are kept in). A reading stands for the time up to the
// next one, or one usual interval before a gap; gaps count neither inside
// nor outside. Durations are real time under the zone's rules, split at its
// midnights. Time after `nowSecs` (wall clock) has not passed and is not counted.
[[nodiscard]] ZoneSummary summarise(std::vector<Sample> samples, const ZoneRule& rule, QDate first,
                                    QDate last, std::optional<qint64> nowSecs = std::nullopt,
                                    const QTimeZone& zone = QTimeZone::systemTimeZone());

// Whole minutes of a duration, rounded to the nearest.
[[nodiscard]] qint64 minutesOf(qint64 secs);
// The day of a wall-clock time.
[[nodiscard]] QDate dayOf(qint64 secs);
[[nodiscard]] qint64 secsOf(QDate day);

} // namespace sx::summary
