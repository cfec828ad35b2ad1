// The settings: the checks of OK with their messages, and the dialog against
// a real settings file.
#include "ScriptedDialogs.h"
#include "app/SettingsDialog.h"
#include "app/SettingsStore.h"
#include "app/SettingsValidation.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace sx;
using test::ScriptedDialogs;

namespace {

const QString kNoDataSource =
    u"Δεν έχετε συμπληρώσει τo πεδίo 'Όνομα βάσης δεδομένων (data source)'"_s;
const QString kNoPort = u"Δεν έχετε συμπληρώσει τo πεδίo 'Port διακομιστή (server Port)'"_s;
const QString kPortNotNumber =
    u"To πεδίo 'Port διακομιστή (server Port)' πρέπει να είναι αριθμός."_s;
const QString kNoFile = u"Δεν έχετε συμπληρώσει τo πεδίo 'Αρχείο βάσης δεδομένων (sxdb.mdb)'"_s;
const QString kNoCodes =
    u"Δεν έχετε συμπληρώσει τα πεδία 'Κωδικός προστασίας παραμέτρων' και 'Επιβεβαίωση κωδικού'"_s;
const QString kCodesDiffer =
    u"Tα πεδία 'Κωδικός προστασίας παραμέτρων' και 'Επιβεβαίωση κωδικού' δεν συμφωνούν"_s;

// A settings file of its own and scripted answers, per test.
struct Bench {
    QTemporaryDir dir;
    std::unique_ptr<SettingsStore> store;
    ScriptedDialogs dialogs;
    Bench() : store(std::make_unique<SettingsStore>(dir.filePath(u"settings.ini"_s))) {}
    QString path() const { return dir.filePath(u"settings.ini"_s); }
};

template <typename T> T* child(const QWidget& w, const QString& name)
{
    T* c = w.findChild<T*>(name);
    if (!c)
        qWarning("no %s", qPrintable(name));
    return c;
}

void type(QLineEdit* edit, const QString& text)
{
    edit->clear();
    QTest::keyClicks(edit, text);
}

} // namespace

Q_DECLARE_METATYPE(sx::DbKind)

