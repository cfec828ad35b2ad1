#include "ScratchDatabase.h"
#include "SimTestHelpers.h"
#include "model/Dialect.h"
#include "model/Schema.h"
#include "model/fleet/FleetSummary.h"
#include "sim/RecordWriter.h"
#include "sim/ScaleSeeder.h"
#include "sim/Seeder.h"
#include "sim/SimSchema.h"

#include <QRegularExpression>
#include <QSet>
#include <QTest>

#include <numeric>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

namespace {

// What a seed wrote, table by table, every row in the order of all its columns.
QMap<QString, QByteArray> fingerprint(Database& db)
{
    QMap<QString, QStringList> columns{{u"Sim_Unit_Codes"_s, {u"SimC_Serialnumber"_s}}};
    for (const sim::SchemaColumn& c : sim::schemaColumns())
        columns[c.table] << c.column;
    QMap<QString, QByteArray> out;
    for (auto it = columns.cbegin(); it != columns.cend(); ++it)
        out.insert(it.key(),
                   digest(db, u"SELECT * FROM %1 ORDER BY %2"_s.arg(it.key(), it->join(u','))));
    return out;
}

} // namespace

class TestSimSeed : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        SX_REQUIRE_DB(m_scratch);
        QVERIFY(m_scratch.open(m_db));
        const sim::SeedReport r = sim::seedDemo(m_db, smallSeed(3));
        QVERIFY2(!r.error.isError(), qPrintable(r.error.description));
        QCOMPARE(r.units.size(), 12);
        QVERIFY(m_spareScratch.open(m_spare));
    }

    void sameSeedSameRows()
    {
        Database& db = m_spare;
        QVERIFY(!sim::clearAllData(db).isError());
        QVERIFY(!sim::seedDemo(db, smallSeed(2, 7)).error.isError());
        const auto first = fingerprint(db);
        QVERIFY(!sim::seedDemo(db, smallSeed(2, 7)).error.isError());
        const auto second = fingerprint(db);
        QCOMPARE(second, first);
        QVERIFY(!first.values().contains(QByteArray("query failed")));

        // Serials do not depend on the seed, so a re-seed keeps the units; codes do.
        const QString serials = u"SELECT SyI_Serialnumber FROM Systems_Info ORDER BY 1"_s;
        const QStringList units = column(db, serials);
        QVERIFY(!sim::seedDemo(db, smallSeed(2, 8)).error.isError());
        const auto third = fingerprint(db);
        QVERIFY(third[u"Records"_s] != first[u"Records"_s]);
        QVERIFY(third[u"Sim_Unit_Codes"_s] != first[u"Sim_Unit_Codes"_s]);
        QCOMPARE(column(db, serials), units);
    }

    // Every query counts what must not be: rows that break a rule, or 1 for a case the seed
    // left out.
    void nothingIsMissingOrBroken_data()
    {
        QTest::addColumn<QString>("sql");
        const auto missing = [](const QString& count) {
            return u"SELECT CASE WHEN (%1) > 0 THEN 0 ELSE 1 END"_s.arg(count);
        };
        const auto row = [&](const char* tag, const QString& table, const QString& where) {
            QTest::newRow(tag) << missing(u"SELECT COUNT(*) FROM "_s + table + u" WHERE "_s +
                                          where);
        };
        const QString si = u"Sensors_Info"_s, scc = u"Sensors_Current_Condition"_s,
                      pcc = u"Powermonitoring_Current_Condit"_s, units = u"Systems_Info"_s,
                      sycc = u"Systems_Current_Condition"_s, faults = u"Systems_Faults"_s,
                      inputs = u"Powermonitoring_Info"_s, events = u"Events_1"_s;
        QStringList unknown;
        for (QStringView m : kUnitModels) {
            QTest::addRow("model %s", qPrintable(m.toString()))
                << missing(u"SELECT COUNT(*) FROM Systems_Info WHERE SyI_Model="_s + sqlQuote(m));
            unknown << u"SyI_Model NOT LIKE '%%1%'"_s.arg(m);
        }
        row("model outside the list", units, unknown.join(u" AND "_s));
        // Versions 1.x compare as text; 1A and 1B take the extended form from 1.15.
        const QString oneAB = u"SyI_Softver LIKE '1.%' AND (SyI_Model LIKE '%SENTORAX-1A%' OR "
                              "SyI_Model LIKE '%SENTORAX-1B%') AND SyI_Softver"_s;
        row("1A or 1B before 1.15", units, oneAB + u"<'1.15'"_s);
        row("1A or 1B from 1.15", units, oneAB + u">='1.15'"_s);
        row("before 1.22", units, u"SyI_Softver LIKE '1.%' AND SyI_Softver<'1.22'"_s);
        row("from 1.22", units, u"SyI_Softver>='1.22'"_s);
        row("unit without name", units, u"SyI_Systemname=''"_s);
        row("unit with name", units, u"SyI_Systemname<>''"_s);
        row("used point without name", si, u"SeI_Sensorname='' AND SeI_Used=1"_s);
        row("point with name", si, u"SeI_Sensorname<>''"_s);
        row("further input without name", inputs, u"PmI_Powername='' AND PmI_Powernumber>1"_s);
        row("quoted serial records", u"Records"_s, u"Rec_SyI_Serialnumber='SX''Q7'"_s);
        row("quoted serial events", events, u"Event_SyI_Serialnumber='SX''Q7'"_s);
        row("unused point", si, u"SeI_Used=0"_s);
        const QString analogue = u"SeI_Used=1 AND SeI_Sensortype<>2 AND "_s;
        row("both limits", si, analogue + u"SeI_Minlimitused=1 AND SeI_Maxlimitused=1"_s);
        row("upper limit only", si, analogue + u"SeI_Minlimitused=0 AND SeI_Maxlimitused=1"_s);
        row("lower limit only", si, analogue + u"SeI_Minlimitused=1 AND SeI_Maxlimitused=0"_s);
        row("no limit", si, analogue + u"SeI_Minlimitused=0 AND SeI_Maxlimitused=0"_s);
        row("contact with limit flags", si, u"SeI_Sensortype=2 AND SeI_Maxlimitused=1"_s);
        const QString powered = u" AND SeCC_Notpowered=0"_s;
        row("out, no alarm", scc, u"SeCC_Outofbounds>0 AND SeCC_Alarmcondition=0"_s + powered);
        row("out, alarm", scc, u"SeCC_Outofbounds>0 AND SeCC_Alarmcondition>0"_s + powered);
        row("in, alarm", scc, u"SeCC_Outofbounds=0 AND SeCC_Alarmcondition>0"_s + powered);
        row("in, no alarm", scc, u"SeCC_Outofbounds=0 AND SeCC_Alarmcondition=0"_s + powered);
        row("not powered, no alarm", scc, u"SeCC_Notpowered<>0 AND SeCC_Alarmcondition=0"_s);
        row("not powered, alarm", scc, u"SeCC_Notpowered<>0 AND SeCC_Alarmcondition>0"_s);
        row("powered unknown", scc, u"SeCC_Notpowered IS NULL"_s);
        row("unused input", inputs, u"PmI_Used=0"_s);
        row("cut, fault", pcc, u"PmCC_Powerfault>0 AND PmCC_Powercondition>0"_s);
        row("fault only", pcc, u"PmCC_Powerfault>0 AND PmCC_Powercondition=0"_s);
        row("cut only", pcc, u"PmCC_Powerfault=0 AND PmCC_Powercondition>0"_s);
        row("input fine", pcc, u"PmCC_Powerfault=0 AND PmCC_Powercondition=0"_s);
        row("sensor fault", faults, u"SyF_Faulttype=1"_s);
        row("used point, empty store", si,
            u"SeI_Used=1 AND SeI_RecordsTable_Pagebyteswrit=0 AND SeI_RecordsTable_Lastpagesn=0"_s);
        row("unit fault 3", faults, u"SyF_Faulttype=0 AND SyF_Faultinfo='3'"_s);
        row("unit fault 4", faults, u"SyF_Faulttype=0 AND SyF_Faultinfo='4'"_s);
        row("unit fault needing service", faults,
            u"SyF_Faulttype=0 AND SyF_Faultinfo IN ('0','8')"_s);
        row("unit with only faults 3 and 4", faults + u" a"_s,
            u"NOT EXISTS (SELECT 1 FROM Systems_Faults b WHERE "
            "b.SyF_SyI_Serialnumber=a.SyF_SyI_Serialnumber AND NOT (b.SyF_Faulttype=0 AND "
            "b.SyF_Faultinfo IN ('3','4')))"_s);
        for (const QString& p : {u"SeE_"_s, u"PmE_"_s}) {
            const QString table = p == u"SeE_" ? u"Sensors_Events"_s : u"Powermonitoring_Events"_s;
            for (const QString& where :
                 {u"Recipients<>0"_s, u"Recipients=0"_s, u"Recordeddatetime IS NULL"_s,
                  u"Recordeddatetime IS NOT NULL"_s, u"Recordeddatetime < '1900-01-01 00:00:00'"_s})
                QTest::addRow("%s%s", qPrintable(p), qPrintable(where))
                    << missing(u"SELECT COUNT(*) FROM "_s + table + u" WHERE "_s + p + where);
        }
        row("record above its maximum",
            u"Records JOIN Sensors_Info ON SeI_SyI_Serialnumber=Rec_SyI_Serialnumber AND "
            "SeI_Sensornumber=Rec_SeI_Sensornumber"_s,
            u"SeI_Maxlimitused=1 AND SeI_Sensortype<>2 AND Rec_Value>SeI_Maxlimit"_s);
        row("point that changed type",
            u"(SELECT 1 FROM Records GROUP BY Rec_SyI_Serialnumber, Rec_SeI_Sensornumber HAVING "
            "COUNT(DISTINCT Rec_Sensortype)>1) t"_s,
            u"1=1"_s);
        for (const char* info :
             {"22|3;7", "23|3;4", "24|2;1", "24|5;0", "25|1;4;8", "25|0;%", "25|2;%"})
            QTest::addRow("source %s", info) << missing(
                u"SELECT COUNT(*) FROM Events_1 WHERE Event_EventSource=%1 AND Event_Info1 LIKE '%2'"_s
                    .arg(QString::fromLatin1(info).section(u'|', 0, 0),
                         QString::fromLatin1(info).section(u'|', 1)));
        // Mains events include both alarms and restorations.
        row("mains alarm", events, u"Event_EventSource=21 AND Event_Condition % 2 = 1"_s);
        row("mains restored", events, u"Event_EventSource=21 AND Event_Condition % 16 = 0"_s);
        for (int b : {0x00, 0x01, 0x21, 0x23, 0x31})
            QTest::addRow("power byte %x", b) << missing(
                u"SELECT COUNT(*) FROM Powermonitoring_Events WHERE PmE_Eventpowercondition=%1"_s
                    .arg(b));
        row("unit with empty event store", units,
            u"SyI_EventsTable_Pagebyteswritt=0 AND SyI_EventsTable_Lastpagesn=0"_s);
        row("clock unset", sycc, u"SyCC_Rtc IS NULL"_s);
        row("clock zero", sycc, u"SyCC_Rtc < '1900-01-01 00:00:00'"_s);
        row("clock current", sycc, u"SyCC_Rtc > '2024-03-10 11:58:00'"_s);
        // Rows that break a rule, counted.
        const auto none = [](const char* tag, const QString& from) {
            QTest::newRow(tag) << u"SELECT COUNT(*) FROM "_s + from;
        };
        none("event numbers 1..n",
             u"(SELECT 1 FROM Events_1 GROUP BY Event_SyI_Serialnumber HAVING "
             "MAX(Event_SystemEventSN)<>COUNT(*) OR MIN(Event_SystemEventSN)<>1) t"_s);
        none(
            "event order is time order",
            u"Events_1 a JOIN Events_1 b ON a.Event_SyI_Serialnumber=b.Event_SyI_Serialnumber AND "
            "b.Event_SystemEventSN=a.Event_SystemEventSN+1 WHERE b.Event_Datetime<a.Event_Datetime"_s);
        none("record numbers 1..n",
             u"(SELECT 1 FROM Records GROUP BY Rec_SyI_Serialnumber, Rec_SeI_Sensornumber HAVING "
             "MAX(Rec_SensRecSN)<>COUNT(*) OR MIN(Rec_SensRecSN)<>1) t"_s);
        none("sensor faults name the unit's points",
             u"Systems_Faults f WHERE SyF_Faulttype=1 AND NOT EXISTS (SELECT 1 FROM Sensors_Info "
             "WHERE SeI_SyI_Serialnumber=f.SyF_SyI_Serialnumber AND "
             "CAST(SeI_Sensornumber AS TEXT)=f.SyF_Faultinfo)"_s);
        QTest::newRow("record stores match their rows") << storesDisagree(false);
        QTest::newRow("event stores match their rows") << storesDisagree(true);
        none("limits in order", si + u" WHERE SeI_Minlimit >= SeI_Maxlimit"_s);
        QTest::newRow("quoted serial unit once")
            << u"SELECT COUNT(*) - 1 FROM Systems_Info WHERE SyI_Serialnumber='SX''Q7'"_s;
        // One current-condition row per unit, point and input.
        const QString pairs[][2] = {
            {sycc, units},
            {pcc, inputs},
            {scc, si},
            {si + u" JOIN Sensors_Current_Condition ON SeCC_SyI_Serialnumber="
                  "SeI_SyI_Serialnumber AND SeCC_Sensornumber=SeI_Sensornumber"_s,
             si}};
        for (const auto& [a, b] : pairs)
            QTest::addRow("rows of %s", qPrintable(a.left(30)))
                << u"SELECT (SELECT COUNT(*) FROM %1) - (SELECT COUNT(*) FROM %2)"_s.arg(a, b);
        // The reported further inputs never outnumber the unit's inputs; no input bit beyond them.
        none("power bytes within the inputs",
             u"Powermonitoring_Events WHERE %1 > COALESCE((SELECT MAX(PmI_Powernumber) FROM "
             "Powermonitoring_Info WHERE PmI_SyI_Serialnumber=PmE_SyI_Serialnumber), 0) - 1 OR "
             "((PmE_Eventpowercondition & 15) >> (%1 + 1)) <> 0"_s.arg(
                 u"((PmE_Eventpowercondition & 48) / 16)"_s));
        QTest::newRow("out of bounds agrees with the limits") << boundsDisagree();
        // Without a date, the age is what the console shows.
        none("SeE_undated with age", u"Sensors_Events WHERE SeE_Recordeddatetime IS NULL AND NOT "
                                     "(SeE_BeforeCounter>0)"_s);
        none("PmE_undated with age", u"Powermonitoring_Events WHERE PmE_Recordeddatetime IS NULL "
                                     "AND NOT (PmE_BeforeCounter>0)"_s);
    }

    void nothingIsMissingOrBroken()
    {
        QFETCH(QString, sql);
        QCOMPARE(scalar(m_db, sql), 0);
    }

    // Every value a coded column takes, each one at least once.
    void valueSets_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QList<qint64>>("values");
        QList<qint64> types(21), sources(25);
        std::iota(types.begin(), types.end(), 0);
        std::iota(sources.begin(), sources.end(), 1);
        const QList<qint64> flags{0, 1};
        QTest::newRow("unit used") << u"SyI_Used FROM Systems_Info"_s << flags;
        QTest::newRow("online") << u"SyI_Online FROM Systems_Info"_s << QList<qint64>{0, 1, 2};
        QTest::newRow("unit alarm")
            << u"SyCC_Alarmcondition FROM Systems_Current_Condition"_s << QList<qint64>{0, 1, 2, 3};
        QTest::newRow("relay") << u"SyCC_RelayBcondition FROM Systems_Current_Condition"_s << flags;
        QTest::newRow("message type") << u"SeE_Eventtype FROM Sensors_Events"_s << flags;
        QTest::newRow("contact records")
            << u"Rec_Value FROM Records WHERE Rec_Sensortype=2"_s << flags;
        QTest::newRow("point types") << u"SeI_Sensortype FROM Sensors_Info"_s << types;
        QTest::newRow("inputs per unit")
            << u"COUNT(*) FROM Powermonitoring_Info GROUP BY PmI_SyI_Serialnumber"_s
            << QList<qint64>{1, 2, 3, 4};
        QTest::newRow("event sources") << u"Event_EventSource FROM Events_1"_s << sources;
        QTest::newRow("point event conditions")
            << u"Event_Condition FROM Events_1 WHERE Event_EventSource<=20"_s << flags;
        QTest::newRow("event acks") << u"Event_Ack FROM Events_1"_s << flags;
    }
    void valueSets()
    {
        QFETCH(QString, sql);
        QFETCH(QList<qint64>, values);
        QSet<qint64> seen;
        for (Rows rows = m_db.read(u"SELECT "_s + sql); rows.next();)
            seen.insert(rows.integer(0).value_or(-1));
        QCOMPARE(seen, QSet<qint64>(values.begin(), values.end()));
    }

    void eventDetailsAreWellFormed()
    {
        const QString point = u"([1-9]|1[0-9]|20)"_s;
        const QRegularExpression form(u"^(22:%1(;%1)*|23:[0-8](;[0-8])*|24:[1-5];[01]|"
                                      "25:[0-2];%1;([1-9]|1[0-9]|2[0-4]))$"_s.arg(point));
        for (const QString& e : column(m_db, u"SELECT Event_EventSource || ':' || Event_Info1 "
                                             "FROM Events_1 WHERE Event_EventSource>=22"_s))
            QVERIFY2(form.match(e).hasMatch(), qPrintable(e));
    }

    void recordsAreEvenlySpaced()
    {
        const QStringList times =
            column(m_db, u"SELECT Rec_Datetime FROM Records WHERE Rec_SyI_Serialnumber='SX100001' "
                         "AND Rec_SeI_Sensornumber=2 ORDER BY Rec_SensRecSN"_s);
        QCOMPARE(times.size(), 3 * 288);
        for (qsizetype i = 0; i < times.size(); ++i)
            QCOMPARE(times[i].left(19), sqlDateTimeText(seedEnd() - (times.size() - 1 - i) * 300));
    }

    void recordSeriesKeepsQuotedSerialAndNumbers()
    {
        Database& db = m_spare;
        QVERIFY(!sim::clearAllData(db).isError());
        // Characters that COPY and SQL both treat specially.
        const QString serial = u"A'B\\C\tD"_s;
        const qint64 from = secsFromCivil({2023, 12, 31, 23, 58, 0});
        QVERIFY(!sim::seedRecords(db, serial, 7, 0, from, 60, 1000, 3).isError());
        const QString mine = u" FROM Records WHERE Rec_SyI_Serialnumber="_s + db.literal(serial);
        const QStringList times =
            column(db, u"SELECT Rec_Datetime"_s + mine + u" ORDER BY Rec_SensRecSN"_s);
        QCOMPARE(times.size(), 1000);
        for (qsizetype n = 0; n < times.size(); ++n)
            QCOMPARE(times[n].left(19), sqlDateTimeText(from + n * 60));
        QCOMPARE(times[2].left(19), u"2024-01-01 00:00:00"_s);
        QCOMPARE(scalar(db, u"SELECT COUNT(DISTINCT Rec_SensRecSN)"_s + mine +
                                u" AND Rec_SeI_Sensornumber=7 AND Rec_Sensortype=0 AND "
                                "Rec_Value IS NOT NULL AND Rec_SensRecSN BETWEEN 1 AND 1000"_s),
                 1000);
    }

    void recordSeriesInsideOuterTransactionRollsBack()
    {
        Database& db = m_spare;
        QVERIFY(!sim::clearAllData(db).isError());
        QVERIFY(!db.begin().isError());
        QVERIFY(!sim::seedRecords(db, u"T1"_s, 1, 3, seedEnd(), 60, 60000, 1).isError());
        // The writer must not have committed on its own, even past its batch size.
        QVERIFY(!db.rollback().isError());
        QCOMPARE(scalar(db, u"SELECT COUNT(*) FROM Records"_s), 0);
    }

    void scaleSeedCountsAndUsesThePartialIndexes()
    {
        Database& db = m_spare;
        const sim::SeedReport r = sim::seedDemo(db, smallSeed(1));
        QVERIFY2(!r.error.isError(), qPrintable(r.error.description));
        sim::ScaleOptions o;
        o.messages = 1200;
        o.endSecs = r.endSecs;
        const sim::ScaleReport s = sim::seedScale(db, o);
        QVERIFY2(!s.error.isError(), qPrintable(s.error.description));
        QCOMPARE(s.pointMessages + s.powerMessages, 1200);
        QCOMPARE(scalar(db, u"SELECT (SELECT COUNT(*) FROM Sensors_Events WHERE SeE_Recipients<>0)"
                            " + (SELECT COUNT(*) FROM Powermonitoring_Events WHERE "
                            "PmE_Recipients<>0)"_s),
                 s.newMessages);

        // A small table is read whole when that is cheaper; the question is whether the index fits.
        const bool pg = db.kind() == DbKind::PostgreSQL;
        if (pg)
            QVERIFY(!db.exec(u"SET enable_seqscan = off"_s).isError());
        QString plan;
        {
            Rows rows = db.read((pg ? u"EXPLAIN "_s : u"EXPLAIN QUERY PLAN "_s) +
                                fleetQueries(db.kind()).messages);
            while (rows.next()) // the plan's text is the last column
                plan += rows.text(rows.columnCount() - 1).value_or(QString()) + u'\n';
        }
        if (pg)
            QVERIFY(!db.exec(u"SET enable_seqscan = on"_s).isError());
        QVERIFY2(plan.contains(u"ix_sensors_events_new"_s) &&
                     plan.contains(u"ix_powermonitoring_events_new"_s),
                 qPrintable(plan));

        // The same counts without the console's indexes.
        const auto counts = [&db] {
            QHash<QString, int> out;
            for (const UnitSummary& u : readFleetSummary(db).value_or(FleetSummary{}).units)
                out.insert(u.serial, u.newMessages);
            return out;
        };
        const QHash<QString, int> with = counts();
        QVERIFY(!sim::dropConsoleIndexes(db).isError());
        const QHash<QString, int> without = counts();
        QVERIFY(!sim::createConsoleIndexes(db).isError());
        QVERIFY(!with.isEmpty());
        QCOMPARE(without, with);
    }

private:
    ScratchDatabase m_scratch;
    Database m_db;
    // For the tests that rewrite everything; new databases are slow on a server.
    ScratchDatabase m_spareScratch;
    Database m_spare;
};

QTEST_GUILESS_MAIN(TestSimSeed)
#include "tst_sim_seed.moc"
