#include "model/SqlDateTime.h"
#include "model/events/EventQuery.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::events;

Q_DECLARE_METATYPE(sx::DbKind)
Q_DECLARE_METATYPE(sx::events::EventKind)

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

class TestEventQuery : public QObject {
    Q_OBJECT

private slots:
    void period_data()
    {
        QTest::addColumn<int>("yearIndex");
        QTest::addColumn<int>("monthIndex");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        const auto row = [](const char* name, int year, int month, const char* from,
                            const char* to) {
            QTest::newRow(name) << year << month << QString::fromLatin1(from)
                                << QString::fromLatin1(to);
        };
        row("whole year", 4, 12, "2004-01-01 00:00:00", "2004-12-31 23:59:59");
        row("december rolls into next year", 4, 11, "2004-12-01 00:00:00", "2004-12-31 23:59:59");
        row("leap february", 4, 1, "2004-02-01 00:00:00", "2004-02-29 23:59:59");
        row("plain february", 5, 1, "2005-02-01 00:00:00", "2005-02-28 23:59:59");
        row("january", 0, 0, "2000-01-01 00:00:00", "2000-01-31 23:59:59");
        row("last year of the list", 255, 12, "2255-01-01 00:00:00", "2255-12-31 23:59:59");
        row("month out of list is whole year", 4, -1, "2004-01-01 00:00:00", "2004-12-31 23:59:59");
    }

    void period()
    {
        QFETCH(int, yearIndex);
        QFETCH(int, monthIndex);
        QFETCH(QString, from);
        QFETCH(QString, to);
        const EventPeriod p = eventsPeriod(yearIndex, monthIndex);
        QCOMPARE(sqlDateTimeText(p.fromSecs), from);
        QCOMPARE(sqlDateTimeText(p.toSecs), to);
    }

    void eventSql_data()
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

        const auto row = [](const char* name, DbKind db, int source, EventKind kind, bool newOnly,
                            int month, const QString& expected, const QString& serial = u"SN1"_s) {
            QTest::newRow(name) << db << serial << source << kind << newOnly << month << expected;
        };
        const auto access = DbKind::Access;
        const auto oracle = DbKind::Oracle;
        const auto alarms = EventKind::Alarms;
        const auto restorations = EventKind::Restorations;
        row("access every source alarms new year", access, 0, alarms, true, 12,
            kHead + allAlarms + u" AND Event_Ack=0"_s + kAccessYear);
        row("oracle every source restorations all december", oracle, 0, restorations, false, 11,
            kHead + allRestorations + kOracleDec);
        row("access every source both has no condition", access, 0, EventKind::Both, false, 11,
            kHead + kAccessDec);
        row("access all points alarms", access, -1, alarms, true, 11,
            kHead +
                u" AND Event_EventSource BETWEEN 1 AND 20 AND Event_Condition=1 AND Event_Ack=0"_s +
                kAccessDec);
        row("oracle one point restorations new", oracle, 7, restorations, true, 11,
            kHead + u" AND Event_EventSource=7 AND Event_Condition=0 AND Event_Ack=0"_s +
                kOracleDec);
        row("access mains alarms", access, 21, alarms, false, 11,
            kHead + u" AND Event_EventSource=21 AND "_s + kMainsAlarm + kAccessDec);
        row("oracle mains restorations", oracle, 21, restorations, false, 11,
            kHead + u" AND Event_EventSource=21 AND "_s + kMainsRestore + kOracleDec);
        row("access unit faults ignore the kind", access, 23, alarms, true, 11,
            kHead + u" AND Event_EventSource=23 AND Event_Ack=0"_s + kAccessDec);
        row("oracle bypass ignores restorations", oracle, 25, restorations, false, 11,
            kHead + u" AND Event_EventSource=25"_s + kOracleDec);
        row("access quote in serial is doubled", access, 22, EventKind::Both, false, 11,
            u"SELECT * FROM Events_1 WHERE Event_SyI_Serialnumber='O''K' AND Event_EventSource=22"_s +
                kAccessDec,
            u"O'K"_s);
        row("access unknown source adds nothing", access, 30, alarms, false, 11,
            kHead + kAccessDec);
        row("sqlite stored date form", DbKind::SQLite, 3, alarms, false, 11,
            kHead + u" AND Event_EventSource=3 AND Event_Condition=1 AND Event_Datetime BETWEEN "
                    u"'2004-12-01 00:00:00' AND '2004-12-31 23:59:59'"_s);
        row("postgresql stored date form", DbKind::PostgreSQL, 0, EventKind::Both, true, 12,
            kHead + u" AND Event_Ack=0 AND Event_Datetime BETWEEN '2004-01-01 00:00:00' AND "
                    u"'2004-12-31 23:59:59'"_s);
    }

    void eventSql()
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
};

QTEST_GUILESS_MAIN(TestEventQuery)
#include "tst_eventquery.moc"
