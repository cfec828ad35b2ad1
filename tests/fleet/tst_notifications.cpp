// Desktop notifications against a private session bus: a small receiver
// takes the freedesktop Notifications name and records what the console sends.
#include "../current/CurrentSeed.h"
#include "GuiFixture.h"
#include "app/UnitList.h"
#include "app/notify/DesktopNotifications.h"
#include "views/current/MainWindow.h"
#include "views/overview/FleetWatch.h"
#include "views/overview/OverviewWindow.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;

namespace {

struct Sent {
    QString summary;
    QString body;
    QStringList actions;
    int urgency = -1;
};

// The desktop's side of org.freedesktop.Notifications.
class Receiver : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
public:
    QList<Sent> sent;

public slots:
    uint Notify(const QString&, uint, const QString&, const QString& summary, const QString& body,
                const QStringList& actions, const QVariantMap& hints, int)
    {
        sent.append({summary, body, actions, hints.value(u"urgency"_s).toInt()});
        return static_cast<uint>(sent.size());
    }
    // Answered after every call the console sent before it.
    int Sync() { return static_cast<int>(sent.size()); }
};

const QString kPath = u"/org/freedesktop/Notifications"_s;
const QString kName = u"org.freedesktop.Notifications"_s;

} // namespace

class TestNotifications : public QObject {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        m_daemon.start(u"dbus-daemon"_s,
                       {u"--session"_s, u"--fork"_s, u"--print-address=1"_s, u"--print-pid=1"_s});
        if (!m_daemon.waitForStarted(5000))
            QSKIP("dbus-daemon is not installed");
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
        for (const QString& s : {u"U2"_s, u"U3"_s, u"U4"_s, u"U5"_s})
            QVERIFY(seed.unit(s, u"Αποθήκη "_s + s));
        for (int p : {1, 2})
            QVERIFY(seed.point(u"U1"_s, p, p == 1 ? u"'Κρέατα'"_s : u"NULL"_s, u"0"_s, u"1"_s,
                               u"6"_s, u"-2"_s, u"1"_s, u"1"_s) &&
                    seed.pointCondition(u"U1"_s, p, u"4"_s));
        // Already wrong at start-up: U2's zone.
        QVERIFY(seed.point(u"U2"_s, 1, u"'Ψυγείο'"_s) &&
                seed.pointCondition(u"U2"_s, 1, u"70"_s, u"1"_s, u"1"_s));

        ++m_round;
        const QDBusConnection desktop =
            QDBusConnection::connectToBus(m_address, u"desktop%1"_s.arg(m_round));
        QVERIFY(desktop.isConnected());
        m_receiver = std::make_unique<Receiver>();
        QVERIFY(QDBusConnection(desktop).registerObject(kPath, m_receiver.get(),
                                                        QDBusConnection::ExportAllSlots));
        QVERIFY(QDBusConnection(desktop).registerService(kName));

