#include "CurrentSeed.h"
#include "ScratchDatabase.h"
#include "app/Colors.h"
#include "model/Formatting.h"
#include "views/current/CurrentCondition.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

namespace {
const QColor kGrey = colors::kLightGrey;
const QColor kRed = colors::kLightRed;
const QColor kBlue = colors::kLightBlue;
} // namespace

// Every row of the rule tables, read back from a real database: each data row
// gets a unit of its own in one scratch database.
class TestCurrentCondition : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();

    void pointRule_data();
    void pointRule();
    void limits_data();
    void limits();
    void powerRule_data();
    void powerRule();
    void labels_data();
    void labels();
    void notificationAndRelay_data();
    void notificationAndRelay();
    void connection_data();
    void connection();
    void clock_data();
    void clock();
    void faultStatusCountsOnlyThisUnit();
    void newMessagesOfAnyUnit();
    void pointsInNumberOrderAndOnlyInUse();
    void serialWithQuote();
    void missingUnitRowReadsNothingButMessages();
    void failingQueryStopsWithItsError();
    void labelRowHeight_data();
    void labelRowHeight();

private:
    QString nextSerial() { return u"U%1"_s.arg(++m_serial); }
    CurrentCondition read(const QString& serial)
    {
        return readCurrentCondition(m_db, serial, QLocale::c());
    }

    ScratchDatabase m_scratch;
    Database m_db;
    int m_serial = 0;
};

void TestCurrentCondition::initTestCase()
{
    SX_REQUIRE_DB(m_scratch);
    QVERIFY(m_scratch.open(m_db));
}

void TestCurrentCondition::pointRule_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("notPowered");
    QTest::addColumn<QString>("alarm");
    QTest::addColumn<QString>("outOfBounds");
    QTest::addColumn<QString>("reading");
    QTest::addColumn<QColor>("color");

    // Not powered and in alarm.
    QTest::newRow("not powered, alarm")
        << u"0"_s << u"21.5"_s << u"1"_s << u"1"_s << u"0"_s << u"ΕΚΤΟΣ Λ."_s << kBlue;
    QTest::newRow("missing Notpowered, alarm")
        << u"0"_s << u"21.5"_s << u"NULL"_s << u"2"_s << u"1"_s << u"ΕΚΤΟΣ Λ."_s << kBlue;
    // Not powered, no alarm.
    QTest::newRow("not powered") << u"0"_s << u"21.5"_s << u"1"_s << u"0"_s << u"1"_s
                                 << u"ΕΚΤΟΣ Λ."_s << kRed;
    QTest::newRow("missing Notpowered")
        << u"0"_s << u"21.5"_s << u"NULL"_s << u"0"_s << u"0"_s << u"ΕΚΤΟΣ Λ."_s << kRed;
    QTest::newRow("negative Notpowered is not 0")
        << u"0"_s << u"21.5"_s << u"-1"_s << u"0"_s << u"0"_s << u"ΕΚΤΟΣ Λ."_s << kRed;
    QTest::newRow("not powered contact")
        << u"2"_s << u"1"_s << u"3"_s << u"NULL"_s << u"NULL"_s << u"ΕΚΤΟΣ Λ."_s << kRed;
    // Powered and in alarm, whatever the limits say.
    QTest::newRow("alarm and out of limits is blue")
        << u"0"_s << u"21.5"_s << u"0"_s << u"1"_s << u"1"_s << u"21.5 °C"_s << kBlue;
    QTest::newRow("alarm within limits")
        << u"3"_s << u"-3"_s << u"0"_s << u"1"_s << u"0"_s << u"-3.0 bar"_s << kBlue;
    // Out of limits.
    QTest::newRow("out of limits")
        << u"1"_s << u"80.04"_s << u"0"_s << u"0"_s << u"1"_s << u"80.0 %RH"_s << kRed;
    QTest::newRow("alarm -1 is not in alarm")
        << u"0"_s << u"5"_s << u"0"_s << u"-1"_s << u"2"_s << u"5.0 °C"_s << kRed;
    // Normal.
    QTest::newRow("normal") << u"0"_s << u"21.25"_s << u"0"_s << u"0"_s << u"0"_s << u"21.3 °C"_s
                            << kGrey;
    QTest::newRow("missing alarm and limits flag")
        << u"4"_s << u"0"_s << u"0"_s << u"NULL"_s << u"NULL"_s << u"0.0 mbar"_s << kGrey;
    QTest::newRow("negative out of limits is within")
        << u"0"_s << u"1"_s << u"0"_s << u"0"_s << u"-1"_s << u"1.0 °C"_s << kGrey;
    // Value texts.
    QTest::newRow("contact closed")
        << u"2"_s << u"1"_s << u"0"_s << u"0"_s << u"0"_s << u"ΚΛΕΙΣΤΗ"_s << kGrey;
    QTest::newRow("contact open at 0")
        << u"2"_s << u"0"_s << u"0"_s << u"0"_s << u"0"_s << u"ΑΝΟΙΧΤΗ"_s << kGrey;
    QTest::newRow("contact open below 0")
        << u"2"_s << u"-0.5"_s << u"0"_s << u"0"_s << u"0"_s << u"ΑΝΟΙΧΤΗ"_s << kGrey;
    QTest::newRow("contact with missing value is open")
        << u"2"_s << u"NULL"_s << u"0"_s << u"0"_s << u"0"_s << u"ΑΝΟΙΧΤΗ"_s << kGrey;
    QTest::newRow("missing analogue value is empty")
        << u"0"_s << u"NULL"_s << u"0"_s << u"0"_s << u"1"_s << QString() << kRed;
    QTest::newRow("unknown type has no unit text")
        << u"33"_s << u"7.25"_s << u"0"_s << u"0"_s << u"0"_s << u"7.3"_s << kGrey;
    QTest::newRow("missing type counts as 0")
        << u"NULL"_s << u"7"_s << u"0"_s << u"0"_s << u"0"_s << u"7.0 °C"_s << kGrey;
}

