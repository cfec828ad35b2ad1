#include "EventsSeed.h"
#include "ScratchDatabase.h"
#include "model/Database.h"
#include "model/Schema.h"
#include "model/SqlDateTime.h"
#include "model/events/EventQuery.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::events;

Q_DECLARE_METATYPE(sx::events::EventKind)

// The event query run against a real database of the kind under test: the
// condition sets, the period edges, the read mark and the order of the rows.
class TestEventQueryRun : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_db = std::make_unique<Database>();
        m_scratch = std::make_unique<test::ScratchDatabase>();
        SX_REQUIRE_DB(*m_scratch);
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
        QTest::addColumn<int>("source");
        QTest::addColumn<EventKind>("kind");
        QTest::addColumn<bool>("newOnly");
        QTest::addColumn<int>("yearIndex");
        QTest::addColumn<int>("month");
        QTest::addColumn<int>("rows");
        QTest::newRow("every source both all") << 0 << EventKind::Both << false << 4 << 11 << 56;
        QTest::newRow("every source both new") << 0 << EventKind::Both << true << 4 << 11 << 55;
        // points at 1 (20), mains 1 and 17, sources 22 to 24 twice each; no bypass
        QTest::newRow("every source alarms") << 0 << EventKind::Alarms << true << 4 << 11 << 28;
        // points at 0 (20), mains 0, 16 and 64; no fault, delivery or bypass row
        QTest::newRow("every source restorations")
            << 0 << EventKind::Restorations << true << 4 << 11 << 23;
        QTest::newRow("mains alarms") << 21 << EventKind::Alarms << false << 4 << 11 << 2;
        QTest::newRow("mains restorations")
            << 21 << EventKind::Restorations << false << 4 << 11 << 3;
        QTest::newRow("bypass whatever the kind")
            << 25 << EventKind::Alarms << false << 4 << 11 << 2;
        QTest::newRow("all points alarms with read")
            << -1 << EventKind::Alarms << false << 4 << 11 << 21;
        QTest::newRow("year edges included") << 3 << EventKind::Alarms << false << 4 << 12 << 2;
        QTest::newRow("next year first second") << 3 << EventKind::Alarms << false << 5 << 0 << 1;
    }

    void selectsTheRightRows()
    {
        QFETCH(int, source);
        QFETCH(EventKind, kind);
        QFETCH(bool, newOnly);
        QFETCH(int, yearIndex);
        QFETCH(int, month);
        QFETCH(int, rows);
        SX_REQUIRE_DB(*m_scratch);
        const EventFilter f{u"SN1"_s, source, kind, newOnly, eventsPeriod(yearIndex, month)};
        Rows r = m_db->read(orderedEventQuerySql(m_db->kind(), f));
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

QTEST_GUILESS_MAIN(TestEventQueryRun)
#include "tst_eventqueryrun.moc"
