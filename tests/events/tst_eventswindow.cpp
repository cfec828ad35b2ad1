#include "EventsSeed.h"
#include "GuiFixture.h"
#include "app/Colors.h"
#include "app/UnitList.h"
#include "app/WaitWindow.h"
#include "views/events/EventsModel.h"
#include "views/events/EventsWindow.h"
#include "views/records/RecordsWindow.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QBrush>
#include <QComboBox>
#include <QFontMetricsF>
#include <QGroupBox>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

namespace {

bool waitWindowShown()
{
    const QWidgetList all = QApplication::topLevelWidgets();
    return std::any_of(all.begin(), all.end(),
                       [](QWidget* w) { return qobject_cast<WaitWindow*>(w) && w->isVisible(); });
}

QStringList listTexts(const QComboBox* list)
{
    QStringList out;
    for (int i = 0; i < list->count(); ++i)
        out << list->itemText(i);
    return out;
}

// "date | description | colour" of every grid row, colour as n (normal), a (alarm), b (bypass).
QStringList gridRows(const EventsModel* m)
{
    QStringList out;
    for (int r = 0; r < m->rowCount(); ++r) {
        const QVariant fg = m->index(r, 1).data(Qt::ForegroundRole);
        const QColor c = fg.isValid() ? fg.value<QBrush>().color() : QColor();
        const QString code = !c.isValid()            ? u"n"_s
                             : c == colors::kDarkRed ? u"a"_s
                             : c == colors::kBlue    ? u"b"_s
                                                     : c.name();
        out << m->index(r, 0).data().toString() + u" | "_s + m->index(r, 1).data().toString() +
                   u" | "_s + code;
    }
    return out;
}

const QString kDelivery =
    u"ΝΕΑ ΜΗΝΥΜΑΤΑ ΠΑΡΑΔΟΘΗΚΑΝ ΣΕ ΕΞΕΡΧΟΜΕΝΗ ΤΗΛΕΦΩΝΙΚΗ ΚΛΗΣΗ ΣΤΟΝ 2ο ΠΑΡΑΛΗΠΤΗ. Ο ΠΑΡΑΛΗΠΤΗΣ ΑΚΥΡΩΣΕ ΤΗΝ ΠΑΡΑΔΟΣΗ ΤΩΝ ΜΗΝΥΜΑΤΩΝ ΣΤΟΥΣ ΥΠΟΛΟΙΠΟΥΣ ΠΑΡΑΛΗΠΤΕΣ"_s;
const QString kBypass =
    u"ΕΝΕΡΓΟΠΟΙΗΘΗΚΕ Η ΠΑΡΑΚΑΜΨΗ ΣΤΟ ΣΗΜΕΙΟ 4 (Είσοδος) ΓΙΑ 8 ΩΡΕΣ, ΜΕΣΩ ΤΗΣ ΚΕΝΤΡΙΚΗΣ ΜΟΝΑΔΑΣ ΤΟΥ ΣΥΣΤΗΜΑΤΟΣ"_s;

} // namespace

// The events window on a real database: controls, the source list, the
// enabling rules, the filters, the grid, marking in one transaction, failures
// and the hand-over to other views.
class TestEventsWindow : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void layoutCaptionsAndMenus();
    void startUpSetsThePeriodWithoutFilling();
    void sourceListPerUnit_data();
    void sourceListPerUnit();
    void kindOptionsFollowTheSource_data();
    void kindOptionsFollowTheSource();
    void filtersPickTheRowsNewestFirst_data();
    void filtersPickTheRowsNewestFirst();
    void descriptionsWiderThanTheColumnGetTallerRows();
    void selectAllOnlyWhileMarkingIsPossible();
    void marking_data();
    void marking();
    void markingThatFailsMarksNothing();
    void failedQueriesAreReportedAndTheWindowStaysUsable();
    void navigationCarriesTheUnitIndex();

private:
    void seed();
    void open(int unitIndex);
    void pickSource(const QString& text);

    std::unique_ptr<GuiFixture> m_fx;
    std::unique_ptr<EventsWindow> m_w;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

