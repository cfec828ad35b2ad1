#include "ui/PrintPreview.h"

#include "reports/PdfFileSwap.h"
#include "reports/ReportPdf.h"
#include "ui/AppContext.h"
#include "ui/ChoosePrinter.h"
#include "ui/DialogService.h"

#include <QPrinter>

using namespace Qt::StringLiterals;

namespace sx {

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
    // A PDF chosen last is left out: the preview's print button asks for its own file.
    useLastPrinter(ctx, printer, false);
    setUpA4(printer, orientation);
    bool failed = false;
    ctx.dialogs->printPreview(owner, printer, [&](QPrinter& target) {
        // Printing from the preview reaches here with the printer the user chose.
        if (&target != &printer)
            setUpA4(target, orientation);
        failed = !draw(target) || failed;
    });
    if (printer.outputFormat() == QPrinter::NativeFormat)
        keepPrinter(ctx, printer);
    if (failed)
        reportPrintFailed(ctx, owner);
}

} // namespace sx
