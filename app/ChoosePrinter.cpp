#include "app/ChoosePrinter.h"

#include "app/AppContext.h"
#include "app/DialogService.h"

#include <QPageLayout>
#include <QPageSize>
#include <QPrinter>

namespace sx {

bool choosePrinter(AppContext& ctx, QWidget* owner, QPrinter& printer)
{
    // Reports are laid out on A4; the dialog starts from that and the user's
    // choices (printer, copies, orientation, duplex, ...) are kept as made.
    printer.setPageSize(QPageSize(QPageSize::A4));
    return ctx.dialogs && ctx.dialogs->printDialog(owner, printer);
}

} // namespace sx
