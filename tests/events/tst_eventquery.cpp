#include "model/SqlDateTime.h"
#include "model/events/EventQuery.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::events;

class TestEventQuery : public QObject {
    Q_OBJECT

private slots:
    void period_data();
    void period();
    void eventSql_data();
    void eventSql();
    void orderedSqlSortsBySequenceNumber();
    void lookupSql_data();
    void lookupSql();
    void sourceEntryText_data();
    void sourceEntryText();
    void kindOptions_data();
    void kindOptions();
};

Q_DECLARE_METATYPE(sx::DbKind)
Q_DECLARE_METATYPE(sx::events::EventKind)

void TestEventQuery::period_data()
{
    QTest::addColumn<int>("yearIndex");
    QTest::addColumn<int>("monthIndex");
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::newRow("whole year 2004")
        << 4 << 12 << u"2004-01-01 00:00:00"_s << u"2004-12-31 23:59:59"_s;
    QTest::newRow("december rolls into next year")
        << 4 << 11 << u"2004-12-01 00:00:00"_s << u"2004-12-31 23:59:59"_s;
    QTest::newRow("leap february")
        << 4 << 1 << u"2004-02-01 00:00:00"_s << u"2004-02-29 23:59:59"_s;
    QTest::newRow("plain february")
        << 5 << 1 << u"2005-02-01 00:00:00"_s << u"2005-02-28 23:59:59"_s;
    QTest::newRow("january") << 0 << 0 << u"2000-01-01 00:00:00"_s << u"2000-01-31 23:59:59"_s;
    QTest::newRow("last year of the list")
        << 255 << 12 << u"2255-01-01 00:00:00"_s << u"2255-12-31 23:59:59"_s;
    QTest::newRow("month index out of list is whole year")
        << 4 << -1 << u"2004-01-01 00:00:00"_s << u"2004-12-31 23:59:59"_s;
}

void TestEventQuery::period()
{
    QFETCH(int, yearIndex);
    QFETCH(int, monthIndex);
    QFETCH(QString, from);
    QFETCH(QString, to);
    const EventPeriod p = eventsPeriod(yearIndex, monthIndex);
    QCOMPARE(sqlDateTimeText(p.fromSecs), from);
    QCOMPARE(sqlDateTimeText(p.toSecs), to);
}

static const QString kMainsAlarm =
    u"((Event_Condition=1) OR (Event_Condition BETWEEN 17 AND 19) OR (Event_Condition BETWEEN 33 "
    u"AND 39) OR (Event_Condition BETWEEN 49 AND 63))"_s;
static const QString kMainsRestore =
    u"((Event_Condition=0) OR (Event_Condition=16) OR (Event_Condition=32) OR (Event_Condition=64))"_s;
static const QString kHead = u"SELECT * FROM Events_1 WHERE Event_SyI_Serialnumber='SN1'"_s;
static const QString kAccessYear =
    u" AND Event_Datetime BETWEEN #2004-1-1 0:0:0# AND #2004-12-31 23:59:59#"_s;
static const QString kAccessDec =
    u" AND Event_Datetime BETWEEN #2004-12-1 0:0:0# AND #2004-12-31 23:59:59#"_s;
static const QString kOracleDec =
    u" AND Event_Datetime BETWEEN TO_DATE('1-12-2004 0:0:0','DD-MM-YYYY HH24:MI:SS') AND "
    u"TO_DATE('31-12-2004 23:59:59','DD-MM-YYYY HH24:MI:SS')"_s;
static const QString kOracleYear =
    u" AND Event_Datetime BETWEEN TO_DATE('1-1-2004 0:0:0','DD-MM-YYYY HH24:MI:SS') AND "
    u"TO_DATE('31-12-2004 23:59:59','DD-MM-YYYY HH24:MI:SS')"_s;

