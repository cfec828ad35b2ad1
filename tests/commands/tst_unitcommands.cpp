#include "GuiFixture.h"
#include "UserTexts.h"
#include "model/Dialect.h"
#include "model/commands/CommandRules.h"
#include "sim/Seeder.h"
#include "sim/SimSchema.h"
#include "views/current/CommandHost.h"
#include "views/current/UnitCommands.h"

#include <QFile>
#include <QProcess>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <memory>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;
using namespace sx::test::texts;
using Icon = DialogService::Icon;
using Selection = DialogService::Selection;

namespace {

// The main window as the commands see it.
class TestHost : public QWidget, public CommandHost {
public:
    QString serial;
    QString caption = kRelayOff;
    int refreshes = 0;

    QWidget* commandWindow() override { return this; }
    QString commandSerial() const override { return serial; }
    QString relayCaption() const override { return caption; }
    void refreshNow() override { ++refreshes; }
};

constexpr auto kSimExe = SX_SIM_EXE;

// One command from its first dialog to its end. Answers: cCODE (c- cancels), sENTRY,POINT
// (s- cancels), iTEXT (i- cancels); sent: the row written after the serial, empty when none;
// check: COLUMN=VALUE|VALUE of the unit's condition afterwards.
struct Case {
    void (*run)(AppContext&, CommandHost&);
    QString serial;
    QList<int> before; // notification, relay
    QString answers, sent;
    QStringList dialogs;
    QString check;
    int refreshes = 0;
    QStringList simOptions;
    QString meanwhile; // what else happens to the request table
    QStringList left;  // the rows left afterwards
};

} // namespace

Q_DECLARE_METATYPE(Case)

class TestUnitCommands : public QObject {
    Q_OBJECT

    std::unique_ptr<GuiFixture> fx;
    std::unique_ptr<TestHost> host;
    std::unique_ptr<QProcess> sim;
    QStringList simMode{u"none"_s};

    // (Re)starts the simulator with extra run options unless it already runs so.
    bool useSimulator(const QStringList& extra)
    {
        if (sim && simMode == extra)
            return true;
        stopSimulator();
        if (extra == QStringList{u"stopped"_s})
            return true;
        sim = std::make_unique<QProcess>();
        sim->setProcessChannelMode(QProcess::MergedChannels);
        sim->start(QString::fromUtf8(kSimExe),
                   QStringList{u"--db"_s, fx->scratch.url(), u"run"_s, u"--interval"_s, u"200"_s,
                               u"--answer-delay"_s, u"100"_s} +
                       extra);
        if (!sim->waitForStarted(10000))
            return false;
        QByteArray out;
        while (!out.contains("running on") && sim->waitForReadyRead(10000))
            out += sim->readAll();
        if (!out.contains("running on"))
            qWarning("simulator: %s", out.constData());
        simMode = extra;
        return out.contains("running on");
    }

    void stopSimulator()
    {
        if (!sim)
            return;
        sim->terminate();
        if (!sim->waitForFinished(10000))
            sim->kill();
        sim.reset();
        simMode = {u"none"_s};
    }

    // The request rows as "serial|type|attributes|completed", then "|reply" when asked.
    QStringList requestsLeft(bool withReply = false)
    {
        QStringList out;
        Rows r = fx->db.read(u"SELECT TrmReq_SyI_Serialnumber || '|' || TrmReq_Requesttype || "
                             u"'|' || TrmReq_Attributes || '|' || TrmReq_Requestcompleted%1 AS r "
                             u"FROM Terminal_Requests ORDER BY 1"_s.arg(
                                 withReply ? u" || '|' || TrmReq_Requestreply"_s : QString()));
        while (r.next())
            out << r.textOr(u"r");
        return out;
    }