void TestEventsWindow::seed()
{
    EventsSeed s(m_fx->db);
    // Listed by name: Alpha (0), Beta (1), Gamma (2), then "ΟΛΑ" (3).
    QVERIFY(s.unit(u"A-1"_s, u"Alpha"_s));
    QVERIFY(s.zone(u"A-1"_s, 2, u"Ψυγείο"_s));
    QVERIFY(s.zone(u"A-1"_s, 5, QString()));
    QVERIFY(s.event(u"A-1"_s, 1, u"2026-03-01 08:00:00"_s, 2, 1, 2, 1));
    QVERIFY(s.event(u"A-1"_s, 2, u"2026-03-02 09:00:00"_s, 2, 0, 2, 0));
    QVERIFY(s.event(u"A-1"_s, 3, u"2026-03-03 10:00:00"_s, 5, 1, 2, 1));
    QVERIFY(s.event(u"A-1"_s, 4, u"2026-03-04 11:00:00"_s, 24, 0, 0, 0, u"2;1"_s));
    QVERIFY(s.event(u"A-1"_s, {5, u"2026-03-05 12:00:00"_s, 2, 1, 2, 1, {}, 1}));
    QVERIFY(s.event(u"A-1"_s, 6, u"2026-02-10 12:00:00"_s, 5, 1, 2, 1));
    QVERIFY(s.unit(u"B-2"_s, u"Beta"_s, u"9"_s, 0, 3));
    QVERIFY(s.zone(u"B-2"_s, 4, u"Είσοδος"_s));
    QVERIFY(s.event(u"B-2"_s, 10, u"2026-03-06 13:00:00"_s, 25, 0, 0, 0, u"1;4;8"_s));
    QVERIFY(s.event(u"B-2"_s, 11, u"2026-03-07 14:00:00"_s, 23, 0, 0, 0, u"3"_s));
    QVERIFY(s.event(u"B-2"_s, 12, u"2026-03-08 15:00:00"_s, 21, 1));
    QVERIFY(s.event(u"B-2"_s, 13, u"2026-03-09 16:00:00"_s, 21, 0));
    // Events, but no event memory by the unit's counters.
    QVERIFY(s.unit(u"C-3"_s, u"Gamma"_s, u"3"_s, 0, 0));
    QVERIFY(s.event(u"C-3"_s, 1, u"2026-03-01 08:00:00"_s, 1, 1));
}

void TestEventsWindow::init()
{
    m_fx = std::make_unique<GuiFixture>();
    SX_REQUIRE_DB(m_fx->scratch);
    QVERIFY(m_fx->ready());
    seed();
    m_fx->clock.advance(
        QDateTime::currentDateTime().msecsTo(QDateTime(QDate(2026, 3, 15), QTime(12, 0))));
}

void TestEventsWindow::cleanup()
{
    m_tester.reset();
    m_w.reset();
    m_fx.reset();
}

