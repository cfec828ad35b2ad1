#include "../cli/ReportSeed.h"
#include "../current/CurrentSeed.h"
#include "GuiFixture.h"
#include "PdfText.h"
#include "SkipOrFail.h"
#include "reports/summary/SummaryReport.h"
#include "reports/summary/SummaryXlsx.h"
#include "views/current/CurrentPrint.h"
#include "views/records/RecordsPrint.h"

#include <QFile>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QStandardPaths>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

// The current-condition report and the month's summary (zone 1 measures, limits 10..30; zone 2
// is a door contact) printed from a scratch database and read back.
class TestReports : public QObject {
    Q_OBJECT

    std::unique_ptr<GuiFixture> fx;
    summary::SummaryInput m_in;
    QString m_pdf;

private slots:
    void initTestCase()
    {
        fx = std::make_unique<GuiFixture>();
        SX_REQUIRE_FIXTURE(*fx);
        if (QStandardPaths::findExecutable(u"pdftotext"_s).isEmpty())
            SX_SKIP_OR_FAIL("pdftotext is not installed");
        CurrentSeed s(fx->db);
        // Units: serial, version, clock, name; SXR2 is older, without clock or name.
        for (const auto& [serial, softver, rtc, name] :
             {std::tuple{u"SXR1"_s, u"'1.22'"_s, u"'2026-11-16 22:05:00'"_s, u"Κεντρική αποθήκη"_s},
              {u"SXR2"_s, u"'1.21'"_s, u"NULL"_s, QString()},
              {u"SXLONG"_s, u"'1.22'"_s, u"'2026-11-16 09:30:00'"_s, u"Πολλά προβλήματα"_s}})
            QVERIFY(s.unit(serial, name, u"1"_s, softver, u"'2001'"_s) &&
                    s.condition(serial, u"2"_s, u"1"_s, rtc));
        // SXR1's points: number, type, value, out of limits, not powered, used, name.
        for (const QString& p :
             {u"1 0 4.04 0 0 1 'Ψυγείο'"_s, u"2 2 1 0 0 1 'Πόρτα'"_s, u"3 3 35.5 1 1 1 ''"_s,
              u"4 0 1 0 0 0 'Εκτός χρήσης'"_s, u"5 3 35.5 1 0 1 'Πίεση'"_s}) {
            const QStringList f = p.split(u' ');
            QVERIFY(s.point(u"SXR1"_s, f[0].toInt(), f.mid(6).join(u' '), f[1], f[5], u"NULL"_s,
                            u"NULL"_s) &&
                    s.pointCondition(u"SXR1"_s, f[0].toInt(), f[2], f[3], u"0"_s, f[4]));
        }
        // Power inputs: serial, number, fault and cut, used, name.
        for (const QString& p :
             {u"SXR1 1 0 1 'Κύρια'"_s, u"SXR1 2 1 1 'Δίκτυο Α'"_s, u"SXR1 3 1 0 'Αχρησιμοποίητο'"_s,
              u"SXR1 4 0 1 ''"_s, u"SXR2 2 1 1 'Δίκτυο Β'"_s}) {
            const QStringList f = p.split(u' ');
            QVERIFY(s.power(f[0], f[1].toInt(), f.mid(4).join(u' '), f[3]) &&
                    s.powerCondition(f[0], f[1].toInt(), f[2], f[2]));
        }
        QVERIFY(s.fault(u"SXR1"_s, 0, u"4"_s) && s.fault(u"SXR1"_s, 0, u"3"_s) &&
                s.fault(u"SXR1"_s, 1, u"3"_s));
        // Enough point faults for a second page.
        for (int i = 10; i < 90; ++i)
            QVERIFY(s.fault(u"SXLONG"_s, 1, QString::number(i)));

        QVERIFY(seedReportUnit(fx->db));
        const summary::SummaryLoad load =
            summary::loadSummary(fx->db, u"A-100"_s, -1, {2026, 3}, secsFromCivil({2027, 1, 1}));
        QCOMPARE(int(load.problem), int(summary::LoadProblem::None));
        m_in = load.input;
        QCOMPARE(m_in.zones.size(), 2);
        m_pdf = fx->scratch.folder() + u"/summary.pdf"_s;
        QPrinter printer(QPrinter::HighResolution);
        setUpPdf(printer, m_pdf);
        QVERIFY(drawSummaryReport(printer, m_in));
    }

