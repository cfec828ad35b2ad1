#include "ScratchDatabase.h"
#include "SimTestHelpers.h"
#include "model/Dialect.h"
#include "model/Schema.h"
#include "sim/LiveServer.h"
#include "sim/RequestHandler.h"
#include "sim/Seeder.h"
#include "sim/UnitCodes.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

// The simulator's server side on a seeded fleet: answering the console's
// requests, and the live rounds that move values and write records and events.
class TestSimServer : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        SX_REQUIRE_DB(m_scratch);
        QVERIFY(m_scratch.open(m_db));
    }

    // The request tests share one seeded fleet; every live test starts from a fresh one.
    void init()
    {
        QVERIFY(!m_db.deleteRows(schema::TerminalRequests::table, {}).isError());
        if (m_now == seedEnd())
            return;
        const sim::SeedReport r = sim::seedDemo(m_db, smallSeed(1));
        QVERIFY2(!r.error.isError(), qPrintable(r.error.description));
        m_now = seedEnd();
    }

    void answers_data()
    {
        QTest::addColumn<QString>("serial");
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("fields"); // after the code; "!" replaces the unit's code
        QTest::addColumn<int>("reply");
        QTest::addColumn<QString>("stateColumn");
        QTest::addColumn<int>("state"); // -1: unchanged
        const auto row = [](const char* tag, const QString& serial, int type, const QString& fields,
                            int reply, const QString& column, int state) {
            QTest::newRow(tag) << serial << type << fields << reply << column << state;
        };
        const QString relay = u"SyCC_RelayBcondition"_s, phone = u"SyCC_Alarmcondition"_s;
        // The decisions themselves are tst_sim_logic's table; here what is read from and
        // written to the database. SX100001: relay on, code 1234. SX100002: 1B 1.14 (older
        // form), relay off, code 0042, point 2 unused. SX100003: 1A 1.15 (extended by model
        // and version). SX100004 offline.
        row("stored code keeps its leading zero", u"SX100002"_s, 2, u"!042;1"_s, 2, relay, -1);
        row("offline unit", u"SX100004"_s, 2, u";1"_s, 3, relay, -1);
        row("unknown unit", u"SX999999"_s, 2, u"!1234;1"_s, 3, {}, -1);
        row("relay on", u"SX100002"_s, 2, u";1"_s, 1, relay, 1);
        row("relay off", u"SX100001"_s, 2, u";0"_s, 1, relay, 0);
        row("quoted serial", u"SX'Q7"_s, 2, u";1"_s, 1, relay, 1);
        row("extended at 1.15", u"SX100003"_s, 1, u";0"_s, 1, phone, 0);
        row("older form with delay", u"SX100002"_s, 1, u";1;05"_s, 1, phone, 1);
        row("bypass of unused point", u"SX100002"_s, 3, u";2;1"_s, 5, {}, -1);
    }

    void answers()
    {
        QFETCH(QString, serial);
        QFETCH(int, type);
        QFETCH(QString, fields);
        QFETCH(QString, stateColumn);
        QFETCH(int, state);
        const qint64 before = stateColumn.isEmpty() ? 0 : unitState(stateColumn, serial);
        const qint64 events = count(u"Events_1"_s);
        insertRequest(serial, type,
                      fields.startsWith(u'!') ? fields.mid(1) : code(serial) + fields);
        QCOMPARE(answerNow(), 1);
        QTEST(int(replyOf(serial)), "reply");
        if (!stateColumn.isEmpty())
            QCOMPARE(unitState(stateColumn, serial), state < 0 ? before : qint64(state));
        QCOMPARE(count(u"Events_1"_s), events); // only a bypass writes an event
    }

    void bypassRecordsAnEventAndClearsTheAlarm()
    {
        // SX100001 point 7 is in alarm and out of its limits after the seed.
        QCOMPARE(pointAlarm(7), 1);
        const qint64 lastSn = lastEvent();
        insertRequest(u"SX100001"_s, 3, u"1234;7;1"_s);
        const qint64 now = secsFromCivil({2024, 3, 10, 12, 30, 0});
        sim::RequestHandler handler(m_db, {.answerDelayMs = 0, .forcedReply = {}},
                                    [now] { return now; });
        QVERIFY(!handler.poll(0).isError());
        QCOMPARE(replyOf(u"SX100001"_s), 1);
        QCOMPARE(pointAlarm(7), 0);
        const QString added =
            u" FROM Events_1 WHERE Event_SyI_Serialnumber='SX100001' AND Event_SystemEventSN>"_s +
            QString::number(lastSn);
        QCOMPARE(column(m_db, u"SELECT Event_SystemEventSN || '|' || Event_EventSource || '|' || "
                              "Event_Info1 || '|' || Event_Ack"_s +
                                  added),
                 QStringList{u"%1|25|2;7;24|0"_s.arg(lastSn + 1)});
        QCOMPARE(column(m_db, u"SELECT Event_Datetime"_s + added).value(0).left(19),
                 sqlDateTimeText(now));
        QVERIFY(handler.bypasses().contains(sim::bypassKey(u"SX100001"_s, 7)));
        QCOMPARE(scalar(m_db, storesDisagree(true)), 0); // the counters follow the new event

        // Back in service: done, no further event, the bypass is gone.
        QVERIFY(!m_db.deleteRows(schema::TerminalRequests::table, {}).isError());
        insertRequest(u"SX100001"_s, 3, u"1234;7;0"_s);
        QVERIFY(!handler.poll(0).isError());
        QCOMPARE(replyOf(u"SX100001"_s), 1);
        QVERIFY(handler.bypasses().isEmpty());
        QCOMPARE(lastEvent(), lastSn + 1);
    }

    // Replies of SX100002 (relay off, asked on) at 10000, 10999 and 11000 ms; of offline
    // SX100004 at the end. Only a real answer moves the relay.
    void policies_data()
    {
        QTest::addColumn<int>("delayMs");
        QTest::addColumn<bool>("noAnswer");
        QTest::addColumn<int>("forced");
        QTest::addColumn<QList<qint64>>("replies");
        QTest::addColumn<qint64>("offline");
        QTest::newRow("after the delay") << 1000 << false << 0 << QList<qint64>{0, 0, 1} << 3LL;
        QTest::newRow("no answer") << 0 << true << 0 << QList<qint64>{0, 0, 0} << 0LL;
        QTest::newRow("forced reply changes nothing")
            << 0 << false << 6 << QList<qint64>{6, 6, 6} << 6LL;
    }
    void policies()
    {
        QFETCH(int, delayMs);
        QFETCH(bool, noAnswer);
        QFETCH(int, forced);
        QFETCH(QList<qint64>, replies);
        const sim::RequestPolicy policy{.answerDelayMs = delayMs,
                                        .forcedReply =
                                            forced ? std::optional(forced) : std::nullopt,
                                        .noAnswer = noAnswer};
        QVERIFY(!m_db.exec(u"UPDATE Systems_Current_Condition SET SyCC_RelayBcondition=0 WHERE "
                           "SyCC_SyI_Serialnumber='SX100002'"_s)
                     .isError());
        sim::RequestHandler handler(m_db, policy);
        QVERIFY(!handler.poll(5000).isError()); // nothing pending yet
        insertRequest(u"SX100002"_s, 2, u"0042;1"_s);
        insertRequest(u"SX100004"_s, 2, u"1;1"_s);
        // The delay counts from when the row was first seen, not from the handler's start.
        for (int i = 0; i < 3; ++i) {
            QVERIFY(!handler.poll(QList<qint64>{10000, 10999, 11000}[i]).isError());
            QCOMPARE(replyOf(u"SX100002"_s), replies[i]);
        }
        QTEST(replyOf(u"SX100004"_s), "offline");
        QCOMPARE(unitState(u"SyCC_RelayBcondition"_s, u"SX100002"_s), replies.last() == 1 ? 1 : 0);
    }

    void oddRowsAreAnsweredOnceAndRight()
    {
        insertRequest(u"SX100002"_s, 2, u"0042;1"_s);
        insertRequest(u"SX100002"_s, 2, u"0042;1"_s); // identical rows are answered together
        QVERIFY(
            !m_db.exec(u"INSERT INTO Terminal_Requests VALUES ('SX100001', 2, NULL, 0, 0, NULL), "
                       "(NULL, 2, '1234;1', 0, 0, NULL), ('SX100003', 2, '1234;0', 1, 4, NULL)"_s)
                 .isError());
        QCOMPARE(answerNow(), 3);            // the identical pair counts once
        QCOMPARE(replyOf(u"SX100001"_s), 2); // missing attributes are malformed
        QCOMPARE(replyOf(u"SX100003"_s), 4); // a completed row is left alone
        const QString done = u"Terminal_Requests WHERE TrmReq_Requestcompleted=1 AND "_s;
        QCOMPARE(count(done + u"TrmReq_SyI_Serialnumber='SX100002' AND TrmReq_Requestreply=1"_s),
                 2);
        QCOMPARE(count(done + u"TrmReq_SyI_Serialnumber IS NULL AND TrmReq_Requestreply=3"_s), 1);
    }

    void ticksMoveOnlineUnits()
    {
        const QString values = u"SELECT * FROM Sensors_Current_Condition WHERE "_s;
        const QString quiet = values + u"SeCC_SyI_Serialnumber IN ('SX100004','SX100005',"
                                       "'SX100008') ORDER BY 1, 2"_s,
                      unpowered = values + u"SeCC_SyI_Serialnumber='SX100001' AND "
                                           "SeCC_Sensornumber=6"_s,
                      online = values + u"SeCC_SyI_Serialnumber='SX100001' ORDER BY 2"_s;
        const QByteArray quietBefore = digest(m_db, quiet),
                         unpoweredBefore = digest(m_db, unpowered),
                         onlineBefore = digest(m_db, online);
        sim::LiveServer live(m_db, {});
        sim::TickSummary total;
        runTicks(live, 3, 2, &total);

        // Offline, programming and unused units report nothing; neither do unpowered points.
        QCOMPARE(digest(m_db, quiet), quietBefore);
        QCOMPARE(digest(m_db, unpowered), unpoweredBefore);
        QVERIFY(digest(m_db, online) != onlineBefore);
        QVERIFY(total.readings > 0);

        // Clocks that are set follow the polls; unset ones stay unset.
        const QStringList rtc = column(
            m_db, u"SELECT SyCC_Rtc FROM Systems_Current_Condition WHERE SyCC_SyI_Serialnumber IN "
                  "('SX100001','SX100003','SX100004','SX100010') ORDER BY SyCC_SyI_Serialnumber"_s);
        QCOMPARE(rtc.size(), 4);
        QCOMPARE(rtc[0].left(19), sqlDateTimeText(m_now));
        QCOMPARE(rtc[1], u"<null>"_s);
        QVERIFY(rtc[2].left(19) != sqlDateTimeText(m_now));
        QCOMPARE(rtc[3].left(10), u"1899-12-30"_s);

        // Out of bounds always agrees with the reading and the limits in force.
        QCOMPARE(scalar(m_db, boundsDisagree()), 0);
    }

    void recordsAndEventsContinueTheirSequences()
    {
        const qint64 recordsBefore = count(u"Records"_s);
        const QString unlogged =
            u"Sensors_Info WHERE SeI_Used=1 AND "
            "SeI_RecordsTable_Pagebyteswrit=0 AND SeI_RecordsTable_Lastpagesn=0"_s;
        const qint64 unloggedBefore = count(unlogged);
        // A record every round; long rounds: many crossings in few ticks.
        sim::LiveServer live(m_db, {.recordSecs = 0, .stepSecs = 120});
        sim::TickSummary total;
        runTicks(live, 15, 120, &total);

        QVERIFY(total.records > 0);
        QVERIFY(total.events > 0);
        QCOMPARE(count(u"Records"_s), recordsBefore + total.records);
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
            QVERIFY2(count(QString::fromLatin1(broken)) == 0, broken);
        // Points without a record store stay without records.
        QCOMPARE(count(unlogged), unloggedBefore);
        QCOMPARE(scalar(m_db, storesDisagree(false)), 0);
        QCOMPARE(scalar(m_db, storesDisagree(true)), 0);
    }

    void bypassedPointRaisesNothing()
    {
        sim::RequestHandler requests(m_db, {.answerDelayMs = 0, .forcedReply = {}},
                                     [this] { return m_now; });
        insertRequest(u"SX100001"_s, 3, u"1234;3;1"_s);
        QVERIFY(!requests.poll(0).isError());
        sim::LiveServer live(m_db, {.stepSecs = 120}, &requests.bypasses());
        runTicks(live, 15, 120);

        // Point 3 is a contact input; unbypassed it opens and closes in these rounds.
        const QString since = u"Events_1 WHERE Event_SyI_Serialnumber='SX100001' AND "
                              "Event_Datetime>'2024-03-10 12:00:00' AND "_s;
        QVERIFY(count(since + u"Event_EventSource BETWEEN 1 AND 20 AND Event_EventSource<>3"_s) >
                0);
        QCOMPARE(count(since + u"Event_EventSource=3"_s), 0);
        QCOMPARE(pointAlarm(3), 0);
    }

    void newMessagesAge()
    {
        const auto ages = [this](const char* age) {
            QHash<QString, qint64> out;
            Rows rows = m_db.read(
                u"SELECT SeE_SyI_Serialnumber || '#' || SeE_Sensornumber || '#' "
                "|| SeE_Eventnumber, %1 FROM Sensors_Events"_s.arg(QLatin1StringView(age)));
            while (rows.next())
                out.insert(rows.text(0).value_or(QString()), rows.integer(1).value_or(-1));
            return out;
        };
        sim::LiveServer live(m_db, {});
        runTicks(live, 1, 2);
        QVERIFY(count(u"Sensors_Events WHERE SeE_Recipients<>0"_s) > 0);
        // Waiting messages grow older by the time between rounds; archived ones keep their age.
        const auto expected =
            ages("SeE_BeforeCounter + CASE WHEN SeE_Recipients<>0 THEN 7 ELSE 0 END");
        runTicks(live, 1, 7);
        const auto after = ages("SeE_BeforeCounter");
        for (auto it = expected.begin(); it != expected.end(); ++it)
            QCOMPARE(after.value(it.key(), -1), it.value());
    }

