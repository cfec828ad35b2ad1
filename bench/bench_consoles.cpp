// Many consoles on one database with the simulator answering their commands.
// The parent makes a scratch database (PostgreSQL unless --kind sqlite), seeds
// the demo fleet, starts the simulator and N copies of itself, each a console
// of its own (own process, connection and context) that refreshes the main
// view, sends commands through the request exchange and marks events, all
// through the code the windows use. Then it checks what each console saw
// against what the server wrote, and prints the figures. Exit code 1 when a
// check fails; never on time.
//
//   bench_consoles [--consoles N (10)] [--seconds S (120)] [--kind postgresql|sqlite]
//                  [--without-owners (drop the owner column first, as an older server's)]
#include "GuiFixture.h"
#include "model/Dialect.h"
#include "model/Schema.h"
#include "model/commands/CommandRules.h"
#include "model/events/EventsData.h"
#include "sim/Seeder.h"
#include "ui/UnitList.h"
#include "views/current/MainWindow.h"
#include "views/current/RequestExchange.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QHash>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <map>
#include <vector>

using namespace Qt::StringLiterals;
using namespace sx;

namespace {

constexpr auto kSimExe = SX_SIM_EXE;

// Commands whose reply the demo fleet fixes: SX100002 is a 1B at 1.14 with
// code 0042 and point 2 out of use, SX100004 is offline, SX100005 is being
// programmed. Consoles i and i + 7 send the same row at the same time; the
// others send rows of their own to the same units.
struct Command {
    const char16_t* serial;
    int type;
    const char16_t* attributes;
    int reply;
};
constexpr Command kCommands[] = {
    {u"SX100002", kRequestRelayB, u"0042;1", kReplyDone},
    {u"SX100002", kRequestRelayB, u"9999;1", kReplyWrongCode},
    {u"SX100002", kRequestBypass, u"0042;2;1", kReplyNotSupported},
    {u"SX100001", kRequestRelayB, u"1234;0", kReplyDone},
    {u"SX100004", kRequestRelayB, u"1234;1", kReplyOffline},
    {u"SX100005", kRequestRelayB, u"1234;1", kReplyProgramming},
    {u"SX100002", kRequestNotification, u"0042;1", kReplyNotSupported},
};
constexpr int kCommandKinds = int(std::size(kCommands));
constexpr auto kMarkedUnits = u"'SX100001', 'SX100002', 'SX100003'";
constexpr int kMarkSlice = 8;

double percentile(std::vector<double> v, double p)
{
    if (v.empty())
        return 0;
    std::sort(v.begin(), v.end());
    return v[std::min(v.size() - 1, size_t(p * double(v.size())))];
}

QString eventKey(const QString& serial, qint64 sn)
{
    return serial + u'#' + QString::number(sn);
}

// One console. Prints "cmd", "mark" and "refresh" lines for the parent.
int runConsole(int index, int consoles, const QString& url, int seconds)
{
    ConnectionSettings settings;
    if (!parseDbUrl(url, settings))
        return 2;
    QTemporaryDir dir;
    DbLink link;
    if (const DbError e = link.openAndWait(settings); e.isError()) {
        std::printf("error %s\n", qPrintable(e.description));
        return 2;
    }
    test::ScriptedDialogs dialogs;
    SettingsStore store(dir.path() + u"/settings.ini"_s);
    AppContext ctx;
    ctx.db = &link;
    ctx.dialogs = &dialogs;
    ctx.settings = &store;
    QueryFailureReporter failures(ctx);
    ctx.failures = &failures;
    Navigator navigator(ctx);
    ctx.navigator = &navigator;

    MainWindow window(ctx);
    fillSystemSelect(window, index % 6, false);
    window.refreshTimer()->stop();

    // This console's share of the events of three units.
    const QList<events::MarkTarget> all = link.call([](Database& db) {
        QList<events::MarkTarget> out;
        Rows r = db.read(u"SELECT Event_SyI_Serialnumber, Event_SystemEventSN FROM Events_1 "
                         u"WHERE Event_SyI_Serialnumber IN ("_s +
                         QString::fromUtf16(kMarkedUnits) +
                         u") ORDER BY Event_SyI_Serialnumber, Event_SystemEventSN"_s);
        while (r.next())
            out.append({r.textOr(u"Event_SyI_Serialnumber"), r.intOr(u"Event_SystemEventSN")});
        return out;
    });
    QList<events::MarkTarget> mine;
    for (qsizetype i = index; i < all.size(); i += consoles)
        mine.append(all.at(i));
    QHash<QString, int> intent;
    int markRounds = 0;
    int markFaults = 0;

    std::vector<double> refreshMs;
    QElapsedTimer clock;
    clock.start();
    const qint64 endMs = qint64(seconds) * 1000;
    bool busy = false; // one mark at a time

    // A refresh is timed from its start until the window has shown what it
    // read: a job posted behind its read comes back right after it.
    QTimer refresher;
    QObject::connect(&refresher, &QTimer::timeout, [&] {
        if (window.refreshing())
            return;
        QElapsedTimer t;
        t.start();
        window.refresh();
        if (!window.refreshing())
            return;
        link.post(
            &window, [](Database&) { return 0; },
            [&refreshMs, &window, t](int) {
                refreshMs.push_back(double(t.nsecsElapsed()) / 1e6);
                window.refreshTimer()->stop();
            });
    });
    refresher.start(400 + 20 * index);

    QTimer marker;
    QObject::connect(&marker, &QTimer::timeout, [&] {
        if (busy || mine.isEmpty())
            return;
        busy = true;
        const int slices = int((mine.size() + kMarkSlice - 1) / kMarkSlice);
        const int slice = markRounds % slices;
        const int mark = (markRounds / slices) % 2 == 0 ? 1 : 0;
        const QList<events::MarkTarget> targets = mine.mid(slice * kMarkSlice, kMarkSlice);
        ++markRounds;
        // As the events window marks: one transaction on the console's connection.
        const DbError e =
            link.call([&](Database& db) { return events::markEvents(db, targets, mark); });
        if (e.isError()) {
            ++markFaults;
        } else {
            for (const events::MarkTarget& t : targets)
                intent.insert(eventKey(t.serial, t.sn), mark);
        }
        busy = false;
    });
    marker.start(700 + 30 * index);

    int round = 0;
    QEventLoop done;
    std::function<void()> next = [&] {
        if (clock.elapsed() >= endMs) {
            done.quit();
            return;
        }
        const Command& c = kCommands[(index + round++) % kCommandKinds];
        const TerminalRequest request{QString::fromUtf16(c.serial), c.type,
                                      QString::fromUtf16(c.attributes)};
        const ExchangeOutcome o = exchangeRequest(ctx, &window, commands::relayTitle(), request);
        std::printf("cmd %s %s %d %d %d %d\n", qPrintable(o.owner.isEmpty() ? u"-"_s : o.owner),
                    qPrintable(request.serial), c.reply, int(o.end), o.reply, int(o.rowVanished));
        QTimer::singleShot(100 + (index * 37 + round * 53) % 400, next);
    };
    QTimer::singleShot(50 * index, next);
    done.exec();
    refresher.stop();
    marker.stop();
    while (busy || window.refreshing())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);

