#include "GuiFixture.h"
#include "PgCluster.h"
#include "model/Dialect.h"
#include "model/Schema.h"
#include "model/events/EventsData.h"
#include "sim/SimRunner.h"
#include "ui/UnitList.h"
#include "views/current/MainWindow.h"
#include "views/current/RequestExchange.h"

#include <QElapsedTimer>
#include <QTableWidget>
#include <QTest>

#include <thread>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

namespace {

// A connection of the test's own; a failed read counts as nothing found.
qint64 count(const ConnectionSettings& where, const QString& sql)
{
    Database db;
    db.allowGuiThread();
    if (db.open(where).isError())
        return -1;
    Rows rows = db.read(sql);
    return rows.next() ? rows.integer(0).value_or(-1) : -1;
}

} // namespace

// The primary stops and its standby is promoted while the console and the
// simulator work on the pair: both follow by themselves.
class TestFailover : public QObject {
    Q_OBJECT

    static constexpr int kDecisionMs = 1000;

private slots:
    void standbyTakesOver_data()
    {
        QTest::addColumn<bool>("busy"); // a command and a marking in flight
        QTest::newRow("between two refreshes") << false;
        QTest::newRow("command and marking in flight") << true;
    }
    void standbyTakesOver()
    {
        QFETCH(bool, busy);
        if (PgCluster::binDir().isEmpty())
            SX_SKIP_OR_FAIL("the PostgreSQL server programs are not installed");
        PgCluster primary(u"primary"_s);
        PgCluster standby(u"standby"_s);
        QString problem;
        QVERIFY2(makeReplicatedPair(primary, standby, u"sxfail"_s, 2, problem),
                 qPrintable(problem));
        const QString url = pairUrl(primary, standby, u"sxfail"_s);
        ConnectionSettings pair;
        QVERIFY(parseDbUrl(url, pair));
        ConnectionSettings first = pair;
        first.serverIp = primary.address();
        first.serverPort = QString::number(primary.port());

        sim::SimOptions run;
        run.command = sim::SimCommand::Run;
        run.dbUrl = url;
        run.intervalMs = 500;
        run.answerDelayMs = 2000;
        std::atomic<bool> stopSim{false};
        std::thread simulator([&] {
            QString out;
            QTextStream o(&out), e(&out);
            (void)sim::runSimCommand(run, o, e, stopSim);
        });
        const auto endSim = qScopeGuard([&] {
            stopSim = true;
            simulator.join();
        });

        GuiFixture fx;
        QVERIFY(!fx.link.openAndWait(pair).isError());
        MainWindow main(fx.ctx);
        fx.navigator->setMainView(&main);
        main.show();
        fillSystemSelect(main, 0, false);
        QTRY_VERIFY(main.pointsGrid()->rowCount() > 0 && !main.databaseLost());
        main.refreshTimer()->setInterval(MainWindow::kRefreshIntervalMs);

        // Two events of one unit and one of the other, marked in one transaction that
        // waits on the last row, which another connection holds.
        Database locker;
        locker.allowGuiThread();
        QVERIFY(!locker.open(first).isError());
        QList<events::MarkTarget> targets;
        for (const QString& order : {u"ASC"_s, u"DESC"_s}) {
            Rows r = locker.read(u"SELECT Event_SyI_Serialnumber, Event_SystemEventSN FROM "
                                 u"Events_1 ORDER BY Event_SyI_Serialnumber "_s +
                                 order + u", Event_SystemEventSN LIMIT 2"_s);
            while (r.next() && targets.size() < (order == u"ASC" ? 2 : 3))
                targets.append({r.text(0).value_or(QString()), r.integer(1).value_or(0)});
        }
        QVERIFY(targets.size() == 3 && targets[0].serial != targets[2].serial);
        const QString marked = u"SELECT COUNT(*) FROM Events_1 WHERE Event_Ack=7"_s;
        QVERIFY(!locker.exec(u"BEGIN"_s).isError());
        QVERIFY(!locker
                     .exec(u"SELECT 1 FROM Events_1 WHERE Event_SyI_Serialnumber="_s +
                           sqlQuote(targets[2].serial) + u" AND Event_SystemEventSN="_s +
                           QString::number(targets[2].sn) + u" FOR UPDATE"_s)
                     .isError());

        // The command waits for its answer and the marking for its lock: then the switch.
        QElapsedTimer clock;
        qint64 stoppedAt = -1, promotedAt = -1, refreshedAt = -1;
        bool marking = false;
        std::optional<DbError> markDone;
        const QString renamed = u"ΜΕΤΑ ΤΗΝ ΑΛΛΑΓΗ"_s;
        QTimer watch;
        watch.callOnTimeout([&] {
            const QTableWidgetItem* name = main.pointsGrid()->item(0, 0);
            if (promotedAt >= 0 && refreshedAt < 0 && name && name->text().endsWith(renamed))
                refreshedAt = clock.elapsed();
            if (stoppedAt >= 0)
                return;
            if (busy && !marking &&
                count(first, u"SELECT COUNT(*) FROM Terminal_Requests"_s) == 1) {
                marking = true;
                fx.link.post(
                    &main, [targets](Database& d) { return events::markEvents(d, targets, 7); },
                    [&](const DbError& e) { markDone = e; });
            }
            if (!busy || (marking && count(first, u"SELECT COUNT(*) FROM pg_stat_activity WHERE "
                                                  u"wait_event_type='Lock'"_s) == 1)) {
                clock.start();
                primary.stop();
                stoppedAt = clock.elapsed();
                // Whoever promotes takes a moment to decide.
                QTimer::singleShot(kDecisionMs, [&] {
                    QVERIFY2(standby.promote(), qPrintable(standby.problem()));
                    promotedAt = clock.elapsed();
                    Database fresh;
                    fresh.allowGuiThread();
                    QVERIFY(!fresh.open(pair).isError());
                    QVERIFY(
                        !fresh
                             .exec(u"UPDATE Sensors_Info SET SeI_Sensorname="_s + sqlQuote(renamed))
                             .isError());
                });
            }
        });
        watch.start(50);
        std::optional<ExchangeOutcome> outcome;
        if (!busy) {
            outcome.emplace();
            markDone.emplace();
        }
        QTimer::singleShot(0, [&] {
            if (busy)
                outcome = exchangeRequest(fx.ctx, &main, u"Εντολή"_s,
                                          {targets[0].serial, kRequestNotification, u"0000,0"_s});
        });
        const auto state = [&] {
            return u"command %1, marking %2, stop %3, promoted %4, refreshed %5"_s.arg(
                QString::number(outcome ? int(outcome->end) : -1),
                markDone ? markDone->description : u"-"_s, QString::number(stoppedAt),
                QString::number(promotedAt), QString::number(refreshedAt));
        };
        QTRY_VERIFY2_WITH_TIMEOUT(outcome && markDone && refreshedAt >= 0, qPrintable(state()),
                                  25000);
        qInfo("view refreshed %lld ms after the stop, %lld ms after the promotion", refreshedAt,
              refreshedAt - promotedAt);
        QVERIFY(refreshedAt - promotedAt <= MainWindow::kRefreshIntervalMs);
        QTRY_VERIFY(!fx.failures->connectionLost() && fx.failures->pendingStatements().isEmpty());
        QCOMPARE(count(pair, u"SELECT COUNT(*) FROM Terminal_Requests"_s), 0);
        QVERIFY(QList<qint64>({0, 3}).contains(count(pair, marked)));
        // Between refreshes the switch goes unnoticed; the simulator writes on the new primary.
        QCOMPARE(fx.dialogs.messages().isEmpty(), !busy);
        QTRY_VERIFY(count(pair, u"SELECT COUNT(*) FROM pg_stat_activity WHERE datname='sxfail' "
                                u"AND backend_type='client backend'"_s) >= 3);
    }
};

QTEST_MAIN(TestFailover)
#include "tst_failover.moc"
