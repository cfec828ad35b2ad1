#pragma once

#include "model/Database.h"
#include "sim/ValueWalk.h"

#include <QList>

namespace sx::sim {

// A run of evenly spaced records of one point.
struct RecordSeries {
    QString serial;
    int point = 1;
    int sensorType = 0;
    qint64 fromSecs = 0; // wall clock of the first record
    qint64 stepSecs = 60;
    qint64 count = 0;
    quint64 seed = 1;
    qint64 firstSn = 1; // Rec_SensRecSN of the first record
    // Limits in force decide where excursions go and what counts as a crossing.
    bool minUsed = false;
    bool maxUsed = false;
    double minLimit = 0;
    double maxLimit = 0;
    // Makes sure at least one excursion happens (halfway through).
    bool forceExcursion = true;
};

// A reading that left its limits (out) or came back within them.
struct LimitCrossing {
    qint64 secs = 0;
    double value = 0;
    bool out = false;
};

struct SeriesResult {
    DbError error;
    QList<LimitCrossing> crossings;
    double lastValue = 0;
};

// Writes the series into Records as fast as the driver allows: a prepared
// statement on SQLite, COPY on PostgreSQL, multi-row INSERTs elsewhere.
// Commits every 50,000 rows unless the caller has a transaction open.
[[nodiscard]] SeriesResult writeRecordSeries(Database& db, const RecordSeries& series);

// A series with both limits of the type in force; what the benchmark uses.
DbError seedRecords(Database& db, const QString& serial, int point, int sensorType, qint64 fromSecs,
                    qint64 stepSecs, qint64 count, quint64 seed);

} // namespace sx::sim
