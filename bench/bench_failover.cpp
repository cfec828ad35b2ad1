// How long the console's main view takes to show the promoted standby's data
// after the primary stops: from the stop and from the promotion, at the
// console's own refresh interval, with the simulator working on the pair.
// Run as root (or as postgres): the servers are made with initdb.
#include "GuiFixture.h"
#include "PgCluster.h"
#include "model/Dialect.h"
#include "sim/SimRunner.h"
#include "ui/UnitList.h"
#include "views/current/MainWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTableWidget>
#include <QTest>
#include <QTimer>

#include <cstdio>
#include <thread>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

namespace {

struct Figures {
    qint64 fromStop = -1;
    qint64 fromPromotion = -1;
};

// One switch; `decisionMs` passes between the stop and the promotion.
Figures oneSwitch(int decisionMs, int phaseMs)
{
    PgCluster primary(u"primary"_s);
    PgCluster standby(u"standby"_s);
    QString problem;
    if (!makeReplicatedPair(primary, standby, u"sxbench"_s, 2, problem)) {
        std::fprintf(stderr, "%s\n", qPrintable(problem));
        return {};
    }
    const QString url = pairUrl(primary, standby, u"sxbench"_s);
    ConnectionSettings pair;
    (void)parseDbUrl(url, pair);
    sim::SimOptions run;
    run.command = sim::SimCommand::Run;
    run.dbUrl = url;
    std::atomic<bool> stopSim{false};
    std::thread simulator([&] {
        QString out;
        QTextStream o(&out);
        (void)sim::runSimCommand(run, o, o, stopSim);
    });

    Figures f;
    {
        GuiFixture fx;
        if (const DbError e = fx.link.openAndWait(pair); e.isError()) {
            std::fprintf(stderr, "%s\n", qPrintable(e.description));
        } else {
            MainWindow main(fx.ctx);
            fx.navigator->setMainView(&main);
            main.show();
            fillSystemSelect(main, 0, false);
            (void)QTest::qWaitFor([&] { return main.pointsGrid()->rowCount() > 0; }, 10000);
            main.refreshTimer()->setInterval(MainWindow::kRefreshIntervalMs);
            // The stop falls anywhere in the refresh cycle.
            QTest::qWait(phaseMs);
            const QString renamed = u"ΜΕΤΑ ΤΗΝ ΑΛΛΑΓΗ"_s;
            QElapsedTimer clock;
            clock.start();
            primary.stop();
            qint64 promotedAt = -1;
            QTimer::singleShot(decisionMs, [&] {
                if (!standby.promote()) {
                    std::fprintf(stderr, "%s\n", qPrintable(standby.problem()));
                    return;
                }
                promotedAt = clock.elapsed();
                Database fresh;
                fresh.allowGuiThread();
                if (!fresh.open(pair).isError())
                    (void)fresh.exec(u"UPDATE Sensors_Info SET SeI_Sensorname="_s +
                                     sqlQuote(renamed));
            });
            const bool shown = QTest::qWaitFor(
                [&] {
                    const QTableWidgetItem* name = main.pointsGrid()->item(0, 0);
                    return promotedAt >= 0 && name && name->text().endsWith(renamed);
                },
                60000);
            if (shown)
                f = {clock.elapsed(), clock.elapsed() - promotedAt};
        }
    }
    stopSim = true;
    simulator.join();
    return f;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    if (PgCluster::binDir().isEmpty()) {
        std::fprintf(stderr, "the PostgreSQL server programs are not installed\n");
        return 1;
    }
    std::printf("failover: primary stopped (immediate), standby promoted after a pause; main view "
                "refreshing every %d ms\n",
                MainWindow::kRefreshIntervalMs);
    std::printf("%-10s %-8s %-24s %-24s\n", "pause ms", "phase ms", "stop -> refreshed view",
                "promotion -> refreshed view");
    for (const auto& [decision, phase] : {std::pair{0, 500}, std::pair{1000, 3000},
                                          std::pair{3000, 6000}, std::pair{15000, 9000}}) {
        const Figures f = oneSwitch(decision, phase);
        std::printf("%-10d %-8d %-24s %-24s\n", decision, phase,
                    qPrintable(QString::number(f.fromStop) + u" ms"_s),
                    qPrintable(QString::number(f.fromPromotion) + u" ms"_s));
        std::fflush(stdout);
    }
    return 0;
}
