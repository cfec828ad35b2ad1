#pragma once

#include "model/LoadedRecords.h"
#include "model/graph/GraphState.h"

#include <QColor>
#include <QFont>
#include <QList>
#include <QSize>
#include <QString>

#include <optional>
#include <vector>

class QPainter;

namespace sx::graph {

// The labels' font cell and the margins it needs: half a label around each end.
inline constexpr int kLabelFontHeight = 18;
inline constexpr int kLabelHalfPx = kLabelFontHeight / 2;

// What the chart picture shows for one view.
struct ChartData {
    const std::vector<RecordPoint>* records = nullptr; // grid order, newest first
    int first = 0;
    int last = 0;
    GraphView view;
    std::optional<double> maxLimit;
    std::optional<double> minLimit;
};

// Everything is drawn in the painter's own units with widthPx x heightPx as
// the picture's size, so the same code paints the screen and the page.

// GraphPict without markers: white ground, value ticks, limit lines, time ticks,
// frame and the data line, one pixel column at a time.
void paintChart(QPainter& p, QSize size, const ChartData& data);
// Marker k's line and numbered tag, when its minute lies in the view.
void paintMarker(QPainter& p, QSize size, const GraphView& view, int k, const RecordPoint& marker);
// Unitpic: each major value step right-aligned and centred on its value.
void paintValueLabels(QPainter& p, QSize size, const GraphView& view);
// Timepic: each time step reading upwards from the bottom, centred on its minute.
// The picture reaches half a label beyond the chart on either side.
void paintTimeLabels(QPainter& p, QSize size, int chartWidthPx, const GraphView& view);

struct DetailLine {
    QString text;
    QColor colour;
};
// The printed chart's details block; returns the height it takes at `width`.
double paintDetails(QPainter* p, double width, const QList<DetailLine>& lines);

// A value in its shortest form (at most 7 significant digits, the locale's
// decimal mark, no grouping): the labels and the readout.
[[nodiscard]] QString plainNumber(double v);
// A limit text ("####0.0" in the locale) read back; nothing when empty.
[[nodiscard]] std::optional<double> limitValue(const QString& text);
// The record time as the readout and the time labels write it.
[[nodiscard]] QString recordTimeText(qint64 secs);

// The label font sized in the painter's units (never in points).
[[nodiscard]] QFont pixelFont(double pixels, bool bold);
// The widest time label, for the height of Timepic.
[[nodiscard]] double timeLabelLength();
// The width a value label takes, for the width of Unitpic.
[[nodiscard]] double valueLabelWidth(const QString& text);
// The width the value labels of any view within bottom..top may take.
[[nodiscard]] double valueLabelsWidth(double bottom, double top);

} // namespace sx::graph
