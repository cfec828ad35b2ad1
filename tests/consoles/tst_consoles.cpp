#include "GuiFixture.h"
#include "model/Schema.h"
#include "model/commands/CommandRules.h"
#include "model/events/EventsData.h"
#include "sim/Seeder.h"
#include "views/current/RequestExchange.h"

#include <QProcess>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

// Console A's row is answered; before A reads it, console B sends its command
// and marks its events. Neither takes the other's reply or row, and every mark stays.
class TestConsoles : public QObject {
    Q_OBJECT

    std::unique_ptr<GuiFixture> fx;
    std::unique_ptr<QProcess> sim;

    int count(const QString& sql)
    {
        Rows r = fx->db.readFirst(u"SELECT COUNT(*) AS n FROM "_s + sql);
        return r.next() ? int(r.intOr(u"n", -1)) : -1;
    }

private slots:
    void initTestCase()
    {
        fx = std::make_unique<GuiFixture>();
        SX_REQUIRE_FIXTURE(*fx);
        sim::SeedOptions o;
        o.days = 1;
        QVERIFY(!sim::seedDemo(fx->db, o).error.isError());
        sim = std::make_unique<QProcess>();
        sim->setProcessChannelMode(QProcess::MergedChannels);
        sim->start(QString::fromUtf8(SX_SIM_EXE),
                   {u"--db"_s, fx->scratch.url(), u"run"_s, u"--interval"_s, u"100"_s,
                    u"--answer-delay"_s, u"0"_s});
        QByteArray out;
        while (!out.contains("running on") && sim->waitForReadyRead(10000))
            out += sim->readAll();
        QVERIFY2(out.contains("running on"), out.constData());
    }

    void cleanupTestCase()
    {
        if (sim) {
            sim->terminate();
            sim->waitForFinished(10000);
        }
        fx.reset();
    }

    void twoConsoles_data()
    {
        QTest::addColumn<QString>("attributesB");
        QTest::addColumn<int>("replyB");
        // SX100002 takes code 0042: the same row from both, or another row of the same unit.
        QTest::newRow("the same command") << u"0042;1"_s << 1;
        QTest::newRow("the same unit, a wrong code") << u"9999;1"_s << 2;
    }

    void twoConsoles()
    {
        QFETCH(QString, attributesB);
        QFETCH(int, replyB);
        // Console B: its own connection, context and dialogs.
        DbLink linkB;
        QVERIFY(!linkB.openAndWait(fx->scratch.settings()).isError());
        ScriptedDialogs dialogsB;
        AppContext ctxB;
        ctxB.db = &linkB;
        ctxB.dialogs = &dialogsB;
        QueryFailureReporter failuresB(ctxB);
        ctxB.failures = &failuresB;
        QWidget windowA, windowB;
        QVERIFY(
            fx->exec(u"UPDATE Events_1 SET Event_Ack=0 WHERE Event_SyI_Serialnumber='SX100003'"_s));
        QList<events::MarkTarget> marksA, marksB;
        for (Rows r = fx->db.read(u"SELECT Event_SystemEventSN AS sn FROM Events_1 WHERE "
                                  u"Event_SyI_Serialnumber='SX100003'"_s);
             r.next();)
            (marksA.size() <= marksB.size() ? marksA : marksB)
                .append({u"SX100003"_s, r.intOr(u"sn")});
        QVERIFY(!marksB.isEmpty());

        ExchangeOutcome b;
        QTimer watch;
        connect(&watch, &QTimer::timeout, [&] {
            if (count(u"Terminal_Requests WHERE TrmReq_Requestcompleted<>0"_s) == 0)
                return;
            watch.stop();
            QVERIFY(!linkB.call([&](Database& db) { return events::markEvents(db, marksB, 1); })
                         .isError());
            b = exchangeRequest(ctxB, &windowB, commands::relayTitle(),
                                {u"SX100002"_s, kRequestRelayB, attributesB});
        });
        watch.start(10);
        const ExchangeOutcome a = exchangeRequest(fx->ctx, &windowA, commands::relayTitle(),
                                                  {u"SX100002"_s, kRequestRelayB, u"0042;1"_s});
        QVERIFY(!watch.isActive()); // B's command ran while A waited
        QVERIFY(!fx->ctx.db->call([&](Database& db) { return events::markEvents(db, marksA, 1); })
                     .isError());

        QCOMPARE(int(a.end), int(ExchangeOutcome::End::Answered));
        QCOMPARE(int(b.end), int(ExchangeOutcome::End::Answered));
        QVERIFY(!a.rowVanished && !b.rowVanished);
        QCOMPARE(a.reply, 1);
        QCOMPARE(b.reply, replyB);
        QVERIFY(!a.owner.isEmpty() && !b.owner.isEmpty() && a.owner != b.owner);
        QCOMPARE(count(u"Terminal_Requests"_s), 0);
        QCOMPARE(count(u"Events_1 WHERE Event_SyI_Serialnumber='SX100003' AND Event_Ack=1"_s),
                 int(marksA.size() + marksB.size()));
    }
};

QTEST_MAIN(TestConsoles)
#include "tst_consoles.moc"
