#include "GuiFixture.h"
#include "model/Dialect.h"
#include "sim/UnitCodes.h"
#include "views/current/CommandHost.h"
#include "views/current/CommandRules.h"
#include "views/current/UnitCommands.h"

#include <QProcess>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <memory>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;
using Icon = DialogService::Icon;
using Selection = DialogService::Selection;

namespace {

// The main window as the commands see it.
class TestHost : public QWidget, public CommandHost {
public:
    QString serial;
    QString caption = u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s;
    int refreshes = 0;

    QWidget* commandWindow() override { return this; }
    QString commandSerial() const override { return serial; }
    QString relayCaption() const override { return caption; }
    void refreshNow() override { ++refreshes; }
};

// What happened while a command ran: the request rows that appeared and the
// state of the window and the wait window meanwhile.
class RequestWatch {
public:
    RequestWatch(Database& db, QWidget& host, Clock& clock) : m_db(db), m_host(host), m_clock(clock)
    {
        QObject::connect(&m_timer, &QTimer::timeout, [this] { look(); });
        m_timer.start(20);
    }

    QStringList rows; // "serial|type|attributes|completed|reply", each once
    bool disabledWhileRowExisted = true;
    bool waitShownWhileRowExisted = true;
    QDateTime firstSeen;

private:
    void look()
    {
        Rows r = m_db.read(u"SELECT TrmReq_SyI_Serialnumber, TrmReq_Requesttype, "
                           u"TrmReq_Attributes, TrmReq_Requestcompleted, TrmReq_Requestreply "
                           u"FROM Terminal_Requests"_s);
        bool any = false;
        while (r.next()) {
            any = true;
            const auto n = [&r](QStringView c) { return QString::number(r.intOr(c)); };
            const QString row =
                QStringList{r.textOr(u"TrmReq_SyI_Serialnumber"), n(u"TrmReq_Requesttype"),
                            r.textOr(u"TrmReq_Attributes"), n(u"TrmReq_Requestcompleted"),
                            n(u"TrmReq_Requestreply")}
                    .join(u'|');
            if (!rows.contains(row))
                rows << row;
        }
        if (!any)
            return;
        if (!firstSeen.isValid())
            firstSeen = m_clock.now();
        disabledWhileRowExisted = disabledWhileRowExisted && !m_host.isEnabled();
        waitShownWhileRowExisted = waitShownWhileRowExisted && GuiFixture::waitWindowShown();
    }

    Database& m_db;
    QWidget& m_host;
    Clock& m_clock;
    QTimer m_timer;
};

constexpr auto kSimExe = SX_SIM_EXE;

} // namespace

Q_DECLARE_METATYPE(std::optional<QString>)

class TestUnitCommands : public QObject {
    Q_OBJECT

    std::unique_ptr<GuiFixture> fx;
    std::unique_ptr<TestHost> host;
    std::unique_ptr<QProcess> sim;
    std::unique_ptr<RequestWatch> watch;
    QStringList simMode{u"none"_s};

