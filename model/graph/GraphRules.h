#pragma once

#include "model/LoadedRecords.h"
#include "model/graph/GraphState.h"

#include <QPointF>
#include <QString>

#include <optional>
#include <vector>

namespace sx::graph {

// ---- Time ------------------------------------------------------------------

// Whole minutes since 1970; the seconds are dropped (floor, also before 1970).
[[nodiscard]] constexpr qint64 minuteOf(qint64 secs)
{
    return secs >= 0 ? secs / 60 : -((-secs + 59) / 60);
}

// Minutes from one time to another, counted on whole-minute values.
[[nodiscard]] constexpr qint64 minuteDiff(qint64 fromSecs, qint64 toSecs)
{
    return minuteOf(toSecs) - minuteOf(fromSecs);
}

// Nearest whole number, halves to the even neighbour.
[[nodiscard]] double roundHalfEven(double x);

// ---- Opening ---------------------------------------------------------------

enum class SelectionProblem { None, MixedTypes, TimeReversal, ContactInput, TooShort };

struct SelectionCheck {
    SelectionProblem problem = SelectionProblem::None;
    int rowIndex = -1; // LoadedRecords index to select alone (mixed types, time reversal)
};

// Checks the records first..last (first the newest), scanning from the oldest upward.
[[nodiscard]] SelectionCheck checkSelection(const std::vector<RecordPoint>& records, int first,
                                            int last);

// The message for a refused selection, CR LF between its sentences; empty for None.
[[nodiscard]] QString selectionMessage(SelectionProblem problem);
inline constexpr char16_t kGraphCaption[] = u"Γράφημα";

struct ValueRange {
    float bottom = 0.0f;
    float top = 0.0f;
    friend bool operator==(const ValueRange&, const ValueRange&) = default;
};

// Always contains 0; ends on multiples of 10 beyond the extremes.
[[nodiscard]] ValueRange valueRange(const std::vector<RecordPoint>& records, int first, int last);

// The state right after a successful opening: full view, no markers.
[[nodiscard]] GraphState initialState(const std::vector<RecordPoint>& records, int first, int last);

// ---- Steps and ticks ---------------------------------------------------------

struct ValueSteps {
    double minor = 0.0;
    double major = 0.0;
    friend bool operator==(const ValueSteps&, const ValueSteps&) = default;
};

// Major step: 1 up to a span of 10, else the smallest even k with span <= 10 k.
// Beyond a span of 40000 the same even search simply goes on, so the label
// count stays between 5 and 10 for any span.
[[nodiscard]] ValueSteps valueSteps(float span);

// Time-label step in whole minutes: span/20 rounded halves to even, at least 1.
[[nodiscard]] int timeStep(int spanMinutes);

// bottom, bottom + step, ... up to top. Computed as bottom + i * step with a tiny
// tolerance so that accumulated rounding never drops the tick at the top.
[[nodiscard]] std::vector<double> valueTicks(double bottom, double top, double step);

// 0, step, 2 step, ... up to the span.
[[nodiscard]] std::vector<int> timeTicks(int spanMinutes, int step);

// Tick lengths in minutes (chart x units).
[[nodiscard]] inline double minorTickLength(int spanMinutes)
{
    return spanMinutes / 340.0;
}
[[nodiscard]] inline double majorTickLength(int spanMinutes)
{
    return spanMinutes / 150.0;
}

// ---- Scales ----------------------------------------------------------------

// A picture's user scale: (left, top) at its top-left pixel corner and (right,
// bottom) at its bottom-right corner, over width x height pixels.
struct PictureScale {
    double left = 0.0;
    double top = 0.0;
    double right = 1.0;
    double bottom = 0.0;
    int widthPx = 1;
    int heightPx = 1;

