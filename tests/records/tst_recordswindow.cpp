#include "ChooseItem.h"
#include "GuiFixture.h"
#include "PdfText.h"
#include "RecordsSeed.h"
#include "reports/Colors.h"
#include "reports/ReportPainter.h"
#include "reports/records/RecordsModel.h"
#include "reports/records/RecordsReport.h"
#include "ui/UnitList.h"
#include "views/records/RecordsWindow.h"

#include <QAbstractItemModelTester>
#include <QBrush>
#include <QComboBox>
#include <QFile>
#include <QFontMetricsF>
#include <QGroupBox>
#include <QHeaderView>
#include <QMenu>
#include <QPageLayout>
#include <QPageSize>
#include <QPrinter>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

namespace {

// The grid's rows as "date|reading", with the text colour when there is one
// (both cells share it).
QString gridRows(const RecordsModel* m)
{
    QStringList out;
    for (int r = 0; r < m->rowCount(); ++r) {
        QString row = m->index(r, 0).data().toString() + u'|' + m->index(r, 1).data().toString();
        const QVariant color = m->index(r, 0).data(Qt::ForegroundRole);
        if (color != m->index(r, 1).data(Qt::ForegroundRole))
            row += u"|mixed"_s;
        else if (color.isValid())
            row +=
                u'|' + (color.value<QBrush>().color() == colors::kBlue ? u"blue"_s : u"dark red"_s);
        out << row;
    }
    return out.join(u"; "_s);
}

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

class TestRecordsWindow : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m_fx = std::make_unique<GuiFixture>();
        SX_REQUIRE_FIXTURE(*m_fx);
        seed();
        // The window opens on the clock's month: March 2026.
        m_fx->setNow(QDateTime(QDate(2026, 3, 15), QTime(12, 0)));
    }

    void cleanup()
    {
        m_tester.reset();
        m_w.reset();
        m_fx.reset();
    }

    void startUpSelectsTheClocksMonthWithoutQueryingAndTheLayoutFits()
    {
        m_w = std::make_unique<RecordsWindow>(m_fx->ctx);
        QCOMPARE(m_w->queriesRun(), 0);
        QVERIFY(!m_w->loading());
        // The third without its accent, exactly as listed.
        QCOMPARE(
            comboTexts(m_w->monthSelect()).join(u'|'),
            u"Ιανουάριος|Φεβρουάριος|Μαρτιος|Απρίλιος|Μάιος|Ιούνιος|Ιούλιος|Αύγουστος|Σεπτέμβριος|Οκτώβριος|Νοέμβριος|Δεκέμβριος|ΟΛΟΙ"_s);
        QCOMPARE(m_w->yearSelect()->itemText(255) + u' ' + m_w->monthText() + u'/' +
                     m_w->yearText(),
                 u"2255 Μαρτιος/2026"_s);
        QCOMPARE(state(), u"0 zones, lists 111, 0 rows, 0 on"_s); // record commands off

        fillSystemSelect(*m_w, 0, false);
        QCOMPARE(m_w->queriesRun(), 2); // the zone list, then the first zone's records
        chooseItem(m_w->monthSelect(), 1);
        QCOMPARE(m_w->queriesRun(), 3);
        QVERIFY(m_fx->dialogs.shown().isEmpty());

        m_w->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_w.get()));
        QCOMPARE(m_w->windowTitle(), u"SENTORAX Monitor / Αρχείο καταγραφών"_s);
        QVERIFY2(m_w->width() <= 1280 && m_w->height() <= 740,
                 qPrintable(u"%1×%2"_s.arg(m_w->width()).arg(m_w->height())));

        // The frames Frame1 to Frame11, then the menu.
        QStringList titles;
        for (int i = 1; i <= 11; ++i) {
            const auto* box = m_w->findChild<QGroupBox*>(u"Frame%1"_s.arg(i));
            titles << (box ? box->title() : u"none"_s);
        }
        QCOMPARE(
            titles.join(u'|'),
            u"Πλοήγηση|Πληροφορίες ζώνης|Γράφημα|Μέγιστο όριο|Ελάχιστο όριο|Επιλογή συστήματος|Επιλογή χρονικής περιόδου|Καταγραφές|Επιλογή ζώνης|Μήνας|Έτος"_s);
        QVERIFY(!m_w->graphButton()->icon().isNull());
        QCOMPARE(GuiFixture::clippedChild(*m_w->centralWidget()), QString());

        auto* manage = m_w->findChild<QMenu*>(u"Diahirisi"_s);
        QVERIFY(manage);
        QStringList items{manage->title()};
        for (QAction* a : manage->actions())
            items << (a->isSeparator() ? u"-"_s : a->text());
        QCOMPARE(
            items.join(u'|'),
            u"Διαχείριση|Αποθήκευση αρχείου καταγραφών|Εκτύπωση αρχείου καταγραφών|-|Έξοδος|-|Σύνοψη μήνα|Προεπισκόπηση αρχείου καταγραφών|Προεπισκόπηση σύνοψης μήνα"_s);

        // The header texts with their blanks size the columns; both fit side by side.
        ArchiveGrid* grid = m_w->grid();
        const QString headers[] = {QString(34, u' ') + u"ΗΜΕΡΟΜΗΝΙΑ"_s,
                                   QString(42, u' ') + u"ΕΝΔΕΙΞΗ"_s};
        const QFontMetricsF fm(grid->font());
        int total = 0;
        for (int c = 0; c < 2; ++c) {
            QCOMPARE(grid->model()->headerData(c, Qt::Horizontal).toString(), headers[c]);
            const double text = fm.horizontalAdvance(headers[c]);
            const int width = grid->columnWidth(c);
            QVERIFY2(width >= text && width <= text + 12, qPrintable(QString::number(width)));
            total += width;
        }
        QVERIFY2(total <= grid->viewport()->width(), qPrintable(QString::number(total)));
    }

    // The row rules are tst_recordsrules' part; here the wiring to the grid.
    void zoneFillsTheGridNewestFirstAndEveryChoiceLoadsAnew()
    {
        open();
        QCOMPARE(comboTexts(m_w->sensorSelect()),
                 (QStringList{u"[1] Ψυγείο"_s, u"[5] Ανώνυμη ζώνη"_s}));
        QCOMPARE(
            gridRows(m_w->model()),
            u"02/03/2026 - 13:00|25.0 bar; 02/03/2026 - 12:00|9.5 °C|blue; 02/03/2026 - 11:00|10.0 °C; 02/03/2026 - 10:00|30.5 °C|dark red; 02/03/2026 - 09:00|30.0 °C; 02/03/2026 - 08:00|20.0 °C"_s);
        QCOMPARE(m_w->minLimitCaption() + u'|' + m_w->maxLimitCaption(), u"10.0 °C|30.0 °C"_s);
        QCOMPARE(state(), u"2 zones, lists 111, 6 rows, 3 on"_s);
        // Row 1 selected over both columns, highlighted without the focus too.
        QVERIFY(m_w->grid()->selectionModel()->isSelected(m_w->model()->index(0, 1)));
        QCOMPARE(m_w->selectedRows(), std::make_pair(0, 0));
        const QPalette p = m_w->grid()->palette();
        QCOMPARE(p.color(QPalette::Inactive, QPalette::Highlight),
                 p.color(QPalette::Active, QPalette::Highlight));
        // The shared records, in grid order, with the bare limit texts.
        const auto shared = m_fx->ctx.loadedRecords;
        QVERIFY(shared && shared->records.size() == 6);
        QCOMPARE(shared->records.front().secs, at(u"2026-03-02 13:00:00"_s));
        QCOMPARE(shared->records.front().sensorType, quint8(3));
        QCOMPARE(shared->minLimitText + shared->maxLimitText, u"10.030.0"_s);

        // Choosing the shown entry again loads anew, letting events through
        // behind the wait window meanwhile.
        RecordsSeed s(m_fx->db);
        QComboBox* lists[] = {m_w->sensorSelect(), m_w->monthSelect(), m_w->yearSelect()};
        for (int i = 0; i < 3; ++i) {
            QVERIFY(s.record(u"A-100"_s, 1, u"2026-03-02 14:0%1:00"_s.arg(i), 21, 0, 106 + i));
            QString meanwhile = u"not run"_s;
            QTimer::singleShot(0, this, [&] {
                meanwhile = u"enabled %1, waiting %2"_s.arg(int(m_w->isEnabled()))
                                .arg(int(GuiFixture::waitWindowShown()));
            });
            chooseItem(lists[i], lists[i]->currentIndex());
            QCOMPARE(meanwhile, u"enabled 0, waiting 1"_s);
            QCOMPARE(m_w->model()->dateText(0), u"02/03/2026 - 14:0%1"_s.arg(i));
        }
        QVERIFY(m_w->isEnabled() && !GuiFixture::waitWindowShown());

        // A contact zone: states in the normal colour, no limits.
        chooseItem(m_w->sensorSelect(), 1);
        QCOMPARE(
            gridRows(m_w->model()),
            u"03/03/2026 - 12:00|ΑΝΟΙΧΤΗ; 03/03/2026 - 11:00|ΑΝΟΙΧΤΗ; 03/03/2026 - 10:00|ΚΛΕΙΣΤΗ"_s);
        QCOMPARE(m_w->minLimitCaption() + m_w->maxLimitCaption() +
                     m_fx->ctx.loadedRecords->minLimitText + m_fx->ctx.loadedRecords->maxLimitText,
                 QString());
    }

    void unitWithoutZonesDisablesTheListsSilentlyAndFailuresAreReported()
    {
        open();
        chooseItem(m_w->systemSelect(), 1);
        QCOMPARE(state(), u"0 zones, lists 000, 0 rows, 0 on"_s);
        QVERIFY(m_w->minLimitCaption().isEmpty() && m_w->maxLimitCaption().isEmpty());
        QVERIFY(m_fx->dialogs.shown().isEmpty());
        chooseItem(m_w->systemSelect(), 0);
        QCOMPARE(state(), u"2 zones, lists 111, 6 rows, 3 on"_s);

        // Failures are reported and the window stays usable.
        m_fx->dialogs.answerMessage(DialogService::Answer::Ok);
        m_fx->dialogs.answerMessage(DialogService::Answer::Ok);
        QVERIFY(m_fx->exec(u"ALTER TABLE Records RENAME TO Records_away"_s));
        chooseItem(m_w->monthSelect(), 12);
        QCOMPARE(m_fx->dialogs.messages().size(), 1);
        QVERIFY(m_w->isEnabled() && !GuiFixture::waitWindowShown());
        QCOMPARE(state(), u"2 zones, lists 111, 0 rows, 0 on"_s);
        // The table is back: the next selection loads, and a later failure is news again.
        QVERIFY(m_fx->exec(u"ALTER TABLE Records_away RENAME TO Records"_s));
        chooseItem(m_w->monthSelect(), 2);
        QCOMPARE(state(), u"2 zones, lists 111, 6 rows, 3 on"_s);
        QVERIFY(m_fx->exec(u"ALTER TABLE Sensors_Info RENAME TO Sensors_Info_away"_s));
        emit m_w->systemSelect()->activated(0);
        QCOMPARE(m_fx->dialogs.messages().size(), 2);
        QCOMPARE(state(), u"0 zones, lists 000, 0 rows, 0 on"_s);
        QVERIFY(!m_fx->dialogs.anyUnexpected());
    }

    // One range of whole rows; select-all only while records are shown; an empty
    // period keeps the shared records.
    void selectionIsOneRangeOfWholeRowsAndSelectAll()
    {
        RecordsSeed s(m_fx->db);
        QVERIFY(s.series(
            u"A-100"_s, 1, at(u"2026-03-10 00:00:00"_s), 60, 200, [](int i) { return 15 + i % 7; },
            0, 1000));
        open();
        m_w->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_w.get()));
        ArchiveGrid* grid = m_w->grid();
        const auto cellCentre = [grid](int row, int col) {
            return grid->visualRect(grid->model()->index(row, col)).center();
        };
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cellCentre(4, 1));
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, Qt::ShiftModifier, cellCentre(2, 0));
        QCOMPARE(m_w->selectedRows(), std::make_pair(2, 4));
        QCOMPARE(grid->selectionModel()->selectedIndexes().size(), 6); // whole rows 2 to 4

        // The graph's refusal: one row alone, scrolled to the top.
        m_w->selectRowAlone(150);
        QCOMPARE(m_w->selectedRows(), std::make_pair(150, 150));
        QCOMPARE(grid->currentIndex().row(), 150);
        QCOMPARE(grid->rowAt(1), 150);

        QTest::keyClick(grid, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(m_w->selectedRows(), std::make_pair(0, 205));
        QCOMPARE(grid->currentIndex().row(), 0);
        // Two columns and no fixed column: no row selectors, and so no corner button.
        QCOMPARE(grid->model()->columnCount(), 2);
        QVERIFY(grid->verticalHeader()->isHidden());

        // An empty period: commands off, the shared records kept, and the action selects nothing.
        chooseItem(m_w->monthSelect(), 1);
        QCOMPARE(state(), u"2 zones, lists 111, 0 rows, 0 on"_s);
        QCOMPARE(m_fx->ctx.loadedRecords->records.size(), size_t(206));
        QVERIFY(m_fx->dialogs.shown().isEmpty());
        QTest::keyClick(grid, Qt::Key_A, Qt::ControlModifier);
        QVERIFY(grid->selectionModel()->selection().isEmpty());
        QCOMPARE(m_w->selectedRows(), std::make_pair(-1, -1));
    }

    // Only the selection is printed, under the long heading that wraps whole;
    // columns run top to bottom, then left to right, four to a page (when a page
    // is full is the page layout's rule, tst_reportlayouts).
    void printsTheSelectionInColumnsAndPages()
    {
        const int perColumn = rowsPerColumnOnPdf(m_fx->scratch.folder() + u"/measure.pdf"_s);
        QVERIFY(perColumn > 40);
        const int rows = 4 * perColumn + 1;
        RecordsSeed s(m_fx->db);
        QVERIFY(
            s.unit(u"C-300"_s, u"Ψυκτικός θάλαμος αποθήκης τροφίμων της ανατολικής πτέρυγας"_s) &&
            s.zone(u"C-300"_s, {.number = 1, .name = u"'Θερμοκρασία θαλάμου συντήρησης'"_s}));
        QVERIFY(s.series(u"C-300"_s, 1, at(u"2026-03-01 00:00:00"_s), 60, rows,
                         [](int i) { return -20.0 + (i % 500) * 0.1; }));
        open(2);
        QCOMPARE(m_w->model()->rowCount(), rows);
        RecordsModel* m = m_w->model();
        QStringList pages = print();
        QCOMPARE(pages.size(), 1);
        QVERIFY(pages[0].contains(u"Σελίδα 1/1"_s));
        QVERIFY(pages[0].contains(m->dateText(0)) && pages[0].contains(m->readingText(0)));
        QVERIFY(!pages[0].contains(m->dateText(1)));
        const QString flat = pages[0].simplified();
        // The title, the page line, then the whole heading.
        QVERIFY2(
            flat.startsWith(u"SENTORAX Monitor / ΑΡΧΕΙΟ ΚΑΤΑΓΡΑΦΩΝ Σελίδα"_s) &&
                flat.contains(
                    u"ΠΛΗΡΟΦΟΡΙΕΣ ΑΡΧΕΙΟΥ ΚΑΤΑΓΡΑΦΩΝ. ΣΥΣΤΗΜΑ:Ψυκτικός θάλαμος αποθήκης τροφίμων της ανατολικής πτέρυγας [7] (C-300) , ΖΩΝΗ ΠΑΡΑΚΟΛΟΥΘΗΣΗΣ:[1] Θερμοκρασία θαλάμου συντήρησης , ΜΗΝΑΣ/ΕΤΟΣ:Μαρτιος/2026"_s),
            qPrintable(flat));

        m_w->selectAllRecords();
        pages = print();
        QCOMPARE(pages.size(), 2);
        QVERIFY(pages[0].contains(u"Σελίδα 1/2"_s) && pages[1].contains(u"Σελίδα 2/2"_s));
        QVERIFY(pages[1].contains(m->dateText(rows - 1)) &&
                pages[1].contains(m->readingText(rows - 1)));
        const QStringList lines = pages[0].split(u'\n');
        const auto lineWith = [&lines](const QString& text) {
            return lines.indexOf(
                QRegularExpression(u".*"_s + QRegularExpression::escape(text) + u".*"_s));
        };
        const qsizetype top = lineWith(m->dateText(0));
        QVERIFY(top >= 0);
        // The first row of each column on the top line, in order; each reading right of its date.
        for (int c = 1; c < 4; ++c) {
            QCOMPARE(lineWith(m->dateText(c * perColumn)), top);
            QVERIFY(lines[top].indexOf(m->dateText((c - 1) * perColumn)) <
                    lines[top].indexOf(m->readingText((c - 1) * perColumn)));
            QVERIFY(lines[top].indexOf(m->readingText((c - 1) * perColumn)) <
                    lines[top].indexOf(m->dateText(c * perColumn)));
        }
        QCOMPARE(lineWith(m->dateText(perColumn + 2)), top + 2);
        QVERIFY(m_fx->dialogs.messages().isEmpty());
    }

