#include "model/graph/GraphRules.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace sx::graph {

namespace {

constexpr int kContactInput = 2;
constexpr double kLabelMarginPx = 9.0; // half the label font height of 18

// Out-of-range and NaN inputs (a range of ±1e30) stay within int instead of overflowing.
int roundToInt(double x)
{
    const double r = roundHalfEven(x);
    if (!(r == r))
        return 0;
    return static_cast<int>(std::clamp(r, double(std::numeric_limits<int>::min()),
                                       double(std::numeric_limits<int>::max())));
}

} // namespace

double roundHalfEven(double x)
{
    if (std::abs(x - std::trunc(x)) == 0.5)
        return 2.0 * std::round(x / 2.0);
    return std::round(x);
}

// ---- Opening ---------------------------------------------------------------

SelectionCheck checkSelection(const std::vector<RecordPoint>& records, int first, int last)
{
    const quint8 type = records[static_cast<size_t>(last)].sensorType;
    for (int i = last - 1; i >= first; --i) {
        const RecordPoint& r = records[static_cast<size_t>(i)];
        if (r.sensorType != type)
            return {SelectionProblem::MixedTypes, i};
        if (minuteDiff(records[static_cast<size_t>(i + 1)].secs, r.secs) < 0)
            return {SelectionProblem::TimeReversal, i};
    }
    if (type == kContactInput)
        return {SelectionProblem::ContactInput, -1};
    if (minuteDiff(records[static_cast<size_t>(last)].secs,
                   records[static_cast<size_t>(first)].secs) == 0)
        return {SelectionProblem::TooShort, -1};
    return {};
}

QString selectionMessage(SelectionProblem problem)
{
    switch (problem) {
    case SelectionProblem::None:
        return {};
    case SelectionProblem::MixedTypes:
        return u"Εντοπίστηκε ασυμφωνία μεταξύ του τύπου δεδομένων των καταγραφών που έχετε "
               u"επιλέξει.\r\nΠαρακαλώ επιλέξτε καταγραφές μόνο ιδίου τύπου."_s;
    case SelectionProblem::TimeReversal:
        return u"Εντοπίστηκε ανάστροφη χρονική μετάβαση στις καταγραφές που έχετε "
               u"επιλέξει.\r\nΠαρακαλώ ξαναπροσπαθήστε."_s;
    case SelectionProblem::ContactInput:
        return u"Δεν είναι δυνατόν να παραχθεί γράφημα από τον τύπο δεδομένων των καταγραφών "
               u"που έχετε επιλέξει."_s;
    case SelectionProblem::TooShort:
        return u"Παρακαλώ επιλέξτε περισσότερες από μία καταγραφές !"_s;
    }
    return {};
}

ValueRange valueRange(const std::vector<RecordPoint>& records, int first, int last)
{
    // NaN and infinities cannot be drawn and would spoil the range; they are left out.
    float maxV = 0.0f;
    float minV = 0.0f;
    bool any = false;
    bool hasPositive = false;
    bool hasNegative = false;
    for (int j = first; j <= last; ++j) {
        const float v = records[static_cast<size_t>(j)].value;
        if (!std::isfinite(v))
            continue;
        maxV = any ? std::max(maxV, v) : v;
        minV = any ? std::min(minV, v) : v;
        any = true;
        hasPositive = hasPositive || v > 0.0f;
        hasNegative = hasNegative || v < 0.0f;
    }
    // Whole tens towards zero, in double: values beyond qint64 (1e30) are legal floats.
    const auto q = [](float x) { return std::trunc(std::trunc(static_cast<double>(x)) / 10.0); };
    const auto top = static_cast<float>((q(maxV) + 1) * 10);
    const auto bottom = static_cast<float>((q(minV) - 1) * 10);
    if (hasPositive && hasNegative)
        return {bottom, top};
    if (hasPositive)
        return {0.0f, top};
    return {bottom, 0.0f};
}

GraphState initialState(const std::vector<RecordPoint>& records, int first, int last)
{
    GraphState s;
    s.firstIndex = first;
    s.lastIndex = last;
    s.fullStartSecs = records[static_cast<size_t>(last)].secs;
    s.fullEndSecs = records[static_cast<size_t>(first)].secs;
    const ValueRange range = valueRange(records, first, last);
    s.fullBottom = range.bottom;
    s.fullTop = range.top;
    s.view = {s.fullStartSecs, static_cast<int>(minuteDiff(s.fullStartSecs, s.fullEndSecs)),
              range.bottom, range.top};
    return s;
}

// ---- Steps and ticks ---------------------------------------------------------

