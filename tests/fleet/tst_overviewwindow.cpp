// The overview window offscreen on a real database: order, sorting, filter,
// the counts, the marks of the unit list, and handing a unit to the main view.
#include "../current/CurrentSeed.h"
#include "GuiFixture.h"
#include "ui/UnitList.h"
#include "ui/UnitMarks.h"
#include "ui/ViewWindow.h"
#include "views/current/MainWindow.h"
#include "views/overview/FleetModel.h"
#include "views/overview/FleetWatch.h"
#include "views/overview/OverviewWindow.h"

#include <QAbstractItemModelTester>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QTableWidget>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;

class TestOverviewWindow : public QObject {
    Q_OBJECT
private slots:
    void init()
    {
        m_fx = std::make_unique<test::GuiFixture>();
        SX_REQUIRE_FIXTURE(*m_fx);
        test::CurrentSeed seed(m_fx->db);
        // serial, name, online, location; A3 and A10 in alarm, F has a fault.
        QVERIFY(seed.unit(u"N"_s, u"Αποθήκη"_s, u"1"_s, u"'1.22'"_s, u"'2'"_s));
        QVERIFY(seed.unit(u"A10"_s, u"Ψυγείο"_s, u"1"_s, u"'1.22'"_s, u"'10'"_s));
        QVERIFY(seed.unit(u"A3"_s, u"Καταψύκτης"_s, u"1"_s, u"'1.22'"_s, u"'3'"_s));
        QVERIFY(seed.unit(u"OFF"_s, u"Γραφείο"_s, u"0"_s, u"'1.22'"_s, u"'1'"_s));
        QVERIFY(seed.unit(u"F"_s, u"Εργαστήριο"_s, u"1"_s, u"'1.22'"_s, u"'5'"_s));
        for (const QString& s : {u"A10"_s, u"A3"_s})
            QVERIFY(seed.point(s, 1, u"'Θάλαμος'"_s) &&
                    seed.pointCondition(s, 1, u"60"_s, u"1"_s, u"1"_s));
        QVERIFY(seed.fault(u"F"_s, 0, u"3"_s));
        QVERIFY(seed.newPointMessage(u"N"_s));

        m_main = std::make_unique<MainWindow>(m_fx->ctx);
        m_fx->navigator->setMainView(m_main.get());
        m_watch = std::make_unique<FleetWatch>(m_fx->ctx, QDBusConnection(u"sx-no-bus"_s));
        m_watch->refresh();
        QTRY_VERIFY(m_fx->ctx.fleet);
        fillSystemSelect(*m_main, 0, false);
        m_main->refreshTimer()->stop();
        m_main->show();
        // The menu item of every view opens the window.
        m_main->overviewItem()->trigger();
        m_view = m_watch->overview();
        QVERIFY(m_view && m_view->isVisible());
        new QAbstractItemModelTester(m_view->table()->model(),
                                     QAbstractItemModelTester::FailureReportingMode::Fatal, m_view);
    }
    void cleanup()
    {
        m_watch.reset();
        m_main.reset();
        m_fx.reset();
    }
    void worstFirstThenByLocationWithMarks()
    {
        // Location 3 before 10: numbers in their numeric order.
        QCOMPARE(serials(), (QStringList{u"A3"_s, u"A10"_s, u"OFF"_s, u"F"_s, u"N"_s}));
        QCOMPARE(m_view->table()->model()->index(0, FleetModel::State).data().toString(),
                 u"Συναγερμός"_s);
        QCOMPARE(
            m_view->counts()->text(),
            u"<b>Συναγερμός: 2</b> &nbsp;·&nbsp; <b>Εκτός σύνδεσης: 1</b> &nbsp;·&nbsp; Προγραμματισμός: 0 &nbsp;·&nbsp; <b>Βλάβες: 1</b> &nbsp;·&nbsp; Κανονική: 1 &nbsp;·&nbsp; Σύνολο: 5"_s);
        // The unit list of the main view carries the same marks.
        QComboBox* list = m_main->systemSelect();
        QCOMPARE(list->count(), 5);
        for (int i = 0; i < list->count(); ++i) {
            const QString serial = list->itemData(i).toString();
            QCOMPARE(serial, m_fx->ctx.serialAt(i));
            const FleetState state = m_fx->ctx.fleet->find(serial)->state();
            QCOMPARE(list->itemIcon(i).pixmap(16).toImage(),
                     fleetStateMark(state).pixmap(16).toImage());
            // The entry texts stay as they are.
            QVERIFY(list->itemText(i).endsWith(u'(' + serial + u')'));
        }
        // A new read keeps the order and the selected unit.
        m_view->table()->setCurrentIndex(m_view->table()->model()->index(3, 1));
        QVERIFY(m_fx->exec(
            u"UPDATE Sensors_Current_Condition SET SeCC_Outofbounds=0, SeCC_Alarmcondition=0 WHERE SeCC_SyI_Serialnumber='A3'"_s));
        m_watch->refresh();
        QTRY_VERIFY(!m_watch->reading());
        QCOMPARE(serials(), (QStringList{u"A10"_s, u"OFF"_s, u"F"_s, u"N"_s, u"A3"_s}));
        QCOMPARE(m_view->serialAt(m_view->table()->currentIndex().row()), u"F"_s);
        // The filter looks into every column, whatever the case.
        m_view->filter()->setText(u"ψυγ"_s);
        QCOMPARE(serials(), QStringList{u"A10"_s});
        m_view->filter()->setText(u"Βλάβες"_s);
        QCOMPARE(serials(), QStringList{u"F"_s});
    }
    void sortsByAnyColumn_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<int>("order");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("name") << int(FleetModel::Name) << int(Qt::AscendingOrder)
                              << QStringList{u"N"_s, u"OFF"_s, u"F"_s, u"A3"_s, u"A10"_s};
        QTest::newRow("location down") << int(FleetModel::Location) << int(Qt::DescendingOrder)
                                       << QStringList{u"A10"_s, u"F"_s, u"A3"_s, u"N"_s, u"OFF"_s};
        QTest::newRow("messages down")
            << int(FleetModel::Messages) << int(Qt::DescendingOrder) << QStringList{u"N"_s};
    }
    void sortsByAnyColumn()
    {
        QFETCH(int, column);
        QFETCH(int, order);
        QFETCH(QStringList, expected);
        m_view->table()->sortByColumn(column, static_cast<Qt::SortOrder>(order));
        QCOMPARE(serials().mid(0, expected.size()), expected);
    }
    // Enter arrives by the same signal.
    void doubleClickSelectsTheUnitInTheMainView()
    {
        QTableView* table = m_view->table();
        QVERIFY(m_main->selectedSerial() != u"A10"_s);
        const QPoint at = table->visualRect(table->model()->index(1, FleetModel::Name)).center();
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, at); // A10
        // Between statements: after whatever read is on its way.
        QTRY_COMPARE(m_main->selectedSerial(), u"A10"_s);
        // As a pick in the list: the view shows that unit's zones at once.
        QTRY_COMPARE(m_main->pointsGrid()->rowCount(), 1);
        QCOMPARE(m_main->pointsGrid()->item(0, 0)->text(), u"[1] Θάλαμος"_s);
    }

private:
    QStringList serials() const
    {
        QStringList out;
        for (int row = 0; row < m_view->table()->model()->rowCount(); ++row)
            out << m_view->serialAt(row);
        return out;
    }

    std::unique_ptr<test::GuiFixture> m_fx;
    std::unique_ptr<MainWindow> m_main;
    std::unique_ptr<FleetWatch> m_watch;
    OverviewWindow* m_view = nullptr;
};

QTEST_MAIN(TestOverviewWindow)
#include "tst_overviewwindow.moc"
