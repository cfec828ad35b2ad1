// The longest GUI-thread stall of the main view while its PostgreSQL server
// (SX_TEST_PG, reached through a fault-injecting proxy) answers normally, is
// black-holed, or refuses; then the time from the server's return to a
// refilled view. The console's own time-outs and back-off are used. Prints
// figures; never fails on time.
#include "../tests/current/CurrentSeed.h"
#include "FaultProxy.h"
#include "GuiFixture.h"
#include "app/UnitList.h"
#include "views/current/MainWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTableWidget>
#include <QTest>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace sx;

namespace {

// Runs the event loop for `ms` with the view refreshing every 200 ms; returns
// the longest gap between two ticks of a 10-ms timer.
qint64 longestStall(MainWindow& w, int ms)
{
    qint64 longest = 0;
    QElapsedTimer since;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout,
                     [&] { longest = std::max(longest, since.restart()); });
    w.refreshTimer()->setInterval(200);
    w.refreshTimer()->start();
    since.start();
    tick.start(10);
    QTest::qWait(ms);
    return longest;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    if (test::ScratchDatabase::kindName() != u"postgresql")
        qputenv("SX_TEST_DB", "postgresql");
    test::GuiFixture fx;
    if (!fx.ready()) {
        std::printf("bench_outage: needs SX_TEST_PG (%s)\n", qPrintable(fx.problem()));
        return 0;
    }
    test::CurrentSeed seed(fx.db);
    bool ok = seed.unit(u"S-1"_s, u"Σταθμός"_s) && seed.condition(u"S-1"_s, u"1"_s, u"1"_s);
    for (int n = 1; n <= 20; ++n)
        ok = ok && seed.point(u"S-1"_s, n, u"'Ζ'"_s) &&
             seed.pointCondition(u"S-1"_s, n, QString::number(n));
    ConnectionSettings through = fx.scratch.settings();
    test::FaultProxy proxy(through.serverIp, quint16(through.serverPort.toInt()));
    through.serverIp = u"127.0.0.1"_s;
    through.serverPort = QString::number(proxy.port());
    if (!ok || fx.db.open(through).isError()) {
        std::printf("bench_outage: set-up failed\n");
        return 1;
    }
    MainWindow w(fx.ctx);
    w.show();
    fillSystemSelect(w, 0, false);

    std::printf("longest GUI stall, normal refresh:  %5lld ms (target <= 20)\n",
                static_cast<long long>(longestStall(w, 3000)));
    proxy.setMode(test::FaultProxy::Mode::BlackHole);
    std::printf("longest GUI stall, black-holed:     %5lld ms (target <= 250)\n",
                static_cast<long long>(longestStall(w, 12000)));
    proxy.setMode(test::FaultProxy::Mode::Refuse);
    proxy.cutAll();
    std::printf("longest GUI stall, refused:         %5lld ms (target <= 50)\n",
                static_cast<long long>(longestStall(w, 12000)));

    w.refreshTimer()->setInterval(MainWindow::kRefreshIntervalMs);
    QElapsedTimer back;
    proxy.setMode(test::FaultProxy::Mode::Pass);
    back.start();
    const bool refilled = QTest::qWaitFor(
        [&] { return !w.databaseLost() && w.pointsGrid()->rowCount() == 20; }, 60000);
    std::printf("server back to refilled view:       %5lld ms (target <= %d)%s\n",
                static_cast<long long>(back.elapsed()), MainWindow::kRefreshIntervalMs,
                refilled ? "" : " NOT REFILLED");
    std::printf("boxes shown: %d\n", fx.failures->reportsShown());
    return 0;
}
