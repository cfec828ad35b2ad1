#pragma once

#include "model/Database.h"
#include "sim/RequestHandler.h"
#include "sim/ValueWalk.h"

#include <QHash>

#include <memory>

namespace sx::sim {

struct LiveOptions {
    int recordSecs = 60; // a logged point writes a record at most this often (0: every tick)
    double stepSecs = 2; // the polling interval, which sets how far readings move per tick
    quint64 seed = 1;
};

struct TickSummary {
    int readings = 0;
    int records = 0;
    int events = 0;
    int messages = 0;
};

// The units as the server sees them while it polls: every tick moves the
// readings of online units, logs records, and now and then raises or clears
// alarms, power cuts, faults and message deliveries, as a fleet would.
class LiveServer {
public:
    LiveServer(Database& db, LiveOptions options, const BypassBook* bypasses = nullptr);
    ~LiveServer();
    LiveServer(const LiveServer&) = delete;
    LiveServer& operator=(const LiveServer&) = delete;

    // One polling round at wall-clock time `nowSecs`, in one transaction.
    DbError tick(qint64 nowSecs, TickSummary* summary = nullptr);

private:
    struct PointState;
    struct UnitState;
    struct Batch;

    DbError loadRecordTails();
    DbError tickUnit(UnitState& unit, qint64 now, Batch& batch, TickSummary& s);
    DbError tickPoint(const UnitState& unit, PointState& p, qint64 now, Batch& batch,
                      TickSummary& s);
    DbError toggleSupply(const UnitState& unit, qint64 now, TickSummary& s);
    DbError toggleFault(const UnitState& unit, qint64 now, TickSummary& s);
    DbError deliverMessages(const UnitState& unit, qint64 now, TickSummary& s);
    [[nodiscard]] SqlValue messageTime(const UnitState& unit, qint64 now) const;

    Database& m_db;
    LiveOptions m_options;
    const BypassBook* m_bypasses;
    Prng m_rng;
    QHash<QString, std::shared_ptr<PointState>> m_points; // serial + '#' + point
    bool m_tailsLoaded = false;
    qint64 m_lastTick = 0;
};

} // namespace sx::sim