void TestCurrentCondition::pointRule()
{
    QFETCH(QString, type);
    QFETCH(QString, value);
    QFETCH(QString, notPowered);
    QFETCH(QString, alarm);
    QFETCH(QString, outOfBounds);
    QFETCH(QString, reading);
    QFETCH(QColor, color);

    const QString s = nextSerial();
    CurrentSeed seed(m_db);
    QVERIFY(seed.unit(s, u"Μονάδα"_s));
    QVERIFY(seed.point(s, 4, u"'Ψυγείο'"_s, type));
    QVERIFY(seed.pointCondition(s, 4, value, outOfBounds, alarm, notPowered));

    const CurrentCondition cc = read(s);
    QVERIFY2(!cc.error.isError(), qPrintable(cc.error.description));
    QCOMPARE(cc.points.size(), 1);
    QCOMPARE(cc.points[0].label, u"[4] Ψυγείο"_s);
    QCOMPARE(cc.points[0].reading, reading);
    QCOMPARE(cc.points[0].color, color);
}

void TestCurrentCondition::limits_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("maxLimit");
    QTest::addColumn<QString>("maxUsed");
    QTest::addColumn<QString>("minLimit");
    QTest::addColumn<QString>("minUsed");
    QTest::addColumn<QString>("maxText");
    QTest::addColumn<QString>("minText");

    QTest::newRow("both in force")
        << u"0"_s << u"50"_s << u"1"_s << u"-10.25"_s << u"1"_s << u"50.0 °C"_s << u"-10.3 °C"_s;
    QTest::newRow("only the maximum")
        << u"3"_s << u"6.5"_s << u"1"_s << u"1"_s << u"0"_s << u"6.5 bar"_s << QString();
    QTest::newRow("only the minimum")
        << u"17"_s << u"900"_s << u"0"_s << u"350"_s << u"1"_s << QString() << u"350.0 ppm"_s;
    QTest::newRow("neither") << u"0"_s << u"50"_s << u"0"_s << u"10"_s << u"0"_s << QString()
                             << QString();
    QTest::newRow("contact limits never shown")
        << u"2"_s << u"1"_s << u"1"_s << u"0"_s << u"1"_s << QString() << QString();
    QTest::newRow("flag 2 is not 1")
        << u"0"_s << u"50"_s << u"2"_s << u"10"_s << u"-1"_s << QString() << QString();
    QTest::newRow("missing flags")
        << u"0"_s << u"50"_s << u"NULL"_s << u"10"_s << u"NULL"_s << QString() << QString();
    QTest::newRow("missing limit value")
        << u"0"_s << u"NULL"_s << u"1"_s << u"NULL"_s << u"1"_s << QString() << QString();
}

