#include "sim/Seeder.h"

#include "model/Schema.h"
#include "model/SqlDateTime.h"
#include "sim/BulkInsert.h"
#include "sim/Prng.h"
#include "sim/RecordWriter.h"
#include "sim/SimSchema.h"
#include "sim/StoreCounters.h"
#include "sim/UnitCodes.h"
#include "sim/ValueWalk.h"
#include "sim/WriteTransaction.h"

#include <QDateTime>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace sx::sim {

namespace {

namespace sch = sx::schema;

constexpr qint64 kDay = 86400;
constexpr qint64 kYearOfMinutes = 525600;
// Messages a unit keeps per point, and power messages per unit.
constexpr int kKeptMessages = 6;
// The newest messages of a unit with new messages still wait for delivery.
constexpr int kNewMessages = 2;

QStringList columnsOf(std::initializer_list<QStringView> names)
{
    QStringList out;
    for (QStringView n : names)
        out << n.toString();
    return out;
}

double round2(double v)
{
    return std::round(v * 100.0) / 100.0;
}

SqlValue messageTime(ClockState clock, qint64 secs)
{
    static const qint64 kZeroDate = secsFromCivil({1899, 12, 30, 0, 0, 0});
    switch (clock) {
    case ClockState::Missing:
        return std::monostate{};
    case ClockState::ZeroDate:
        return SqlDateTimeValue{kZeroDate};
    case ClockState::Set:
        break;
    }
    return SqlDateTimeValue{secs};
}

struct PendingEvent {
    qint64 secs = 0;
    int source = 0;
    int condition = 0;
    int sensorType = 0;
    double value = 0;
    QString info;
};

struct PointHistory {
    QList<LimitCrossing> crossings;
    QList<int> crossingTypes;
    double lastValue = 0;
    qint64 records = 0;
};

class UnitSeeder {
public:
    UnitSeeder(Database& db, const DemoUnit& unit, int index, const SeedOptions& o, qint64 end,
               SeedReport& report)
        : m_db(db), m_u(unit), m_index(index), m_o(o), m_end(end),
          m_start(end - static_cast<qint64>(o.days) * kDay), m_report(report),
          m_rng(Prng(o.seed ^ 0x5EED).fork(static_cast<quint64>(index) + 101))
    {
    }

    DbError run()
    {
        if (DbError e = writePoints(); e.isError())
            return e;
        if (DbError e = writePower(); e.isError())
            return e;
        if (DbError e = writeFaultsAndEvents(); e.isError())
            return e;
        return writeUnit();
    }

private:
    quint64 pointSeed(int point) const
    {
        return Prng(m_o.seed * 1000003ull + static_cast<quint64>(m_index) * 64 +
                    static_cast<quint64>(point))
            .next();
    }

    DbError writePoints()
    {
        namespace SI = sch::SensorsInfo;
        namespace SC = sch::SensorsCurrentCondition;
        namespace SE = sch::SensorsEvents;
        BulkInsert info(
            m_db, SI::table,
            columnsOf({SI::SeI_SyI_Serialnumber, SI::SeI_Sensornumber, SI::SeI_Sensorname,
                       SI::SeI_Sensortype, SI::SeI_Used, SI::SeI_Maxlimit, SI::SeI_Minlimit,
                       SI::SeI_Maxlimitused, SI::SeI_Minlimitused,
                       SI::SeI_RecordsTable_Pagebyteswrit, SI::SeI_RecordsTable_Lastpagesn}));
        BulkInsert current(
            m_db, SC::table,
            columnsOf({SC::SeCC_SyI_Serialnumber, SC::SeCC_Sensornumber, SC::SeCC_Currvalue,
                       SC::SeCC_Outofbounds, SC::SeCC_Alarmcondition, SC::SeCC_Notpowered}));
        BulkInsert messages(
            m_db, SE::table,
            columnsOf({SE::SeE_SyI_Serialnumber, SE::SeE_Sensornumber, SE::SeE_Eventnumber,
                       SE::SeE_Eventtype, SE::SeE_Recordedvalue, SE::SeE_Recordeddatetime,
                       SE::SeE_BeforeCounter, SE::SeE_Recipients}));

        for (const DemoPoint& p : m_u.points) {
            PointHistory h;
            if (DbError e = writeHistory(p, h); e.isError())
                return e;

            // Events of every crossing, messages of the newest few.
            for (qsizetype c = 0; c < h.crossings.size(); ++c) {
                const LimitCrossing& x = h.crossings[c];
                m_events.append({x.secs, p.number, x.out ? 1 : 0, h.crossingTypes[c], x.value, {}});
            }
            const qsizetype firstKept = std::max<qsizetype>(0, h.crossings.size() - kKeptMessages);
            for (qsizetype c = firstKept; c < h.crossings.size(); ++c) {
                const LimitCrossing& x = h.crossings[c];
                const bool fresh = m_u.hasNewMessages && c >= h.crossings.size() - kNewMessages;
                if (DbError e = messages.add({m_u.serial, qint64(p.number), qint64(c + 1),
                                              qint64(x.out ? 1 : 0), x.value,
                                              messageTime(m_u.clock, x.secs), m_end - x.secs,
                                              qint64(fresh ? 3 : 0)});
                    e.isError())
                    return e;
                ++m_report.pointMessages;
            }

            const StoreCounters counters = storeCounters(h.records, kRecordEntryBytes);
            if (DbError e = info.add({m_u.serial, qint64(p.number), p.name, qint64(p.type),
                                      qint64(p.used ? 1 : 0), p.maxLimit, p.minLimit,
                                      qint64(p.maxUsed ? 1 : 0), qint64(p.minUsed ? 1 : 0),
                                      counters.pageBytes, counters.lastPage});
                e.isError())
                return e;
            if (DbError e = current.add(currentRow(p, h.lastValue)); e.isError())
                return e;
        }
        if (DbError e = info.finish(); e.isError())
            return e;
        if (DbError e = current.finish(); e.isError())
            return e;
        return messages.finish();
    }

