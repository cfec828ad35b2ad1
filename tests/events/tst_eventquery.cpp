#include "EventsSeed.h"
#include "ScratchDatabase.h"
#include "model/Schema.h"
#include "model/SqlDateTime.h"
#include "model/events/EventQuery.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::events;

Q_DECLARE_METATYPE(sx::DbKind)
Q_DECLARE_METATYPE(sx::events::EventFilter)

// Unit SN1's events of a month of the list (11: December), by default of 2004.
static EventFilter filter(int source, EventKind kind, bool newOnly, int month = 11, int year = 4,
                          const QString& serial = u"SN1"_s)
{
    return {serial, source, kind, newOnly, eventsPeriod(year, month)};
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

// The period and the SQL text of the event query, then the query run against a
// real database of the kind under test: the condition sets, the period edges,
// the read mark and the order of the rows.
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
        QTest::addColumn<EventFilter>("filter");
        QTest::addColumn<QString>("expected");
        const QString allAlarms =
            u" AND (((Event_EventSource BETWEEN 1 AND 20) AND (Event_Condition=1)) OR "
            u"((Event_EventSource=21) AND "_s +
            kMainsAlarm + u") OR (Event_EventSource BETWEEN 22 AND 24))"_s;
        const QString allRestorations =
            u" AND (((Event_EventSource BETWEEN 1 AND 20) AND (Event_Condition=0)) OR "
            u"((Event_EventSource=21) AND "_s +
            kMainsRestore + u"))"_s;
        const auto row = [](const char* name, DbKind db, const EventFilter& f, const QString& sql) {
            QTest::newRow(name) << db << f << sql;
        };
        const auto access = DbKind::Access;
        const auto oracle = DbKind::Oracle;
        const auto alarms = EventKind::Alarms;
        const auto restorations = EventKind::Restorations;
        const auto both = EventKind::Both;
        row("access every source alarms new year", access, filter(0, alarms, true, 12),
            kHead + allAlarms + u" AND Event_Ack=0"_s + kAccessYear);
        row("oracle every source restorations all december", oracle, filter(0, restorations, false),
            kHead + allRestorations + kOracleDec);
        row("access every source both has no condition", access, filter(0, both, false),
            kHead + kAccessDec);
        row("access all points alarms", access, filter(-1, alarms, true),
            kHead +
                u" AND Event_EventSource BETWEEN 1 AND 20 AND Event_Condition=1 AND Event_Ack=0"_s +
                kAccessDec);
        row("oracle one point restorations new", oracle, filter(7, restorations, true),
            kHead + u" AND Event_EventSource=7 AND Event_Condition=0 AND Event_Ack=0"_s +
                kOracleDec);
        row("access mains alarms", access, filter(21, alarms, false),
            kHead + u" AND Event_EventSource=21 AND "_s + kMainsAlarm + kAccessDec);
        row("oracle mains restorations", oracle, filter(21, restorations, false),
            kHead + u" AND Event_EventSource=21 AND "_s + kMainsRestore + kOracleDec);
        row("access unit faults ignore the kind", access, filter(23, alarms, true),
            kHead + u" AND Event_EventSource=23 AND Event_Ack=0"_s + kAccessDec);
        row("oracle bypass ignores restorations", oracle, filter(25, restorations, false),
            kHead + u" AND Event_EventSource=25"_s + kOracleDec);
        row("access quote in serial is doubled, faults ignore the kind", access,
            filter(22, alarms, false, 11, 4, u"O'K"_s),
            u"SELECT * FROM Events_1 WHERE Event_SyI_Serialnumber='O''K' AND Event_EventSource=22"_s +
                kAccessDec);
        row("access unknown source adds nothing", access, filter(30, alarms, false),
            kHead + kAccessDec);
        row("sqlite stored date form", DbKind::SQLite, filter(3, alarms, false),
            kHead + u" AND Event_EventSource=3 AND Event_Condition=1 AND Event_Datetime BETWEEN "
                    u"'2004-12-01 00:00:00' AND '2004-12-31 23:59:59'"_s);
        row("postgresql stored date form", DbKind::PostgreSQL, filter(0, both, true, 12),
            kHead + u" AND Event_Ack=0 AND Event_Datetime BETWEEN '2004-01-01 00:00:00' AND "
                    u"'2004-12-31 23:59:59'"_s);
    }

    void eventSql()
    {
        QFETCH(DbKind, db);
        QFETCH(EventFilter, filter);
        QFETCH(QString, expected);
        QCOMPARE(eventQuerySql(db, filter), expected);
    }

    void initTestCase()
    {
        m_db = std::make_unique<Database>();
        m_scratch = std::make_unique<test::ScratchDatabase>();
        if (!m_scratch->problem().isEmpty())
            return; // the runs skip; the texts are checked all the same
        QVERIFY(m_scratch->open(*m_db));

        // Sequence numbers fall as rows are added, so only the ordering gives ascending order.
        test::EventsSeed seed(*m_db);
        qint64 sn = 1000;
        const auto add = [&](const QString& serial, int source, int condition, const QString& when,
                             int ack) {
            QVERIFY(seed.event(serial, sn--, when, source, condition, 0, 0, {}, ack));
        };
        const QString dec = u"2004-12-15 12:00:00"_s;
        for (int s = 1; s <= 25; ++s) {
            add(u"SN1"_s, s, 0, dec, 0);
            add(u"SN1"_s, s, 1, dec, 0);
        }
        for (int c : {16, 17, 20, 48, 64})
            add(u"SN1"_s, 21, c, dec, 0);
        add(u"SN1"_s, 4, 1, dec, 1);
        add(u"SN1"_s, 3, 1, u"2004-11-30 23:59:59"_s, 0);
        add(u"SN1"_s, 3, 1, u"2005-01-01 00:00:00"_s, 0);
        add(u"SN2"_s, 3, 1, dec, 0);
    }

    void cleanupTestCase()
    {
        m_db.reset();
        m_scratch.reset();
    }

    void selectsTheRightRows_data()
    {
        QTest::addColumn<EventFilter>("filter");
        QTest::addColumn<int>("rows");
        const auto both = EventKind::Both;
        const auto alarms = EventKind::Alarms;
        const auto restorations = EventKind::Restorations;
        QTest::newRow("every source both all") << filter(0, both, false) << 56;
        QTest::newRow("every source both new") << filter(0, both, true) << 55;
        // points at 1 (20), mains 1 and 17, sources 22 to 24 twice each; no bypass
        QTest::newRow("every source alarms") << filter(0, alarms, true) << 28;
        // points at 0 (20), mains 0, 16 and 64; no fault, delivery or bypass row
        QTest::newRow("every source restorations") << filter(0, restorations, true) << 23;
        QTest::newRow("mains alarms") << filter(21, alarms, false) << 2;
        QTest::newRow("mains restorations") << filter(21, restorations, false) << 3;
        QTest::newRow("bypass whatever the kind") << filter(25, alarms, false) << 2;
        QTest::newRow("all points alarms with read") << filter(-1, alarms, false) << 21;
        QTest::newRow("year edges included") << filter(3, alarms, false, 12) << 2;
        QTest::newRow("next year first second") << filter(3, alarms, false, 0, 5) << 1;
    }

    void selectsTheRightRows()
    {
        QFETCH(EventFilter, filter);
        QFETCH(int, rows);
        SX_REQUIRE_DB(*m_scratch);
        Rows r = m_db->read(orderedEventQuerySql(m_db->kind(), filter));
        const int snColumn = r.column(schema::Events1::Event_SystemEventSN);
        int count = 0;
        qint64 last = -1;
        while (r.next()) {
            const qint64 sn = r.integer(snColumn).value_or(-1);
            QVERIFY(sn > last);
            last = sn;
            ++count;
        }
        QVERIFY2(r.ok(), qPrintable(r.error().description));
        QCOMPARE(count, rows);
    }

private:
    std::unique_ptr<test::ScratchDatabase> m_scratch;
    std::unique_ptr<Database> m_db;
};

QTEST_GUILESS_MAIN(TestEventQuery)
#include "tst_eventquery.moc"
