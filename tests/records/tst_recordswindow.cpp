#include "ChooseItem.h"
#include "GuiFixture.h"
#include "RecordsSeed.h"
#include "reports/Colors.h"
#include "reports/records/RecordsModel.h"
#include "sim/RecordWriter.h"
#include "ui/UnitList.h"
#include "views/records/RecordsWindow.h"

#include <QAbstractItemModelTester>
#include <QBrush>
#include <QComboBox>
#include <QFontMetricsF>
#include <QGroupBox>
#include <QHeaderView>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

namespace {

QColor textColor(const QModelIndex& index)
{
    const QVariant v = index.data(Qt::ForegroundRole);
    return v.isValid() ? v.value<QBrush>().color() : QColor();
}

// The graph button and the save and print commands: on together or off together.
int commandsOn(RecordsWindow& w)
{
    return w.graphButton()->isEnabled() + w.saveAction()->isEnabled() +
           w.printAction()->isEnabled();
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
            comboTexts(m_w->monthSelect()),
            (QStringList{u"Ιανουάριος"_s, u"Φεβρουάριος"_s, u"Μαρτιος"_s, u"Απρίλιος"_s, u"Μάιος"_s,
                         u"Ιούνιος"_s, u"Ιούλιος"_s, u"Αύγουστος"_s, u"Σεπτέμβριος"_s,
                         u"Οκτώβριος"_s, u"Νοέμβριος"_s, u"Δεκέμβριος"_s, u"ΟΛΟΙ"_s}));
        QCOMPARE(m_w->yearSelect()->itemText(255), u"2255"_s);
        QCOMPARE(m_w->monthText() + u'/' + m_w->yearText(), u"Μαρτιος/2026"_s);
        // At creation: lists enabled, record commands disabled.
        QVERIFY(m_w->sensorSelect()->isEnabled() && m_w->monthSelect()->isEnabled() &&
                m_w->yearSelect()->isEnabled());
        QCOMPARE(commandsOn(*m_w), 0);

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

        // The frames Frame1 to Frame11.
        const QStringList frames =
            u"Πλοήγηση|Πληροφορίες ζώνης|Γράφημα|Μέγιστο όριο|Ελάχιστο όριο|Επιλογή συστήματος|Επιλογή χρονικής περιόδου|Καταγραφές|Επιλογή ζώνης|Μήνας|Έτος"_s
                .split(u'|');
        for (int i = 0; i < frames.size(); ++i) {
            const auto* box = m_w->findChild<QGroupBox*>(u"Frame%1"_s.arg(i + 1));
            QCOMPARE(box ? box->title() : u"no Frame%1"_s.arg(i + 1), frames[i]);
        }
        QVERIFY(!m_w->graphButton()->icon().isNull());
        QCOMPARE(GuiFixture::clippedChild(*m_w->centralWidget()), QString());

        auto* manage = m_w->findChild<QMenu*>(u"Diahirisi"_s);
        QVERIFY(manage);
        QCOMPARE(manage->title(), u"Διαχείριση"_s);
        QStringList items;
        for (QAction* a : manage->actions())
            items << (a->isSeparator() ? u"-"_s : a->text());
        QCOMPARE(items, (QStringList{u"Αποθήκευση αρχείου καταγραφών"_s,
                                     u"Εκτύπωση αρχείου καταγραφών"_s, u"-"_s, u"Έξοδος"_s, u"-"_s,
                                     u"Σύνοψη μήνα"_s, u"Προεπισκόπηση αρχείου καταγραφών"_s,
                                     u"Προεπισκόπηση σύνοψης μήνα"_s}));