    DbError writeHistory(const DemoPoint& p, PointHistory& h)
    {
        const TypeProfile prof = typeProfile(p.type);
        h.lastValue = p.type == kContactSensorType
                          ? 0
                          : round2(prof.center + prof.halfWidth * 0.1 * (m_rng.unit() - 0.5));
        if (!p.used || !p.logged)
            return {};

        qint64 step = static_cast<qint64>(m_o.recordMinutes) * 60;
        qint64 count = std::max<qint64>(1, static_cast<qint64>(m_o.days) * kDay / step);
        if (m_o.yearPoint && m_index == 0 && p.number == 1) {
            step = 60;
            count = kYearOfMinutes;
        }
        const qint64 from = m_end - (count - 1) * step;

        RecordSeries s;
        s.serial = m_u.serial;
        s.point = p.number;
        s.stepSecs = step;
        s.seed = pointSeed(p.number);
        qint64 done = 0;
        if (p.previousType >= 0 && count >= 5) {
            // The first fifth was logged while the point was configured as another type.
            s.sensorType = p.previousType;
            s.fromSecs = from;
            s.count = count / 5;
            s.firstSn = 1;
            s.forceExcursion = false;
            SeriesResult r = writeRecordSeries(m_db, s);
            if (r.error.isError())
                return r.error;
            done = s.count;
            s.seed ^= 0xA5A5;
        }
        s.sensorType = p.type;
        s.fromSecs = from + done * step;
        s.count = count - done;
        s.firstSn = done + 1;
        s.minUsed = p.minUsed;
        s.maxUsed = p.maxUsed;
        s.minLimit = p.minLimit;
        s.maxLimit = p.maxLimit;
        s.forceExcursion = true;
        SeriesResult r = writeRecordSeries(m_db, s);
        if (r.error.isError())
            return r.error;
        h.crossings = r.crossings;
        h.crossingTypes = QList<int>(r.crossings.size(), p.type);
        h.lastValue = r.lastValue;
        h.records = count;
        m_report.records += count;
        return {};
    }

    QList<SqlValue> currentRow(const DemoPoint& p, double value) const
    {
        const TypeProfile prof = typeProfile(p.type);
        const bool contact = p.type == kContactSensorType;
        auto pushedOut = [&] {
            if (contact)
                return 1.0;
            if (p.maxUsed)
                return round2(p.maxLimit + 0.2 * prof.halfWidth);
            if (p.minUsed)
                return round2(p.minLimit - 0.2 * prof.halfWidth);
            return round2(prof.center + 2 * prof.halfWidth);
        };
        const double middle = contact ? 0 : prof.center;
        SqlValue notPowered = qint64(0);
        qint64 alarm = 0;
        switch (p.state) {
        case PointState::FromReadings:
            alarm = p.used && outOfLimits(p, value) ? 1 : 0;
            break;
        case PointState::OutOfBounds:
            value = pushedOut();
            break;
        case PointState::AlarmOutOfBounds:
            value = pushedOut();
            alarm = 1;
            break;
        case PointState::AlarmInBounds:
            value = middle;
            alarm = 1;
            break;
        case PointState::NotPowered:
            value = 0;
            notPowered = qint64(1);
            break;
        case PointState::NotPoweredAlarm:
            value = 0;
            notPowered = qint64(1);
            alarm = 1;
            break;
        case PointState::NotPoweredMissing:
            notPowered = std::monostate{};
            break;
        }
        const qint64 out = outOfLimits(p, value) ? 1 : 0;
        return {m_u.serial, qint64(p.number), value, out, alarm, notPowered};
    }

