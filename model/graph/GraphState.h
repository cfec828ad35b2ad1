#pragma once

#include "model/LoadedRecords.h"

#include <QtGlobal>

#include <vector>

namespace sx::graph {

// What one picture of the chart shows. Times are seconds since 1970 like
// RecordPoint::secs; the start keeps the seconds of the oldest selected record.
struct GraphView {
    qint64 startSecs = 0;
    int spanMinutes = 0;
    float bottom = 0.0f;
    float top = 0.0f;

    friend bool operator==(const GraphView&, const GraphView&) = default;
};

// The state of one open graph window, owned by that window. Whether a zoom
// was ever made is the application's (AppContext::graphZoomed).
struct GraphState {
    int firstIndex = 0; // LoadedRecords index of the newest selected record
    int lastIndex = 0;  // LoadedRecords index of the oldest selected record
    qint64 fullStartSecs = 0;
    qint64 fullEndSecs = 0;
    float fullBottom = 0.0f;
    float fullTop = 0.0f;
    GraphView view;
    bool justZoomed = false;     // the click after a zooming release adds no marker
    bool scrollUpdating = false; // scroll-bar changes made by the program are ignored
    double scrollFactor = 1.0;   // horizontal scroll units per minute
    qint16 hScrollLast = 0;
    // Marker k (1-based) is markers[k - 1].
    std::vector<RecordPoint> markers;
    int markerColourIndex = 0; // colour of the next marker, 0 to 6
};

} // namespace sx::graph
