// The demo fleet as written into a real database: repeatable, and covering
// every case the console tells apart.
#include "ScratchDatabase.h"
#include "SimTestHelpers.h"
#include "model/Formatting.h"
#include "model/Schema.h"
#include "sim/RecordWriter.h"
#include "sim/Seeder.h"
#include "sim/SimSchema.h"
#include "sim/StoreCounters.h"

#include <QRegularExpression>
#include <QSet>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

namespace {

// What a seed wrote, table by table.
QMap<QString, QByteArray> fingerprint(Database& db)
{
    return {
        {u"units"_s, digest(db, u"SELECT * FROM Systems_Info ORDER BY SyI_Serialnumber"_s)},
        {u"points"_s,
         digest(db,
                u"SELECT * FROM Sensors_Info ORDER BY SeI_SyI_Serialnumber, SeI_Sensornumber"_s)},
        {u"events"_s,
         digest(db,
                u"SELECT * FROM Events_1 ORDER BY Event_SyI_Serialnumber, Event_SystemEventSN"_s)},
        {u"records"_s,
         digest(
             db,
             u"SELECT * FROM Records ORDER BY Rec_SyI_Serialnumber, Rec_SeI_Sensornumber, Rec_SensRecSN"_s)},
        {u"messages"_s,
         digest(
             db,
             u"SELECT * FROM Sensors_Events ORDER BY SeE_SyI_Serialnumber, SeE_Sensornumber, SeE_Eventnumber"_s)},
        {u"power"_s,
         digest(
             db,
             u"SELECT * FROM Powermonitoring_Events ORDER BY PmE_SyI_Serialnumber, PmE_Eventnumber"_s)},
        {u"codes"_s, digest(db, u"SELECT * FROM Sim_Unit_Codes ORDER BY SimC_Serialnumber"_s)},
    };
}

QSet<qint64> integers(Database& db, const QString& sql)
{
    QSet<qint64> out;
    Rows rows = db.read(sql);
    while (rows.next())
        out.insert(rows.integer(0).value_or(-1));
    return out;
}

} // namespace

class TestSimSeed : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();

    void schemaTwiceKeepsData();
    void sameSeedSameRows();

    void everyModelAndVersionSide();
    void unitStates();
    void namesMayBeEmpty();
    void everySensorTypeAndLimitCase();
    void pointConditionCases();
    void powerInputsAndCuts();
    void faultsOfBothTypes();
    void messagesNewArchivedAndUndated();
    void powerMessageBytes();
    void everyEventSourceWithWellFormedDetails();
    void eventNumbersRunWithoutGaps();
    void storeCountersMatchRows();
    void recordsAreEvenlySpacedAndCrossLimits();
    void unitClocks();
    void everyUnitHasAnAccessCode();

    void recordSeriesKeepsQuotedSerialAndNumbers();
    void recordSeriesInsideOuterTransactionRollsBack();

private:
    ScratchDatabase m_scratch;
    Database m_db;
    // For the tests that rewrite everything; new databases are slow on a server.
    ScratchDatabase m_spareScratch;
    Database m_spare;
};

void TestSimSeed::initTestCase()
{
    SX_REQUIRE_DB(m_scratch);
    QVERIFY(m_scratch.open(m_db));
    const sim::SeedReport r = sim::seedDemo(m_db, smallSeed(3));
    QVERIFY2(!r.error.isError(), qPrintable(r.error.description));
    QCOMPARE(r.units.size(), 12);
    QVERIFY(m_spareScratch.open(m_spare));
}

void TestSimSeed::schemaTwiceKeepsData()
{
    const qint64 before = scalar(m_db, u"SELECT COUNT(*) FROM Records"_s);
    QVERIFY(before > 0);
    QVERIFY(!sim::createSchema(m_db).isError());
    QVERIFY(!sim::createSchema(m_db).isError());
    QCOMPARE(scalar(m_db, u"SELECT COUNT(*) FROM Records"_s), before);
}

