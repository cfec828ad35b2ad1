#pragma once

#include "reports/graph/GraphPainting.h"

#include <QList>
#include <QRect>
#include <QSizeF>
#include <QString>

#include <vector>

class QPainter;
class QPrinter;

namespace sx {

namespace graph {

// The printed chart: the three pictures where the window shows them (any
// common origin) and the details block below the time labels.
struct ChartPrintInput {
    ChartData data;
    std::vector<RecordPoint> markers; // marker k is markers[k - 1]
    QRect unitRect;
    QRect chartRect;
    QRect timeRect;
    QList<DetailLine> details;
};

// Paints the chart page into a printable area of `printable` device units,
// scaled to fit; returns the scale used.
double paintChartPage(QPainter& p, QSizeF printable, const ChartPrintInput& in);

// The chart page on a printer set up for A4 landscape; false when the page could not be written.
[[nodiscard]] bool drawChartPage(QPrinter& printer, const ChartPrintInput& in);

namespace marked_points {

inline constexpr double kMarginMm = 10.0;
inline constexpr double kPageLineTopMm = 10.5;

[[nodiscard]] QString titleText();
[[nodiscard]] QString headingText(const QString& unitText, const QString& zoneText);
[[nodiscard]] QString timeLine(int k, const QString& timeText);
[[nodiscard]] QString valueLine(int k, const QString& valueText);
// "Σελίδα n/N".
[[nodiscard]] QString pageLine(int page, int pages);

struct Placement {
    int page = 0;
    double y = 0.0;
};
struct Plan {
    std::vector<Placement> entries;
    int pages = 1;
};
// Entries of entryLines[i] lines each, one empty line between them, from
// firstY down to bottomY on every page; an entry that does not fit goes to
// the next page whole (alone on a page, it is printed anyway).
[[nodiscard]] Plan layoutEntries(const std::vector<int>& entryLines, double firstY,
                                 double lineHeight, double bottomY);

} // namespace marked_points

struct MarkedPointsInput {
    QString unitText;
    QString zoneText;
    std::vector<QString> timeTexts;  // marker k's time is timeTexts[k - 1]
    std::vector<QString> valueTexts; // value and unit
};

// The list of marked points on a printer set up for A4 portrait; false when a
// page could not be begun or finished.
[[nodiscard]] bool drawMarkedPoints(QPrinter& printer, const MarkedPointsInput& in);

} // namespace graph
} // namespace sx
