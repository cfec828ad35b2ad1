#pragma once

#include <QPrinter>
#include <QProcess>
#include <QString>
#include <QStringList>

namespace sx::test {

// The PDF's pages as pdftotext lays them out; empty when it cannot be read.
inline QStringList pdfPages(const QString& pdf)
{
    QProcess p;
    p.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
    if (!p.waitForFinished(60000) || p.exitCode() != 0)
        return {};
    QStringList pages = QString::fromUtf8(p.readAllStandardOutput()).split(u'\f');
    if (!pages.isEmpty() && pages.last().trimmed().isEmpty())
        pages.removeLast();
    return pages;
}

// The printer as a print dialog leaves it when the user picks a PDF file.
inline void setUpPdf(QPrinter& printer, const QString& file)
{
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(file);
}

} // namespace sx::test