    DbError writePower()
    {
        namespace PI = sch::PowermonitoringInfo;
        namespace PC = sch::PowermonitoringCurrentCondit;
        namespace PE = sch::PowermonitoringEvents;
        BulkInsert info(m_db, PI::table,
                        columnsOf({PI::PmI_SyI_Serialnumber, PI::PmI_Powernumber, PI::PmI_Powername,
                                   PI::PmI_Used}));
        BulkInsert current(m_db, PC::table,
                           columnsOf({PC::PmCC_SyI_Serialnumber, PC::PmCC_Powernumber,
                                      PC::PmCC_Powerfault, PC::PmCC_Powercondition}));
        for (const DemoInput& in : m_u.inputs) {
            if (DbError e =
                    info.add({m_u.serial, qint64(in.number), in.name, qint64(in.used ? 1 : 0)});
                e.isError())
                return e;
            if (DbError e = current.add({m_u.serial, qint64(in.number), qint64(in.fault ? 1 : 0),
                                         qint64(in.condition ? 1 : 0)});
                e.isError())
                return e;
        }
        if (DbError e = info.finish(); e.isError())
            return e;
        if (DbError e = current.finish(); e.isError())
            return e;

        // Cuts and their restorations, one episode per slot of the period. The
        // last two episodes are fixed so that the kept messages show the typical
        // bytes (0x01/0x00, 0x21 and 0x23 with two further inputs, 0x31 with three).
        const int further = static_cast<int>(m_u.inputs.size()) - 1;
        const int episodes = std::max(2, m_o.days / 3);
        const qint64 slot = (m_end - m_start) / episodes;
        QList<std::pair<qint64, int>> messages;
        for (int e = 0; e < episodes; ++e) {
            int mask;
            if (e == episodes - 1 || further == 0)
                mask = 1;
            else if (e == episodes - 2)
                mask = 0b11;
            else
                mask = m_rng.between(1, (1 << (further + 1)) - 1);
            const qint64 cut = m_start + e * slot + static_cast<qint64>(m_rng.unit() * slot * 0.5);
            const qint64 back = std::min(m_end - 60, cut + m_rng.between(600, 10800));
            const int count = further << 4;
            messages.append({cut, further > 0 ? (count | mask) : (mask & 1)});
            messages.append({back, further > 0 ? count : 0});
        }
        for (const auto& [secs, condition] : messages)
            m_events.append({secs, kSourceMainsPower, condition, 0, 0, {}});

        BulkInsert rows(
            m_db, PE::table,
            columnsOf({PE::PmE_SyI_Serialnumber, PE::PmE_Eventnumber, PE::PmE_Eventpowercondition,
                       PE::PmE_Recordeddatetime, PE::PmE_BeforeCounter, PE::PmE_Recipients}));
        const qsizetype firstKept = std::max<qsizetype>(0, messages.size() - kKeptMessages);
        for (qsizetype m = firstKept; m < messages.size(); ++m) {
            const bool fresh = m_u.hasNewMessages && m >= messages.size() - kNewMessages;
            const auto& [secs, condition] = messages[m];
            if (DbError e =
                    rows.add({m_u.serial, qint64(m + 1), qint64(condition),
                              messageTime(m_u.clock, secs), m_end - secs, qint64(fresh ? 1 : 0)});
                e.isError())
                return e;
            ++m_report.powerMessages;
        }
        return rows.finish();
    }

    qint64 randomTime() { return m_start + static_cast<qint64>(m_rng.unit() * (m_end - m_start)); }

    int randomUsedPoint()
    {
        QList<int> used;
        for (const DemoPoint& p : m_u.points) {
            if (p.used)
                used << p.number;
        }
        return used.isEmpty() ? 1 : used[m_rng.between(0, static_cast<int>(used.size()) - 1)];
    }

