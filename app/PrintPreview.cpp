#include "app/PrintPreview.h"

#include "app/AppContext.h"
#include "app/ChoosePrinter.h"
#include "app/DialogService.h"
#include "app/PdfFileSwap.h"

#include <QPageSize>
#include <QPrinter>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

void setUpA4(QPrinter& printer, QPageLayout::Orientation orientation)
{
    (void)printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setPageOrientation(orientation);
}

} // namespace

void runReport(AppContext& ctx, QWidget* owner, QPageLayout::Orientation orientation,
               ReportOutput output, const ReportDrawing& draw)
{
    QPrinter printer(QPrinter::HighResolution);
    if (output == ReportOutput::Print) {
        if (!chooseReportPrinter(ctx, owner, printer, orientation))
            return;
        PdfFileSwap file(printer);
        if (!draw(printer) || !file.commit()) {
            printer.abort();
            reportPrintFailed(ctx, owner);
        }
        return;
    }
    if (!ctx.dialogs)
        return;
    setUpA4(printer, orientation);
    bool failed = false;
    ctx.dialogs->printPreview(owner, printer, [&](QPrinter& target) {
        // Printing from the preview reaches here with the printer the user chose.
        if (&target != &printer)
            setUpA4(target, orientation);
        failed = !draw(target) || failed;
    });
    if (failed)
        reportPrintFailed(ctx, owner);
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
