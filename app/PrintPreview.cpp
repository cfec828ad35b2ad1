#include "app/PrintPreview.h"

#include "app/AppContext.h"
#include "app/ChoosePrinter.h"
#include "app/DialogService.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPageSize>
#include <QPrinter>
#include <QTemporaryFile>

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
        if (!draw(printer)) {
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
    const QFileInfo target(path);
    // A name of our own beside the target, renamed over it once complete.
    QTemporaryFile part(target.absoluteDir().filePath(target.fileName() + u".XXXXXX"_s));
    if (!part.open())
        return false;
    part.close();
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(part.fileName());
    setUpA4(printer, orientation);
    if (!draw(printer))
        return false;
    if (QFileInfo(part.fileName()).size() == 0)
        return false;
    if (target.exists() && !QFile::remove(path))
        return false;
    if (!QFile::rename(part.fileName(), path))
        return false;
    part.setAutoRemove(false);
    return true;
}

} // namespace sx
