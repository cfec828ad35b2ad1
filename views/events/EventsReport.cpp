#include "views/events/EventsReport.h"

#include "app/AppContext.h"
#include "app/ChoosePrinter.h"
#include "app/PrintPreview.h"
#include "model/print/PrintRoutines.h"
#include "model/print/ReportPainter.h"

#include <QCursor>
#include <QGuiApplication>
#include <QPageLayout>
#include <QPrinter>

using namespace Qt::StringLiterals;

namespace sx {

namespace events_report {

QString titleText()
{
    return appTitle() + u" / ΑΡΧΕΙΟ ΣΥΜΒΑΝΤΩΝ"_s;
}

QString choicesLine(const Choices& c)
{
    QString out = u"ΠΛΗΡΟΦΟΡΙΕΣ ΑΡΧΕΙΟΥ ΣΥΜΒΑΝΤΩΝ. "_s + u"ΣΥΣΤΗΜΑ:"_s + c.unit;
    if (c.kindApplies) {
        static const QString kinds[] = {u"ΣΥΝΑΓΕΡΜΟΣ"_s, u"ΑΠΟΚΑΤΑΣΤΑΣΗ"_s, u"ΟΛΑ"_s};
        out += u" , ΠΡΟΕΛΕΥΣΗ/ΤΥΠΟΣ ΣΥΜΒΑΝΤΩΝ:"_s + c.source + u'/' +
               kinds[c.kind >= 0 && c.kind <= 2 ? c.kind : 2];
    } else {
        out += u" , ΠΡΟΕΛΕΥΣΗ ΣΥΜΒΑΝΤΩΝ:"_s + c.source;
    }
    out += u" , ΜΗΝΑΣ/ΕΤΟΣ:"_s + c.month + u'/' + c.year;
    out += c.newOnly ? u" , ΝΕΑ ΣΥΜΒΑΝΤΑ ΤΗΣ ΧΡΟΝΙΚΗΣ ΠΕΡΙΟΔΟΥ"_s
                     : u" , ΟΛΑ ΤΑ ΣΥΜΒΑΝΤΑ ΤΗΣ ΧΡΟΝΙΚΗΣ ΠΕΡΙΟΔΟΥ"_s;
    return out;
}

QString pageLine(int page, int pages)
{
    return u"Σελίδα "_s + QString::number(page) + u'/' + QString::number(pages);
}

QString entryText(const QString& date, const QString& wrappedDescription)
{
    return date + u"\r\n"_s + wrappedDescription + u"\r\n\r\n"_s;
}

Layout layoutEntries(const QList<double>& heights, double pageHeight)
{
    Layout out;
    out.entries.reserve(heights.size());
    const double bottom = pageHeight - kMarginMm;
    Placement at;
    for (const double h : heights) {
        // A column that is still empty keeps even an entry taller than itself.
        if (at.y > kFirstLineMm && at.y + h > bottom) {
            at.y = kFirstLineMm;
            if (at.column == 0) {
                at.column = 1;
            } else {
                at.column = 0;
                ++at.page;
            }
        }
        out.entries.append(at);
        at.y += h;
    }
    out.pages = at.page + 1;
    return out;
}

double columnTextLeft(int column, double pageWidth)
{
    return kMarginMm + column * (pageWidth - 2 * kMarginMm) / 2 + 2.0;
}

double columnTextWidth(double pageWidth)
{
    return (pageWidth - 2 * kMarginMm) / 2 - 4.0;
}

} // namespace events_report

namespace {

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

} // namespace

bool drawEventsReport(QPrinter& printer, const EventsReportInput& in)
{
    using namespace events_report;
    ReportPainter painter(printer);
    if (!painter.isActive())
        return false;
    const double w = painter.pageWidth();
    QString choices = in.choices;
    wrapToWidth(choices, w - 2 * kMarginMm, painter);

    // The counting pass: every entry wrapped and measured once, so the pages
    // are known before the first page line is printed.
    const double lineHeight = painter.textHeight();
    QStringList entries;
    QList<double> heights;
    entries.reserve(in.rowCount);
    heights.reserve(in.rowCount);
    for (int row = 0; row < in.rowCount; ++row) {
        QString description = in.descriptionText(row);
        wrapToWidth(description, columnTextWidth(w), painter);
        const QString entry = entryText(in.dateText(row), description);
        heights.append(double(entry.count(u"\r\n"_s) + 1) * lineHeight);
        entries.append(entry);
    }
    const Layout layout = layoutEntries(heights, painter.pageHeight());

    int page = -1;
    for (int i = 0; i < entries.size(); ++i) {
        const Placement& at = layout.entries.at(i);
        if (at.page != page) {
            if (page >= 0 && !painter.newPage())
                return false;
            page = at.page;
            printPageHead(painter, choices, page + 1, layout.pages);
        }
        painter.setCurrentY(at.y);
        printLinesAt(painter, entries.at(i), columnTextLeft(at.column, w));
    }
    if (entries.isEmpty())
        printPageHead(painter, choices, 1, 1);
    return painter.end();
}

void printEventsReport(AppContext& ctx, QWidget* parent, const EventsReportInput& in,
                       ReportOutput output)
{
    runReport(ctx, parent, QPageLayout::Portrait, output, [&](QPrinter& printer) {
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        const bool ok = drawEventsReport(printer, in);
        QGuiApplication::restoreOverrideCursor();
        return ok;
    });
}

} // namespace sx
