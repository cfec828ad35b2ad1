#include "reports/ReportPdf.h"

#include "reports/PdfFileSwap.h"

#include <QPageSize>
#include <QPrinter>

namespace sx {

void setUpA4(QPrinter& printer, QPageLayout::Orientation orientation)
{
    (void)printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setPageOrientation(orientation);
}

bool writeReportPdf(const QString& path, QPageLayout::Orientation orientation,
                    const ReportDrawing& draw)
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);
    setUpA4(printer, orientation);
    PdfFileSwap file(printer);
    return draw(printer) && file.commit();
}

} // namespace sx
