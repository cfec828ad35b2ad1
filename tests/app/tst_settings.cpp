// The settings: the checks of OK with their messages, and the dialog against
// a real settings file. Then the other shared dialogs as the user meets them: the
// code prompt, the selection dialog and the message boxes of the real dialog service.
#include "ScriptedDialogs.h"
#include "UserTexts.h"
#include "model/settings/SettingsStore.h"
#include "model/settings/SettingsValidation.h"
#include "ui/AppActions.h"
#include "ui/AppContext.h"
#include "ui/PasswordDialog.h"
#include "ui/SelectionDialog.h"
#include "ui/SettingsDialog.h"
#include "ui/WidgetDialogService.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QStandardPaths>
#include <QStyle>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <tuple>

using namespace Qt::StringLiterals;
using namespace sx;
using test::ScriptedDialogs;
using namespace sx::test::texts;

namespace {

// A settings file of its own and scripted answers, per test.
struct Bench {
    QTemporaryDir dir;
    SettingsStore store{dir.filePath(u"settings.ini"_s)};
    ScriptedDialogs dialogs;
    QString path() const { return dir.filePath(u"settings.ini"_s); }
};

// Every value the settings change writes; "-" for an absent one.
QStringList values(const SettingsStore& s)
{
    QStringList v{s.value(u"SPS"_s, u"SP1"_s, u"-"_s)};
    for (const QString& key : {u"Init"_s, u"DBType"_s, u"DBFile"_s, u"DBDataSource"_s,
                               u"DBServerIP"_s, u"DBServerPORT"_s, u"Notifications"_s})
        v << s.app(key, u"-"_s);
    return v;
}

// What a settings file holds on disk. Stores on one path share their values in
// memory, so the file is read under a name no store has used yet.
QStringList valuesOnDisk(const QString& file, const QTemporaryDir& dir)
{
    static int reads = 0;
    const QString copy = dir.filePath(u"read-%1.ini"_s.arg(++reads));
    if (!QFile::copy(file, copy))
        return {u"unreadable"_s};
    return values(SettingsStore(copy));
}

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

Q_DECLARE_METATYPE(sx::SettingsForm)
Q_DECLARE_METATYPE(sx::DialogService::Buttons)
Q_DECLARE_METATYPE(sx::DialogService::Answer)

class TestSettings : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void checks_data()
    {
        QTest::addColumn<SettingsForm>("form");
        QTest::addColumn<QString>("message"); // empty: accepted
        const auto row = [](const char* name, const SettingsForm& form, const QString& message) {
            QTest::newRow(name) << form << message;
        };
        const QString f = u"/data/sxdb.mdb"_s;
        const QString c = u"1234"_s;
        const QString ip = u"10.0.0.5"_s;
        using K = DbKind;
        row("Oracle complete", {K::Oracle, {}, u"SX"_s, ip, u"1521"_s, c, c}, {});
        row("Oracle without data source", {K::Oracle, f, {}, ip, u"1521"_s, c, c}, kNoDataSource);
        row("data source before codes", {K::Oracle, f, {}, {}, {}, {}, {}}, kNoDataSource);
        row("Oracle by name, port abc", {K::Oracle, {}, u"SX"_s, {}, u"abc"_s, c, c}, {});
        row("Oracle with IP, no port", {K::Oracle, {}, u"SX"_s, ip, {}, c, c}, kNoPort);
        row("IP of blanks still asks for a port", {K::Oracle, {}, u"SX"_s, u" "_s, {}, c, c},
            kNoPort);
        row("port with a trailing blank", {K::Oracle, {}, u"SX"_s, ip, u"1521 "_s, c, c},
            kPortNotNumber);
        row("port negative", {K::Oracle, {}, u"SX"_s, ip, u"-1"_s, c, c}, kPortNotNumber);
        row("port in Arabic-Indic digits", {K::Oracle, {}, u"SX"_s, ip, u"١٥٢١"_s, c, c},
            kPortNotNumber);
        row("port before codes", {K::Oracle, {}, u"SX"_s, u"h"_s, u"x"_s, {}, u"1"_s},
            kPortNotNumber);
        row("PostgreSQL without database name", {K::PostgreSQL, {}, {}, {}, {}, c, c},
            kNoDataSource);
        row("PostgreSQL here, default port", {K::PostgreSQL, {}, u"sx"_s, {}, {}, c, c}, {});
        // Here the port is used even without an IP, so it must be a number.
        row("PostgreSQL here, port abc", {K::PostgreSQL, {}, u"sx"_s, {}, u"abc"_s, c, c},
            kPortNotNumber);
        const QString pair = u"10.0.0.5,10.0.0.6"_s;
        row("pair, one port", {K::PostgreSQL, {}, u"sx"_s, pair, u"5432"_s, c, c}, {});
        row("pair, two ports", {K::PostgreSQL, {}, u"sx"_s, pair, u"5432,5433"_s, c, c}, {});
        row("pair, three ports", {K::PostgreSQL, {}, u"sx"_s, pair, u"1,2,3"_s, c, c}, kPortList);
        row("pair, a port of letters", {K::PostgreSQL, {}, u"sx"_s, pair, u"1,x"_s, c, c},
            kPortList);
        row("pair, one port of letters", {K::PostgreSQL, {}, u"sx"_s, pair, u"x"_s, c, c},
            kPortNotNumber);
        row("Oracle keeps its own check", {K::Oracle, {}, u"SX"_s, ip, u"1,2"_s, c, c},
            kPortNotNumber);
        row("Access without file, server fields filled",
            {K::Access, {}, u"SX"_s, ip, u"1521"_s, c, c}, kNoFile);
        row("Access ignores a bad port", {K::Access, f, {}, ip, u"abc"_s, c, c}, {});
        row("SQLite complete", {K::SQLite, u"/data/sxdb.db"_s, {}, {}, {}, c, c}, {});
        row("file before codes", {K::SQLite, {}, {}, {}, {}, {}, {}}, kNoFile);
        row("both codes empty", {K::Access, f, {}, {}, {}, {}, {}}, kNoCodes);
        row("code without confirmation", {K::Access, f, {}, {}, {}, c, {}}, kCodesDiffer);
        row("codes differ by a trailing blank", {K::Access, f, {}, {}, {}, c, c + u' '},
            kCodesDiffer);
        row("codes differ in case", {K::Access, f, {}, {}, {}, u"abc"_s, u"ABC"_s}, kCodesDiffer);
        row("code of one blank", {K::Access, f, {}, {}, {}, u" "_s, u" "_s}, {});
    }
    void checks()
    {
        QFETCH(SettingsForm, form);
        QFETCH(QString, message);
        QCOMPARE(settingsProblem(form).value_or(QString()), message);
    }

