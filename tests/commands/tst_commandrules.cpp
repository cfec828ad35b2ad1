#include "views/current/CommandRules.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx::commands;
using Icon = sx::DialogService::Icon;

namespace {

std::optional<QString> opt(const char16_t* text)
{
    return text ? std::optional<QString>(QString::fromUtf16(text)) : std::nullopt;
}

} // namespace

Q_DECLARE_METATYPE(std::optional<QString>)
Q_DECLARE_METATYPE(CodeCheck)
Q_DECLARE_METATYPE(DelayCheck)

class TestCommandRules : public QObject {
    Q_OBJECT

private slots:
    void extendedUnit_data()
    {
        QTest::addColumn<std::optional<QString>>("model");
        QTest::addColumn<std::optional<QString>>("softver");
        QTest::addColumn<bool>("extended");

        QTest::newRow("1A at 1.15") << opt(u"SENTORAX-1A") << opt(u"1.15") << true;
        QTest::newRow("1A at 1.14") << opt(u"SENTORAX-1A") << opt(u"1.14") << false;
        QTest::newRow("1B at 1.22") << opt(u"SENTORAX-1B") << opt(u"1.22") << true;
        // 1.5 is 15, not 150.
        QTest::newRow("1B at 1.5") << opt(u"SENTORAX-1B") << opt(u"1.5") << false;
        QTest::newRow("1A at 2.0 is 20") << opt(u"SENTORAX-1A") << opt(u"2.0") << false;
        QTest::newRow("1A at 1.225 is 122") << opt(u"SENTORAX-1A") << opt(u"1.225") << true;
        QTest::newRow("1A at 11.5 is 115") << opt(u"SENTORAX-1A") << opt(u"11.5") << true;
        QTest::newRow("1A unreadable minor") << opt(u"SENTORAX-1A") << opt(u"1.x5") << false;
        QTest::newRow("1C at 0.1") << opt(u"SENTORAX-1C") << opt(u"0.1") << true;
        for (const char16_t* m : {u"SENTORAX-1D", u"SENTORAX-1E", u"SENTORAX-1F", u"SENTORAX-1G",
                                  u"SENTORAX-2D", u"SENTORAX-2E", u"SENTORAX-2F"})
            QTest::addRow("%s", QString::fromUtf16(m).toUtf8().constData())
                << opt(m) << opt(u"1.00") << true;
        QTest::newRow("2B never") << opt(u"SENTORAX-2B") << opt(u"9.99") << false;
        QTest::newRow("2A never") << opt(u"SENTORAX-2A") << opt(u"1.22") << false;
        QTest::newRow("contained in a longer text")
            << opt(u"Μονάδα SENTORAX-1D rev2") << opt(u"1.00") << true;
        QTest::newRow("case counts") << opt(u"sentorax-1c") << opt(u"1.22") << false;
        QTest::newRow("1A contained, 1.15") << opt(u"XSENTORAX-1AX") << opt(u"1.15") << true;
        QTest::newRow("missing model") << std::optional<QString>() << opt(u"1.22") << false;
        QTest::newRow("empty model") << opt(u"") << opt(u"1.22") << false;
        QTest::newRow("version without point, 1C") << opt(u"SENTORAX-1C") << opt(u"2") << false;
        QTest::newRow("version without point, 1A") << opt(u"SENTORAX-1A") << opt(u"122") << false;
        QTest::newRow("missing version")
            << opt(u"SENTORAX-2F") << std::optional<QString>() << false;
    }

    void extendedUnit()
    {
        QFETCH(std::optional<QString>, model);
        QFETCH(std::optional<QString>, softver);
        QFETCH(bool, extended);
        QCOMPARE(isExtendedUnit(model, softver), extended);
    }

    void code_data()
    {
        QTest::addColumn<std::optional<QString>>("typed");
        QTest::addColumn<CodeCheck>("check");

        QTest::newRow("cancelled") << std::optional<QString>() << CodeCheck::Cancelled;
        QTest::newRow("empty") << opt(u"") << CodeCheck::Cancelled;
        QTest::newRow("3 digits") << opt(u"123") << CodeCheck::BadLength;
        QTest::newRow("9 digits") << opt(u"123456789") << CodeCheck::BadLength;
        QTest::newRow("4 digits") << opt(u"1234") << CodeCheck::Accepted;
        QTest::newRow("8 digits") << opt(u"12345678") << CodeCheck::Accepted;
        QTest::newRow("leading zeros") << opt(u"0042") << CodeCheck::Accepted;
        QTest::newRow("letter") << opt(u"12a4") << CodeCheck::NotDigits;
        // The characters are looked at before the length.
        QTest::newRow("short with letter") << opt(u"1a") << CodeCheck::NotDigits;
        QTest::newRow("blank") << opt(u" 1234") << CodeCheck::NotDigits;
        QTest::newRow("sign") << opt(u"-1234") << CodeCheck::NotDigits;
        QTest::newRow("point") << opt(u"12.34") << CodeCheck::NotDigits;
        QTest::newRow("arabic-indic digits")
            << opt(u"\u0661\u0662\u0663\u0664") << CodeCheck::NotDigits;
        QTest::newRow("fullwidth digits")
            << opt(u"\uFF11\uFF12\uFF13\uFF14") << CodeCheck::NotDigits;
    }

