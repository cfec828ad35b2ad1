// The fleet summary of 1,000 units with 20 zones each (a few in alarm, some
// faults, new messages, 100 events per unit), on SQLite and, when SX_TEST_PG
// names a server, on PostgreSQL. Prints medians; never fails on time.
#include "ScratchDatabase.h"
#include "model/fleet/FleetSummary.h"
#include "sim/BulkInsert.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

using namespace Qt::StringLiterals;
using namespace sx;

namespace {

constexpr int kUnits = 1000;
constexpr int kZones = 20;
constexpr int kEvents = 100;
constexpr int kRuns = 50;

qint64 cpuNs()
{
    timespec ts{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return qint64(ts.tv_sec) * 1'000'000'000 + ts.tv_nsec;
}

bool seed(Database& db)
{
    using sim::BulkInsert;
    BulkInsert units(db, u"Systems_Info",
                     {u"SyI_Serialnumber"_s, u"SyI_Locationnumber"_s, u"SyI_Systemname"_s,
                      u"SyI_Used"_s, u"SyI_Online"_s, u"SyI_Softver"_s});
    BulkInsert cond(
        db, u"Systems_Current_Condition",
        {u"SyCC_SyI_Serialnumber"_s, u"SyCC_Alarmcondition"_s, u"SyCC_RelayBcondition"_s});
    BulkInsert zones(db, u"Sensors_Info",
                     {u"SeI_SyI_Serialnumber"_s, u"SeI_Sensornumber"_s, u"SeI_Sensorname"_s,
                      u"SeI_Sensortype"_s, u"SeI_Used"_s, u"SeI_Maxlimit"_s, u"SeI_Minlimit"_s,
                      u"SeI_Maxlimitused"_s, u"SeI_Minlimitused"_s});
    BulkInsert zoneCond(db, u"Sensors_Current_Condition",
                        {u"SeCC_SyI_Serialnumber"_s, u"SeCC_Sensornumber"_s, u"SeCC_Currvalue"_s,
                         u"SeCC_Outofbounds"_s, u"SeCC_Alarmcondition"_s, u"SeCC_Notpowered"_s});
    BulkInsert powers(
        db, u"Powermonitoring_Info",
        {u"PmI_SyI_Serialnumber"_s, u"PmI_Powernumber"_s, u"PmI_Powername"_s, u"PmI_Used"_s});
    BulkInsert powerCond(db, u"Powermonitoring_Current_Condit",
                         {u"PmCC_SyI_Serialnumber"_s, u"PmCC_Powernumber"_s, u"PmCC_Powerfault"_s,
                          u"PmCC_Powercondition"_s});
    BulkInsert faults(db, u"Systems_Faults",
                      {u"SyF_SyI_Serialnumber"_s, u"SyF_Faulttype"_s, u"SyF_Faultinfo"_s});
    BulkInsert messages(db, u"Sensors_Events",
                        {u"SeE_SyI_Serialnumber"_s, u"SeE_Sensornumber"_s, u"SeE_Eventnumber"_s,
                         u"SeE_Eventtype"_s, u"SeE_Recordedvalue"_s, u"SeE_BeforeCounter"_s,
                         u"SeE_Recipients"_s});
    BulkInsert events(db, u"Events_1",
                      {u"Event_SyI_Serialnumber"_s, u"Event_SystemEventSN"_s, u"Event_Datetime"_s,
                       u"Event_EventSource"_s, u"Event_Condition"_s});
    DbError e = db.begin();
    const auto ok = [&e](DbError r) {
        if (r.isError() && !e.isError())
            e = r;
    };
    for (int u = 0; u < kUnits && !e.isError(); ++u) {
        const QString s = u"FLEET-%1"_s.arg(u, 4, 10, QChar(u'0'));
        ok(units.add({s, QString::number(u % 97), u"Μονάδα %1"_s.arg(u), qint64(1),
                      qint64(u % 50 == 0 ? 0 : 1), u"1.22"_s}));
        ok(cond.add({s, qint64(0), qint64(0)}));
        for (int z = 1; z <= kZones; ++z) {
            const bool alarm = (u * kZones + z) % 173 == 0;
            ok(zones.add({s, qint64(z), u"Ζώνη %1"_s.arg(z), qint64(0), qint64(1), 8.0, 2.0,
                          qint64(1), qint64(1)}));
            ok(zoneCond.add(
                {s, qint64(z), alarm ? 9.5 : 4.0, qint64(alarm), qint64(alarm), qint64(0)}));
        }
        for (int p = 1; p <= 2; ++p) {
            ok(powers.add({s, qint64(p), u"Δίκτυο"_s, qint64(1)}));
            ok(powerCond.add({s, qint64(p), qint64(0), qint64(u % 211 == 0 ? 1 : 0)}));
        }
        if (u % 37 == 0)
            ok(faults.add({s, qint64(0), u"3"_s}));
        for (int m = 0; m < 5; ++m)
            ok(messages.add({s, qint64(1 + m % kZones), qint64(m), qint64(1), 5.0, qint64(60),
                             qint64(m < 2 && u % 3 == 0 ? 3 : 0)}));
        for (int n = 1; n <= kEvents; ++n)
            ok(events.add({s, qint64(n), SqlDateTimeValue{1'780'000'000 + qint64(n) * 3600},
                           qint64(1 + n % kZones), qint64(n % 2)}));
    }
    for (BulkInsert* b :
         {&units, &cond, &zones, &zoneCond, &powers, &powerCond, &faults, &messages, &events})
        ok(b->finish());
    ok(db.commit());
    if (e.isError())
        std::printf("seeding failed: %s\n", qPrintable(e.description));
    if (db.kind() == DbKind::PostgreSQL)
        ok(db.exec(u"ANALYZE"_s));
    return !e.isError();
}

void benchKind(const char* kind)
{
    qputenv("SX_TEST_DB", kind);
    test::ScratchDatabase scratch;
    Database db;
    if (!scratch.problem().isEmpty() || !scratch.open(db)) {
        std::printf("fleet summary %s: skipped (%s)\n", kind, qPrintable(scratch.problem()));
        return;
    }
    if (!seed(db))
        return;
    std::vector<qint64> ns;
    std::vector<qint64> cpu; // this process only: the figure a busy machine disturbs least
    int alarms = 0;
    for (int i = 0; i < kRuns; ++i) {
        QElapsedTimer t;
        const qint64 cpuStart = cpuNs();
        t.start();
        const std::optional<FleetSummary> fleet = readFleetSummary(db);
        ns.push_back(t.nsecsElapsed());
        cpu.push_back(cpuNs() - cpuStart);
        if (!fleet || fleet->units.size() != kUnits) {
            std::printf("fleet summary %s: unexpected result\n", kind);
            return;
        }
        alarms = fleet->count(FleetState::Alarm);
    }
    std::sort(ns.begin(), ns.end());
    std::sort(cpu.begin(), cpu.end());
    // Where the time goes: each query alone, rows walked and read.
    const FleetQueries q = fleetQueries(db.kind());
    for (const auto& [name, sql] :
         {std::pair{"units", q.units}, std::pair{"zones", q.zones}, std::pair{"powers", q.powers},
          std::pair{"faults", q.faults}, std::pair{"messages", q.messages}}) {
        std::vector<qint64> one;
        qint64 rows = 0;
        for (int i = 0; i < kRuns; ++i) {
            QElapsedTimer t;
            t.start();
            Rows r = db.read(sql);
            rows = 0;
            while (r.next()) {
                for (int c = 0; c < r.columnCount(); ++c)
                    (void)r.text(c);
                ++rows;
            }
            one.push_back(t.nsecsElapsed());
        }
        std::sort(one.begin(), one.end());
        std::printf("  %s query: median %.2f ms, %lld rows\n", name, one[one.size() / 2] / 1e6,
                    static_cast<long long>(rows));
    }
    std::printf(
        "fleet summary %s, %d units x %d zones, %d events each (%d in alarm): median %.2f ms, "
        "best %.2f ms, worst %.2f ms, console CPU median %.2f ms (%d runs, 5 queries each)\n",
        kind, kUnits, kZones, kEvents, alarms, ns[ns.size() / 2] / 1e6, ns.front() / 1e6,
        ns.back() / 1e6, cpu[cpu.size() / 2] / 1e6, kRuns);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    benchKind("sqlite");
    if (!qEnvironmentVariableIsEmpty("SX_TEST_PG"))
        benchKind("postgresql");
    else
        std::printf("fleet summary postgresql: skipped (SX_TEST_PG not set)\n");
    return 0;
}
