// The start of the console against a real database: first run, failed connections
// and the protected settings change, the main window's unit list and its order, the
// refusal of a second copy, the end of the process and the version box of "Διάφορα".
// Then the settings: the checks of OK with their messages, the dialog against a real
// settings file, and the other shared dialogs as the user meets them: the code
// prompt, the selection dialog and the message boxes of the real dialog service.
#include "../events/EventsSeed.h"
#include "ChooseItem.h"
#include "FaultProxy.h"
#include "GuiFixture.h"
#include "UserTexts.h"
#include "model/settings/SettingsValidation.h"
#include "shell/Startup.h"
#include "ui/AppActions.h"
#include "ui/AppIcon.h"
#include "ui/PasswordDialog.h"
#include "ui/SelectionDialog.h"
#include "ui/SettingsDialog.h"
#include "ui/UnitList.h"
#include "ui/ViewWindow.h"
#include "ui/WaitWindow.h"
#include "ui/WidgetDialogService.h"
#include "views/current/MainWindow.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QEventLoop>
#include <QFile>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QLockFile>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QStandardPaths>
#include <QStyle>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <tuple>

using namespace Qt::StringLiterals;
using namespace sx;
using test::GuiFixture;
using test::ScriptedDialogs;
using namespace sx::test::texts;

namespace {

using Answer = DialogService::Answer;
using Icon = DialogService::Icon;
using Buttons = DialogService::Buttons;

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

// What a shown box was, by its exact texts; "?" when nothing matches.
QString classify(const ScriptedDialogs::Shown& s)
{
    if (s.kind == u"settings")
        return s.kind;
    const struct {
        const char* name;
        QString title;
        Icon icon; // None: the code prompt, which has no icon or buttons of its own
        Buttons buttons;
        QString text;
    } known[] = {
        {"code", kChangeTitle, Icon::None, Buttons::Ok, kCodePrompt},
        {"welcome", kApp, Icon::Information, Buttons::Ok, kWelcome},
        {"setup refused", kApp, Icon::Critical, Buttons::OkCancel, kSetupRefused},
        {"explain unknown", kApp, Icon::Critical, Buttons::YesNo, kUnknownProvider + kChangeOrEnd},
        {"explain unreachable", kApp, Icon::Critical, Buttons::YesNo,
         kCausesNetwork + kChangeOrEnd},
        {"wrong code", kChangeTitle, Icon::Critical, Buttons::Ok, kWrongCode},
        {"press ok", kApp, Icon::Information, Buttons::Ok, kPressOk},
        {"changed", kChangeTitle, Icon::Information, Buttons::Ok, kChanged}};
    // An explanation: the error's number and words, then the causes that are compared.
    const bool explains = s.text.startsWith(kErrorHeader) && s.text.contains(kCausesHeading);
    const QString text = explains ? s.text.section(kCausesHeading, 1) : s.text;
    const bool code = s.kind == u"code";
    for (const auto& k : known) {
        const bool looks = code ? k.icon == Icon::None
                                : s.kind == u"message" && k.icon != Icon::None &&
                                      s.icon == k.icon && s.buttons == k.buttons;
        if (looks && s.title == k.title && text == k.text &&
            explains == (k.buttons == Buttons::YesNo))
            return QString::fromLatin1(k.name);
    }
    return u"?"_s;
}

// The boxes shown, by what they are, in order.
QString seen(const ScriptedDialogs& d)
{
    QStringList out;
    for (const auto& s : d.shown())
        out << classify(s);
    return out.join(u'|');
}

// Stores the settings that reach `where` with the code 1234, and Init unless empty.
bool store(SettingsStore& s, const ConnectionSettings& where, const QString& init = {})
{
    if (!init.isEmpty())
        s.setApp(u"Init"_s, init);
    return writeSettingsForm(s, {where.kind, where.file, where.dataSource, where.serverIp,
                                 where.serverPort, u"1234"_s, u"1234"_s}) &&
           s.sync();
}

// The wait message while the console connects to the scratch database.
QString scratchWait(const test::ScratchDatabase& scratch)
{
    const ConnectionSettings w = scratch.settings();
    return scratch.isPostgres() ? kServerWait + u"IP:"_s + w.serverIp + u"  PORT:"_s + w.serverPort
                                : kFileWait;
}

// One start of the console against the scratch database, and what it showed and stored.
struct StartRun {
    GuiFixture f;
    ProbeMain* main = nullptr;
    MainWindow* realMain = nullptr; // when asked for, the real window refreshing every 100 ms
    bool wantRealMain = false;
    std::optional<Startup> startup;
    std::optional<int> code;
    QString waitShown; // the wait window's heading, message and whether all fits
    bool waitVisible = false;
    bool waitLeft = false;       // a wait window still up once the attempt was over
    QStringList valuesWhenAsked; // the stored settings when the settings dialog opened
    int ticks = 0;               // of a 10 ms timer started as the connect begins
    QTimer tick;
    QString lock() const { return f.scratch.folder() + u"/console.lock"_s; }