    // Opens on the stored values, is switched to the other group of controls by a click and
    // saves every field exactly as typed.
    void dialogRoundTrip_data()
    {
        QTest::addColumn<QString>("dbType");
        QTest::addColumn<QString>("checked");
        QTest::addColumn<QString>("notifications"); // stored; null: absent (on)
        QTest::addColumn<QString>("click");
        QTest::addColumn<QString>("saved");
        QTest::newRow("0 Access, to Oracle")
            << u"0"_s << u"Option1_0"_s << QString() << u"Option1_1"_s << u"1"_s;
        QTest::newRow("3 PostgreSQL, to SQLite")
            << u"3"_s << u"Option1_3"_s << QString() << u"Option1_2"_s << u"2"_s;
        QTest::newRow("5 means Oracle")
            << u"5"_s << u"Option1_1"_s << u"0"_s << u"Option1_2"_s << u"2"_s;
    }
    void dialogRoundTrip()
    {
        QFETCH(QString, dbType);
        QFETCH(QString, checked);
        QFETCH(QString, notifications);
        QFETCH(QString, click);
        Bench b;
        const QString file = u" /srv/sx/sxdb.db "_s;
        for (const auto& [key, value] : {std::pair{u"DBType"_s, dbType},
                                         {u"DBFile"_s, file},
                                         {u"DBDataSource"_s, u"SXDB"_s},
                                         {u"DBServerIP"_s, u"10.1.2.3"_s},
                                         {u"DBServerPORT"_s, u"1521"_s}})
            b.store.setApp(key, value);
        if (!notifications.isNull())
            b.store.setApp(u"Notifications"_s, notifications);
        b.store.setProtectionCode(u"77 "_s);
        QVERIFY(b.store.sync());

        SettingsDialog d(b.store, b.dialogs);
        d.show();
        QCOMPARE(d.windowTitle(), u"SENTORAX Monitor / Παράμετροι εφαρμογής"_s);
        QVERIFY(d.findChild<QRadioButton*>(checked)->isChecked());
        QCOMPARE(d.filePath(), file);
        QCOMPARE(d.findChild<QLabel*>(u"Label2"_s)->toolTip(), file);
        const QStringList texts{u"SXDB"_s, u"10.1.2.3"_s, u"1521"_s, u"77 "_s, u"77 "_s};
        for (int i = 0; i < 5; ++i)
            QCOMPARE(d.findChild<QLineEdit*>(u"AppSetting_%1"_s.arg(i))->text(), texts[i]);
        QCOMPARE(d.findChild<QLineEdit*>(u"AppSetting_4"_s)->echoMode(), QLineEdit::Password);
        // The file controls, then the server controls; the code serves both.
        const auto enabled = [&d] {
            QString on;
            for (const QString& name :
                 {u"Label1_6"_s, u"Label2"_s, u"Command1"_s, u"Label1_0"_s, u"Label1_1"_s,
                  u"Label1_2"_s, u"Label1_3"_s, u"Label1_4"_s, u"AppSetting_0"_s, u"AppSetting_1"_s,
                  u"AppSetting_2"_s, u"AppSetting_3"_s})
                on += d.findChild<QWidget*>(name)->isEnabled() ? u'1' : u'0';
            return on;
        };
        const QString fileSide = u"111000000001"_s, serverSide = u"000111111111"_s;
        const bool fromFile = checked == u"Option1_0" || checked == u"Option1_2";
        QCOMPARE(enabled(), fromFile ? fileSide : serverSide);
        auto* box = d.findChild<QCheckBox*>(u"Notifications"_s);
        QCOMPARE(box->isChecked(), notifications != u"0");

        auto* radio = d.findChild<QRadioButton*>(click);
        QTest::mouseClick(radio, Qt::LeftButton, {}, QPoint(8, radio->height() / 2));
        QVERIFY(radio->isChecked());
        QCOMPARE(enabled(), fromFile ? serverSide : fileSide);
        // Every field keeps its blanks, also those the chosen kind does not use.
        const QStringList typed{u" Βάση SX "_s, u"10.0.0.9"_s, u"5432"_s, u" Kod 1 "_s,
                                u" Kod 1 "_s};
        for (int i = 0; i < 5; ++i) {
            auto* edit = d.findChild<QLineEdit*>(u"AppSetting_%1"_s.arg(i));
            edit->clear();
            if (i < 3) // QTest types ASCII only
                edit->setText(typed[i]);
            else
                QTest::keyClicks(edit, typed[i]);
        }
        QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
        QTest::mouseClick(d.findChild<QPushButton*>(u"cmdOK"_s), Qt::LeftButton);

        QVERIFY(b.dialogs.shown().isEmpty());
        const SettingsStore reread(b.path());
        QFETCH(QString, saved);
        QCOMPARE(values(reread),
                 (QStringList{u" Kod 1 "_s, u"-"_s, saved, file, u" Βάση SX "_s, u"10.0.0.9"_s,
                              u"5432"_s, notifications == u"0" ? u"1"_s : u"0"_s}));
        QCOMPARE(reread.notificationsOn(), notifications == u"0");
        // Readable and writable by the owner alone.
        QCOMPARE(QFile::permissions(b.path()) & 0x7077, // owner, group, others
                 QFile::Permissions(QFile::ReadOwner | QFile::WriteOwner));
    }

