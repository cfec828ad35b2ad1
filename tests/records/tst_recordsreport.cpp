#include "GuiFixture.h"
#include "PdfText.h"
#include "RecordsSeed.h"
#include "reports/ReportPainter.h"
#include "reports/records/RecordsModel.h"
#include "reports/records/RecordsReport.h"
#include "ui/UnitList.h"
#include "views/records/RecordsWindow.h"

#include <QAction>
#include <QFile>
#include <QPageLayout>
#include <QPageSize>
#include <QPrinter>
#include <QRegularExpression>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

namespace {

// Rows per column as the report measures them on the printer it is given.
int rowsPerColumnOnPdf(const QString& scratchFile)
{
    QPrinter printer(QPrinter::HighResolution);
    setUpPdf(printer, scratchFile);
    (void)printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setPageOrientation(QPageLayout::Portrait);
    ReportPainter painter(printer);
    const int rows =
        records_report::layoutRows(0, painter.pageHeight(), painter.textHeight()).rowsPerColumn;
    painter.end();
    QFile::remove(scratchFile);
    return rows;
}

} // namespace

class TestRecordsReport : public QObject {
    Q_OBJECT

private slots:

    void cleanup()
    {
        m_w.reset();
        m_fx.reset();
    }

    // Columns run top to bottom, then left to right, four to a page; only the
    // selection is printed, under the long heading that wraps whole.
    void printsTheSelectionInColumnsAndPages_data()
    {
        QTest::addColumn<int>("columns"); // full columns of records, all selected; 0: the first
        QTest::addColumn<int>("extra");   // of 30 alone
        QTest::addColumn<QStringList>("pageLines"); // none: the printer dialog is cancelled
        QTest::newRow("printer cancelled") << 0 << 5 << QStringList{};
        QTest::newRow("one selected of 30") << 0 << 30 << QStringList{u"Σελίδα 1/1"_s};
        QTest::newRow("four full columns") << 4 << 0 << QStringList{u"Σελίδα 1/1"_s};
        QTest::newRow("one more record") << 4 << 1 << QStringList{u"Σελίδα 1/2"_s, u"Σελίδα 2/2"_s};
    }

    void printsTheSelectionInColumnsAndPages()
    {
        QFETCH(int, columns);
        QFETCH(int, extra);
        QFETCH(QStringList, pageLines);
        m_fx = std::make_unique<GuiFixture>();
        SX_REQUIRE_FIXTURE(*m_fx);
        const int perColumn = rowsPerColumnOnPdf(m_fx->scratch.folder() + u"/measure.pdf"_s);
        QVERIFY(perColumn > 40);
        const int rows = columns * perColumn + extra;
        open(rows);
        if (columns > 0)
            m_w->selectAllRecords();
        const int printed = columns > 0 ? rows : 1;
        const QString pdf = m_fx->answerPdf(!pageLines.isEmpty());
        m_w->printAction()->trigger();
        QVERIFY(m_fx->dialogs.messages().isEmpty());
        QCOMPARE(QFile::exists(pdf), !pageLines.isEmpty());
        if (pageLines.isEmpty())
            return;
        const QStringList pages = pdfPages(pdf);
        QCOMPARE(pages.size(), pageLines.size());
        for (int i = 0; i < pages.size(); ++i)
            QVERIFY2(pages[i].contains(pageLines[i]), qPrintable(pages[i].left(400)));
        const QString flat = pages.first().simplified();
        // The title, the page line, then the whole heading.
        QVERIFY2(
            flat.startsWith(u"SENTORAX Monitor / ΑΡΧΕΙΟ ΚΑΤΑΓΡΑΦΩΝ Σελίδα"_s) &&
                flat.contains(
                    u"ΠΛΗΡΟΦΟΡΙΕΣ ΑΡΧΕΙΟΥ ΚΑΤΑΓΡΑΦΩΝ. ΣΥΣΤΗΜΑ:Ψυκτικός θάλαμος αποθήκης τροφίμων της ανατολικής πτέρυγας [7] (A-100) , ΖΩΝΗ ΠΑΡΑΚΟΛΟΥΘΗΣΗΣ:[1] Θερμοκρασία θαλάμου συντήρησης , ΜΗΝΑΣ/ΕΤΟΣ:Μαρτιος/2026"_s),
            qPrintable(flat));
        RecordsModel* m = m_w->model();
        QVERIFY(pages.last().contains(m->dateText(printed - 1)));
        QVERIFY(pages.last().contains(m->readingText(printed - 1)));
        if (printed < rows)
            QVERIFY(!pages.join(u'\n').contains(m->dateText(printed)));

        const QStringList lines = pages.first().split(u'\n');
        const auto lineWith = [&lines](const QString& text) {
            return lines.indexOf(
                QRegularExpression(u".*"_s + QRegularExpression::escape(text) + u".*"_s));
        };
        const qsizetype top = lineWith(m->dateText(0));
        QVERIFY(top >= 0);
        // The first row of each column on the top line, in order; each reading right of its date.
        for (int c = 1; c < columns; ++c) {
            QCOMPARE(lineWith(m->dateText(c * perColumn)), top);
            QVERIFY(lines[top].indexOf(m->dateText((c - 1) * perColumn)) <
                    lines[top].indexOf(m->readingText((c - 1) * perColumn)));
            QVERIFY(lines[top].indexOf(m->readingText((c - 1) * perColumn)) <
                    lines[top].indexOf(m->dateText(c * perColumn)));
        }
        if (columns > 0)
            QCOMPARE(lineWith(m->dateText(perColumn + 2)), top + 2);
    }

private:
    void open(int records)
    {
        RecordsSeed s(m_fx->db);
        QVERIFY(
            s.unit(u"A-100"_s, u"Ψυκτικός θάλαμος αποθήκης τροφίμων της ανατολικής πτέρυγας"_s));
        QVERIFY(s.zone(u"A-100"_s, {.number = 1, .name = u"'Θερμοκρασία θαλάμου συντήρησης'"_s}));
        QVERIFY(s.series(u"A-100"_s, 1, at(u"2026-03-01 00:00:00"_s), 60, records,
                         [](int i) { return -20.0 + (i % 500) * 0.1; }));
        m_fx->setNow(QDateTime(QDate(2026, 3, 15), QTime(12, 0)));
        m_w = std::make_unique<RecordsWindow>(m_fx->ctx);
        fillSystemSelect(*m_w, 0, false);
        QCOMPARE(m_w->model()->rowCount(), records);
    }

    std::unique_ptr<GuiFixture> m_fx;
    std::unique_ptr<RecordsWindow> m_w;
};

QTEST_MAIN(TestRecordsReport)
#include "tst_recordsreport.moc"
