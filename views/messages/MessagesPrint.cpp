#include "views/messages/MessagesPrint.h"

#include "model/messages/MessagesBuilder.h"
#include "reports/messages/MessagesReport.h"
#include "ui/AppContext.h"
#include "ui/DbCall.h"
#include "ui/DialogService.h"
#include "ui/PrintPreview.h"
#include "ui/QueryFailureReporter.h"

#include <QPrinter>

using namespace Qt::StringLiterals;

namespace sx {

void printMessages(AppContext& ctx, QWidget* parent, MessageKind kind,
                   const std::function<std::optional<QString>()>& rebuild, ReportOutput output)
{
    if (!ctx.db)
        return;
    DbError error;
    bool any = false;
    if (ctx.failures && !ctx.failures->ensureConnection(FailureOrigin::User))
        error = {kProviderErrorNumber, u"The connection to the database is lost."_s,
                 DbFailureCause::Unreachable};
    else
        any = dbCall(ctx, parent,
                     [&error, kind](Database& db) { return listHasMessages(db, kind, &error); });
    if (error.isError()) {
        if (ctx.failures)
            ctx.failures->reportAction(error, parent);
        return;
    }
    if (!any) {
        if (ctx.dialogs)
            ctx.dialogs->message(parent, DialogService::Icon::Exclamation, QString(),
                                 nothingToPrintText(kind), DialogService::Buttons::Ok);
        return;
    }
    const std::optional<QString> text = rebuild();
    if (!text)
        return;

    const QDateTime printedAt = ctx.clock ? ctx.clock->now() : QDateTime::currentDateTime();
    runReport(ctx, parent, QPageLayout::Portrait, output, [&](QPrinter& printer) {
        return drawMessagesReport(printer, kind, *text, printedAt);
    });
}

} // namespace sx
