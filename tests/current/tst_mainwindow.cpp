#include "ChooseItem.h"
#include "CurrentSeed.h"
#include "GuiFixture.h"
#include "Tone.h"
#include "ui/NavigationFrame.h"
#include "ui/UnitList.h"
#include "views/current/CurrentCondition.h"
#include "views/current/MainWindow.h"

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

QString buttonTone(const QPushButton* b)
{
    return tone(b->property("sxColor").value<QColor>());
}

// A row's texts, then its colour when all its cells share one.
QString rowOf(const QTableWidget* grid, int row)
{
    QStringList out;
    QColor color = grid->item(row, 0)->background().color();
    for (int c = 0; c < grid->columnCount(); ++c) {
        out << (grid->item(row, c) ? grid->item(row, c)->text() : u"<none>"_s);
        if (grid->item(row, c) && grid->item(row, c)->background().color() != color)
            color = QColor();
    }
    return (out << tone(color)).join(u'|');
}

} // namespace

// The current-condition window on a real database: what the operator sees,
// how rows are kept between refreshes, the timer and failures. The row rules
// themselves are tst_currentcondition's part.
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
    }

    void cleanup()
    {
        m_w.reset();
        m_fx.reset();
    }

    void layoutFitsTheScreenAndTheHeadersSizeTheColumns()
    {
        const QString longName = QString(u"Ψυκτικός θάλαμος αποθήκης φαρμάκων "_s).repeated(5);
        QVERIFY(m_fx->exec(
            u"UPDATE Sensors_Info SET SeI_Sensorname='%1' WHERE SeI_Sensornumber=2;\n"
            "UPDATE Powermonitoring_Info SET PmI_Powername='%1' WHERE PmI_Powernumber=2"_s.arg(
                longName)));
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
                QVERIFY2(width >= text && width <= text + 12, qPrintable(QString::number(width)));
                total += width;
            }
            // All columns visible side by side without a horizontal scroll.
            QVERIFY2(total <= grid->viewport()->width() + 2 || total <= grid->width() - 4,
                     qPrintable(QString::number(total)));
            // The long label wraps onto a taller row; short ones keep the default height.
            const int lines =
                labelRowLines(fm.horizontalAdvance(grid->item(1, 0)->text()), grid->columnWidth(0));
            QVERIFY(lines >= 3);
            QCOMPARE(grid->rowHeight(1), qRound(lines * fm.height()));
            QCOMPARE(grid->rowHeight(0), grid->verticalHeader()->defaultSectionSize());
        }
    }

    void eachUnitFillsTheView()
    {
        // No unit in use: the commands stay off while each round reads the list again.
        QVERIFY(m_fx->exec(u"UPDATE Systems_Info SET SyI_Used=0"_s));
        QTimer* timer = m_w->refreshTimer();
        QVERIFY(!timer->isActive() && timer->isSingleShot());
        timer->setInterval(10);
        fillSystemSelect(*m_w, -1, false);
        QTest::qWait(100); // rounds that find no unit
        QCOMPARE(m_w->systemSelect()->count(), 0);
        QCOMPARE(shown(), u"ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ ΜΗ ΔΙΑΘΕΣΙΜΗ red| grey||ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ grey off|"
                          "ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ grey off|ΑΛΛΑΓΗ ΚΑΤΑΣΤΑΣΗΣ grey off"_s);
        // A round lists the units once in use and shows the first; the timer runs
        // from the end of each refresh.
        QVERIFY(m_fx->exec(u"UPDATE Systems_Info SET SyI_Used=1"_s));
        QTRY_COMPARE(m_w->systemSelect()->count(), 3);
        timer->setInterval(MainWindow::kRefreshIntervalMs);
        QVERIFY(refreshed(true));
        QVERIFY(timer->isActive() && timer->remainingTime() > 9000);
        QCOMPARE(m_w->selectedSerial(), u"A-100"_s);
        QTableWidget* points = m_w->pointsGrid();
        QTableWidget* power = m_w->powerGrid();
        QCOMPARE(points->rowCount() * 10 + power->rowCount(), 103);
        QCOMPARE(rowOf(points, 0), u"[1] Ζώνη 1|1.5 °C|2.0 °C|30.0 °C|grey"_s);
        QCOMPARE(rowOf(power, 1), u"[1] Ρεύμα|ΔΙΑΚΟΠΗ|pink"_s);
        // Gamma's fault lights the messages button, whichever unit is shown.
        QCOMPARE(buttonTone(m_w->navigation()->button(ViewId::Messages)), u"pink"_s);
        QCOMPARE(shown(), u"ΣΕ ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ green|ΚΑΤΑΣΤΑΣΗ ΣΥΣΤΗΜΑΤΟΣ ΟΚ grey|"
                          "Τρίτη 5 Μαρτίου 2024\n2:07 μμ|ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ pink on|"
                          "ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ grey on|ΑΛΛΑΓΗ ΚΑΤΑΣΤΑΣΗΣ grey on"_s);

        // Gamma: automatic-on notification, relay on, a fault, no clock.
        QVERIFY(select(2));
        QCOMPARE(points->rowCount() * 10 + power->rowCount(), 10);
        QCOMPARE(shown(), u"ΣΕ ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ green|ΥΠΑΡΧΟΥΝ ΠΡΟΒΛΗΜΑΤΑ ΣΤΟ ΣΥΣΤΗΜΑ\n"
                          "ΔΕΙΤΕ ΝΕΑ ΜΗΝΥΜΑΤΑ ΓΙΑ ΛΕΠΤΟΜΕΡΕΙΕΣ pink||ΑΥΤΟΜΑΤΗ pink on|"
                          "ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ pink on|ΑΛΛΑΓΗ ΚΑΤΑΣΤΑΣΗΣ grey on"_s);

        // Beta, not connected: empty grids, commands off, captions kept from Gamma.
        QVERIFY(select(1));
        QCOMPARE(points->rowCount() + power->rowCount(), 0);
        QCOMPARE(shown(), u"ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ ΜΗ ΔΙΑΘΕΣΙΜΗ red| grey||ΑΥΤΟΜΑΤΗ pink off|"
                          "ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ pink off|ΑΛΛΑΓΗ ΚΑΤΑΣΤΑΣΗΣ grey off"_s);
        // Gamma vanishes after the list was filled: choosing it still clears the
        // view; the buttons keep what they showed.
        QVERIFY(select(0));
        QVERIFY(m_fx->exec(u"DELETE FROM Systems_Info WHERE SyI_Serialnumber='G-300'"_s));
        QVERIFY(select(2));
        QCOMPARE(points->rowCount() + power->rowCount(), 0);
        QCOMPARE(shown(), u" green| grey||ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ pink on|"
                          "ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ grey on|ΑΛΛΑΓΗ ΚΑΤΑΣΤΑΣΗΣ grey on"_s);
        QVERIFY(m_w->refreshTimer()->isActive());
    }

    void refreshRewritesOnlyWhatChangedInPlace()
    {
        fillSystemSelect(*m_w, 0, false);
        QVERIFY(refreshed());
        QTableWidget* grid = m_w->pointsGrid();
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
        QVERIFY(change(
            u"UPDATE Sensors_Current_Condition SET SeCC_Currvalue=99 WHERE SeCC_Sensornumber=6"_s));
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed[0][0].toModelIndex(), grid->model()->index(5, 1));
        QCOMPARE(grid->item(5, 1)->text(), u"99.0 °C"_s);

        QVERIFY(change(u"UPDATE Sensors_Info SET SeI_Used=0 WHERE SeI_Sensornumber>7"_s));
        QCOMPARE(grid->rowCount(), 7);
        QCOMPARE(removed.size(), 1); // trimmed once, at the end
        QCOMPARE(removed[0][1].toInt() * 10 + removed[0][2].toInt(), 79);
        QCOMPARE(grid->item(0, 0), first); // cells overwritten, not rebuilt
        QCOMPARE(grid->item(6, 1), seventh);

        QVERIFY(change(u"UPDATE Sensors_Info SET SeI_Used=1"_s));
        QCOMPARE(grid->rowCount(), 10);
        QCOMPARE(inserted.size(), 3); // one row at a time
        for (const QList<QVariant>& args : inserted)
            QCOMPARE(args[1].toInt(), args[2].toInt());
        QCOMPARE(reset.size(), 0);
        QCOMPARE(grid->item(0, 0), first);

        // A zone in the middle of the list disappears: later rows move up in place.
        QVERIFY(change(u"UPDATE Sensors_Info SET SeI_Used=0 WHERE SeI_Sensornumber=2"_s));
        QCOMPARE(grid->rowCount(), 9);
        QCOMPARE(rowOf(grid, 1), u"[3] Ζώνη 3|4.5 °C||30.0 °C|lilac"_s);
    }

    void failingQueryIsReportedOnceAndTheViewRecovers()
    {
        fillSystemSelect(*m_w, 0, false);
        QVERIFY(refreshed());
        // The points table goes away (as if the server were rebuilding it).
        QVERIFY(m_fx->exec(u"ALTER TABLE Sensors_Info RENAME TO Sensors_Info_away"_s));
        for (int round = 0; round < 2; ++round) {
            QVERIFY(refreshed(true));
            QCOMPARE(m_fx->dialogs.messages().size(), 1); // once per outage
            QVERIFY(m_w->databaseLost() && m_w->refreshTimer()->isActive());
            QCOMPARE(m_w->pointsGrid()->rowCount(), 0);
            QCOMPARE(shown().section(u'|', 0, 0),
                     u"ΣΥΝΔΕΣΗ ΜΕ ΤΗ ΒΑΣΗ ΔΕΔΟΜΕΝΩΝ ΜΗ ΔΙΑΘΕΣΙΜΗ red"_s);
            QVERIFY(!shown().contains(u" on"_s));
        }
        QVERIFY(m_fx->exec(u"ALTER TABLE Sensors_Info_away RENAME TO Sensors_Info"_s));
        QVERIFY(refreshed(true));
        QVERIFY(!m_w->databaseLost());
        QCOMPARE(m_w->pointsGrid()->rowCount(), 10);
        QCOMPARE(shown().section(u'|', 0, 0), u"ΣΕ ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ green"_s);
        QVERIFY(!shown().contains(u" off"_s));
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
        // Listed by name: Alpha (0), Beta (1), Gamma (2). Alpha's zone 1 has its
        // minimum in force, 2 is out of limits, 3 in alarm, 4 not powered, 5 a contact;
        // written in reverse, they are shown in number order.
        QVERIFY(s.unit(u"A-100"_s, u"Alpha"_s, u"1"_s, u"'1.22'"_s));
        for (int n = 10; n >= 1; --n) {
            const auto flag = [n](int on) { return n == on ? u"1"_s : u"0"_s; };
            QVERIFY(s.point(u"A-100"_s, n, u"'Ζώνη %1'"_s.arg(n), n == 5 ? u"2"_s : u"0"_s, u"1"_s,
                            u"30"_s, u"2"_s, u"1"_s, flag(1)));
            QVERIFY(s.pointCondition(u"A-100"_s, n, QString::number(n * 1.5), flag(2), flag(3),
                                     flag(4)));
        }
        // Inputs likewise; the fourth is not in use.
        for (const auto& [n, name, cut, used] : {std::tuple{3, u"''"_s, u"0"_s, u"1"_s},
                                                 {1, u"'Τροφοδοτικό'"_s, u"0"_s, u"1"_s},
                                                 {4, u"'Π4'"_s, u"0"_s, u"NULL"_s},
                                                 {2, u"'Ρεύμα'"_s, u"1"_s, u"1"_s}})
            QVERIFY(s.power(u"A-100"_s, n, name, used) &&
                    s.powerCondition(u"A-100"_s, n, cut, cut));
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

    // Only Alpha has the zones these change.
    [[nodiscard]] bool change(const QString& sql) { return m_fx->exec(sql) && refreshed(true); }

    // The connection line, the status, the clock and the three commands, as the
    // operator reads them.
    QString shown()
    {
        const auto text = [this](const QString& name, QPalette::ColorRole role) {
            const QLabel* l = m_w->findChild<QLabel*>(name);
            return l->text() + u' ' + tone(l->palette().color(role));
        };
        QStringList out{text(u"Label6"_s, QPalette::WindowText),
                        text(u"Systemstatus"_s, QPalette::Window),
                        m_w->findChild<QLabel*>(u"Systemdatetimelabel"_s)->text()};
        for (const QString& name : {u"Command4"_s, u"Command5"_s, u"Command7"_s}) {
            const auto* b = m_w->findChild<QPushButton*>(name);
            out << b->text() + u' ' + buttonTone(b) + (b->isEnabled() ? u" on"_s : u" off"_s);
        }
        return out.join(u'|');
    }

    std::unique_ptr<GuiFixture> m_fx;
    std::unique_ptr<MainWindow> m_w;
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
