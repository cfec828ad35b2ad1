#include "ChooseItem.h"
#include "GuiFixture.h"
#include "PdfText.h"
#include "ReportSeed.h"
#include "reports/summary/SummaryReport.h"
#include "ui/UnitList.h"
#include "views/records/RecordsWindow.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

// `sentorax-monitor report ...` run as a process against the scratch database.
class TestReportCommand : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_fx = std::make_unique<GuiFixture>();
        SX_REQUIRE_FIXTURE(*m_fx);
        QVERIFY(seedReportUnit(m_fx->db));
        m_dir = m_fx->scratch.folder();
    }

    void cleanupTestCase()
    {
        m_w.reset();
        m_fx.reset();
    }

    void helpListsEveryKind()
    {
        const ToolRun r = run({u"--help"_s}, false);
        QCOMPARE(r.code, 0);
        for (const QString& line :
             {u"report current  --unit SERIAL --pdf FILE"_s, u"report records"_s,
              u"report events"_s, u"report messages [--archive] --pdf FILE"_s, u"report summary"_s,
              u"--db <url>"_s, u"--year <YYYY>"_s})
            QVERIFY2(r.out.contains(line), qPrintable(line + u"\n"_s + r.out));
    }

    void everyFailureHasItsExitCode_data()
    {
        // OUT: a file in the scratch folder; NODB: no --db; SHORT: sheets of 10 rows
        QTest::addColumn<QString>("args");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("says");
        const auto row = [](const char* tag, const QString& args, int code, const QString& says) {
            QTest::newRow(tag) << args << code << says;
        };
        row("unknown option", u"records --colour=red"_s, 2, u"colour"_s);
        row("unknown kind", u"weekly --pdf=OUT"_s, 2, u"weekly"_s);
        row("option of another kind", u"current --unit=A-100 --pdf=OUT --zone=1"_s, 2, u"--zone"_s);
        row("month not understood", u"summary --unit=A-100 --month=2026-13 --pdf=OUT"_s, 2,
            u"2026-13"_s);
        row("no output", u"summary --unit=A-100 --month=2026-03"_s, 2, u"--pdf"_s);
        // Without --db the user's settings name the database: here none is set up.
        row("no database in the settings", u"current --unit=A-100 --pdf=OUT NODB"_s, 3, {});
        row("unknown unit", u"current --unit=NOPE --pdf=OUT"_s, 4, u"NOPE"_s);
        row("unknown zone", u"records --unit=A-100 --zone=9 --month=2026-03 --pdf=OUT"_s, 5,
            u"9"_s);
        row("empty month", u"summary --unit=A-100 --month=2025-01 --pdf=OUT"_s, 6, u"καταγραφές"_s);
        row("no events", u"events --unit=A-100 --year=2025 --pdf=OUT"_s, 6, u"συμβάντα"_s);
        // The workbook came out, the PDF could not: neither is left.
        row("both or neither",
            u"summary --unit=A-100 --month=2026-03 --xlsx=OUT --pdf=/nowhere/x.pdf"_s, 7,
            u"/nowhere/x.pdf"_s);
        // Past a sheet of 10 rows it does what the window does: it writes what fits and
        // says how many records were left out.
        row("workbook past the sheet",
            u"records --unit=A-100 --zone=1 --month=2026-03 --xlsx=OUT SHORT"_s, 8,
            u"δεν αποθηκεύτηκαν"_s);
    }

    void everyFailureHasItsExitCode()
    {
        QFETCH(QString, args);
        QFETCH(int, code);
        QFETCH(QString, says);
        const QString out = QDir(m_dir).filePath(u"failed.xlsx"_s);
        QStringList words = args.replace(u"OUT"_s, out).split(u' ');
        const bool noDb = words.removeAll(u"NODB"_s) > 0;
        if (words.removeAll(u"SHORT"_s) > 0)
            qputenv("SX_XLSX_SHEET_ROWS", "10");
        const ToolRun r = run(words, !noDb);
        qunsetenv("SX_XLSX_SHEET_ROWS");
        QCOMPARE(r.code, code);
        QVERIFY2(r.err.trimmed().count(u'\n') == 0 && r.err.contains(says), qPrintable(r.err));
        QCOMPARE(QFile::remove(out), code == 8); // only a workbook cut short is kept
    }

    void everyKindWritesItsReport_data()
    {
        QTest::addColumn<QString>("args");
        QTest::addColumn<QString>("says");
        QTest::newRow("current") << u"current --unit=A-100"_s << u"ΑΝΑΦΟΡΑ ΤΡΕΧΟΥΣΑΣ ΚΑΤΑΣΤΑΣΗΣ"_s;
        // The records report is pdfMatchesTheWindow's first row.
        QTest::newRow("events") << u"events --unit=A-100 --kind=all --month=2026-03"_s
                                << u"ΑΡΧΕΙΟ ΣΥΜΒΑΝΤΩΝ"_s;
        QTest::newRow("messages") << u"messages"_s << u"ΝΕΑ ΜΗΝΥΜΑΤΑ"_s;
        QTest::newRow("summary of a year")
            << u"summary --unit=A-100 --year=2026"_s << u"ΣΥΝΟΨΗ ΕΤΟΥΣ"_s;
    }

    void everyKindWritesItsReport()
    {
        QFETCH(QString, args);
        QFETCH(QString, says);
        const QString pdf =
            QDir(m_dir).filePath(QString::fromLatin1(QTest::currentDataTag()) + u".pdf"_s);
        const ToolRun r = run(args.split(u' ') + QStringList{u"--pdf"_s, pdf});
        QVERIFY2(r.code == 0, qPrintable(r.err));
        const QString text = pdfPages(pdf).join(u' ').simplified();
        QVERIFY2(text.contains(says), qPrintable(text));
    }

    // The same choices give the same PDF text from the window and from the command.
    void pdfMatchesTheWindow_data()
    {
        QTest::addColumn<bool>("summary");
        QTest::newRow("records") << false;
        QTest::newRow("summary") << true;
    }

    void pdfMatchesTheWindow()
    {
        QFETCH(bool, summary);
        const QString cli = QDir(m_dir).filePath(u"cli.pdf"_s);
        const QString window = QDir(m_dir).filePath(u"window.pdf"_s);
        const ToolRun r = run({summary ? u"summary"_s : u"records"_s, u"--unit=A-100"_s,
                               u"--zone=1"_s, u"--month=2026-03"_s, u"--pdf"_s, cli});
        QVERIFY2(r.code == 0, qPrintable(r.err));

        m_w = std::make_unique<RecordsWindow>(m_fx->ctx);
        fillSystemSelect(*m_w, 0, false);
        test::chooseItem(m_w->yearSelect(), 26);
        test::chooseItem(m_w->monthSelect(), 2);
        m_w->selectAllRecords();
        m_fx->dialogs.answerPrint(true, [&](QPrinter& p) { setUpPdf(p, window); });
        (summary ? m_w->summaryAction() : m_w->printAction())->trigger();
        QVERIFY(!m_fx->dialogs.anyUnexpected());
        const QStringList expected = pdfPages(window);
        QVERIFY(!expected.isEmpty());
        QCOMPARE(pdfPages(cli), expected);
    }

private:
    ToolRun run(const QStringList& args, bool withDb = true) const
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        // A home of its own: no settings, so only --db names a database.
        env.insert(u"HOME"_s, m_dir);
        env.insert(u"XDG_CONFIG_HOME"_s, m_dir + u"/config"_s);
        env.remove(u"QT_QPA_PLATFORM"_s);
        env.remove(u"DISPLAY"_s);
        const QStringList db{u"--db"_s, m_fx->scratch.url()};
        return runTool(QStringLiteral(SX_MONITOR_BIN),
                       QStringList{u"report"_s} + args + (withDb ? db : QStringList()), env);
    }

    std::unique_ptr<GuiFixture> m_fx;
    std::unique_ptr<RecordsWindow> m_w;
    QString m_dir;
};

QTEST_MAIN(TestReportCommand)
#include "tst_reportcommand.moc"
