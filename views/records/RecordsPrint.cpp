#include "views/records/RecordsPrint.h"

#include "model/SqlDateTime.h"
#include "reports/summary/SummaryReport.h"
#include "ui/AppContext.h"
#include "ui/DialogService.h"
#include "ui/PrintPreview.h"
#include "ui/QueryFailureReporter.h"
#include "ui/WaitWindow.h"

#include <QGuiApplication>
#include <QPointer>
#include <QPrinter>

#include <memory>

using namespace Qt::StringLiterals;

namespace sx {

void printRecordsReport(AppContext& ctx, QWidget* parent, const RecordsReportInput& in,
                        ReportOutput output)
{
    runReport(ctx, parent, QPageLayout::Portrait, output, [&](QPrinter& printer) {
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        const bool ok = drawRecordsReport(printer, in);
        QGuiApplication::restoreOverrideCursor();
        return ok;
    });
}

void printSummary(AppContext& ctx, QWidget* parent, const QString& serial, int zoneNumber,
                  const summary::SummaryPeriod& period, ReportOutput output)
{
    if (!ctx.db)
        return;
    const QPointer<QWidget> owner(parent);
    QWidget* window = parent ? parent->window() : nullptr;
    if (window)
        window->setEnabled(false);
    auto wait = std::make_unique<WaitWindow>(u"Ανάγνωση καταγραφών."_s);
    if (window)
        wait->move(window->frameGeometry().center() - wait->rect().center());

    summary::SummaryLoad load;
    if (ctx.failures && !ctx.failures->ensureConnection(FailureOrigin::User)) {
        load.problem = summary::LoadProblem::Database;
        load.error = {kProviderErrorNumber, u"The connection to the database is lost."_s,
                      DbFailureCause::Unreachable};
    } else {
        load = summary::loadSummaryAside(
            ctx.db->settings(), serial, zoneNumber, period,
            fromQDateTime(ctx.clock ? ctx.clock->now() : QDateTime::currentDateTime()));
    }
    wait.reset();
    if (!owner)
        return;
    if (window)
        window->setEnabled(true);
    if (load.problem == summary::LoadProblem::Database) {
        if (ctx.failures)
            ctx.failures->reportAction(load.error, parent);
        return;
    }
    if (ctx.failures)
        ctx.failures->clear();
    if (load.problem != summary::LoadProblem::None) {
        if (ctx.dialogs)
            ctx.dialogs->message(parent, DialogService::Icon::Exclamation, appTitle(),
                                 u"Δεν υπάρχουν καταγραφές της ζώνης για την περίοδο που "
                                 u"επιλέξατε."_s);
        return;
    }
    runReport(ctx, parent, QPageLayout::Portrait, output, [&](QPrinter& printer) {
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        const bool ok = drawSummaryReport(printer, load.input);
        QGuiApplication::restoreOverrideCursor();
        return ok;
    });
}

} // namespace sx