void TestCurrentCondition::limits()
{
    QFETCH(QString, type);
    QFETCH(QString, maxLimit);
    QFETCH(QString, maxUsed);
    QFETCH(QString, minLimit);
    QFETCH(QString, minUsed);
    QFETCH(QString, maxText);
    QFETCH(QString, minText);

    const QString s = nextSerial();
    CurrentSeed seed(m_db);
    QVERIFY(seed.unit(s, u"Μονάδα"_s));
    QVERIFY(seed.point(s, 1, u"'Σημείο'"_s, type, u"1"_s, maxLimit, minLimit, maxUsed, minUsed));
    QVERIFY(seed.pointCondition(s, 1, u"1"_s));

    const CurrentCondition cc = read(s);
    QVERIFY2(!cc.error.isError(), qPrintable(cc.error.description));
    QCOMPARE(cc.points.size(), 1);
    QCOMPARE(cc.points[0].maxLimit, maxText);
    QCOMPARE(cc.points[0].minLimit, minText);
}

void TestCurrentCondition::powerRule_data()
{
    QTest::addColumn<QString>("softver");
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QString>("state");
    QTest::addColumn<QColor>("color");

    // 122 or more: the text from Powercondition, the colour from Powerfault.
    QTest::newRow("1.22 cut") << u"'1.22'"_s << u"0"_s << u"1"_s << u"ΔΙΑΚΟΠΗ"_s << kGrey;
    QTest::newRow("1.22 cut and fault") << u"'1.22'"_s << u"1"_s << u"1"_s << u"ΔΙΑΚΟΠΗ"_s << kRed;
    QTest::newRow("1.22 fault only") << u"'1.22'"_s << u"1"_s << u"0"_s << u"OK"_s << kRed;
    QTest::newRow("1.22 normal") << u"'1.22'"_s << u"0"_s << u"0"_s << u"OK"_s << kGrey;
    QTest::newRow("1.225 reads as 122")
        << u"'1.225'"_s << u"0"_s << u"2"_s << u"ΔΙΑΚΟΠΗ"_s << kGrey;
    QTest::newRow("12.2 reads as 122") << u"'12.2'"_s << u"0"_s << u"1"_s << u"ΔΙΑΚΟΠΗ"_s << kGrey;
    QTest::newRow("1.30") << u"'1.30'"_s << u"1"_s << u"0"_s << u"OK"_s << kRed;
    QTest::newRow("missing condition") << u"'1.22'"_s << u"NULL"_s << u"NULL"_s << u"OK"_s << kGrey;
    // Below 122: text and colour both from Powerfault.
    QTest::newRow("1.21 fault") << u"'1.21'"_s << u"1"_s << u"0"_s << u"ΔΙΑΚΟΠΗ"_s << kRed;
    QTest::newRow("1.21 ignores condition") << u"'1.21'"_s << u"0"_s << u"1"_s << u"OK"_s << kGrey;
    QTest::newRow("2.0 is 20, older") << u"'2.0'"_s << u"0"_s << u"1"_s << u"OK"_s << kGrey;
    QTest::newRow("2.0 fault") << u"'2.0'"_s << u"3"_s << u"0"_s << u"ΔΙΑΚΟΠΗ"_s << kRed;
    QTest::newRow("10.0 is 100, older") << u"'10.0'"_s << u"0"_s << u"1"_s << u"OK"_s << kGrey;
    QTest::newRow("no point counts as older") << u"'122'"_s << u"0"_s << u"1"_s << u"OK"_s << kGrey;
    QTest::newRow("letters count as older") << u"'v1.x'"_s << u"0"_s << u"1"_s << u"OK"_s << kGrey;
    QTest::newRow("missing version counts as older")
        << u"NULL"_s << u"1"_s << u"1"_s << u"ΔΙΑΚΟΠΗ"_s << kRed;
    QTest::newRow("negative fault is no fault")
        << u"'1.21'"_s << u"-1"_s << u"0"_s << u"OK"_s << kGrey;
}