private:
    void insertRequest(const QString& serial, int type, const QString& attributes)
    {
        QVERIFY(!m_db.exec(u"INSERT INTO Terminal_Requests VALUES (%1, %2, %3, 0, 0, NULL)"_s.arg(
                               sqlQuote(serial), QString::number(type), sqlQuote(attributes)))
                     .isError());
    }

    QString code(const QString& serial) { return sim::unitCode(m_db, serial).value_or(QString()); }
    qint64 count(const QString& from) { return scalar(m_db, u"SELECT COUNT(*) FROM "_s + from); }
    qint64 lastEvent()
    {
        return scalar(m_db, u"SELECT MAX(Event_SystemEventSN) FROM Events_1 WHERE "
                            "Event_SyI_Serialnumber='SX100001'"_s);
    }
    qint64 unitState(const QString& column, const QString& serial)
    {
        return scalar(m_db, u"SELECT %1 FROM Systems_Current_Condition WHERE "
                            "SyCC_SyI_Serialnumber=%2"_s.arg(column, sqlQuote(serial)));
    }
    qint64 pointAlarm(int point)
    {
        return scalar(m_db,
                      u"SELECT SeCC_Alarmcondition FROM Sensors_Current_Condition WHERE "
                      "SeCC_SyI_Serialnumber='SX100001' AND SeCC_Sensornumber=%1"_s.arg(point));
    }

    // The reply of the unit's request, 0 while it is pending.
    qint64 replyOf(const QString& serial)
    {
        const qint64 r = scalar(m_db, u"SELECT TrmReq_Requestreply FROM Terminal_Requests WHERE "
                                      u"TrmReq_Requestcompleted<>0 AND TrmReq_SyI_Serialnumber="_s +
                                          sqlQuote(serial));
        return r < 0 ? 0 : r;
    }

    // One poll with no answer delay; how many rows it answered, -1 on error.
    int answerNow(sim::RequestPolicy policy = {})
    {
        policy.answerDelayMs = 0;
        sim::RequestHandler handler(m_db, policy);
        int answered = -1;
        return handler.poll(0, &answered).isError() ? -1 : answered;
    }

    // Runs `rounds` rounds `stepSecs` apart after the seeded history.
    void runTicks(sim::LiveServer& live, int rounds, qint64 stepSecs,
                  sim::TickSummary* total = nullptr)
    {
        for (int i = 0; i < rounds; ++i) {
            m_now += stepSecs;
            sim::TickSummary s;
            const DbError e = live.tick(m_now, &s);
            QVERIFY2(!e.isError(), qPrintable(e.description));
            if (total) {
                total->readings += s.readings;
                total->records += s.records;
                total->events += s.events;
            }
        }
    }

    ScratchDatabase m_scratch;
    Database m_db;
    qint64 m_now = 0;
};

QTEST_GUILESS_MAIN(TestSimServer)
#include "tst_sim_server.moc"
