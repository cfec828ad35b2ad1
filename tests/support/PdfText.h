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
    if (pages.last().trimmed().isEmpty())
        pages.removeLast();
    return pages;
}

// The non-empty lines of each page, trimmed, blanks inside a line squeezed to one.
inline QList<QStringList> pdfLines(const QString& pdf)
{
    QList<QStringList> pages;
    for (const QString& page : pdfPages(pdf)) {
        QStringList lines;
        for (const QString& line : page.split(u'\n'))
            lines << line.simplified();
        lines.removeAll(QString());
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
    const QStringList parts = line.split(u' ');
    for (const auto& m : word.globalMatch(xhtml)) {
        if (parts.contains(m.captured(5)))
            result |= QRectF(QPointF(m.captured(1).toDouble(), m.captured(2).toDouble()),
                             QPointF(m.captured(3).toDouble(), m.captured(4).toDouble()));
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
