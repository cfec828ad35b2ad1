#include "views/events/EventsPrint.h"

#include "reports/PdfFileSwap.h"
#include "ui/AppContext.h"
#include "ui/ChoosePrinter.h"
#include "ui/PrintPreview.h"
#include "ui/WaitWindow.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QPointer>
#include <QPrinter>
#include <QThread>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

// The report into the PDF file the print dialog named, drawn on a thread of
// its own: the window is painted meanwhile but takes no input, and the wait
// window counts the pages.
bool drawPdfAside(const QPrinter& printer, const EventsReportInput& in, QWidget* owner)
{
    ReportProgress progress;
    bool ok = false;
    std::unique_ptr<QThread> worker(
        QThread::create([&ok, &in, &progress, target = PdfTarget(printer)] {
            ok = writeEventsPdf(target, in, &progress);
        }));
    const QPointer<QWidget> guard(owner);
    if (owner)
        owner->setEnabled(false);
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    {
        WaitWindow wait(u"Εκτύπωση συμβάντων."_s);
        if (owner)
            wait.move(owner->frameGeometry().center() - wait.rect().center());
        QTimer count;
        count.setInterval(250);
        QObject::connect(&count, &QTimer::timeout, &wait, [&wait, &progress] {
            if (const int pages = progress.pages; pages > 0)
                wait.setMessage(u"Εκτύπωση συμβάντων: σελίδα %1 από %2."_s.arg(progress.page.load())
                                    .arg(pages));
        });
        QEventLoop loop;
        QObject::connect(worker.get(), &QThread::finished, &loop, &QEventLoop::quit);
        worker->start();
        count.start();
        loop.exec();
        // The loop also ends when the application quits: the file is finished first.
        worker->wait();
    }
    QGuiApplication::restoreOverrideCursor();
    if (guard)
        guard->setEnabled(true);
    return ok;
}

} // namespace

void printEventsReport(AppContext& ctx, QWidget* parent, const EventsReportInput& in,
                       ReportOutput output)
{
    if (output == ReportOutput::Preview) {
        runReport(ctx, parent, QPageLayout::Portrait, output, [&](QPrinter& printer) {
            QGuiApplication::setOverrideCursor(Qt::WaitCursor);
            const bool ok = drawEventsReport(printer, in);
            QGuiApplication::restoreOverrideCursor();
            return ok;
        });
        return;
    }
    QPrinter printer(QPrinter::HighResolution);
    if (!chooseReportPrinter(ctx, parent, printer, QPageLayout::Portrait))
        return;
    // The window may be closed while a PDF is written.
    const QPointer<QWidget> owner(parent);
    bool ok = false;
    if (printer.outputFormat() == QPrinter::PdfFormat) {
        PdfFileSwap file(printer);
        ok = drawPdfAside(printer, in, parent) && file.commit();
    } else {
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        ok = drawEventsReport(printer, in);
        QGuiApplication::restoreOverrideCursor();
        if (!ok)
            printer.abort();
    }
    if (!ok)
        reportPrintFailed(ctx, owner);
}
} // namespace sx
