#pragma once

#include "model/Database.h"

#include <QString>

#include <functional>

namespace sx::sim {

// A year of one-minute records of one zone, for the records view's benchmark.
inline constexpr qint64 kYearMinutes = 525600;

struct ScaleOptions {
    qint64 records = 0;       // rows of Records in all; 0 keeps the demo's history
    qint64 messages = 0;      // archived messages in all; 0 keeps the demo's messages
    bool partitioned = false; // PostgreSQL: Records partitioned by month
    qint64 endSecs = 0;       // wall clock of the newest row
    QString yearSerial;       // its zone 1 logs every minute for the whole year
    std::function<void(const QString&)> progress;
};

struct ScaleReport {
    DbError error;
    qint64 records = 0;
    qint64 series = 0;      // zones with records
    qint64 stepMinutes = 0; // between two records of a zone (but the year's zone)
    qint64 pointMessages = 0;
    qint64 powerMessages = 0;
    qint64 newMessages = 0;
    double recordSecs = 0;
    double indexSecs = 0;
    double messageSecs = 0;
};

// Replaces the records and the messages of a seeded fleet with a large
// archive spread over the year before endSecs, then makes the console's
// indexes. Rows are made by the server where it can (PostgreSQL), else
// through one prepared statement; records go in time order, as a server
// would write them.
[[nodiscard]] ScaleReport seedScale(Database& db, const ScaleOptions& options);

} // namespace sx::sim
