// The start of the console against a real database: first run, refused
// set-up, failed connections with and without a settings change, the unit
// list of the main window and the refusal of a second copy; the two items of
// the "Διάφορα" menu (the version box, the protected settings change).
#include "ChooseItem.h"
#include "FaultProxy.h"
#include "GuiFixture.h"
#include "model/settings/SettingsValidation.h"
#include "shell/Startup.h"
#include "ui/AppActions.h"
#include "ui/AppIcon.h"
#include "ui/UnitList.h"
#include "ui/ViewWindow.h"
#include "ui/WaitWindow.h"
#include "views/current/MainWindow.h"

#include <QComboBox>
#include <QEventLoop>
#include <QFile>
#include <QHash>
#include <QLockFile>
#include <QStandardPaths>
#include <QSysInfo>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace sx;
using test::GuiFixture;
using test::ScriptedDialogs;

namespace {

using Answer = DialogService::Answer;
using Icon = DialogService::Icon;
using Buttons = DialogService::Buttons;

const QString kWelcome =
    u"Καλωσορίσατε στην εφαρμογή SENTORAX Monitor.\r\nΠαρακαλώ πατήστε 'ΟΚ' για να καθορίσετε τις παραμέτρους λειτουργίας της εφαρμογής."_s;
const QString kSetupRefused =
    u"H εφαρμογή SENTORAX Monitor δεν μπορεί να ξεκινήσει εάν δεν καθοριστούν οι παράμετροι λειτουργίας της.\r\nΠατήστε 'ΟΚ' για καθορισμό ή 'Άκυρο' για να τερματίσετε την εφαρμογή."_s;
const QString kQuestion =
    u"\r\n\r\nΠατήστε 'Ναι' για να αλλάξετε τις παραμέτρους της εφαρμογής ή 'Όχι' για να τερματίσετε την εφαρμογή."_s;
const QString kHeaderStart = u"Παρουσιάστηκε το παρακάτω σφάλμα:\r\nError number: "_s;
const QString kCausesHeading = u"\r\n\r\nΠιθανά αίτια και προτεινόμενες λύσεις:\r\n"_s;
const QString kUnknown =
    u"- Άγνωστο σφάλμα. Επικοινωνήστε με την εταιρία που σας προμήθευσε την εφαρμογή."_s;
const QString kUnreachable =
    u"1. Η σύνδεση του διακομιστή με το δίκτυο δεν είναι διαθέσιμη ή ο διακομιστής δεν λειτουργεί. "
    u"Βεβαιωθείτε ότι ο διακομιστής βρίσκεται σε λειτουργία και η σύνδεση του με το δίκτυο είναι "
    u"διαθέσιμη.\r\n"
    u"2. Έχετε καθορίσει λανθασμένη IP διακομιστή. Ελέγξτε τις παραμέτρους τις εφαρμογής.\r\n"
    u"3. Έχετε καθορίσει λανθασμένο PORT διακομιστή. Ελέγξτε τις παραμέτρους τις εφαρμογής."_s;
const QString kPressOk = u"Πατήστε 'ΟΚ' για να τερματίσετε την εφαρμογή."_s;
const QString kChangeTitle = u"SENTORAX Monitor / Αλλαγή παραμέτρων εφαρμογής"_s;
const QString kChanged =
    u"Πατήστε 'ΟΚ' για να τερματίσετε την εφαρμογή.\r\nΟι αλλαγές θα ισχύσουν απο την επόμενη φορά που θα εκτελεστεί η εφαρμογή SENTORAX Monitor"_s;
const QString kFileWait = u"Άνοιγμα αρχείου βάσης δεδομένων."_s;

// A main window with nothing but the frame: it records its selection events.
class ProbeMain : public ViewWindow {
public:
    explicit ProbeMain(AppContext& ctx) : ViewWindow(ctx, ViewId::Current, u"Δοκιμή"_s)
    {
        auto* timer = new QTimer(this);
        timer->setObjectName(u"UpdateMainfrm"_s);
        timer->setInterval(1);
    }
    void unitSelected(int index) override
    {
        selected << index;
        serials << context().serialAt(index);
    }
    QList<int> selected;
    QStringList serials;
};

// What a shown dialog was, by its exact texts; "?" when nothing matches.
QString classify(const ScriptedDialogs::Shown& s)
{
    const QString app = u"SENTORAX Monitor"_s;
    const struct {
        const char* name;
        QString title;
        Icon icon;
        Buttons buttons;
        QString text;
    } known[] = {
        {"code", kChangeTitle, Icon::None, Buttons::Ok,
         u"Παρακαλώ εισάγετε τον κωδικό προστασίας παραμέτρων"_s},
        {"welcome", app, Icon::Information, Buttons::Ok, kWelcome},
        {"setup refused", app, Icon::Critical, Buttons::OkCancel, kSetupRefused},
        {"explain unknown", app, Icon::Critical, Buttons::YesNo, kUnknown + kQuestion},
        {"explain unreachable", app, Icon::Critical, Buttons::YesNo, kUnreachable + kQuestion},
        {"wrong code", kChangeTitle, Icon::Critical, Buttons::Ok, u"Λάθος κωδικός !"_s},
        {"press ok", app, Icon::Information, Buttons::Ok, kPressOk},
        {"changed", kChangeTitle, Icon::Information, Buttons::Ok, kChanged}};
    if (s.kind == u"settings")
        return s.kind;
    // An explanation: the error's number and words, then the causes that are compared.
    const bool explains = s.text.startsWith(kHeaderStart) && s.text.contains(kCausesHeading);
    const QString text = explains ? s.text.section(kCausesHeading, 1) : s.text;
    const bool code = s.kind == u"code"; // a prompt: no icon or buttons of its own
    if (!code && s.kind != u"message")
        return u"?"_s;
    for (const auto& k : known) {
        if (code == (k.icon == Icon::None) && s.title == k.title && text == k.text &&
            (code || (s.icon == k.icon && s.buttons == k.buttons)) &&
            explains == (k.buttons == Buttons::YesNo))
            return QString::fromLatin1(k.name);
    }
    return u"?"_s;
}

struct Target {
    ConnectionSettings where;
    QString waitMessage;
};

// Where a row points the console: the scratch database, a file that does not
// exist, or a server port where nothing listens.
Target targetFor(const QString& name, GuiFixture& f)
{
    Target t;
    if (name == u"missing") {
        t.where.kind = DbKind::SQLite;
        t.where.file = f.scratch.folder() + u"/nosuch.db"_s;
        t.waitMessage = kFileWait;
    } else if (name == u"refused") {
        t.where.kind = DbKind::PostgreSQL;
        t.where.dataSource = u"sentorax"_s;
        t.where.serverIp = u"127.0.0.1"_s;
        t.where.serverPort = u"1"_s;
        t.waitMessage = u"Επιχειρείται σύνδεση με τον διακομιστή.\r\nIP:127.0.0.1  PORT:1"_s;
    } else if (name.startsWith(u"type")) {
        t.where.kind = DbKind::Access;
        t.where.file = f.scratch.folder() + u"/nosuch.mdb"_s;
        t.waitMessage = kFileWait;
    } else {
        t.where = f.scratch.settings();
        t.waitMessage = f.scratch.isPostgres()
                            ? u"Επιχειρείται σύνδεση με τον διακομιστή.\r\nIP:"_s +
                                  t.where.serverIp + u"  PORT:"_s + t.where.serverPort
                            : kFileWait;
    }
    return t;
}

void store(SettingsStore& s, const ConnectionSettings& where, const QString& code)
{
    SettingsForm form;
    form.kind = where.kind;
    form.file = where.file;
    form.dataSource = where.dataSource;
    form.serverIp = where.serverIp;
    form.serverPort = where.serverPort;
    form.code = code;
    form.confirmation = code;
    QVERIFY(writeSettingsForm(s, form));
}

} // namespace