void TestSimSeed::sameSeedSameRows()
{
    Database& db = m_spare;
    QVERIFY(!sim::clearAllData(db).isError());
    QVERIFY(!sim::seedDemo(db, smallSeed(2, 7)).error.isError());
    const auto first = fingerprint(db);
    QVERIFY(!sim::seedDemo(db, smallSeed(2, 7)).error.isError());
    const auto second = fingerprint(db);
    QCOMPARE(second, first);
    QVERIFY(!first.values().contains(QByteArray("query failed")));

    QVERIFY(!sim::seedDemo(db, smallSeed(2, 8)).error.isError());
    const auto third = fingerprint(db);
    QVERIFY(third[u"records"_s] != first[u"records"_s]);
    QVERIFY(third[u"codes"_s] != first[u"codes"_s]);
}

void TestSimSeed::everyModelAndVersionSide()
{
    const QStringList models = column(m_db, u"SELECT SyI_Model FROM Systems_Info"_s);
    for (QStringView m : kUnitModels)
        QVERIFY2(models.contains(m.toString()), qPrintable(m.toString()));

    Rows rows = m_db.read(u"SELECT SyI_Model, SyI_Softver FROM Systems_Info"_s);
    bool below115 = false, from115 = false, below122 = false, from122 = false, unknownModel = false;
    while (rows.next()) {
        const QString model = rows.textOr(u"SyI_Model");
        const int v = unitVersionNumber(rows.textOr(u"SyI_Softver"));
        const bool oneAB = model.contains(u"SENTORAX-1A") || model.contains(u"SENTORAX-1B");
        below115 |= oneAB && v < 115;
        from115 |= oneAB && v >= 115;
        below122 |= v < 122;
        from122 |= v >= 122;
        unknownModel |= std::none_of(std::begin(kUnitModels), std::end(kUnitModels),
                                     [&](QStringView m) { return model.contains(m); });
    }
    QVERIFY(below115 && from115 && below122 && from122);
    QVERIFY(unknownModel);
}

void TestSimSeed::unitStates()
{
    const QSet<qint64> online = integers(m_db, u"SELECT SyI_Online FROM Systems_Info"_s);
    QVERIFY(online.contains(0) && online.contains(1) && online.contains(2));
    const QSet<qint64> used = integers(m_db, u"SELECT SyI_Used FROM Systems_Info"_s);
    QCOMPARE(used, (QSet<qint64>{0, 1}));
    const QSet<qint64> notification =
        integers(m_db, u"SELECT SyCC_Alarmcondition FROM Systems_Current_Condition"_s);
    QCOMPARE(notification, (QSet<qint64>{0, 1, 2, 3}));
    QCOMPARE(integers(m_db, u"SELECT SyCC_RelayBcondition FROM Systems_Current_Condition"_s),
             (QSet<qint64>{0, 1}));
    // One current-condition row per unit, point and input.
    QCOMPARE(scalar(m_db, u"SELECT COUNT(*) FROM Systems_Current_Condition"_s),
             scalar(m_db, u"SELECT COUNT(*) FROM Systems_Info"_s));
    QCOMPARE(scalar(m_db, u"SELECT COUNT(*) FROM Sensors_Current_Condition"_s),
             scalar(m_db, u"SELECT COUNT(*) FROM Sensors_Info"_s));
    QCOMPARE(scalar(m_db, u"SELECT COUNT(*) FROM Powermonitoring_Current_Condit"_s),
             scalar(m_db, u"SELECT COUNT(*) FROM Powermonitoring_Info"_s));
    QCOMPARE(
        scalar(
            m_db,
            u"SELECT COUNT(*) FROM Sensors_Info JOIN Sensors_Current_Condition ON "
            "SeCC_SyI_Serialnumber=SeI_SyI_Serialnumber AND SeCC_Sensornumber=SeI_Sensornumber"_s),
        scalar(m_db, u"SELECT COUNT(*) FROM Sensors_Info"_s));
}