void TestEventsWindow::open(int unitIndex)
{
    m_w = std::make_unique<EventsWindow>(m_fx->ctx);
    m_tester = std::make_unique<QAbstractItemModelTester>(
        m_w->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    fillSystemSelect(*m_w, unitIndex, true);
}

void TestEventsWindow::pickSource(const QString& text)
{
    QComboBox* list = m_w->sensorSelect();
    const int i = list->findText(text);
    QVERIFY2(i >= 0, qPrintable(text));
    list->setCurrentIndex(i);
    emit list->activated(i);
}

void TestEventsWindow::layoutCaptionsAndMenus()
{
    open(0);
    m_w->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_w.get()));
    QCOMPARE(m_w->windowTitle(), u"SENTORAX Monitor / Αρχείο συμβάντων"_s);
    QVERIFY2(m_w->width() <= 1280 && m_w->height() <= 740,
             qPrintable(u"%1×%2"_s.arg(m_w->width()).arg(m_w->height())));
    const std::pair<const char*, QString> frames[] = {{"Frame1", u"Πλοήγηση"_s},
                                                      {"Frame6", u"Επιλογή συστήματος"_s},
                                                      {"Eventsfrm", u"Επιλογή προέλευσης"_s},
                                                      {"Frame7", u"Επιλογή χρονικής περιόδου"_s},
                                                      {"Frame10", u"Μήνας"_s},
                                                      {"Frame11", u"Έτος"_s},
                                                      {"Frame2", u"Συμβάντα"_s}};
    for (const auto& [name, caption] : frames) {
        auto* box = m_w->findChild<QGroupBox*>(QString::fromLatin1(name));
        QVERIFY2(box, name);
        QCOMPARE(box->title(), caption);
    }
    const std::pair<const char*, QString> options[] = {{"Option2_0", u"Συναγερμός"_s},
                                                       {"Option2_1", u"Αποκατάσταση"_s},
                                                       {"Option2_2", u"Όλα"_s},
                                                       {"Option1_0", u"Νέα συμβάντα"_s},
                                                       {"Option1_1", u"Όλα"_s}};
    for (const auto& [name, caption] : options) {
        auto* o = m_w->findChild<QRadioButton*>(QString::fromLatin1(name));
        QVERIFY2(o, name);
        QCOMPARE(o->text(), caption);
        QVERIFY2(o->sizeHint().width() <= o->width(), name);
    }
    QVERIFY(m_w->kindOption(0)->isChecked());
    QVERIFY(m_w->newOption(0)->isChecked());
    QCOMPARE(m_w->markButton()->objectName(), u"EventsMarkCmd"_s);
    QCOMPARE(m_w->markButton()->text(), u"Μαρκάρισμα ως διαβασμένα"_s);
    QVERIFY(m_w->markButton()->sizeHint().width() <= m_w->markButton()->width());
    const std::pair<const char*, const char*> parents[] = {
        {"SensorSelect", "Eventsfrm"}, {"Option2_0", "Eventsfrm"}, {"MonthSelect", "Frame10"},
        {"YearSelect", "Frame11"},     {"Frame10", "Frame7"},      {"Option1_0", "Frame2"},
        {"EventsMarkCmd", "Frame2"}};
    for (const auto& [child, parent] : parents) {
        auto* w = m_w->findChild<QWidget*>(QString::fromLatin1(child));
        QVERIFY2(w, child);
        QCOMPARE(w->parentWidget()->objectName(), QString::fromLatin1(parent));
    }
    // Every named control lies wholly inside its container and clear of its siblings.
    const QList<QWidget*> all = m_w->centralWidget()->findChildren<QWidget*>();
    for (QWidget* a : all) {
        if (a->objectName().isEmpty() || a->objectName().startsWith(u"qt_"_s) || !a->isVisible())
            continue;
        QVERIFY2(a->parentWidget()->rect().contains(a->geometry()), qPrintable(a->objectName()));
        for (QWidget* b : all) {
            if (b == a || b->parentWidget() != a->parentWidget() || b->objectName().isEmpty() ||
                b->objectName().startsWith(u"qt_"_s) || !b->isVisible())
                continue;
            QVERIFY2(!a->geometry().intersects(b->geometry()),
                     qPrintable(a->objectName() + u" / "_s + b->objectName()));
        }
    }

    auto* manage = m_w->findChild<QMenu*>(u"Diahirisi"_s);
    QVERIFY(manage);
    QCOMPARE(manage->title(), u"Διαχείριση"_s);
    const QList<QAction*> items = manage->actions();
    QCOMPARE(items.size(), 3);
    QCOMPARE(items[0]->objectName(), u"Printrecords"_s);
    QCOMPARE(items[0]->text(), u"Εκτύπωση αρχείου συμβάντων"_s);
    QVERIFY(items[1]->isSeparator());
    QCOMPARE(items[2]->objectName(), u"Terminateprg"_s);
    QCOMPARE(items[2]->text(), u"Έξοδος"_s);

    const QStringList months = listTexts(m_w->monthSelect());
    QCOMPARE(months.size(), 13);
    QCOMPARE(months.at(2), u"Μαρτιος"_s);
    QCOMPARE(months.at(12), u"ΟΛΟΙ"_s);
    QCOMPARE(m_w->yearSelect()->count(), 256);
    QCOMPARE(m_w->yearSelect()->itemText(0), u"2000"_s);
    QCOMPARE(m_w->yearSelect()->itemText(255), u"2255"_s);

    // The padded header texts size the columns; the grid shows both whole.
    const QFontMetricsF fm(m_w->grid()->font());
    for (int c = 0; c < 2; ++c) {
        QVERIFY(m_w->grid()->columnWidth(c) >= fm.horizontalAdvance(EventsModel::headerText(c)));
    }
    QCOMPARE(EventsModel::headerText(0), QString(18, u' ') + u"ΗΜΕΡΟΜΗΝΙΑ"_s);
    QCOMPARE(EventsModel::headerText(1), QString(176, u' ') + u"ΠΕΡΙΓΡΑΦΗ"_s);
    QVERIFY(m_w->grid()->viewport()->width() >=
            m_w->grid()->columnWidth(0) + m_w->grid()->columnWidth(1));
    // A picture to look at, on request.
    if (qEnvironmentVariableIsSet("SX_SHOT_DIR")) {
        m_w->kindOption(2)->click();
        (void)m_w->grab().save(qEnvironmentVariable("SX_SHOT_DIR") + u"/events-window-"_s +
                               m_fx->scratch.kindName() + u".png"_s);
    }
}

