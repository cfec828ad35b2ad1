#pragma once

#include "model/report/MarkedPointsLayout.h"
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
