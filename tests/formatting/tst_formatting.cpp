#include "model/Formatting.h"

#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;

static QDateTime at(int y, int mo, int d, int h, int mi, int s = 0)
{
    return QDateTime(QDate(y, mo, d), QTime(h, mi, s));
}

class TestFormatting : public QObject {
    Q_OBJECT

private slots:
    void greekDateTime_data()
    {
        QTest::addColumn<QDateTime>("when");
        QTest::addColumn<bool>("oneLine");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const QDateTime& when, const QString& text) {
            QTest::newRow(name) << when << true << text;
        };
        row("evening", at(2026, 11, 16, 22, 5), u"Δευτέρα 16 Νοεμβρίου 2026 10:05 μμ"_s);
        QTest::newRow("two lines")
            << at(2026, 11, 16, 22, 5) << false << u"Δευτέρα 16 Νοεμβρίου 2026\r\n10:05 μμ"_s;
        row("midnight is 12 am", at(2026, 11, 16, 0, 7), u"Δευτέρα 16 Νοεμβρίου 2026 12:07 πμ"_s);
        row("noon is 12 pm", at(2026, 11, 16, 12, 30), u"Δευτέρα 16 Νοεμβρίου 2026 12:30 μμ"_s);
        row("last morning minute", at(2026, 11, 16, 11, 59, 59),
            u"Δευτέρα 16 Νοεμβρίου 2026 11:59 πμ"_s);
        row("one pm, no padding", at(2026, 11, 16, 13, 0), u"Δευτέρα 16 Νοεμβρίου 2026 1:00 μμ"_s);
        row("first month", at(2026, 1, 3, 9, 0), u"Σάββατο 3 Ιανουαρίου 2026 9:00 πμ"_s);
        row("may keeps its diaeresis", at(2026, 5, 14, 23, 59), u"Πέμπτη 14 Μαΐου 2026 11:59 μμ"_s);
        row("last month", at(2026, 12, 31, 18, 45), u"Πέμπτη 31 Δεκεμβρίου 2026 6:45 μμ"_s);
        row("invalid", QDateTime(), QString());
        // 15 November 2026 is a Sunday.
        const QStringList days{u"Κυριακή"_s, u"Δευτέρα"_s,   u"Τρίτη"_s,  u"Τετάρτη"_s,
                               u"Πέμπτη"_s,  u"Παρασκευή"_s, u"Σάββατο"_s};
        for (int i = 0; i < 7; ++i)
            QTest::addRow("weekday %d", i) << at(2026, 11, 15 + i, 9, 0) << true
                                           << days[i] + u" %1 Νοεμβρίου 2026 9:00 πμ"_s.arg(15 + i);
    }

    void greekDateTime()
    {
        QFETCH(QDateTime, when);
        QFETCH(bool, oneLine);
        QTEST(sx::greekDateTime(when, oneLine), "expected");
    }

    void elapsedText_data()
    {
        QTest::addColumn<qint32>("seconds");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, qint32 s, const QString& text) {
            QTest::newRow(name) << s << text;
        };
        row("zero", 0, u"ΠΡΙΝ 0 ΔΕΥΤΕΡΟΛΕΠΤΑ "_s);
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

    void elapsedText()
    {
        QFETCH(qint32, seconds);
        QTEST(sx::elapsedText(seconds), "expected");
    }

    void unitSuffixAndReading()
    {
        // The degree sign must be U+00B0, not a look-alike.
        QStringList got;
        for (int type : {0, 1, 2, 3, 8, 14, 18, 20, 21, -1, std::numeric_limits<int>::min()})
            got << sx::unitSuffix(type);
        QCOMPARE(got,
                 (QStringList{u" \u00B0C"_s, u" %RH"_s, QString(), u" bar"_s, u" \u00B0F"_s,
                              u" %"_s, u" kJ/mol"_s, u" r/s"_s, QString(), QString(), QString()}));
        got.clear();
        const QLocale greek(QLocale::Greek, QLocale::Greece);
        const std::pair<double, int> readings[] = {{1.0, 2},   {0.01, 2}, {0.0, 2}, {-1.0, 2},
                                                   {21.34, 0}, {1.5, 3},  {5.0, 21}};
        for (const auto& [value, type] : readings)
            got << sx::formatReading(value, type, greek);
        QCOMPARE(got, (QStringList{u"ΚΛΕΙΣΤΗ"_s, u"ΚΛΕΙΣΤΗ"_s, u"ΑΝΟΙΧΤΗ"_s, u"ΑΝΟΙΧΤΗ"_s,
                                   u"21,3 \u00B0C"_s, u"1,5 bar"_s, u"5,0"_s}));
    }

    void formatValue_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<QString>("expected");
        const QLocale greek(QLocale::Greek, QLocale::Greece);
        const QLocale c = QLocale::c();
        QTest::newRow("greek comma") << 21.34 << greek << u"21,3"_s;
        QTest::newRow("c point") << 21.34 << c << u"21.3"_s;
        QTest::newRow("whole number keeps a decimal") << 7.0 << c << u"7.0"_s;
        QTest::newRow("half rounds up") << 0.25 << c << u"0.3"_s;
        QTest::newRow("rounding carries") << 9.96 << c << u"10.0"_s;
        QTest::newRow("negative half rounds away") << -0.25 << c << u"-0.3"_s;
        QTest::newRow("negative zero") << -0.0 << c << u"0.0"_s;
        QTest::newRow("small negative rounds to plain zero") << -0.04 << greek << u"0,0"_s;
        QTest::newRow("no grouping") << -1234567.89 << greek << u"-1234567,9"_s;
        QTest::newRow("beyond integer precision, exponent form") << -1e30 << greek << u"-1e+30"_s;
    }

    void formatValue()
    {
        QFETCH(double, value);
        QFETCH(QLocale, locale);
        QTEST(sx::formatValue(value, locale), "expected");
    }

    void recordTime()
    {
        QCOMPARE(sx::formatRecordTime(2026, 1, 5, 0, 0), u"05/01/2026 - 00:00"_s);
        QCOMPARE(sx::formatRecordTime(2025, 12, 31, 23, 59), u"31/12/2025 - 23:59"_s);
        QCOMPARE(sx::formatRecordTime(999, 3, 1, 7, 9), u"01/03/0999 - 07:09"_s);
        QCOMPARE(sx::formatRecordTime(10000, 3, 1, 7, 9), u"01/03/10000 - 07:09"_s);
        // Steps of 7 h 13 min reach every hour, many minutes and every day of a leap year.
        const QDateTime end = at(2025, 1, 1, 0, 0);
        for (QDateTime when = at(2024, 1, 1, 0, 0, 59); when < end;
             when = when.addSecs(7 * 3600 + 13 * 60))
            QCOMPARE(sx::formatRecordTime(when), when.toString(u"dd/MM/yyyy - HH:mm"_s));
        QCOMPARE(sx::formatRecordTime(QDateTime()), QString());
    }

    void recordTimeTakesTheLocalesSeparators_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<QString>("expected");
        QTest::newRow("Greek keeps / and :")
            << QLocale(QLocale::Greek, QLocale::Greece) << u"16/11/2026 - 22:05"_s;
        QTest::newRow("German dots")
            << QLocale(QLocale::German, QLocale::Germany) << u"16.11.2026 - 22:05"_s;
        QTest::newRow("Finnish dots in the time too")
            << QLocale(QLocale::Finnish, QLocale::Finland) << u"16.11.2026 - 22.05"_s;
        QTest::newRow("Swedish hyphens")
            << QLocale(QLocale::Swedish, QLocale::Sweden) << u"16-11-2026 - 22:05"_s;
    }
    void recordTimeTakesTheLocalesSeparators()
    {
        QFETCH(QLocale, locale);
        QTEST(sx::formatRecordTime(2026, 11, 16, 22, 5, sx::timeSeparators(locale)), "expected");
        // Grids and reports follow the default locale, also when it changes.
        const QLocale before;
        QLocale::setDefault(locale);
        const QString got = sx::formatRecordTime(at(2026, 11, 16, 22, 5));
        QLocale::setDefault(before);
        QTEST(got, "expected");
    }

    void unitVersionNumber()
    {
        const QStringList texts{QString(),        u"1"_s,           u"1.2.3"_s,
                                u"1.22"_s,        u"1.5"_s,         u"1.225"_s,
                                u"x.10"_s,        u"1.2a"_s,        u"-1.22"_s,
                                u".22"_s,         u"1."_s,          u" 1.22 "_s,
                                u"21474836.47"_s, u"21474836.48"_s, QString(400, u'9') + u".99"_s};
        QList<int> got;
        for (const QString& t : texts)
            got << sx::unitVersionNumber(t);
        // A second point ends the minor part, a third minor digit is ignored, "1." is 1.
        QCOMPARE(got, (QList<int>{0, 0, 12, 122, 15, 122, 0, 0, 0, 0, 1, 122, 2147483647, 0, 0}));
    }
};

QTEST_APPLESS_MAIN(TestFormatting)
#include "tst_formatting.moc"