void TestEventsWindow::startUpSetsThePeriodWithoutFilling()
{
    m_w = std::make_unique<EventsWindow>(m_fx->ctx);
    QCOMPARE(m_w->fills(), 0);
    QVERIFY(!m_w->loading());
    QCOMPARE(m_w->monthSelect()->currentIndex(), 2);
    QCOMPARE(m_w->yearSelect()->currentText(), u"2026"_s);
    QVERIFY(!m_w->sensorSelect()->isEnabled());
    QVERIFY(!m_w->markButton()->isEnabled());
    QVERIFY(!m_w->printAction()->isEnabled());
    // The unit arrives with the navigation: one list, one fill.
    fillSystemSelect(*m_w, 0, true);
    QCOMPARE(m_w->fills(), 1);
    QCOMPARE(listTexts(m_w->systemSelect()).last(), u"ΟΛΑ"_s);
    QCOMPARE(m_fx->ctx.systemSerials.last(), u"*"_s);
}

void TestEventsWindow::sourceListPerUnit_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<QStringList>("entries");
    QTest::newRow("points 2 and 5 and deliveries")
        << 0
        << QStringList{u"Ζώνες παρακολούθησης"_s, u"[2] Ψυγείο"_s, u"[5] Ανώνυμη ζώνη"_s,
                       u"Παράδοση μηνυμάτων"_s, u"ΟΛΑ"_s};
    QTest::newRow("no points, by the last page counter")
        << 1
        << QStringList{u"Δίκτυο ρεύματος"_s, u"Βλάβες συστήματος"_s, u"Παράκαμψη ζώνης"_s,
                       u"ΟΛΑ"_s};
    QTest::newRow("no event memory") << 2 << QStringList{};
    QTest::newRow("all units, without queries") << 3
                                                << QStringList{u"Ζώνες παρακολούθησης"_s,
                                                               u"Δίκτυο ρεύματος"_s,
                                                               u"Βλάβες αισθητηρίων"_s,
                                                               u"Βλάβες συστήματος"_s,
                                                               u"Παράδοση μηνυμάτων"_s,
                                                               u"Παράκαμψη ζώνης"_s,
                                                               u"ΟΛΑ"_s};
}

void TestEventsWindow::sourceListPerUnit()
{
    QFETCH(int, unit);
    QFETCH(QStringList, entries);
    open(unit);
    QCOMPARE(listTexts(m_w->sensorSelect()), entries);
    const bool any = !entries.isEmpty();
    for (QWidget* w : std::initializer_list<QWidget*>{
             m_w->sensorSelect(), m_w->monthSelect(), m_w->yearSelect(), m_w->newOption(0),
             m_w->newOption(1), m_w->kindOption(0), m_w->kindOption(1), m_w->kindOption(2)})
        QCOMPARE(w->isEnabled(), any);
    if (any) {
        QCOMPARE(m_w->sensorSelect()->currentText(), u"ΟΛΑ"_s);
        QCOMPARE(m_w->fills(), 1);
        const int pairUnit = unit == 3 ? -1 : unit;
        for (const events::SourceEntry& e : m_w->sources())
            QCOMPARE(e.unitIndex, pairUnit);
    } else {
        QCOMPARE(m_w->fills(), 0);
        QCOMPARE(m_w->model()->rowCount(), 0);
        QVERIFY(!m_w->markButton()->isEnabled());
        QVERIFY(!m_w->printAction()->isEnabled());
    }
    QVERIFY(m_fx->dialogs.shown().isEmpty());
}

void TestEventsWindow::kindOptionsFollowTheSource_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("source");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QString>("from");
    // Each from the opposite state, so that the rule has to act.
    const QString delivery = u"Παράδοση μηνυμάτων"_s;
    const QString faults = u"Βλάβες συστήματος"_s;
    QTest::newRow("all points") << 0 << u"Ζώνες παρακολούθησης"_s << true << delivery;
    QTest::newRow("a point") << 0 << u"[2] Ψυγείο"_s << true << delivery;
    QTest::newRow("deliveries") << 0 << delivery << false << u"ΟΛΑ"_s;
    QTest::newRow("mains") << 1 << u"Δίκτυο ρεύματος"_s << true << faults;
    QTest::newRow("unit faults") << 1 << faults << false << u"ΟΛΑ"_s;
    QTest::newRow("bypass") << 1 << u"Παράκαμψη ζώνης"_s << false << u"Δίκτυο ρεύματος"_s;
    QTest::newRow("sensor faults, all units") << 3 << u"Βλάβες αισθητηρίων"_s << false << u"ΟΛΑ"_s;
    QTest::newRow("every source") << 3 << u"ΟΛΑ"_s << true << faults;
}