void TestEventQuery::eventSql_data()
{
    QTest::addColumn<DbKind>("db");
    QTest::addColumn<QString>("serial");
    QTest::addColumn<int>("source");
    QTest::addColumn<EventKind>("kind");
    QTest::addColumn<bool>("newOnly");
    QTest::addColumn<int>("month");
    QTest::addColumn<QString>("expected");

    const QString allAlarms =
        u" AND (((Event_EventSource BETWEEN 1 AND 20) AND (Event_Condition=1)) OR "
        u"((Event_EventSource=21) AND "_s +
        kMainsAlarm + u") OR (Event_EventSource BETWEEN 22 AND 24))"_s;
    const QString allRestorations =
        u" AND (((Event_EventSource BETWEEN 1 AND 20) AND (Event_Condition=0)) OR "
        u"((Event_EventSource=21) AND "_s +
        kMainsRestore + u"))"_s;

    QTest::newRow("access every source alarms new year")
        << DbKind::Access << u"SN1"_s << 0 << EventKind::Alarms << true << 12
        << kHead + allAlarms + u" AND Event_Ack=0"_s + kAccessYear;
    QTest::newRow("oracle every source restorations all december")
        << DbKind::Oracle << u"SN1"_s << 0 << EventKind::Restorations << false << 11
        << kHead + allRestorations + kOracleDec;
    QTest::newRow("access every source both has no condition")
        << DbKind::Access << u"SN1"_s << 0 << EventKind::Both << false << 11 << kHead + kAccessDec;
    QTest::newRow("access all points alarms")
        << DbKind::Access << u"SN1"_s << -1 << EventKind::Alarms << true << 11
        << kHead +
               u" AND Event_EventSource BETWEEN 1 AND 20 AND Event_Condition=1 AND Event_Ack=0"_s +
               kAccessDec;
    QTest::newRow("oracle all points restorations")
        << DbKind::Oracle << u"SN1"_s << -1 << EventKind::Restorations << false << 12
        << kHead + u" AND Event_EventSource BETWEEN 1 AND 20 AND Event_Condition=0"_s + kOracleYear;
    QTest::newRow("oracle one point restorations new")
        << DbKind::Oracle << u"SN1"_s << 7 << EventKind::Restorations << true << 11
        << kHead + u" AND Event_EventSource=7 AND Event_Condition=0 AND Event_Ack=0"_s + kOracleDec;
    QTest::newRow("access point 20 both")
        << DbKind::Access << u"SN1"_s << 20 << EventKind::Both << true << 11
        << kHead + u" AND Event_EventSource=20 AND Event_Ack=0"_s + kAccessDec;
    QTest::newRow("access mains alarms")
        << DbKind::Access << u"SN1"_s << 21 << EventKind::Alarms << false << 11
        << kHead + u" AND Event_EventSource=21 AND "_s + kMainsAlarm + kAccessDec;
    QTest::newRow("oracle mains restorations")
        << DbKind::Oracle << u"SN1"_s << 21 << EventKind::Restorations << false << 11
        << kHead + u" AND Event_EventSource=21 AND "_s + kMainsRestore + kOracleDec;
    QTest::newRow("access unit faults ignore the kind")
        << DbKind::Access << u"SN1"_s << 23 << EventKind::Alarms << true << 11
        << kHead + u" AND Event_EventSource=23 AND Event_Ack=0"_s + kAccessDec;
    QTest::newRow("oracle bypass ignores restorations")
        << DbKind::Oracle << u"SN1"_s << 25 << EventKind::Restorations << false << 11
        << kHead + u" AND Event_EventSource=25"_s + kOracleDec;
    QTest::newRow("access quote in serial is doubled")
        << DbKind::Access << u"O'K"_s << 22 << EventKind::Both << false << 11
        << u"SELECT * FROM Events_1 WHERE Event_SyI_Serialnumber='O''K' AND Event_EventSource=22"_s +
               kAccessDec;
    QTest::newRow("access unknown source adds nothing")
        << DbKind::Access << u"SN1"_s << 30 << EventKind::Alarms << false << 11
        << kHead + kAccessDec;
    QTest::newRow("sqlite stored date form")
        << DbKind::SQLite << u"SN1"_s << 3 << EventKind::Alarms << false << 11
        << kHead + u" AND Event_EventSource=3 AND Event_Condition=1 AND Event_Datetime BETWEEN "
                   u"'2004-12-01 00:00:00' AND '2004-12-31 23:59:59'"_s;
    QTest::newRow("postgresql stored date form")
        << DbKind::PostgreSQL << u"SN1"_s << 0 << EventKind::Both << true << 12
        << kHead + u" AND Event_Ack=0 AND Event_Datetime BETWEEN '2004-01-01 00:00:00' AND "
                   u"'2004-12-31 23:59:59'"_s;
}

void TestEventQuery::eventSql()
{
    QFETCH(DbKind, db);
    QFETCH(QString, serial);
    QFETCH(int, source);
    QFETCH(EventKind, kind);
    QFETCH(bool, newOnly);
    QFETCH(int, month);
    QFETCH(QString, expected);
    const EventFilter f{serial, source, kind, newOnly, eventsPeriod(4, month)};
    QCOMPARE(eventQuerySql(db, f), expected);
}

void TestEventQuery::orderedSqlSortsBySequenceNumber()
{
    const EventFilter f{u"SN1"_s, 3, EventKind::Both, false, eventsPeriod(4, 11)};
    QCOMPARE(orderedEventQuerySql(DbKind::Access, f),
             eventQuerySql(DbKind::Access, f) + u" ORDER BY Event_SystemEventSN"_s);
}

