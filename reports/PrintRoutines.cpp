#include "reports/PrintRoutines.h"

#include "reports/ReportPainter.h"

#include <algorithm>
#include <optional>

namespace sx {

namespace {

const QString lineBreak = QStringLiteral("\r\n");

} // namespace

namespace {

// The shortest prefix of `word` at least `room` wide, or nothing when the whole
// word is narrower (its width then goes to `width`). Prefixes are measured
// growing by doubling, then halving, so a long word costs about as much as the
// part of it that fits.
std::optional<qsizetype> firstReaching(QStringView word, double room, const ReportPainter& painter,
                                       double& width)
{
    const auto measure = [&](qsizetype k) { return painter.textWidth(word.left(k).toString()); };
    qsizetype low = 0; // narrower than room
    qsizetype high = std::min<qsizetype>(16, word.size());
    double w = measure(high);
    while (w < room && high < word.size()) {
        low = high;
        high = std::min(2 * high, word.size());
        w = measure(high);
    }
    if (w < room) {
        width = w;
        return std::nullopt;
    }
    while (high - low > 1) {
        const qsizetype mid = low + (high - low) / 2;
        if (measure(mid) >= room)
            high = mid;
        else
            low = mid;
    }
    return high;
}

} // namespace

int wrapToWidth(QString& text, double maxWidthMm, const ReportPainter& painter)
{
    // Most report texts fit on one line: one measurement tells.
    if (text.isEmpty() || painter.textWidth(text) <= maxWidthMm)
        return 1;
    // A line's width is summed word by word, each word measured once, rather
    // than measuring every growing prefix: the cost stays linear in the text.
    const double blank = painter.textWidth(QStringLiteral(" "));
    const qsizetype n = text.size();
    int lines = 1;
    QString wrapped;
    qsizetype start = 0;
    while (start < n) {
        double width = 0.0;
        qsizetype lastBlank = -1;
        qsizetype cut = -1; // where a line without a blank is cut
        qsizetype pos = start;
        while (pos < n) {
            if (text.at(pos) == u' ') {
                lastBlank = pos;
                width += blank;
                if (width >= maxWidthMm)
                    break;
                ++pos;
                continue;
            }
            qsizetype end = text.indexOf(u' ', pos);
            if (end < 0)
                end = n;
            double wordWidth = 0.0;
            const auto reached = firstReaching(QStringView(text).mid(pos, end - pos),
                                               maxWidthMm - width, painter, wordWidth);
            if (reached) {
                if (lastBlank < 0)
                    cut = std::max<qsizetype>(1, *reached - 1);
                break;
            }
            width += wordWidth;
            pos = end;
        }
        if (pos >= n) {
            wrapped += QStringView(text).mid(start);
            break;
        }
        QStringView piece;
        if (lastBlank >= 0) {
            piece = QStringView(text).mid(start, lastBlank - start);
            start = lastBlank + 1;
        } else {
            piece = QStringView(text).mid(start, cut);
            start += cut;
        }
        if (start >= n) {
            // The break used up the text (a trailing blank): no empty last line.
            wrapped += piece;
            break;
        }
        wrapped += piece;
        wrapped += lineBreak;
        ++lines;
    }
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