    [[nodiscard]] QPointF toPixel(QPointF user) const;
    [[nodiscard]] QPointF toUser(QPointF pixel) const;
};

// The chart: minutes 0..S across, the view's values top..bottom; one extra pixel
// beyond S and below the bottom keeps the frame's right and bottom lines visible.
[[nodiscard]] PictureScale chartScale(const GraphView& view, int widthPx, int heightPx);
// The value labels, with 9 pixels of margin above the top and below the bottom.
[[nodiscard]] PictureScale unitScale(const GraphView& view, int heightPx, int widthPx = 1);
// The time labels, with 9 pixels of margin at each end (in the chart's width).
[[nodiscard]] PictureScale timeScale(int spanMinutes, int chartWidthPx, int widthPx,
                                     int heightPx = 1);

// The value of 9 pixels in the value labels, and the minutes of 9 chart pixels.
[[nodiscard]] double valueMargin(const GraphView& view, int unitHeightPx);
[[nodiscard]] double timeMargin(int spanMinutes, int chartWidthPx);

// The cursor readout and the rubber band only react inside the view.
[[nodiscard]] bool insideView(const GraphView& view, QPointF chart);

// ---- Scroll bars -------------------------------------------------------------

struct HScrollBar {
    int minimum = 0;
    int maximum = 0;
    int value = 0;
    int largeChange = 1;
    double factor = 1.0; // scroll units per minute
    friend bool operator==(const HScrollBar&, const HScrollBar&) = default;
};

// minimum >= maximum here: the bar's top (minimum) is the top of the value range.
// With QScrollBar use the range [maximum, minimum] with inverted appearance.
struct VScrollBar {
    int minimum = 0;
    int maximum = 0;
    int value = 0;
    int largeChange = 1;
    friend bool operator==(const VScrollBar&, const VScrollBar&) = default;
};

inline constexpr int kScrollLimit = 32767;

[[nodiscard]] HScrollBar horizontalScrollBar(const GraphState& state);
[[nodiscard]] VScrollBar verticalScrollBar(const GraphState& state);

// Moving the horizontal bar to newValue: ±1 moves one minute, else delta/factor
// minutes rounded halves to even; the view never leaves the full range.
[[nodiscard]] GraphView scrolledHorizontally(const GraphState& state, int newValue);
[[nodiscard]] GraphView scrolledVertically(const GraphState& state, int newValue);

// ---- Zoom ------------------------------------------------------------------

// The view a left-button drag from p0 to p1 (chart coordinates) zooms to, or
// nothing when both ends fall in the same minute.
[[nodiscard]] std::optional<GraphView> dragZoom(const GraphState& state, QPointF p0, QPointF p1);

// Twice the view around its centre, bounded by the full range on both axes.
[[nodiscard]] GraphView zoomOut(const GraphState& state);

// The record time the cursor at chart x points at: the view start plus x
// rounded (halves to even) to whole minutes.
[[nodiscard]] qint64 cursorTime(const GraphView& view, double x);

// ---- Markers ---------------------------------------------------------------

struct Rgb {
    int r = 0;
    int g = 0;
    int b = 0;
    friend bool operator==(const Rgb&, const Rgb&) = default;
};

inline constexpr int kMaxMarkers = 255;
inline constexpr int kMarkerColourCount = 7;
inline constexpr Rgb kDataLineColour{0, 128, 0};
inline constexpr Rgb kMaxLimitColour{255, 0, 0};
inline constexpr Rgb kMinLimitColour{0, 0, 255};

// Marker k (1-based) has colour index (k - 1) mod 7.
[[nodiscard]] int markerColourIndex(int k);
[[nodiscard]] Rgb markerColour(int colourIndex);

// A marker is shown when its minute lies within the view's minutes.
[[nodiscard]] bool markerVisible(const GraphView& view, qint64 markerSecs);

// Adds the point as the next marker; false (and nothing changes) at the limit.
[[nodiscard]] bool addMarker(GraphState& state, const RecordPoint& point);
void clearMarkers(GraphState& state);

inline constexpr char16_t kMarkerLimitCaption[] = u"Προσοχή";
inline constexpr char16_t kMarkerLimitMessage[] =
    u"Δεν μπορείτε να προσθέσετε άλλον δείκτη σημείου";

// The entry prepended to the list of marked points for marker k.
[[nodiscard]] QString markerEntry(int k, const QString& timeText, const QString& valueText);

} // namespace sx::graph