void TestCurrentCondition::powerRule()
{
    QFETCH(QString, softver);
    QFETCH(QString, fault);
    QFETCH(QString, condition);
    QFETCH(QString, state);
    QFETCH(QColor, color);

    const QString s = nextSerial();
    CurrentSeed seed(m_db);
    QVERIFY(seed.unit(s, u"Μονάδα"_s, u"1"_s, softver));
    QVERIFY(seed.power(s, 2, u"'Δίκτυο'"_s));
    QVERIFY(seed.powerCondition(s, 2, fault, condition));

    const CurrentCondition cc = read(s);
    QVERIFY2(!cc.error.isError(), qPrintable(cc.error.description));
    QCOMPARE(cc.powers.size(), 1);
    QCOMPARE(cc.powers[0].label, u"[1] Δίκτυο"_s);
    QCOMPARE(cc.powers[0].state, state);
    QCOMPARE(cc.powers[0].color, color);
}

void TestCurrentCondition::labels_data()
{
    QTest::addColumn<bool>("isPower");
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("withCondition");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("reading");
    QTest::addColumn<QColor>("color");

    QTest::newRow("point named") << false << 12 << u"'Θάλαμος 2'"_s << true << u"[12] Θάλαμος 2"_s
                                 << u"3.0 °C"_s << kGrey;
    QTest::newRow("point empty name")
        << false << 3 << u"''"_s << true << u"[3] Ανώνυμη ζώνη"_s << u"3.0 °C"_s << kGrey;
    QTest::newRow("point missing name")
        << false << 20 << u"NULL"_s << true << u"[20] Ανώνυμη ζώνη"_s << u"3.0 °C"_s << kGrey;
    // No current-condition row: every field missing, so "not powered".
    QTest::newRow("point without condition row")
        << false << 9 << u"'Πόρτα'"_s << false << u"[9] Πόρτα"_s << u"ΕΚΤΟΣ Λ."_s << kRed;
    QTest::newRow("input 1 whatever its name")
        << true << 1 << u"'Μπαταρία'"_s << true << u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ"_s << u"OK"_s << kGrey;
    QTest::newRow("input 3 named Α")
        << true << 3 << u"'Α'"_s << true << u"[2] Α"_s << u"OK"_s << kGrey;
    QTest::newRow("input 2 empty name")
        << true << 2 << u"''"_s << true << u"[1] Ανώνυμη ζώνη"_s << u"OK"_s << kGrey;
    QTest::newRow("input 4 missing name")
        << true << 4 << u"NULL"_s << true << u"[3] Ανώνυμη ζώνη"_s << u"OK"_s << kGrey;
    // No current-condition row: no state is claimed.
    QTest::newRow("input without condition row")
        << true << 2 << u"'Γ'"_s << false << u"[1] Γ"_s << QString() << kGrey;
}

