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
    void reportFontScalesWithPaperWidth_data()
    {
        QTest::addColumn<bool>("landscape");
        QTest::addColumn<double>("pointSize");
        QTest::newRow("A4 portrait, 11906 twips") << false << 8.0;
        QTest::newRow("A4 landscape, 16838 twips") << true << 8.0 * 16838 / 11906;
    }
    void reportFontScalesWithPaperWidth()
    {
        QFETCH(bool, landscape);
        QFETCH(double, pointSize);
        PdfReport pdf(landscape ? QPageLayout::Landscape : QPageLayout::Portrait);
        const QFont font = sx::reportFont(pdf.writer);
        QVERIFY(qAbs(font.pointSizeF() - pointSize) < 0.01);
        const QString family = QFontInfo(font).family();
        QVERIFY2(family == u"Arial"_s || family == u"Liberation Sans"_s, qPrintable(family));

        pdf.painter->print(u"Arial"_s);
        pdf.painter->end();
        const QString fonts = sx::test::toolOutput(u"pdffonts"_s, {pdf.path});
        QVERIFY2(fonts.contains(u"Bold"_s), qPrintable(fonts)); // the font as printed is bold
    }
    // A centred banner, the line under it, then a line placed at x, y and the next one.
    void bannerAndLinesLandWhereAsked()
    {
        PdfReport pdf;
        sx::ReportPainter& p = *pdf.painter;
        QVERIFY(qAbs(p.pageWidth() - (210.0 - 2 * marginMm)) < 0.1);
        QVERIFY(qAbs(p.pageHeight() - (297.0 - 2 * marginMm)) < 0.1);
        const double y = 12.0;
        sx::printBanner(p, 10.0, y, u"ΑΝΑΦΟΡΑ ΣΥΜΒΑΝΤΩΝ"_s);
        p.print(u"Γραμμή μετά τον τίτλο"_s);
        p.setCurrentX(30.0);
        p.setCurrentY(50.0);
        p.print(u"ΘΕΣΗ"_s);
        p.print(u"ΕΠΟΜΕΝΗ"_s);
        QCOMPARE(pdf.lines(), (QStringList{u"ΑΝΑΦΟΡΑ ΣΥΜΒΑΝΤΩΝ"_s, u"Γραμμή μετά τον τίτλο"_s,
                                           u"ΘΕΣΗ"_s, u"ΕΠΟΜΕΝΗ"_s}));

        const QRectF banner = pdf.box(u"ΑΝΑΦΟΡΑ ΣΥΜΒΑΝΤΩΝ"_s);
        QVERIFY2(qAbs(banner.center().x() - 105.0) < 1.0,
                 qPrintable(QString::number(banner.center().x())));
        QVERIFY(qAbs(banner.top() - (marginMm + y + 0.5)) < 0.7);
        const QRectF after = pdf.box(u"Γραμμή μετά τον τίτλο"_s);
        QVERIFY(qAbs(after.top() - (marginMm + y + 2 * p.textHeight() + 1.0)) < 0.7);
        QVERIFY(qAbs(after.left() - marginMm) < 0.5); // the banner leaves x at 0
        const QRectF first = pdf.box(u"ΘΕΣΗ"_s);
        QVERIFY2(qAbs(first.left() - (marginMm + 30.0)) < 0.5,
                 qPrintable(QString::number(first.left())));
        QVERIFY2(qAbs(first.top() - (marginMm + 50.0)) < 0.7,
                 qPrintable(QString::number(first.top())));
        const QRectF next = pdf.box(u"ΕΠΟΜΕΝΗ"_s);
        QVERIFY(qAbs(next.left() - marginMm) < 0.5);
        QVERIFY(qAbs(next.top() - first.top() - p.textHeight()) < 0.2);
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
    void wrappedTextPrintsInOneColumn()
    {
        PdfReport pdf;
        sx::ReportPainter& p = *pdf.painter;
        QString text = u"Ένδειξη μαρκαρισμένου σημείου 3: 21,3 °C κατά τη διάρκεια της "
                       u"νυχτερινής βάρδιας, πάνω από το μέγιστο όριο της ζώνης ψυχρού θαλάμου"_s;
        const double width = 60.0;
        const int count = sx::wrapToWidth(text, width, p);
        const QStringList wrapped = text.split(u"\r\n"_s);
        QCOMPARE(wrapped.size(), count);
        QVERIFY(count >= 3);
        for (const QString& line : wrapped)
            QVERIFY2(p.textWidth(line) < width, qPrintable(line));

        p.print(u"ΑΡΧΗ"_s);
        const double top = p.currentY();
        sx::printLinesAt(p, text, 40.0);
        sx::printLinesAt(p, QString(), 10.0); // an empty text still takes one line
        p.print(u"ΤΕΛΟΣ"_s);
        QCOMPARE(pdf.lines(), QStringList() << u"ΑΡΧΗ"_s << wrapped << u"ΤΕΛΟΣ"_s);
        for (const QString& line : wrapped)
            QVERIFY2(qAbs(pdf.box(line).left() - (marginMm + 40.0)) < 0.5, qPrintable(line));
        const double end = marginMm + top + (count + 1) * p.textHeight();
        QVERIFY(qAbs(pdf.box(u"ΤΕΛΟΣ"_s).top() - end) < 0.7);
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
