// One current-condition refresh of a 20-point, 4-input unit, on SQLite and,
// when SX_TEST_PG names a server, on PostgreSQL. Prints medians; never fails
// on time.
#include "GuiFixture.h"
#include "model/Dialect.h"
#include "ui/UnitList.h"
#include "views/current/CurrentCondition.h"
#include "views/current/MainWindow.h"

#include <QApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

using namespace Qt::StringLiterals;
using namespace sx;

namespace {

constexpr int kRuns = 200;
constexpr int kOtherUnits = 49;

// A fleet of 50 units; the measured one is "BENCH-0", listed first.
bool seed(test::GuiFixture& fx)
{
    QString sql;
    const auto add = [&sql](const QString& statement) { sql += statement + u";\n"_s; };
    for (int u = 0; u <= kOtherUnits; ++u) {
        const QString serial = sqlQuote(u"BENCH-%1"_s.arg(u));
        add(u"INSERT INTO Systems_Info (SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, SyI_Used, SyI_Online, SyI_Softver, SyI_Model) VALUES (%1, '%2', 'Unit %3', 1, 1, '1.22', 'SENTORAX-2F')"_s
                .arg(serial)
                .arg(u)
                .arg(u, 3, 10, QChar(u'0')));
        for (int p = 1; p <= 20; ++p) {
            const int type = p % 5 == 0 ? 2 : p % 4;
            add(u"INSERT INTO Sensors_Info (SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensorname, SeI_Sensortype, SeI_Used, SeI_Maxlimit, SeI_Minlimit, SeI_Maxlimitused, SeI_Minlimitused, SeI_RecordsTable_Pagebyteswrit, SeI_RecordsTable_Lastpagesn) VALUES (%1, %2, 'Point %2', %3, 1, 40, 5, 1, 1, 10, 1)"_s
                    .arg(serial)
                    .arg(p)
                    .arg(type));
            add(u"INSERT INTO Sensors_Current_Condition (SeCC_SyI_Serialnumber, SeCC_Sensornumber, SeCC_Currvalue, SeCC_Outofbounds, SeCC_Alarmcondition, SeCC_Notpowered) VALUES (%1, %2, %3, %4, %5, 0)"_s
                    .arg(serial)
                    .arg(p)
                    .arg(p * 1.7)
                    .arg(p % 7 == 0 ? 1 : 0)
                    .arg(p % 9 == 0 ? 1 : 0));
        }
        for (int i = 1; i <= 4; ++i) {
            add(u"INSERT INTO Powermonitoring_Info (PmI_SyI_Serialnumber, PmI_Powernumber, PmI_Powername, PmI_Used) VALUES (%1, %2, 'Mains %2', 1)"_s
                    .arg(serial)
                    .arg(i));
            add(u"INSERT INTO Powermonitoring_Current_Condit (PmCC_SyI_Serialnumber, PmCC_Powernumber, PmCC_Powerfault, PmCC_Powercondition) VALUES (%1, %2, 0, %3)"_s
                    .arg(serial)
                    .arg(i)
                    .arg(i == 3 ? 1 : 0));
        }
        add(u"INSERT INTO Systems_Current_Condition (SyCC_SyI_Serialnumber, SyCC_Alarmcondition, SyCC_RelayBcondition, SyCC_Rtc) VALUES (%1, 3, 1, '2024-03-05 14:07:00')"_s
                .arg(serial));
    }
    return !fx.db.begin().isError() && fx.exec(sql) && !fx.db.commit().isError();
}

double medianMs(std::vector<qint64>& ns)
{
    std::sort(ns.begin(), ns.end());
    return ns[ns.size() / 2] / 1e6;
}

// Times `work` kRuns times; `prepare` runs untimed before each run.
double measure(const std::function<void()>& work, const std::function<void(int)>& prepare = {})
{
    std::vector<qint64> ns;
    ns.reserve(kRuns);
    for (int i = 0; i < kRuns; ++i) {
        if (prepare)
            prepare(i);
        QElapsedTimer t;
        t.start();
        work();
        ns.push_back(t.nsecsElapsed());
    }
    return medianMs(ns);
}

void benchKind(const char* kind)
{
    qputenv("SX_TEST_DB", kind);
    test::GuiFixture fx;
    if (!fx.ready()) {
        std::printf("refresh %s: skipped (%s)\n", kind, qPrintable(fx.problem()));
        return;
    }
    if (!seed(fx)) {
        std::printf("refresh %s: seeding failed\n", kind);
        return;
    }

    const double read = measure([&] {
        const CurrentCondition cc = readCurrentCondition(fx.db, u"BENCH-0"_s);
        if (cc.points.size() != 20 || cc.powers.size() != 4)
            std::printf("unexpected rows %lld/%lld\n", static_cast<long long>(cc.points.size()),
                        static_cast<long long>(cc.powers.size()));
    });

    MainWindow w(fx.ctx);
    fillSystemSelect(w, 0, false);
    w.refreshTimer()->stop();
    const double unchanged = measure([&] { w.refresh(); });
    const double changed = measure(
        [&] { w.refresh(); },
        [&](int i) {
            (void)fx.db.exec(
                u"UPDATE Sensors_Current_Condition SET SeCC_Currvalue=%1 WHERE SeCC_SyI_Serialnumber='BENCH-0' AND SeCC_Sensornumber=%2"_s
                    .arg(i * 0.3)
                    .arg(i % 20 + 1));
        });
    w.refreshTimer()->stop();

    std::printf("refresh 20 points + 4 inputs %s, queries only: %.2f ms (median of %d)\n", kind,
                read, kRuns);
    std::printf(
        "refresh 20 points + 4 inputs %s, window, nothing changed: %.2f ms (median of %d)\n", kind,
        unchanged, kRuns);
    std::printf(
        "refresh 20 points + 4 inputs %s, window, one value changed: %.2f ms (median of %d)\n",
        kind, changed, kRuns);
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchKind("sqlite");
    if (!qEnvironmentVariableIsEmpty("SX_TEST_PG"))
        benchKind("postgresql");
    else
        std::printf("refresh postgresql: skipped (SX_TEST_PG not set)\n");
    return 0;
}