void TestEventsWindow::kindOptionsFollowTheSource()
{
    QFETCH(int, unit);
    QFETCH(QString, source);
    QFETCH(bool, enabled);
    QFETCH(QString, from);
    open(unit);
    pickSource(from);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(m_w->kindOption(i)->isEnabled(), !enabled);
    const int before = m_w->fills();
    pickSource(source);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(m_w->kindOption(i)->isEnabled(), enabled);
    QCOMPARE(m_w->fills(), before + 1);
    QVERIFY(m_w->choicesText().contains(enabled ? u" , ΠΡΟΕΛΕΥΣΗ/ΤΥΠΟΣ ΣΥΜΒΑΝΤΩΝ:"_s
                                                : u" , ΠΡΟΕΛΕΥΣΗ ΣΥΜΒΑΝΤΩΝ:"_s));
}

void TestEventsWindow::filtersPickTheRowsNewestFirst_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("source");
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("newOnly");
    QTest::addColumn<int>("month");
    QTest::addColumn<QStringList>("rows");
    const QString a = u"Alpha [7] (A-1) -> "_s;
    const QString b = u"Beta [9] (B-2) -> "_s;
    QTest::newRow("alarms of every source, new, March")
        << 0 << u"ΟΛΑ"_s << 0 << true << 2
        << QStringList{
               u"04/03/2026 - 11:00 | "_s + kDelivery + u" | a"_s,
               u"03/03/2026 - 10:00 | ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 5 (Ανώνυμη ζώνη) ΕΚΤΟΣ ΟΡΙΩΝ: ΕΙΣΟΔΟΣ ΚΛΕΙΣΤΗ | a"_s,
               u"01/03/2026 - 08:00 | ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 2 (Ψυγείο) ΕΚΤΟΣ ΟΡΙΩΝ: ΕΙΣΟΔΟΣ ΚΛΕΙΣΤΗ | a"_s};
    QTest::newRow("restorations of every source take no delivery")
        << 0 << u"ΟΛΑ"_s << 1 << true << 2
        << QStringList{
               u"02/03/2026 - 09:00 | ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 2 (Ψυγείο) ΕΝΤΟΣ ΟΡΙΩΝ: ΕΙΣΟΔΟΣ ΑΝΟΙΧΤΗ | n"_s};
    // Sequence order, not time order: the unit's clock may have been set back.
    QTest::newRow("one point, all events, the whole year, by sequence")
        << 0 << u"[5] Ανώνυμη ζώνη"_s << 2 << false << 12
        << QStringList{
               u"10/02/2026 - 12:00 | ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 5 (Ανώνυμη ζώνη) ΕΚΤΟΣ ΟΡΙΩΝ: ΕΙΣΟΔΟΣ ΚΛΕΙΣΤΗ | a"_s,
               u"03/03/2026 - 10:00 | ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 5 (Ανώνυμη ζώνη) ΕΚΤΟΣ ΟΡΙΩΝ: ΕΙΣΟΔΟΣ ΚΛΕΙΣΤΗ | a"_s};
    QTest::newRow("read events only with all")
        << 0 << u"[2] Ψυγείο"_s << 0 << false << 2
        << QStringList{
               u"05/03/2026 - 12:00 | ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 2 (Ψυγείο) ΕΚΤΟΣ ΟΡΙΩΝ: ΕΙΣΟΔΟΣ ΚΛΕΙΣΤΗ | a"_s,
               u"01/03/2026 - 08:00 | ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 2 (Ψυγείο) ΕΚΤΟΣ ΟΡΙΩΝ: ΕΙΣΟΔΟΣ ΚΛΕΙΣΤΗ | a"_s};
    QTest::newRow("alarms leave the bypass out")
        << 1 << u"ΟΛΑ"_s << 0 << true << 2
        << QStringList{u"08/03/2026 - 15:00 | ΕΓΙΝΕ ΔΙΑΚΟΠΗ ΣΤΗΝ ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ | a"_s,
                       u"07/03/2026 - 14:00 | ΒΛΑΒΗ ΣΥΣΤΗΜΑΤΟΣ: ΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ | a"_s};
    QTest::newRow("both kinds take the bypass, in blue")
        << 1 << u"Παράκαμψη ζώνης"_s << 0 << true << 2
        << QStringList{u"06/03/2026 - 13:00 | "_s + kBypass + u" | b"_s};
    QTest::newRow("mains restorations")
        << 1 << u"Δίκτυο ρεύματος"_s << 1 << true << 2
        << QStringList{u"09/03/2026 - 16:00 | Η ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ ΕΠΑΝΗΛΘΕ | n"_s};
    QTest::newRow("all units: list order, each newest first, with the unit")
        << 3 << u"Ζώνες παρακολούθησης"_s << 1 << true << 2
        << QStringList{u"02/03/2026 - 09:00 | "_s + a +
                       u"ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 2 (Ψυγείο) ΕΝΤΟΣ ΟΡΙΩΝ: ΕΙΣΟΔΟΣ ΑΝΟΙΧΤΗ | n"_s};
    QTest::newRow("all units, every source and kind")
        << 3 << u"ΟΛΑ"_s << 2 << true << 2
        << QStringList{
               u"04/03/2026 - 11:00 | "_s + a + kDelivery + u" | a"_s,
               u"03/03/2026 - 10:00 | "_s + a +
                   u"ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 5 (Ανώνυμη ζώνη) ΕΚΤΟΣ ΟΡΙΩΝ: ΕΙΣΟΔΟΣ ΚΛΕΙΣΤΗ | a"_s,
               u"02/03/2026 - 09:00 | "_s + a +
                   u"ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 2 (Ψυγείο) ΕΝΤΟΣ ΟΡΙΩΝ: ΕΙΣΟΔΟΣ ΑΝΟΙΧΤΗ | n"_s,
               u"01/03/2026 - 08:00 | "_s + a +
                   u"ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 2 (Ψυγείο) ΕΚΤΟΣ ΟΡΙΩΝ: ΕΙΣΟΔΟΣ ΚΛΕΙΣΤΗ | a"_s,
               u"09/03/2026 - 16:00 | "_s + b + u"Η ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ ΕΠΑΝΗΛΘΕ | n"_s,
               u"08/03/2026 - 15:00 | "_s + b + u"ΕΓΙΝΕ ΔΙΑΚΟΠΗ ΣΤΗΝ ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ | a"_s,
               u"07/03/2026 - 14:00 | "_s + b + u"ΒΛΑΒΗ ΣΥΣΤΗΜΑΤΟΣ: ΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ | a"_s,
               u"06/03/2026 - 13:00 | "_s + b + kBypass + u" | b"_s,
               // Listed although it has no event memory: all units are read.
               u"01/03/2026 - 08:00 | Gamma [3] (C-3) -> ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 1 (Ανώνυμη ζώνη) ΕΚΤΟΣ ΟΡΙΩΝ: 0.0 °C | a"_s};
    QTest::newRow("nothing in April") << 0 << u"ΟΛΑ"_s << 2 << false << 3 << QStringList{};
}

