#include "ChooseItem.h"
#include "CurrentSeed.h"
#include "GuiFixture.h"
#include "reports/Colors.h"
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

// The colours of the view by name; "none" when unset.
QString tone(const QColor& c)
{
    const qsizetype i = QList{colors::kLightGrey, colors::kLightRed, colors::kLightBlue,
                              colors::kGreen, colors::kRed}
                            .indexOf(c);
    return i >= 0        ? u"grey pink lilac green red"_s.split(u' ')[i]
           : c.isValid() ? c.name()
                         : u"none"_s;
}

const QColor kGrey = colors::kLightGrey;
const QColor kRed = colors::kLightRed;
const QColor kBlue = colors::kLightBlue;

// Every point and power row as "label|text|colour", one per line.
QString rowsOf(const CurrentCondition& cc)
{
    QStringList out;
    for (const PointRow& p : cc.points)
        out << p.label + u'|' + p.reading + u'|' + tone(p.color);
    for (const PowerRow& p : cc.powers)
        out << p.label + u'|' + p.state + u'|' + tone(p.color);
    return out.join(u'\n');
}

QString one(const QString& label, const QString& text, const QColor& color)
{
    return label + u'|' + text + u'|' + tone(color);
}

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

// The current-condition view on a real database. First every row of the rule
// tables, read back: each data row gets a unit of its own (its serial with a
// quote) in one scratch database. Then the window: what the operator sees, how
// rows are kept between refreshes, the timer and failures.
class TestMainWindow : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        SX_REQUIRE_DB(m_scratch);
        QVERIFY(m_scratch.open(m_db));
    }

    void init()
    {
        // The rules need no window.
        if (QByteArray(QTest::currentTestFunction()).startsWith("rule"))
            return;
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

    void ruleRow_data()
    {
        QTest::addColumn<QStringList>("in");
        QTest::addColumn<QString>("expected");
        // Zone 4: type, value, Notpowered, Alarmcondition, Outofbounds.
        const auto row = [](const char* name, const char* in, const QString& reading,
                            const QColor& color) {
            QTest::newRow(name) << (u"Z "_s + QString::fromLatin1(in)).split(u' ')
                                << one(u"[4] Ψυγείο"_s, reading, color);
        };
        const QString off = u"ΕΚΤΟΣ Λ."_s;
        row("not powered, alarm", "0 21.5 1 1 0", off, kBlue);
        row("missing Notpowered, alarm", "0 21.5 NULL 2 1", off, kBlue);
        row("not powered", "0 21.5 1 0 1", off, kRed);
        row("missing Notpowered", "0 21.5 NULL 0 0", off, kRed);
        row("negative Notpowered is not 0", "0 21.5 -1 0 0", off, kRed);
        row("alarm beats out of limits", "0 21.5 0 1 1", u"21.5 °C"_s, kBlue);
        row("alarm within limits", "3 -3 0 1 0", u"-3.0 bar"_s, kBlue);
        row("out of limits", "1 80.04 0 0 1", u"80.0 %RH"_s, kRed);
        row("alarm -1 is not in alarm", "0 5 0 -1 2", u"5.0 °C"_s, kRed);
        row("normal", "0 21.25 0 0 0", u"21.3 °C"_s, kGrey);
        row("missing alarm and limits flag", "4 0 0 NULL NULL", u"0.0 mbar"_s, kGrey);
        row("negative out of limits is within", "0 1 0 0 -1", u"1.0 °C"_s, kGrey);
        row("contact closed", "2 1 0 0 0", u"ΚΛΕΙΣΤΗ"_s, kGrey);
        row("contact with missing value is open", "2 NULL 0 0 0", u"ΑΝΟΙΧΤΗ"_s, kGrey);
        row("missing analogue value is empty", "0 NULL 0 0 1", QString(), kRed);
        row("missing type counts as 0", "NULL 7 0 0 0", u"7.0 °C"_s, kGrey);

        // Power input 2: Softver, Powerfault, Powercondition.
        const auto input = [](const char* name, const char* in, const QString& state,
                              const QColor& color) {
            QTest::newRow(name) << (u"P "_s + QString::fromLatin1(in)).split(u' ')
                                << one(u"[1] Δίκτυο"_s, state, color);
        };
        const QString cut = u"ΔΙΑΚΟΠΗ"_s;
        // 122 or more: the text from Powercondition, the colour from Powerfault.
        input("1.22 cut", "'1.22' 0 1", cut, kGrey);
        input("1.22 cut and fault", "'1.22' 1 1", cut, kRed);
        input("1.22 fault only", "'1.22' 1 0", u"OK"_s, kRed);
        input("1.225 reads as 122", "'1.225' 0 2", cut, kGrey);
        input("12.2 reads as 122", "'12.2' 0 1", cut, kGrey);
        input("missing condition", "'1.22' NULL NULL", u"OK"_s, kGrey);
        // Below 122: text and colour both from Powerfault.
        input("1.21 fault", "'1.21' 1 0", cut, kRed);
        input("1.21 ignores condition", "'1.21' 0 1", u"OK"_s, kGrey);
        input("2.0 is 20, older", "'2.0' 0 1", u"OK"_s, kGrey);
        input("2.0 fault", "'2.0' 3 0", cut, kRed);
        input("no point counts as older", "'122' 0 1", u"OK"_s, kGrey);
        input("missing version counts as older", "NULL 1 1", cut, kRed);
        input("negative fault is no fault", "'1.21' -1 0", u"OK"_s, kGrey);

        // Limits of zone 1: type, Maxlimit, Maxlimitused, Minlimit, Minlimitused.
        const auto limits = [](const char* name, const char* in, const QString& max,
                               const QString& min) {
            QTest::newRow(name) << (u"M "_s + QString::fromLatin1(in)).split(u' ')
                                << max + u'|' + min;
        };
        limits("both in force", "0 50 1 -10.25 1", u"50.0 °C"_s, u"-10.3 °C"_s);
        limits("only the maximum", "3 6.5 1 1 0", u"6.5 bar"_s, QString());
        limits("only the minimum", "17 900 0 350 1", QString(), u"350.0 ppm"_s);
        limits("contact limits never shown", "2 1 1 0 1", QString(), QString());
        limits("flag 2 is not 1", "0 50 2 10 -1", QString(), QString());
        limits("missing flags", "0 50 NULL 10 NULL", QString(), QString());
        limits("missing limit value", "0 NULL 1 NULL 1", QString(), QString());

        // Labels: zone or input, its number and SQL name, with a condition row or without.
        const auto label = [](const char* name, const char* kind, int n, const QString& sqlName,
                              bool cond, const QString& expected) {
            QTest::newRow(name) << QStringList{u"L"_s, QString::fromLatin1(kind),
                                               QString::number(n), sqlName, QString::number(cond)}
                                << expected;
        };
        label("point named", "zone", 12, u"'Θάλαμος 2'"_s, true, u"[12] Θάλαμος 2|3.0 °C|grey"_s);
        label("point empty name", "zone", 3, u"''"_s, true, u"[3] Ανώνυμη ζώνη|3.0 °C|grey"_s);
        label("point missing name", "zone", 20, u"NULL"_s, true,
              u"[20] Ανώνυμη ζώνη|3.0 °C|grey"_s);
        // No current-condition row: every field missing, so "not powered".
        label("point without condition row", "zone", 9, u"'Πόρτα'"_s, false,
              u"[9] Πόρτα|ΕΚΤΟΣ Λ.|pink"_s);
        label("input 1 whatever its name", "input", 1, u"'Μπαταρία'"_s, true,
              u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ|OK|grey"_s);
        label("input 3 named Α", "input", 3, u"'Α'"_s, true, u"[2] Α|OK|grey"_s);
        label("input 4 missing name", "input", 4, u"NULL"_s, true, u"[3] Ανώνυμη ζώνη|OK|grey"_s);
        // No current-condition row: no state is claimed.
        label("input without condition row", "input", 2, u"'Γ'"_s, false, u"[1] Γ||grey"_s);
    }

    void ruleRow()
    {
        QFETCH(QStringList, in);
        const QString s = nextSerial();
        QVERIFY(m_seed.unit(s, u"Μονάδα"_s, u"1"_s, in[0] == u"P" ? in[1] : u"'1.22'"_s));
        if (in[0] == u"M") {
            QVERIFY(m_seed.point(s, 1, u"'Σημείο'"_s, in[1], u"1"_s, in[2], in[4], in[3], in[5]) &&
                    m_seed.pointCondition(s, 1, u"1"_s));
            const CurrentCondition cc = read(s);
            QCOMPARE(cc.points.size(), 1);
            QTEST(cc.points[0].maxLimit + u'|' + cc.points[0].minLimit, "expected");
            return;
        }
        const int n = in[2].toInt();
        const bool cond = in.value(4) == u"1";
        if (in[0] == u"Z")
            QVERIFY(m_seed.point(s, 4, u"'Ψυγείο'"_s, in[1]) &&
                    m_seed.pointCondition(s, 4, in[2], in[5], in[4], in[3]));
        else if (in[0] == u"P")
            QVERIFY(m_seed.power(s, 2, u"'Δίκτυο'"_s) && m_seed.powerCondition(s, 2, in[2], in[3]));
        else if (in[1] == u"input")
            QVERIFY(m_seed.power(s, n, in[3]) &&
                    (!cond || m_seed.powerCondition(s, n, u"0"_s, u"0"_s)));
        else
            QVERIFY(m_seed.point(s, n, in[3]) && (!cond || m_seed.pointCondition(s, n, u"3"_s)));
        QTEST(rowsOf(read(s)), "expected");
    }

    // A unit's own lines from Online, its condition row (Alarmcondition
    // RelayBcondition, none when empty), the row's Rtc and a fault: connection,
    // notification, relay, clock and status, each text with its colour.
    void ruleUnit_data()
    {
        QTest::addColumn<QStringList>("in"); // Online|Alarmcondition RelayBcondition|Rtc|fault
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const char* in, const QString& expected) {
            QTest::newRow(name) << QString::fromLatin1(in).split(u'|') << expected;
        };
        // Connected: the notification, the relay and the clock, then the status.
        const auto on = [](const QString& notification, const QString& relay,
                           const QString& clock = {},
                           const QString& status = u"ΚΑΤΑΣΤΑΣΗ ΣΥΣΤΗΜΑΤΟΣ ΟΚ grey"_s) {
            return QStringList{u"ΣΕ ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ green"_s, notification, relay, clock, status}
                .join(u'|');
        };
        const QString disabled = u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ grey"_s;
        const QString off = u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ grey"_s;
        const QString automatic = u"ΑΥΤΟΜΑΤΗ pink"_s;
        row("disabled, relay off", "1|0 0|NULL|0", on(disabled, off));
        row("enabled, relay on", "1|1 1|NULL|0",
            on(u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ pink"_s, u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ pink"_s));
        row("automatic off, relay 2", "1|2 2|NULL|0", on(u"ΑΥΤΟΜΑΤΗ grey"_s, off));
        row("automatic on (3)", "1|3 -1|NULL|0", on(automatic, off));
        row("automatic on (-1)", "1|-1 0|NULL|0", on(automatic, off));
        row("missing values", "1|NULL NULL|NULL|0", on(automatic, off));
        row("missing row", "1||NULL|0", on(automatic, off));
        // The clock: date on the first line, time on the second.
        row("clock set", "1|0 0|'2024-03-05 14:07:00'|0",
            on(disabled, off, u"Τρίτη 5 Μαρτίου 2024\r\n2:07 μμ"_s));
        row("clock past midnight", "1|0 0|'2031-12-31 00:05:59'|0",
            on(disabled, off, u"Τετάρτη 31 Δεκεμβρίου 2031\r\n12:05 πμ"_s));
        row("clock at the zero date", "1|0 0|'1899-12-30 00:00:00'|0", on(disabled, off));
        row("a fault", "1|0 0|NULL|1",
            on(disabled, off, {},
               u"ΥΠΑΡΧΟΥΝ ΠΡΟΒΛΗΜΑΤΑ ΣΤΟ ΣΥΣΤΗΜΑ\r\nΔΕΙΤΕ ΝΕΑ ΜΗΝΥΜΑΤΑ ΓΙΑ ΛΕΠΤΟΜΕΡΕΙΕΣ pink"_s));
        // Only a connected unit reads its condition, clock and faults.
        const QString rest = u"| none| none|| grey"_s;
        row("offline", "0|1 1|'2024-03-05 14:07:00'|1",
            u"ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ ΜΗ ΔΙΑΘΕΣΙΜΗ red"_s + rest);
        const QString programming = u"ΣΥΣΤΗΜΑ ΣΕ ΔΙΑΔΙΚΑΣΙΑ ΠΡΟΓΡΑΜΜΑΤΙΣΜΟΥ red"_s + rest;
        row("online 2", "2|1 1|'2024-03-05 14:07:00'|1", programming);
        row("online -1", "-1|1 1|'2024-03-05 14:07:00'|1", programming);
        row("online missing", "NULL|1 1|'2024-03-05 14:07:00'|1", programming);
    }

    void ruleUnit()
    {
        QFETCH(QStringList, in);
        const QString s = nextSerial();
        const QStringList c = in[1].split(u' ');
        QVERIFY(m_seed.unit(s, u"Μονάδα"_s, in[0]) && m_seed.point(s, 1, u"'Σημείο'"_s) &&
                m_seed.pointCondition(s, 1, u"1"_s) && m_seed.power(s, 1, u"NULL"_s) &&
                m_seed.powerCondition(s, 1, u"0"_s, u"0"_s) &&
                (in[1].isEmpty() || m_seed.condition(s, c[0], c[1], in[2])) &&
                (in[3] == u"0" || m_seed.fault(s, 0, u"3"_s)));
        const CurrentCondition cc = read(s);
        QVERIFY(cc.unitFound);
        const auto look = [](const Look& l) { return l.text + u' ' + tone(l.color); };
        QTEST(QStringList({look(cc.connection), look(cc.notification), look(cc.relay), cc.clock,
                           look(cc.status)})
                  .join(u'|'),
              "expected");
        // Only a connected unit fills the grids.
        QCOMPARE(cc.points.size() + cc.powers.size(), cc.connected ? 2 : 0);
    }

    // Any unit's message or fault lights every view's indicator (eachUnitFillsTheView
    // walks that); so it does for a unit without its row, which reads nothing else.
    void ruleNewMessagesWithoutTheUnitRow()
    {
        QVERIFY(m_seed.run(u"DELETE FROM Systems_Faults"_s));
        QVERIFY(m_seed.run(u"DELETE FROM Sensors_Events"_s));
        QVERIFY(!read(u"no such unit"_s).newMessages);
        QVERIFY(m_seed.newPointMessage(nextSerial()));
        const CurrentCondition missing = read(u"no such unit"_s);
        QVERIFY(!missing.unitFound && missing.points.isEmpty() && missing.powers.isEmpty());
        QVERIFY(missing.newMessages);
    }

    // Column 300 wide throughout: the label's width and line height give its
    // lines and the row's height (0 and -1: the default).
    void ruleLabelRowHeight_data()
    {
        QTest::addColumn<double>("width");
        QTest::addColumn<double>("height");
        QTest::addColumn<QString>("expected");
        QTest::newRow("just narrower keeps the default") << 299.6 << 15.0 << u"0 -1"_s;
        QTest::newRow("exactly as wide: two lines") << 300.0 << 15.0 << u"2 30"_s;
        QTest::newRow("just under twice: two lines") << 599.6 << 15.0 << u"2 30"_s;
        QTest::newRow("twice: three lines") << 600.0 << 15.0 << u"3 45"_s;
        QTest::newRow("height rounded up") << 300.0 << 15.26 << u"2 31"_s;
        QTest::newRow("three lines rounded down") << 750.0 << 15.1 << u"3 45"_s;
    }

    void ruleLabelRowHeight()
    {
        QFETCH(double, width);
        QFETCH(double, height);
        QTEST(u"%1 %2"_s.arg(labelRowLines(width, 300)).arg(sx::labelRowHeight(width, height, 300)),
              "expected");
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
    // With a quote, so that every query must quote the serial it looks for.
    QString nextSerial() { return u"O'U%1"_s.arg(++m_serial); }
    // A read that fails is a test failure, whatever the caller checks next.
    CurrentCondition read(const QString& serial)
    {
        CurrentCondition cc = readCurrentCondition(m_db, serial, QLocale::c());
        QTest::qVerify(!cc.error.isError(), "read", qPrintable(cc.error.description), __FILE__,
                       __LINE__);
        return cc;
    }

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

    ScratchDatabase m_scratch;
    Database m_db;
    CurrentSeed m_seed{m_db};
    int m_serial = 0;
    std::unique_ptr<GuiFixture> m_fx;
    std::unique_ptr<MainWindow> m_w;
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