    void refusedOkAndCancelSaveNothing()
    {
        Bench b;
        b.store.setApp(u"DBType"_s, u"0"_s);
        b.store.setApp(u"DBFile"_s, u"/old.mdb"_s);
        b.store.setProtectionCode(u"old"_s);
        QVERIFY(b.store.sync());
        SettingsDialog d(b.store, b.dialogs);
        d.show();
        d.setForm({DbKind::PostgreSQL, d.form().file, u"sentorax"_s, {}, {}, u"new"_s, u"new "_s});
        QTest::mouseClick(d.findChild<QPushButton*>(u"cmdOK"_s), Qt::LeftButton);

        // Refused: a message, the input kept for the user to correct.
        QVERIFY(d.isVisible());
        QCOMPARE(b.dialogs.messages().size(), 1);
        const auto shown = b.dialogs.messages().first();
        QCOMPARE(std::tuple(shown.icon, shown.title, shown.text),
                 std::tuple(DialogService::Icon::Exclamation, kApp, kCodesDiffer));
        QCOMPARE(d.findChild<QLineEdit*>(u"AppSetting_4"_s)->text(), u"new "_s);

        QTest::mouseClick(d.findChild<QPushButton*>(u"cmdCancel"_s), Qt::LeftButton);
        QCOMPARE(d.result(), int(QDialog::Rejected));
        QCOMPARE(
            values(SettingsStore(b.path())),
            (QStringList{u"old"_s, u"-"_s, u"0"_s, u"/old.mdb"_s, u"-"_s, u"-"_s, u"-"_s, u"-"_s}));
    }