class TestStartup : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void startupPaths_data()
    {
        QTest::addColumn<QString>("init");     // Init before the start; "-" absent
        QTest::addColumn<QString>("database"); // what the stored settings reach
        QTest::addColumn<QStringList>("script");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<int>("exitCode"); // -1: the console runs
        // Script: Ok/Cancel/Yes/No answer boxes, accept/refuse the settings
        // dialog (accept points the settings at the row's database), code=X.
        const auto row = [](const char* name, const QString& init, const QString& database,
                            const QString& script, const QString& expected, int exitCode) {
            QTest::newRow(name) << init << database << script.split(u' ', Qt::SkipEmptyParts)
                                << expected.split(u'|', Qt::SkipEmptyParts) << exitCode;
        };
        const QString scratch = u"scratch"_s;
        const QString missing = u"missing"_s;
        row("first run accepted", u"-"_s, scratch, u"accept"_s, u"welcome|settings"_s, -1);
        row("first run refused", u"0"_s, scratch, u"refuse Cancel"_s,
            u"welcome|settings|setup refused"_s, kExitNormal);
        row("refused, OK, accepted", u"0"_s, scratch, u"refuse Ok accept"_s,
            u"welcome|settings|setup refused|settings"_s, -1);
        row("refused twice, then gave up", u"0"_s, scratch, u"refuse Ok refuse Cancel"_s,
            u"welcome|settings|setup refused|settings|setup refused"_s, kExitNormal);
        row("missing file, No", u"1"_s, missing, u"No"_s, u"explain unknown"_s, kExitNoConnection);
        row("missing file, Yes, wrong code", u"1"_s, missing, u"Yes code=9999"_s,
            u"explain unknown|code|wrong code|press ok"_s, kExitNoConnection);
        row("missing file, Yes, prompt cancelled", u"1"_s, missing, u"Yes code"_s,
            u"explain unknown|code|press ok"_s, kExitNoConnection);
        row("missing file, Yes, settings cancelled", u"1"_s, missing, u"Yes code=1234 refuse"_s,
            u"explain unknown|code|settings|press ok"_s, kExitNoConnection);
        row("missing file, Yes, settings changed", u"1"_s, missing, u"Yes code=1234 accept"_s,
            u"explain unknown|code|settings|changed"_s, kExitNoConnection);
        row("refused port, No", u"1"_s, u"refused"_s, u"No"_s, u"explain unreachable"_s,
            kExitNoConnection);
        row("working database", u"1"_s, scratch, {}, {}, -1);
        row("no unit in use: an empty list", u"1"_s, u"idle"_s, {}, {}, -1);
        // An old install's DBType that is no number means an Access file.
        for (const char* type : {"type absent", "type=x", "type="})
            row(type, u"1"_s, QString::fromLatin1(type), u"No"_s, u"explain unknown"_s,
                kExitNoConnection);
    }
    void startupPaths()
    {
        QFETCH(QString, init);
        QFETCH(QString, database);
        QFETCH(QStringList, script);
        QFETCH(QStringList, expected);
        QFETCH(int, exitCode);
        const bool connected = exitCode == -1;
        // Init is set once the settings were accepted; a failed connection ends via terminate.
        const QString initAfter = connected || init == u"1" ? u"1"_s : u"0"_s;
        const int terminated = exitCode == kExitNoConnection ? 1 : 0;

        GuiFixture f;

        SX_REQUIRE_FIXTURE(f);
        QVERIFY(f.exec(
            u"INSERT INTO Systems_Info (SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, "
            u"SyI_Used) VALUES ('S2', '2', 'Beta', 1);\n"
            u"INSERT INTO Systems_Info (SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, SyI_Used) VALUES ('S1', '1', 'Alpha', 1)"_s));

        if (database == u"idle")
            QVERIFY(f.exec(u"UPDATE Systems_Info SET SyI_Used=0"_s));
        f.ctx.systemSerials = {u"kept"_s};
        const Target target = targetFor(database, f);
        const Target working = targetFor(u"scratch"_s, f);
        if (database.startsWith(u"type")) {
            f.settings->setApp(u"DBFile"_s, target.where.file);
            if (database.contains(u'='))
                f.settings->setApp(u"DBType"_s, database.section(u'=', 1));
            f.settings->setApp(u"Init"_s, init);
        } else if (init != u"-") {
            store(*f.settings, target.where, u"1234"_s);
            f.settings->setApp(u"Init"_s, init);
        } else {
            // Left by some earlier install: the first run must clear it.
            f.settings->setProtectionCode(u"old"_s);
            f.settings->setApp(u"DBFile"_s, u"/old/sxdb.mdb"_s);
        }
        QVERIFY(f.settings->sync());

        QStringList valuesWhenAsked;
        for (const QString& step : script) {
            const QHash<QString, Answer> answers{{u"Ok"_s, Answer::Ok},
                                                 {u"Cancel"_s, Answer::Cancel},
                                                 {u"Yes"_s, Answer::Yes},
                                                 {u"No"_s, Answer::No}};
            if (answers.contains(step))
                f.dialogs.answerMessage(answers[step]);
            else if (step == u"code")
                f.dialogs.answerCode(std::nullopt);
            else if (step.startsWith(u"code="))
                f.dialogs.answerCode(step.mid(5));
            else
                f.dialogs.answerSettings([&f, &valuesWhenAsked, working, step] {
                    SettingsStore& s = *f.settings;
                    valuesWhenAsked = {s.protectionCode(),
                                       s.app(u"DBType"_s, u"-"_s),
                                       s.app(u"DBFile"_s, u"-"_s),
                                       s.app(u"DBDataSource"_s, u"-"_s),
                                       s.app(u"DBServerIP"_s, u"-"_s),
                                       s.app(u"DBServerPORT"_s, u"-"_s)};
                    if (step != u"accept")
                        return false;
                    store(s, working.where, u"1234"_s);
                    return true;
                });
        }

        QString waitShown;
        bool waitVisible = false;
        ProbeMain* main = nullptr;
        std::optional<Startup> startup;
        startup.emplace(f.ctx, [&main](AppContext& ctx) -> ViewWindow* {
            main = new ProbeMain(ctx);
            return main;
        });
        const QString lock = f.scratch.folder() + u"/console.lock"_s;
        startup->setLockFile(lock);
        startup->setConnectingHook([&](QWidget* w) {
            auto* wait = qobject_cast<WaitWindow*>(w);
            QVERIFY(wait);
            waitShown = wait->message();
            waitVisible = wait->isVisible();
        });
        const std::optional<int> code = startup->run();

        QStringList seen;
        for (const auto& s : f.dialogs.shown())
            seen << classify(s);
        QCOMPARE(seen, expected);
        QVERIFY(!f.dialogs.anyUnexpected());
        QCOMPARE(f.dialogs.pendingAnswers(), 0);
        QCOMPARE(code.value_or(-1), exitCode);
        QCOMPARE(f.settings->app(u"Init"_s), initAfter);
        QCOMPARE(f.terminated, terminated);

        if (init == u"-" || init == u"0") {
            // The first run wrote its blank settings before the dialog.
            QCOMPARE(valuesWhenAsked, (QStringList{{}, u"0"_s, {}, {}, {}, {}}));
        }
        if (connected || exitCode == kExitNoConnection) {
            QVERIFY(waitVisible);
            QCOMPARE(waitShown, connected ? working.waitMessage : target.waitMessage);
        } else {
            QVERIFY(waitShown.isEmpty());
        }
        // The wait window is gone once the attempt is over.
        for (QWidget* w : QApplication::topLevelWidgets())
            QVERIFY(!qobject_cast<WaitWindow*>(w) || !w->isVisible());

        QCOMPARE(startup->mainWindow() != nullptr, connected);
        if (exitCode != kExitNormal)
            QCOMPARE(f.link.isOpen(), connected);
        if (exitCode == kExitNoConnection)
            QCOMPARE(f.link.kind(), target.where.kind);
        if (!connected)
            return;
        QCOMPARE(main, startup->mainWindow());
        QVERIFY(main->isVisible());
        QCOMPARE(main->windowTitle(), u"SENTORAX Monitor / Τρέχουσα κατάσταση"_s);
        QCOMPARE(main->findChild<QTimer*>(u"UpdateMainfrm"_s)->interval(), 10000);
        QCOMPARE(f.navigator->mainView(), main);
        // Without a unit in use the list is empty and the serials stay as they were.
        const bool idle = database == u"idle";
        QCOMPARE(test::comboTexts(main->systemSelect()),
                 (idle ? QStringList() : QStringList{u"Alpha [1] (S1)"_s, u"Beta [2] (S2)"_s}));
        QCOMPARE(main->selected, idle ? QList<int>() : QList<int>{0});
        QCOMPARE(main->serials, idle ? QStringList() : QStringList{u"S1"_s});
        QCOMPARE(f.ctx.systemSerials,
                 (idle ? QStringList{u"kept"_s} : QStringList{u"S1"_s, u"S2"_s}));
        // The lock is held while the console runs and freed at its end.
        QLockFile other(lock);
        QVERIFY(!other.tryLock(0));
        startup.reset();
        QVERIFY(other.tryLock(0));
    }

    // The server misbehaves from the start: the wait window stands and the
    // window keeps serving events while the connect waits; a list that
    // cannot be read at first fills by itself once the database is ready.
    void startsWhateverTheServerDoes_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<int>("exitCode");
        // One box tells of the unreadable list ("?": not a start-up box).
        QTest::newRow("no tables yet") << u"bare"_s << QStringList{u"?"_s} << -1;
        if (test::ScratchDatabase::kindName() != u"postgresql")
            return;
        QTest::newRow("black hole")
            << u"black hole"_s << QStringList{u"explain unreachable"_s} << kExitNoConnection;
        QTest::newRow("refused") << u"refused"_s << QStringList{u"explain unreachable"_s}
                                 << kExitNoConnection;
        QTest::newRow("slow packets") << u"slow"_s << QStringList() << -1;
    }
    void startsWhateverTheServerDoes()
    {
        QFETCH(QString, fault);
        QFETCH(QStringList, expected);
        QFETCH(int, exitCode);
        GuiFixture f;
        SX_REQUIRE_FIXTURE(f);
        ConnectionSettings where = f.scratch.settings();
        std::optional<test::ScratchDatabase> bare;
        std::unique_ptr<test::FaultProxy> proxy;
        if (fault == u"bare") {
            bare.emplace();
            where = bare->settings();
            Database empty;
            QVERIFY(bare->open(empty, false));
        } else {
            proxy = std::make_unique<test::FaultProxy>(where.serverIp,
                                                       quint16(where.serverPort.toInt()));
            where.serverIp = u"127.0.0.1"_s;
            where.serverPort = QString::number(proxy->port());
            const QHash<QString, test::FaultProxy::Mode> modes{
                {u"black hole"_s, test::FaultProxy::Mode::BlackHole},
                {u"refused"_s, test::FaultProxy::Mode::Refuse},
                {u"slow"_s, test::FaultProxy::Mode::Delay}};
            proxy->setMode(modes.value(fault), 100);
        }
        QVERIFY(f.exec(u"INSERT INTO Systems_Info (SyI_Serialnumber, SyI_Locationnumber, "
                       u"SyI_Systemname, SyI_Used) VALUES ('S1', '1', 'Alpha', 1)"_s));
        store(*f.settings, where, u"1234"_s);
        f.settings->setApp(u"Init"_s, u"1"_s);
        QVERIFY(f.settings->sync());
        f.dialogs.answerMessage(Answer::No);

        MainWindow* main = nullptr;
        Startup startup(f.ctx, [&main](AppContext& ctx) -> ViewWindow* {
            main = new MainWindow(ctx);
            main->refreshTimer()->setInterval(100);
            return main;
        });
        startup.setLockFile(f.scratch.folder() + u"/console.lock"_s);
        int ticks = 0;
        QTimer tick;
        QObject::connect(&tick, &QTimer::timeout, [&ticks] { ++ticks; });
        bool waitVisible = false;
        startup.setConnectingHook([&](QWidget* w) {
            waitVisible = w->isVisible();
            tick.start(10);
        });
        const std::optional<int> code = startup.run();
        tick.stop();
        QVERIFY(waitVisible);
        // A connect that took long was waited for with the event loop running.
        if (fault == u"black hole" || fault == u"slow")
            QVERIFY2(ticks > 10, qPrintable(QString::number(ticks)));
        QStringList seen;
        for (const auto& s : f.dialogs.shown())
            seen << classify(s);
        QCOMPARE(seen, expected);
        QCOMPARE(code.value_or(-1), exitCode);
        if (exitCode != -1)
            return;
        QVERIFY(main && main->isVisible());
        if (bare) {
            // The server application creates its tables after the console started.
            QCOMPARE(main->systemSelect()->count(), 0);
            Database later;
            QVERIFY(bare->open(later));
            QVERIFY(!later
                         .exec(u"INSERT INTO Systems_Info (SyI_Serialnumber, SyI_Locationnumber, "
                               u"SyI_Systemname, SyI_Used) VALUES ('S1', '1', 'Alpha', 1)"_s)
                         .isError());
        }
        QTRY_COMPARE(test::comboTexts(main->systemSelect()), QStringList{u"Alpha [1] (S1)"_s});
        QCOMPARE(f.dialogs.shown().size(), expected.size());
    }

    void secondCopy_data()
    {
        QTest::addColumn<QString>("holder");
        QTest::addColumn<bool>("refused");
        QTest::newRow("held by a running copy") << u"live"_s << true;
        // A lock's age says nothing: the first copy may have run for days.
        QTest::newRow("held for hours") << u"old"_s << true;
        QTest::newRow("left by a copy that died") << u"dead"_s << false;
    }
    void secondCopy()
    {
        QFETCH(QString, holder);
        QFETCH(bool, refused);

        GuiFixture f;

        SX_REQUIRE_FIXTURE(f);
        store(*f.settings, f.scratch.settings(), u"1234"_s);
        f.settings->setApp(u"Init"_s, u"0"_s);
        QVERIFY(f.settings->sync());
        f.dialogs.answerSettings([] { return false; });
        f.dialogs.answerMessage(Answer::Cancel);

        const QString path = f.scratch.folder() + u"/console.lock"_s;
        QLockFile first(path);
        if (holder == u"dead") {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            // QLockFile's own layout: pid, application, host.
            file.write("2147483000\nsentorax-monitor\n" + QSysInfo::machineHostName().toUtf8() +
                       '\n');
        } else {
            QVERIFY(first.tryLock(0));
        }
        if (holder == u"old") {
            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadWrite));
            const QDateTime hoursAgo = QDateTime::currentDateTime().addSecs(-3 * 3600);
            QVERIFY(file.setFileTime(hoursAgo, QFileDevice::FileModificationTime));
        }

        Startup startup(f.ctx, [](AppContext& ctx) -> ViewWindow* { return new ProbeMain(ctx); });
        startup.setLockFile(path);
        const std::optional<int> code = startup.run();
        QCOMPARE(code, std::optional<int>(kExitNormal));
        if (refused) {
            // Silent, and before anything is read or written.
            QVERIFY(f.dialogs.shown().isEmpty());
            QCOMPARE(f.settings->protectionCode(), u"1234"_s);
        } else {
            QCOMPARE(f.dialogs.shown().size(), 3);
            QCOMPARE(f.settings->protectionCode(), QString());
        }
        QCOMPARE(f.terminated, 0);
        QVERIFY(!startup.mainWindow());
    }

    void shutdownLeavesEveryLoopWithoutAskingWindows()
    {
        GuiFixture f;
        SX_REQUIRE_FIXTURE(f);
        ProbeMain window(f.ctx);
        window.show();
        bool ended = false;
        f.ctx.terminate = processShutdown(f.link, ended);
        bool innerLeft = false;
        // As from a modal dialog: the shutdown runs inside a nested loop.
        QTimer::singleShot(0, [&] {
            QEventLoop inner;
            QTimer::singleShot(0, [&] { f.ctx.terminate(); });
            inner.exec();
            innerLeft = true;
        });
        QCOMPARE(QCoreApplication::exec(), 0);
        QVERIFY(ended);
        QVERIFY(innerLeft);
        // Nothing more reaches the connection; what must still run waits for the next start.
        bool ran = false;
        f.link.post(
            nullptr, [&ran](Database&) { return ran = true; }, [&ran](bool) { ran = true; });
        QVERIFY(!f.link.call([&ran](Database&) { return ran = true; }));
        f.failures->runWhenBack(u"DELETE FROM Terminal_Requests"_s);
        QVERIFY(!f.failures->ensureConnection(FailureOrigin::User));
        QCoreApplication::processEvents();
        QVERIFY(!ran);
        QCOMPARE(f.failures->pendingStatements(), QStringList{u"DELETE FROM Terminal_Requests"_s});
        QVERIFY(window.isVisible());
        QVERIFY(f.dialogs.shown().isEmpty());
    }

    void waitMessage()
    {
        const QString server = u"Επιχειρείται σύνδεση με τον διακομιστή.\r\n"_s;
        const struct {
            int dbType;
            QString ip, port, expected;
        } cases[] = {
            {2, u"10.0.0.1"_s, u"1521"_s, kFileWait}, // a file: no address shown
            {1, u"10.0.0.1"_s, u"1521"_s, server + u"IP:10.0.0.1  PORT:1521"_s},
            {1, {}, {}, server + u"IP:  PORT:"_s},
            {7, u"h"_s, u"p"_s, server + u"IP:h  PORT:p"_s}, // an unknown number is Oracle
            {3, {}, {}, server + u"IP:  PORT:"_s},           // PostgreSQL on this computer
        };
        for (const auto& c : cases) {
            ConnectionSettings s;
            s.kind = dbKindFromSetting(c.dbType);
            s.serverIp = c.ip;
            s.serverPort = c.port;
            QCOMPARE(waitMessageFor(s), c.expected);
        }
    }

    void versionTextAndBox()
    {
        // Major "." minor, then the revision (the last part) with no separator.
        for (const auto& [version, expected] : {std::pair{u"1.1.5.9"_s, u"V1.19"_s},
                                                {u"1.0.0"_s, u"V1.00"_s},
                                                {u"2.10.13"_s, u"V2.1013"_s},
                                                {u"01.02.03"_s, u"V1.23"_s},
                                                {u"3"_s, u"V3.00"_s},
                                                {u""_s, u"V0.00"_s}})
            QCOMPARE(softwareVersionText(version), expected);
        // The pictures are resources of a static library: lost unless linked in.
        for (const int size : {16, 22, 24, 32, 48, 64, 128, 256})
            QCOMPARE(appIcon().pixmap(QSize(size, size)).size(), QSize(size, size));
        // The version box of the menu.
        GuiFixture f;
        showSoftInfo(f.ctx, nullptr);
        const auto shown = f.dialogs.messages();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown[0].icon, Icon::Information);
        QCOMPARE(shown[0].title, u"Πληροφορίες εφαρμογής"_s);
        QCOMPARE(shown[0].text, u"Έκδοση Λογισμικού:\r\nSENTORAX Monitor "_s +
                                    softwareVersionText(QStringLiteral(SX_VERSION)));
    }

    void changeSettings_data()
    {
        QTest::addColumn<QString>("stored");               // SP1
        QTest::addColumn<std::optional<QString>>("typed"); // nothing: cancelled
        QTest::addColumn<bool>("dialogAccepts");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const QString& stored,
                            const std::optional<QString>& typed, bool accepts,
                            const QString& expected) {
            QTest::newRow(name) << stored << typed << accepts << expected;
        };
        row("prompt cancelled", u"1234"_s, std::nullopt, false, u"code"_s);
        row("empty code", u"1234"_s, u""_s, false, u"code"_s);
        row("wrong code", u"1234"_s, u"4321"_s, false, u"code|wrong code"_s);
        row("case differs", u"abc"_s, u"ABC"_s, false, u"code|wrong code"_s);
        row("trailing blank differs", u"1234"_s, u"1234 "_s, false, u"code|wrong code"_s);
        row("no code stored yet", u""_s, u"x"_s, false, u"code|wrong code"_s);
        row("right code, dialog cancelled", u"1234"_s, u"1234"_s, false, u"code|settings"_s);
        row("right code, settings saved", u"κ 1"_s, u"κ 1"_s, true, u"code|settings|changed"_s);
    }
    void changeSettings()
    {
        QFETCH(QString, stored);
        QFETCH(std::optional<QString>, typed);
        QFETCH(bool, dialogAccepts);
        QFETCH(QString, expected);
        GuiFixture f;
        f.settings->setProtectionCode(stored);
        f.settings->setApp(u"Init"_s, u"0"_s);
        f.dialogs.answerCode(typed);
        if (expected.contains(u"settings"_s))
            f.dialogs.answerSettings([dialogAccepts] { return dialogAccepts; });
        changeAppSettings(f.ctx, nullptr);

        QStringList seen;
        for (const auto& s : f.dialogs.shown())
            seen << classify(s);
        QCOMPARE(seen.join(u'|'), expected);
        const bool saved = expected.endsWith(u"changed"_s);
        QCOMPARE(f.settings->app(u"Init"_s), saved ? u"1"_s : u"0"_s);
        QCOMPARE(f.terminated, saved ? 1 : 0);
        QVERIFY(!f.dialogs.anyUnexpected());
        QCOMPARE(f.dialogs.pendingAnswers(), 0);
    }
};

QTEST_MAIN(TestStartup)
#include "tst_startup.moc"