    for (auto it = intent.cbegin(); it != intent.cend(); ++it)
        std::printf("mark %s %d\n", qPrintable(it.key()), it.value());
    std::printf("marks %d %d\n", markRounds, markFaults);
    std::printf("refresh %zu %.2f %.2f\n", refreshMs.size(), percentile(refreshMs, 0.5),
                percentile(refreshMs, 0.95));
    std::fflush(stdout);
    return 0;
}

QHash<QString, int> eventAcks(Database& db)
{
    QHash<QString, int> acks;
    Rows r = db.read(u"SELECT Event_SyI_Serialnumber, Event_SystemEventSN, Event_Ack FROM "
                     u"Events_1 WHERE Event_SyI_Serialnumber IN ("_s +
                     QString::fromUtf16(kMarkedUnits) + u')');
    while (r.next())
        acks.insert(eventKey(r.textOr(u"Event_SyI_Serialnumber"), r.intOr(u"Event_SystemEventSN")),
                    int(r.intOr(u"Event_Ack", -1)));
    return acks;
}

// The server's answers, logged by a trigger as it writes them: owner -> replies.
bool logAnswers(Database& db, bool owners)
{
    const QString owner = owners ? u"NEW.TrmReq_Requestowner"_s : u"NULL"_s;
    QStringList sql{u"CREATE TABLE bench_answers (owner TEXT, reply INTEGER)"_s};
    if (db.kind() == DbKind::PostgreSQL) {
        sql << u"CREATE FUNCTION bench_log_answer() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN "
               u"IF NEW.TrmReq_Requestcompleted <> 0 AND OLD.TrmReq_Requestcompleted = 0 THEN "
               u"INSERT INTO bench_answers VALUES ("_s +
                   owner + u", NEW.TrmReq_Requestreply); END IF; RETURN NEW; END $$"_s
            << u"CREATE TRIGGER bench_log AFTER UPDATE ON Terminal_Requests FOR EACH ROW "
               u"EXECUTE FUNCTION bench_log_answer()"_s;
    } else {
        sql << u"CREATE TRIGGER bench_log AFTER UPDATE ON Terminal_Requests WHEN "
               u"NEW.TrmReq_Requestcompleted <> 0 AND OLD.TrmReq_Requestcompleted = 0 BEGIN "
               u"INSERT INTO bench_answers VALUES ("_s +
                   owner + u", NEW.TrmReq_Requestreply); END"_s;
    }
    for (const QString& s : sql) {
        if (const DbError e = db.exec(s); e.isError()) {
            std::printf("cannot log answers: %s\n", qPrintable(e.description));
            return false;
        }
    }
    return true;
}

