#pragma once

#include "ToolRun.h"

#include <QPrinter>
#include <QRectF>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

namespace sx::test {

// The PDF's pages as pdftotext lays them out; empty when it cannot be read.
inline QStringList pdfPages(const QString& pdf)
{
    QStringList pages = toolOutput(QStringLiteral("pdftotext"),
                                   {QStringLiteral("-layout"), pdf, QStringLiteral("-")})
                            .split(u'\f');
    if (!pages.isEmpty() && pages.last().trimmed().isEmpty())
        pages.removeLast();
    return pages;
}

// The non-empty lines of each page, trimmed, blanks inside a line squeezed to one.
inline QList<QStringList> pdfLines(const QString& pdf)
{
    static const QRegularExpression blanks(QStringLiteral(" +"));
    QList<QStringList> pages;
    for (const QString& page : pdfPages(pdf)) {
        QStringList lines;
        for (QString line : page.split(u'\n')) {
            line = line.trimmed().replace(blanks, QStringLiteral(" "));
            if (!line.isEmpty())
                lines << line;
        }
        if (!lines.isEmpty())
            pages << lines;
    }
    return pages;
}

// The box in millimetres from the page's top left of the printed words of `line`.
inline QRectF pdfBox(const QString& pdf, const QString& line)
{
    static const QRegularExpression word(QStringLiteral(
        R"re(<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="([\d.]+)">([^<]*)<)re"));
    const QString xhtml = toolOutput(QStringLiteral("pdftotext"),
                                     {QStringLiteral("-bbox"), pdf, QStringLiteral("-")});
    constexpr double mmPerPoint = 25.4 / 72.0;
    QRectF result;
    for (const QString& part : line.split(u' ')) {
        for (const auto& m : word.globalMatch(xhtml)) {
            if (m.captured(5) == part)
                result |= QRectF(QPointF(m.captured(1).toDouble(), m.captured(2).toDouble()),
                                 QPointF(m.captured(3).toDouble(), m.captured(4).toDouble()));
        }
    }
    return QRectF(result.topLeft() * mmPerPoint, result.bottomRight() * mmPerPoint);
}

// The printer as a print dialog leaves it when the user picks a PDF file.
inline void setUpPdf(QPrinter& printer, const QString& file)
{
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(file);
}

} // namespace sx::test
