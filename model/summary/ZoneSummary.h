#pragma once

#include <QDate>
#include <QList>
#include <QString>

#include <optional>
#include <vector>

// The monthly (or yearly) summary of one zone: a row per day, the excursions
// beyond the limits and the totals. Plain data in, plain data out.
namespace sx::summary {

inline constexpr int kContactType = 2;

// One logged record; `value` is empty where the column was NULL.
struct Sample {
    qint64 secs = 0; // wall clock seconds since 1970
    std::optional<double> value;
    int sensorType = 0;
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
// reading beyond the limit to the first reading back inside. One still
// outside at the end of the period is cut there and marked `runsOn`.
struct Excursion {
    qint64 startSecs = 0;
    qint64 endSecs = 0;
    double extreme = 0.0; // the highest value above, the lowest below
    Side side = Side::Above;
    bool runsOn = false;
    [[nodiscard]] qint64 durationSecs() const { return endSecs - startSecs; }
};

struct DayRow {
    QDate day;
    int readings = 0; // usable readings; 0 leaves min, mean and max empty
    double min = 0.0;
    double mean = 0.0;
    double max = 0.0;
    qint64 outsideSecs = 0; // the part of excursions that falls on this day
    int excursions = 0;     // excursions that start on this day
};

struct Totals {
    int readings = 0;
    int skipped = 0; // NULL values and records logged under another type
    double min = 0.0;
    double mean = 0.0;
    double max = 0.0;
    qint64 outsideSecs = 0;
    int excursions = 0;
    qint64 longestSecs = 0;
};

struct ZoneSummary {
    bool contact = false;
    QList<DayRow> days;
    QList<Excursion> excursions;
    Totals totals;
};

// Summarises `samples` (ascending by time) over the days from `first` to `last`.
// Only readings with a value and the zone's present type count; a value
// exactly on a limit is inside. Minutes outside are split at midnight. An
// excursion still running is cut at the end of the period, or at `nowSecs`
// when that comes first: minutes that have not passed are not counted.
[[nodiscard]] ZoneSummary summarise(const std::vector<Sample>& samples, const ZoneRule& rule,
                                    QDate first, QDate last,
                                    std::optional<qint64> nowSecs = std::nullopt);

// Whole minutes of a duration, rounded to the nearest.
[[nodiscard]] qint64 minutesOf(qint64 secs);
// The day of a wall-clock time.
[[nodiscard]] QDate dayOf(qint64 secs);
[[nodiscard]] qint64 secsOf(QDate day);

} // namespace sx::summary