int runBench(int consoles, int seconds, const QString& kind, bool owners)
{
    qputenv("SX_TEST_DB", kind.toUtf8());
    test::ScratchDatabase scratch;
    Database db;
    db.allowGuiThread();
    if (!scratch.problem().isEmpty() || !scratch.open(db)) {
        std::printf("consoles %s: skipped (%s)\n", qPrintable(kind), qPrintable(scratch.problem()));
        return 0;
    }
    sim::SeedOptions seed;
    seed.days = 2;
    if (const DbError e = sim::seedDemo(db, seed).error; e.isError()) {
        std::printf("seeding failed: %s\n", qPrintable(e.description));
        return 1;
    }
    const QHash<QString, int> acksBefore = eventAcks(db);

    QProcess server;
    server.setProcessChannelMode(QProcess::MergedChannels);
    server.start(QString::fromUtf8(kSimExe), {u"--db"_s, scratch.url(), u"run"_s, u"--interval"_s,
                                              u"250"_s, u"--answer-delay"_s, u"300"_s});
    QByteArray banner;
    while (!banner.contains("running on") && server.waitForReadyRead(20000))
        banner += server.readAll();
    if (!banner.contains("running on")) {
        std::printf("the simulator did not start\n");
        return 1;
    }

    // The consoles' behaviour on a database of an older server, for comparison.
    if (!owners &&
        db.exec(u"ALTER TABLE Terminal_Requests DROP COLUMN TrmReq_Requestowner"_s).isError())
        return 1;
    if (!logAnswers(db, owners))
        return 1;

    std::vector<std::unique_ptr<QProcess>> children;
    std::vector<QByteArray> outputs(static_cast<size_t>(consoles));
    int running = consoles;
    QEventLoop allDone;
    // The simulator's output is read away so that it never blocks.
    QObject::connect(&server, &QProcess::readyRead, [&server] { (void)server.readAll(); });
    for (int i = 0; i < consoles; ++i) {
        auto p = std::make_unique<QProcess>();
        p->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        QProcess* raw = p.get();
        QObject::connect(raw, &QProcess::readyReadStandardOutput, [raw, &outputs, i] {
            outputs[size_t(i)] += raw->readAllStandardOutput();
        });
        QObject::connect(raw, &QProcess::finished, [raw, &outputs, &running, &allDone, i] {
            outputs[size_t(i)] += raw->readAllStandardOutput();
            if (--running == 0)
                allDone.quit();
        });
        p->start(QCoreApplication::applicationFilePath(),
                 {u"--console"_s, QString::number(i), u"--consoles"_s, QString::number(consoles),
                  u"--url"_s, scratch.url(), u"--seconds"_s, QString::number(seconds)});
        children.push_back(std::move(p));
    }
    allDone.exec();
    server.terminate();
    if (!server.waitForFinished(10000))
        server.kill();

    // What the server wrote into each owner's row.
    QHash<QString, QList<int>> written;
    {
        Rows r = db.read(u"SELECT owner, reply FROM bench_answers"_s);
        while (r.next())
            written[r.textOr(u"owner")].append(int(r.intOr(u"reply")));
    }
    const QHash<QString, int> acksAfter = eventAcks(db);
    qint64 left = -1;
    {
        Rows r = db.readFirst(u"SELECT COUNT(*) AS n FROM Terminal_Requests"_s);
        if (r.next())
            left = r.intOr(u"n");
    }

    std::printf("%d consoles on %s for %d s, the simulator answering\n", consoles, qPrintable(kind),
                seconds);
    std::printf("console  commands  answered  wrong-reply  not-own  vanished  no-answer  marks  "
                "refreshes  median-ms  p95-ms\n");
    int failures = 0;
    int allCommands = 0;
    std::map<int, int> byReply;
    QSet<QString> seen;
    QHash<QString, int> intents;
    QSet<QString> doubled;
    for (int i = 0; i < consoles; ++i) {
        int commands = 0, answered = 0, wrong = 0, notOwn = 0, vanished = 0, noAnswer = 0;
        int marks = 0;
        QString refresh = u"-"_s;
        for (const QByteArray& line : outputs[size_t(i)].split('\n')) {
            const QStringList f = QString::fromUtf8(line).split(u' ');
            if (f[0] == u"cmd" && f.size() == 7) {
                ++commands;
                const int expected = f[3].toInt(), reply = f[5].toInt();
                if (f[4].toInt() != int(ExchangeOutcome::End::Answered)) {
                    ++noAnswer;
                    continue;
                }
                ++answered;
                ++byReply[reply];
                wrong += reply != expected;
                vanished += f[6] == u"1";
                // The reply must be the one the server wrote into this console's own row, once.
                const QList<int> own = written.value(f[1]);
                if (owners) {
                    notOwn += f[1] == u"-" || own != QList<int>{reply} || seen.contains(f[1]);
                    seen.insert(f[1]);
                }
            } else if (f[0] == u"mark" && f.size() == 3) {
                if (intents.contains(f[1]))
                    doubled.insert(f[1]);
                intents.insert(f[1], f[2].toInt());
            } else if (f[0] == u"marks" && f.size() == 3) {
                marks = f[1].toInt();
                failures += f[2].toInt();
            } else if (f[0] == u"refresh" && f.size() == 4) {
                refresh = f[1] + u"  "_s + f[2] + u"  "_s + f[3];
            }
        }
        allCommands += commands;
        failures += wrong + notOwn + vanished + noAnswer + (commands == 0);
        std::printf("%7d  %8d  %8d  %11d  %7d  %8d  %9d  %5d  %s\n", i, commands, answered, wrong,
                    notOwn, vanished, noAnswer, marks, qPrintable(refresh));
    }
    // Each console's last mark stands; events no console marked are as they were.
    int lostMarks = 0, strayMarks = 0;
    for (auto it = acksBefore.cbegin(); it != acksBefore.cend(); ++it) {
        const int now = acksAfter.value(it.key(), -2);
        if (intents.contains(it.key()))
            lostMarks += now != intents.value(it.key());
        else
            strayMarks += now != it.value();
    }
    failures += lostMarks + strayMarks + int(doubled.size()) + (left != 0);
    QStringList replies;
    for (const auto& [reply, n] : byReply)
        replies << u"%1x reply %2"_s.arg(n).arg(reply);
    std::printf("commands %d (%s); request rows left %lld\n", allCommands,
                qPrintable(replies.join(u", "_s)), static_cast<long long>(left));
    std::printf("events marked by the consoles %lld: lost %d, changed by no console %d, claimed "
                "twice %lld\n",
                static_cast<long long>(intents.size()), lostMarks, strayMarks,
                static_cast<long long>(doubled.size()));
    std::printf(failures == 0 ? "all checks passed\n" : "CHECKS FAILED: %d\n", failures);
    return failures == 0 ? 0 : 1;
}

} // namespace

// The offscreen platform's notes on every box, repeated by ten consoles, hide the figures.
void quietNotes(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtDebugMsg || text.startsWith(u"This plugin does not support"_s) ||
        text.startsWith(u"QStandardPaths:"_s))
        return;
    std::fprintf(stderr, "%s\n", qPrintable(text));
}

int main(int argc, char** argv)
{
    qInstallMessageHandler(quietNotes);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    const auto option = [&args](const QString& name, const QString& fallback) {
        const qsizetype at = args.indexOf(name);
        return at > 0 && at + 1 < args.size() ? args.at(at + 1) : fallback;
    };
    const int consoles = std::max(1, option(u"--consoles"_s, u"10"_s).toInt());
    const int seconds = std::max(1, option(u"--seconds"_s, u"120"_s).toInt());
    if (args.contains(u"--console"_s))
        return runConsole(option(u"--console"_s, u"0"_s).toInt(), consoles, option(u"--url"_s, {}),
                          seconds);
    return runBench(consoles, seconds, option(u"--kind"_s, u"postgresql"_s),
                    !args.contains(u"--without-owners"_s));
}
