// Desktop notifications against a private session bus: a small receiver
// takes the freedesktop Notifications name and records what the console sends.
#include "../current/CurrentSeed.h"
#include "GuiFixture.h"
#include "SkipOrFail.h"
#include "ui/UnitList.h"
#include "ui/notify/DesktopNotifications.h"
#include "views/current/MainWindow.h"
#include "views/overview/FleetWatch.h"
#include "views/overview/OverviewWindow.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QLabel>
#include <QProcess>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTest>
#include <QThread>

#include <atomic>

using namespace Qt::StringLiterals;
using namespace sx;

namespace {

struct Sent {
    QString from; // application|icon|desktop entry|actions
    uint replaces = 0;
    QString summary;
    QString body;
    int urgency = -1;
    uint id = 0;
};

// The desktop's side of org.freedesktop.Notifications, one that reads markup.
class Receiver : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
public:
    QList<Sent> sent;
    QList<uint> closed;
    bool refuse = false;

public slots:
    QStringList GetCapabilities() { return {u"body"_s, u"body-markup"_s, u"actions"_s}; }
    uint Notify(const QString& app, uint replaces, const QString& icon, const QString& summary,
                const QString& body, const QStringList& actions, const QVariantMap& hints, int)
    {
        if (refuse) {
            sendErrorReply(QDBusError::Failed, u"Notifications are switched off"_s);
            return 0;
        }
        const uint id = replaces ? replaces : ++m_lastId;
        const QString from =
            QStringList{app, icon, hints.value(u"desktop-entry"_s).toString(), actions.join(u',')}
                .join(u'|');
        sent.append({from, replaces, summary, body, hints.value(u"urgency"_s).toInt(), id});
        return id;
    }
    void CloseNotification(uint id) { closed.append(id); }

private:
    uint m_lastId = 0;
};

const QString kPath = u"/org/freedesktop/Notifications"_s;
const QString kName = u"org.freedesktop.Notifications"_s;
const QString kAlarmU1 =
    u"UPDATE Sensors_Current_Condition SET SeCC_Alarmcondition=%1 WHERE SeCC_SyI_Serialnumber='U1' AND SeCC_Sensornumber=%2"_s;

} // namespace