void TestSimSeed::namesMayBeEmpty()
{
    QVERIFY(scalar(m_db, u"SELECT COUNT(*) FROM Systems_Info WHERE SyI_Systemname=''"_s) > 0);
    QVERIFY(scalar(m_db, u"SELECT COUNT(*) FROM Systems_Info WHERE SyI_Systemname<>''"_s) > 0);
    QVERIFY(scalar(m_db,
                   u"SELECT COUNT(*) FROM Sensors_Info WHERE SeI_Sensorname='' AND SeI_Used=1"_s) >
            0);
    QVERIFY(scalar(m_db, u"SELECT COUNT(*) FROM Sensors_Info WHERE SeI_Sensorname<>''"_s) > 0);
    QVERIFY(
        scalar(
            m_db,
            u"SELECT COUNT(*) FROM Powermonitoring_Info WHERE PmI_Powername='' AND PmI_Powernumber>1"_s) >
        0);
    // The serial with a quote went through every write path.
    QCOMPARE(scalar(m_db, u"SELECT COUNT(*) FROM Systems_Info WHERE SyI_Serialnumber='SX''Q7'"_s),
             1);
    QVERIFY(scalar(m_db, u"SELECT COUNT(*) FROM Records WHERE Rec_SyI_Serialnumber='SX''Q7'"_s) >
            0);
    QVERIFY(scalar(m_db, u"SELECT COUNT(*) FROM Events_1 WHERE Event_SyI_Serialnumber='SX''Q7'"_s) >
            0);
}

void TestSimSeed::everySensorTypeAndLimitCase()
{
    QSet<qint64> expected;
    for (qint64 t = 0; t <= 20; ++t)
        expected.insert(t);
    QCOMPARE(integers(m_db, u"SELECT SeI_Sensortype FROM Sensors_Info"_s), expected);
    QVERIFY(scalar(m_db, u"SELECT COUNT(*) FROM Sensors_Info WHERE SeI_Used=0"_s) > 0);
    const QString analogue =
        u"SELECT COUNT(*) FROM Sensors_Info WHERE SeI_Used=1 AND SeI_Sensortype<>2 AND "_s;
    QVERIFY(scalar(m_db, analogue + u"SeI_Minlimitused=1 AND SeI_Maxlimitused=1"_s) > 0);
    QVERIFY(scalar(m_db, analogue + u"SeI_Minlimitused=0 AND SeI_Maxlimitused=1"_s) > 0);
    QVERIFY(scalar(m_db, analogue + u"SeI_Minlimitused=1 AND SeI_Maxlimitused=0"_s) > 0);
    QVERIFY(scalar(m_db, analogue + u"SeI_Minlimitused=0 AND SeI_Maxlimitused=0"_s) > 0);
    // A contact input with limit flags set, which the console must ignore.
    QVERIFY(
        scalar(
            m_db,
            u"SELECT COUNT(*) FROM Sensors_Info WHERE SeI_Sensortype=2 AND SeI_Maxlimitused=1"_s) >
        0);
    QVERIFY(
        scalar(m_db, u"SELECT COUNT(*) FROM Sensors_Info WHERE SeI_Minlimit < SeI_Maxlimit"_s) ==
        scalar(m_db, u"SELECT COUNT(*) FROM Sensors_Info"_s));
}

void TestSimSeed::pointConditionCases()
{
    const QString q = u"SELECT COUNT(*) FROM Sensors_Current_Condition WHERE "_s;
    QVERIFY(
        scalar(m_db, q + u"SeCC_Outofbounds>0 AND SeCC_Alarmcondition=0 AND SeCC_Notpowered=0"_s) >
        0);
    QVERIFY(
        scalar(m_db, q + u"SeCC_Outofbounds>0 AND SeCC_Alarmcondition>0 AND SeCC_Notpowered=0"_s) >
        0);
    QVERIFY(
        scalar(m_db, q + u"SeCC_Outofbounds=0 AND SeCC_Alarmcondition>0 AND SeCC_Notpowered=0"_s) >
        0);
    QVERIFY(
        scalar(m_db, q + u"SeCC_Outofbounds=0 AND SeCC_Alarmcondition=0 AND SeCC_Notpowered=0"_s) >
        0);
    QVERIFY(scalar(m_db, q + u"SeCC_Notpowered<>0 AND SeCC_Alarmcondition=0"_s) > 0);
    QVERIFY(scalar(m_db, q + u"SeCC_Notpowered<>0 AND SeCC_Alarmcondition>0"_s) > 0);
    QVERIFY(scalar(m_db, q + u"SeCC_Notpowered IS NULL"_s) > 0);

    // Out of bounds means outside a limit in force.
    Rows rows =
        m_db.read(u"SELECT SeI_Sensortype, SeI_Minlimit, SeI_Maxlimit, SeI_Minlimitused, "
                  "SeI_Maxlimitused, SeCC_Currvalue, SeCC_Outofbounds FROM Sensors_Info JOIN "
                  "Sensors_Current_Condition ON SeCC_SyI_Serialnumber=SeI_SyI_Serialnumber AND "
                  "SeCC_Sensornumber=SeI_Sensornumber"_s);
    while (rows.next()) {
        const double v = rows.realOr(u"SeCC_Currvalue");
        bool out;
        if (rows.intOr(u"SeI_Sensortype") == 2)
            out = v > 0;
        else
            out =
                (rows.intOr(u"SeI_Maxlimitused") == 1 && v > rows.realOr(u"SeI_Maxlimit") + 1e-3) ||
                (rows.intOr(u"SeI_Minlimitused") == 1 && v < rows.realOr(u"SeI_Minlimit") - 1e-3);
        if (out)
            QCOMPARE(rows.intOr(u"SeCC_Outofbounds"), 1);
    }
    QVERIFY(rows.ok());
}