void TestEventsWindow::filtersPickTheRowsNewestFirst()
{
    QFETCH(int, unit);
    QFETCH(QString, source);
    QFETCH(int, kind);
    QFETCH(bool, newOnly);
    QFETCH(int, month);
    QFETCH(QStringList, rows);
    open(unit);
    pickSource(source);
    if (m_w->kindOption(kind)->isEnabled())
        m_w->kindOption(kind)->click();
    m_w->newOption(newOnly ? 0 : 1)->click();
    m_w->monthSelect()->setCurrentIndex(month);
    QCOMPARE(gridRows(m_w->model()), rows);
    const bool any = !rows.isEmpty();
    QCOMPARE(m_w->markButton()->isEnabled(), any);
    QCOMPARE(m_w->printAction()->isEnabled(), any);
    QCOMPARE(m_w->selectedRows(), (any ? std::pair{0, 0} : std::pair{-1, -1}));
    QCOMPARE(m_w->grid()->highlight(), any);
    QVERIFY(m_w->isEnabled());
    QVERIFY(!waitWindowShown());
    QVERIFY(m_fx->dialogs.shown().isEmpty());
}

void TestEventsWindow::descriptionsWiderThanTheColumnGetTallerRows()
{
    open(3);
    pickSource(u"Παράκαμψη ζώνης"_s);
    m_w->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_w.get()));
    QCOMPARE(m_w->model()->rowCount(), 1);
    const QFontMetricsF fm(m_w->grid()->font());
    const QString text = m_w->model()->descriptionText(0);
    const int column = m_w->grid()->columnWidth(EventsModel::DescriptionColumn);
    QVERIFY(fm.horizontalAdvance(text) > column);
    QVERIFY(m_w->model()->lines(0) >= 2);
    // The whole wrapped text fits the row it is given.
    const QRectF needed = fm.boundingRect(QRectF(0, 0, column - 8, 1e6), Qt::TextWordWrap, text);
    QVERIFY2(m_w->grid()->rowHeight(0) >= needed.height(),
             qPrintable(u"%1 < %2"_s.arg(m_w->grid()->rowHeight(0)).arg(needed.height())));

    // A short one keeps a single line.
    pickSource(u"Δίκτυο ρεύματος"_s);
    m_w->kindOption(2)->click();
    QCOMPARE(m_w->model()->rowCount(), 2);
    QCOMPARE(m_w->model()->lines(0), 1);
    QCOMPARE(m_w->grid()->rowHeight(0), m_w->grid()->verticalHeader()->defaultSectionSize());
}

