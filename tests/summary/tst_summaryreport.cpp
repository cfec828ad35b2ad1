#include "../cli/ReportSeed.h"
#include "GuiFixture.h"
#include "PdfText.h"
#include "ScratchDatabase.h"
#include "reports/summary/SummaryReport.h"
#include "reports/summary/SummaryXlsx.h"
#include "views/records/RecordsPrint.h"

#include <QPrintPreviewWidget>
#include <QTimer>
#include <QtTest>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

// The summary's pages and workbook for the seeded March: zone 1 measures
// (limits 10..30), zone 2 is a door contact.
class TestSummaryReport : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_scratch = std::make_unique<ScratchDatabase>();
        SX_REQUIRE_DB(*m_scratch);
        QVERIFY(m_scratch->open(m_db));
        QVERIFY(seedReportUnit(m_db));
        const summary::SummaryLoad load =
            summary::loadSummary(m_db, u"A-100"_s, -1, {2026, 3}, secsFromCivil({2027, 1, 1}));
        QCOMPARE(int(load.problem), int(summary::LoadProblem::None));
        m_in = load.input;
        QCOMPARE(m_in.zones.size(), 2);
        m_pdf = m_scratch->folder() + u"/summary.pdf"_s;
        QPrinter printer(QPrinter::HighResolution);
        setUpPdf(printer, m_pdf);
        QVERIFY(drawSummaryReport(printer, m_in));
    }

    void pagesShowEachZoneWithItsOwnFigures()
    {
        const QStringList pages = pdfPages(m_pdf);
        QVERIFY(pages.size() >= 2);
        const QString n = QString::number(pages.size());
        for (int i = 0; i < pages.size(); ++i)
            QVERIFY(pages[i].contains(u"Σελίδα %1/%2"_s.arg(i + 1).arg(n)));
        const QString first = pages.first().simplified();
        const summary::ZoneSummary& t = m_in.zones[0].summary;
        QVERIFY2(first.contains(u"SENTORAX Monitor / ΣΥΝΟΨΗ ΜΗΝΑ"_s) &&
                     first.contains(u"[1] Ψυγείο , ΠΕΡΙΟΔΟΣ:Μαρτιος 2026"_s) &&
                     first.contains(u"Υπερβάσεις ορίων: "_s + QString::number(t.totals.excursions)),
                 qPrintable(first));
        QVERIFY(t.totals.excursions > 4);
        QVERIFY(t.excursions.first().side == summary::Side::Below ||
                t.excursions.first().side == summary::Side::Above);
        // The contact zone starts a page of its own and counts openings instead.
        const qsizetype door = pages.indexOf(QRegularExpression(u"(?s).*\\[2\\] Πόρτα.*"_s));
        QVERIFY(door > 0);
        const summary::ZoneSummary& d = m_in.zones[1].summary;
        QVERIFY(pages[door].simplified().contains(u"Ανοίγματα: "_s +
                                                  QString::number(d.totals.excursions)));
        QVERIFY(pages[door].contains(u"ΑΝΟΙΓΜΑΤΑ"_s) && !pages[door].contains(u"Μέγιστη"_s));
    }

    void workbookHoldsNumbersAndDates()
    {
        const QString book = m_scratch->folder() + u"/summary.xlsx"_s;
        QCOMPARE(int(summary::writeSummaryWorkbook(book, m_in)), int(xlsx::ExportStatus::Written));
        // The system Python: openpyxl comes from Debian.
        const QStringList lines =
            toolOutput(
                u"/usr/bin/python3"_s,
                {u"-c"_s,
                 u"import sys, openpyxl\n"
                 "wb = openpyxl.load_workbook(sys.argv[1])\n"
                 "print('|'.join(wb.sheetnames))\n"
                 "for ws in wb:\n"
                 "    print(' '.join(type(ws[c].value).__name__ for c in "
                 "('A10','C10','E10','I10','K10')),"
                 " ws['A10'].value.strftime('%d/%m/%Y'), ws['B6'].value, ws['D3'].value)\n"_s,
                 book})
                .trimmed()
                .split(u'\n');
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines[0], u"Ζώνη 1|Ζώνη 2"_s);
        QCOMPARE(lines[1], u"datetime float int datetime int 01/03/2026 %1 30"_s.arg(
                               m_in.zones[0].summary.totals.excursions));
        QCOMPARE(lines[2], u"datetime int NoneType datetime int 01/03/2026 %1 None"_s.arg(
                               m_in.zones[1].summary.totals.excursions));
    }

    // From the window the summary is read on a connection of its own: the
    // window's events run meanwhile, disabled under the wait window. Then the
    // preview shows the pages the file has, or a failed read is explained.
    void windowSummaryReadsAside_data()
    {
        QTest::addColumn<bool>("broken");
        QTest::newRow("read") << false;
        QTest::newRow("failed read") << true;
    }
    void windowSummaryReadsAside()
    {
        QFETCH(bool, broken);
        GuiFixture fx;
        SX_REQUIRE_FIXTURE(fx);
        QVERIFY(seedReportUnit(fx.db));
        if (broken) {
            QVERIFY(fx.exec(u"ALTER TABLE Records RENAME TO Records_gone"_s));
            fx.dialogs.answerMessage(DialogService::Answer::Ok);
        }
        QWidget owner;
        owner.show();
        bool waited = false;
        QTimer::singleShot(0, &owner,
                           [&] { waited = !owner.isEnabled() && GuiFixture::waitWindowShown(); });
        int shown = -1;
        fx.dialogs.answerPreview([&](QPrinter& printer, const auto& paint) {
            QPrintPreviewWidget view(&printer);
            QObject::connect(&view, &QPrintPreviewWidget::paintRequested,
                             [&](QPrinter* p) { paint(*p); });
            view.updatePreview();
            shown = view.pageCount();
        });
        printSummary(fx.ctx, &owner, u"A-100"_s, -1, {2026, 3}, ReportOutput::Preview);
        QVERIFY(waited);
        QVERIFY(owner.isEnabled());
        const auto messages = fx.dialogs.messages();
        QCOMPARE(messages.size(), broken ? 1 : 0);
        if (broken)
            QCOMPARE(messages[0].icon, DialogService::Icon::Critical);
        QCOMPARE(shown, broken ? -1 : pdfPages(m_pdf).size());
    }

private:
    std::unique_ptr<ScratchDatabase> m_scratch;
    Database m_db;
    summary::SummaryInput m_in;
    QString m_pdf;
};

QTEST_MAIN(TestSummaryReport)
#include "tst_summaryreport.moc"
