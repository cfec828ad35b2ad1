#include "model/report/RecordsReportLayout.h"

#include "model/AppTitle.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sx {

namespace records_report {

QString titleText()
{
    return appTitle() + u" / ΑΡΧΕΙΟ ΚΑΤΑΓΡΑΦΩΝ"_s;
}

QString headingText(const RecordsReportInput& in)
{
    return u"ΠΛΗΡΟΦΟΡΙΕΣ ΑΡΧΕΙΟΥ ΚΑΤΑΓΡΑΦΩΝ. "_s + u"ΣΥΣΤΗΜΑ:"_s + in.unitText +
           u" , ΖΩΝΗ ΠΑΡΑΚΟΛΟΥΘΗΣΗΣ:"_s + in.zoneText + u" , ΜΗΝΑΣ/ΕΤΟΣ:"_s + in.monthText + u'/' +
           in.yearText;
}

QString pageLine(int page, int pages)
{
    return u"Σελίδα "_s + QString::number(page) + u'/' + QString::number(pages);
}

Layout layoutRows(int rowCount, double printableHeight, double lineHeight)
{
    Layout out;
    // Counted the way the lines advance, so the count agrees with the printing.
    const double bottom = printableHeight - kMarginMm;
    double y = kFirstLineMm;
    int rows = 0;
    while (lineHeight > 0 && y + lineHeight <= bottom) {
        ++rows;
        y += lineHeight;
    }
    out.rowsPerColumn = std::max(1, rows);
    // Fixed once the first column overflows; a report that never leaves it has one page.
    const int perPage = out.rowsPerColumn * kColumnsPerPage;
    out.pages = rowCount > out.rowsPerColumn ? (rowCount + perPage - 1) / perPage : 1;
    return out;
}

double columnTextLeft(int column, double printableWidth)
{
    return kMarginMm + column * (printableWidth - 2 * kMarginMm) / kColumnsPerPage + 2.0;
}

double columnTextRight(int column, double printableWidth)
{
    return kMarginMm + (column + 1) * (printableWidth - 2 * kMarginMm) / kColumnsPerPage - 2.0;
}

} // namespace records_report

} // namespace sx