        m_main = std::make_unique<MainWindow>(m_fx->ctx);
        m_fx->navigator->setMainView(m_main.get());
        fillSystemSelect(*m_main, 0, false);
        m_main->refreshTimer()->stop();
        const QDBusConnection console =
            QDBusConnection::connectToBus(m_address, u"console%1"_s.arg(m_round));
        m_watch = std::make_unique<FleetWatch>(m_fx->ctx, console);
        tick();
    }
    void cleanup()
    {
        m_watch.reset();
        m_main.reset();
        if (m_receiver) {
            QDBusConnection desktop(u"desktop%1"_s.arg(m_round));
            desktop.unregisterService(kName);
            desktop.unregisterObject(kPath);
        }
        QDBusConnection::disconnectFromBus(u"console%1"_s.arg(m_round));
        QDBusConnection::disconnectFromBus(u"desktop%1"_s.arg(m_round));
        m_receiver.reset();
        m_fx.reset();
    }
    void tellsWhatChanged_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QString>("body");
        QTest::addColumn<int>("urgency");
        QTest::newRow("zone in alarm, above its maximum")
            << u"UPDATE Sensors_Current_Condition SET SeCC_Currvalue=8.5, SeCC_Outofbounds=1, SeCC_Alarmcondition=1 WHERE SeCC_SyI_Serialnumber='U1' AND SeCC_Sensornumber=1"_s
            << u"Συναγερμός στη ζώνη [1] Κρέατα: 8.5 °C (μέγ. όριο 6.0 °C)"_s << 2;
        QTest::newRow("anonymous zone below its minimum")
            << u"UPDATE Sensors_Current_Condition SET SeCC_Currvalue=-3, SeCC_Outofbounds=1 WHERE SeCC_SyI_Serialnumber='U1' AND SeCC_Sensornumber=2"_s
            << u"Εκτός ορίων η ζώνη [2] Ανώνυμη ζώνη: -3.0 °C (ελάχ. όριο -2.0 °C)"_s << 2;
        QTest::newRow("connection lost")
            << u"UPDATE Systems_Info SET SyI_Online=0 WHERE SyI_Serialnumber='U1'"_s
            << u"Χάθηκε η σύνδεση με το σύστημα"_s << 1;
        QTest::newRow("fault and messages in one notice")
            << u"INSERT INTO Systems_Faults (SyF_SyI_Serialnumber, SyF_Faulttype, SyF_Faultinfo) VALUES ('U1', 0, '3');\nINSERT INTO Sensors_Events (SeE_SyI_Serialnumber, SeE_Sensornumber, SeE_Eventnumber, SeE_Eventtype, SeE_Recordedvalue, SeE_BeforeCounter, SeE_Recipients) VALUES ('U1', 1, 1, 1, 5, 60, 3)"_s
            << u"Βλάβη: ΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ\nΝέα μηνύματα: 1"_s << 1;
    }
    void tellsWhatChanged()
    {
        QFETCH(QString, sql);
        QVERIFY(m_fx->exec(sql));
        tick();
        QCOMPARE(m_receiver->sent.size(), 1);
        const Sent& s = m_receiver->sent.first();
        QCOMPARE(s.summary, u"Ψυκτικός θάλαμος [7]"_s);
        QTEST(s.body, "body");
        QTEST(s.urgency, "urgency");
        QCOMPARE(s.actions, (QStringList{u"default"_s, u"Άνοιγμα"_s}));
        // Its default action opens the unit in the main view.
        QCOMPARE(m_main->selectedSerial(), u"U2"_s);
        clickDefault();
        QTRY_COMPARE(m_main->selectedSerial(), u"U1"_s);
        QVERIFY(m_main->isVisible());
    }
    void startUpIsSilentFlappingIsQuietAndTheSettingTurnsThemOff()
    {
        // U2 was in alarm at start-up: nothing about it.
        tick();
        QCOMPARE(m_receiver->sent.size(), 0);
        const auto setAlarm = [this](int on) {
            QVERIFY(m_fx->exec(
                u"UPDATE Sensors_Current_Condition SET SeCC_Alarmcondition=%1 WHERE SeCC_SyI_Serialnumber='U1' AND SeCC_Sensornumber=1"_s
                    .arg(on)));
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
        // Still in alarm when the minute is over: told once more.
        m_fx->clock.advance(41'000);
        tick();
        tick();
        QCOMPARE(m_receiver->sent.size(), 2);
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
        m_fx->db.close();
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
    }
    void manyUnitsAtOnceAreOneDigest()
    {
        QVERIFY(m_fx->exec(
            u"UPDATE Sensors_Current_Condition SET SeCC_Alarmcondition=1 WHERE SeCC_SyI_Serialnumber='U1' AND SeCC_Sensornumber=2"_s));
        test::CurrentSeed seed(m_fx->db);
        for (const QString& s : {u"U2"_s, u"U3"_s, u"U4"_s, u"U5"_s})
            QVERIFY(seed.newPointMessage(s));
        tick();
        QCOMPARE(m_receiver->sent.size(), 1);
        const Sent& s = m_receiver->sent.first();
        QCOMPARE(s.summary, u"SENTORAX Monitor: αλλαγές σε 5 συστήματα"_s);
        const QStringList lines = s.body.split(u'\n');
        QCOMPARE(lines.size(), 5);
        // The alarm first, whatever order the units came in.
        QCOMPARE(lines.first(),
                 u"Ψυκτικός θάλαμος [7]: Συναγερμός στη ζώνη [2] Ανώνυμη ζώνη: 4.0 °C"_s);
        QCOMPARE(s.urgency, 2);
        clickDefault();
        QTRY_VERIFY(m_watch->overview() && m_watch->overview()->isVisible());

        // The next burst within the minute waits for the minute to end.
        for (const QString& serial : {u"U2"_s, u"U3"_s, u"U4"_s, u"U5"_s})
            QVERIFY(seed.newPointMessage(serial));
        tick();
        QCOMPARE(m_receiver->sent.size(), 1);
        m_fx->clock.advance(61'000);
        tick();
        QCOMPARE(m_receiver->sent.size(), 2);
        QCOMPARE(m_receiver->sent.at(1).summary, u"SENTORAX Monitor: αλλαγές σε 4 συστήματα"_s);
    }

private:
    // The user clicks the first notice.
    void clickDefault()
    {
        QDBusMessage click = QDBusMessage::createSignal(kPath, kName, u"ActionInvoked"_s);
        click << 1u << u"default"_s;
        QVERIFY(QDBusConnection(u"desktop%1"_s.arg(m_round)).send(click));
    }
    // One refresh tick, and the time for the bus to deliver what it sent.
    void tick()
    {
        m_watch->refresh();
        // Notices are sent without waiting; a call on the same connection is
        // answered after them.
        const QDBusPendingCall sync =
            QDBusConnection(u"console%1"_s.arg(m_round))
                .asyncCall(QDBusMessage::createMethodCall(kName, kPath, kName, u"Sync"_s));
        QTRY_VERIFY(sync.isFinished());
        QVERIFY(!sync.isError());
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
