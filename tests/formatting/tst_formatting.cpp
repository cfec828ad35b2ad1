#include "model/Formatting.h"

#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;

class TestFormatting : public QObject {
    Q_OBJECT

private slots:
    void greekDateTime_data();
    void greekDateTime();
    void elapsedText_data();
    void elapsedText();
    void unitSuffix_data();
    void unitSuffix();
    void formatValue_data();
    void formatValue();
    void formatReading_data();
    void formatReading();
    void recordTimeFromFields_data();
    void recordTimeFromFields();
    void recordTimeMatchesQtFormatOverAYear();
    void unitVersionNumber_data();
    void unitVersionNumber();
};

static QDateTime at(int y, int mo, int d, int h, int mi, int s = 0)
{
    return QDateTime(QDate(y, mo, d), QTime(h, mi, s));
}

void TestFormatting::greekDateTime_data()
{
    QTest::addColumn<QDateTime>("when");
    QTest::addColumn<bool>("oneLine");
    QTest::addColumn<QString>("expected");
    QTest::newRow("evening") << at(2026, 11, 16, 22, 5) << true
                             << u"Δευτέρα 16 Νοεμβρίου 2026 10:05 μμ"_s;
    QTest::newRow("two lines") << at(2026, 11, 16, 22, 5) << false
                               << u"Δευτέρα 16 Νοεμβρίου 2026\r\n10:05 μμ"_s;
    QTest::newRow("just after midnight is 12 am")
        << at(2026, 11, 16, 0, 7) << true << u"Δευτέρα 16 Νοεμβρίου 2026 12:07 πμ"_s;
    QTest::newRow("noon is 12 pm")
        << at(2026, 11, 16, 12, 30) << true << u"Δευτέρα 16 Νοεμβρίου 2026 12:30 μμ"_s;
    QTest::newRow("last morning minute")
        << at(2026, 11, 16, 11, 59, 59) << true << u"Δευτέρα 16 Νοεμβρίου 2026 11:59 πμ"_s;
    QTest::newRow("one pm, no hour padding")
        << at(2026, 11, 16, 13, 0) << true << u"Δευτέρα 16 Νοεμβρίου 2026 1:00 μμ"_s;
    QTest::newRow("sunday is the first weekday")
        << at(2026, 11, 15, 1, 9) << true << u"Κυριακή 15 Νοεμβρίου 2026 1:09 πμ"_s;
    QTest::newRow("tuesday") << at(2026, 11, 17, 9, 0) << true
                             << u"Τρίτη 17 Νοεμβρίου 2026 9:00 πμ"_s;
    QTest::newRow("wednesday") << at(2026, 11, 18, 9, 0) << true
                               << u"Τετάρτη 18 Νοεμβρίου 2026 9:00 πμ"_s;
    QTest::newRow("thursday") << at(2026, 11, 19, 9, 0) << true
                              << u"Πέμπτη 19 Νοεμβρίου 2026 9:00 πμ"_s;
    QTest::newRow("friday") << at(2026, 11, 20, 9, 0) << true
                            << u"Παρασκευή 20 Νοεμβρίου 2026 9:00 πμ"_s;
    QTest::newRow("saturday, first month")
        << at(2026, 1, 3, 9, 0) << true << u"Σάββατο 3 Ιανουαρίου 2026 9:00 πμ"_s;
    QTest::newRow("may keeps its diaeresis")
        << at(2026, 5, 14, 23, 59) << true << u"Πέμπτη 14 Μαΐου 2026 11:59 μμ"_s;
    QTest::newRow("last month") << at(2026, 12, 31, 18, 45) << true
                                << u"Πέμπτη 31 Δεκεμβρίου 2026 6:45 μμ"_s;
    QTest::newRow("invalid") << QDateTime() << true << QString();
}

void TestFormatting::greekDateTime()
{
    QFETCH(QDateTime, when);
    QFETCH(bool, oneLine);
    QFETCH(QString, expected);
    QCOMPARE(sx::greekDateTime(when, oneLine), expected);
}