    void code()
    {
        QFETCH(std::optional<QString>, typed);
        QFETCH(CodeCheck, check);
        QCOMPARE(checkCode(typed), check);
    }

    void codeNotices()
    {
        QCOMPARE(
            codeNotice(CodeCheck::NotDigits),
            (Notice{Icon::Exclamation, u"Ο κωδικός πρέπει να αποτελείται μόνο απο αριθμούς"_s}));
        QCOMPARE(
            codeNotice(CodeCheck::BadLength),
            (Notice{Icon::Exclamation, u"Ο κωδικός πρέπει να έχει μήκος απο 4 εώς 8 νούμερα"_s}));
        QVERIFY(!codeNotice(CodeCheck::Cancelled));
        QVERIFY(!codeNotice(CodeCheck::Accepted));
    }

    void delay_data()
    {
        QTest::addColumn<std::optional<QString>>("typed");
        QTest::addColumn<DelayCheck>("check");

        QTest::newRow("default 1") << opt(u"1") << DelayCheck::Accepted;
        QTest::newRow("0") << opt(u"0") << DelayCheck::Accepted;
        QTest::newRow("24") << opt(u"24") << DelayCheck::Accepted;
        QTest::newRow("024 kept") << opt(u"024") << DelayCheck::Accepted;
        QTest::newRow("25") << opt(u"25") << DelayCheck::OutOfRange;
        QTest::newRow("100") << opt(u"100") << DelayCheck::OutOfRange;
        QTest::newRow("empty") << opt(u"") << DelayCheck::OutOfRange;
        QTest::newRow("cancelled") << std::optional<QString>() << DelayCheck::OutOfRange;
        QTest::newRow("overflowing digits")
            << opt(u"99999999999999999999999") << DelayCheck::OutOfRange;
        QTest::newRow("1.5") << opt(u"1.5") << DelayCheck::NotDigits;
        QTest::newRow("1,5") << opt(u"1,5") << DelayCheck::NotDigits;
        QTest::newRow("-1") << opt(u"-1") << DelayCheck::NotDigits;
        QTest::newRow("blank") << opt(u" 1") << DelayCheck::NotDigits;
        QTest::newRow("letters and too big") << opt(u"99h") << DelayCheck::NotDigits;
    }

    void delay()
    {
        QFETCH(std::optional<QString>, typed);
        QFETCH(DelayCheck, check);
        QCOMPARE(checkDelay(typed), check);
    }

    void delayNotices()
    {
        QCOMPARE(delayNotice(DelayCheck::NotDigits),
                 (Notice{Icon::Exclamation, u"ΛΑΘΟΣ ΕΠΙΛΟΓΗ"_s}));
        QCOMPARE(delayNotice(DelayCheck::OutOfRange),
                 (Notice{Icon::Exclamation, u"Η καθυστέρηση τηλεφωνικής ειδοποίησης πρέπει να "
                                            u"είναι μεταξύ 0 και 24 ΩΡΕΣ"_s}));
        QVERIFY(!delayNotice(DelayCheck::Accepted));
    }

    void reply_data()
    {
        QTest::addColumn<int>("reply");
        QTest::addColumn<bool>("shown");
        QTest::addColumn<int>("icon");
        QTest::addColumn<QString>("text");

        const QString unavailable = u"Η συγκεκριμένη λειτουργία δέν είναι διαθέσιμη στο σύστημα"_s;
        QTest::newRow("0") << 0 << false << 0 << QString();
        QTest::newRow("1 done") << 1 << false << 0 << QString();
        QTest::newRow("2") << 2 << true << int(Icon::Critical) << u"ΛΑΘΟΣ ΚΩΔΙΚΟΣ"_s;
        QTest::newRow("3") << 3 << true << int(Icon::Critical)
                           << u"ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ ΜΗ ΔΙΑΘΕΣΙΜΗ"_s;
        QTest::newRow("4") << 4 << true << int(Icon::Exclamation)
                           << u"ΣΥΣΤΗΜΑ ΣΕ ΔΙΑΔΙΚΑΣΙΑ ΠΡΟΓΡΑΜΜΑΤΙΣΜΟΥ"_s;
        QTest::newRow("5") << 5 << true << int(Icon::Exclamation) << unavailable;
        QTest::newRow("6 as 5") << 6 << true << int(Icon::Exclamation) << unavailable;
        QTest::newRow("7") << 7 << false << 0 << QString();
        QTest::newRow("-1") << -1 << false << 0 << QString();
        QTest::newRow("255") << 255 << false << 0 << QString();
    }