void TestCurrentCondition::labels()
{
    QFETCH(bool, isPower);
    QFETCH(int, number);
    QFETCH(QString, name);
    QFETCH(bool, withCondition);
    QFETCH(QString, label);
    QFETCH(QString, reading);
    QFETCH(QColor, color);

    const QString s = nextSerial();
    CurrentSeed seed(m_db);
    QVERIFY(seed.unit(s, u"Μονάδα"_s));
    if (isPower) {
        QVERIFY(seed.power(s, number, name));
        if (withCondition)
            QVERIFY(seed.powerCondition(s, number, u"0"_s, u"0"_s));
    } else {
        QVERIFY(seed.point(s, number, name));
        if (withCondition)
            QVERIFY(seed.pointCondition(s, number, u"3"_s));
    }

    const CurrentCondition cc = read(s);
    QVERIFY2(!cc.error.isError(), qPrintable(cc.error.description));
    if (isPower) {
        QCOMPARE(cc.powers.size(), 1);
        QCOMPARE(cc.powers[0].label, label);
        QCOMPARE(cc.powers[0].state, reading);
        QCOMPARE(cc.powers[0].color, color);
    } else {
        QCOMPARE(cc.points.size(), 1);
        QCOMPARE(cc.points[0].label, label);
        QCOMPARE(cc.points[0].reading, reading);
        QCOMPARE(cc.points[0].color, color);
    }
}

void TestCurrentCondition::notificationAndRelay_data()
{
    QTest::addColumn<bool>("withRow");
    QTest::addColumn<QString>("alarm");
    QTest::addColumn<QString>("relay");
    QTest::addColumn<QString>("notification");
    QTest::addColumn<QColor>("notificationColor");
    QTest::addColumn<QString>("relayText");
    QTest::addColumn<QColor>("relayColor");

    const QString off = u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s;
    const QString on = u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s;
    QTest::newRow("disabled, relay off")
        << true << u"0"_s << u"0"_s << u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s << kGrey << off << kGrey;
    QTest::newRow("enabled, relay on")
        << true << u"1"_s << u"1"_s << u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s << kRed << on << kRed;
    QTest::newRow("automatic off, relay 2")
        << true << u"2"_s << u"2"_s << u"ΑΥΤΟΜΑΤΗ"_s << kGrey << off << kGrey;
    QTest::newRow("automatic on (3)")
        << true << u"3"_s << u"-1"_s << u"ΑΥΤΟΜΑΤΗ"_s << kRed << off << kGrey;
    QTest::newRow("automatic on (-1)")
        << true << u"-1"_s << u"0"_s << u"ΑΥΤΟΜΑΤΗ"_s << kRed << off << kGrey;
    QTest::newRow("missing values")
        << true << u"NULL"_s << u"NULL"_s << u"ΑΥΤΟΜΑΤΗ"_s << kRed << off << kGrey;
    QTest::newRow("missing row") << false << u""_s << u""_s << u"ΑΥΤΟΜΑΤΗ"_s << kRed << off
                                 << kGrey;
}

void TestCurrentCondition::notificationAndRelay()
{
    QFETCH(bool, withRow);
    QFETCH(QString, alarm);
    QFETCH(QString, relay);
    QFETCH(QString, notification);
    QFETCH(QColor, notificationColor);
    QFETCH(QString, relayText);
    QFETCH(QColor, relayColor);

    const QString s = nextSerial();
    CurrentSeed seed(m_db);
    QVERIFY(seed.unit(s, u"Μονάδα"_s));
    if (withRow)
        QVERIFY(seed.condition(s, alarm, relay));

    const CurrentCondition cc = read(s);
    QVERIFY2(!cc.error.isError(), qPrintable(cc.error.description));
    QVERIFY(cc.connected);
    QCOMPARE(cc.notification.text, notification);
    QCOMPARE(cc.notification.color, notificationColor);
    QCOMPARE(cc.relay.text, relayText);
    QCOMPARE(cc.relay.color, relayColor);
    QCOMPARE(cc.clock, QString());
}