    // A shown dialog as one line: a prompt or list with its entries, a message with its icon.
    static QString ask(const QString& title, const QString& text, const QStringList& items = {})
    {
        return title + u" / "_s + text +
               (items.isEmpty() ? QString() : u" / "_s + items.join(u','));
    }
    static QString say(Icon icon, const QString& title, const QString& text)
    {
        return u"(%1) "_s.arg(int(icon)) + ask(title, text);
    }

private slots:
    void initTestCase()
    {
        fx = std::make_unique<GuiFixture>();
        SX_REQUIRE_FIXTURE(*fx);
        // The demo fleet: SX100002 a 1B at 1.14 (not extended), code 0042, point 2 not in use;
        // SX100001 extended, SX100004 offline, SX100005 being programmed. SX100006 has no point
        // in use here, and point 1 of SX100002 is nameless.
        sim::SeedOptions o;
        o.days = 1;
        const DbError e = sim::seedDemo(fx->db, o).error;
        QVERIFY2(!e.isError(), qPrintable(e.description));
        QVERIFY(fx->exec(u"UPDATE Sensors_Info SET SeI_Used=0 WHERE SeI_SyI_Serialnumber="
                         u"'SX100006';\nUPDATE Sensors_Info SET SeI_Sensorname=NULL WHERE "
                         u"SeI_SyI_Serialnumber='SX100002' AND SeI_Sensornumber=1"_s));
        host = std::make_unique<TestHost>();
        host->show();
    }

    void cleanupTestCase() { stopSimulator(); }

    void cleanup()
    {
        if (!fx)
            return;
        QVERIFY2(!fx->dialogs.anyUnexpected(), "a dialog without a scripted answer");
        QCOMPARE(fx->dialogs.pendingAnswers(), 0);
        QVERIFY(host->isEnabled());
        QVERIFY(!GuiFixture::waitWindowShown());
        QVERIFY(requestsLeft().isEmpty());
    }