void TestEventsWindow::selectAllOnlyWhileMarkingIsPossible()
{
    open(3);
    m_w->kindOption(2)->click();
    QCOMPARE(m_w->model()->rowCount(), 9);
    m_w->grid()->selectAll();
    QCOMPARE(m_w->selectedRows(), std::pair(0, 8));
    // April is empty: nothing to select.
    m_w->monthSelect()->setCurrentIndex(3);
    m_w->grid()->selectAll();
    QCOMPARE(m_w->selectedRows(), std::pair(-1, -1));
}

void TestEventsWindow::marking_data()
{
    QTest::addColumn<bool>("newOnly");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::addColumn<QString>("acksA");
    QTest::addColumn<QString>("acksB");
    QTest::addColumn<int>("rowsAfter");
    // All units, every source, both kinds, March. New only: A-1 sn 4, 3, 2, 1,
    // B-2 sn 13 to 10, C-3; with all, A-1 sn 5 comes first.
    QTest::newRow("new: the selected rows become read and leave the list")
        << true << 2 << 5 << u"1:1 2:1 3:0 4:0 5:1 6:0"_s << u"10:0 11:0 12:1 13:1"_s << 5;
    QTest::newRow("all: the selected rows become new again and stay")
        << false << 0 << 7 << u"1:0 2:0 3:0 4:0 5:0 6:0"_s << u"10:0 11:0 12:0 13:0"_s << 10;
}

void TestEventsWindow::marking()
{
    QFETCH(bool, newOnly);
    QFETCH(int, first);
    QFETCH(int, last);
    QFETCH(QString, acksA);
    QFETCH(QString, acksB);
    QFETCH(int, rowsAfter);
    open(3);
    m_w->kindOption(2)->click();
    m_w->newOption(newOnly ? 0 : 1)->click();
    QCOMPARE(m_w->markButton()->text(),
             newOnly ? u"Μαρκάρισμα ως διαβασμένα"_s : u"Μαρκάρισμα ως νέα"_s);
    // The selection may be made from the bottom up.
    m_w->selectRows(last, first);
    const int fills = m_w->fills();
    m_w->markButton()->click();
    QCOMPARE(m_w->fills(), fills + 1);
    EventsSeed s(m_fx->db);
    QCOMPARE(s.acks(u"A-1"_s), acksA);
    QCOMPARE(s.acks(u"B-2"_s), acksB);
    QCOMPARE(m_w->model()->rowCount(), rowsAfter);
    QVERIFY(m_w->isEnabled());
    QVERIFY(!waitWindowShown());
    QVERIFY(m_fx->dialogs.shown().isEmpty());
}

