#pragma once

#include "model/Database.h"
#include "sim/DemoFleet.h"

#include <optional>

namespace sx::sim {

struct SeedOptions {
    int units = 12;
    int days = 30;
    quint64 seed = 1;
    std::optional<qint64> endSecs; // wall clock of the last record; empty = now
    int recordMinutes = 5;
    bool yearPoint = false; // point 1 of the first unit logs every minute for a year
};

struct SeedReport {
    DbError error;
    QList<DemoUnit> units;
    qint64 endSecs = 0;
    qint64 records = 0;
    qint64 events = 0;
    qint64 pointMessages = 0;
    qint64 powerMessages = 0;
};

// Creates the schema when missing, empties every table and writes the demo
// fleet with its history. Same options, same rows.
[[nodiscard]] SeedReport seedDemo(Database& db, const SeedOptions& options);

// Deletes every row of the shared tables and of the server's own (creating
// that one when missing).
DbError clearAllData(Database& db);

} // namespace sx::sim
