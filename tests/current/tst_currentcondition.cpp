#include "CurrentSeed.h"
#include "ScratchDatabase.h"
#include "Tone.h"
#include "reports/Colors.h"
#include "views/current/CurrentCondition.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

namespace {
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
} // namespace

// Every row of the rule tables, read back from a real database: each data row
// gets a unit of its own (its serial with a quote) in one scratch database.
class TestCurrentCondition : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        SX_REQUIRE_DB(m_scratch);
        QVERIFY(m_scratch.open(m_db));
    }

    void rowRule_data()
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

    void rowRule()
    {
        QFETCH(QStringList, in);
        const QString s = nextSerial();
        QVERIFY(seed.unit(s, u"Μονάδα"_s, u"1"_s, in[0] == u"P" ? in[1] : u"'1.22'"_s));
        if (in[0] == u"M") {
            QVERIFY(seed.point(s, 1, u"'Σημείο'"_s, in[1], u"1"_s, in[2], in[4], in[3], in[5]) &&
                    seed.pointCondition(s, 1, u"1"_s));
            const CurrentCondition cc = read(s);
            QCOMPARE(cc.points.size(), 1);
            QTEST(cc.points[0].maxLimit + u'|' + cc.points[0].minLimit, "expected");
            return;
        }
        const int n = in[2].toInt();
        const bool cond = in.value(4) == u"1";
        if (in[0] == u"Z")
            QVERIFY(seed.point(s, 4, u"'Ψυγείο'"_s, in[1]) &&
                    seed.pointCondition(s, 4, in[2], in[5], in[4], in[3]));
        else if (in[0] == u"P")
            QVERIFY(seed.power(s, 2, u"'Δίκτυο'"_s) && seed.powerCondition(s, 2, in[2], in[3]));
        else if (in[1] == u"input")
            QVERIFY(seed.power(s, n, in[3]) &&
                    (!cond || seed.powerCondition(s, n, u"0"_s, u"0"_s)));
        else
            QVERIFY(seed.point(s, n, in[3]) && (!cond || seed.pointCondition(s, n, u"3"_s)));
        QTEST(rowsOf(read(s)), "expected");
    }

    // A unit's own lines from Online, its condition row (Alarmcondition
    // RelayBcondition, none when empty), the row's Rtc and a fault: connection,
    // notification, relay, clock and status, each text with its colour.
    void unitRule_data()
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

    void unitRule()
    {
        QFETCH(QStringList, in);
        const QString s = nextSerial();
        const QStringList c = in[1].split(u' ');
        QVERIFY(seed.unit(s, u"Μονάδα"_s, in[0]) && seed.point(s, 1, u"'Σημείο'"_s) &&
                seed.pointCondition(s, 1, u"1"_s) && seed.power(s, 1, u"NULL"_s) &&
                seed.powerCondition(s, 1, u"0"_s, u"0"_s) &&
                (in[1].isEmpty() || seed.condition(s, c[0], c[1], in[2])) &&
                (in[3] == u"0" || seed.fault(s, 0, u"3"_s)));
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

    // Any unit's message or fault lights every view's indicator (the main window's
    // test walks that); so it does for a unit without its row, which reads nothing else.
    void newMessagesWithoutTheUnitRow()
    {
        QVERIFY(seed.run(u"DELETE FROM Systems_Faults"_s));
        QVERIFY(seed.run(u"DELETE FROM Sensors_Events"_s));
        QVERIFY(!read(u"no such unit"_s).newMessages);
        QVERIFY(seed.newPointMessage(nextSerial()));
        const CurrentCondition missing = read(u"no such unit"_s);
        QVERIFY(!missing.unitFound && missing.points.isEmpty() && missing.powers.isEmpty());
        QVERIFY(missing.newMessages);
    }

    void failingQueryStopsWithItsError()
    {
        // A database without the schema: the first query fails and nothing is made up.
        ScratchDatabase bare;
        Database db;
        QVERIFY(bare.open(db, false));
        const CurrentCondition cc = readCurrentCondition(db, u"U1"_s);
        QVERIFY(cc.error.isError() && !cc.unitFound && cc.points.isEmpty());
    }

    // Column 300 wide throughout: the label's width and line height give its
    // lines and the row's height (0 and -1: the default).
    void labelRowHeight_data()
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

    void labelRowHeight()
    {
        QFETCH(double, width);
        QFETCH(double, height);
        QTEST(u"%1 %2"_s.arg(labelRowLines(width, 300)).arg(sx::labelRowHeight(width, height, 300)),
              "expected");
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

    ScratchDatabase m_scratch;
    Database m_db;
    CurrentSeed seed{m_db};
    int m_serial = 0;
};

QTEST_GUILESS_MAIN(TestCurrentCondition)
#include "tst_currentcondition.moc"