void TestCurrentCondition::connection_data()
{
    QTest::addColumn<QString>("online");
    QTest::addColumn<bool>("connected");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QColor>("textColor");

    QTest::newRow("0 no connection")
        << u"0"_s << false << u"ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ ΜΗ ΔΙΑΘΕΣΙΜΗ"_s << colors::kRed;
    QTest::newRow("1 connected") << u"1"_s << true << u"ΣΕ ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ"_s << colors::kGreen;
    QTest::newRow("2 programming")
        << u"2"_s << false << u"ΣΥΣΤΗΜΑ ΣΕ ΔΙΑΔΙΚΑΣΙΑ ΠΡΟΓΡΑΜΜΑΤΙΣΜΟΥ"_s << colors::kRed;
    QTest::newRow("-1 programming")
        << u"-1"_s << false << u"ΣΥΣΤΗΜΑ ΣΕ ΔΙΑΔΙΚΑΣΙΑ ΠΡΟΓΡΑΜΜΑΤΙΣΜΟΥ"_s << colors::kRed;
    QTest::newRow("missing programming")
        << u"NULL"_s << false << u"ΣΥΣΤΗΜΑ ΣΕ ΔΙΑΔΙΚΑΣΙΑ ΠΡΟΓΡΑΜΜΑΤΙΣΜΟΥ"_s << colors::kRed;
}

void TestCurrentCondition::connection()
{
    QFETCH(QString, online);
    QFETCH(bool, connected);
    QFETCH(QString, text);
    QFETCH(QColor, textColor);

    const QString s = nextSerial();
    CurrentSeed seed(m_db);
    QVERIFY(seed.unit(s, u"Μονάδα"_s, online));
    QVERIFY(seed.point(s, 1, u"'Σημείο'"_s));
    QVERIFY(seed.pointCondition(s, 1, u"1"_s));
    QVERIFY(seed.power(s, 1, u"NULL"_s));
    QVERIFY(seed.powerCondition(s, 1, u"0"_s, u"0"_s));
    QVERIFY(seed.condition(s, u"1"_s, u"1"_s, u"'2024-03-05 14:07:00'"_s));
    QVERIFY(seed.fault(s, 0, u"3"_s));

    const CurrentCondition cc = read(s);
    QVERIFY2(!cc.error.isError(), qPrintable(cc.error.description));
    QVERIFY(cc.unitFound);
    QCOMPARE(cc.connected, connected);
    QCOMPARE(cc.connection.text, text);
    QCOMPARE(cc.connection.color, textColor);
    // Only a connected unit fills the grids, the clock and the fault summary.
    QCOMPARE(cc.points.size(), connected ? 1 : 0);
    QCOMPARE(cc.powers.size(), connected ? 1 : 0);
    QCOMPARE(cc.clock.isEmpty(), !connected);
    QCOMPARE(cc.status.text.isEmpty(), !connected);
    if (!connected)
        QCOMPARE(cc.status.color, kGrey);
}

void TestCurrentCondition::clock_data()
{
    QTest::addColumn<QString>("rtc");
    QTest::addColumn<QDateTime>("shown");

    QTest::newRow("set") << u"'2024-03-05 14:07:00'"_s
                         << QDateTime(QDate(2024, 3, 5), QTime(14, 7));
    QTest::newRow("past midnight")
        << u"'2031-12-31 00:05:59'"_s << QDateTime(QDate(2031, 12, 31), QTime(0, 5, 59));
    QTest::newRow("missing") << u"NULL"_s << QDateTime();
    QTest::newRow("zero date") << u"'1899-12-30 00:00:00'"_s << QDateTime();
}

void TestCurrentCondition::clock()
{
    QFETCH(QString, rtc);
    QFETCH(QDateTime, shown);

    const QString s = nextSerial();
    CurrentSeed seed(m_db);
    QVERIFY(seed.unit(s, u"Μονάδα"_s));
    QVERIFY(seed.condition(s, u"0"_s, u"0"_s, rtc));

    const CurrentCondition cc = read(s);
    QVERIFY2(!cc.error.isError(), qPrintable(cc.error.description));
    QCOMPARE(cc.clock, shown.isValid() ? greekDateTime(shown, false) : QString());
    if (shown.isValid())
        QVERIFY(cc.clock.contains(u"\r\n"_s)); // date on the first line, time on the second
}