void TestEventsWindow::markingThatFailsMarksNothing()
{
    // The server refuses to change one of B-2's rows; A-1's rows come first.
    if (m_fx->scratch.isPostgres()) {
        QVERIFY(!m_fx->db
                     .exec(u"CREATE FUNCTION refuse_mark() RETURNS trigger AS $$ BEGIN IF "
                           "NEW.Event_SystemEventSN = 12 THEN RAISE EXCEPTION 'mark refused'; END "
                           "IF; RETURN NEW; END $$ LANGUAGE plpgsql"_s)
                     .isError());
        QVERIFY(!m_fx->db
                     .exec(u"CREATE TRIGGER refuse_mark BEFORE UPDATE ON Events_1 FOR EACH ROW "
                           "EXECUTE FUNCTION refuse_mark()"_s)
                     .isError());
    } else {
        QVERIFY(!m_fx->db
                     .exec(u"CREATE TRIGGER refuse_mark BEFORE UPDATE ON Events_1 WHEN "
                           "NEW.Event_SystemEventSN = 12 BEGIN SELECT RAISE(ABORT, 'mark "
                           "refused'); END"_s)
                     .isError());
    }
    open(3);
    m_w->kindOption(2)->click();
    EventsSeed s(m_fx->db);
    const QString beforeA = s.acks(u"A-1"_s);
    const QString beforeB = s.acks(u"B-2"_s);
    m_w->grid()->selectAll();
    m_w->markButton()->click();
    QCOMPARE(s.acks(u"A-1"_s), beforeA);
    QCOMPARE(s.acks(u"B-2"_s), beforeB);
    const auto shown = m_fx->dialogs.messages();
    QCOMPARE(shown.size(), 1);
    QCOMPARE(shown.first().icon, DialogService::Icon::Critical);
    QVERIFY2(shown.first().text.contains(u"Κανένα συμβάν δεν μαρκαρίστηκε."_s),
             qPrintable(shown.first().text));
    QVERIFY(shown.first().text.contains(u"mark refused"_s));
    QVERIFY(m_w->isEnabled());
    QVERIFY(!waitWindowShown());
    // The list is as it was, and the connection still serves the next action.
    QCOMPARE(m_w->model()->rowCount(), 9);
    m_w->selectRows(0, 0);
    m_fx->failures->clear();
    m_w->markButton()->click();
    QCOMPARE(s.acks(u"A-1"_s), u"1:0 2:0 3:0 4:1 5:1 6:0"_s);
}

void TestEventsWindow::failedQueriesAreReportedAndTheWindowStaysUsable()
{
    open(0);
    QCOMPARE(m_w->model()->rowCount(), 3);
    QVERIFY(!m_fx->db.exec(u"ALTER TABLE Events_1 RENAME TO Events_gone"_s).isError());
    // The grid fill fails.
    m_w->newOption(1)->click();
    QCOMPARE(m_fx->dialogs.messages().size(), 1);
    QCOMPARE(m_fx->dialogs.messages().first().icon, DialogService::Icon::Critical);
    QCOMPARE(m_fx->dialogs.messages().first().title, u"SENTORAX Monitor"_s);
    QCOMPARE(m_w->model()->rowCount(), 0);
    QVERIFY(!m_w->markButton()->isEnabled());
    QVERIFY(!m_w->printAction()->isEnabled());
    QVERIFY(m_w->isEnabled());
    QVERIFY(!waitWindowShown());
    // The source list fails too; the outage is reported once.
    emit m_w->systemSelect()->activated(1);
    QVERIFY(m_w->sources().isEmpty());
    QVERIFY(!m_w->sensorSelect()->isEnabled());
    QCOMPARE(m_fx->dialogs.messages().size(), 1);
    // Back again: the window works as before.
    QVERIFY(!m_fx->db.exec(u"ALTER TABLE Events_gone RENAME TO Events_1"_s).isError());
    emit m_w->systemSelect()->activated(0);
    QCOMPARE(m_w->model()->rowCount(), 4);
    QCOMPARE(m_fx->dialogs.messages().size(), 1);
}

void TestEventsWindow::navigationCarriesTheUnitIndex()
{
    registerSecondaryViews(*m_fx->navigator);
    auto* events = new EventsWindow(m_fx->ctx);
    fillSystemSelect(*events, 3, true);
    QCOMPARE(events->systemSelect()->currentText(), u"ΟΛΑ"_s);
    // "ΟΛΑ" does not exist in the records view: its first unit is taken.
    m_fx->navigator->navigate(*events, ViewId::Records);
    auto* records = qobject_cast<RecordsWindow*>(m_fx->navigator->secondaryView());
    QVERIFY(records);
    QCOMPARE(records->unitIndex(), 0);
    records->systemSelect()->setCurrentIndex(1);
    m_fx->navigator->navigate(*records, ViewId::Events);
    auto* back = qobject_cast<EventsWindow*>(m_fx->navigator->secondaryView());
    QVERIFY(back);
    QCOMPARE(back->unitIndex(), 1);
    QCOMPARE(back->systemSelect()->count(), 4);
    QCOMPARE(back->sensorSelect()->currentText(), u"ΟΛΑ"_s);
    QCOMPARE(back->model()->rowCount(), 2);
    QTest::qWait(0);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    delete back;
}

QTEST_MAIN(TestEventsWindow)
#include "tst_eventswindow.moc"