void TestSimSeed::powerInputsAndCuts()
{
    const QSet<qint64> inputs = integers(
        m_db, u"SELECT COUNT(*) FROM Powermonitoring_Info GROUP BY PmI_SyI_Serialnumber"_s);
    QCOMPARE(inputs, (QSet<qint64>{1, 2, 3, 4}));
    QVERIFY(scalar(m_db, u"SELECT COUNT(*) FROM Powermonitoring_Info WHERE PmI_Used=0"_s) > 0);
    const QString q = u"SELECT COUNT(*) FROM Powermonitoring_Current_Condit WHERE "_s;
    QVERIFY(scalar(m_db, q + u"PmCC_Powerfault>0 AND PmCC_Powercondition>0"_s) > 0);
    QVERIFY(scalar(m_db, q + u"PmCC_Powerfault>0 AND PmCC_Powercondition=0"_s) > 0);
    QVERIFY(scalar(m_db, q + u"PmCC_Powerfault=0 AND PmCC_Powercondition>0"_s) > 0);
    QVERIFY(scalar(m_db, q + u"PmCC_Powerfault=0 AND PmCC_Powercondition=0"_s) > 0);
}

void TestSimSeed::faultsOfBothTypes()
{
    const QStringList unitCodes =
        column(m_db, u"SELECT SyF_Faultinfo FROM Systems_Faults WHERE SyF_Faulttype=0"_s);
    QVERIFY(unitCodes.contains(u"3"_s) && unitCodes.contains(u"4"_s));
    QVERIFY(unitCodes.contains(u"0"_s) || unitCodes.contains(u"8"_s)); // a code that needs service
    QVERIFY(scalar(m_db, u"SELECT COUNT(*) FROM Systems_Faults WHERE SyF_Faulttype=1"_s) > 0);
    // Sensor faults name points the unit has.
    QCOMPARE(scalar(m_db,
                    u"SELECT COUNT(*) FROM Systems_Faults f WHERE SyF_Faulttype=1 AND NOT EXISTS "
                    "(SELECT 1 FROM Sensors_Info WHERE SeI_SyI_Serialnumber=f.SyF_SyI_Serialnumber "
                    "AND CAST(SeI_Sensornumber AS TEXT)=f.SyF_Faultinfo)"_s),
             0);
    // A unit with only faults 3 and 4: no service line.
    QVERIFY(scalar(m_db, u"SELECT COUNT(*) FROM Systems_Faults a WHERE NOT EXISTS (SELECT 1 FROM "
                         "Systems_Faults b WHERE b.SyF_SyI_Serialnumber=a.SyF_SyI_Serialnumber AND "
                         "NOT (b.SyF_Faulttype=0 AND b.SyF_Faultinfo IN ('3','4')))"_s) > 0);
}

void TestSimSeed::messagesNewArchivedAndUndated()
{
    for (const QString& table : {u"Sensors_Events"_s, u"Powermonitoring_Events"_s}) {
        const QString p = table.startsWith(u'S') ? u"SeE_"_s : u"PmE_"_s;
        const QString q = u"SELECT COUNT(*) FROM "_s + table + u" WHERE "_s;
        QVERIFY2(scalar(m_db, q + p + u"Recipients<>0"_s) > 0, qPrintable(table));
        QVERIFY2(scalar(m_db, q + p + u"Recipients=0"_s) > 0, qPrintable(table));
        QVERIFY2(scalar(m_db, q + p + u"Recordeddatetime IS NULL"_s) > 0, qPrintable(table));
        QVERIFY2(scalar(m_db, q + p + u"Recordeddatetime IS NOT NULL"_s) > 0, qPrintable(table));
        QVERIFY2(scalar(m_db, q + p + u"Recordeddatetime < '1900-01-01 00:00:00'"_s) > 0,
                 qPrintable(table));
        // Without a date, the age is what the console shows.
        QCOMPARE(scalar(m_db, q + p + u"Recordeddatetime IS NULL AND NOT ("_s + p +
                                  u"BeforeCounter>0)"_s),
                 0);
    }
    QCOMPARE(integers(m_db, u"SELECT SeE_Eventtype FROM Sensors_Events"_s), (QSet<qint64>{0, 1}));
}

