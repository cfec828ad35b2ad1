#pragma once

#include "model/ConnectionSettings.h"
#include "model/Database.h"
#include "model/LoadedRecords.h"

#include <QString>

#include <vector>

namespace sx::records {

// A zone's records read straight from the driver's own handle (sqlite3 or
// libpq): a year of rows costs little more than the query. Other drivers go
// through the data layer.
struct RecordsLoad {
    std::vector<RecordPoint> records; // grid order: highest Rec_SensRecSN first
    DbError error;
};

// Runs the records query on `db` and puts the rows in grid order.
[[nodiscard]] RecordsLoad loadRecords(Database& db, const QString& sql, size_t expectedRows = 0);

// The same on a connection of its own in a worker thread, so that the calling
// (window) thread keeps painting and serving its timers meanwhile, and the
// window's connection stays free for them.
[[nodiscard]] RecordsLoad loadRecordsAside(const ConnectionSettings& settings, const QString& sql,
                                           size_t expectedRows = 0);

} // namespace sx::records