class TestNotifications : public QObject {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        m_daemon.start(u"dbus-daemon"_s,
                       {u"--session"_s, u"--fork"_s, u"--print-address=1"_s, u"--print-pid=1"_s});
        if (!m_daemon.waitForStarted(5000))
            SX_SKIP_OR_FAIL("dbus-daemon is not installed");
        QVERIFY(m_daemon.waitForFinished(10000));
        const QStringList lines =
            QString::fromUtf8(m_daemon.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 2);
        m_address = lines.at(0).trimmed();
        m_daemonPid = lines.at(1).trimmed().toLongLong();
    }
    void cleanupTestCase()
    {
        if (m_daemonPid > 0)
            QProcess::execute(u"kill"_s, {QString::number(m_daemonPid)});
    }
    void init()
    {
        m_fx = std::make_unique<test::GuiFixture>();
        SX_REQUIRE_FIXTURE(*m_fx);
        test::CurrentSeed seed(m_fx->db);
        QVERIFY(seed.unit(u"U1"_s, u"Ψυκτικός θάλαμος"_s, u"1"_s, u"'1.22'"_s, u"'7'"_s));
        for (const QString& s : {u"U2"_s, u"U3"_s, u"U4"_s, u"U5"_s, u"U6"_s})
            QVERIFY(seed.unit(s, u"Αποθήκη "_s + s));
        for (int p : {1, 2})
            QVERIFY(seed.point(u"U1"_s, p, p == 1 ? u"'Κρέατα'"_s : u"NULL"_s, u"0"_s, u"1"_s,
                               u"6"_s, u"-2"_s, u"1"_s, u"1"_s) &&
                    seed.pointCondition(u"U1"_s, p, u"4"_s));
        // Already wrong at start-up: U2's zone.
        QVERIFY(seed.point(u"U2"_s, 1, u"'Ψυγείο'"_s) &&
                seed.pointCondition(u"U2"_s, 1, u"70"_s, u"1"_s, u"1"_s));

        ++m_round;
        QDBusConnection desktop =
            QDBusConnection::connectToBus(m_address, u"desktop%1"_s.arg(m_round));
        m_receiver = std::make_unique<Receiver>();
        QVERIFY(desktop.registerObject(kPath, m_receiver.get(), QDBusConnection::ExportAllSlots));
        QVERIFY(desktop.registerService(kName));

        m_main = std::make_unique<MainWindow>(m_fx->ctx);
        m_fx->navigator->setMainView(m_main.get());
        fillSystemSelect(*m_main, 0, false);
        m_main->refreshTimer()->stop();
        m_watch = std::make_unique<FleetWatch>(
            m_fx->ctx, QDBusConnection::connectToBus(m_address, u"console%1"_s.arg(m_round)));
        tick();
    }
    void cleanup()
    {
        m_watch.reset();
        m_main.reset();
        if (m_receiver) {
            desktop().unregisterService(kName);
            desktop().unregisterObject(kPath);
        }
        QDBusConnection::disconnectFromBus(u"console%1"_s.arg(m_round));
        QDBusConnection::disconnectFromBus(u"desktop%1"_s.arg(m_round));
        m_receiver.reset();
        m_fx.reset();
    }
    void tellsWhatChanged_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QString>("notice"); // replaced|summary|body|urgency
        const QString u1 = u"0|Ψυκτικός θάλαμος [7]|"_s;
        QTest::newRow("zone in alarm, above its maximum")
            << u"UPDATE Sensors_Current_Condition SET SeCC_Currvalue=8.5, SeCC_Outofbounds=1, SeCC_Alarmcondition=1 WHERE SeCC_SyI_Serialnumber='U1' AND SeCC_Sensornumber=1"_s
            << u1 + u"Συναγερμός στη ζώνη [1] Κρέατα: 8.5 °C (μέγ. όριο 6.0 °C)|2"_s;
        QTest::newRow("anonymous zone below its minimum")
            << u"UPDATE Sensors_Current_Condition SET SeCC_Currvalue=-3, SeCC_Outofbounds=1 WHERE SeCC_SyI_Serialnumber='U1' AND SeCC_Sensornumber=2"_s
            << u1 + u"Εκτός ορίων η ζώνη [2] Ανώνυμη ζώνη: -3.0 °C (ελάχ. όριο -2.0 °C)|2"_s;
        QTest::newRow("connection lost")
            << u"UPDATE Systems_Info SET SyI_Online=0 WHERE SyI_Serialnumber='U1'"_s
            << u1 + u"Χάθηκε η σύνδεση με το σύστημα|1"_s;
        QTest::newRow("fault and messages in one notice")
            << u"INSERT INTO Systems_Faults (SyF_SyI_Serialnumber, SyF_Faulttype, SyF_Faultinfo) VALUES ('U1', 0, '3');\nINSERT INTO Sensors_Events (SeE_SyI_Serialnumber, SeE_Sensornumber, SeE_Eventnumber, SeE_Eventtype, SeE_Recordedvalue, SeE_BeforeCounter, SeE_Recipients) VALUES ('U1', 1, 1, 1, 5, 60, 3)"_s
            << u1 + u"Βλάβη: ΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ\nΝέα μηνύματα: 1|1"_s;
        // The body is read as markup, the summary is not.
        QTest::newRow("names with markup characters")
            << u"UPDATE Systems_Info SET SyI_Systemname='Θάλαμος <Β> & Γ' WHERE SyI_Serialnumber='U1';\nUPDATE Sensors_Info SET SeI_Sensorname='Κρέατα <1> & ψάρια' WHERE SeI_SyI_Serialnumber='U1' AND SeI_Sensornumber=1;\nUPDATE Sensors_Current_Condition SET SeCC_Alarmcondition=1 WHERE SeCC_SyI_Serialnumber='U1' AND SeCC_Sensornumber=1"_s
            << u"0|Θάλαμος <Β> & Γ [7]|Συναγερμός στη ζώνη [1] Κρέατα &lt;1&gt; &amp; ψάρια: 4.0 °C|2"_s;
    }
    void tellsWhatChanged()
    {
        QFETCH(QString, sql);
        QVERIFY(m_fx->exec(sql));
        tick();
        QCOMPARE(m_receiver->sent.size(), 1);
        const Sent& s = m_receiver->sent.first();
        // The installed entry gives the desktop the console's name and icon.
        QCOMPARE(s.from,
                 u"SENTORAX Monitor|gr.sentorax.Monitor|gr.sentorax.Monitor|default,Άνοιγμα"_s);
        QTEST(u"%1|%2|%3|%4"_s.arg(s.replaces).arg(s.summary, s.body).arg(s.urgency), "notice");
        // Its default action opens the unit in the main view, but not under a
        // statement on its way.
        QCOMPARE(m_main->selectedSerial(), u"U2"_s);
        auto hold = std::make_shared<std::atomic<bool>>(true);
        const auto release = qScopeGuard([hold] { *hold = false; });
        m_fx->link.post(
            nullptr,
            [hold](Database&) {
                while (*hold)
                    QThread::msleep(5);
                return 0;
            },
            [](int) {});
        QSignalSpy clicked(m_watch->desktop(), &DesktopNotifications::unitRequested);
        clickDefault(s.id);
        QTRY_COMPARE(clicked.size(), 1);
        QCOMPARE(m_main->selectedSerial(), u"U2"_s);
        *hold = false;
        QTRY_COMPARE(m_main->selectedSerial(), u"U1"_s);
        QVERIFY(m_main->isVisible());
    }
    void startUpIsSilentFlappingIsQuietAndTheSettingTurnsThemOff()
    {
        // U2 was in alarm at start-up: nothing about it.
        tick();
        QCOMPARE(m_receiver->sent.size(), 0);
        const auto setAlarm = [this](int on) {
            QVERIFY(m_fx->exec(kAlarmU1.arg(on).arg(1)));
            tick();
        };
        setAlarm(1);
        QCOMPARE(m_receiver->sent.size(), 1);
        setAlarm(0);
        m_fx->clock.advance(20'000);
        setAlarm(1);
        setAlarm(0);
        setAlarm(1);
        QCOMPARE(m_receiver->sent.size(), 1);
        // Still in alarm when the minute is over: told once more, in place of the first.
        m_fx->clock.advance(41'000);
        tick();
        tick();
        QCOMPARE(m_receiver->sent.size(), 2);
        QCOMPARE(m_receiver->sent.at(1).replaces, m_receiver->sent.at(0).id);
        // Turned off in the settings: a lost connection is not told.
        m_fx->settings->setApp(u"Notifications"_s, u"0"_s);
        m_watch.reset();
        m_watch =
            std::make_unique<FleetWatch>(m_fx->ctx, QDBusConnection(u"console%1"_s.arg(m_round)));
        tick();
        QVERIFY(m_fx->exec(u"UPDATE Systems_Info SET SyI_Online=0 WHERE SyI_Serialnumber='U1'"_s));
        tick();
        QCOMPARE(m_receiver->sent.size(), 2);
    }
    void outageAndReturnAreOneNoticeEach()
    {
        m_fx->link.close();
        tick();
        tick();
        QCOMPARE(m_receiver->sent.size(), 1);
        QCOMPARE(m_receiver->sent.at(0).body, u"Χάθηκε η σύνδεση με τη βάση δεδομένων"_s);
        QCOMPARE(m_receiver->sent.at(0).urgency, 2);
        // The console reopens the connection itself, and reads the fleet again then.
        QTRY_VERIFY(!m_fx->failures->connectionLost());
        tick();
        QCOMPARE(m_receiver->sent.size(), 2);
        QCOMPARE(m_receiver->sent.at(1).body, u"Η σύνδεση με τη βάση δεδομένων αποκαταστάθηκε"_s);
        QCOMPARE(m_receiver->sent.at(1).replaces, m_receiver->sent.at(0).id);
    }
    void pastFiveUnitsOneDigestStands()
    {
        test::CurrentSeed seed(m_fx->db);
        const QStringList others{u"U2"_s, u"U3"_s, u"U4"_s, u"U5"_s, u"U6"_s};
        const auto newMessages = [&] {
            for (const QString& s : others)
                QVERIFY(seed.newPointMessage(s));
        };
        newMessages();
        tick();
        QCOMPARE(m_receiver->sent.size(), 5);
        // A sixth unit: the five make way for one digest that names all six.
        m_fx->clock.advance(30'000);
        QVERIFY(m_fx->exec(kAlarmU1.arg(1).arg(2)));
        tick();
        QCOMPARE(m_receiver->sent.size(), 6);
        QCOMPARE(m_receiver->closed, (QList<uint>{1, 2, 3, 4, 5}));
        const Sent digest = m_receiver->sent.last();
        QCOMPARE(digest.summary, u"SENTORAX Monitor: αλλαγές σε 6 συστήματα"_s);
        const QStringList lines = digest.body.split(u'\n');
        QCOMPARE(lines.size(), 6);
        // The alarm first, whatever order the units came in.
        QCOMPARE(lines.first(),
                 u"Ψυκτικός θάλαμος [7]: Συναγερμός στη ζώνη [2] Ανώνυμη ζώνη: 4.0 °C"_s);
        QCOMPARE(lines.last(), u"και 1 ακόμη"_s);
        QCOMPARE(digest.urgency, 2);
        clickDefault(digest.id);
        QTRY_VERIFY(m_watch->overview() && m_watch->overview()->isVisible());

        // While it stands, news goes into it, at most once a minute.
        m_fx->clock.advance(31'000);
        newMessages();
        tick();
        QCOMPARE(m_receiver->sent.size(), 6);
        m_fx->clock.advance(30'000);
        tick();
        QCOMPARE(m_receiver->sent.size(), 7);
        QCOMPARE(m_receiver->sent.last().replaces, digest.id);
        QCOMPARE(m_receiver->sent.last().summary, digest.summary);

        // Closed on the desktop: the next unit has a notice of its own again.
        QSignalSpy gone(m_watch->desktop(), &DesktopNotifications::closed);
        fromDesktop(u"NotificationClosed"_s, digest.id, 2u);
        QTRY_COMPARE(gone.size(), 1);
        m_fx->clock.advance(61'000);
        QVERIFY(seed.newPointMessage(u"U3"_s));
        tick();
        QCOMPARE(m_receiver->sent.size(), 8);
        QCOMPARE(m_receiver->sent.last().summary, u"Αποθήκη U3 [7]"_s);
        QCOMPARE(m_receiver->sent.last().replaces, 0u);
    }
    void withoutAServiceAlarmsGoToTheViews_data()
    {
        QTest::addColumn<int>("how");
        QTest::newRow("no service on the bus") << 0;
        QTest::newRow("no session bus") << 1;
        QTest::newRow("the service answers with an error") << 2;
    }
    void withoutAServiceAlarmsGoToTheViews()
    {
        QFETCH(int, how);
        if (how == 0)
            QVERIFY(desktop().unregisterService(kName));
        if (how == 1) {
            m_watch.reset();
            m_watch = std::make_unique<FleetWatch>(m_fx->ctx, QDBusConnection(u"sx-no-bus"_s));
            tick();
        }
        m_receiver->refuse = how == 2;
        const auto alarm = [this](const QString& sql, const QString& line) {
            QVERIFY(m_fx->exec(sql));
            tick();
            const QStatusBar* bar = m_main->statusBar();
            QTRY_COMPARE(bar->currentMessage().mid(6), line);
            // Said once, beside the alarms, and never in a box that would hold the watch.
            const auto notes = bar->findChildren<QLabel*>(u"desktopNotices"_s);
            QCOMPARE(notes.size(), 1);
            QCOMPARE(notes.first()->text(), QString::fromUtf16(kNoDesktopNotices));
            QVERIFY(m_fx->dialogs.shown().isEmpty());
        };
        alarm(kAlarmU1.arg(1).arg(1),
              u"Ψυκτικός θάλαμος [7]: Συναγερμός στη ζώνη [1] Κρέατα: 4.0 °C"_s);
        alarm(
            u"INSERT INTO Systems_Faults (SyF_SyI_Serialnumber, SyF_Faulttype, SyF_Faultinfo) VALUES ('U3', 0, '3')"_s,
            u"Αποθήκη U3 [7]: Βλάβη: ΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ"_s);
        QVERIFY(m_receiver->sent.isEmpty());
    }

private:
    QDBusConnection desktop() const { return QDBusConnection(u"desktop%1"_s.arg(m_round)); }
    void fromDesktop(const QString& signal, uint id, const QVariant& detail)
    {
        QDBusMessage m = QDBusMessage::createSignal(kPath, kName, signal);
        m << id << detail;
        QVERIFY(desktop().send(m));
    }
    // The user clicks a notice.
    void clickDefault(uint id) { fromDesktop(u"ActionInvoked"_s, id, u"default"_s); }
    // One refresh tick: the read, then every call it made to the desktop answered.
    void tick()
    {
        m_watch->refresh();
        QTRY_VERIFY(!m_watch->reading());
        QTRY_VERIFY(m_watch->desktop()->idle());
    }

    QProcess m_daemon;
    QString m_address;
    qint64 m_daemonPid = 0;
    std::unique_ptr<test::GuiFixture> m_fx;
    std::unique_ptr<MainWindow> m_main;
    std::unique_ptr<FleetWatch> m_watch;
    std::unique_ptr<Receiver> m_receiver;
    int m_round = 0;
};

QTEST_MAIN(TestNotifications)
#include "tst_notifications.moc"
