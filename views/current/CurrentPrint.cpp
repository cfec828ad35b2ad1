#include "views/current/CurrentPrint.h"

#include "reports/PdfFileSwap.h"
#include "reports/current/CurrentReport.h"
#include "ui/AppContext.h"
#include "ui/ChoosePrinter.h"
#include "ui/DbCall.h"
#include "ui/PrintPreview.h"
#include "ui/QueryFailureReporter.h"

#include <QPrinter>

using namespace Qt::StringLiterals;

namespace sx {

DbError readCurrentReport(AppContext& ctx, const QString& serial, report::ReportData& data)
{
    data.printedAt = ctx.clock ? ctx.clock->now() : QDateTime::currentDateTime();
    return dbCall(ctx, nullptr, [&](Database& db) { return readCurrentReport(db, serial, data); });
}

void printCurrentCondition(AppContext& ctx, QWidget* parent, const QString& serial,
                           ReportOutput output)
{
    if (!ctx.db)
        return;
    report::ReportData data;
    const auto read = [&] {
        // A connection that cannot be opened again is not read: a file gone
        // from under it would still give its old pages.
        const DbError e =
            ctx.failures && !ctx.failures->ensureConnection(FailureOrigin::User)
                ? DbError{kProviderErrorNumber, u"The connection to the database is lost."_s,
                          DbFailureCause::Unreachable}
                : readCurrentReport(ctx, serial, data);
        if (e.isError() && ctx.failures)
            ctx.failures->reportAction(e, parent);
        return !e.isError();
    };
    if (output == ReportOutput::Preview) {
        // Read once: the preview draws its pages again whenever it is resized.
        if (read())
            runReport(ctx, parent, QPageLayout::Portrait, output,
                      [&](QPrinter& printer) { return drawCurrentReport(printer, data); });
        return;
    }
    QPrinter printer(QPrinter::HighResolution);
    if (!chooseReportPrinter(ctx, parent, printer, QPageLayout::Portrait) || !read())
        return;
    PdfFileSwap file(printer);
    if (!drawCurrentReport(printer, data) || !file.commit()) {
        printer.abort();
        reportPrintFailed(ctx, parent);
    }
}

} // namespace sx