ValueSteps valueSteps(float span)
{
    if (!(span > 10.0f) || !std::isfinite(span))
        return {0.1, 1.0};
    // The smallest even k with span <= 10 k; the loops only correct rounding,
    // and only where a step of 2 still changes k (a span of 1e30 does not need it).
    const auto s = static_cast<double>(span);
    double k = 2.0 * std::ceil(s / 20.0);
    if (k < 0x1p50) {
        while (10.0 * k < s)
            k += 2.0;
        while (k > 2.0 && 10.0 * (k - 2.0) >= s)
            k -= 2.0;
    }
    return {k / 10.0, k};
}

int timeStep(int spanMinutes)
{
    const float t = static_cast<float>(spanMinutes) / 20.0f;
    return t >= 1.0f ? roundToInt(t) : 1;
}

std::vector<double> valueTicks(double bottom, double top, double step)
{
    std::vector<double> ticks;
    // An infinite or NaN range has no ticks to draw, rather than endless ones.
    if (!(step > 0.0) || !((top - bottom) / step < 1e6))
        return ticks;
    const double limit = top + step * 1e-6;
    for (qint64 i = 0;; ++i) {
        const double y = bottom + static_cast<double>(i) * step;
        if (y > limit)
            break;
        ticks.push_back(y);
    }
    return ticks;
}

std::vector<int> timeTicks(int spanMinutes, int step)
{
    std::vector<int> ticks;
    if (step <= 0)
        return ticks;
    for (int t = 0; t <= spanMinutes; t += step)
        ticks.push_back(t);
    return ticks;
}

// ---- Scales ----------------------------------------------------------------

QPointF PictureScale::toPixel(QPointF user) const
{
    return {(user.x() - left) / (right - left) * widthPx,
            (user.y() - top) / (bottom - top) * heightPx};
}

QPointF PictureScale::toUser(QPointF pixel) const
{
    return {left + pixel.x() / widthPx * (right - left),
            top + pixel.y() / heightPx * (bottom - top)};
}

PictureScale chartScale(const GraphView& view, int widthPx, int heightPx)
{
    const double s = view.spanMinutes;
    const double v = static_cast<double>(view.top) - static_cast<double>(view.bottom);
    const int w = std::max(widthPx, 2);
    const int h = std::max(heightPx, 2);
    return {0.0, view.top, s + s / (w - 1), view.bottom - v / (h - 1), w, h};
}

double valueMargin(const GraphView& view, int unitHeightPx)
{
    const double v = static_cast<double>(view.top) - static_cast<double>(view.bottom);
    return kLabelMarginPx * v / (std::max(unitHeightPx, 2) - 1);
}

double timeMargin(int spanMinutes, int chartWidthPx)
{
    return kLabelMarginPx * spanMinutes / (std::max(chartWidthPx, 2) - 1);
}

PictureScale unitScale(const GraphView& view, int heightPx, int widthPx)
{
    const double mv = valueMargin(view, heightPx);
    return {0.0, view.top + mv, 1.0, view.bottom - mv, std::max(widthPx, 1), std::max(heightPx, 2)};
}

PictureScale timeScale(int spanMinutes, int chartWidthPx, int widthPx, int heightPx)
{
    const double mt = timeMargin(spanMinutes, chartWidthPx);
    return {-mt, 1.0, spanMinutes + mt, 0.0, std::max(widthPx, 1), std::max(heightPx, 1)};
}

bool insideView(const GraphView& view, QPointF chart)
{
    return chart.x() >= 0.0 && chart.x() <= view.spanMinutes && chart.y() >= view.bottom &&
           chart.y() <= view.top;
}

// ---- Scroll bars -------------------------------------------------------------

HScrollBar horizontalScrollBar(const GraphState& state)
{
    const qint64 free = minuteDiff(state.fullStartSecs, state.fullEndSecs) - state.view.spanMinutes;
    HScrollBar bar;
    bar.factor = free < kScrollLimit + 1 ? 1.0 : kScrollLimit / static_cast<double>(free);
    bar.maximum = roundToInt(static_cast<double>(free) * bar.factor);
    if (bar.maximum != bar.minimum) {
        const auto offset =
            static_cast<double>(minuteDiff(state.fullStartSecs, state.view.startSecs));
        bar.value = roundToInt(offset / static_cast<double>(free) * bar.maximum);
    }
    bar.largeChange = std::max(1, roundToInt(bar.maximum / 10.0));
    return bar;
}

VScrollBar verticalScrollBar(const GraphState& state)
{
    VScrollBar bar;
    const float full = state.fullTop - state.fullBottom;
    const float shown = state.view.top - state.view.bottom;
    bar.minimum = roundToInt(full - shown);
    if (bar.minimum != bar.maximum)
        bar.value = roundToInt(state.view.bottom - state.fullBottom);
    bar.largeChange = std::max(1, roundToInt(bar.minimum / 10.0));
    return bar;
}