    DbError writeFaultsAndEvents()
    {
        namespace F = sch::SystemsFaults;
        BulkInsert faults(m_db, F::table,
                          columnsOf({F::SyF_SyI_Serialnumber, F::SyF_Faulttype, F::SyF_Faultinfo}));
        QStringList sensorFaults;
        QStringList unitFaults;
        for (const DemoFault& f : m_u.faults) {
            if (DbError e = faults.add({m_u.serial, qint64(f.type), f.info}); e.isError())
                return e;
            (f.type == 1 ? sensorFaults : unitFaults) << f.info;
        }
        if (DbError e = faults.finish(); e.isError())
            return e;

        auto add = [&](qint64 secs, int source, const QString& info) {
            m_events.append({secs, source, 0, 0, 0, info});
        };
        if (!sensorFaults.isEmpty())
            add(m_end - m_rng.between(3600, 2 * kDay), kSourceSensorFaults,
                sensorFaults.join(u';'));
        if (!unitFaults.isEmpty())
            add(m_end - m_rng.between(3600, 2 * kDay), kSourceUnitFaults, unitFaults.join(u';'));

        if (m_index == 0) {
            add(randomTime(), kSourceSensorFaults, u"3;7"_s);
            add(randomTime(), kSourceSensorFaults, u"4"_s);
            add(randomTime(), kSourceUnitFaults, u"3;4"_s);
            add(randomTime(), kSourceUnitFaults, u"0"_s);
            add(randomTime(), kSourceMessageDelivery, u"2;1"_s);
            add(randomTime(), kSourceMessageDelivery, u"5;0"_s);
            add(randomTime(), kSourceBypass, u"1;4;8"_s);
            add(randomTime(), kSourceBypass, u"0;2;1"_s);
            add(randomTime(), kSourceBypass, u"2;5;24"_s);
        } else {
            if (m_rng.chance(0.5))
                add(randomTime(), kSourceUnitFaults, u"3"_s);
            add(randomTime(), kSourceBypass,
                u"%1;%2;%3"_s.arg(m_rng.between(0, 2))
                    .arg(randomUsedPoint())
                    .arg(m_rng.between(1, 24)));
        }
        // Deliveries of messages by telephone, about one every two days.
        const int deliveries = std::max(1, m_o.days / 2);
        for (int d = 0; d < deliveries; ++d) {
            const int recipient = m_rng.chance(0.3) ? 5 : m_rng.between(1, 4);
            add(randomTime(), kSourceMessageDelivery,
                u"%1;%2"_s.arg(recipient).arg(m_rng.chance(0.2) ? 1 : 0));
        }
        return {};
    }

    DbError writeUnit()
    {
        namespace E = sch::Events1;
        namespace S = sch::SystemsInfo;
        namespace C = sch::SystemsCurrentCondition;
        qint64 eventCount = 0;
        if (m_u.hasEvents) {
            std::stable_sort(m_events.begin(), m_events.end(),
                             [](const PendingEvent& a, const PendingEvent& b) {
                                 return a.secs != b.secs ? a.secs < b.secs : a.source < b.source;
                             });
            BulkInsert events(
                m_db, E::table,
                columnsOf({E::Event_SyI_Serialnumber, E::Event_SystemEventSN, E::Event_Datetime,
                           E::Event_EventSource, E::Event_Condition, E::Event_SeI_Sensortype,
                           E::Event_Value, E::Event_Info1, E::Event_Ack}));
            for (const PendingEvent& ev : m_events) {
                // Operators have read most of what is older than three days.
                const bool old = ev.secs < m_end - 3 * kDay;
                const bool read = m_rng.chance(old ? 0.9 : 0.3);
                if (DbError e = events.add(
                        {m_u.serial, ++eventCount, SqlDateTimeValue{ev.secs}, qint64(ev.source),
                         qint64(ev.condition), qint64(ev.sensorType), ev.value,
                         ev.info.isEmpty() ? SqlValue{} : SqlValue{ev.info}, qint64(read ? 1 : 0)});
                    e.isError())
                    return e;
            }
            if (DbError e = events.finish(); e.isError())
                return e;
        }
        m_report.events += eventCount;

        const StoreCounters counters = storeCounters(eventCount, kEventEntryBytes);
        if (DbError e = m_db.insertRow(
                S::table, {{S::SyI_Serialnumber.toString(), m_u.serial},
                           {S::SyI_Locationnumber.toString(), m_u.location},
                           {S::SyI_Systemname.toString(), m_u.name},
                           {S::SyI_Used.toString(), qint64(m_u.used)},
                           {S::SyI_Online.toString(), qint64(m_u.online)},
                           {S::SyI_Softver.toString(), m_u.softver},
                           {S::SyI_Model.toString(), m_u.model},
                           {S::SyI_EventsTable_Pagebyteswritt.toString(), counters.pageBytes},
                           {S::SyI_EventsTable_Lastpagesn.toString(), counters.lastPage}});
            e.isError())
            return e;
        const SqlValue rtc = m_u.clock == ClockState::Set
                                 ? SqlValue{SqlDateTimeValue{m_end - m_rng.between(0, 59)}}
                                 : messageTime(m_u.clock, 0);
        if (DbError e = m_db.insertRow(
                C::table, {{C::SyCC_SyI_Serialnumber.toString(), m_u.serial},
                           {C::SyCC_Alarmcondition.toString(), qint64(m_u.notification)},
                           {C::SyCC_RelayBcondition.toString(), qint64(m_u.relayB)},
                           {C::SyCC_Rtc.toString(), rtc}});
            e.isError())
            return e;
        return storeUnitCode(m_db, m_u.serial, m_u.code);
    }