void TestFormatting::elapsedText_data()
{
    QTest::addColumn<qint32>("seconds");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, qint32 s, const QString& text) {
        QTest::newRow(name) << s << text;
    };
    row("zero", 0, u"ΠΡΙΝ 0 ΔΕΥΤΕΡΟΛΕΠΤΑ "_s);
    row("seconds", 45, u"ΠΡΙΝ 45 ΔΕΥΤΕΡΟΛΕΠΤΑ "_s);
    row("one minute exactly", 60, u"ΠΡΙΝ 1 ΛΕΠΤΑ "_s);
    row("minute and second", 61, u"ΠΡΙΝ 1 ΛΕΠΤΑ ΚΑΙ 1 ΔΕΥΤΕΡΟΛΕΠΤΑ "_s);
    row("hour drops seconds", 3725, u"ΠΡΙΝ 1 ΩΡΕΣ ΚΑΙ 2 ΛΕΠΤΑ "_s);
    row("two hours exactly", 7200, u"ΠΡΙΝ 2 ΩΡΕΣ "_s);
    row("a second short of a day", 86399, u"ΠΡΙΝ 23 ΩΡΕΣ ΚΑΙ 59 ΛΕΠΤΑ "_s);
    row("day drops minutes", 90061, u"ΠΡΙΝ 1 ΗΜΕΡΕΣ ΚΑΙ 1 ΩΡΕΣ "_s);
    row("a second short of a year", 31535999, u"ΠΡΙΝ 364 ΗΜΕΡΕΣ ΚΑΙ 23 ΩΡΕΣ "_s);
    row("one year exactly", 31536000, u"ΠΡΙΝ 1 ΧΡΟΝΙΑ "_s);
    row("years and days", 2 * 31536000 + 3 * 86400 + 7, u"ΠΡΙΝ 2 ΧΡΟΝΙΑ ΚΑΙ 3 ΗΜΕΡΕΣ "_s);
    row("largest", std::numeric_limits<qint32>::max(), u"ΠΡΙΝ 68 ΧΡΟΝΙΑ ΚΑΙ 35 ΗΜΕΡΕΣ "_s);
    row("negative stays in seconds", -3725, u"ΠΡΙΝ -3725 ΔΕΥΤΕΡΟΛΕΠΤΑ "_s);
    row("smallest", std::numeric_limits<qint32>::min(), u"ΠΡΙΝ -2147483648 ΔΕΥΤΕΡΟΛΕΠΤΑ "_s);
}

void TestFormatting::elapsedText()
{
    QFETCH(qint32, seconds);
    QFETCH(QString, expected);
    QCOMPARE(sx::elapsedText(seconds), expected);
}

void TestFormatting::unitSuffix_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("expected");
    QTest::newRow("celsius, U+00B0") << 0 << u" \u00B0C"_s;
    QTest::newRow("humidity") << 1 << u" %RH"_s;
    QTest::newRow("contact input") << 2 << QString();
    QTest::newRow("bar") << 3 << u" bar"_s;
    QTest::newRow("fahrenheit, U+00B0") << 8 << u" \u00B0F"_s;
    QTest::newRow("percent") << 14 << u" %"_s;
    QTest::newRow("energy") << 18 << u" kJ/mol"_s;
    QTest::newRow("last code") << 20 << u" r/s"_s;
    QTest::newRow("past the table") << 21 << QString();
    QTest::newRow("negative") << -1 << QString();
    QTest::newRow("most negative") << std::numeric_limits<int>::min() << QString();
}

void TestFormatting::unitSuffix()
{
    QFETCH(int, type);
    QFETCH(QString, expected);
    QCOMPARE(sx::unitSuffix(type), expected);
}

void TestFormatting::formatValue_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("expected");
    const QLocale greek(QLocale::Greek, QLocale::Greece);
    const QLocale c = QLocale::c();
    QTest::newRow("greek comma") << 21.34 << greek << u"21,3"_s;
    QTest::newRow("c point") << 21.34 << c << u"21.3"_s;
    QTest::newRow("whole number keeps a decimal") << 7.0 << c << u"7.0"_s;
    QTest::newRow("leading zero") << 0.5 << c << u"0.5"_s;
    QTest::newRow("half rounds up") << 0.25 << c << u"0.3"_s;
    QTest::newRow("rounding carries") << 9.96 << c << u"10.0"_s;
    QTest::newRow("negative half rounds away") << -0.25 << c << u"-0.3"_s;
    QTest::newRow("negative") << -12.34 << greek << u"-12,3"_s;
    QTest::newRow("zero") << 0.0 << c << u"0.0"_s;
    QTest::newRow("negative zero") << -0.0 << c << u"0.0"_s;
    QTest::newRow("small negative rounds to plain zero") << -0.04 << greek << u"0,0"_s;
    QTest::newRow("no grouping, greek") << 1234567.89 << greek << u"1234567,9"_s;
    QTest::newRow("no grouping, c") << -1234567.89 << c << u"-1234567.9"_s;
    QTest::newRow("beyond integer precision") << 1e20 << c << u"100000000000000000000.0"_s;
    QTest::newRow("beyond integer precision, greek") << -1e16 << greek << u"-10000000000000000,0"_s;
}

void TestFormatting::formatValue()
{
    QFETCH(double, value);
    QFETCH(QLocale, locale);
    QFETCH(QString, expected);
    QCOMPARE(sx::formatValue(value, locale), expected);
}