private:
    void seed()
    {
        RecordsSeed s(m_fx->db);
        // Listed by name: Alpha (0), Beta (1).
        QVERIFY(s.unit(u"A-100"_s, u"Alpha"_s));
        QVERIFY(s.zone(u"A-100"_s, {.number = 1, .name = u"'Ψυγείο'"_s}));
        QVERIFY(s.zone(u"A-100"_s, {.number = 5, .name = u"NULL"_s, .type = 2}));
        QVERIFY(s.zone(u"A-100"_s, {.number = 8, .name = u"'Άδεια'"_s, .pageBytes = 0}));
        const double march[] = {20, 30, 30.5, 10, 9.5};
        QVERIFY(s.series(
            u"A-100"_s, 1, at(u"2026-03-02 08:00:00"_s), 3600, 5,
            [&march](int i) { return march[i]; }, 0, 100));
        QVERIFY(s.record(u"A-100"_s, 1, u"2026-03-02 13:00:00"_s, 25, 3, 105));
        QVERIFY(s.record(u"A-100"_s, 5, u"2026-03-03 10:00:00"_s, 0.5, 2, 1));
        QVERIFY(s.record(u"A-100"_s, 5, u"2026-03-03 11:00:00"_s, 0, 2, 2));
        QVERIFY(s.record(u"A-100"_s, 5, u"2026-03-03 12:00:00"_s, -1, 2, 3));
        QVERIFY(s.unit(u"B-200"_s, u"Beta"_s));
        QVERIFY(s.zone(u"B-200"_s, {.number = 1, .name = u"'Χ'"_s, .pageBytes = 0, .lastPage = 0}));
    }

    void open(int unitIndex = 0);

    QStringList print()
    {
        const QString pdf = m_fx->answerPdf();
        m_w->printAction()->trigger();
        return pdfPages(pdf);
    }

    // The zones listed, which of the three lists are on, the rows shown and how
    // many of the graph button and the save and print commands are on (all or none).
    QString state() const
    {
        return u"%1 zones, lists %2%3%4, %5 rows, %6 on"_s.arg(m_w->sensorSelect()->count())
            .arg(int(m_w->sensorSelect()->isEnabled()))
            .arg(int(m_w->monthSelect()->isEnabled()))
            .arg(int(m_w->yearSelect()->isEnabled()))
            .arg(m_w->model()->rowCount())
            .arg(m_w->graphButton()->isEnabled() + m_w->saveAction()->isEnabled() +
                 m_w->printAction()->isEnabled());
    }

    std::unique_ptr<GuiFixture> m_fx;
    std::unique_ptr<RecordsWindow> m_w;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

void TestRecordsWindow::open(int unitIndex)
{
    m_w = std::make_unique<RecordsWindow>(m_fx->ctx);
    m_tester = std::make_unique<QAbstractItemModelTester>(
        m_w->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    fillSystemSelect(*m_w, unitIndex, false);
}

QTEST_MAIN(TestRecordsWindow)
#include "tst_recordswindow.moc"
