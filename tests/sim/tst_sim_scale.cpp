#include "ScratchDatabase.h"
#include "SimTestHelpers.h"
#include "model/fleet/FleetSummary.h"
#include "sim/ScaleSeeder.h"
#include "sim/SimSchema.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

class TestSimScale : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        SX_REQUIRE_DB(m_scratch);
        QVERIFY(m_scratch.open(m_db));
        const sim::SeedReport r = sim::seedDemo(m_db, smallSeed(1));
        QVERIFY2(!r.error.isError(), qPrintable(r.error.description));
        sim::ScaleOptions o;
        o.messages = 1200;
        o.endSecs = r.endSecs;
        const sim::ScaleReport s = sim::seedScale(m_db, o);
        QVERIFY2(!s.error.isError(), qPrintable(s.error.description));
        QCOMPARE(s.pointMessages + s.powerMessages, 1200);
        QCOMPARE(scalar(m_db, u"SELECT COUNT(*) FROM Sensors_Events WHERE SeE_Recipients<>0"_s) +
                     scalar(m_db, u"SELECT COUNT(*) FROM Powermonitoring_Events WHERE "
                                  "PmE_Recipients<>0"_s),
                 s.newMessages);
    }

    void newMessageCountsUseTheirPartialIndex_data()
    {
        QTest::addColumn<QString>("index");
        QTest::newRow("zones") << u"ix_sensors_events_new"_s;
        QTest::newRow("power inputs") << u"ix_powermonitoring_events_new"_s;
    }

    void newMessageCountsUseTheirPartialIndex()
    {
        QFETCH(QString, index);
        const bool pg = m_db.kind() == DbKind::PostgreSQL;
        // A small table is read whole when that is cheaper; the question is whether the index fits.
        if (pg)
            QVERIFY(!m_db.exec(u"SET enable_seqscan = off"_s).isError());
        QString plan;
        Rows rows = m_db.read((pg ? u"EXPLAIN "_s : u"EXPLAIN QUERY PLAN "_s) +
                              fleetQueries(m_db.kind()).messages);
        while (rows.next()) // the plan's text is the last column
            plan += rows.text(rows.columnCount() - 1).value_or(QString()) + u'\n';
        if (pg)
            QVERIFY(!m_db.exec(u"SET enable_seqscan = on"_s).isError());
        QVERIFY2(plan.contains(index), qPrintable(plan));
    }

    void countsAreTheSameWithoutTheIndexes()
    {
        const auto counts = [this] {
            QHash<QString, int> out;
            for (const UnitSummary& u : readFleetSummary(m_db).value_or(FleetSummary{}).units)
                out.insert(u.serial, u.newMessages);
            return out;
        };
        const QHash<QString, int> with = counts();
        QVERIFY(!sim::dropConsoleIndexes(m_db).isError());
        const QHash<QString, int> without = counts();
        QVERIFY(!sim::createConsoleIndexes(m_db).isError());
        QVERIFY(!with.isEmpty());
        QCOMPARE(without, with);
    }

private:
    ScratchDatabase m_scratch;
    Database m_db;
};

QTEST_GUILESS_MAIN(TestSimScale)
#include "tst_sim_scale.moc"