void TestCurrentCondition::faultStatusCountsOnlyThisUnit()
{
    const QString a = nextSerial();
    const QString b = nextSerial();
    CurrentSeed seed(m_db);
    QVERIFY(seed.unit(a, u"Α"_s));
    QVERIFY(seed.unit(b, u"Β"_s));
    QVERIFY(seed.fault(b, 1, u"4"_s));

    CurrentCondition cc = read(a);
    QCOMPARE(cc.status.text, u"ΚΑΤΑΣΤΑΣΗ ΣΥΣΤΗΜΑΤΟΣ ΟΚ"_s);
    QCOMPARE(cc.status.color, kGrey);
    cc = read(b);
    QCOMPARE(cc.status.text,
             u"ΥΠΑΡΧΟΥΝ ΠΡΟΒΛΗΜΑΤΑ ΣΤΟ ΣΥΣΤΗΜΑ\r\nΔΕΙΤΕ ΝΕΑ ΜΗΝΥΜΑΤΑ ΓΙΑ ΛΕΠΤΟΜΕΡΕΙΕΣ"_s);
    QCOMPARE(cc.status.color, kRed);
}

void TestCurrentCondition::newMessagesOfAnyUnit()
{
    // Faults and messages of earlier rows exist; start from none.
    CurrentSeed seed(m_db);
    QVERIFY(seed.run(u"DELETE FROM Systems_Faults"_s));
    QVERIFY(seed.run(u"DELETE FROM Sensors_Events"_s));
    const QString a = nextSerial();
    const QString other = nextSerial();
    QVERIFY(seed.unit(a, u"Α"_s));
    QVERIFY(!read(a).newMessages);
    // A message of another unit lights the indicator of every unit's view.
    QVERIFY(seed.newPointMessage(other));
    QVERIFY(read(a).newMessages);
    QVERIFY(seed.run(u"DELETE FROM Sensors_Events"_s));
    // So does an unresolved fault of any unit.
    QVERIFY(seed.fault(other, 0, u"9"_s));
    QVERIFY(read(a).newMessages);
    QVERIFY(seed.run(u"DELETE FROM Systems_Faults"_s));
    QVERIFY(!read(a).newMessages);
}