    Database& m_db;
    const DemoUnit& m_u;
    int m_index;
    const SeedOptions& m_o;
    qint64 m_end;
    qint64 m_start;
    SeedReport& m_report;
    Prng m_rng;
    QList<PendingEvent> m_events;
};

} // namespace

DbError clearAllData(Database& db)
{
    if (DbError e = ensureUnitCodeTable(db); e.isError())
        return e;
    const QStringView tables[] = {
        sch::SystemsInfo::table,
        sch::SystemsCurrentCondition::table,
        sch::SensorsInfo::table,
        sch::SensorsCurrentCondition::table,
        sch::PowermonitoringInfo::table,
        sch::PowermonitoringCurrentCondit::table,
        sch::SystemsFaults::table,
        sch::SensorsEvents::table,
        sch::PowermonitoringEvents::table,
        sch::Records::table,
        sch::Events1::table,
        sch::TerminalRequests::table,
        kUnitCodesTable,
    };
    if (db.kind() == DbKind::PostgreSQL) {
        QStringList names;
        for (QStringView t : tables)
            names << t.toString();
        return db.exec(u"TRUNCATE TABLE "_s + names.join(u", "_s));
    }
    for (QStringView t : tables) {
        if (DbError e = db.deleteRows(t, {}); e.isError())
            return e;
    }
    return {};
}

SeedReport seedDemo(Database& db, const SeedOptions& options)
{
    SeedReport report;
    if (options.endSecs) {
        report.endSecs = *options.endSecs;
    } else {
        const qint64 now = fromQDateTime(QDateTime::currentDateTime());
        report.endSecs = now - now % 60;
    }
    report.units = buildDemoFleet(options.units, options.seed);

    const bool postgres = db.kind() == DbKind::PostgreSQL;
    if (!postgres) {
        // The journal mode cannot change inside a transaction.
        if ((report.error = createSchema(db)).isError())
            return report;
        // Safe with the write-ahead log and much faster for a bulk load.
        (void)db.exec(u"PRAGMA synchronous=NORMAL"_s);
    }
    if ((report.error = beginWrite(db)).isError())
        return report;
    if (postgres) {
        // Re-running the CREATE statements only says "already exists".
        report.error = db.exec(u"SET LOCAL client_min_messages TO WARNING"_s);
        if (!report.error.isError())
            report.error = createSchema(db);
        if (report.error.isError()) {
            (void)db.rollback();
            return report;
        }
    }
    if ((report.error = ensureUnitCodeTable(db)).isError()) {
        (void)db.rollback();
        return report;
    }
    if ((report.error = clearAllData(db)).isError()) {
        (void)db.rollback();
        return report;
    }
    if ((report.error = db.commit()).isError())
        return report;

    for (int i = 0; i < report.units.size(); ++i) {
        // One transaction per unit keeps the memory of an open transaction small.
        if ((report.error = beginWrite(db)).isError())
            return report;
        UnitSeeder unit(db, report.units[i], i, options, report.endSecs, report);
        report.error = unit.run();
        if (report.error.isError()) {
            (void)db.rollback();
            return report;
        }
        if ((report.error = db.commit()).isError())
            return report;
    }
    return report;
}

} // namespace sx::sim