void TestFormatting::formatReading_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("expected");
    QTest::newRow("contact closed") << 1.0 << 2 << u"ΚΛΕΙΣΤΗ"_s;
    QTest::newRow("contact barely above 0") << 0.01 << 2 << u"ΚΛΕΙΣΤΗ"_s;
    QTest::newRow("contact open at 0") << 0.0 << 2 << u"ΑΝΟΙΧΤΗ"_s;
    QTest::newRow("contact open below 0") << -1.0 << 2 << u"ΑΝΟΙΧΤΗ"_s;
    QTest::newRow("celsius") << 21.34 << 0 << u"21,3 \u00B0C"_s;
    QTest::newRow("pressure") << 1.5 << 3 << u"1,5 bar"_s;
    QTest::newRow("unknown code has no unit") << 5.0 << 21 << u"5,0"_s;
}

void TestFormatting::formatReading()
{
    QFETCH(double, value);
    QFETCH(int, type);
    QFETCH(QString, expected);
    QCOMPARE(sx::formatReading(value, type, QLocale(QLocale::Greek, QLocale::Greece)), expected);
}

void TestFormatting::recordTimeFromFields_data()
{
    QTest::addColumn<QList<int>>("fields");
    QTest::addColumn<QString>("expected");
    QTest::newRow("evening") << QList<int>{2026, 11, 16, 22, 5} << u"16/11/2026 - 22:05"_s;
    QTest::newRow("all padded") << QList<int>{2026, 1, 5, 0, 0} << u"05/01/2026 - 00:00"_s;
    QTest::newRow("last minute of a year")
        << QList<int>{2025, 12, 31, 23, 59} << u"31/12/2025 - 23:59"_s;
    QTest::newRow("three-digit year padded")
        << QList<int>{999, 3, 1, 7, 9} << u"01/03/0999 - 07:09"_s;
    QTest::newRow("five-digit year kept")
        << QList<int>{10000, 3, 1, 7, 9} << u"01/03/10000 - 07:09"_s;
}

void TestFormatting::recordTimeFromFields()
{
    QFETCH(QList<int>, fields);
    QFETCH(QString, expected);
    QCOMPARE(sx::formatRecordTime(fields[0], fields[1], fields[2], fields[3], fields[4]), expected);
}

void TestFormatting::recordTimeMatchesQtFormatOverAYear()
{
    // Steps of 7 h 13 min reach every hour, many minutes and every day of a leap year.
    QDateTime when = at(2024, 1, 1, 0, 0, 59);
    const QDateTime end = at(2025, 1, 1, 0, 0);
    for (; when < end; when = when.addSecs(7 * 3600 + 13 * 60)) {
        const QString expected = when.toString(u"dd/MM/yyyy - HH:mm"_s);
        QCOMPARE(sx::formatRecordTime(when), expected);
    }
    QCOMPARE(sx::formatRecordTime(QDateTime()), QString());
}

void TestFormatting::unitVersionNumber_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("expected");
    QTest::newRow("empty") << QString() << 0;
    QTest::newRow("letters") << u"abc"_s << 0;
    QTest::newRow("no point") << u"1"_s << 0;
    QTest::newRow("second point ends the minor part") << u"1.2.3"_s << 12;
    QTest::newRow("below extended telephone") << u"1.14"_s << 114;
    QTest::newRow("extended telephone") << u"1.15"_s << 115;
    QTest::newRow("below power condition") << u"1.21"_s << 121;
    QTest::newRow("power condition") << u"1.22"_s << 122;
    QTest::newRow("major 2") << u"2.0"_s << 20;
    QTest::newRow("single minor digit") << u"1.5"_s << 15;
    QTest::newRow("third minor digit ignored") << u"1.225"_s << 122;
    QTest::newRow("non-digit major") << u"x.10"_s << 0;
    QTest::newRow("non-digit minor") << u"1.2a"_s << 0;
    QTest::newRow("sign is not a digit") << u"-1.22"_s << 0;
    QTest::newRow("no major") << u".22"_s << 0;
    QTest::newRow("nothing after point") << u"1."_s << 1;
    QTest::newRow("surrounding blanks") << u" 1.22 "_s << 122;
    QTest::newRow("largest int") << u"21474836.47"_s << 2147483647;
    QTest::newRow("one past int") << u"21474836.48"_s << 0;
    QTest::newRow("very long") << QString(400, u'9') + u".99"_s << 0;
}

void TestFormatting::unitVersionNumber()
{
    QFETCH(QString, text);
    QFETCH(int, expected);
    QCOMPARE(sx::unitVersionNumber(text), expected);
}

QTEST_APPLESS_MAIN(TestFormatting)
#include "tst_formatting.moc"