void TestCurrentCondition::pointsInNumberOrderAndOnlyInUse()
{
    const QString s = nextSerial();
    CurrentSeed seed(m_db);
    QVERIFY(seed.unit(s, u"Μονάδα"_s));
    for (int n : {15, 2, 7, 11}) {
        QVERIFY(seed.point(s, n, u"'Ζ%1'"_s.arg(n), u"0"_s, n == 11 ? u"0"_s : u"1"_s));
        QVERIFY(seed.pointCondition(s, n, QString::number(n)));
    }
    for (int n : {4, 1, 3}) {
        QVERIFY(seed.power(s, n, u"'Π%1'"_s.arg(n), n == 3 ? u"NULL"_s : u"1"_s));
        QVERIFY(seed.powerCondition(s, n, u"0"_s, u"0"_s));
    }
    const CurrentCondition cc = read(s);
    QStringList labels;
    for (const PointRow& p : cc.points)
        labels << p.label + u'=' + p.reading;
    QCOMPARE(labels, (QStringList{u"[2] Ζ2=2.0 °C"_s, u"[7] Ζ7=7.0 °C"_s, u"[15] Ζ15=15.0 °C"_s}));
    labels.clear();
    for (const PowerRow& p : cc.powers)
        labels << p.label;
    QCOMPARE(labels, (QStringList{u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ"_s, u"[3] Π4"_s}));
}

void TestCurrentCondition::serialWithQuote()
{
    const QString s = u"O'Neil-7"_s;
    CurrentSeed seed(m_db);
    QVERIFY(seed.unit(s, u"Μονάδα"_s));
    QVERIFY(seed.point(s, 1, u"'Σημείο'"_s));
    QVERIFY(seed.pointCondition(s, 1, u"2"_s, u"1"_s));
    QVERIFY(seed.power(s, 2, u"'Δ'"_s));
    QVERIFY(seed.powerCondition(s, 2, u"1"_s, u"1"_s));
    QVERIFY(seed.condition(s, u"1"_s, u"1"_s));
    QVERIFY(seed.fault(s, 0, u"3"_s));

    const CurrentCondition cc = read(s);
    QVERIFY2(!cc.error.isError(), qPrintable(cc.error.description));
    QVERIFY(cc.connected);
    QCOMPARE(cc.points.size(), 1);
    QCOMPARE(cc.points[0].color, kRed);
    QCOMPARE(cc.powers.size(), 1);
    QCOMPARE(cc.powers[0].state, u"ΔΙΑΚΟΠΗ"_s);
    QCOMPARE(cc.notification.text, u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s);
    QCOMPARE(cc.relay.text, u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s);
    QCOMPARE(cc.status.color, kRed);
}

void TestCurrentCondition::missingUnitRowReadsNothingButMessages()
{
    CurrentSeed seed(m_db);
    QVERIFY(seed.run(u"DELETE FROM Sensors_Events"_s));
    QVERIFY(seed.newPointMessage(u"elsewhere"_s));
    const CurrentCondition cc = read(u"no such unit"_s);
    QVERIFY(!cc.error.isError());
    QVERIFY(!cc.unitFound);
    QVERIFY(cc.points.isEmpty());
    QVERIFY(cc.powers.isEmpty());
    QVERIFY(cc.newMessages);
    QVERIFY(seed.run(u"DELETE FROM Sensors_Events"_s));
}

void TestCurrentCondition::failingQueryStopsWithItsError()
{
    // A database without the schema: the first query fails and nothing is made up.
    ScratchDatabase bare;
    Database db;
    QVERIFY(bare.open(db, false));
    const CurrentCondition cc = readCurrentCondition(db, u"U1"_s);
    QVERIFY(cc.error.isError());
    QVERIFY(!cc.unitFound);
    QVERIFY(cc.points.isEmpty());
}

void TestCurrentCondition::labelRowHeight_data()
{
    QTest::addColumn<double>("width");
    QTest::addColumn<double>("height");
    QTest::addColumn<int>("column");
    QTest::addColumn<int>("lines");
    QTest::addColumn<int>("rowHeight");

    QTest::newRow("narrower keeps the default") << 120.0 << 15.0 << 300 << 0 << -1;
    QTest::newRow("just narrower") << 299.6 << 15.0 << 300 << 0 << -1;
    QTest::newRow("exactly as wide: two lines") << 300.0 << 15.0 << 300 << 2 << 30;
    QTest::newRow("a little wider: two lines") << 300.4 << 15.0 << 300 << 2 << 30;
    QTest::newRow("2.5 times: three lines") << 750.0 << 15.0 << 300 << 3 << 45;
    QTest::newRow("just under twice: two lines") << 599.6 << 15.0 << 300 << 2 << 30;
    QTest::newRow("twice: three lines") << 600.0 << 15.0 << 300 << 3 << 45;
    QTest::newRow("height rounded") << 300.0 << 15.26 << 300 << 2 << 31;
    QTest::newRow("three lines rounded down") << 750.0 << 15.1 << 300 << 3 << 45;
}

void TestCurrentCondition::labelRowHeight()
{
    QFETCH(double, width);
    QFETCH(double, height);
    QFETCH(int, column);
    QFETCH(int, lines);
    QFETCH(int, rowHeight);
    QCOMPARE(labelRowLines(width, column), lines);
    QCOMPARE(sx::labelRowHeight(width, height, column), rowHeight);
}

QTEST_GUILESS_MAIN(TestCurrentCondition)
#include "tst_currentcondition.moc"
