#include "ui/ChoosePrinter.h"

#include "ui/AppContext.h"
#include "ui/DialogService.h"

#include <QPageSize>
#include <QPrinter>
#include <QPrinterInfo>

using namespace Qt::StringLiterals;

namespace sx {

void useLastPrinter(const AppContext& ctx, QPrinter& printer, bool withFile)
{
    if (!ctx.printer)
        return;
    const PrinterChoice& c = *ctx.printer;
    if (!c.pdfFile.isEmpty()) {
        if (!withFile)
            return;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(c.pdfFile);
    } else if (!c.name.isEmpty() && !QPrinterInfo::printerInfo(c.name).isNull()) {
        printer.setOutputFormat(QPrinter::NativeFormat);
        printer.setPrinterName(c.name);
    }
    printer.setCopyCount(c.copies);
    printer.setCollateCopies(c.collate);
    printer.setDuplex(c.duplex);
    printer.setColorMode(c.colorMode);
    printer.setPaperSource(c.paperSource);
}

void keepPrinter(AppContext& ctx, const QPrinter& printer)
{
    const bool pdf = printer.outputFormat() == QPrinter::PdfFormat;
    ctx.printer = std::make_shared<PrinterChoice>(PrinterChoice{
        pdf ? QString() : printer.printerName(), pdf ? printer.outputFileName() : QString(),
        printer.copyCount(), printer.collateCopies(), printer.duplex(), printer.colorMode(),
        printer.paperSource()});
}

namespace {

bool runDialog(AppContext& ctx, QWidget* owner, QPrinter& printer)
{
    // Reports are laid out on A4; the dialog starts from that and the user's
    // choices (printer, copies, orientation, duplex, ...) are kept as made.
    printer.setPageSize(QPageSize(QPageSize::A4));
    if (!ctx.dialogs || !ctx.dialogs->printDialog(owner, printer))
        return false;
    keepPrinter(ctx, printer);
    return true;
}

} // namespace

bool choosePrinter(AppContext& ctx, QWidget* owner, QPrinter& printer)
{
    useLastPrinter(ctx, printer);
    return runDialog(ctx, owner, printer);
}

bool chooseReportPrinter(AppContext& ctx, QWidget* owner, QPrinter& printer,
                         QPageLayout::Orientation orientation)
{
    // After the last printer, which may bring an orientation of its own.
    useLastPrinter(ctx, printer);
    printer.setPageOrientation(orientation);
    if (!runDialog(ctx, owner, printer))
        return false;
    (void)printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setPageOrientation(orientation);
    return true;
}

void reportPrintFailed(AppContext& ctx, QWidget* owner)
{
    if (ctx.dialogs)
        ctx.dialogs->message(owner, DialogService::Icon::Critical, appTitle(),
                             u"Η εκτύπωση της αναφοράς δεν ήταν δυνατή."_s);
}

} // namespace sx
