// The longest GUI-thread stall of the main view during a normal refresh (on
// SQLite and on PostgreSQL), and while its PostgreSQL server (SX_TEST_PG,
// reached through a fault-injecting proxy) is black-holed or refuses; then the
// time from the server's return to a refilled view. The console's own
// time-outs and back-off are used. Prints figures; never fails on time.
#include "../tests/current/CurrentSeed.h"
#include "FaultProxy.h"
#include "GuiFixture.h"
#include "app/UnitList.h"
#include "views/current/MainWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTableWidget>
#include <QTest>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace sx;

namespace {

// Nanoseconds this thread has waited for a processor while it could run.
qint64 waitedForProcessor()
{
    QFile f(u"/proc/thread-self/schedstat"_s);
    if (!f.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> fields = f.readAll().split(' ');
    return fields.size() > 1 ? fields.at(1).toLongLong() : 0;
}

// The longest gap between two ticks of a 10-ms timer, in ms, as measured and
// without the time the thread stood in the run queue: on a machine shared
// with builds the first alone shows the load as much as the view.
struct Stall {
    double wall = 0;
    double own = 0;
};

// Runs the event loop for `ms` with the view refreshing every 200 ms (or not).
Stall longestStall(MainWindow& w, int ms, bool refreshing = true)
{
    Stall longest;
    QElapsedTimer since;
    qint64 queued = 0;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&] {
        const qint64 gap = since.nsecsElapsed();
        const qint64 nowQueued = waitedForProcessor();
        since.start();
        longest.wall = std::max(longest.wall, gap / 1e6);
        longest.own = std::max(longest.own, (gap - (nowQueued - queued)) / 1e6);
        queued = nowQueued;
    });
    w.refreshTimer()->setInterval(200);
    if (refreshing)
        w.refreshTimer()->start();
    else
        w.refreshTimer()->stop();
    queued = waitedForProcessor();
    since.start();
    tick.start(10);
    QTest::qWait(ms);
    return longest;
}

void print(const char* what, Stall s, const char* target)
{
    std::printf("longest GUI stall, %-22s %5.0f ms (%3.0f ms without waits for a processor; "
                "target %s)\n",
                what, s.wall, s.own, target);
}

// One unit with twenty points, as on the operator's screen.
bool seedUnit(Database& db)
{
    test::CurrentSeed seed(db);
    bool ok = seed.unit(u"S-1"_s, u"Σταθμός"_s) && seed.condition(u"S-1"_s, u"1"_s, u"1"_s);
    for (int n = 1; n <= 20; ++n)
        ok = ok && seed.point(u"S-1"_s, n, u"'Ζ'"_s) &&
             seed.pointCondition(u"S-1"_s, n, QString::number(n));
    return ok;
}

void sqliteRefresh()
{
    qputenv("SX_TEST_DB", "sqlite");
    test::GuiFixture fx;
    if (!fx.ready() || !seedUnit(fx.db)) {
        std::printf("bench_outage: SQLite set-up failed (%s)\n", qPrintable(fx.problem()));
        return;
    }
    MainWindow w(fx.ctx);
    w.show();
    fillSystemSelect(w, 0, false);
    print("no refresh (SQLite):", longestStall(w, 3000, false), "none, the floor");
    print("normal refresh (SQLite):", longestStall(w, 3000), "<= 20");
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    sqliteRefresh();
    qputenv("SX_TEST_DB", "postgresql");
    test::GuiFixture fx;
    if (!fx.ready()) {
        std::printf("bench_outage: needs SX_TEST_PG (%s)\n", qPrintable(fx.problem()));
        return 0;
    }
    const bool ok = seedUnit(fx.db);
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

    print("no refresh:", longestStall(w, 3000, false), "none, the floor");
    print("normal refresh:", longestStall(w, 3000), "<= 20");
    proxy.setMode(test::FaultProxy::Mode::BlackHole);
    print("black-holed:", longestStall(w, 12000), "<= 250");
    proxy.setMode(test::FaultProxy::Mode::Refuse);
    proxy.cutAll();
    print("refused:", longestStall(w, 12000), "<= 50");

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
