#include "model/commands/CommandRules.h"
#include "sim/RequestHandler.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx::commands;

namespace {

std::optional<QString> opt(const char16_t* text)
{
    return text ? std::optional<QString>(QString::fromUtf16(text)) : std::nullopt;
}

// A row named after what was typed.
template <typename Check> void typedRow(const char16_t* typed, Check check)
{
    QTest::addRow("%s", typed ? QString::fromUtf16(typed).toUtf8().constData() : "cancelled")
        << opt(typed) << check;
}

} // namespace

Q_DECLARE_METATYPE(std::optional<QString>)
Q_DECLARE_METATYPE(CodeCheck)
Q_DECLARE_METATYPE(DelayCheck)

class TestCommandRules : public QObject {
    Q_OBJECT

private slots:
    // The console and the simulator decide alike, but for a version that is missing or has no
    // point: the simulator then goes by the model alone.
    void extendedUnit_data()
    {
        QTest::addColumn<std::optional<QString>>("model");
        QTest::addColumn<std::optional<QString>>("softver");
        QTest::addColumn<bool>("extended");
        QTest::addColumn<bool>("simulator");
        const auto row = [](const char* name, const char16_t* model, const char16_t* ver, bool e,
                            std::optional<bool> sim = {}) {
            QTest::newRow(name) << opt(model) << opt(ver) << e << sim.value_or(e);
        };
        row("1A at 1.15", u"SENTORAX-1A", u"1.15", true);
        row("1A at 1.14", u"SENTORAX-1A", u"1.14", false);
        row("1B at 1.22", u"SENTORAX-1B", u"1.22", true);
        row("1B at 1.5 is 15, not 150", u"SENTORAX-1B", u"1.5", false);
        row("1A at 2.0 is 20", u"SENTORAX-1A", u"2.0", false);
        row("1A at 1.225 is 122", u"SENTORAX-1A", u"1.225", true);
        row("1A at 11.5 is 115", u"SENTORAX-1A", u"11.5", true);
        row("1A unreadable minor", u"SENTORAX-1A", u"1.x5", false);
        row("1A unreadable version", u"SENTORAX-1A", u"abc", false);
        row("1C at 0.1", u"SENTORAX-1C", u"0.1", true);
        for (const char16_t* m : {u"SENTORAX-1D", u"SENTORAX-1E", u"SENTORAX-1F", u"SENTORAX-1G",
                                  u"SENTORAX-2D", u"SENTORAX-2E", u"SENTORAX-2F"})
            QTest::addRow("%s", QString::fromUtf16(m).toUtf8().constData())
                << opt(m) << opt(u"1.00") << true << true;
        row("2B never", u"SENTORAX-2B", u"9.99", false);
        row("2A never", u"SENTORAX-2A", u"1.22", false);
        row("contained in a longer text", u"Μονάδα SENTORAX-1D rev2", u"1.00", true);
        row("1A contained, 1.15", u"XSENTORAX-1AX", u"1.15", true);
        row("case counts", u"sentorax-1c", u"1.22", false);
        row("missing model", nullptr, u"1.22", false);
        row("version without point", u"SENTORAX-1C", u"2", false, true);
        row("missing version", u"SENTORAX-2F", nullptr, false, true);
    }

    void extendedUnit()
    {
        QFETCH(std::optional<QString>, model);
        QFETCH(std::optional<QString>, softver);
        QFETCH(bool, extended);
        QFETCH(bool, simulator);
        QCOMPARE(isExtendedUnit(model, softver), extended);
        QCOMPARE(
            sx::sim::isExtendedNotification(model.value_or(QString()), softver.value_or(QString())),
            simulator);
    }

    // The notice texts are checked end to end in tst_unitcommands.
    void code_data()
    {
        QTest::addColumn<std::optional<QString>>("typed");
        QTest::addColumn<CodeCheck>("check");
        const auto row = typedRow<CodeCheck>;
        row(nullptr, CodeCheck::Cancelled);
        row(u"", CodeCheck::Cancelled);
        row(u"123", CodeCheck::BadLength);
        row(u"123456789", CodeCheck::BadLength);
        row(u"1234", CodeCheck::Accepted);
        row(u"12345678", CodeCheck::Accepted);
        row(u"0042", CodeCheck::Accepted);
        row(u"12a4", CodeCheck::NotDigits);
        row(u"1a", CodeCheck::NotDigits); // the characters are looked at before the length
        row(u" 1234", CodeCheck::NotDigits);
        row(u"-1234", CodeCheck::NotDigits);
        row(u"\u0661\u0662\u0663\u0664", CodeCheck::NotDigits);
        row(u"\uFF11\uFF12\uFF13\uFF14", CodeCheck::NotDigits);
    }

    void code()
    {
        QFETCH(std::optional<QString>, typed);
        QFETCH(CodeCheck, check);
        QCOMPARE(checkCode(typed), check);
        if (check == CodeCheck::Cancelled || check == CodeCheck::Accepted)
            QVERIFY(!codeNotice(check));
    }