GraphView scrolledHorizontally(const GraphState& state, int newValue)
{
    const int delta = newValue - state.hScrollLast;
    qint64 move = delta;
    if (std::abs(delta) != 1)
        move = static_cast<qint64>(roundHalfEven(delta / state.scrollFactor));
    const GraphView& v = state.view;
    // Rounding must never show minutes outside the selection.
    const qint64 lowest = -minuteDiff(state.fullStartSecs, v.startSecs);
    const qint64 highest = minuteDiff(v.startSecs + qint64(v.spanMinutes) * 60, state.fullEndSecs);
    move = std::max(lowest, std::min(move, highest));
    GraphView out = v;
    out.startSecs = v.startSecs + move * 60;
    return out;
}

GraphView scrolledVertically(const GraphState& state, int newValue)
{
    GraphView out = state.view;
    const float d = state.view.top - state.view.bottom;
    out.bottom = state.fullBottom + static_cast<float>(newValue);
    out.top = out.bottom + d;
    return out;
}

// ---- Zoom ------------------------------------------------------------------

std::optional<GraphView> dragZoom(const GraphState& state, QPointF p0, QPointF p1)
{
    const auto left = static_cast<qint64>(roundHalfEven(std::min(p0.x(), p1.x())));
    const auto right = static_cast<qint64>(roundHalfEven(std::max(p0.x(), p1.x())));
    const qint64 start = state.view.startSecs + left * 60;
    const qint64 end = state.view.startSecs + right * 60;
    const qint64 span = minuteDiff(start, end);
    if (span <= 0)
        return std::nullopt;
    auto top = static_cast<float>(std::trunc(std::max(p0.y(), p1.y())) + 1.0);
    auto bottom = static_cast<float>(std::trunc(std::min(p0.y(), p1.y())));
    if (top > state.fullTop) {
        top -= 1.0f;
        bottom -= 1.0f;
        if (bottom < state.fullBottom)
            bottom += 1.0f;
    }
    return GraphView{start, static_cast<int>(span), bottom, top};
}

GraphView zoomOut(const GraphState& state)
{
    const GraphView& v = state.view;
    const auto half = static_cast<qint64>(roundHalfEven(v.spanMinutes / 2.0));
    const qint64 start = std::max(v.startSecs - half * 60, state.fullStartSecs);
    const qint64 end = std::min(start + 2 * qint64(v.spanMinutes) * 60, state.fullEndSecs);
    const float d = v.top - v.bottom;
    const float bottom = std::max(std::floor(v.bottom - d / 2.0f), state.fullBottom);
    const float top = std::min(bottom + 2.0f * d, state.fullTop);
    return {start, static_cast<int>(minuteDiff(start, end)), bottom, top};
}

qint64 cursorTime(const GraphView& view, double x)
{
    return view.startSecs + static_cast<qint64>(roundHalfEven(x)) * 60;
}

// ---- Markers ---------------------------------------------------------------

int markerColourIndex(int k)
{
    return (k - 1) % kMarkerColourCount;
}

Rgb markerColour(int colourIndex)
{
    static constexpr Rgb palette[kMarkerColourCount] = {{0, 0, 0},     {0, 0, 128}, {0, 128, 0},
                                                        {0, 128, 128}, {128, 0, 0}, {128, 0, 128},
                                                        {128, 128, 0}};
    return palette[((colourIndex % kMarkerColourCount) + kMarkerColourCount) % kMarkerColourCount];
}

bool markerVisible(const GraphView& view, qint64 markerSecs)
{
    const qint64 end = view.startSecs + qint64(view.spanMinutes) * 60;
    return minuteDiff(view.startSecs, markerSecs) >= 0 && minuteDiff(markerSecs, end) >= 0;
}

bool addMarker(GraphState& state, const RecordPoint& point)
{
    if (state.markers.size() >= kMaxMarkers)
        return false;
    state.markers.push_back(point);
    state.markerColourIndex = (state.markerColourIndex + 1) % kMarkerColourCount;
    return true;
}

void clearMarkers(GraphState& state)
{
    state.markers.clear();
    state.markerColourIndex = 0;
}

QString markerEntry(int k, const QString& timeText, const QString& valueText)
{
    const QString n = QString::number(k);
    return u"Χρόνος μαρκαρισμένου σημείου "_s + n + u": "_s + timeText + u"\r\n"_s +
           u"Ένδειξη μαρκαρισμένου σημείου "_s + n + u": "_s + valueText + u"\r\n\r\n"_s;
}

} // namespace sx::graph
