#include "reports/messages/MessagesReport.h"

#include "model/AppTitle.h"
#include "model/Formatting.h"
#include "reports/PrintRoutines.h"
#include "reports/ReportPainter.h"

#include <QPageLayout>
#include <QPageSize>
#include <QPrinter>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

constexpr double kLeftMm = 10.0;
constexpr double kTitleTopMm = 10.0;
// Where the text continues on a new page: level with the title of the first.
constexpr double kContinueTopMm = 10.0;
// The right edge of the banner frame; wrapped lines stay inside it.
constexpr double kRightMarginMm = 10.0;

} // namespace

QStringList messageReportLines(const QString& text, double maxWidthMm, const ReportPainter& painter)
{
    QStringList out;
    const QStringList lines = text.split(u"\r\n"_s);
    out.reserve(lines.size() + 1);
    for (const QString& line : lines) {
        if (painter.textWidth(line) <= maxWidthMm) {
            out.append(line);
            continue;
        }
        QString wrapped = line;
        wrapToWidth(wrapped, maxWidthMm, painter);
        out.append(wrapped.split(u"\r\n"_s));
    }
    // The line break between the text and the end banner.
    out.append(QString());
    return out;
}

bool drawMessagesReport(ReportPainter& painter, MessageKind kind, const QString& text,
                        const QDateTime& printedAt)
{
    printBanner(painter, kLeftMm, kTitleTopMm, messagesReportTitle(kind));
    painter.setCurrentX(kLeftMm);
    painter.print(greekDateTime(printedAt, true));
    painter.print(QString());
    painter.print(QString());

    const double width = painter.pageWidth() - kLeftMm - kRightMarginMm;
    const MessagesPageLayout layout =
        placeMessageLines(messageReportLines(text, width, painter), painter.currentY(),
                          kContinueTopMm, painter.textHeight(), painter.pageHeight());
    int page = 0;
    const auto turnTo = [&](int target) {
        for (; page < target; ++page) {
            if (!painter.newPage())
                return false;
        }
        return true;
    };
    for (const PrintedLine& line : layout.lines) {
        if (!turnTo(line.page))
            return false;
        painter.setCurrentX(kLeftMm);
        painter.setCurrentY(line.y);
        painter.print(line.text);
    }
    if (!turnTo(layout.endPage))
        return false;
    printBanner(painter, kLeftMm, layout.endY, messagesReportEnd(kind));
    return true;
}

bool drawMessagesReport(QPrinter& printer, MessageKind kind, const QString& text,
                        const QDateTime& printedAt)
{
    ReportPainter painter(printer);
    return painter.isActive() && drawMessagesReport(painter, kind, text, printedAt) &&
           painter.end();
}

} // namespace sx
