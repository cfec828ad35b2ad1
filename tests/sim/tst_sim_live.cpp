#include "ScratchDatabase.h"
#include "SimTestHelpers.h"
#include "model/Schema.h"
#include "sim/LiveServer.h"
#include "sim/RequestHandler.h"
#include "sim/Seeder.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

class TestSimLive : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_scratch = std::make_unique<ScratchDatabase>();
        SX_REQUIRE_DB(*m_scratch);
        m_db = std::make_unique<Database>();
        QVERIFY(m_scratch->open(*m_db));
    }

    void init()
    {
        // Every test starts from the same seeded fleet (seeding replaces all rows).
        const sim::SeedReport r = sim::seedDemo(*m_db, smallSeed(1));
        QVERIFY2(!r.error.isError(), qPrintable(r.error.description));
        m_now = seedEnd();
    }

    void ticksMoveOnlineUnits()
    {
        Database& db = *m_db;
        const QString conditions =
            u"SELECT * FROM Sensors_Current_Condition WHERE SeCC_SyI_Serialnumber IN "
            "('SX100004','SX100005','SX100008') ORDER BY 1, 2"_s;
        const QByteArray quiet = digest(db, conditions);
        const QString unpowered = u"SELECT SeCC_Currvalue FROM Sensors_Current_Condition WHERE "
                                  "SeCC_SyI_Serialnumber='SX100001' AND SeCC_Sensornumber=6"_s;
        const QByteArray unpoweredBefore = digest(db, unpowered);
        const QString onlineValues =
            u"SELECT SeCC_Currvalue FROM Sensors_Current_Condition WHERE "
            "SeCC_SyI_Serialnumber='SX100001' ORDER BY SeCC_Sensornumber"_s;
        const QByteArray online = digest(db, onlineValues);

        sim::LiveOptions o;
        o.recordSecs = 60;
        sim::LiveServer live(db, o);
        sim::TickSummary total;
        runTicks(live, 3, 2, &total);

        // Offline, programming and unused units report nothing; neither do unpowered points.
        QCOMPARE(digest(db, conditions), quiet);
        QCOMPARE(digest(db, unpowered), unpoweredBefore);
        QVERIFY(digest(db, onlineValues) != online);
        QVERIFY(total.readings > 0);

        // Clocks that are set follow the polls; unset ones stay unset.
        const auto rtc = [&](const char* serial) {
            return column(db, u"SELECT SyCC_Rtc FROM Systems_Current_Condition WHERE "
                              "SyCC_SyI_Serialnumber='"_s +
                                  QLatin1StringView(serial) + u'\'')
                .value(0)
                .left(19);
        };
        QCOMPARE(rtc("SX100001"), sqlDateTimeText(m_now));
        QCOMPARE(rtc("SX100003"), u"<null>"_s);
        QCOMPARE(rtc("SX100010").left(10), u"1899-12-30"_s);
        QVERIFY(rtc("SX100004") != sqlDateTimeText(m_now));

        // Out of bounds always agrees with the reading and the limits in force.
        Rows rows = db.read(
            u"SELECT SeI_Sensortype, SeI_Minlimit, SeI_Maxlimit, SeI_Minlimitused, "
            u"SeI_Maxlimitused, "
            "SeCC_Currvalue, SeCC_Outofbounds FROM Sensors_Info JOIN Sensors_Current_Condition ON "
            "SeCC_SyI_Serialnumber=SeI_SyI_Serialnumber AND SeCC_Sensornumber=SeI_Sensornumber "
            "WHERE SeI_SyI_Serialnumber='SX100001' AND SeCC_Notpowered=0"_s);
        while (rows.next()) {
            const bool out = sim::outOfLimits(
                int(rows.intOr(u"SeI_Sensortype")), rows.intOr(u"SeI_Minlimitused") == 1,
                rows.realOr(u"SeI_Minlimit"), rows.intOr(u"SeI_Maxlimitused") == 1,
                rows.realOr(u"SeI_Maxlimit"), rows.realOr(u"SeCC_Currvalue"));
            QCOMPARE(rows.intOr(u"SeCC_Outofbounds"), qint64(out ? 1 : 0));
        }
        QVERIFY(rows.ok());
    }

    void recordsAndEventsContinueTheirSequences()
    {
        Database& db = *m_db;
        const qint64 recordsBefore = scalar(db, u"SELECT COUNT(*) FROM Records"_s);
        const qint64 unloggedBefore =
            scalar(db, u"SELECT COUNT(*) FROM Sensors_Info WHERE SeI_Used=1 AND "
                       "SeI_RecordsTable_Pagebyteswrit=0 AND SeI_RecordsTable_Lastpagesn=0"_s);
        sim::LiveOptions o;
        o.recordSecs = 0; // a record every round
        o.stepSecs = 120; // long rounds: many crossings in few ticks
        sim::LiveServer live(db, o);
        sim::TickSummary total;
        runTicks(live, 15, 120, &total);

        QVERIFY(total.records > 0);
        QVERIFY(total.events > 0);
        QCOMPARE(scalar(db, u"SELECT COUNT(*) FROM Records"_s), recordsBefore + total.records);
        // Every sequence stays 1..n without gaps or repeats; live point events carry the point's
        // condition and type.
        for (const char* broken :
             {"(SELECT 1 FROM Records GROUP BY Rec_SyI_Serialnumber, Rec_SeI_Sensornumber HAVING "
              "MAX(Rec_SensRecSN)<>COUNT(*) OR COUNT(DISTINCT Rec_SensRecSN)<>COUNT(*)) t",
              "(SELECT 1 FROM Events_1 GROUP BY Event_SyI_Serialnumber HAVING "
              "MAX(Event_SystemEventSN)<>COUNT(*)) t",
              "(SELECT 1 FROM Sensors_Events GROUP BY SeE_SyI_Serialnumber, SeE_Sensornumber "
              "HAVING COUNT(DISTINCT SeE_Eventnumber)<>COUNT(*)) t",
              "Events_1 e JOIN Sensors_Info ON SeI_SyI_Serialnumber=Event_SyI_Serialnumber AND "
              "SeI_Sensornumber=Event_EventSource WHERE Event_Datetime>'2024-03-10 12:00:00' AND "
              "(Event_Condition NOT IN (0,1) OR Event_SeI_Sensortype<>SeI_Sensortype)"})
            QVERIFY2(scalar(db, u"SELECT COUNT(*) FROM "_s + QLatin1StringView(broken)) == 0,
                     broken);
        // Points without a record store stay without records.
        QCOMPARE(scalar(db, u"SELECT COUNT(*) FROM Sensors_Info WHERE SeI_Used=1 AND "
                            "SeI_RecordsTable_Pagebyteswrit=0 AND SeI_RecordsTable_Lastpagesn=0"_s),
                 unloggedBefore);

        QVERIFY(!storesAgree(db, false).isEmpty());
        QVERIFY(!storesAgree(db, true).isEmpty());
    }

    void bypassedPointRaisesNothing()
    {
        Database& db = *m_db;
        sim::RequestPolicy policy;
        policy.answerDelayMs = 0;
        sim::RequestHandler requests(db, policy, [this] { return m_now; });
        QVERIFY(
            !db.exec(u"INSERT INTO Terminal_Requests VALUES ('SX100001', 3, '1234;3;1', 0, 0)"_s)
                 .isError());
        QVERIFY(!requests.poll(0).isError());

        sim::LiveOptions o;
        o.stepSecs = 120;
        sim::LiveServer live(db, o, &requests.bypasses());
        runTicks(live, 15, 120);

        const QString since = u" AND Event_Datetime>'2024-03-10 12:00:00'"_s;
        // Point 3 is a contact input; unbypassed it opens and closes in these rounds.
        QVERIFY(
            scalar(db, u"SELECT COUNT(*) FROM Events_1 WHERE Event_SyI_Serialnumber='SX100001' AND "
                       "Event_EventSource BETWEEN 1 AND 20 AND Event_EventSource<>3"_s +
                           since) > 0);
        QCOMPARE(
            scalar(db, u"SELECT COUNT(*) FROM Events_1 WHERE Event_SyI_Serialnumber='SX100001' AND "
                       "Event_EventSource=3"_s +
                           since),
            0);
        QCOMPARE(scalar(db, u"SELECT SeCC_Alarmcondition FROM Sensors_Current_Condition WHERE "
                            "SeCC_SyI_Serialnumber='SX100001' AND SeCC_Sensornumber=3"_s),
                 0);
    }

    void newMessagesAge()
    {
        Database& db = *m_db;
        auto counters = [&db] {
            QHash<QString, std::pair<qint64, qint64>> out; // message -> (recipients, age)
            Rows rows = db.read(u"SELECT SeE_SyI_Serialnumber, SeE_Sensornumber, SeE_Eventnumber, "
                                "SeE_Recipients, SeE_BeforeCounter FROM Sensors_Events"_s);
            while (rows.next()) {
                out.insert(rows.textOr(u"SeE_SyI_Serialnumber") + u'#' +
                               QString::number(rows.intOr(u"SeE_Sensornumber")) + u'#' +
                               QString::number(rows.intOr(u"SeE_Eventnumber")),
                           {rows.intOr(u"SeE_Recipients"), rows.intOr(u"SeE_BeforeCounter")});
            }
            return out;
        };
        sim::LiveServer live(db, sim::LiveOptions{});
        runTicks(live, 1, 2);
        const auto before = counters();
        runTicks(live, 1, 7);
        const auto after = counters();
        int waiting = 0;
        for (auto it = before.begin(); it != before.end(); ++it) {
            // Waiting messages grow older by the time between rounds; archived ones keep their age.
            const qint64 expected = it->second + (it->first != 0 ? 7 : 0);
            QCOMPARE(after.value(it.key()).second, expected);
            waiting += it->first != 0;
        }
        QVERIFY(waiting > 0);
    }

private:
    // Runs `count` rounds `stepSecs` apart after the seeded history.
    void runTicks(sim::LiveServer& live, int count, qint64 stepSecs,
                  sim::TickSummary* total = nullptr)
    {
        for (int i = 0; i < count; ++i) {
            m_now += stepSecs;
            sim::TickSummary s;
            const DbError e = live.tick(m_now, &s);
            QVERIFY2(!e.isError(), qPrintable(e.description));
            if (total) {
                total->readings += s.readings;
                total->records += s.records;
                total->events += s.events;
                total->messages += s.messages;
            }
        }
    }

    std::unique_ptr<ScratchDatabase> m_scratch;
    std::unique_ptr<Database> m_db;
    qint64 m_now = 0;
};

QTEST_GUILESS_MAIN(TestSimLive)
#include "tst_sim_live.moc"
