// The shared dialogs as the user meets them: the code prompt, the selection
// dialog and the message boxes of the real dialog service.
#include "model/settings/SettingsStore.h"
#include "ui/PasswordDialog.h"
#include "ui/SelectionDialog.h"
#include "ui/WidgetDialogService.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>
#include <QStyle>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;
using namespace sx;

namespace {

// Plays the user's part in the next modal dialog once it is up.
void whenModal(std::function<void(QWidget*)> act)
{
    QTimer::singleShot(0, qApp, [act = std::move(act)] {
        QWidget* w = QApplication::activeModalWidget();
        QVERIFY(w);
        act(w);
    });
}

QPushButton* buttonCaptioned(QWidget* w, const QString& caption)
{
    for (QPushButton* b : w->findChildren<QPushButton*>()) {
        if (b->text() == caption)
            return b;
    }
    return nullptr;
}

} // namespace

Q_DECLARE_METATYPE(sx::DialogService::Buttons)
Q_DECLARE_METATYPE(sx::DialogService::Answer)

class TestFrameDialogs : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void codePrompt_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("action");
        QTest::addColumn<std::optional<QString>>("expected");
        QTest::newRow("OK, blanks kept")
            << u" 12 "_s << u"OK"_s << std::optional<QString>(u" 12 "_s);
        QTest::newRow("Enter") << u"77"_s << u"enter"_s << std::optional<QString>(u"77"_s);
        QTest::newRow("Άκυρο") << u"0815"_s << u"Άκυρο"_s << std::optional<QString>();
        QTest::newRow("Escape") << u"0815"_s << u"escape"_s << std::optional<QString>();
    }
    void codePrompt()
    {
        QFETCH(QString, typed);
        QFETCH(QString, action);
        QString seen; // title, question and the character that hides the code
        whenModal([&](QWidget* w) {
            auto* field = w->findChild<QLineEdit*>(u"txtPassword"_s);
            seen = w->windowTitle() + w->findChild<QLabel*>(u"Label1"_s)->text() +
                   QChar(field->style()->styleHint(QStyle::SH_LineEdit_PasswordCharacter, nullptr,
                                                   field));
            QTest::keyClicks(field, typed);
            if (action == u"escape")
                QTest::keyClick(field, Qt::Key_Escape);
            else if (action == u"enter")
                QTest::keyClick(field, Qt::Key_Return);
            else
                buttonCaptioned(w, action)->click();
        });
        QTEST(PasswordDialog::ask(nullptr, u"Τίτλος"_s, u"Ερώτηση"_s), "expected");
        QCOMPARE(seen, u"ΤίτλοςΕρώτηση*"_s);
    }

    void selection_data()
    {
        QTest::addColumn<QStringList>("second"); // empty: one list only
        QTest::addColumn<int>("pickFirst");
        QTest::addColumn<int>("pickSecond"); // -1: left as it is
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("result"); // the two indexes; empty: cancelled
        const QStringList hours{u"0"_s, u"1"_s, u"2"_s};
        QTest::newRow("one list") << QStringList{} << 2 << -1 << u"OK"_s << u"2 -1"_s;
        QTest::newRow("two lists") << hours << 1 << 2 << u"OK"_s << u"1 2"_s;
        QTest::newRow("cancelled") << hours << 1 << 2 << u"Άκυρο"_s << QString();
    }
    void selection()
    {
        QFETCH(QStringList, second);
        QFETCH(int, pickFirst);
        QFETCH(int, pickSecond);
        QFETCH(QString, button);
        const QStringList first{u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s, u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s, u"ΑΥΤΟΜΑΤΗ"_s};
        QString seen; // caption, label, and whether the second list shows
        whenModal([&](QWidget* w) {
            auto* one = w->findChild<QComboBox*>(u"Selcombo"_s);
            auto* two = w->findChild<QComboBox*>(u"Selcombo2"_s);
            seen = w->windowTitle() + w->findChild<QLabel*>(u"Label1"_s)->text() +
                   (two->isVisible() ? u" 2"_s : u""_s) +
                   (one->isEditable() ? u" editable"_s : u""_s);
            one->setCurrentIndex(pickFirst);
            if (pickSecond >= 0)
                two->setCurrentIndex(pickSecond);
            buttonCaptioned(w, button)->click();
        });
        const auto answer =
            SelectionDialog::ask(nullptr, u"Τηλεφωνική ειδοποίηση"_s, u"Επιλέξτε"_s, first, second);
        QCOMPARE(seen, u"Τηλεφωνική ειδοποίησηΕπιλέξτε"_s + (second.isEmpty() ? u""_s : u" 2"_s));
        QTEST(answer ? u"%1 %2"_s.arg(answer->first).arg(answer->second) : QString(), "result");
    }

    void messageBox_data()
    {
        QTest::addColumn<DialogService::Buttons>("buttons");
        QTest::addColumn<QStringList>("captions");
        QTest::addColumn<QString>("press"); // a caption, or "escape"
        QTest::addColumn<DialogService::Answer>("expected");
        using B = DialogService::Buttons;
        using A = DialogService::Answer;
        QTest::newRow("OK") << B::Ok << QStringList{u"OK"_s} << u"OK"_s << A::Ok;
        QTest::newRow("OK by Escape") << B::Ok << QStringList{u"OK"_s} << u"escape"_s << A::Ok;
        QTest::newRow("Άκυρο") << B::OkCancel << QStringList{u"OK"_s, u"Άκυρο"_s} << u"Άκυρο"_s
                               << A::Cancel;
        QTest::newRow("Escape is Άκυρο")
            << B::OkCancel << QStringList{u"OK"_s, u"Άκυρο"_s} << u"escape"_s << A::Cancel;
        QTest::newRow("Ναι") << B::YesNo << QStringList{u"Ναι"_s, u"Όχι"_s} << u"Ναι"_s << A::Yes;
        QTest::newRow("Escape is Όχι")
            << B::YesNo << QStringList{u"Ναι"_s, u"Όχι"_s} << u"escape"_s << A::No;
    }
    void messageBox()
    {
        QFETCH(DialogService::Buttons, buttons);
        QFETCH(QStringList, captions);
        QFETCH(QString, press);
        WidgetDialogService service;
        QStringList shown; // title, text, icon, the default button, then every button
        whenModal([&](QWidget* w) {
            auto* box = qobject_cast<QMessageBox*>(w);
            QVERIFY(box);
            shown << box->windowTitle() << box->text() << QString::number(box->icon())
                  << box->defaultButton()->text();
            for (QAbstractButton* b : box->buttons())
                shown << b->text();
            if (press == u"escape")
                QTest::keyClick(box, Qt::Key_Escape);
            else
                buttonCaptioned(box, press)->click();
        });
        QTEST(service.message(nullptr, DialogService::Icon::Critical, u"SENTORAX Monitor"_s,
                              u"Α\r\nΒ <b>"_s, buttons),
              "expected");
        const QString byDefault = captions.first();
        std::sort(shown.begin() + 4, shown.end());
        captions.sort();
        QCOMPARE(shown, QStringList({u"SENTORAX Monitor"_s, u"Α\nΒ <b>"_s,
                                     QString::number(QMessageBox::Critical), byDefault}) +
                            captions);
    }

    void settingsDialogOfTheServiceSavesToItsStore()
    {
        QTemporaryDir dir;
        SettingsStore store(dir.filePath(u"s.ini"_s));
        WidgetDialogService service(&store);
        whenModal([](QWidget* w) {
            QCOMPARE(w->objectName(), u"GeneralSettingsFrm"_s);
            w->findChild<QAbstractButton*>(u"Option1_3"_s)->click();
            w->findChild<QLineEdit*>(u"AppSetting_0"_s)->setText(u"sentorax"_s);
            w->findChild<QLineEdit*>(u"AppSetting_3"_s)->setText(u"9"_s);
            w->findChild<QLineEdit*>(u"AppSetting_4"_s)->setText(u"9"_s);
            w->findChild<QAbstractButton*>(u"cmdOK"_s)->click();
        });
        QVERIFY(service.settingsDialog(nullptr));
        QCOMPARE(QStringList({store.app(u"DBType"_s), store.protectionCode()}),
                 QStringList({u"3"_s, u"9"_s}));

        whenModal([](QWidget* w) { w->close(); });
        QVERIFY(!service.settingsDialog(nullptr));
    }
};

QTEST_MAIN(TestFrameDialogs)
#include "tst_framedialogs.moc"