    void reply()
    {
        QFETCH(int, reply);
        QFETCH(bool, shown);
        QFETCH(int, icon);
        QFETCH(QString, text);
        const auto notice = replyNotice(reply);
        QCOMPARE(notice.has_value(), shown);
        if (shown)
            QCOMPARE(*notice, (Notice{Icon(icon), text}));
    }

    void timeoutText()
    {
        const Notice n = timeoutNotice();
        QCOMPARE(n.icon, Icon::Critical);
        QCOMPARE(n.text.split(u"\r\n"_s),
                 (QStringList{u"Η εκτέλεση της εντολής είναι αδύνατη."_s,
                              u"Βεβαιωθείτε ότι η εφαρμογή SENTORAX Server βρίσκεται σε "
                              u"λειτουργία και είναι συνδεδεμένη"_s}));
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

    void attributes_data()
    {
        QTest::addColumn<QString>("built");
        QTest::addColumn<QString>("expected");

        QTest::newRow("extended, automatic")
            << notificationAttributes(u"1234"_s, 2, true, u"7"_s) << u"1234;2"_s;
        QTest::newRow("extended, disabled")
            << notificationAttributes(u"1234"_s, 0, true, {}) << u"1234;0"_s;
        QTest::newRow("other, enabled, delay as typed")
            << notificationAttributes(u"0042"_s, 1, false, u"024"_s) << u"0042;1;024"_s;
        QTest::newRow("other, disabled sends 0 hours")
            << notificationAttributes(u"0042"_s, 0, false, u"5"_s) << u"0042;0;0"_s;
        QTest::newRow("relay shown on")
            << relayAttributes(u"0042"_s, u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s) << u"0042;0"_s;
        QTest::newRow("relay shown off")
            << relayAttributes(u"0042"_s, u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s) << u"0042;1"_s;
        QTest::newRow("relay caption empty") << relayAttributes(u"1234"_s, {}) << u"1234;1"_s;
        QTest::newRow("relay caption feminine")
            << relayAttributes(u"1234"_s, u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s) << u"1234;1"_s;
        QTest::newRow("bypass") << bypassAttributes(u"12345678"_s, 17, 1) << u"12345678;17;1"_s;
        QTest::newRow("back in service") << bypassAttributes(u"1234"_s, 3, 0) << u"1234;3;0"_s;
    }

    void attributes()
    {
        QFETCH(QString, built);
        QFETCH(QString, expected);
        QCOMPARE(built, expected);
    }

    void choices()
    {
        const QList<Choice> three = notificationChoices(true);
        QCOMPARE(choiceTexts(three),
                 (QStringList{u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s, u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s, u"ΑΥΤΟΜΑΤΗ"_s}));
        QCOMPARE(three.at(2).value, 2);
        const QList<Choice> two = notificationChoices(false);
        QCOMPARE(choiceTexts(two), (QStringList{u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s, u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s}));
        QCOMPARE(two.at(0).value, 0);
        QCOMPARE(two.at(1).value, 1);
        const QList<Choice> bypass = bypassStateChoices();
        QCOMPARE(choiceTexts(bypass), (QStringList{u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΟ"_s, u"ΠΑΡΑΚΑΜΨΗ"_s}));
        QCOMPARE(bypass.at(0).value, 0);
        QCOMPARE(bypass.at(1).value, 1);
    }

    void pointLabels_data()
    {
        QTest::addColumn<qint64>("number");
        QTest::addColumn<std::optional<QString>>("name");
        QTest::addColumn<QString>("text");

        QTest::newRow("named") << qint64(3) << opt(u"Ψυγείο") << u"[3] Ψυγείο"_s;
        QTest::newRow("empty name") << qint64(4) << opt(u"") << u"[4] Ανώνυμη ζώνη"_s;
        QTest::newRow("missing name")
            << qint64(20) << std::optional<QString>() << u"[20] Ανώνυμη ζώνη"_s;
        QTest::newRow("blank name kept") << qint64(1) << opt(u" ") << u"[1]  "_s;
    }

    void pointLabels()
    {
        QFETCH(qint64, number);
        QFETCH(std::optional<QString>, name);
        QFETCH(QString, text);
        QCOMPARE(pointChoiceText(number, name), text);
    }
};

QTEST_APPLESS_MAIN(TestCommandRules)
#include "tst_commandrules.moc"
