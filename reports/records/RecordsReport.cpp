#include "reports/records/RecordsReport.h"

#include "model/AppTitle.h"
#include "reports/PrintRoutines.h"
#include "reports/ReportPainter.h"

#include <QPageLayout>
#include <QPageSize>
#include <QPrinter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

void printPageFrame(ReportPainter& painter, const QString& heading)
{
    using namespace records_report;
    const double w = painter.pageWidth();
    const double h = painter.pageHeight();
    printBanner(painter, kMarginMm, kMarginMm, titleText());
    printLinesAt(painter, heading, kMarginMm);
    painter.drawRect(kMarginMm, kTableTopMm, w - kMarginMm, h - kMarginMm);
    for (int k = 1; k < kColumnsPerPage; ++k) {
        const double x = kMarginMm + k * (w - 2 * kMarginMm) / kColumnsPerPage;
        painter.drawLine(x, kTableTopMm, x, h - kMarginMm);
    }
}

void printPageLine(ReportPainter& painter, int page, int pages)
{
    const QString text = records_report::pageLine(page, pages);
    painter.setCurrentX(painter.pageWidth() - 20.0 - painter.textWidth(text));
    painter.setCurrentY(records_report::kPageLineTopMm);
    painter.print(text);
}

} // namespace

bool drawRecordsReport(QPrinter& printer, const RecordsReportInput& in)
{
    using namespace records_report;
    ReportPainter painter(printer);
    if (!painter.isActive())
        return false;
    const double w = painter.pageWidth();
    const double lineHeight = painter.textHeight();
    QString heading = headingText(in);
    wrapToWidth(heading, w - 2 * kMarginMm, painter);
    const Layout layout = layoutRows(in.rowCount, painter.pageHeight(), lineHeight);

    int page = 0;
    printPageFrame(painter, heading);
    for (int row = 0; row < in.rowCount; ++row) {
        if (layout.pageOf(row) != page) {
            printPageLine(painter, page + 1, layout.pages);
            if (!painter.newPage())
                return false;
            ++page;
            printPageFrame(painter, heading);
        }
        const int column = layout.columnOf(row);
        const double y = kFirstLineMm + layout.lineOf(row) * lineHeight;
        painter.setCurrentX(columnTextLeft(column, w));
        painter.setCurrentY(y);
        painter.print(in.dateText(row));
        const QString reading = in.readingText(row);
        painter.setCurrentX(columnTextRight(column, w) - painter.textWidth(reading));
        painter.setCurrentY(y);
        painter.print(reading);
    }
    printPageLine(painter, page + 1, layout.pages);
    return painter.end();
}

} // namespace sx