void TestSimSeed::powerMessageBytes()
{
    const QSet<qint64> bytes =
        integers(m_db, u"SELECT PmE_Eventpowercondition FROM Powermonitoring_Events"_s);
    for (qint64 b : {0x00, 0x01, 0x21, 0x23, 0x31})
        QVERIFY2(bytes.contains(b), qPrintable(QString::number(b, 16)));
    // The reported further inputs never outnumber the unit's inputs.
    Rows rows = m_db.read(u"SELECT PmE_Eventpowercondition, (SELECT MAX(PmI_Powernumber) FROM "
                          "Powermonitoring_Info WHERE PmI_SyI_Serialnumber=PmE_SyI_Serialnumber) "
                          "FROM Powermonitoring_Events"_s);
    while (rows.next()) {
        const qint64 b = rows.integer(0).value_or(-1);
        const qint64 further = (b & 48) / 16;
        QVERIFY(further <= rows.integer(1).value_or(0) - 1);
        QCOMPARE((b & 15) >> (further + 1), 0); // no input bit beyond them
    }
}

void TestSimSeed::everyEventSourceWithWellFormedDetails()
{
    QSet<qint64> all;
    for (qint64 s = 1; s <= 25; ++s)
        all.insert(s);
    QCOMPARE(integers(m_db, u"SELECT Event_EventSource FROM Events_1"_s), all);
    QCOMPARE(integers(m_db, u"SELECT Event_Condition FROM Events_1 WHERE Event_EventSource<=20"_s),
             (QSet<qint64>{0, 1}));
    QCOMPARE(integers(m_db, u"SELECT Event_Ack FROM Events_1"_s), (QSet<qint64>{0, 1}));

    const QRegularExpression forms[] = {
        QRegularExpression(u"^([1-9]|1[0-9]|20)(;([1-9]|1[0-9]|20))*$"_s),        // 22
        QRegularExpression(u"^[0-8](;[0-8])*$"_s),                                // 23
        QRegularExpression(u"^[1-5];[01]$"_s),                                    // 24
        QRegularExpression(u"^[0-2];([1-9]|1[0-9]|20);([1-9]|1[0-9]|2[0-4])$"_s), // 25
    };
    Rows rows = m_db.read(
        u"SELECT Event_EventSource, Event_Info1 FROM Events_1 WHERE Event_EventSource>=22"_s);
    QSet<QString> seen;
    while (rows.next()) {
        const qint64 source = rows.integer(0).value_or(0);
        const QString info = rows.text(1).value_or(QString());
        QVERIFY2(forms[source - 22].match(info).hasMatch(),
                 qPrintable(u"%1: %2"_s.arg(source).arg(info)));
        seen.insert(QString::number(source) + u':' + info);
    }
    for (const QString& s : {u"22:3;7"_s, u"23:3;4"_s, u"24:2;1"_s, u"24:5;0"_s, u"25:1;4;8"_s})
        QVERIFY2(seen.contains(s), qPrintable(s));
    QVERIFY(std::any_of(seen.begin(), seen.end(),
                        [](const QString& s) { return s.startsWith(u"25:0;"); }));
    QVERIFY(std::any_of(seen.begin(), seen.end(),
                        [](const QString& s) { return s.startsWith(u"25:2;"); }));

    // Mains events include both alarms and restorations.
    const QSet<qint64> mains =
        integers(m_db, u"SELECT Event_Condition FROM Events_1 WHERE Event_EventSource=21"_s);
    QVERIFY(std::any_of(mains.begin(), mains.end(), [](qint64 c) { return c & 1; }));
    QVERIFY(std::any_of(mains.begin(), mains.end(), [](qint64 c) { return (c & 15) == 0; }));
}

