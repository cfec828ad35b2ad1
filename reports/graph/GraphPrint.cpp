#include "reports/graph/GraphPrint.h"

#include "model/AppTitle.h"
#include "reports/PrintRoutines.h"
#include "reports/ReportPainter.h"

#include <QPageLayout>
#include <QPainter>
#include <QPrinter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sx::graph {

namespace {

// Runs `paint` with the painter moved to `rect` (in layout units) and clipped to it.
template <typename F> void inPicture(QPainter& p, const QRect& rect, F&& paint)
{
    p.save();
    p.translate(rect.topLeft());
    p.setClipRect(QRect(QPoint(0, 0), rect.size()));
    paint();
    p.restore();
}

} // namespace

double paintChartPage(QPainter& p, QSizeF printable, const ChartPrintInput& in)
{
    const QRect pictures = in.unitRect | in.chartRect | in.timeRect;
    const int left = std::min(in.unitRect.left(), in.timeRect.left());
    const int right = std::max(in.timeRect.right(), in.chartRect.right());
    const double width = right - left + 1;
    const double detailsHeight = paintDetails(nullptr, width, in.details);
    const QRect details(left, pictures.bottom() + 1, static_cast<int>(width),
                        static_cast<int>(std::ceil(detailsHeight)));
    const QRect layout(QPoint(left, in.unitRect.top()), details.bottomRight());
    const double scale =
        std::min(printable.width() / layout.width(), printable.height() / layout.height());

    p.save();
    // Every picture keeps its place relative to the top left of the layout,
    // which is the top left of the printable area.
    p.scale(scale, scale);
    p.translate(-layout.topLeft());
    inPicture(p, in.unitRect, [&] { paintValueLabels(p, in.unitRect.size(), in.data.view); });
    inPicture(p, in.timeRect,
              [&] { paintTimeLabels(p, in.timeRect.size(), in.chartRect.width(), in.data.view); });
    inPicture(p, in.chartRect, [&] {
        paintChart(p, in.chartRect.size(), in.data);
        for (size_t i = 0; i < in.markers.size(); ++i)
            paintMarker(p, in.chartRect.size(), in.data.view, static_cast<int>(i) + 1,
                        in.markers[i]);
    });
    inPicture(p, details, [&] { paintDetails(&p, width, in.details); });
    p.restore();
    return scale;
}

bool drawChartPage(QPrinter& printer, const ChartPrintInput& in)
{
    QPainter painter(&printer);
    if (!painter.isActive())
        return false;
    const QRectF area = printer.pageLayout().paintRectPixels(printer.resolution());
    paintChartPage(painter, area.size(), in);
    return painter.end();
}

bool drawMarkedPoints(QPrinter& printer, const MarkedPointsInput& in)
{
    using namespace marked_points;
    ReportPainter painter(printer);
    if (!painter.isActive())
        return false;
    const double w = painter.pageWidth();
    const double lineHeight = painter.textHeight();
    const double textWidth = w - 2 * kMarginMm;

    // The counting pass: every text wrapped and every entry placed before a
    // line is printed, so each page can carry the number of pages.
    QString heading = headingText(in.unitText, in.zoneText);
    const int headingLines = wrapToWidth(heading, textWidth, painter);
    const double bannerBottom = kMarginMm + 2 * lineHeight + 1.0;
    const double firstY = bannerBottom + (headingLines + 1) * lineHeight;
    std::vector<QString> texts;
    std::vector<int> entryLines;
    const size_t count = std::min(in.timeTexts.size(), in.valueTexts.size());
    for (size_t i = 0; i < count; ++i) {
        const int k = static_cast<int>(i) + 1;
        QString timeText = timeLine(k, in.timeTexts[i]);
        QString valueText = valueLine(k, in.valueTexts[i]);
        const int lines =
            wrapToWidth(timeText, textWidth, painter) + wrapToWidth(valueText, textWidth, painter);
        texts.push_back(timeText + u"\r\n"_s + valueText);
        entryLines.push_back(lines);
    }
    const Plan plan =
        layoutEntries(entryLines, firstY, lineHeight, painter.pageHeight() - kMarginMm);

    const auto pageTop = [&](int page) {
        printBanner(painter, kMarginMm, kMarginMm, titleText());
        painter.setCurrentY(bannerBottom);
        printLinesAt(painter, heading, kMarginMm);
        const QString number = pageLine(page + 1, plan.pages);
        painter.setCurrentX(w - 20.0 - painter.textWidth(number));
        painter.setCurrentY(kPageLineTopMm);
        painter.print(number);
    };
    int page = 0;
    pageTop(page);
    for (size_t i = 0; i < texts.size(); ++i) {
        const Placement& at = plan.entries[i];
        if (at.page != page) {
            if (!painter.newPage())
                return false;
            page = at.page;
            pageTop(page);
        }
        painter.setCurrentY(at.y);
        printLinesAt(painter, texts[i], kMarginMm);
    }
    return painter.end();
}

} // namespace sx::graph
