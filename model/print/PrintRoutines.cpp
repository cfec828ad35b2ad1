#include "model/print/PrintRoutines.h"

#include "model/print/ReportPainter.h"

namespace sx {

namespace {

const QString lineBreak = QStringLiteral("\r\n");

} // namespace

int wrapToWidth(QString& text, double maxWidthMm, const ReportPainter& painter)
{
    int lines = 1;
    QString wrapped;
    QString rest = text;
    while (!rest.isEmpty() && painter.textWidth(rest) > maxWidthMm) {
        qsizetype lastBlank = -1;
        qsizetype reached = rest.size() - 1;
        for (qsizetype i = 0; i < rest.size(); ++i) {
            if (rest.at(i) == u' ')
                lastBlank = i;
            if (painter.textWidth(rest.left(i + 1)) >= maxWidthMm) {
                reached = i;
                break;
            }
        }
        QString piece;
        if (lastBlank >= 0) {
            piece = rest.left(lastBlank);
            rest.remove(0, lastBlank + 1);
        } else {
            // No blank to break at: keep what fits, but always move on by one character.
            const qsizetype take = reached > 0 ? reached : 1;
            piece = rest.left(take);
            rest.remove(0, take);
        }
        if (rest.isEmpty()) {
            // The break used up the text (a trailing blank): no empty last line.
            rest = piece;
            break;
        }
        wrapped += piece + lineBreak;
        ++lines;
    }
    wrapped += rest;
    text = wrapped;
    return lines;
}

void printLinesAt(ReportPainter& painter, const QString& text, double xMm)
{
    const QStringList lines = text.split(lineBreak);
    for (const QString& line : lines) {
        painter.setCurrentX(xMm);
        painter.print(line);
    }
}

void printBanner(ReportPainter& painter, double xMm, double yMm, const QString& text)
{
    const double height = painter.textHeight();
    painter.drawRect(xMm, yMm, painter.pageWidth() - 10.0, yMm + height + 1.0);
    painter.setCurrentX(painter.pageWidth() / 2.0 - painter.textWidth(text) / 2.0);
    painter.setCurrentY(yMm + 0.5);
    painter.print(text);
    painter.setCurrentX(0.0);
    painter.setCurrentY(yMm + 2.0 * height + 1.0);
}

} // namespace sx