void TestSimSeed::eventNumbersRunWithoutGaps()
{
    QCOMPARE(scalar(m_db,
                    u"SELECT COUNT(*) FROM (SELECT Event_SyI_Serialnumber FROM Events_1 GROUP BY "
                    "Event_SyI_Serialnumber HAVING MAX(Event_SystemEventSN)<>COUNT(*) OR "
                    "MIN(Event_SystemEventSN)<>1) t"_s),
             0);
    // Sequence order is time order.
    QCOMPARE(
        scalar(
            m_db,
            u"SELECT COUNT(*) FROM Events_1 a JOIN Events_1 b ON "
            "a.Event_SyI_Serialnumber=b.Event_SyI_Serialnumber AND "
            "b.Event_SystemEventSN=a.Event_SystemEventSN+1 WHERE b.Event_Datetime<a.Event_Datetime"_s),
        0);
    QCOMPARE(
        scalar(
            m_db,
            u"SELECT COUNT(*) FROM (SELECT 1 FROM Records GROUP BY Rec_SyI_Serialnumber, "
            "Rec_SeI_Sensornumber HAVING MAX(Rec_SensRecSN)<>COUNT(*) OR MIN(Rec_SensRecSN)<>1) t"_s),
        0);
}

void TestSimSeed::storeCountersMatchRows()
{
    Rows points =
        m_db.read(u"SELECT SeI_RecordsTable_Pagebyteswrit, SeI_RecordsTable_Lastpagesn, "
                  "(SELECT COUNT(*) FROM Records WHERE Rec_SyI_Serialnumber=SeI_SyI_Serialnumber "
                  "AND Rec_SeI_Sensornumber=SeI_Sensornumber) FROM Sensors_Info"_s);
    bool usedWithout = false;
    while (points.next()) {
        const sim::StoreCounters c =
            sim::storeCounters(points.integer(2).value_or(-1), sim::kRecordEntryBytes);
        QCOMPARE(points.integer(0).value_or(-1), c.pageBytes);
        QCOMPARE(points.integer(1).value_or(-1), c.lastPage);
        usedWithout |= points.integer(2).value_or(-1) == 0;
    }
    QVERIFY(points.ok());
    QVERIFY(usedWithout);
    QVERIFY(scalar(m_db,
                   u"SELECT COUNT(*) FROM Sensors_Info WHERE SeI_Used=1 AND "
                   "SeI_RecordsTable_Pagebyteswrit=0 AND SeI_RecordsTable_Lastpagesn=0"_s) > 0);

    Rows units =
        m_db.read(u"SELECT SyI_EventsTable_Pagebyteswritt, SyI_EventsTable_Lastpagesn, "
                  "(SELECT COUNT(*) FROM Events_1 WHERE Event_SyI_Serialnumber=SyI_Serialnumber) "
                  "FROM Systems_Info"_s);
    QSet<bool> hasEvents;
    while (units.next()) {
        const qint64 n = units.integer(2).value_or(-1);
        const sim::StoreCounters c = sim::storeCounters(n, sim::kEventEntryBytes);
        QCOMPARE(units.integer(0).value_or(-1), c.pageBytes);
        QCOMPARE(units.integer(1).value_or(-1), c.lastPage);
        hasEvents.insert(n > 0);
    }
    QCOMPARE(hasEvents, (QSet<bool>{false, true}));
}

void TestSimSeed::recordsAreEvenlySpacedAndCrossLimits()
{
    Rows rows =
        m_db.read(u"SELECT Rec_Datetime FROM Records WHERE Rec_SyI_Serialnumber='SX100001' AND "
                  "Rec_SeI_Sensornumber=2 ORDER BY Rec_SensRecSN"_s);
    qint64 previous = -1, count = 0;
    while (rows.next()) {
        const qint64 t = rows.dateTime(0).value_or(0);
        if (previous >= 0)
            QCOMPARE(t - previous, 300);
        previous = t;
        ++count;
    }
    QCOMPARE(count, 3 * 288);
    QCOMPARE(previous, seedEnd());

    QVERIFY(
        scalar(
            m_db,
            u"SELECT COUNT(*) FROM Records JOIN Sensors_Info ON "
            "SeI_SyI_Serialnumber=Rec_SyI_Serialnumber AND SeI_Sensornumber=Rec_SeI_Sensornumber "
            "WHERE SeI_Maxlimitused=1 AND SeI_Sensortype<>2 AND Rec_Value>SeI_Maxlimit"_s) > 0);
    // One point changed type during its history.
    QVERIFY(scalar(m_db,
                   u"SELECT COUNT(*) FROM (SELECT 1 FROM Records GROUP BY Rec_SyI_Serialnumber, "
                   "Rec_SeI_Sensornumber HAVING COUNT(DISTINCT Rec_Sensortype)>1) t"_s) > 0);
    QCOMPARE(integers(m_db, u"SELECT Rec_Value FROM Records WHERE Rec_Sensortype=2"_s),
             (QSet<qint64>{0, 1}));
}

