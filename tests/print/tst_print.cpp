#include "PdfText.h"
#include "model/graph/GraphRules.h"
#include "reports/PrintRoutines.h"
#include "reports/ReportPainter.h"
#include "reports/graph/GraphPainting.h"
#include "reports/graph/GraphPrint.h"
#include "ui/PrintPreview.h"

#include <QDir>
#include <QFontInfo>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <vector>

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

// A white picture of the given size, drawn on by draw(painter, size).
template <typename Draw> QImage painted(QSize size, Draw draw)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter p(&image);
    draw(p, size);
    return image;
}

QRect inkBox(const QImage& image)
{
    QRect box;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qGray(image.pixel(x, y)) < 128)
                box |= QRect(x, y, 1, 1);
    return box;
}

} // namespace

class TestPrint : public QObject {
    Q_OBJECT

private slots:
    // The report font, sized by the paper's width; a centred banner in it in bold, the line
    // under it, a line placed at x, y and the next one, then a wrapped text in one column.
    void linesLandWhereAsked()
    {
        // A4 portrait is 11906 twips wide, landscape 16838.
        for (const auto& [orientation, size] :
             {std::pair{QPageLayout::Portrait, 8.0}, {QPageLayout::Landscape, 8.0 * 16838 / 11906}})
            QVERIFY(qAbs(sx::reportFont(PdfReport(orientation).writer).pointSizeF() - size) < 0.01);
        PdfReport pdf;
        sx::ReportPainter& p = *pdf.painter;
        const QString family = QFontInfo(sx::reportFont(pdf.writer)).family();
        QVERIFY2(family == u"Arial"_s || family == u"Liberation Sans"_s, qPrintable(family));
        QVERIFY(qAbs(p.pageWidth() - (210.0 - 2 * marginMm)) < 0.1 &&
                qAbs(p.pageHeight() - (297.0 - 2 * marginMm)) < 0.1);
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
    // A page much wider than the graph's layout: the chart stays at the left edge. Where the
    // labels go is tst_graphrules' part (the scales and their margins).
    void chartPageStartsAtTheTopLeft()
    {
        const std::vector<sx::RecordPoint> none;
        sx::graph::ChartPrintInput in;
        in.data = {&none, 0, 0, sx::graph::GraphView{0, 100, 0.0f, 10.0f}, {}, {}};
        in.unitRect = QRect(0, 0, 60, 418);
        in.chartRect = QRect(60, 9, 800, 400);
        in.timeRect = QRect(51, 410, 818, 130);
        in.details = {{u"Mονάδα μέτρησης: °C"_s, Qt::black}};
        double scale = 0;
        const QRect box = inkBox(painted(QSize(4000, 700), [&](QPainter& p, QSize s) {
            scale = sx::graph::paintChartPage(p, s, in);
        }));
        QVERIFY(scale > 0.5 && scale < 1.5);
        QVERIFY2(box.left() < 60 * scale && box.top() < 20 * scale,
                 qPrintable(u"%1,%2"_s.arg(box.left()).arg(box.top())));
        QVERIFY2(box.right() <= 869 * scale + 2, qPrintable(QString::number(box.right())));
    }
    void graphNumbers()
    {
        using sx::graph::plainNumber;
        QCOMPARE(plainNumber(23.5), u"23.5"_s);
        QCOMPARE(plainNumber(double(23.1f)), u"23.1"_s); // a float's digits, not a double's
        QCOMPARE(plainNumber(-19.6 + 1e-13), u"-19.6"_s);
        QCOMPARE(plainNumber(1234567), u"1234567"_s); // no grouping
        QCOMPARE(plainNumber(-0.0), u"0"_s);
        QCOMPARE(sx::graph::limitValue(u"25.0"_s).value_or(-1), 25.0);
        QVERIFY(!sx::graph::limitValue(QString()));
    }
};

QTEST_MAIN(TestPrint)
#include "tst_print.moc"
