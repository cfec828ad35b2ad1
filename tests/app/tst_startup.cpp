// The start of the console against a real database: first run, failed connections
// and the protected settings change, the main window's unit list and its order, the
// refusal of a second copy, the end of the process and the version box of "Διάφορα".
#include "../events/EventsSeed.h"
#include "ChooseItem.h"
#include "FaultProxy.h"
#include "GuiFixture.h"
#include "UserTexts.h"
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
#include <QLabel>
#include <QLockFile>
#include <QStandardPaths>
#include <QSysInfo>
#include <QTest>
#include <QTimer>

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

// A unit in use, as the server application lists it.
QString unitInUse(const QString& serial, const QString& location, const QString& name)
{
    return u"INSERT INTO Systems_Info (SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, "
           u"SyI_Used) VALUES ('%1', '%2', '%3', 1)"_s.arg(serial, location, name);
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
        return f.exec(unitInUse(u"S2"_s, u"2"_s, u"Beta"_s) + u";\n"_s +
                      unitInUse(u"S1"_s, u"1"_s, u"Alpha"_s));
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
                    SettingsStore& s = *f.settings;
                    valuesWhenAsked = QStringList{s.protectionCode()};
                    for (const QString& key : {u"DBType"_s, u"DBFile"_s, u"DBDataSource"_s,
                                               u"DBServerIP"_s, u"DBServerPORT"_s})
                        valuesWhenAsked << s.app(key, u"-"_s);
                    return step == u"accept" && store(s, f.scratch.settings());
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
        // The first run wrote its blank settings before the dialog.
        QCOMPARE(r.valuesWhenAsked, (QStringList{{}, u"0"_s, {}, {}, {}, {}}));
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
        QVERIFY(r.f.exec(unitInUse(u"S1"_s, u"1"_s, u"Alpha"_s)));
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
            QVERIFY(!later.exec(unitInUse(u"S1"_s, u"1"_s, u"Alpha"_s)).isError());
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
};

QTEST_MAIN(TestStartup)
#include "tst_startup.moc"