        // The header texts with their blanks size the columns; both fit side by side.
        ArchiveGrid* grid = m_w->grid();
        QCOMPARE(grid->model()->headerData(0, Qt::Horizontal).toString(),
                 QString(34, u' ') + u"ΗΜΕΡΟΜΗΝΙΑ"_s);
        QCOMPARE(grid->model()->headerData(1, Qt::Horizontal).toString(),
                 QString(42, u' ') + u"ΕΝΔΕΙΞΗ"_s);
        const QFontMetricsF fm(grid->font());
        int total = 0;
        for (int c = 0; c < 2; ++c) {
            const double text = fm.horizontalAdvance(RecordsModel::headerText(c));
            const int width = grid->columnWidth(c);
            QVERIFY2(width >= text && width <= text + 12, qPrintable(QString::number(width)));
            total += width;
        }
        QVERIFY2(total <= grid->viewport()->width(), qPrintable(QString::number(total)));
    }

    void zoneFillsTheGridNewestFirstWithItsLimits()
    {
        open();
        QCOMPARE(comboTexts(m_w->sensorSelect()),
                 (QStringList{u"[1] Ψυγείο"_s, u"[5] Ανώνυμη ζώνη"_s}));
        QCOMPARE(m_w->sensorSelect()->currentIndex(), 0);

        RecordsModel* model = m_w->model();
        QCOMPARE(model->rowCount(), 6);
        const QStringList expected[] = {
            {u"02/03/2026 - 13:00"_s, u"25.0 bar"_s}, {u"02/03/2026 - 12:00"_s, u"9.5 °C"_s},
            {u"02/03/2026 - 11:00"_s, u"10.0 °C"_s},  {u"02/03/2026 - 10:00"_s, u"30.5 °C"_s},
            {u"02/03/2026 - 09:00"_s, u"30.0 °C"_s},  {u"02/03/2026 - 08:00"_s, u"20.0 °C"_s}};
        const QColor colours[] = {QColor(),         colors::kBlue, QColor(),
                                  colors::kDarkRed, QColor(),      QColor()};
        for (int r = 0; r < 6; ++r) {
            QCOMPARE((QStringList{model->index(r, 0).data().toString(),
                                  model->index(r, 1).data().toString()}),
                     expected[r]);
            QCOMPARE(textColor(model->index(r, 0)), colours[r]);
            QCOMPARE(textColor(model->index(r, 1)), colours[r]);
        }
        QCOMPARE(m_w->minLimitCaption(), u"10.0 °C"_s);
        QCOMPARE(m_w->maxLimitCaption(), u"30.0 °C"_s);

        // Row 1 selected over both columns, highlighted without the focus too.
        QVERIFY(m_w->grid()->selectionModel()->isSelected(model->index(0, 1)));
        QCOMPARE(m_w->selectedRows(), std::make_pair(0, 0));
        const QPalette p = m_w->grid()->palette();
        QCOMPARE(p.color(QPalette::Inactive, QPalette::Highlight),
                 p.color(QPalette::Active, QPalette::Highlight));
        QCOMPARE(commandsOn(*m_w), 3);

        // The shared records, in grid order, with the bare limit texts.
        const auto shared = m_fx->ctx.loadedRecords;
        QVERIFY(shared);
        QCOMPARE(shared->records.size(), size_t(6));
        QCOMPARE(shared->records.front().secs, at(u"2026-03-02 13:00:00"_s));
        QCOMPARE(shared->records.front().sensorType, quint8(3));
        QCOMPARE(shared->minLimitText + shared->maxLimitText, u"10.030.0"_s);

        // A contact zone: states in the normal colour, no limits.
        chooseItem(m_w->sensorSelect(), 1);
        QCOMPARE(model->rowCount(), 3);
        for (int r = 0; r < 3; ++r) {
            QCOMPARE(model->index(r, 1).data().toString(), r < 2 ? u"ΑΝΟΙΧΤΗ"_s : u"ΚΛΕΙΣΤΗ"_s);
            QCOMPARE(textColor(model->index(r, 1)), QColor());
        }
        QCOMPARE(m_w->minLimitCaption() + m_w->maxLimitCaption(), QString());
        QCOMPARE(m_fx->ctx.loadedRecords->minLimitText + m_fx->ctx.loadedRecords->maxLimitText,
                 QString());
    }

    void choosingTheShownEntryAgainFetchesNewRecords()
    {
        open();
        RecordsSeed s(m_fx->db);
        QComboBox* lists[] = {m_w->sensorSelect(), m_w->monthSelect(), m_w->yearSelect()};
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(m_w->model()->rowCount(), 6 + i);
            QVERIFY(s.record(u"A-100"_s, 1, u"2026-03-02 14:0%1:00"_s.arg(i), 21, 0, 106 + i));
            chooseItem(lists[i], lists[i]->currentIndex());
            QCOMPARE(m_w->model()->dateText(0), u"02/03/2026 - 14:0%1"_s.arg(i));
        }
    }

    void unitWithoutZonesDisablesTheListsSilentlyAndFailuresAreReported()
    {
        open();
        QCOMPARE(m_w->model()->rowCount(), 6);
        chooseItem(m_w->systemSelect(), 1);
        QCOMPARE(m_w->sensorSelect()->count(), 0);
        QVERIFY(!m_w->sensorSelect()->isEnabled() && !m_w->monthSelect()->isEnabled() &&
                !m_w->yearSelect()->isEnabled());
        QCOMPARE(m_w->model()->rowCount(), 0);
        QCOMPARE(commandsOn(*m_w), 0);
        QVERIFY(m_w->minLimitCaption().isEmpty() && m_w->maxLimitCaption().isEmpty());
        QVERIFY(m_fx->dialogs.shown().isEmpty());

        // Back to a unit with zones: the lists come back.
        chooseItem(m_w->systemSelect(), 0);
        QVERIFY(m_w->sensorSelect()->isEnabled() && m_w->monthSelect()->isEnabled());
        QCOMPARE(m_w->model()->rowCount(), 6);

        // Failures are reported and the window stays usable.
        m_fx->dialogs.answerMessage(DialogService::Answer::Ok);
        m_fx->dialogs.answerMessage(DialogService::Answer::Ok);
        QVERIFY(m_fx->exec(u"ALTER TABLE Records RENAME TO Records_away"_s));
        chooseItem(m_w->monthSelect(), 12);
        QCOMPARE(m_fx->dialogs.messages().size(), 1);
        QVERIFY(m_w->isEnabled() && !GuiFixture::waitWindowShown());
        QCOMPARE(commandsOn(*m_w), 0);
        QVERIFY(m_w->sensorSelect()->isEnabled() && m_w->monthSelect()->isEnabled());

        // The table is back: the next selection loads, and a later failure is news again.
        QVERIFY(m_fx->exec(u"ALTER TABLE Records_away RENAME TO Records"_s));
        chooseItem(m_w->monthSelect(), 2);
        QCOMPARE(m_w->model()->rowCount(), 6);
        QVERIFY(m_w->saveAction()->isEnabled());
        QVERIFY(m_fx->exec(u"ALTER TABLE Sensors_Info RENAME TO Sensors_Info_away"_s));
        emit m_w->systemSelect()->activated(0);
        QCOMPARE(m_fx->dialogs.messages().size(), 2);
        QVERIFY(!m_w->sensorSelect()->isEnabled());
        QCOMPARE(m_w->model()->rowCount(), 0);
        QVERIFY(!m_fx->dialogs.anyUnexpected());
    }

    void decemberAndWholeYearKeepTheirEdges()
    {
        RecordsSeed s(m_fx->db);
        QVERIFY(s.unit(u"C-300"_s, u"Gamma"_s));
        QVERIFY(s.zone(u"C-300"_s, {.number = 3, .name = u"'Γ'"_s}));
        const QString times[] = {u"2024-12-31 23:59:59"_s, u"2025-01-01 00:00:00"_s,
                                 u"2025-11-30 23:59:59"_s, u"2025-12-01 00:00:00"_s,
                                 u"2025-12-31 23:59:59"_s, u"2026-01-01 00:00:00"_s};
        for (int i = 0; i < 6; ++i)
            QVERIFY(s.record(u"C-300"_s, 3, times[i], i, 0, i + 1));
        open(2);
        QCOMPARE(m_w->sensorSelect()->currentText(), u"[3] Γ"_s);
        chooseItem(m_w->yearSelect(), 25);
        chooseItem(m_w->monthSelect(), 11);
        QCOMPARE(m_w->model()->rowCount(), 2);
        QCOMPARE(m_w->model()->dateText(0), u"31/12/2025 - 23:59"_s);
        QCOMPARE(m_w->model()->dateText(1), u"01/12/2025 - 00:00"_s);
        chooseItem(m_w->monthSelect(), 12);
        QCOMPARE(m_w->model()->rowCount(), 4);
        QCOMPARE(m_w->model()->dateText(3), u"01/01/2025 - 00:00"_s);
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
        for (int r = 1; r <= 5; ++r) {
            for (int c = 0; c < 2; ++c)
                QCOMPARE(grid->selectionModel()->isSelected(grid->model()->index(r, c)),
                         r >= 2 && r <= 4);
        }

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
        QCOMPARE(m_w->model()->rowCount(), 0);
        QCOMPARE(commandsOn(*m_w), 0);
        QCOMPARE(m_fx->ctx.loadedRecords->records.size(), size_t(206));
        QVERIFY(m_fx->dialogs.shown().isEmpty());
        QTest::keyClick(grid, Qt::Key_A, Qt::ControlModifier);
        QVERIFY(grid->selectionModel()->selection().isEmpty());
        QCOMPARE(m_w->selectedRows(), std::make_pair(-1, -1));
    }

    void loadKeepsServingEventsBehindTheWaitWindow()
    {
        QVERIFY(!sim::seedRecords(m_fx->db, u"A-100"_s, 1, 0, at(u"2026-03-05 00:00:00"_s), 30,
                                  60000, 7)
                     .isError());
        open();
        // A timer due now runs inside the load only if the load lets events through.
        QString meanwhile = u"not run"_s;
        QTimer::singleShot(0, this, [&] {
            meanwhile = u"enabled %1, waiting %2"_s.arg(int(m_w->isEnabled()))
                            .arg(int(GuiFixture::waitWindowShown()));
        });
        m_w->refreshRecords();
        QCOMPARE(meanwhile, u"enabled 0, waiting 1"_s);
        QVERIFY(m_w->isEnabled() && !GuiFixture::waitWindowShown());
        QVERIFY(m_w->model()->rowCount() > 60000);
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