void TestSimSeed::unitClocks()
{
    QVERIFY(scalar(m_db,
                   u"SELECT COUNT(*) FROM Systems_Current_Condition WHERE SyCC_Rtc IS NULL"_s) > 0);
    QVERIFY(
        scalar(
            m_db,
            u"SELECT COUNT(*) FROM Systems_Current_Condition WHERE SyCC_Rtc < '1900-01-01 00:00:00'"_s) >
        0);
    QVERIFY(
        scalar(
            m_db,
            u"SELECT COUNT(*) FROM Systems_Current_Condition WHERE SyCC_Rtc > '2024-03-10 11:58:00'"_s) >
        0);
}

void TestSimSeed::everyUnitHasAnAccessCode()
{
    QCOMPARE(scalar(m_db, u"SELECT COUNT(*) FROM Systems_Info WHERE NOT EXISTS (SELECT 1 FROM "
                          "Sim_Unit_Codes WHERE SimC_Serialnumber=SyI_Serialnumber)"_s),
             0);
    const QRegularExpression code(u"^[0-9]{4,8}$"_s);
    for (const QString& c : column(m_db, u"SELECT SimC_Code FROM Sim_Unit_Codes"_s))
        QVERIFY2(code.match(c).hasMatch(), qPrintable(c));
}

void TestSimSeed::recordSeriesKeepsQuotedSerialAndNumbers()
{
    Database& db = m_spare;
    QVERIFY(!sim::clearAllData(db).isError());
    // Characters that COPY and SQL both treat specially.
    const QString serial = u"A'B\\C\tD"_s;
    const qint64 from = secsFromCivil({2023, 12, 31, 23, 58, 0});
    QVERIFY(!sim::seedRecords(db, serial, 7, 0, from, 60, 1000, 3).isError());
    Rows rows = db.read(
        u"SELECT Rec_SeI_Sensornumber, Rec_Datetime, Rec_Sensortype, Rec_SensRecSN, Rec_Value "
        "FROM Records WHERE Rec_SyI_Serialnumber="_s +
        db.literal(serial) + u" ORDER BY Rec_SensRecSN"_s);
    qint64 n = 0;
    while (rows.next()) {
        QCOMPARE(rows.integer(0).value_or(-1), 7);
        QCOMPARE(rows.dateTime(1).value_or(-1), from + n * 60);
        QCOMPARE(rows.integer(2).value_or(-1), 0);
        QCOMPARE(rows.integer(3).value_or(-1), n + 1);
        QVERIFY(rows.real(4).has_value());
        ++n;
    }
    QVERIFY(rows.ok());
    QCOMPARE(n, 1000);
    QCOMPARE(
        column(db, u"SELECT Rec_Datetime FROM Records WHERE Rec_SensRecSN=3"_s).value(0).left(19),
        u"2024-01-01 00:00:00"_s);
}

void TestSimSeed::recordSeriesInsideOuterTransactionRollsBack()
{
    Database& db = m_spare;
    QVERIFY(!sim::clearAllData(db).isError());
    QVERIFY(!db.begin().isError());
    QVERIFY(!sim::seedRecords(db, u"T1"_s, 1, 3, seedEnd(), 60, 60000, 1).isError());
    // The writer must not have committed on its own, even past its batch size.
    QVERIFY(!db.rollback().isError());
    QCOMPARE(scalar(db, u"SELECT COUNT(*) FROM Records"_s), 0);
}

QTEST_GUILESS_MAIN(TestSimSeed)
#include "tst_sim_seed.moc"