    // Root writes through any permission, so the place of the file is broken
    // instead: its folder turned into a file.
    void unwritableSaveKeepsTheOldSettings_data()
    {
        QTest::addColumn<bool>("broken");
        QTest::addColumn<bool>("repaired"); // made writable again, then OK once more
        QTest::newRow("writable: saved, the console ends") << false << false;
        QTest::newRow("folder is a file") << true << false;
        // QSettings keeps its first error; the second OK must not inherit it.
        QTest::newRow("folder is a file, repaired, OK again") << true << true;
    }
    void unwritableSaveKeepsTheOldSettings()
    {
        QFETCH(bool, broken);
        QFETCH(bool, repaired);
        QTemporaryDir dir;
        const QString folder = dir.filePath(u"cfg"_s);
        const QString path = folder + u"/settings.ini"_s;
        const QString aside = dir.filePath(u"aside"_s);
        SettingsStore store(path);
        QVERIFY(writeSettingsForm(
            store, {DbKind::Access, u"/old.mdb"_s, u"OLD"_s, {}, {}, u"old"_s, u"old"_s, true}));
        store.setApp(u"Init"_s, u"0"_s); // set once the change is saved
        QVERIFY(store.sync());
        const QStringList oldValues = values(store);
        const QStringList newValues{u"new"_s, u"1"_s,        u"3"_s,    u"/old.mdb"_s,
                                    u"sx"_s,  u"10.0.0.9"_s, u"5432"_s, u"0"_s};
        // The folder moved aside, a file in its place.
        if (broken)
            QVERIFY(QFile::rename(folder, aside) && QFile(folder).open(QIODevice::WriteOnly));

        ScriptedDialogs dialogs;
        dialogs.answerCode(u"old"_s);
        bool stayedOpen = false;
        bool back = true; // the folder, once repaired
        dialogs.answerSettings([&] {
            SettingsDialog d(store, dialogs);
            d.show();
            d.setForm({DbKind::PostgreSQL, d.form().file, u"sx"_s, u"10.0.0.9"_s, u"5432"_s,
                       u"new"_s, u"new"_s, false});
            QTest::mouseClick(d.findChild<QPushButton*>(u"cmdOK"_s), Qt::LeftButton);
            if (repaired) {
                back = QFile::remove(folder) && QFile::rename(aside, folder);
                QTest::mouseClick(d.findChild<QPushButton*>(u"cmdOK"_s), Qt::LeftButton);
            }
            stayedOpen = d.isVisible() && d.form().code == u"new";
            return d.result() == QDialog::Accepted;
        });
        bool ended = false;
        AppContext ctx;
        ctx.dialogs = &dialogs;
        ctx.settings = &store;
        ctx.terminate = [&ended] { ended = true; };
        changeAppSettings(ctx, nullptr);
        QVERIFY(back);

        const bool saved = !broken || repaired;
        QStringList texts; // each box as icon|title|text
        if (broken)
            texts << u"%1|%2|"_s.arg(int(DialogService::Icon::Critical)).arg(kApp) +
                         u"Οι παράμετροι της εφαρμογής δεν αποθηκεύτηκαν.\r\n"
                         u"Δεν είναι δυνατή η εγγραφή στο αρχείο παραμέτρων:\r\n"_s +
                         path + u"\r\nΙσχύουν οι προηγούμενες παράμετροι."_s;
        if (saved)
            texts << u"%1|%2|"_s.arg(int(DialogService::Icon::Information)).arg(kChangeTitle) +
                         kChanged;
        QStringList shown;
        for (const auto& m : dialogs.messages())
            shown << u"%1|%2|"_s.arg(int(m.icon)).arg(m.title) + m.text;
        QCOMPARE(shown, texts);
        QVERIFY(!dialogs.anyUnexpected());
        QCOMPARE(QList<bool>({ended, stayedOpen}), QList<bool>({saved, !saved}));
        // Neither this store nor the file holds a value the user was told is not saved.
        QCOMPARE(values(store), saved ? newValues : oldValues);
        QCOMPARE(values(SettingsStore(path)), saved ? newValues : oldValues);
        QCOMPARE(valuesOnDisk(saved ? path : aside + u"/settings.ini"_s, dir),
                 saved ? newValues : oldValues);
    }

