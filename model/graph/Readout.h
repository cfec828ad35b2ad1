#pragma once

#include "model/LoadedRecords.h"

#include <optional>
#include <vector>

namespace sx::graph {

// The record the cursor readout shows for the cursor time tSecs: among
// records[first..last] (grid order, newest first, whole minutes never
// increasing along it) the newest one in t's minute; else the nearer of the
// two records around t, a tie going to the older one. Nothing when every
// selected record lies after t. Binary search, so the cost does not grow with
// the selection; the search never looks past the selection.
[[nodiscard]] std::optional<int> nearestRecord(const std::vector<RecordPoint>& records, int first,
                                               int last, qint64 tSecs);

} // namespace sx::graph