    void cleanup()
    {
        if (fx) {
            QVERIFY2(!fx->dialogs.anyUnexpected(), "a dialog without a scripted answer");
            QCOMPARE(fx->dialogs.messages().size(), 0);
            fx->dialogs.clearShown();
        }
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
        const QString book = fx->scratch.folder() + u"/summary.xlsx"_s;
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
        QCOMPARE(lines, (QStringList{u"Ζώνη 1|Ζώνη 2"_s,
                                     u"datetime float int datetime int 01/03/2026 %1 30"_s.arg(
                                         m_in.zones[0].summary.totals.excursions),
                                     u"datetime int NoneType datetime int 01/03/2026 %1 None"_s.arg(
                                         m_in.zones[1].summary.totals.excursions)}));
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
        GuiFixture own; // the failed read breaks its database
        SX_REQUIRE_FIXTURE(own);
        QVERIFY(seedReportUnit(own.db));
        if (broken) {
            QVERIFY(own.exec(u"ALTER TABLE Records RENAME TO Records_gone"_s));
            own.dialogs.answerMessage(DialogService::Answer::Ok);
        }
        QWidget owner;
        owner.show();
        bool waited = false;
        QTimer::singleShot(0, &owner,
                           [&] { waited = !owner.isEnabled() && GuiFixture::waitWindowShown(); });
        int shown = -1;
        own.dialogs.answerPreview([&](QPrinter& printer, const auto& paint) {
            QPrintPreviewWidget view(&printer);
            QObject::connect(&view, &QPrintPreviewWidget::paintRequested,
                             [&](QPrinter* p) { paint(*p); });
            view.updatePreview();
            shown = view.pageCount();
        });
        printSummary(own.ctx, &owner, u"A-100"_s, -1, {2026, 3}, ReportOutput::Preview);
        QVERIFY(waited);
        QVERIFY(owner.isEnabled());
        const auto messages = own.dialogs.messages();
        QCOMPARE(messages.size(), broken ? 1 : 0);
        if (broken)
            QCOMPARE(messages[0].icon, DialogService::Icon::Critical);
        QCOMPARE(shown, broken ? -1 : pdfPages(m_pdf).size());
    }