    void browse_data()
    {
        QTest::addColumn<QString>("option");
        QTest::addColumn<QString>("serverFile"); // beside the program; empty: none
        QTest::addColumn<QString>("answer");     // empty: cancelled
        QTest::addColumn<QString>("filter");
        QTest::addColumn<bool>("proposed");
        QTest::addColumn<QString>("pathAfter");
        const QString access = u"Access Database Files (*.mdb)"_s;
        const QString sqlite = u"SQLite Database Files (*.db *.sqlite)"_s;
        QTest::newRow("Access, server file present")
            << u"Option1_0"_s << u"sxdb.mdb"_s << u"/x/a.mdb"_s << access << true << u"/x/a.mdb"_s;
        QTest::newRow("Access, the SQLite file is not proposed")
            << u"Option1_0"_s << u"sxdb.db"_s << u"/x/a.mdb"_s << access << false << u"/x/a.mdb"_s;
        QTest::newRow("SQLite, only the Access file")
            << u"Option1_2"_s << u"sxdb.mdb"_s << u"/x/b.db"_s << sqlite << false << u"/x/b.db"_s;
        QTest::newRow("cancel keeps the path")
            << u"Option1_2"_s << u"sxdb.db"_s << u""_s << sqlite << true << u"/before.db"_s;
    }
    void browse()
    {
        QFETCH(QString, option);
        QFETCH(QString, serverFile);
        QFETCH(bool, proposed);
        QFETCH(QString, pathAfter);
        Bench b;
        b.store.setApp(u"DBFile"_s, u"/before.db"_s);
        const QString console = b.dir.filePath(u"console"_s);
        const QString server = b.dir.filePath(u"SENTORAX SERVER LX-RV/"_s);
        QVERIFY(QDir().mkpath(console) && QDir().mkpath(server) &&
                QFile(server + serverFile).open(QIODevice::WriteOnly));
        QFETCH(QString, answer);
        b.dialogs.answerFile(answer);

        SettingsDialog d(b.store, b.dialogs);
        d.setApplicationFolder(console);
        d.show();
        d.findChild<QRadioButton*>(option)->click();
        QTest::mouseClick(d.findChild<QPushButton*>(u"Command1"_s), Qt::LeftButton);

        QCOMPARE(b.dialogs.shown().size(), 1);
        QTEST(b.dialogs.shown().first().text, "filter");
        QCOMPARE(b.dialogs.shown().first().items.value(0),
                 proposed ? console + u"/../SENTORAX SERVER LX-RV/"_s + serverFile : QString());
        QCOMPARE(d.filePath(), pathAfter);
        QCOMPARE(d.findChild<QLabel*>(u"Label2"_s)->toolTip(), pathAfter);
    }

    void nothingIsClippedAt96Dpi()
    {
        Bench b;
        SettingsDialog d(b.store, b.dialogs);
        d.show();
        QCOMPARE(d.logicalDpiX(), 96);
        const auto widgets = d.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
        for (QWidget* w : widgets) {
            const auto* label = qobject_cast<QLabel*>(w);
            bool fits = d.rect().contains(w->geometry());
            if (label && label->wordWrap())
                fits &= label->heightForWidth(label->width()) <= label->height();
            else if (label || qobject_cast<QAbstractButton*>(w))
                fits &= w->sizeHint().width() <= w->width() &&
                        w->sizeHint().height() <= w->height() + 2;
            QVERIFY2(fits, qPrintable(w->objectName()));
            for (QWidget* other : widgets) // no two controls overlap
                QVERIFY2(other == w || !w->geometry().intersects(other->geometry()),
                         qPrintable(w->objectName() + u" / "_s + other->objectName()));
        }
    }

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

QTEST_MAIN(TestSettings)
#include "tst_settings.moc"
