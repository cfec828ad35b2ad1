#include "PdfText.h"
#include "reports/PrintRoutines.h"
#include "reports/ReportPainter.h"
#include "ui/PrintPreview.h"

#include <QDir>
#include <QFontInfo>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr double marginMm = 10.0;

// One A4 PDF with 10 mm margins in a temporary folder, and what poppler reads back from it.
struct PdfReport {
    QTemporaryDir dir;
    QString path = dir.filePath(u"report.pdf"_s);
    QPdfWriter writer{path};
    std::unique_ptr<sx::ReportPainter> painter;

    explicit PdfReport(QPageLayout::Orientation orientation = QPageLayout::Portrait)
    {
        writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), orientation,
                                         QMarginsF(marginMm, marginMm, marginMm, marginMm),
                                         QPageLayout::Millimeter));
        painter = std::make_unique<sx::ReportPainter>(writer);
    }

    // The non-empty lines of the page as laid out by pdftotext.
    QStringList lines()
    {
        painter->end();
        return sx::test::pdfLines(path).value(0);
    }

    // Bounding box in millimetres from the page's top left of the words of one printed line.
    QRectF box(const QString& line)
    {
        painter->end();
        return sx::test::pdfBox(path, line);
    }
};

} // namespace

class TestPrint : public QObject {
    Q_OBJECT

private slots:
    void reportFontScalesWithPaperWidth()
    {
        // A4 portrait is 11906 twips wide, landscape 16838.
        for (const auto& [orientation, size] :
             {std::pair{QPageLayout::Portrait, 8.0}, {QPageLayout::Landscape, 8.0 * 16838 / 11906}})
            QVERIFY(qAbs(sx::reportFont(PdfReport(orientation).writer).pointSizeF() - size) < 0.01);
    }
    // A centred banner in the bold report font, the line under it, a line placed at x, y and
    // the next one, then a wrapped text in one column.
    void linesLandWhereAsked()
    {
        PdfReport pdf;
        sx::ReportPainter& p = *pdf.painter;
        const QString family = QFontInfo(sx::reportFont(pdf.writer)).family();
        QVERIFY2(family == u"Arial"_s || family == u"Liberation Sans"_s, qPrintable(family));
        QVERIFY(qAbs(p.pageWidth() - (210.0 - 2 * marginMm)) < 0.1);
        QVERIFY(qAbs(p.pageHeight() - (297.0 - 2 * marginMm)) < 0.1);
        sx::printBanner(p, 10.0, 12.0, u"ΑΝΑΦΟΡΑ ΣΥΜΒΑΝΤΩΝ"_s);
        p.print(u"Γραμμή μετά τον τίτλο"_s);
        p.setCurrentX(30.0);
        p.setCurrentY(50.0);
        p.print(u"ΘΕΣΗ"_s);
        p.print(u"ΕΠΟΜΕΝΗ"_s);
        QString text = u"Ένδειξη μαρκαρισμένου σημείου 3: 21,3 °C κατά τη διάρκεια της "
                       u"νυχτερινής βάρδιας, πάνω από το μέγιστο όριο της ζώνης ψυχρού θαλάμου"_s;
        const int count = sx::wrapToWidth(text, 60.0, p);
        const QStringList wrapped = text.split(u"\r\n"_s);
        QVERIFY(count == wrapped.size() && count >= 3);
        for (const QString& line : wrapped)
            QVERIFY2(p.textWidth(line) < 60.0, qPrintable(line));
        const double top = p.currentY();
        sx::printLinesAt(p, text, 40.0);
        sx::printLinesAt(p, QString(), 10.0); // an empty text still takes one line
        p.print(u"ΤΕΛΟΣ"_s);
        QCOMPARE(pdf.lines(), QStringList({u"ΑΝΑΦΟΡΑ ΣΥΜΒΑΝΤΩΝ"_s, u"Γραμμή μετά τον τίτλο"_s,
                                           u"ΘΕΣΗ"_s, u"ΕΠΟΜΕΝΗ"_s}) +
                                  wrapped + QStringList{u"ΤΕΛΟΣ"_s});
        QVERIFY(sx::test::toolOutput(u"pdffonts"_s, {pdf.path}).contains(u"Bold"_s));

        const QRectF banner = pdf.box(u"ΑΝΑΦΟΡΑ ΣΥΜΒΑΝΤΩΝ"_s);
        QVERIFY2(qAbs(banner.center().x() - 105.0) < 1.0,
                 qPrintable(QString::number(banner.center().x())));
        QVERIFY(qAbs(banner.top() - (marginMm + 12.5)) < 0.7);
        const QRectF after = pdf.box(u"Γραμμή μετά τον τίτλο"_s);
        QVERIFY(qAbs(after.top() - (marginMm + 12.0 + 2 * p.textHeight() + 1.0)) < 0.7);
        QVERIFY(qAbs(after.left() - marginMm) < 0.5); // the banner leaves x at 0
        const QRectF first = pdf.box(u"ΘΕΣΗ"_s);
        QVERIFY(qAbs(first.left() - (marginMm + 30.0)) < 0.5);
        QVERIFY(qAbs(first.top() - (marginMm + 50.0)) < 0.7);
        const QRectF next = pdf.box(u"ΕΠΟΜΕΝΗ"_s);
        QVERIFY(qAbs(next.left() - marginMm) < 0.5);
        QVERIFY(qAbs(next.top() - first.top() - p.textHeight()) < 0.2);
        for (const QString& line : wrapped)
            QVERIFY2(qAbs(pdf.box(line).left() - (marginMm + 40.0)) < 0.5, qPrintable(line));
        const double end = marginMm + top + (count + 1) * p.textHeight();
        QVERIFY(qAbs(pdf.box(u"ΤΕΛΟΣ"_s).top() - end) < 0.7);
    }
    void wrapToWidth_data()
    {
        // The width is that of a given prefix plus a hair, so rows hold for any font.
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("fits");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("lines");
        QTest::newRow("fits whole") << u"aaaa aaaa"_s << u"aaaa aaaa"_s << u"aaaa aaaa"_s << 1;
        QTest::newRow("breaks at last blank") << u"aaaa aaaa aaaa aaaa aaaa"_s << u"aaaa aaaa"_s
                                              << u"aaaa aaaa\r\naaaa aaaa\r\naaaa"_s << 3;
        QTest::newRow("trailing blank makes no empty line")
            << u"aaaa aaaa "_s << u"aaaa aaaa"_s << u"aaaa aaaa"_s << 1;
        QTest::newRow("word wider than the width is cut")
            << u"xxxxxxxxxxxxxxxxxxxxxxxx"_s << u"xxxxxxxxxx"_s
            << u"xxxxxxxxxx\r\nxxxxxxxxxx\r\nxxxx"_s << 3;
        QTest::newRow("long word after a short one")
            << u"ab xxxxxxxxxxxxxxxxxxxx"_s << u"xxxxxxxxxx"_s
            << u"ab\r\nxxxxxxxxxx\r\nxxxxxxxxxx"_s << 3;
        QTest::newRow("character wider than the width still advances")
            << u"WWW"_s << QString() << u"W\r\nW\r\nW"_s << 3;
        QTest::newRow("empty") << QString() << QString() << QString() << 1;
        QTest::newRow("two blanks stay inside a line")
            << u"aaaa  aaaa aaaa"_s << u"aaaa  aaaa"_s << u"aaaa  aaaa\r\naaaa"_s << 2;
        QTest::newRow("leading blank of a full line gives an empty line")
            << u" xxxxxxxxxxxxxxx"_s << u"xxxxxxxxxx"_s << u"\r\nxxxxxxxxxx\r\nxxxxx"_s << 3;
        QStringList many(300, u"aaaa"_s);
        QStringList rows;
        for (int i = 0; i < 300; i += 3)
            rows << QStringList(many.mid(i, 3)).join(u' ');
        QTest::newRow("a long paragraph, line after line")
            << many.join(u' ') << u"aaaa aaaa aaaa"_s << rows.join(u"\r\n"_s) << 100;
    }
    void wrapToWidth()
    {
        QFETCH(QString, text);
        QFETCH(QString, fits);
        PdfReport pdf;
        const double width = pdf.painter->textWidth(fits) + 0.01;
        QTEST(sx::wrapToWidth(text, width, *pdf.painter), "lines");
        QTEST(text, "expected");
    }
    // A report written over a file the user already has: the old file goes only
    // when the new one is complete, and nothing is left beside it.
    void oldFileStaysUntilTheNewOneIsWhole_data()
    {
        QTest::addColumn<bool>("drawn");
        QTest::newRow("drawing fails half way") << false;
        QTest::newRow("drawing completes") << true;
    }
    void oldFileStaysUntilTheNewOneIsWhole()
    {
        QFETCH(bool, drawn);
        QTemporaryDir dir;
        const QString path = dir.filePath(u"report.pdf"_s);
        QFile old(path);
        QVERIFY(old.open(QIODevice::WriteOnly) && old.write("old report") > 0);
        old.close();
        const bool ok = sx::writeReportPdf(path, QPageLayout::Portrait, [&](QPrinter& printer) {
            QPainter painter(&printer);
            painter.drawText(100, 100, u"Σελίδα 1"_s);
            if (!drawn)
                return false;
            return printer.newPage() && painter.end();
        });
        QCOMPARE(ok, drawn);
        QVERIFY(old.open(QIODevice::ReadOnly));
        QCOMPARE(old.read(4) == "%PDF", drawn);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{u"report.pdf"_s});
    }
};

QTEST_MAIN(TestPrint)
#include "tst_print.moc"
