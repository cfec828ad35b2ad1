#include "ui/ChoosePrinter.h"

#include "ui/AppContext.h"
#include "ui/DialogService.h"

#include <QPageSize>
#include <QPrinter>

using namespace Qt::StringLiterals;

namespace sx {

bool choosePrinter(AppContext& ctx, QWidget* owner, QPrinter& printer)
{
    // Reports are laid out on A4; the dialog starts from that and the user's
    // choices (printer, copies, orientation, duplex, ...) are kept as made.
    printer.setPageSize(QPageSize(QPageSize::A4));
    return ctx.dialogs && ctx.dialogs->printDialog(owner, printer);
}

bool chooseReportPrinter(AppContext& ctx, QWidget* owner, QPrinter& printer,
                         QPageLayout::Orientation orientation)
{
    printer.setPageOrientation(orientation);
    if (!choosePrinter(ctx, owner, printer))
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
