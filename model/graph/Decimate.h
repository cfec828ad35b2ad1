#pragma once

#include "model/LoadedRecords.h"
#include "model/graph/GraphState.h"

#include <QPointF>

#include <span>
#include <vector>

namespace sx::graph {

// The data line of one view as a polyline in chart coordinates (minutes from
// the view start, value), ready for the chart scale.
//
// newestFirst holds the selected records in grid order (newest first) with
// whole minutes never increasing along it, as the opening checks guarantee.
// Only the segments the chart draws are kept: those with an end after minute 0,
// up to the first with both ends at or after the span. Within each pixel
// column of a chart widthPx wide, only the first, lowest, highest and last
// points survive (in time order), so every column covers the same values and
// every segment between columns is unchanged: the drawing looks the same as
// drawing every segment, at no more than four points a column.
[[nodiscard]] std::vector<QPointF> decimate(std::span<const RecordPoint> newestFirst,
                                            const GraphView& view, int widthPx);

// The pixel column a chart x falls in for a chart widthPx wide.
[[nodiscard]] qint64 pixelColumn(double x, int spanMinutes, int widthPx);

} // namespace sx::graph