void TestEventQuery::lookupSql_data()
{
    QTest::addColumn<QString>("actual");
    QTest::addColumn<QString>("expected");
    QTest::newRow("event memory")
        << eventMemorySql(u"SN1"_s)
        << u"SELECT SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, SyI_Model, "
           u"SyI_EventsTable_Pagebyteswritt, SyI_EventsTable_Lastpagesn FROM Systems_Info WHERE "
           u"(SyI_EventsTable_Pagebyteswritt>0 OR SyI_EventsTable_Lastpagesn>0) AND "
           u"SyI_Serialnumber='SN1'"_s;
    QTest::newRow("any point access")
        << sourceExistsSql(DbKind::Access, u"SN1"_s, -1)
        << u"SELECT Event_SyI_Serialnumber, Event_EventSource FROM Events_1 WHERE "
           u"Event_SyI_Serialnumber='SN1' AND Event_EventSource BETWEEN 1 AND 20"_s;
    QTest::newRow("one source oracle")
        << sourceExistsSql(DbKind::Oracle, u"SN1"_s, 24)
        << u"SELECT Event_SyI_Serialnumber, Event_EventSource FROM Events_1 WHERE "
           u"Event_SyI_Serialnumber='SN1' AND Event_EventSource=24"_s;
    QTest::newRow("one source sqlite one row")
        << sourceExistsSql(DbKind::SQLite, u"SN1"_s, 5)
        << u"SELECT Event_SyI_Serialnumber, Event_EventSource FROM Events_1 WHERE "
           u"Event_SyI_Serialnumber='SN1' AND Event_EventSource=5 LIMIT 1"_s;
    QTest::newRow("zone name")
        << zoneNameSql(u"SN1"_s, 5)
        << u"SELECT SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensorname FROM Sensors_Info WHERE "
           u"SeI_SyI_Serialnumber='SN1' AND SeI_Sensornumber=5"_s;
    QTest::newRow("unit label")
        << unitLabelSql(u"SN1"_s)
        << u"SELECT SyI_Serialnumber, SyI_Systemname, SyI_Locationnumber FROM Systems_Info WHERE "
           u"SyI_Serialnumber='SN1'"_s;
    QTest::newRow("power names")
        << powerNamesSql(u"SN1"_s)
        << u"SELECT PmI_SyI_Serialnumber, PmI_Powernumber, PmI_Powername FROM Powermonitoring_Info "
           u"WHERE PmI_SyI_Serialnumber='SN1'"_s;
    QTest::newRow("zone names")
        << zoneNamesSql(u"SN1"_s)
        << u"SELECT SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensorname FROM Sensors_Info WHERE "
           u"SeI_SyI_Serialnumber='SN1'"_s;
    QTest::newRow("mark row")
        << markRowSql(u"SN1"_s, 4000000000LL)
        << u"SELECT Event_SyI_Serialnumber, Event_SystemEventSN, Event_Ack FROM Events_1 WHERE "
           u"Event_SyI_Serialnumber='SN1' AND Event_SystemEventSN=4000000000"_s;
}

void TestEventQuery::lookupSql()
{
    QFETCH(QString, actual);
    QFETCH(QString, expected);
    QCOMPARE(actual, expected);
}

void TestEventQuery::sourceEntryText_data()
{
    QTest::addColumn<int>("source");
    QTest::addColumn<QString>("zoneName");
    QTest::addColumn<QString>("expected");
    QTest::newRow("named point") << 2 << u"Ψυγείο"_s << u"[2] Ψυγείο"_s;
    QTest::newRow("unnamed point") << 5 << QString() << u"[5] Ανώνυμη ζώνη"_s;
    QTest::newRow("all points") << -1 << QString() << u"Ζώνες παρακολούθησης"_s;
    QTest::newRow("every source") << 0 << QString() << u"ΟΛΑ"_s;
    QTest::newRow("mains") << 21 << QString() << u"Δίκτυο ρεύματος"_s;
    QTest::newRow("sensor faults") << 22 << QString() << u"Βλάβες αισθητηρίων"_s;
    QTest::newRow("unit faults") << 23 << QString() << u"Βλάβες συστήματος"_s;
    QTest::newRow("delivery") << 24 << QString() << u"Παράδοση μηνυμάτων"_s;
    QTest::newRow("bypass") << 25 << QString() << u"Παράκαμψη ζώνης"_s;
    QTest::newRow("unknown") << 26 << u"x"_s << QString();
}

void TestEventQuery::sourceEntryText()
{
    QFETCH(int, source);
    QFETCH(QString, zoneName);
    QFETCH(QString, expected);
    QCOMPARE(events::sourceEntryText(source, zoneName), expected);
}

void TestEventQuery::kindOptions_data()
{
    QTest::addColumn<int>("source");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("all points") << -1 << true;
    QTest::newRow("every source") << 0 << true;
    QTest::newRow("point") << 7 << true;
    QTest::newRow("mains") << 21 << true;
    QTest::newRow("sensor faults") << 22 << false;
    QTest::newRow("unit faults") << 23 << false;
    QTest::newRow("bypass") << 25 << false;
}

void TestEventQuery::kindOptions()
{
    QFETCH(int, source);
    QFETCH(bool, enabled);
    QCOMPARE(kindOptionsApply(source), enabled);
}

QTEST_GUILESS_MAIN(TestEventQuery)
#include "tst_eventquery.moc"