    // Every unit's report read back whole: the lines of all pages in order, "|" between them,
    // the title once.
    void printedLines_data()
    {
        QTest::addColumn<QString>("serial");
        QTest::addColumn<int>("pageCount");
        QTest::addColumn<QString>("lines");
        const QString head = u"SENTORAX Monitor / ΑΝΑΦΟΡΑ ΤΡΕΧΟΥΣΑΣ ΚΑΤΑΣΤΑΣΗΣ ΣΥΣΤΗΜΑΤΟΣ|"_s;
        const QString switches = u"ΤΗΛΕΦΩΝΙΚΗ ΕΙΔΟΠΟΙΗΣΗ ΑΥΤΟΜΑΤΗ (ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ)|"
                                 u"ΔΙΑΚΟΠΤΗΣ ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ|ΚΑΤΑΣΤΑΣΗ ΣΥΣΤΗΜΑΤΟΣ:|"_s;
        const QString end = u"* ΠΑΡΑΚΑΛΩ ΚΑΛΕΣΤΕ ΤΟ SERVICE *|ΤΕΛΟΣ ΑΝΑΦΟΡΑΣ"_s;
        QTest::newRow("connected, with faults")
            << u"SXR1"_s << 1
            << head +
                   u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Κεντρική αποθήκη [2001] (SXR1)|"
                   u"Δευτέρα 16 Νοεμβρίου 2026 10:05 μμ|[1] Ψυγείο 4.0 °C|[2] Πόρτα ΚΛΕΙΣΤΗ|"
                   u"[3] Ανώνυμη ζώνη ΕΚΤΟΣ ΛΕΙΤΟΥΡΓΕΙΑΣ|[5] Πίεση 35.5 bar !|"
                   u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ ΚΑΝΟΝΙΚΗ|[1] Δίκτυο Α ΔΙΑΚΟΠΗ !|"
                   u"[3] Ανώνυμη ζώνη ΚΑΝΟΝΙΚΗ|"_s +
                   switches +
                   u"ΠΡΟΒΛΗΜΑ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ 3|ΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ|"
                   u"ΗΜΕΡΟΜΗΝΙΑ ΚΑΙ ΩΡΑ ΔΕΝ ΕΧΟΥΝ ΡΥΘΜΙΣΤΕΙ|"_s +
                   end;
        // No clock: the time of printing stands in. 1.21: the cut from the fault flag alone.
        QTest::newRow("older unit without clock or name")
            << u"SXR2"_s << 1
            << head +
                   u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Ανώνυμο σύστημα [2001] (SXR2)|"
                   u"Τρίτη 17 Νοεμβρίου 2026 9:00 πμ|[1] Δίκτυο Β ΔΙΑΚΟΠΗ|"_s +
                   switches + u"OK|ΤΕΛΟΣ ΑΝΑΦΟΡΑΣ"_s;
        QTest::newRow("missing unit: the banners only")
            << u"NO-SUCH"_s << 1 << head + u"ΤΕΛΟΣ ΑΝΑΦΟΡΑΣ"_s;
        // The fault list runs on where it stopped, without a second title.
        QString longList = head +
                           u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Πολλά προβλήματα [2001] (SXLONG)|"
                           u"Δευτέρα 16 Νοεμβρίου 2026 9:30 πμ|"_s +
                           switches;
        for (int i = 10; i < 90; ++i)
            longList += u"ΠΡΟΒΛΗΜΑ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ %1|"_s.arg(i);
        QTest::newRow("long fault list, two pages") << u"SXLONG"_s << 2 << longList + end;
    }
    void printedLines()
    {
        QFETCH(QString, serial);
        fx->setNow(QDateTime(QDate(2026, 11, 17), QTime(9, 0)));
        // Printed on A4 portrait whatever the dialog said.
        const QString path = fx->scratch.folder() + u"/a3.pdf"_s;
        fx->dialogs.answerPrint(true, [path](QPrinter& printer) {
            setUpPdf(printer, path);
            printer.setPageSize(QPageSize(QPageSize::A3));
            printer.setPageOrientation(QPageLayout::Landscape);
        });
        printCurrentCondition(fx->ctx, nullptr, serial);
        const QString info = toolOutput(u"pdfinfo"_s, {path});
        QVERIFY2((info.contains(u" x 841.89 pts (A4)"_s) || info.contains(u" x 842 pts (A4)"_s)) &&
                     info.contains(u"Page rot:        0"_s),
                 qPrintable(info));
        const QList<QStringList> pages = pdfLines(path);
        QTEST(int(pages.size()), "pageCount");
        QStringList all;
        for (const QStringList& page : pages)
            all += page;
        QTEST(all.join(u'|'), "lines");
        if (all.size() <= 2)
            return;
        // The body starts where the banners do, 10 mm into the printable area.
        QPrinter pdf(QPrinter::HighResolution);
        pdf.setOutputFormat(QPrinter::PdfFormat);
        pdf.setPageSize(QPageSize(QPageSize::A4));
        const double printableLeft = pdf.pageLayout().margins(QPageLayout::Millimeter).left();
        for (const QString& word : {u"ΠΛΗΡΟΦΟΡΙΕΣ"_s, u"ΚΑΤΑΣΤΑΣΗ"_s}) {
            const double left = pdfBox(path, word).left();
            QVERIFY2(qAbs(left - printableLeft - 10.0) < 0.5, qPrintable(QString::number(left)));
        }
    }

    // Nothing printed: the printer choice cancelled (no box), a file that cannot be
    // written, a failed read (last: it breaks a table).
    void printsNothing_data()
    {
        QTest::addColumn<QString>("failure");
        for (const char* f : {"cancelled", "unwritable", "failed read"})
            QTest::newRow(f) << QString::fromLatin1(f);
    }
    void printsNothing()
    {
        QFETCH(QString, failure);
        const QString path = failure == u"unwritable" ? u"/nonexistent-folder/x.pdf"_s
                                                      : fx->answerPdf(failure != u"cancelled");
        if (failure == u"unwritable")
            fx->dialogs.answerPrint(true, [path](QPrinter& p) { setUpPdf(p, path); });
        if (failure == u"failed read")
            QVERIFY(fx->exec(u"DROP TABLE Powermonitoring_Current_Condit"_s));
        printCurrentCondition(fx->ctx, nullptr, u"SXR1"_s);
        QVERIFY(!QFile::exists(path));
        const auto messages = fx->dialogs.messages();
        QCOMPARE(fx->dialogs.shown().size(), messages.size() + 1); // the printer choice first
        QCOMPARE(messages.size(), failure == u"cancelled" ? 0 : 1);
        if (!messages.isEmpty())
            QCOMPARE(messages.at(0).icon, DialogService::Icon::Critical);
        QCOMPARE(fx->failures->reportsShown(), failure == u"failed read" ? 1 : 0);
        fx->dialogs.clearShown();
    }
};

QTEST_MAIN(TestReports)
#include "tst_currentreport.moc"