    // (Re)starts the simulator with extra run options unless it already runs so.
    bool useSimulator(const QStringList& extra)
    {
        if (sim && simMode == extra)
            return true;
        stopSimulator();
        sim = std::make_unique<QProcess>();
        sim->setProcessChannelMode(QProcess::MergedChannels);
        sim->start(QString::fromUtf8(kSimExe),
                   QStringList{u"--db"_s, fx->scratch.url(), u"run"_s, u"--interval"_s, u"200"_s,
                               u"--answer-delay"_s, u"100"_s} +
                       extra);
        if (!sim->waitForStarted(10000))
            return false;
        QByteArray out;
        while (!out.contains("running on")) {
            if (!sim->waitForReadyRead(10000)) {
                qWarning("simulator: %s", out.constData());
                return false;
            }
            out += sim->readAll();
        }
        simMode = extra;
        return true;
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

    int requestRows()
    {
        Rows r = fx->db.readFirst(u"SELECT COUNT(*) AS n FROM Terminal_Requests"_s);
        return r.next() ? int(r.intOr(u"n", -1)) : -1;
    }

    qint64 conditionOf(const QString& serial, const QString& column)
    {
        Rows r = fx->db.readFirst(
            u"SELECT "_s + column +
            u" FROM Systems_Current_Condition WHERE SyCC_SyI_Serialnumber="_s + sqlQuote(serial));
        return r.next() ? r.intOr(column, -99) : -100;
    }

    void setCondition(const QString& serial, int alarm, int relay)
    {
        QVERIFY(fx->exec(u"UPDATE Systems_Current_Condition SET SyCC_Alarmcondition=%1, "
                         u"SyCC_RelayBcondition=%2 WHERE SyCC_SyI_Serialnumber=%3"_s.arg(alarm)
                             .arg(relay)
                             .arg(sqlQuote(serial))));
    }

    void addUnit(const QString& serial, const QString& model, const QString& softver, int online,
                 const QString& code)
    {
        QVERIFY(fx->exec(
            u"INSERT INTO Systems_Info (SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, "
            u"SyI_Used, SyI_Online, SyI_Softver, SyI_Model, SyI_EventsTable_Pagebyteswritt, "
            u"SyI_EventsTable_Lastpagesn) VALUES (%1, '1001', 'Μονάδα', 1, %2, %3, %4, 0, 0);\n"
            u"INSERT INTO Systems_Current_Condition (SyCC_SyI_Serialnumber, SyCC_Alarmcondition, "
            u"SyCC_RelayBcondition, SyCC_Rtc) VALUES (%1, 0, 0, '2026-03-01 10:00:00')"_s
                .arg(sqlQuote(serial))
                .arg(online)
                .arg(sqlQuote(softver), sqlQuote(model))));
        QVERIFY(!sim::storeUnitCode(fx->db, serial, code).isError());
    }

    void addPoint(const QString& serial, int number, const QString& name, int used)
    {
        QVERIFY(fx->exec(
            u"INSERT INTO Sensors_Info (SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensorname, "
            u"SeI_Sensortype, SeI_Used, SeI_Maxlimit, SeI_Minlimit, SeI_Maxlimitused, "
            u"SeI_Minlimitused, SeI_RecordsTable_Pagebyteswrit, SeI_RecordsTable_Lastpagesn) "
            u"VALUES (%1, %2, %3, 0, %4, 30, 0, 1, 1, 0, 0);\n"
            u"INSERT INTO Sensors_Current_Condition (SeCC_SyI_Serialnumber, SeCC_Sensornumber, "
            u"SeCC_Currvalue, SeCC_Outofbounds, SeCC_Alarmcondition, SeCC_Notpowered) VALUES "
            u"(%1, %2, 20, 0, 0, 0)"_s.arg(sqlQuote(serial))
                .arg(number)
                .arg(sqlQuote(name))
                .arg(used)));
    }

    // Runs one command for a unit and returns the request rows seen meanwhile.
    QStringList run(void (*command)(AppContext&, CommandHost&), const QString& serial)
    {
        host->serial = serial;
        host->refreshes = 0;
        fx->dialogs.clearShown();
        watch = std::make_unique<RequestWatch>(fx->db, *host, fx->clock);
        command(fx->ctx, *host);
        return watch->rows;
    }

    bool recreateRequestTable()
    {
        fx->failures->clear();
        return fx->exec(u"CREATE TABLE Terminal_Requests (TrmReq_SyI_Serialnumber TEXT, "
                        u"TrmReq_Requesttype SMALLINT, TrmReq_Attributes TEXT, "
                        u"TrmReq_Requestcompleted SMALLINT, TrmReq_Requestreply SMALLINT)"_s);
    }

    void expectMessage(Icon icon, const QString& title, const QString& text = {})
    {
        const auto m = fx->dialogs.messages();
        QCOMPARE(m.size(), 1);
        QCOMPARE(m.at(0).icon, icon);
        QCOMPARE(m.at(0).title, title);
        if (!text.isNull())
            QCOMPARE(m.at(0).text, text);
    }

    // Whether the window was disabled while the selection list was up.
    void watchSelection(bool& disabled)
    {
        fx->dialogs.onShown = [this, &disabled](const ScriptedDialogs::Shown& s) {
            if (s.kind == u"selection")
                disabled = !host->isEnabled();
        };
    }

private slots:
    void initTestCase()
    {
        fx = std::make_unique<GuiFixture>();
        SX_REQUIRE_FIXTURE(*fx);
        QVERIFY(!sim::ensureUnitCodeTable(fx->db).isError());
        // Non-extended (1A below 1.15), code with a leading zero, two points in use.
        addUnit(u"SXA1"_s, u"SENTORAX-1A"_s, u"1.14"_s, 1, u"0042"_s);
        addPoint(u"SXA1"_s, 1, u"Ψυγείο"_s, 1);
        addPoint(u"SXA1"_s, 2, QString(), 1);
        addPoint(u"SXA1"_s, 3, u"Εκτός χρήσης"_s, 0);
        // Extended by model, no point in use.
        addUnit(u"SXC1"_s, u"SENTORAX-1C"_s, u"1.22"_s, 1, u"1234"_s);
        addPoint(u"SXC1"_s, 1, u"Αχρησιμοποίητο"_s, 0);
        addUnit(u"SXOFF"_s, u"SENTORAX-1D"_s, u"1.22"_s, 0, u"1234"_s);
        addUnit(u"SXPRG"_s, u"SENTORAX-1D"_s, u"1.22"_s, 2, u"1234"_s);
        host = std::make_unique<TestHost>();
        host->show();
    }

    void cleanupTestCase()
    {
        stopSimulator();
        watch.reset();
        host.reset();
        fx.reset();
    }

    void init()
    {
        if (fx)
            fx->clock.runFaster(1);
    }

    void cleanup()
    {
        if (!fx)
            return;
        QVERIFY2(!fx->dialogs.anyUnexpected(), "a dialog without a scripted answer");
        QCOMPARE(fx->dialogs.pendingAnswers(), 0);
        QVERIFY(host->isEnabled());
        QVERIFY(!GuiFixture::waitWindowShown());
        QCOMPARE(requestRows(), 0);
    }

    void relayFollowsTheShownCaption_data()
    {
        QTest::addColumn<QString>("caption");
        QTest::addColumn<int>("relay");
        QTest::newRow("shown off is switched on") << u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s << 0;
        QTest::newRow("shown on is switched off") << u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s << 1;
    }

    void relayFollowsTheShownCaption()
    {
        QFETCH(QString, caption);
        QFETCH(int, relay);
        QVERIFY(useSimulator({}));
        setCondition(u"SXA1"_s, 0, relay);
        host->caption = caption;
        fx->dialogs.answerCode(u"0042"_s); // the leading zero is kept
        const QStringList rows = run(runRelayCommand, u"SXA1"_s);
        const QString sent = u"SXA1|2|0042;%1|"_s.arg(1 - relay);
        QCOMPARE(rows.value(0), sent + u"0|0"_s);
        QVERIFY2(rows.contains(sent + u"1|1"_s), qPrintable(rows.join(u' ')));
        QVERIFY(watch->disabledWhileRowExisted && watch->waitShownWhileRowExisted);
        const auto shown = fx->dialogs.shown();
        QCOMPARE(shown.size(), 1); // the code prompt, no message
        QCOMPARE(shown.at(0).title, commands::relayTitle());
        QCOMPARE(shown.at(0).text, commands::securityCodePrompt());
        QCOMPARE(host->refreshes, 1);
        QCOMPARE(conditionOf(u"SXA1"_s, u"SyCC_RelayBcondition"_s), 1 - relay);
    }

    void replyMessages_data()
    {
        QTest::addColumn<QStringList>("simOptions");
        QTest::addColumn<QString>("serial");
        QTest::addColumn<QString>("code");
        QTest::addColumn<int>("icon");
        QTest::addColumn<QString>("text");

        const auto row = [](const char* name, const QStringList& options, const QString& serial,
                            const QString& code, Icon icon, const QString& text) {
            QTest::newRow(name) << options << serial << code << int(icon) << text;
        };
        row("2 wrong code", {}, u"SXA1"_s, u"9999"_s, Icon::Critical, u"ΛΑΘΟΣ ΚΩΔΙΚΟΣ"_s);
        row("3 unit offline", {}, u"SXOFF"_s, u"1234"_s, Icon::Critical,
            u"ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ ΜΗ ΔΙΑΘΕΣΙΜΗ"_s);
        row("4 unit programming", {}, u"SXPRG"_s, u"1234"_s, Icon::Exclamation,
            u"ΣΥΣΤΗΜΑ ΣΕ ΔΙΑΔΙΚΑΣΙΑ ΠΡΟΓΡΑΜΜΑΤΙΣΜΟΥ"_s);
        row("6 forced, as 5", {u"--reply"_s, u"6"_s}, u"SXA1"_s, u"0042"_s, Icon::Exclamation,
            u"Η συγκεκριμένη λειτουργία δέν είναι διαθέσιμη στο σύστημα"_s);
    }

    void replyMessages()
    {
        QFETCH(QStringList, simOptions);
        QFETCH(QString, serial);
        QFETCH(QString, code);
        QFETCH(int, icon);
        QFETCH(QString, text);
        QVERIFY(useSimulator(simOptions));
        setCondition(serial, 0, 0);
        host->caption = u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s;
        fx->dialogs.answerCode(code);
        const QStringList rows = run(runRelayCommand, serial);
        QCOMPARE(rows.value(0), serial + u"|2|"_s + code + u";1|0|0"_s);
        expectMessage(Icon(icon), commands::relayTitle(), text);
        QCOMPARE(host->refreshes, 1);
        // Nothing was carried out.
        QCOMPARE(conditionOf(serial, u"SyCC_RelayBcondition"_s), 0);
    }

    void extendedUnitOffersAutomaticWithoutDelay()
    {
        QVERIFY(useSimulator({}));
        setCondition(u"SXC1"_s, 0, 0);
        bool disabledDuringSelection = false;
        watchSelection(disabledDuringSelection);
        fx->dialogs.answerCode(u"1234"_s);
        fx->dialogs.answerSelection(Selection{2, -1});
        const QStringList rows = run(runNotificationCommand, u"SXC1"_s);
        fx->dialogs.onShown = {};
        QCOMPARE(rows.value(0), u"SXC1|1|1234;2|0|0"_s);
        const auto shown = fx->dialogs.shown();
        QCOMPARE(shown.size(), 2); // no delay question, no message
        QCOMPARE(shown.at(0).title, commands::notificationTitle());
        QCOMPARE(shown.at(1).title, u"Επιλογή κατάστασης τηλεφωνικής ειδοποίησης"_s);
        QCOMPARE(shown.at(1).text, u"Παρακαλώ επιλέξτε"_s);
        QCOMPARE(shown.at(1).items,
                 (QStringList{u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s, u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s, u"ΑΥΤΟΜΑΤΗ"_s}));
        QVERIFY(disabledDuringSelection);
        // Automatic flips between off (2) and on (3) by the unit's own timetable.
        const qint64 alarm = conditionOf(u"SXC1"_s, u"SyCC_Alarmcondition"_s);
        QVERIFY2(alarm == 2 || alarm == 3, qPrintable(QString::number(alarm)));
        QCOMPARE(host->refreshes, 1);
    }

    void otherUnitsGetTwoStatesAndTheDelay_data()
    {
        QTest::addColumn<int>("entry");
        QTest::addColumn<QString>("delay");
        QTest::addColumn<QString>("sent");
        QTest::newRow("1A at 1.14, enabled, 24 h") << 1 << u"24"_s << u"0042;1;24"_s;
        QTest::newRow("disabled sends 0 hours, no question") << 0 << QString() << u"0042;0;0"_s;
    }

    void otherUnitsGetTwoStatesAndTheDelay()
    {
        QFETCH(int, entry);
        QFETCH(QString, delay);
        QFETCH(QString, sent);
        const QString serial = u"SXA1"_s;
        QVERIFY(useSimulator({}));
        setCondition(serial, 1 - entry, 0);
        fx->dialogs.answerCode(u"0042"_s);
        fx->dialogs.answerSelection(Selection{entry, -1});
        if (!delay.isNull())
            fx->dialogs.answerInput(delay);
        const QStringList rows = run(runNotificationCommand, serial);
        QCOMPARE(rows.value(0), serial + u"|1|"_s + sent + u"|0|0"_s);
        const auto shown = fx->dialogs.shown();
        QCOMPARE(shown.at(0).text, commands::entryCodePrompt());
        QCOMPARE(shown.at(1).items, (QStringList{u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s, u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s}));
        if (!delay.isNull()) {
            QCOMPARE(shown.size(), 3);
            QCOMPARE(shown.at(2).title, commands::notificationTitle());
            QCOMPARE(shown.at(2).text,
                     u"Παρακαλώ εισάγετε την καθυστέρηση τηλεφωνικής ειδοποίησης σε ΩΡΕΣ"_s);
            QCOMPARE(shown.at(2).items, QStringList{u"1"_s});
        } else {
            QCOMPARE(shown.size(), 2);
        }
        QCOMPARE(conditionOf(serial, u"SyCC_Alarmcondition"_s), entry);
        QCOMPARE(host->refreshes, 1);
    }

    void refusedDelayWritesNothing_data()
    {
        QTest::addColumn<std::optional<QString>>("typed");
        QTest::addColumn<QString>("text");

        const QString range =
            u"Η καθυστέρηση τηλεφωνικής ειδοποίησης πρέπει να είναι μεταξύ 0 και 24 ΩΡΕΣ"_s;
        QTest::newRow("25") << std::optional<QString>(u"25"_s) << range;
        QTest::newRow("cancelled") << std::optional<QString>() << range;
        QTest::newRow("1.5") << std::optional<QString>(u"1.5"_s) << u"ΛΑΘΟΣ ΕΠΙΛΟΓΗ"_s;
    }

    void refusedDelayWritesNothing()
    {
        QFETCH(std::optional<QString>, typed);
        QFETCH(QString, text);
        fx->dialogs.answerCode(u"0042"_s);
        fx->dialogs.answerSelection(Selection{1, -1});
        fx->dialogs.answerInput(typed);
        QCOMPARE(run(runNotificationCommand, u"SXA1"_s), QStringList());
        expectMessage(Icon::Exclamation, appTitle(), text);
        QCOMPARE(host->refreshes, 0);
    }

    void codeChecksWriteNothing_data()
    {
        QTest::addColumn<std::optional<QString>>("typed");
        QTest::addColumn<QString>("text");

        const QString length = u"Ο κωδικός πρέπει να έχει μήκος απο 4 εώς 8 νούμερα"_s;
        QTest::newRow("3 digits") << std::optional<QString>(u"123"_s) << length;
        QTest::newRow("12a4") << std::optional<QString>(u"12a4"_s)
                              << u"Ο κωδικός πρέπει να αποτελείται μόνο απο αριθμούς"_s;
        QTest::newRow("cancelled, silent") << std::optional<QString>() << QString();
    }

    void codeChecksWriteNothing()
    {
        QFETCH(std::optional<QString>, typed);
        QFETCH(QString, text);
        using Command = void (*)(AppContext&, CommandHost&);
        const QList<std::pair<Command, QString>> all{
            {runRelayCommand, commands::relayTitle()},
            {runNotificationCommand, commands::notificationTitle()},
            {runBypassCommand, commands::bypassTitle()}};
        for (const auto& [command, title] : all) {
            fx->dialogs.answerCode(typed);
            QCOMPARE(run(command, u"SXA1"_s), QStringList());
            const auto shown = fx->dialogs.shown();
            QCOMPARE(shown.size(), text.isNull() ? 1 : 2);
            QCOMPARE(shown.at(0).title, title);
            if (!text.isNull()) {
                QCOMPARE(shown.at(1).icon, Icon::Exclamation);
                QCOMPARE(shown.at(1).title, title);
                QCOMPARE(shown.at(1).text, text);
            }
            QCOMPARE(host->refreshes, 0);
        }
    }

    void bypassListsPointsInUse()
    {
        QVERIFY(useSimulator({}));
        bool disabledDuringSelection = false;
        watchSelection(disabledDuringSelection);
        fx->dialogs.answerCode(u"0042"_s);
        fx->dialogs.answerSelection(Selection{1, 1});
        const QStringList rows = run(runBypassCommand, u"SXA1"_s);
        fx->dialogs.onShown = {};
        QCOMPARE(rows.value(0), u"SXA1|3|0042;2;1|0|0"_s);
        const auto shown = fx->dialogs.shown();
        QCOMPARE(shown.size(), 2);
        QCOMPARE(shown.at(1).title, u"Αλλαγή κατάστασης παράκαμψης σημείου"_s);
        QCOMPARE(shown.at(1).text, u"Παρακαλώ επιλέξτε σημείο και κατάσταση"_s);
        QCOMPARE(shown.at(1).items, (QStringList{u"[1] Ψυγείο"_s, u"[2] Ανώνυμη ζώνη"_s, u"|"_s,
                                                 u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΟ"_s, u"ΠΑΡΑΚΑΜΨΗ"_s}));
        QVERIFY(disabledDuringSelection);
        QCOMPARE(host->refreshes, 1);
    }

    void bypassWithoutPointsInUse()
    {
        QCOMPARE(run(runBypassCommand, u"SXC1"_s), QStringList());
        QCOMPARE(fx->dialogs.shown().size(), 1); // no code asked
        expectMessage(Icon::Exclamation, commands::bypassTitle(),
                      u"Δεν υπάρχουν ενεργοποιημένα σημεία προς παρακολούθηση στο σύστημα !"_s);
        QCOMPARE(host->refreshes, 0);
    }

    void cancelledSelectionWritesNothing()
    {
        for (auto command : {runNotificationCommand, runBypassCommand}) {
            fx->dialogs.answerCode(u"0042"_s);
            fx->dialogs.answerSelection(std::nullopt);
            QCOMPARE(run(command, u"SXA1"_s), QStringList());
            QVERIFY(fx->dialogs.messages().isEmpty());
            QCOMPARE(host->refreshes, 0);
        }
    }

    void missingUnitIsTreatedAsUnreachable()
    {
        QCOMPARE(run(runRelayCommand, u"NO-SUCH"_s), QStringList());
        QCOMPARE(fx->dialogs.shown().size(), 1); // no code asked
        expectMessage(Icon::Critical, commands::relayTitle(), u"ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ ΜΗ ΔΙΑΘΕΣΙΜΗ"_s);
        QCOMPARE(host->refreshes, 1);
    }

    void silentServerTimesOutAndTheRowIsGone()
    {
        QVERIFY(useSimulator({u"--no-answer"_s}));
        QDateTime messageAt;
        fx->dialogs.onShown = [&](const ScriptedDialogs::Shown& s) {
            if (s.kind == u"message")
                messageAt = fx->clock.now();
        };
        // Twenty seconds pass for every real one.
        fx->clock.runFaster(20);
        fx->dialogs.answerCode(u"0042"_s);
        const QStringList rows = run(runRelayCommand, u"SXA1"_s);
        fx->dialogs.onShown = {};
        QCOMPARE(rows, QStringList{u"SXA1|2|0042;1|0|0"_s});
        expectMessage(Icon::Critical, commands::relayTitle(),
                      u"Η εκτέλεση της εντολής είναι αδύνατη.\r\nΒεβαιωθείτε ότι "
                      u"η εφαρμογή SENTORAX Server βρίσκεται σε λειτουργία και "
                      u"είναι συνδεδεμένη"_s);
        // The first poll more than 60 whole seconds on; polls are 10 s apart here and the
        // row is first seen up to 0.4 s late.
        const qint64 waited = watch->firstSeen.msecsTo(messageAt);
        QVERIFY2(waited > 59000 && waited <= 72000, qPrintable(QString::number(waited)));
        QCOMPARE(host->refreshes, 1);
    }

    void vanishedRowEndsWithoutMessage()
    {
        stopSimulator();
        // Someone else (a server tidying up) removes the row while we wait.
        QTimer::singleShot(700, [this] { (void)fx->db.exec(u"DELETE FROM Terminal_Requests"_s); });
        fx->dialogs.answerCode(u"0042"_s);
        const QStringList rows = run(runRelayCommand, u"SXA1"_s);
        QCOMPARE(rows, QStringList{u"SXA1|2|0042;1|0|0"_s});
        QVERIFY(fx->dialogs.messages().isEmpty());
        QCOMPARE(host->refreshes, 1);
    }

    void otherRowsOfTheUnitAreLeftAlone()
    {
        QVERIFY(useSimulator({}));
        // A stale, answered row of another console must not be taken for ours.
        QVERIFY(fx->exec(u"INSERT INTO Terminal_Requests (TrmReq_SyI_Serialnumber, "
                         u"TrmReq_Requesttype, TrmReq_Attributes, TrmReq_Requestcompleted, "
                         u"TrmReq_Requestreply) VALUES ('SXA1', 3, '0042;1;0', 1, 2)"_s));
        setCondition(u"SXA1"_s, 0, 0);
        host->caption = u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s;
        fx->dialogs.answerCode(u"0042"_s);
        (void)run(runRelayCommand, u"SXA1"_s);
        QVERIFY(fx->dialogs.messages().isEmpty());
        QCOMPARE(conditionOf(u"SXA1"_s, u"SyCC_RelayBcondition"_s), 1);
        QCOMPARE(requestRows(), 1);
        QVERIFY(fx->exec(u"DELETE FROM Terminal_Requests"_s));
    }

    void failedQueriesAreReportedAndTheWindowIsUsable_data()
    {
        QTest::addColumn<bool>("whileWaiting");
        QTest::newRow("the poll fails") << true;
        QTest::newRow("the write fails") << false;
    }

    void failedQueriesAreReportedAndTheWindowIsUsable()
    {
        QFETCH(bool, whileWaiting);
        stopSimulator();
        const int reports = fx->failures->reportsShown();
        const auto drop = [this] { (void)fx->db.exec(u"DROP TABLE Terminal_Requests"_s); };
        if (whileWaiting)
            QTimer::singleShot(200, drop);
        else
            drop();
        fx->dialogs.answerCode(u"0042"_s);
        QCOMPARE(run(runRelayCommand, u"SXA1"_s),
                 whileWaiting ? QStringList{u"SXA1|2|0042;1|0|0"_s} : QStringList());
        expectMessage(Icon::Critical, appTitle());
        QCOMPARE(fx->failures->reportsShown(), reports + 1);
        QVERIFY(recreateRequestTable());
    }
};

QTEST_MAIN(TestUnitCommands)
#include "tst_unitcommands.moc"