class TestSettings : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void checks_data()
    {
        QTest::addColumn<DbKind>("kind");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("dataSource");
        QTest::addColumn<QString>("ip");
        QTest::addColumn<QString>("port");
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("confirmation");
        QTest::addColumn<QString>("message"); // empty: accepted

        const QString f = u"/data/sxdb.mdb"_s;
        const QString c = u"1234"_s;
        using K = DbKind;
        QTest::newRow("Oracle complete")
            << K::Oracle << u""_s << u"SX"_s << u"10.0.0.5"_s << u"1521"_s << c << c << u""_s;
        QTest::newRow("Oracle without data source")
            << K::Oracle << f << u""_s << u"10.0.0.5"_s << u"1521"_s << c << c << kNoDataSource;
        QTest::newRow("data source before codes")
            << K::Oracle << f << u""_s << u""_s << u""_s << u""_s << u""_s << kNoDataSource;
        QTest::newRow("Oracle by name, port abc")
            << K::Oracle << u""_s << u"SX"_s << u""_s << u"abc"_s << c << c << u""_s;
        QTest::newRow("Oracle with IP, no port")
            << K::Oracle << u""_s << u"SX"_s << u"10.0.0.5"_s << u""_s << c << c << kNoPort;
        QTest::newRow("port with a blank") << K::Oracle << u""_s << u"SX"_s << u"10.0.0.5"_s
                                           << u"15 21"_s << c << c << kPortNotNumber;
        QTest::newRow("port with a trailing blank")
            << K::Oracle << u""_s << u"SX"_s << u"10.0.0.5"_s << u"1521 "_s << c << c
            << kPortNotNumber;
        QTest::newRow("port with a letter") << K::Oracle << u""_s << u"SX"_s << u"10.0.0.5"_s
                                            << u"152l"_s << c << c << kPortNotNumber;
        QTest::newRow("port negative") << K::Oracle << u""_s << u"SX"_s << u"10.0.0.5"_s << u"-1"_s
                                       << c << c << kPortNotNumber;
        QTest::newRow("port in Arabic-Indic digits")
            << K::Oracle << u""_s << u"SX"_s << u"10.0.0.5"_s << u"١٥٢١"_s << c << c
            << kPortNotNumber;
        QTest::newRow("port before codes") << K::Oracle << u""_s << u"SX"_s << u"h"_s << u"x"_s
                                           << u""_s << u"1"_s << kPortNotNumber;
        QTest::newRow("IP of blanks still asks for a port")
            << K::Oracle << u""_s << u"SX"_s << u" "_s << u""_s << c << c << kNoPort;
        QTest::newRow("PostgreSQL complete") << K::PostgreSQL << u""_s << u"sentorax"_s
                                             << u"10.0.0.5"_s << u"5432"_s << c << c << u""_s;
        QTest::newRow("PostgreSQL without database name")
            << K::PostgreSQL << u""_s << u""_s << u""_s << u""_s << c << c << kNoDataSource;
        QTest::newRow("PostgreSQL here, default port")
            << K::PostgreSQL << u""_s << u"sentorax"_s << u""_s << u""_s << c << c << u""_s;
        QTest::newRow("PostgreSQL with IP, no port") << K::PostgreSQL << u""_s << u"sentorax"_s
                                                     << u"10.0.0.5"_s << u""_s << c << c << kNoPort;
        // Here the port is used even without an IP, so it must be a number.
        QTest::newRow("PostgreSQL here, port abc") << K::PostgreSQL << u""_s << u"sentorax"_s
                                                   << u""_s << u"abc"_s << c << c << kPortNotNumber;
        QTest::newRow("PostgreSQL here, port 5433")
            << K::PostgreSQL << u""_s << u"sentorax"_s << u""_s << u"5433"_s << c << c << u""_s;
        QTest::newRow("Access complete")
            << K::Access << f << u""_s << u""_s << u""_s << c << c << u""_s;
        QTest::newRow("Access without file, Oracle fields filled")
            << K::Access << u""_s << u"SX"_s << u"10.0.0.5"_s << u"1521"_s << c << c << kNoFile;
        QTest::newRow("Access ignores a bad port")
            << K::Access << f << u""_s << u"10.0.0.5"_s << u"abc"_s << c << c << u""_s;
        QTest::newRow("SQLite complete")
            << K::SQLite << u"/data/sxdb.db"_s << u""_s << u""_s << u""_s << c << c << u""_s;
        QTest::newRow("SQLite without file, server fields filled")
            << K::SQLite << u""_s << u"sentorax"_s << u"10.0.0.5"_s << u"5432"_s << c << c
            << kNoFile;
        QTest::newRow("file before codes")
            << K::SQLite << u""_s << u""_s << u""_s << u""_s << u""_s << u""_s << kNoFile;
        QTest::newRow("both codes empty")
            << K::Access << f << u""_s << u""_s << u""_s << u""_s << u""_s << kNoCodes;
        QTest::newRow("code without confirmation")
            << K::Access << f << u""_s << u""_s << u""_s << c << u""_s << kCodesDiffer;
        QTest::newRow("confirmation without code")
            << K::Access << f << u""_s << u""_s << u""_s << u""_s << c << kCodesDiffer;
        QTest::newRow("codes differ by a trailing blank")
            << K::Access << f << u""_s << u""_s << u""_s << c << c + u' ' << kCodesDiffer;
        QTest::newRow("codes differ in case")
            << K::Access << f << u""_s << u""_s << u""_s << u"abc"_s << u"ABC"_s << kCodesDiffer;
        QTest::newRow("code of one blank")
            << K::Access << f << u""_s << u""_s << u""_s << u" "_s << u" "_s << u""_s;
    }
    void checks()
    {
        QFETCH(DbKind, kind);
        QFETCH(QString, file);
        QFETCH(QString, dataSource);
        QFETCH(QString, ip);
        QFETCH(QString, port);
        QFETCH(QString, code);
        QFETCH(QString, confirmation);
        QFETCH(QString, message);
        const SettingsForm form{kind, file, dataSource, ip, port, code, confirmation};
        QCOMPARE(settingsProblem(form).value_or(QString()), message);
    }

    void dialogOpensWithStoredValues_data()
    {
        QTest::addColumn<QString>("dbType");
        QTest::addColumn<QString>("checked");
        QTest::addColumn<bool>("fileControls"); // enabled; the server controls the reverse
        QTest::newRow("0 Access") << u"0"_s << u"Option1_0"_s << true;
        QTest::newRow("1 Oracle") << u"1"_s << u"Option1_1"_s << false;
        QTest::newRow("2 SQLite") << u"2"_s << u"Option1_2"_s << true;
        QTest::newRow("3 PostgreSQL") << u"3"_s << u"Option1_3"_s << false;
        QTest::newRow("5 means Oracle") << u"5"_s << u"Option1_1"_s << false;
    }
    void dialogOpensWithStoredValues()
    {
        QFETCH(QString, dbType);
        QFETCH(QString, checked);
        QFETCH(bool, fileControls);
        Bench b;
        b.store->setApp(u"DBType"_s, dbType);
        b.store->setApp(u"DBFile"_s, u"/srv/sx/sxdb.db"_s);
        b.store->setApp(u"DBDataSource"_s, u"SXDB"_s);
        b.store->setApp(u"DBServerIP"_s, u"10.1.2.3"_s);
        b.store->setApp(u"DBServerPORT"_s, u"1521"_s);
        b.store->setProtectionCode(u"77 "_s);

        SettingsDialog d(*b.store, b.dialogs);
        QCOMPARE(d.windowTitle(), u"SENTORAX Monitor / Παράμετροι εφαρμογής"_s);
        QVERIFY(child<QRadioButton>(d, checked)->isChecked());
        QCOMPARE(d.filePath(), u"/srv/sx/sxdb.db"_s);
        QCOMPARE(child<QLabel>(d, u"Label2"_s)->toolTip(), u"/srv/sx/sxdb.db"_s);
        QCOMPARE(child<QLineEdit>(d, u"AppSetting_0"_s)->text(), u"SXDB"_s);
        QCOMPARE(child<QLineEdit>(d, u"AppSetting_1"_s)->text(), u"10.1.2.3"_s);
        QCOMPARE(child<QLineEdit>(d, u"AppSetting_2"_s)->text(), u"1521"_s);
        QCOMPARE(child<QLineEdit>(d, u"AppSetting_3"_s)->text(), u"77 "_s);
        QCOMPARE(child<QLineEdit>(d, u"AppSetting_4"_s)->text(), u"77 "_s);
        for (const QString& name : {u"Label1_6"_s, u"Label2"_s, u"Command1"_s})
            QCOMPARE(child<QWidget>(d, name)->isEnabled(), fileControls);
        for (const QString& name :
             {u"Label1_0"_s, u"Label1_1"_s, u"Label1_2"_s, u"Label1_3"_s, u"Label1_4"_s,
              u"AppSetting_0"_s, u"AppSetting_1"_s, u"AppSetting_2"_s})
            QCOMPARE(child<QWidget>(d, name)->isEnabled(), !fileControls);
        for (const QString& name : {u"AppSetting_3"_s, u"AppSetting_4"_s, u"Label1_7"_s,
                                    u"Label1_8"_s, u"cmdOK"_s, u"cmdCancel"_s})
            QVERIFY(child<QWidget>(d, name)->isEnabled());
        QVERIFY(b.dialogs.shown().isEmpty());
    }

    void clickingAnOptionSwitchesTheControls()
    {
        Bench b;
        b.store->setApp(u"DBType"_s, u"0"_s);
        SettingsDialog d(*b.store, b.dialogs);
        d.show();
        auto* ip = child<QLineEdit>(d, u"AppSetting_1"_s);
        auto* browse = child<QPushButton>(d, u"Command1"_s);
        const struct {
            const char16_t* option;
            bool file;
        } clicks[] = {{u"Option1_3", false},
                      {u"Option1_2", true},
                      {u"Option1_1", false},
                      {u"Option1_0", true}};
        for (const auto& c : clicks) {
            auto* option = child<QRadioButton>(d, QString::fromUtf16(c.option));
            QTest::mouseClick(option, Qt::LeftButton, {}, QPoint(8, option->height() / 2));
            QVERIFY(option->isChecked());
            QCOMPARE(browse->isEnabled(), c.file);
            QCOMPARE(ip->isEnabled(), !c.file);
        }
    }

    void okSavesExactlyAsTyped_data()
    {
        QTest::addColumn<QString>("option");
        QTest::addColumn<QString>("dbType");
        QTest::newRow("Access") << u"Option1_0"_s << u"0"_s;
        QTest::newRow("Oracle") << u"Option1_1"_s << u"1"_s;
        QTest::newRow("SQLite") << u"Option1_2"_s << u"2"_s;
        QTest::newRow("PostgreSQL") << u"Option1_3"_s << u"3"_s;
    }
    void okSavesExactlyAsTyped()
    {
        QFETCH(QString, option);
        QFETCH(QString, dbType);
        Bench b;
        b.store->setApp(u"DBType"_s, u"1"_s);
        b.store->setApp(u"DBFile"_s, u" /srv/sx/sxdb.mdb "_s);
        b.store->sync();
        SettingsDialog d(*b.store, b.dialogs);
        d.show();
        child<QRadioButton>(d, option)->click();
        // Every field keeps its blanks, also those the chosen kind does not use.
        child<QLineEdit>(d, u"AppSetting_0"_s)->setText(u" Βάση SX "_s);
        child<QLineEdit>(d, u"AppSetting_1"_s)->setText(u"10.0.0.9"_s);
        child<QLineEdit>(d, u"AppSetting_2"_s)->setText(u"5432"_s);
        type(child<QLineEdit>(d, u"AppSetting_3"_s), u" Kod 1 "_s);
        type(child<QLineEdit>(d, u"AppSetting_4"_s), u" Kod 1 "_s);
        QTest::mouseClick(child<QPushButton>(d, u"cmdOK"_s), Qt::LeftButton);

        QCOMPARE(d.result(), int(QDialog::Accepted));
        QVERIFY(b.dialogs.shown().isEmpty());
        // Read back through a fresh store: the values reached the file.
        SettingsStore reread(b.path());
        QCOMPARE(reread.app(u"DBType"_s), dbType);
        QCOMPARE(reread.app(u"DBFile"_s), u" /srv/sx/sxdb.mdb "_s);
        QCOMPARE(reread.app(u"DBDataSource"_s), u" Βάση SX "_s);
        QCOMPARE(reread.app(u"DBServerIP"_s), u"10.0.0.9"_s);
        QCOMPARE(reread.app(u"DBServerPORT"_s), u"5432"_s);
        QCOMPARE(reread.protectionCode(), u" Kod 1 "_s);
        const QFile::Permissions perms = QFile::permissions(b.path());
        QCOMPARE(perms & (QFile::ReadOwner | QFile::WriteOwner),
                 QFile::ReadOwner | QFile::WriteOwner);
        QCOMPARE(perms & (QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup |
                          QFile::ReadOther | QFile::WriteOther | QFile::ExeOther),
                 QFile::Permissions());
    }

    void refusedOkSavesNothingAndStaysOpen()
    {
        Bench b;
        b.store->setApp(u"DBType"_s, u"0"_s);
        b.store->setApp(u"DBFile"_s, u"/old.mdb"_s);
        b.store->setProtectionCode(u"old"_s);
        b.store->sync();
        SettingsDialog d(*b.store, b.dialogs);
        d.show();
        child<QRadioButton>(d, u"Option1_3"_s)->click();
        child<QLineEdit>(d, u"AppSetting_0"_s)->setText(u"sentorax"_s);
        child<QLineEdit>(d, u"AppSetting_3"_s)->setText(u"new"_s);
        child<QLineEdit>(d, u"AppSetting_4"_s)->setText(u"new "_s);
        QTest::mouseClick(child<QPushButton>(d, u"cmdOK"_s), Qt::LeftButton);

        QVERIFY(d.isVisible());
        QCOMPARE(d.result(), int(QDialog::Rejected));
        const auto shown = b.dialogs.messages();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown[0].icon, DialogService::Icon::Exclamation);
        QCOMPARE(shown[0].buttons, DialogService::Buttons::Ok);
        QCOMPARE(shown[0].title, u"SENTORAX Monitor"_s);
        QCOMPARE(shown[0].text, kCodesDiffer);
        SettingsStore reread(b.path());
        QCOMPARE(reread.app(u"DBType"_s), u"0"_s);
        QCOMPARE(reread.protectionCode(), u"old"_s);
        // The input stays for the user to correct.
        QCOMPARE(child<QLineEdit>(d, u"AppSetting_4"_s)->text(), u"new "_s);
    }

    void cancelSavesNothing()
    {
        Bench b;
        b.store->setApp(u"DBType"_s, u"0"_s);
        b.store->setApp(u"DBFile"_s, u"/old.mdb"_s);
        b.store->setProtectionCode(u"old"_s);
        b.store->sync();
        SettingsDialog d(*b.store, b.dialogs);
        d.show();
        child<QRadioButton>(d, u"Option1_1"_s)->click();
        child<QLineEdit>(d, u"AppSetting_0"_s)->setText(u"SX"_s);
        QTest::mouseClick(child<QPushButton>(d, u"cmdCancel"_s), Qt::LeftButton);
        QVERIFY(!d.isVisible());
        QCOMPARE(d.result(), int(QDialog::Rejected));
        SettingsStore reread(b.path());
        QCOMPARE(reread.app(u"DBType"_s), u"0"_s);
        QCOMPARE(reread.app(u"DBDataSource"_s, u"-"_s), u"-"_s);
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
        QTest::newRow("Access, no server file")
            << u"Option1_0"_s << u""_s << u"/x/a.mdb"_s << access << false << u"/x/a.mdb"_s;
        QTest::newRow("Access, the SQLite file is not proposed")
            << u"Option1_0"_s << u"sxdb.db"_s << u"/x/a.mdb"_s << access << false << u"/x/a.mdb"_s;
        QTest::newRow("SQLite, server file present")
            << u"Option1_2"_s << u"sxdb.db"_s << u"/x/b.db"_s << sqlite << true << u"/x/b.db"_s;
        QTest::newRow("SQLite, only the Access file")
            << u"Option1_2"_s << u"sxdb.mdb"_s << u"/x/b.db"_s << sqlite << false << u"/x/b.db"_s;
        QTest::newRow("cancel keeps the path")
            << u"Option1_2"_s << u"sxdb.db"_s << u""_s << sqlite << true << u"/before.db"_s;
    }
    void browse()
    {
        QFETCH(QString, option);
        QFETCH(QString, serverFile);
        QFETCH(QString, answer);
        QFETCH(QString, filter);
        QFETCH(bool, proposed);
        QFETCH(QString, pathAfter);
        Bench b;
        b.store->setApp(u"DBFile"_s, u"/before.db"_s);
        QVERIFY(QDir(b.dir.path()).mkpath(u"console"_s));
        QVERIFY(QDir(b.dir.path()).mkpath(u"SENTORAX SERVER LX-RV"_s));
        const QString expectedProposal =
            b.dir.filePath(u"console"_s) + u"/../SENTORAX SERVER LX-RV/"_s + serverFile;
        if (!serverFile.isEmpty()) {
            QFile f(b.dir.filePath(u"SENTORAX SERVER LX-RV/"_s + serverFile));
            QVERIFY(f.open(QIODevice::WriteOnly));
        }
        b.dialogs.answerFile(answer);

        SettingsDialog d(*b.store, b.dialogs);
        d.setApplicationFolder(b.dir.filePath(u"console"_s));
        d.show();
        child<QRadioButton>(d, option)->click();
        QTest::mouseClick(child<QPushButton>(d, u"Command1"_s), Qt::LeftButton);

        QCOMPARE(b.dialogs.shown().size(), 1);
        const auto& shown = b.dialogs.shown().first();
        QCOMPARE(shown.kind, u"open"_s);
        QCOMPARE(shown.text, filter);
        QCOMPARE(shown.items.value(0), proposed ? expectedProposal : QString());
        QCOMPARE(d.filePath(), pathAfter);
        QCOMPARE(child<QLabel>(d, u"Label2"_s)->toolTip(), pathAfter);
    }

    void captionsAreExact()
    {
        Bench b;
        SettingsDialog d(*b.store, b.dialogs);
        const QString note =
            u"(Αφήστε το πεδίο κενό εάν η βάση δεδομένων βρίσκεται σε αυτόν τον Η/Υ)"_s;
        const QList<QPair<QString, QString>> captions = {
            {u"Label1_5"_s, u"Τύπος βάσης δεδομένων"_s},
            {u"Label1_6"_s, u"Αρχείο βάσης δεδομένων"_s},
            {u"Label1_0"_s, u"Όνομα βάσης δεδομένων διακομιστή (data source)"_s},
            {u"Label1_1"_s, u"IP διακομιστή (server IP)"_s},
            {u"Label1_2"_s, u"Port διακομιστή (server Port)"_s},
            {u"Label1_3"_s, note},
            {u"Label1_4"_s, note},
            {u"Label1_7"_s, u"Κωδικός προστασίας παραμέτρων"_s},
            {u"Label1_8"_s, u"Επιβεβαίωση κωδικού"_s},
        };
        for (const auto& [name, text] : captions)
            QCOMPARE(child<QLabel>(d, name)->text(), text);
        const QList<QPair<QString, QString>> buttons = {
            {u"Option1_0"_s, u"Access"_s},   {u"Option1_1"_s, u"Oracle"_s},
            {u"Option1_2"_s, u"SQLite"_s},   {u"Option1_3"_s, u"PostgreSQL"_s},
            {u"Command1"_s, u"Αναζήτηση"_s}, {u"cmdOK"_s, u"OK"_s},
            {u"cmdCancel"_s, u"Άκυρο"_s},
        };
        for (const auto& [name, text] : buttons)
            QCOMPARE(child<QAbstractButton>(d, name)->text(), text);
        for (const QString& name : {u"AppSetting_3"_s, u"AppSetting_4"_s})
            QCOMPARE(child<QLineEdit>(d, name)->echoMode(), QLineEdit::Password);
        QCOMPARE(child<QLineEdit>(d, u"AppSetting_0"_s)->echoMode(), QLineEdit::Normal);
    }

    void nothingIsClippedAt96Dpi()
    {
        Bench b;
        SettingsDialog d(*b.store, b.dialogs);
        d.show();
        if (d.logicalDpiX() != 96)
            QSKIP("the screen is not at 96 dpi");
        const QRect inside = d.rect();
        const auto widgets = d.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
        QCOMPARE(widgets.size(), 22);
        for (QWidget* w : widgets) {
            const QString name = w->objectName();
            QVERIFY2(inside.contains(w->geometry()), qPrintable(name));
            if (auto* label = qobject_cast<QLabel*>(w); label && label->wordWrap()) {
                QVERIFY2(label->heightForWidth(label->width()) <= label->height(),
                         qPrintable(name));
            } else if (qobject_cast<QLabel*>(w) || qobject_cast<QAbstractButton*>(w)) {
                QVERIFY2(w->sizeHint().width() <= w->width(), qPrintable(name));
                QVERIFY2(w->sizeHint().height() <= w->height() + 2, qPrintable(name));
            }
            // No two controls overlap.
            for (QWidget* other : widgets) {
                if (other != w)
                    QVERIFY2(!w->geometry().intersects(other->geometry()),
                             qPrintable(name + u" / "_s + other->objectName()));
            }
        }
    }
};

QTEST_MAIN(TestSettings)
#include "tst_settings.moc"