    // Two units in use, stored in the reverse of their listed order.
    bool seedUnits()
    {
        test::EventsSeed s(f.db);
        return s.unit(u"S2"_s, u"Beta"_s, u"2"_s) && s.unit(u"S1"_s, u"Alpha"_s, u"1"_s);
    }
    // Ok/Cancel/Yes/No answer boxes, "code" cancels the prompt, code=X types X;
    // accept/refuse the settings dialog (accept points the settings at the scratch database).
    void answer(const QString& script)
    {
        const QHash<QString, Answer> answers{{u"Ok"_s, Answer::Ok},
                                             {u"Cancel"_s, Answer::Cancel},
                                             {u"Yes"_s, Answer::Yes},
                                             {u"No"_s, Answer::No}};
        for (const QString& step : script.split(u' ', Qt::SkipEmptyParts)) {
            if (answers.contains(step))
                f.dialogs.answerMessage(answers[step]);
            else if (step.startsWith(u"code"))
                f.dialogs.answerCode(step == u"code" ? std::optional<QString>() : step.mid(5));
            else
                f.dialogs.answerSettings([this, step] {
                    valuesWhenAsked = values(*f.settings);
                    return step == u"accept" && store(*f.settings, f.scratch.settings());
                });
        }
    }
    void run()
    {
        startup.emplace(f.ctx, [this](AppContext& ctx) -> ViewWindow* {
            if (!wantRealMain)
                return main = new ProbeMain(ctx);
            realMain = new MainWindow(ctx);
            realMain->refreshTimer()->setInterval(100);
            return realMain;
        });
        startup->setLockFile(lock());
        QObject::connect(&tick, &QTimer::timeout, [this] { ++ticks; });
        startup->setConnectingHook([this](QWidget* w) {
            tick.start(10);
            waitVisible = qobject_cast<WaitWindow*>(w) && w->isVisible();
            // As the user reads it: the heading, the message whole, the picture.
            const auto* text = w->findChild<QLabel*>(u"Label2"_s);
            const bool fits = text->heightForWidth(text->width()) <= text->height() &&
                              !w->findChild<QLabel*>(u"Image1"_s)->pixmap().isNull();
            waitShown = w->findChild<QLabel*>(u"Label1"_s)->text() + u'|' + text->text() +
                        (fits ? u"|fits"_s : u"|cut or no picture"_s);
        });
        code = startup->run();
        tick.stop();
        for (QWidget* w : QApplication::topLevelWidgets())
            waitLeft |= qobject_cast<WaitWindow*>(w) && w->isVisible();
    }
    // What every start checks: every answer used, no box unknown, the exit code, Init, the
    // shutdowns; the wait window (`wait`, none when empty) up while connecting and gone after.
    void expectEnd(std::optional<int> exitCode, const QString& init, int terminated,
                   const QString& wait) const
    {
        QVERIFY(!f.dialogs.anyUnexpected() && f.dialogs.pendingAnswers() == 0);
        QCOMPARE(code, exitCode);
        QCOMPARE(f.settings->app(u"Init"_s), init);
        QCOMPARE(f.terminated, terminated);
        QCOMPARE(waitVisible, !wait.isEmpty());
        QCOMPARE(waitShown, wait.isEmpty()
                                ? QString()
                                : u"Παρακαλώ περιμένετε|"_s +
                                      QString(wait).replace(u"\r\n"_s, u"\n"_s) + u"|fits"_s);
        QVERIFY(!waitLeft);
        QCOMPARE(startup->mainWindow() != nullptr, !exitCode);
    }
};

} // namespace

