// The two items of the "Διάφορα" menu: the version box and the protected
// settings change; the application's icon.
#include "GuiFixture.h"
#include "app/AppActions.h"
#include "app/AppIcon.h"

#include <QStandardPaths>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;
using test::GuiFixture;

namespace {
const QString kChangeTitle = u"SENTORAX Monitor / Αλλαγή παραμέτρων εφαρμογής"_s;
}

class TestAppActions : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void versionText()
    {
        // Major "." minor, then the revision (the last part) with no separator.
        for (const auto& [version, expected] : {std::pair{u"1.1.5.9"_s, u"V1.19"_s},
                                                {u"1.0.0"_s, u"V1.00"_s},
                                                {u"2.10.13"_s, u"V2.1013"_s},
                                                {u"01.02.03"_s, u"V1.23"_s},
                                                {u"3"_s, u"V3.00"_s},
                                                {u""_s, u"V0.00"_s}})
            QCOMPARE(softwareVersionText(version), expected);
    }

    void iconIsCompiledInAtEverySize()
    {
        // The pictures are resources of a static library: lost unless linked in.
        const QIcon icon = appIcon();
        for (const int size : {16, 22, 24, 32, 48, 64, 128, 256})
            QCOMPARE(icon.pixmap(QSize(size, size)).size(), QSize(size, size));
    }

    void softInfoBox()
    {
        GuiFixture f;
        showSoftInfo(f.ctx, nullptr);
        const auto shown = f.dialogs.messages();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown[0].icon, DialogService::Icon::Information);
        QCOMPARE(shown[0].buttons, DialogService::Buttons::Ok);
        QCOMPARE(shown[0].title, u"Πληροφορίες εφαρμογής"_s);
        QCOMPARE(shown[0].text, u"Έκδοση Λογισμικού:\r\nSENTORAX Monitor "_s +
                                    softwareVersionText(QStringLiteral(SX_VERSION)));
    }

    void changeSettings_data()
    {
        QTest::addColumn<QString>("stored");               // SP1
        QTest::addColumn<std::optional<QString>>("typed"); // nothing: cancelled
        QTest::addColumn<bool>("dialogAccepts");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<QString>("initAfter");
        QTest::addColumn<int>("terminated");

        QTest::newRow("prompt cancelled") << u"1234"_s << std::optional<QString>() << false
                                          << QStringList{u"code"_s} << u"0"_s << 0;
        QTest::newRow("empty code") << u"1234"_s << std::optional<QString>(u""_s) << false
                                    << QStringList{u"code"_s} << u"0"_s << 0;
        QTest::newRow("wrong code") << u"1234"_s << std::optional<QString>(u"4321"_s) << false
                                    << QStringList{u"code"_s, u"wrong"_s} << u"0"_s << 0;
        QTest::newRow("case differs") << u"abc"_s << std::optional<QString>(u"ABC"_s) << false
                                      << QStringList{u"code"_s, u"wrong"_s} << u"0"_s << 0;
        QTest::newRow("trailing blank differs")
            << u"1234"_s << std::optional<QString>(u"1234 "_s) << false
            << QStringList{u"code"_s, u"wrong"_s} << u"0"_s << 0;
        QTest::newRow("no code stored yet") << u""_s << std::optional<QString>(u"x"_s) << false
                                            << QStringList{u"code"_s, u"wrong"_s} << u"0"_s << 0;
        QTest::newRow("right code, dialog cancelled")
            << u"1234"_s << std::optional<QString>(u"1234"_s) << false
            << QStringList{u"code"_s, u"settings"_s} << u"0"_s << 0;
        QTest::newRow("right code, settings saved")
            << u"κ 1"_s << std::optional<QString>(u"κ 1"_s) << true
            << QStringList{u"code"_s, u"settings"_s, u"changed"_s} << u"1"_s << 1;
    }
    void changeSettings()
    {
        QFETCH(QString, stored);
        QFETCH(std::optional<QString>, typed);
        QFETCH(bool, dialogAccepts);
        QFETCH(QStringList, expected);
        QFETCH(QString, initAfter);
        QFETCH(int, terminated);

        GuiFixture f;
        f.settings->setProtectionCode(stored);
        f.settings->setApp(u"Init"_s, u"0"_s);
        f.dialogs.answerCode(typed);
        bool dialogShown = false;
        if (expected.contains(u"settings"_s)) {
            f.dialogs.answerSettings([&] {
                dialogShown = true;
                return dialogAccepts;
            });
        }
        changeAppSettings(f.ctx, nullptr);

        QStringList seen;
        for (const auto& s : f.dialogs.shown()) {
            if (s.kind == u"code" && s.title == kChangeTitle &&
                s.text == u"Παρακαλώ εισάγετε τον κωδικό προστασίας παραμέτρων")
                seen << u"code"_s;
            else if (s.kind == u"settings")
                seen << u"settings"_s;
            else if (s.kind == u"message" && s.icon == DialogService::Icon::Critical &&
                     s.buttons == DialogService::Buttons::Ok && s.title == kChangeTitle &&
                     s.text == u"Λάθος κωδικός !")
                seen << u"wrong"_s;
            else if (s.kind == u"message" && s.icon == DialogService::Icon::Information &&
                     s.buttons == DialogService::Buttons::Ok && s.title == kChangeTitle &&
                     s.text ==
                         u"Πατήστε 'ΟΚ' για να τερματίσετε την εφαρμογή.\r\nΟι αλλαγές θα ισχύσουν "
                         u"απο την επόμενη φορά που θα εκτελεστεί η εφαρμογή SENTORAX Monitor")
                seen << u"changed"_s;
            else
                seen << u"?"_s;
        }
        QCOMPARE(seen, expected);
        QCOMPARE(dialogShown, expected.contains(u"settings"_s));
        QCOMPARE(f.settings->app(u"Init"_s), initAfter);
        QCOMPARE(f.terminated, terminated);
        QVERIFY(!f.dialogs.anyUnexpected());
    }
};

QTEST_MAIN(TestAppActions)
#include "tst_appactions.moc"
