#include "reports/events/EventsReport.h"

#include "model/AppTitle.h"
#include "reports/PdfDirectWriter.h"
#include "reports/PrintRoutines.h"
#include "reports/ReportPainter.h"

#include <QHash>
#include <QPageLayout>
#include <QPaintEngine>
#include <QPdfWriter>
#include <QPrinter>

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

const QString kLineBreak = u"\r\n"_s;

void printPageHead(ReportPainter& painter, const QString& choices, int page, int pages)
{
    using namespace events_report;
    const double w = painter.pageWidth();
    const double h = painter.pageHeight();
    printBanner(painter, kMarginMm, kMarginMm, titleText());
    const double choicesTop = painter.currentY();
    printLinesAt(painter, choices, kMarginMm);
    const QString number = pageLine(page, pages);
    painter.setCurrentX(w - 20.0 - painter.textWidth(number));
    painter.setCurrentY(kPageLineTopMm);
    painter.print(number);
    painter.setCurrentY(choicesTop);
    painter.drawRect(kMarginMm, kFrameTopMm, w - kMarginMm, h - kMarginMm);
    const double middle = kMarginMm + (w - 2 * kMarginMm) / 2;
    painter.drawLine(middle, kFrameTopMm, middle, h - kMarginMm);
}

bool drawReport(ReportPainter& painter, const EventsReportInput& in, ReportProgress* progress)
{
    using namespace events_report;
    if (!painter.isActive())
        return false;
    const double w = painter.pageWidth();
    QString choices = in.choices;
    wrapToWidth(choices, w - 2 * kMarginMm, painter);

    // The counting pass. Descriptions come back all year (the same zone, fault
    // or delivery): each distinct one is wrapped and measured once.
    const double lineHeight = painter.textHeight();
    QHash<QString, int> known;
    QList<QStringList> wrapped;
    std::vector<int> wrappedOf;
    QList<double> heights;
    wrappedOf.reserve(size_t(std::max(in.rowCount, 0)));
    heights.reserve(in.rowCount);
    for (int row = 0; row < in.rowCount; ++row) {
        const QString description = in.descriptionText(row);
        auto k = known.constFind(description);
        if (k == known.constEnd()) {
            QString text = description;
            wrapToWidth(text, columnTextWidth(w), painter);
            k = known.insert(description, int(wrapped.size()));
            wrapped.append(text.split(kLineBreak));
        }
        wrappedOf.push_back(*k);
        // The date, the description's lines and two line breaks.
        heights.append(double(wrapped.at(*k).size() + 3) * lineHeight);
    }
    const Layout layout = layoutEntries(heights, painter.pageHeight());
    if (progress)
        progress->pages = layout.pages;

    int page = -1;
    for (int i = 0; i < in.rowCount; ++i) {
        const Placement& at = layout.entries.at(i);
        if (at.page != page) {
            if (page >= 0 && !painter.newPage())
                return false;
            page = at.page;
            if (progress)
                progress->page = page + 1;
            printPageHead(painter, choices, page + 1, layout.pages);
        }
        const double x = columnTextLeft(at.column, w);
        painter.setCurrentY(at.y);
        painter.setCurrentX(x);
        // Dates differ from entry to entry, but their days and their times recur.
        const QString date = in.dateText(i);
        const qsizetype time = date.lastIndexOf(u' ') + 1;
        painter.printRecurring(date.left(time), date.mid(time));
        for (const QString& line : wrapped.at(wrappedOf[size_t(i)])) {
            painter.setCurrentX(x);
            painter.printRecurring(line);
        }
    }
    if (in.rowCount <= 0)
        printPageHead(painter, choices, 1, 1);
    return painter.end();
}

// A year of events runs to thousands of pages: their text is written
// straight to the file. A text only Qt can set (a mark, another script) sends
// the whole report through Qt's PDF engine instead.
} // namespace

PdfTarget::PdfTarget(const QPrinter& printer)
    : file(printer.outputFileName()), layout(printer.pageLayout()),
      resolution(printer.resolution()), title(printer.docName()), creator(printer.creator()),
      version(printer.pdfVersion())
{
}

void PdfTarget::setUp(QPdfWriter& writer) const
{
    writer.setPdfVersion(version);
    writer.setResolution(resolution);
    (void)writer.setPageLayout(layout);
    writer.setTitle(title);
    writer.setCreator(creator);
}

bool writeEventsPdf(const PdfTarget& target, const EventsReportInput& in, ReportProgress* progress)
{
    {
        // Lends the page layout and the metrics; never painted on, it writes nothing.
        QPdfWriter measure(QString{});
        target.setUp(measure);
        PdfDirectWriter pdf(target.file, target.layout);
        pdf.setTitle(target.title);
        pdf.setCreator(target.creator);
        ReportPainter painter(measure, pdf);
        if (drawReport(painter, in, progress))
            return true;
        if (!pdf.refusedText())
            return false;
    }
    if (progress)
        progress->page = 0;
    QPdfWriter writer(target.file);
    target.setUp(writer);
    ReportPainter painter(writer);
    return drawReport(painter, in, progress);
}

bool drawEventsReport(QPagedPaintDevice& device, const EventsReportInput& in,
                      ReportProgress* progress)
{
    if (const auto* printer = dynamic_cast<const QPrinter*>(&device);
        printer && printer->outputFormat() == QPrinter::PdfFormat &&
        !printer->outputFileName().isEmpty() && printer->paintEngine() &&
        printer->paintEngine()->type() == QPaintEngine::Pdf)
        return writeEventsPdf(PdfTarget(*printer), in, progress);
    ReportPainter painter(device);
    return drawReport(painter, in, progress);
}

} // namespace sx
