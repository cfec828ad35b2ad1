#include "ChooseItem.h"
#include "CurrentSeed.h"
#include "GuiFixture.h"
#include "reports/Colors.h"
#include "shell/SecondaryViews.h"
#include "ui/NavigationFrame.h"
#include "ui/UnitList.h"
#include "views/current/CurrentCondition.h"
#include "views/current/MainWindow.h"

#include <QComboBox>
#include <QFontMetricsF>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

namespace {

QColor buttonColor(const QPushButton* b)
{
    return b->property("sxColor").value<QColor>();
}

QStringList rowTexts(const QTableWidget* grid, int row)
{
    QStringList out;
    for (int c = 0; c < grid->columnCount(); ++c)
        out << (grid->item(row, c) ? grid->item(row, c)->text() : u"<none>"_s);
    return out;
}

QColor rowColor(const QTableWidget* grid, int row)
{
    const QColor first = grid->item(row, 0)->background().color();
    for (int c = 1; c < grid->columnCount(); ++c) {
        if (grid->item(row, c)->background().color() != first)
            return QColor(); // a row is one colour
    }
    return first;
}

} // namespace

// The current-condition window on a real database: what the operator sees in
// the grids, labels and buttons, how rows are kept between refreshes, the
// timer, failures, and navigation to the other views and back.
class TestMainWindow : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m_fx = std::make_unique<GuiFixture>();
        SX_REQUIRE_FIXTURE(*m_fx);
        seed();
        if (QTest::currentTestFailed())
            return;
        m_w = std::make_unique<MainWindow>(m_fx->ctx);
        m_fx->navigator->setMainView(m_w.get());
        registerSecondaryViews(*m_fx->navigator);
    }

    void cleanup()
    {
        if (m_fx && m_fx->navigator && m_fx->navigator->secondaryView())
            delete m_fx->navigator->secondaryView();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_w.reset();
        m_fx.reset();
    }

    void layoutFitsTheScreenAndTheHeadersSizeTheColumns()
    {
        fillSystemSelect(*m_w, -1, false);
        QVERIFY(refreshed()); // the values may widen columns
        m_w->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_w.get()));
        // 1280 × 800 at 96 dpi, with room for a title bar and a panel.
        QVERIFY2(m_w->width() <= 1280 && m_w->height() <= 740,
                 qPrintable(u"%1×%2"_s.arg(m_w->width()).arg(m_w->height())));
        QCOMPARE(GuiFixture::clippedChild(*m_w->centralWidget()), QString());
        // The leading blanks are what widens the name columns.
        QCOMPARE(m_w->pointsGrid()->horizontalHeaderItem(0)->text(),
                 QString(59, u' ') + u"ΣΗΜΕΙΟ"_s);
        QCOMPARE(m_w->powerGrid()->horizontalHeaderItem(0)->text(),
                 QString(60, u' ') + u"ΔΙΚΤΥΟ ΡΕΥΜΑΤΟΣ"_s + QString(15, u' '));
        for (QTableWidget* grid : {m_w->pointsGrid(), m_w->powerGrid()}) {
            const QFontMetricsF fm(grid->font());
            int total = 0;
            for (int c = 0; c < grid->columnCount(); ++c) {
                const double text = fm.horizontalAdvance(grid->horizontalHeaderItem(c)->text());
                const int width = grid->columnWidth(c);
                QVERIFY2(width >= text && width <= text + 12,
                         qPrintable(u"column %1: %2 for text %3"_s.arg(c).arg(width).arg(text)));
                total += width;
            }
            // All columns visible side by side without a horizontal scroll.
            QVERIFY2(total <= grid->viewport()->width() + 2 || total <= grid->width() - 4,
                     qPrintable(QString::number(total)));
        }
    }

    void eachUnitFillsTheView()
    {
        fillSystemSelect(*m_w, -1, false);
        QVERIFY(refreshed());
        QCOMPARE(m_w->unitIndex(), 0);
        QCOMPARE(m_w->selectedSerial(), u"A-100"_s);

        QTableWidget* points = m_w->pointsGrid();
        QCOMPARE(points->rowCount(), 10);
        QCOMPARE(rowTexts(points, 0),
                 (QStringList{u"[1] Ζώνη 1"_s, u"1.5 °C"_s, u"2.0 °C"_s, u"30.0 °C"_s}));
        QCOMPARE(rowColor(points, 0), colors::kLightGrey);
        QCOMPARE(rowTexts(points, 1),
                 (QStringList{u"[2] Ζώνη 2"_s, u"3.0 °C"_s, QString(), u"30.0 °C"_s}));
        // Out of limits; every other row rule is tst_currentcondition's part.
        QCOMPARE(rowColor(points, 1), colors::kLightRed);

        QTableWidget* power = m_w->powerGrid();
        QCOMPARE(power->rowCount(), 3);
        QCOMPARE(rowTexts(power, 0), (QStringList{u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ"_s, u"OK"_s}));
        QCOMPARE(rowTexts(power, 1), (QStringList{u"[1] Ρεύμα"_s, u"ΔΙΑΚΟΠΗ"_s}));
        QCOMPARE(rowColor(power, 1), colors::kLightRed);

        auto* label6 = label(u"Label6"_s);
        QCOMPARE(label6->text(), u"ΣΕ ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ"_s);
        QCOMPARE(label6->palette().color(QPalette::WindowText), colors::kGreen);
        auto* status = label(u"Systemstatus"_s);
        QCOMPARE(status->text(), u"ΚΑΤΑΣΤΑΣΗ ΣΥΣΤΗΜΑΤΟΣ ΟΚ"_s);
        QCOMPARE(status->palette().color(QPalette::Window), colors::kLightGrey);
        auto* clock = label(u"Systemdatetimelabel"_s);
        QCOMPARE(clock->text(), u"Τρίτη 5 Μαρτίου 2024\n2:07 μμ"_s);

        auto* c4 = button(u"Command4"_s);
        auto* c5 = button(u"Command5"_s);
        auto* c7 = button(u"Command7"_s);
        QVERIFY(c4->isEnabled() && c5->isEnabled() && c7->isEnabled());
        QCOMPARE(c4->text(), u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s);
        QCOMPARE(buttonColor(c4), colors::kLightRed);
        QCOMPARE(m_w->relayCaption(), u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s);
        QCOMPARE(buttonColor(c5), colors::kLightGrey);

        // The third unit: automatic-on notification, relay on, a fault, version 1.21.
        QVERIFY(select(2));
        QCOMPARE(points->rowCount(), 1);
        QCOMPARE(power->rowCount(), 0);
        QCOMPARE(c4->text(), u"ΑΥΤΟΜΑΤΗ"_s);
        QCOMPARE(c5->text(), u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s);
        QCOMPARE(status->text(),
                 u"ΥΠΑΡΧΟΥΝ ΠΡΟΒΛΗΜΑΤΑ ΣΤΟ ΣΥΣΤΗΜΑ\nΔΕΙΤΕ ΝΕΑ ΜΗΝΥΜΑΤΑ ΓΙΑ ΛΕΠΤΟΜΕΡΕΙΕΣ"_s);
        QCOMPARE(status->palette().color(QPalette::Window), colors::kLightRed);
        QCOMPARE(clock->text(), QString());

        // Beta, not connected: commands off, captions kept from Gamma.
        QVERIFY(select(1));
        QCOMPARE(points->rowCount() + power->rowCount(), 0);
        QCOMPARE(label6->text(), u"ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ ΜΗ ΔΙΑΘΕΣΙΜΗ"_s);
        QCOMPARE(label6->palette().color(QPalette::WindowText), colors::kRed);
        QVERIFY(!c4->isEnabled() && !c5->isEnabled() && !c7->isEnabled());
        QCOMPARE(c4->text(), u"ΑΥΤΟΜΑΤΗ"_s);
        QCOMPARE(c5->text(), u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s);
        QCOMPARE(status->text(), QString());
        QCOMPARE(status->palette().color(QPalette::Window), colors::kLightGrey);
        // Back online: enabled again.
        QVERIFY(
            m_fx->exec(u"UPDATE Systems_Info SET SyI_Online=1 WHERE SyI_Serialnumber='B-200'"_s));
        QVERIFY(refreshed(true));
        QVERIFY(c4->isEnabled() && c5->isEnabled() && c7->isEnabled());
        QCOMPARE(points->rowCount(), 1);
        QCOMPARE(c4->text(), u"ΑΥΤΟΜΑΤΗ"_s); // no condition row: missing counts as automatic-on

        // Gamma vanishes after the list was filled: choosing it still clears the
        // view, and a refresh without a unit row leaves it cleared.
        QVERIFY(select(0));
        QVERIFY(m_fx->exec(u"DELETE FROM Systems_Info WHERE SyI_Serialnumber='G-300'"_s));
        QVERIFY(select(2));
        QCOMPARE(points->rowCount() + power->rowCount(), 0);
        for (const QLabel* l : {label6, status, clock})
            QCOMPARE(l->text(), QString());
        // The buttons keep what they showed.
        QCOMPARE(c4->text(), u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s);
        QVERIFY(m_w->refreshTimer()->isActive());
    }

    void refreshRewritesOnlyWhatChangedInPlaceAndFollowsNewMessages()
    {
        fillSystemSelect(*m_w, 0, false);
        QVERIFY(refreshed());
        QTableWidget* grid = m_w->pointsGrid();
        QCOMPARE(grid->rowCount(), 10);
        QTableWidgetItem* first = grid->item(0, 0);
        QTableWidgetItem* seventh = grid->item(6, 1);

        QSignalSpy changed(grid->model(), &QAbstractItemModel::dataChanged);
        QSignalSpy removed(grid->model(), &QAbstractItemModel::rowsRemoved);
        QSignalSpy inserted(grid->model(), &QAbstractItemModel::rowsInserted);
        QSignalSpy reset(grid->model(), &QAbstractItemModel::modelReset);
        QSignalSpy power(m_w->powerGrid()->model(), &QAbstractItemModel::dataChanged);

        // Nothing new: no cell is touched. Then one reading: exactly that cell.
        QVERIFY(refreshed(true));
        QCOMPARE(changed.size() + removed.size() + inserted.size() + power.size(), 0);
        QVERIFY(m_fx->exec(
            u"UPDATE Sensors_Current_Condition SET SeCC_Currvalue=99 WHERE SeCC_SyI_Serialnumber='A-100' AND SeCC_Sensornumber=6"_s));
        QVERIFY(refreshed(true));
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed[0][0].toModelIndex(), grid->model()->index(5, 1));
        QCOMPARE(grid->item(5, 1)->text(), u"99.0 °C"_s);

        QVERIFY(m_fx->exec(
            u"UPDATE Sensors_Info SET SeI_Used=0 WHERE SeI_SyI_Serialnumber='A-100' AND SeI_Sensornumber>7"_s));
        QVERIFY(refreshed(true));
        QCOMPARE(grid->rowCount(), 7);
        QCOMPARE(rowTexts(grid, 6)[0], u"[7] Ζώνη 7"_s);
        QCOMPARE(removed.size(), 1); // trimmed once, at the end
        QCOMPARE(removed[0][1].toInt(), 7);
        QCOMPARE(removed[0][2].toInt(), 9);
        QCOMPARE(grid->item(0, 0), first); // cells overwritten, not rebuilt
        QCOMPARE(grid->item(6, 1), seventh);

        removed.clear();
        QVERIFY(
            m_fx->exec(u"UPDATE Sensors_Info SET SeI_Used=1 WHERE SeI_SyI_Serialnumber='A-100'"_s));
        QVERIFY(refreshed(true));
        QCOMPARE(grid->rowCount(), 10);
        QCOMPARE(inserted.size(), 3); // one row at a time
        for (const QList<QVariant>& args : inserted)
            QCOMPARE(args[1].toInt(), args[2].toInt());
        QCOMPARE(reset.size(), 0);
        QCOMPARE(grid->item(0, 0), first);

        // A unit in the middle of the list disappears: later rows move up in place.
        QVERIFY(m_fx->exec(
            u"UPDATE Sensors_Info SET SeI_Used=0 WHERE SeI_SyI_Serialnumber='A-100' AND SeI_Sensornumber=2"_s));
        QVERIFY(refreshed(true));
        QCOMPARE(grid->rowCount(), 9);
        QCOMPARE(rowTexts(grid, 1)[0], u"[3] Ζώνη 3"_s);
        QCOMPARE(rowColor(grid, 1), colors::kLightBlue);

        // The messages button: Gamma's fault counts as a new message, whichever unit is shown.
        QPushButton* messages = m_w->navigation()->button(ViewId::Messages);
        QVERIFY(m_w->navigation()->newMessagesShown());
        QCOMPARE(buttonColor(messages), colors::kLightRed);
        QVERIFY(m_fx->exec(u"DELETE FROM Systems_Faults"_s));
        QVERIFY(refreshed(true));
        QCOMPARE(buttonColor(messages), colors::kLightGrey);

        CurrentSeed s(m_fx->db);
        QVERIFY(s.newPointMessage(u"B-200"_s)); // another unit's message
        QVERIFY(refreshed(true));
        QCOMPARE(buttonColor(messages), colors::kLightRed);

        QVERIFY(m_fx->exec(u"UPDATE Sensors_Events SET SeE_Recipients=0"_s)); // archived
        QVERIFY(refreshed(true));
        QCOMPARE(buttonColor(messages), colors::kLightGrey);
    }

    void longLabelsGetTallerRows()
    {
        const QString longName =
            QString(u"Ψυκτικός θάλαμος αποθήκης φαρμάκων "_s).repeated(5).trimmed();
        QVERIFY(m_fx->exec(u"UPDATE Sensors_Info SET SeI_Sensorname='"_s + longName +
                           u"' WHERE SeI_SyI_Serialnumber='A-100' AND SeI_Sensornumber=2"_s));
        QVERIFY(m_fx->exec(u"UPDATE Powermonitoring_Info SET PmI_Powername='"_s + longName +
                           u"' WHERE PmI_SyI_Serialnumber='A-100' AND PmI_Powernumber=2"_s));
        fillSystemSelect(*m_w, 0, false);
        QVERIFY(refreshed());

        for (QTableWidget* grid : {m_w->pointsGrid(), m_w->powerGrid()}) {
            const QFontMetricsF fm(grid->font());
            const QString label = grid->item(1, 0)->text();
            const double w = fm.horizontalAdvance(label);
            const int c = grid->columnWidth(0);
            QVERIFY2(w > 2 * c, "the long label must span more than two column widths");
            const int lines = labelRowLines(w, c); // three or more (tst_currentcondition)
            QCOMPARE(grid->rowHeight(1), qRound(lines * fm.height()));
            // Short labels keep the grid's default height.
            QCOMPARE(grid->rowHeight(0), grid->verticalHeader()->defaultSectionSize());
        }

        // The name gets short again: the row returns to the default height.
        QVERIFY(m_fx->exec(
            u"UPDATE Sensors_Info SET SeI_Sensorname='Β' WHERE SeI_SyI_Serialnumber='A-100' AND SeI_Sensornumber=2"_s));
        QVERIFY(refreshed(true));
        QCOMPARE(m_w->pointsGrid()->rowHeight(1),
                 m_w->pointsGrid()->verticalHeader()->defaultSectionSize());
    }

    // Without a unit in use nothing is shown and the commands stay unavailable,
    // while each round reads the list again; once units are listed, the timer
    // runs from the end of each refresh.
    void timerRunsFromTheEndOfEachRefresh()
    {
        QTimer* timer = m_w->refreshTimer();
        QVERIFY(!timer->isActive());
        QVERIFY(timer->isSingleShot());
        QVERIFY(m_fx->exec(u"UPDATE Systems_Info SET SyI_Used=0"_s));
        // No unit in use: the rounds go on, reading the list again.
        fillSystemSelect(*m_w, -1, false);
        QVERIFY(timer->isActive());
        timer->setInterval(10);
        QTest::qWait(200); // rounds that find no unit
        QCOMPARE(m_w->systemSelect()->count(), 0);
        QCOMPARE(label(u"Label6"_s)->text(), u"ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ ΜΗ ΔΙΑΘΕΣΙΜΗ"_s);
        QCOMPARE(label(u"Label6"_s)->palette().color(QPalette::WindowText), colors::kRed);
        for (const auto& [name, caption] : {std::pair{u"Command4"_s, u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s},
                                            std::pair{u"Command5"_s, u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s},
                                            std::pair{u"Command7"_s, u"ΑΛΛΑΓΗ ΚΑΤΑΣΤΑΣΗΣ"_s}}) {
            QCOMPARE(button(name)->text(), caption);
            QCOMPARE(buttonColor(button(name)), colors::kLightGrey);
            QVERIFY(!button(name)->isEnabled());
        }
        QVERIFY(m_fx->dialogs.shown().isEmpty());

        // Units come into use: a round lists them and shows the first.
        QVERIFY(m_fx->exec(u"UPDATE Systems_Info SET SyI_Used=1"_s));
        QTRY_COMPARE(m_w->pointsGrid()->rowCount(), 10);
        QCOMPARE(m_w->selectedSerial(), u"A-100"_s);
        timer->setInterval(MainWindow::kRefreshIntervalMs);
        fillSystemSelect(*m_w, 0, false);
        QVERIFY(refreshed());
        QVERIFY(timer->isActive());
        QVERIFY(timer->remainingTime() > 9000);
        // A tick refreshes and arms the timer again.
        QVERIFY(m_fx->exec(
            u"UPDATE Sensors_Current_Condition SET SeCC_Currvalue=42 WHERE SeCC_SyI_Serialnumber='A-100' AND SeCC_Sensornumber=1"_s));
        timer->setInterval(10);
        QTRY_COMPARE(m_w->pointsGrid()->item(0, 1)->text(), u"42.0 °C"_s);
        QTRY_VERIFY(timer->isActive());
        timer->stop();
    }

    void navigationKeepsTheUnitIndex()
    {
        Navigator& nav = *m_fx->navigator;
        fillSystemSelect(*m_w, 2, false);
        QVERIFY(refreshed());
        m_w->show();
        QCOMPARE(m_w->unitIndex(), 2);

        nav.navigate(*m_w, ViewId::Messages);
        ViewWindow* messages = nav.secondaryView();
        QVERIFY(messages && messages->viewId() == ViewId::Messages);
        QVERIFY(!m_w->isVisible());
        QCOMPARE(messages->unitIndex(), 2);
        // Hidden, the main view keeps refreshing.
        QVERIFY(m_w->refreshTimer()->isActive());

        nav.navigate(*messages, ViewId::Current);
        QVERIFY(m_w->isVisible());
        QVERIFY(refreshed()); // shown again, it reads the unit anew
        QCOMPARE(m_w->selectedSerial(), u"G-300"_s);
        QCOMPARE(rowTexts(m_w->pointsGrid(), 0)[0], u"[1] Γ1"_s);
    }

    void failingQueryIsReportedOnceAndTheViewRecovers()
    {
        fillSystemSelect(*m_w, 0, false);
        QVERIFY(refreshed());
        QCOMPARE(m_w->pointsGrid()->rowCount(), 10);
        auto* label6 = label(u"Label6"_s);

        // The points table goes away (as if the server were rebuilding it).
        QVERIFY(m_fx->exec(u"ALTER TABLE Sensors_Info RENAME TO Sensors_Info_away"_s));
        QVERIFY(refreshed(true));
        QCOMPARE(m_fx->dialogs.messages().size(), 1);
        QVERIFY(m_w->databaseLost());
        QCOMPARE(label6->text(), u"ΣΥΝΔΕΣΗ ΜΕ ΤΗ ΒΑΣΗ ΔΕΔΟΜΕΝΩΝ ΜΗ ΔΙΑΘΕΣΙΜΗ"_s);
        QCOMPARE(label6->palette().color(QPalette::WindowText), colors::kRed);
        QCOMPARE(m_w->pointsGrid()->rowCount(), 0);
        QVERIFY(!button(u"Command4"_s)->isEnabled());
        QVERIFY(m_w->refreshTimer()->isActive());

        QVERIFY(refreshed(true));
        QCOMPARE(m_fx->dialogs.messages().size(), 1); // once per outage
        QVERIFY(m_w->refreshTimer()->isActive());

        QVERIFY(m_fx->exec(u"ALTER TABLE Sensors_Info_away RENAME TO Sensors_Info"_s));
        QVERIFY(refreshed(true));
        QVERIFY(!m_w->databaseLost());
        QCOMPARE(m_w->pointsGrid()->rowCount(), 10);
        QCOMPARE(label6->text(), u"ΣΕ ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ"_s);
        QVERIFY(button(u"Command4"_s)->isEnabled());

        // A new outage is news again.
        QVERIFY(m_fx->exec(u"ALTER TABLE Powermonitoring_Info RENAME TO Pm_away"_s));
        QVERIFY(refreshed(true));
        QCOMPARE(m_fx->dialogs.messages().size(), 2);
        QVERIFY(m_fx->exec(u"ALTER TABLE Pm_away RENAME TO Powermonitoring_Info"_s));
    }

private:
    void seed()
    {
        CurrentSeed s(m_fx->db);
        // Listed by name: Alpha (0), Beta (1), Gamma (2).
        QVERIFY(s.unit(u"A-100"_s, u"Alpha"_s, u"1"_s, u"'1.22'"_s));
        for (int n = 1; n <= 10; ++n) {
            const QString type = n == 5 ? u"2"_s : u"0"_s;
            QVERIFY(s.point(u"A-100"_s, n, u"'Ζώνη %1'"_s.arg(n), type, u"1"_s, u"30"_s, u"2"_s,
                            u"1"_s, n == 1 ? u"1"_s : u"0"_s));
            QVERIFY(s.pointCondition(u"A-100"_s, n, QString::number(n * 1.5),
                                     n == 2 ? u"1"_s : u"0"_s, n == 3 ? u"1"_s : u"0"_s,
                                     n == 4 ? u"1"_s : u"0"_s));
        }
        for (const auto& [n, name, cut] : {std::tuple{1, u"'Τροφοδοτικό'"_s, u"0"_s},
                                           {2, u"'Ρεύμα'"_s, u"1"_s},
                                           {3, u"''"_s, u"0"_s}})
            QVERIFY(s.power(u"A-100"_s, n, name) && s.powerCondition(u"A-100"_s, n, cut, cut));
        QVERIFY(s.condition(u"A-100"_s, u"1"_s, u"0"_s, u"'2024-03-05 14:07:00'"_s));

        QVERIFY(s.unit(u"B-200"_s, u"Beta"_s, u"0"_s) && s.point(u"B-200"_s, 1, u"'Χ'"_s) &&
                s.pointCondition(u"B-200"_s, 1, u"1"_s));
        QVERIFY(s.unit(u"G-300"_s, u"Gamma"_s, u"1"_s, u"'1.21'"_s) &&
                s.point(u"G-300"_s, 1, u"'Γ1'"_s) && s.pointCondition(u"G-300"_s, 1, u"4"_s) &&
                s.condition(u"G-300"_s, u"3"_s, u"1"_s) && s.fault(u"G-300"_s, 0, u"3"_s));
    }

    // The user picks a unit; true once its condition is shown.
    [[nodiscard]] bool select(int index)
    {
        chooseItem(m_w->systemSelect(), index);
        return refreshed();
    }

    // Waits until the window's read is back and shown, with the box a failure
    // raises from the event loop; starts a refresh first when asked.
    [[nodiscard]] bool refreshed(bool start = false)
    {
        if (start)
            m_w->refresh();
        const bool back =
            QTest::qWaitFor([this] { return !m_w->refreshing() && !m_fx->link.busy(); });
        QCoreApplication::processEvents();
        return back;
    }

    QLabel* label(const QString& name) { return m_w->findChild<QLabel*>(name); }
    QPushButton* button(const QString& name) { return m_w->findChild<QPushButton*>(name); }

    std::unique_ptr<GuiFixture> m_fx;
    std::unique_ptr<MainWindow> m_w;
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