    void commands_data()
    {
        QTest::addColumn<Case>("c");
        const auto row = [](const char* name, auto run, const QString& serial,
                            const QList<int>& before, const QString& answers, const QString& sent,
                            const QStringList& dialogs, const QString& check, int refreshes,
                            const QStringList& simOptions = {}, const QString& meanwhile = {},
                            const QStringList& left = {}) {
            QTest::newRow(name) << Case{run,   serial,    before,     answers,   sent, dialogs,
                                        check, refreshes, simOptions, meanwhile, left};
        };
        using namespace commands;
        const auto relayCmd = runRelayCommand, notifyCmd = runNotificationCommand,
                   bypassCmd = runBypassCommand;
        const QString a1 = u"SX100002"_s, c1 = u"SX100001"_s;
        const QString relayAsk = ask(relayTitle(), securityCodePrompt());
        const QString entryAsk = ask(notificationTitle(), entryCodePrompt());
        const QString bypassAsk = ask(bypassTitle(), securityCodePrompt());
        const QString twoStates = ask(notificationSelectionCaption(), notificationSelectionLabel(),
                                      {u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s, u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s});
        const QString delayAsk = ask(notificationTitle(), delayPrompt(), {u"1"_s});
        // Point 2 is not in use; the other names are the demo fleet's.
        const QString points =
            ask(bypassTitle(), u"Παρακαλώ επιλέξτε σημείο και κατάσταση"_s,
                u"[1] Ανώνυμη ζώνη;[3] Εξωτερικός χώρος;[4] Πίεση δικτύου;"
                u"[5] Αποθήκη φαρμάκων;[6] Δεξαμενή;|;ΕΝΕΡΓΟΠΟΙΗΜΕΝΟ;ΠΑΡΑΚΑΜΨΗ"_s.split(u';'));
        const QString relay = u"SyCC_RelayBcondition="_s, alarm = u"SyCC_Alarmcondition="_s;
        const QString code = u"c0042"_s, sentOn = u"2|0042;1"_s, relayOn = relay + u"1"_s;
        const QString relayOff = relay + u"0"_s;
        const auto relaySays = [&](Icon icon, const QString& text, const QString& title = {}) {
            return QStringList{relayAsk, say(icon, title.isEmpty() ? relayTitle() : title, text)};
        };
        const auto delaySays = [&](const QString& text) {
            return QStringList{entryAsk, twoStates, delayAsk,
                               say(Icon::Exclamation, appTitle(), text)};
        };
        // The leading zero of the code is kept.
        row("relay shown off is switched on", relayCmd, a1, {0, 0}, code, sentOn, {relayAsk},
            relayOn, 1);
        // Replies that carry nothing out.
        row("reply 2, wrong code", relayCmd, a1, {0, 0}, u"c9999"_s, u"2|9999;1"_s,
            relaySays(Icon::Critical, kBadCode), relayOff, 1);
        row("reply 4, unit programming", relayCmd, u"SX100005"_s, {0, 0}, u"c1234"_s, u"2|1234;1"_s,
            relaySays(Icon::Exclamation, kUnitProgramming), relayOff, 1);
        row("reply 6 forced, as 5", relayCmd, a1, {0, 0}, code, sentOn,
            relaySays(Icon::Exclamation, kNotAvailable), relayOff, 1, {u"--reply"_s, u"6"_s});
        // Automatic flips between off (2) and on (3) by the unit's own timetable; no delay asked.
        row("extended unit, automatic", notifyCmd, c1, {0, 0}, u"c1234 s2,-1"_s, u"1|1234;2"_s,
            {ask(notificationTitle(), securityCodePrompt()),
             ask(u"Επιλογή κατάστασης τηλεφωνικής ειδοποίησης"_s, u"Παρακαλώ επιλέξτε"_s,
                 {u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s, u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s, u"ΑΥΤΟΜΑΤΗ"_s})},
            alarm + u"2|3"_s, 1);
        row("1B at 1.14, enabled, 24 h", notifyCmd, a1, {0, 0}, u"c0042 s1,-1 i24"_s,
            u"1|0042;1;24"_s, {entryAsk, twoStates, delayAsk}, alarm + u"1"_s, 1);
        row("disabled sends 0 hours, no question", notifyCmd, a1, {1, 0}, u"c0042 s0,-1"_s,
            u"1|0042;0;0"_s, {entryAsk, twoStates}, alarm + u"0"_s, 1);
        row("bypass lists the points in use", bypassCmd, a1, {0, 0}, u"c0042 s1,1"_s,
            u"3|0042;3;1"_s, {bypassAsk, points}, {}, 1);
        // Refused before anything is written.
        const QString delayRefused = u"c0042 s1,-1 i"_s;
        row("delay 25", notifyCmd, a1, {}, delayRefused + u"25"_s, {}, delaySays(kDelayRange), {},
            0);
        row("delay 1.5", notifyCmd, a1, {}, delayRefused + u"1.5"_s, {}, delaySays(kBadChoice), {},
            0);
        // One code check per command: they share the prompt and its checks.
        row("relay, code of 3 digits", relayCmd, a1, {}, u"c123"_s, {},
            relaySays(Icon::Exclamation, kCodeLength), {}, 0);
        row("notification, code 12a4", notifyCmd, a1, {}, u"c12a4"_s, {},
            {entryAsk, say(Icon::Exclamation, notificationTitle(), kCodeDigits)}, {}, 0);
        row("notification, selection cancelled", notifyCmd, a1, {}, u"c0042 s-"_s, {},
            {entryAsk, twoStates}, {}, 0);
        row("bypass, selection cancelled", bypassCmd, a1, {}, u"c0042 s-"_s, {},
            {bypassAsk, points}, {}, 0);
        row("bypass without points in use, no code asked", bypassCmd, u"SX100006"_s, {}, {}, {},
            {say(Icon::Exclamation, bypassTitle(), kNoPointsInUse)}, {}, 0);
        row("missing unit is unreachable", relayCmd, u"NO-SUCH"_s, {}, {}, {},
            {say(Icon::Critical, relayTitle(), kUnitOffline)}, {}, 1);
        // An answered row like ours, left from an earlier command (reply 2), is not our
        // answer; it is another console's to remove, unless rows name no console.
        row("a leftover answer is not ours", relayCmd, a1, {0, 0}, code, sentOn, {relayAsk},
            relayOn, 1, {}, u"leftover"_s, {u"SX100002|2|0042;1|1"_s});
        row("without owners a leftover answer goes", relayCmd, a1, {0, 0}, code, sentOn, {relayAsk},
            relayOn, 1, {}, u"old leftover"_s);
        // Without a server: someone else (a server tidying up) removes the row while we wait,
        // or the table is gone; a failed query is reported and the window stays usable.
        const QStringList stopped{u"stopped"_s};
        row("vanished row ends without message", relayCmd, a1, {}, code, sentOn, {relayAsk}, {}, 1,
            stopped, u"delete later"_s);
        // The test answers 2 itself. The row cannot be removed after the answer and the
        // console ends: the next start removes it.
        const QStringList wrongCode = relaySays(Icon::Critical, kBadCode);
        row("a row left behind goes at the next start", relayCmd, a1, {}, code, sentOn,
            wrongCode + QStringList{say(Icon::Critical, appTitle(), u"*"_s)}, {}, 1, stopped,
            u"restart"_s, {u"SX100002|2|0042;1|1"_s});
        row("the poll fails", relayCmd, a1, {}, code, sentOn,
            relaySays(Icon::Critical, u"*"_s, appTitle()), {}, 1, stopped, u"drop later"_s);
        row("the write fails", relayCmd, a1, {}, code, {},
            relaySays(Icon::Critical, u"*"_s, appTitle()), {}, 1, stopped, u"drop"_s);
        // Nobody answers: a minute on, whole seconds by the clock, the row is taken back.
        row("silent server times out", relayCmd, a1, {}, code, sentOn,
            relaySays(Icon::Critical, kNoAnswer), {}, 1, {u"--no-answer"_s}, u"silent"_s);
    }