    void delay_data()
    {
        QTest::addColumn<std::optional<QString>>("typed");
        QTest::addColumn<DelayCheck>("check");
        const auto row = typedRow<DelayCheck>;
        row(u"0", DelayCheck::Accepted);
        row(u"24", DelayCheck::Accepted);
        row(u"024", DelayCheck::Accepted);
        row(u"25", DelayCheck::OutOfRange);
        row(u"", DelayCheck::OutOfRange);
        row(nullptr, DelayCheck::OutOfRange);
        row(u"99999999999999999999999", DelayCheck::OutOfRange);
        row(u"1.5", DelayCheck::NotDigits);
        row(u"1,5", DelayCheck::NotDigits);
        row(u"-1", DelayCheck::NotDigits);
        row(u" 1", DelayCheck::NotDigits);
        row(u"99h", DelayCheck::NotDigits); // letters win over the range
    }

    void delay()
    {
        QFETCH(std::optional<QString>, typed);
        QFETCH(DelayCheck, check);
        QCOMPARE(checkDelay(typed), check);
        if (check == DelayCheck::Accepted)
            QVERIFY(!delayNotice(check));
    }

    // Replies 2, 3, 4 and 6 are checked end to end in tst_unitcommands; 5 reads as 6.
    void reply()
    {
        for (int silent : {0, 1, 7, -1, 255})
            QVERIFY2(!replyNotice(silent), qPrintable(QString::number(silent)));
        QCOMPARE(replyNotice(5), replyNotice(6));
    }

    void timeout_data()
    {
        QTest::addColumn<QString>("written");
        QTest::addColumn<QString>("now");
        QTest::addColumn<bool>("timedOut");

        // Whole seconds as the clock shows them, not elapsed milliseconds.
        QTest::newRow("60 s") << u"10:00:00.000"_s << u"10:01:00.999"_s << false;
        QTest::newRow("61 s") << u"10:00:00.000"_s << u"10:01:01.000"_s << true;
        QTest::newRow("60.1 s across 61 ticks") << u"10:00:00.900"_s << u"10:01:01.000"_s << true;
        QTest::newRow("60.9 s across 60 ticks") << u"10:00:00.050"_s << u"10:01:00.950"_s << false;
        QTest::newRow("at once") << u"10:00:00.000"_s << u"10:00:00.500"_s << false;
        QTest::newRow("clock set back") << u"10:00:00.000"_s << u"09:00:00.000"_s << false;
    }

    void timeout()
    {
        QFETCH(QString, written);
        QFETCH(QString, now);
        QFETCH(bool, timedOut);
        const QDate day(2026, 3, 1);
        const QDateTime w(day, QTime::fromString(written, u"HH:mm:ss.zzz"_s));
        const QDateTime n(day, QTime::fromString(now, u"HH:mm:ss.zzz"_s));
        QCOMPARE(requestTimedOut(w, n), timedOut);
    }

    void attributes()
    {
        QCOMPARE(notificationAttributes(u"1234"_s, 2, true, u"7"_s), u"1234;2"_s);
        QCOMPARE(notificationAttributes(u"1234"_s, 0, true, {}), u"1234;0"_s);
        QCOMPARE(notificationAttributes(u"0042"_s, 1, false, u"024"_s), u"0042;1;024"_s);
        QCOMPARE(notificationAttributes(u"0042"_s, 0, false, u"5"_s), u"0042;0;0"_s);
        // Only the exact masculine "on" caption switches the relay off.
        QCOMPARE(relayAttributes(u"0042"_s, u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s), u"0042;0"_s);
        QCOMPARE(relayAttributes(u"1234"_s, {}), u"1234;1"_s);
        QCOMPARE(relayAttributes(u"1234"_s, u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s), u"1234;1"_s);
        QCOMPARE(bypassAttributes(u"12345678"_s, 17, 1), u"12345678;17;1"_s);
        QCOMPARE(bypassAttributes(u"1234"_s, 3, 0), u"1234;3;0"_s);
    }

    void choicesAndLabels()
    {
        // The texts (a nameless point too) are walked end to end; here the values sent.
        const auto values = [](const QList<Choice>& choices) {
            QList<int> out;
            for (const Choice& c : choices)
                out << c.value;
            return out;
        };
        QCOMPARE(values(notificationChoices(true)), (QList<int>{0, 1, 2}));
        QCOMPARE(values(notificationChoices(false)), (QList<int>{0, 1}));
        QCOMPARE(values(bypassStateChoices()), (QList<int>{0, 1}));

        QCOMPARE(pointChoiceText(4, opt(u"")), u"[4] Ανώνυμη ζώνη"_s);
        QCOMPARE(pointChoiceText(1, opt(u" ")), u"[1]  "_s); // a blank name is kept
    }
};

QTEST_APPLESS_MAIN(TestCommandRules)
#include "tst_commandrules.moc"