Q_DECLARE_METATYPE(sx::SettingsForm)
Q_DECLARE_METATYPE(sx::DialogService::Buttons)
Q_DECLARE_METATYPE(sx::DialogService::Answer)

class TestStartup : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    // Without settings (Init absent or 0) the console asks for them first.
    void firstRun_data()
    {
        QTest::addColumn<QString>("init"); // "-": absent
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("exitCode"); // -1: the console runs
        QTest::newRow("first run accepted") << u"-"_s << u"accept"_s << u"welcome|settings"_s << -1;
        QTest::newRow("first run refused")
            << u"0"_s << u"refuse Cancel"_s << u"welcome|settings|setup refused"_s << kExitNormal;
        QTest::newRow("refused, OK, accepted")
            << u"0"_s << u"refuse Ok accept"_s << u"welcome|settings|setup refused|settings"_s
            << -1;
    }
    void firstRun()
    {
        QFETCH(QString, init);
        QFETCH(QString, script);
        QFETCH(int, exitCode);
        StartRun r;
        SX_REQUIRE_FIXTURE(r.f);
        QVERIFY(r.seedUnits());
        if (init == u"-") {
            // Left by some earlier install: the first run must clear it.
            r.f.settings->setProtectionCode(u"old"_s);
            r.f.settings->setApp(u"DBFile"_s, u"/old/sxdb.mdb"_s);
        } else {
            QVERIFY(store(*r.f.settings, r.f.scratch.settings(), init));
        }
        QVERIFY(r.f.settings->sync());
        r.answer(script);
        r.run();

        const bool connected = exitCode == -1;
        QTEST(seen(r.f.dialogs), "expected");
        r.expectEnd(connected ? std::nullopt : std::optional(exitCode), connected ? u"1"_s : u"0"_s,
                    0, connected ? scratchWait(r.f.scratch) : QString());
        // The first run blanked its settings before the dialog, Init and notifications aside.
        const QString notifications = init == u"-" ? init : u"1"_s;
        QCOMPARE(r.valuesWhenAsked, (QStringList{{}, init, u"0"_s, {}, {}, {}, {}, notifications}));
        QVERIFY(!connected || (r.f.link.isOpen() && r.main->isVisible()));
    }

    // The settings reach no database: a box explains, the user may change them, the console ends.
    void failedConnection_data()
    {
        QTest::addColumn<QString>("database"); // what the stored settings reach
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const QString& database, const QString& script,
                            const QString& expected) {
            QTest::newRow(name) << database << script << expected;
        };
        const QString missing = u"missing"_s;
        row("missing file, No", missing, u"No"_s, u"explain unknown"_s);
        row("missing file, Yes, wrong code", missing, u"Yes code=9999"_s,
            u"explain unknown|code|wrong code|press ok"_s);
        row("missing file, Yes, prompt cancelled", missing, u"Yes code"_s,
            u"explain unknown|code|press ok"_s);
        row("missing file, Yes, empty code", missing, u"Yes code="_s,
            u"explain unknown|code|press ok"_s);
        row("missing file, Yes, settings changed", missing, u"Yes code=1234 accept"_s,
            u"explain unknown|code|settings|changed"_s);
        row("refused port, No", u"refused"_s, u"No"_s, u"explain unreachable"_s);
        // An old install's DBType that is no number means an Access file.
        row("type absent", u"type absent"_s, u"No"_s, u"explain unknown"_s);
        row("type=x", u"type=x"_s, u"No"_s, u"explain unknown"_s);
    }
    void failedConnection()
    {
        QFETCH(QString, database);
        QFETCH(QString, script);
        StartRun r;
        SX_REQUIRE_FIXTURE(r.f);
        // A file that does not exist, or a server port where nothing listens.
        ConnectionSettings where;
        QVERIFY(parseDbUrl(database == u"refused"
                               ? u"postgresql://127.0.0.1:1/sentorax"_s
                               : u"sqlite:"_s + r.f.scratch.folder() + u"/no.db"_s,
                           where));
        if (database.startsWith(u"type")) {
            where.kind = DbKind::Access;
            r.f.settings->setApp(u"DBFile"_s, where.file);
            if (database == u"type=x")
                r.f.settings->setApp(u"DBType"_s, u"x"_s);
        } else {
            QVERIFY(store(*r.f.settings, where));
        }
        r.f.settings->setApp(u"Init"_s, u"1"_s);
        QVERIFY(r.f.settings->sync());
        r.answer(script);
        r.run();

        QTEST(seen(r.f.dialogs), "expected");
        r.expectEnd(kExitNoConnection, u"1"_s, 1,
                    where.kind == DbKind::PostgreSQL ? kServerWait + u"IP:127.0.0.1  PORT:1"_s
                                                     : kFileWait);
        QVERIFY(!r.f.link.isOpen() && r.f.link.kind() == where.kind);
    }

    // The main window opens on the units in use; the lock is held while the console runs.
    void connects_data()
    {
        QTest::addColumn<bool>("idle"); // no unit in use
        QTest::newRow("working database") << false;
        QTest::newRow("no unit in use: an empty list") << true;
    }
    void connects()
    {
        QFETCH(bool, idle);
        StartRun r;
        SX_REQUIRE_FIXTURE(r.f);
        QVERIFY(r.seedUnits());
        if (idle)
            QVERIFY(r.f.exec(u"UPDATE Systems_Info SET SyI_Used=0"_s));
        r.f.ctx.systemSerials = {u"kept"_s};
        QVERIFY(store(*r.f.settings, r.f.scratch.settings(), u"1"_s));
        r.run();

        QVERIFY(r.f.dialogs.shown().isEmpty());
        r.expectEnd(std::nullopt, u"1"_s, 0, scratchWait(r.f.scratch));
        ProbeMain* main = r.main;
        QVERIFY(r.f.link.isOpen() && main && main == r.startup->mainWindow() && main->isVisible());
        QCOMPARE(main->windowTitle(), u"SENTORAX Monitor / Τρέχουσα κατάσταση"_s);
        QCOMPARE(main->findChild<QTimer*>(u"UpdateMainfrm"_s)->interval(), 10000);
        QCOMPARE(r.f.navigator->mainView(), main);
        // Without a unit in use the list is empty and the serials stay as they were.
        QCOMPARE(test::comboTexts(main->systemSelect()),
                 (idle ? QStringList() : QStringList{u"Alpha [1] (S1)"_s, u"Beta [2] (S2)"_s}));
        QCOMPARE(main->selected, idle ? QList<int>() : QList<int>{0});
        QCOMPARE(main->serials, idle ? QStringList() : QStringList{u"S1"_s});
        QCOMPARE(r.f.ctx.systemSerials,
                 (idle ? QStringList{u"kept"_s} : QStringList{u"S1"_s, u"S2"_s}));
        QLockFile other(r.lock());
        QVERIFY(!other.tryLock(0));
        r.startup.reset();
        QVERIFY(other.tryLock(0));
    }

    // The server misbehaves from the start: the wait window keeps serving events while the
    // connect waits; a list that cannot be read at first fills once the database is ready.
    void startsWhateverTheServerDoes_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("exitCode");
        // One box tells of the unreadable list ("?": not a start-up box).
        QTest::newRow("no tables yet") << u"bare"_s << u"?"_s << -1;
        if (test::ScratchDatabase::kindName() != u"postgresql")
            return;
        QTest::newRow("black hole")
            << u"black hole"_s << u"explain unreachable"_s << kExitNoConnection;
        QTest::newRow("slow packets") << u"slow"_s << QString() << -1;
    }
    void startsWhateverTheServerDoes()
    {
        QFETCH(QString, fault);
        QFETCH(int, exitCode);
        StartRun r;
        SX_REQUIRE_FIXTURE(r.f);
        ConnectionSettings where = r.f.scratch.settings();
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
            proxy->setMode(fault == u"slow" ? test::FaultProxy::Mode::Delay
                                            : test::FaultProxy::Mode::BlackHole,
                           100);
        }
        QVERIFY(test::EventsSeed(r.f.db).unit(u"S1"_s, u"Alpha"_s, u"1"_s));
        QVERIFY(store(*r.f.settings, where, u"1"_s));
        r.answer(u"No"_s);
        r.wantRealMain = true;
        r.run();
        QVERIFY(r.waitVisible);
        // A connect that took long was waited for with the event loop running.
        if (!bare)
            QVERIFY2(r.ticks > 10, qPrintable(QString::number(r.ticks)));
        QTEST(seen(r.f.dialogs), "expected");
        QCOMPARE(r.code.value_or(-1), exitCode);
        if (exitCode != -1)
            return;
        MainWindow* main = r.realMain;
        QVERIFY(main && main->isVisible());
        if (bare) {
            // The server application creates its tables after the console started.
            QCOMPARE(main->systemSelect()->count(), 0);
            Database later;
            QVERIFY(bare->open(later));
            QVERIFY(test::EventsSeed(later).unit(u"S1"_s, u"Alpha"_s, u"1"_s));
        }
        QTRY_COMPARE(test::comboTexts(main->systemSelect()), QStringList{u"Alpha [1] (S1)"_s});
        QTEST(seen(r.f.dialogs), "expected"); // and no box more
    }

    void secondCopy_data()
    {
        QTest::addColumn<QString>("holder");
        QTest::newRow("held by a running copy") << u"live"_s;
        // A lock's age says nothing: the first copy may have run for days.
        QTest::newRow("held for hours") << u"old"_s;
        QTest::newRow("left by a copy that died") << u"dead"_s;
    }
    void secondCopy()
    {
        QFETCH(QString, holder);
        const bool refused = holder != u"dead";
        StartRun r;
        SX_REQUIRE_FIXTURE(r.f);
        QVERIFY(store(*r.f.settings, r.f.scratch.settings(), u"0"_s));
        if (!refused)
            r.answer(u"refuse Cancel"_s);
        QLockFile first(r.lock());
        QFile file(r.lock());
        if (holder == u"dead") {
            // QLockFile's own layout: pid, application, host.
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("2147483000\nsentorax-monitor\n" + QSysInfo::machineHostName().toUtf8() +
                       '\n');
        } else {
            QVERIFY(first.tryLock(0));
        }
        if (holder == u"old") {
            QVERIFY(file.open(QIODevice::ReadWrite));
            QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(-3 * 3600),
                                     QFileDevice::FileModificationTime));
        }
        file.close();
        r.run();
        // Refused silently, and before anything is read or written.
        QCOMPARE(seen(r.f.dialogs), refused ? QString() : u"welcome|settings|setup refused"_s);
        r.expectEnd(kExitNormal, u"0"_s, 0, {});
        QCOMPARE(r.f.settings->protectionCode(), refused ? u"1234"_s : QString());
    }

    void unitsAreOrderedAsAGreekReaderExpects_data()
    {
        QTest::addColumn<QStringList>("names"); // in the order stored; "-" for a missing name
        QTest::addColumn<QStringList>("listed");
        QTest::newRow("accents and case do not count")
            << QStringList{u"Βόλος"_s, u"άλσος"_s, u"Αγορά"_s, u"Άλσος Β"_s, u"αεροδρόμιο"_s}
            << QStringList{u"Αγορά"_s, u"αεροδρόμιο"_s, u"άλσος"_s, u"Άλσος Β"_s, u"Βόλος"_s};
        QTest::newRow("diaeresis and final sigma")
            << QStringList{u"Ταιρι"_s, u"Ταΐζω"_s, u"Κόσμος Β"_s, u"κοσμοσ Α"_s}
            << QStringList{u"κοσμοσ Α"_s, u"Κόσμος Β"_s, u"Ταΐζω"_s, u"Ταιρι"_s};
        QTest::newRow("missing names first, then unaccented, then capitals")
            << QStringList{u"Ζ"_s, u"αγορα"_s, u"-"_s, u"Αγορά"_s, u"Αγορα"_s}
            << QStringList{u"Ανώνυμο σύστημα"_s, u"Αγορα"_s, u"αγορα"_s, u"Αγορά"_s, u"Ζ"_s};
    }
    void unitsAreOrderedAsAGreekReaderExpects()
    {
        QFETCH(QStringList, names);
        GuiFixture f;
        SX_REQUIRE_FIXTURE(f);
        test::EventsSeed seed(f.db);
        for (int i = 0; i < names.size(); ++i)
            QVERIFY(seed.unit(u"S%1"_s.arg(i), names[i] == u"-"_s ? QString() : names[i]));
        DbError error;
        QStringList got;
        for (const UnitEntry& u : readUnitList(f.db, &error))
            got << u.text.left(u.text.indexOf(u" ["_s));
        QVERIFY(!error.isError());
        QTEST(got, "listed");
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
        QVERIFY(ended && innerLeft);
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
        QVERIFY(window.isVisible() && f.dialogs.shown().isEmpty());
    }

    // Major "." minor, then the revision (the last part) with no separator.
    void versionText_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("expected");
        QTest::newRow("four parts") << u"1.1.5.9"_s << u"V1.19"_s;
        QTest::newRow("two digits") << u"2.10.13"_s << u"V2.1013"_s;
        QTest::newRow("leading zeros") << u"01.02.03"_s << u"V1.23"_s;
        QTest::newRow("major only") << u"3"_s << u"V3.00"_s;
        QTest::newRow("empty") << u""_s << u"V0.00"_s;
    }
    void versionText()
    {
        QFETCH(QString, version);
        QTEST(softwareVersionText(version), "expected");
    }

    void iconAndVersionBox()
    {
        // The pictures are resources of a static library: lost unless linked in.
        for (const int size : {16, 22, 24, 32, 48, 64, 128, 256})
            QCOMPARE(appIcon().pixmap(QSize(size, size)).size(), QSize(size, size));
        GuiFixture f;
        showSoftInfo(f.ctx, nullptr);
        QCOMPARE(f.dialogs.messages().size(), 1);
        const auto shown = f.dialogs.messages().first();
        QCOMPARE(std::tuple(shown.icon, shown.title, shown.text),
                 std::tuple(Icon::Information, u"Πληροφορίες εφαρμογής"_s,
                            u"Έκδοση Λογισμικού:\r\nSENTORAX Monitor "_s +
                                softwareVersionText(QStringLiteral(SX_VERSION))));
    }

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

QTEST_MAIN(TestStartup)
#include "tst_startup.moc"