    void commands()
    {
        QFETCH(Case, c);
        fx->clock.runFaster(1);
        const QString &serial = c.serial, &sent = c.sent, &meanwhile = c.meanwhile;
        QVERIFY(useSimulator(c.simOptions));
        const int reports = fx->failures->reportsShown();
        const auto drop = [this] { (void)fx->db.exec(u"DROP TABLE Terminal_Requests"_s); };
        // The console that ends mid-way, and the file it leaves for the next start.
        std::unique_ptr<QueryFailureReporter> ending;
        const QString pendingFile = fx->settings->pendingStatementsFile();
        if (meanwhile.endsWith(u"leftover")) {
            // A database of an older server: its rows name no console.
            if (meanwhile == u"old leftover")
                QVERIFY(
                    fx->exec(u"ALTER TABLE Terminal_Requests DROP COLUMN TrmReq_Requestowner"_s));
            fx->ctx.requestOwnerColumn = {};
            QVERIFY(fx->exec(u"INSERT INTO Terminal_Requests (TrmReq_SyI_Serialnumber, "
                             u"TrmReq_Requesttype, TrmReq_Attributes, TrmReq_Requestcompleted, "
                             u"TrmReq_Requestreply) VALUES ('SX100002', 2, '0042;1', 1, 2)"_s));
        } else if (meanwhile == u"restart") {
            ending = std::make_unique<QueryFailureReporter>(fx->ctx);
            ending->keepPendingIn(pendingFile);
            fx->ctx.failures = ending.get();
        } else if (meanwhile == u"drop")
            drop();
        else if (meanwhile == u"drop later")
            QTimer::singleShot(200, drop);
        else if (meanwhile == u"silent")
            fx->clock.runFaster(20); // twenty seconds pass for every real one
        else if (meanwhile == u"delete later")
            QTimer::singleShot(700, [this] { (void)fx->exec(u"DELETE FROM Terminal_Requests"_s); });
        if (!c.before.isEmpty()) {
            QVERIFY(fx->exec(
                u"UPDATE Systems_Current_Condition SET SyCC_Alarmcondition=%1, "
                u"SyCC_RelayBcondition=%2 WHERE SyCC_SyI_Serialnumber=%3"_s.arg(c.before[0])
                    .arg(c.before[1])
                    .arg(sqlQuote(serial))));
            host->caption = c.before[1] ? kRelayOn : kRelayOff;
        }
        for (const QString& a : c.answers.split(u' ', Qt::SkipEmptyParts)) {
            const QString v = a.mid(1);
            const auto typed = v == u"-" ? std::nullopt : std::optional<QString>(v);
            if (a.startsWith(u'c'))
                fx->dialogs.answerCode(typed);
            else if (a.startsWith(u'i'))
                fx->dialogs.answerInput(typed);
            else
                fx->dialogs.answerSelection(
                    typed ? std::optional(Selection{v.section(u',', 0, 0).toInt(),
                                                    v.section(u',', 1).toInt()})
                          : std::nullopt);
        }
        // The window stays disabled while a selection list is up.
        bool disabledAtSelection = true;
        QDateTime messageAt;
        fx->dialogs.onShown = [&](const ScriptedDialogs::Shown& s) {
            disabledAtSelection &= s.kind != u"selection" || !host->isEnabled();
            if (s.kind == u"message")
                messageAt = fx->clock.now();
            if (s.text == kBadCode && meanwhile == u"restart") // nothing to remove after the answer
                QVERIFY(fx->exec(u"ALTER TABLE Terminal_Requests RENAME TO Requests_away"_s));
        };
        host->serial = serial;
        host->refreshes = 0;
        fx->dialogs.clearShown();
        // What happens while the command runs: the request rows that appear, and the window
        // and the wait window from the moment our row is first seen.
        const QString own = serial + u"|"_s + sent + u"|0|0"_s;
        QStringList rows; // "serial|type|attributes|completed|reply", each once
        bool disabledAndWaiting = true;
        QDateTime firstSeen;
        QTimer watch;
        QObject::connect(&watch, &QTimer::timeout, [&] {
            const QStringList now = requestsLeft(true);
            if (now.isEmpty())
                return;
            for (const QString& row : now)
                if (!rows.contains(row))
                    rows << row;
            if (!firstSeen.isValid()) {
                if (!rows.contains(own))
                    return; // only rows of others so far
                firstSeen = fx->clock.now();
                if (meanwhile == u"restart") // as the server would
                    QVERIFY(fx->exec(u"UPDATE Terminal_Requests SET TrmReq_Requestcompleted=1, "
                                     u"TrmReq_Requestreply=2"_s));
            }
            disabledAndWaiting &= !host->isEnabled() && GuiFixture::waitWindowShown();
        });
        watch.start(20);
        c.run(fx->ctx, *host);
        watch.stop();
        fx->dialogs.onShown = {};
        // Put the table back as it was before anything can fail.
        if (ending) {
            fx->ctx.failures = fx->failures.get();
            ending.reset();
            QVERIFY(fx->exec(u"ALTER TABLE Requests_away RENAME TO Terminal_Requests"_s));
        }
        const QStringList leftOver = meanwhile.startsWith(u"drop") ? QStringList() : requestsLeft();
        if (meanwhile == u"old leftover") {
            QVERIFY(!sim::ensureRequestOwnerColumn(fx->db).isError());
            fx->ctx.requestOwnerColumn = {};
        }
        if (meanwhile.startsWith(u"drop")) {
            fx->failures->clear();
            QVERIFY(!sim::createSchema(fx->db).isError());
        }
        if (meanwhile == u"restart") {
            QVERIFY(QFile::exists(pendingFile));
            QueryFailureReporter next(fx->ctx);
            next.keepPendingIn(pendingFile);
            next.runPending();
            QTRY_VERIFY(requestsLeft().isEmpty());
            QTRY_VERIFY(!QFile::exists(pendingFile));
        }
        if (!leftOver.isEmpty())
            QVERIFY(fx->exec(u"DELETE FROM Terminal_Requests"_s));

        QVERIFY2(sent.isEmpty() ? rows.isEmpty() : rows.contains(own), qPrintable(rows.join(u' ')));
        QVERIFY(disabledAndWaiting);
        QVERIFY(disabledAtSelection);
        QStringList shown;
        for (const auto& s : fx->dialogs.shown())
            shown << (s.kind == u"message" ? say(s.icon, s.title, s.text)
                                           : ask(s.title, s.text, s.items));
        for (qsizetype i = 0; i < qMin(shown.size(), c.dialogs.size()); ++i) {
            if (c.dialogs[i].endsWith(u'*')) // the database's own words follow
                shown[i] = shown[i].left(c.dialogs[i].size() - 1) + u'*';
        }
        QCOMPARE(shown, c.dialogs);
        QCOMPARE(host->refreshes, c.refreshes);
        QCOMPARE(fx->failures->reportsShown(), reports + meanwhile.startsWith(u"drop"));
        QCOMPARE(leftOver, c.left);
        if (meanwhile == u"silent") {
            // Polls are 10 s apart here and the row is first seen up to 0.4 s late.
            const qint64 waited = firstSeen.msecsTo(messageAt);
            QVERIFY2(waited > 59000 && waited <= 72000, qPrintable(QString::number(waited)));
        }
        if (!c.check.isEmpty()) {
            Rows r = fx->db.readFirst(
                u"SELECT %1 AS v FROM Systems_Current_Condition WHERE "
                u"SyCC_SyI_Serialnumber=%2"_s.arg(c.check.section(u'=', 0, 0), sqlQuote(serial)));
            const QString now = r.next() ? QString::number(r.intOr(u"v", -99)) : u"none"_s;
            QVERIFY2(c.check.section(u'=', 1).split(u'|').contains(now), qPrintable(now));
        }
    }
};

QTEST_MAIN(TestUnitCommands)
#include "tst_unitcommands.moc"
