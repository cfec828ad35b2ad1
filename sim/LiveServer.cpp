#include "sim/LiveServer.h"

#include "model/Dialect.h"
#include "model/Formatting.h"
#include "model/Schema.h"
#include "model/SqlDateTime.h"
#include "sim/BulkInsert.h"
#include "sim/EventLog.h"
#include "sim/StoreCounters.h"
#include "sim/WriteTransaction.h"

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace sx::sim {

namespace {

namespace sch = sx::schema;

// How often, per unit and second, the rarer things happen.
constexpr double kSupplyChangeRate = 1.0 / 600;
constexpr double kFaultChangeRate = 1.0 / 1200;
constexpr double kDeliveryRate = 1.0 / 600;
constexpr double kAutomaticFlipRate = 1.0 / 300;
// A latched alarm is cleared by the operator at the unit about this often.
constexpr double kAlarmClearRate = 1.0 / 30;

enum class Clock { Set, Missing, Zero };

QString pointKey(const QString& serial, qint64 point)
{
    return serial + u'#' + QString::number(point);
}

QString unitWhere(QStringView column, const QString& serial)
{
    return column.toString() + u'=' + sqlQuote(serial);
}

// Sets columns of several points of one unit in one statement (a round trip
// per point is what makes a tick slow on a server): each row holds the point
// number, then the values in the order of `columns`.
DbError updatePoints(Database& db, QStringView table, QStringView serialColumn,
                     QStringView numberColumn, const QString& serial, const QStringList& columns,
                     const QList<QList<SqlValue>>& rows)
{
    if (rows.isEmpty())
        return {};
    QString values;
    for (qsizetype r = 0; r < rows.size(); ++r) {
        values += r == 0 ? u"SELECT "_s : u" UNION ALL SELECT "_s;
        values += db.literal(rows[r][0]) + u" AS k"_s;
        for (qsizetype c = 1; c < rows[r].size(); ++c)
            values += u", "_s + db.literal(rows[r][c]) + u" AS c"_s + QString::number(c);
    }
    QString sets;
    for (qsizetype c = 0; c < columns.size(); ++c)
        sets += (c == 0 ? QString() : u", "_s) + columns[c] + u"=v.c"_s + QString::number(c + 1);
    return db.exec(u"UPDATE "_s + table.toString() + u" SET "_s + sets + u" FROM ("_s + values +
                   u") AS v WHERE "_s + unitWhere(serialColumn, serial) + u" AND "_s +
                   numberColumn.toString() + u"=v.k"_s);
}

} // namespace

// What a round writes for many points at once.
struct LiveServer::Batch {
    QList<QList<SqlValue>> conditions; // point, value, out of bounds, alarm
    QList<QList<SqlValue>> counters;   // point, page bytes, last page
    std::unique_ptr<BulkInsert> records;
};

struct LiveServer::UnitState {
    QString serial;
    int version = 0;
    Clock clock = Clock::Set;
    int notification = 0;
};

struct LiveServer::PointState {
    qint64 number = 0;
    int type = 0;
    bool minUsed = false;
    bool maxUsed = false;
    double minLimit = 0;
    double maxLimit = 0;
    std::optional<ValueWalk> walk;
    bool out = false;
    bool alarm = false;
    bool logged = false;
    qint64 lastSn = 0;
    qint64 lastRecordSecs = 0;
};

LiveServer::LiveServer(Database& db, LiveOptions options, const BypassBook* bypasses)
    : m_db(db), m_options(options), m_bypasses(bypasses), m_rng(options.seed ^ 0x11FE)
{
}

LiveServer::~LiveServer() = default;

DbError LiveServer::loadRecordTails()
{
    Rows rows = m_db.read(u"SELECT Rec_SyI_Serialnumber, Rec_SeI_Sensornumber, MAX(Rec_SensRecSN), "
                          "MAX(Rec_Datetime) FROM Records GROUP BY Rec_SyI_Serialnumber, "
                          "Rec_SeI_Sensornumber"_s);
    while (rows.next()) {
        auto p = std::make_shared<PointState>();
        p->number = rows.integer(1).value_or(0);
        p->lastSn = rows.integer(2).value_or(0);
        p->lastRecordSecs = rows.dateTime(3).value_or(0);
        p->logged = true;
        m_points.insert(pointKey(rows.text(0).value_or(QString()), p->number), p);
    }
    return rows.error();
}

DbError LiveServer::tick(qint64 now, TickSummary* summary)
{
    TickSummary local;
    TickSummary& s = summary ? *summary : local;
    s = {};
    if (!m_tailsLoaded) {
        if (DbError e = loadRecordTails(); e.isError())
            return e;
        m_tailsLoaded = true;
    }
    if (DbError e = beginWrite(m_db); e.isError())
        return e;

    auto fail = [this](DbError e) {
        (void)m_db.rollback();
        // What this round counted never reached the database: start over from it.
        m_points.clear();
        m_tailsLoaded = false;
        return e;
    };

    // New messages grow older while they wait for delivery.
    if (m_lastTick > 0 && now > m_lastTick) {
        const QString dt = QString::number(now - m_lastTick);
        if (DbError e =
                m_db.exec(u"UPDATE Sensors_Events SET SeE_BeforeCounter=SeE_BeforeCounter+"_s + dt +
                          u" WHERE SeE_Recipients<>0"_s);
            e.isError())
            return fail(e);
        if (DbError e = m_db.exec(
                u"UPDATE Powermonitoring_Events SET PmE_BeforeCounter=PmE_BeforeCounter+"_s + dt +
                u" WHERE PmE_Recipients<>0"_s);
            e.isError())
            return fail(e);
    }

    QList<UnitState> units;
    {
        Rows rows =
            m_db.read(u"SELECT SyI_Serialnumber, SyI_Softver, SyCC_Alarmcondition, SyCC_Rtc "
                      "FROM Systems_Info LEFT JOIN Systems_Current_Condition "
                      "ON SyCC_SyI_Serialnumber=SyI_Serialnumber "
                      "WHERE SyI_Used=1 AND SyI_Online=1 ORDER BY SyI_Serialnumber"_s);
        while (rows.next()) {
            UnitState u;
            u.serial = rows.text(0).value_or(QString());
            u.version = unitVersionNumber(rows.text(1).value_or(QString()));
            u.notification = static_cast<int>(rows.integer(2).value_or(0));
            u.clock = rows.isNull(3) ? Clock::Missing : rows.dateTime(3) ? Clock::Set : Clock::Zero;
            units.append(u);
        }
        if (!rows.ok())
            return fail(rows.error());
    }
    Batch batch;
    batch.records = std::make_unique<BulkInsert>(
        m_db, sch::Records::table,
        QStringList{u"Rec_SyI_Serialnumber"_s, u"Rec_SeI_Sensornumber"_s, u"Rec_Datetime"_s,
                    u"Rec_Value"_s, u"Rec_Sensortype"_s, u"Rec_SensRecSN"_s});
    for (UnitState& u : units) {
        if (DbError e = tickUnit(u, now, batch, s); e.isError())
            return fail(e);
    }
    if (DbError e = batch.records->finish(); e.isError())
        return fail(e);
    if (DbError e = m_db.commit(); e.isError())
        return fail(e);
    m_lastTick = now;
    return {};
}

DbError LiveServer::tickUnit(UnitState& unit, qint64 now, Batch& batch, TickSummary& s)
{
    namespace SI = sch::SensorsInfo;
    namespace C = sch::SystemsCurrentCondition;
    Rows rows = m_db.read(
        u"SELECT SeI_Sensornumber, SeI_Sensortype, SeI_Minlimit, SeI_Maxlimit, "
        "SeI_Minlimitused, SeI_Maxlimitused, SeI_RecordsTable_Pagebyteswrit, "
        "SeI_RecordsTable_Lastpagesn, SeCC_Currvalue, SeCC_Alarmcondition, "
        "SeCC_Notpowered FROM Sensors_Info JOIN Sensors_Current_Condition "
        "ON SeCC_SyI_Serialnumber=SeI_SyI_Serialnumber AND SeCC_Sensornumber=SeI_Sensornumber "
        "WHERE SeI_Used=1 AND "_s +
        unitWhere(SI::SeI_SyI_Serialnumber, unit.serial) + u" ORDER BY SeI_Sensornumber"_s);
    QList<std::shared_ptr<PointState>> points;
    while (rows.next()) {
        // An unpowered point reports nothing.
        if (rows.integer(10).value_or(1) != 0)
            continue;
        const qint64 number = rows.integer(0).value_or(0);
        auto& p = m_points[pointKey(unit.serial, number)];
        if (!p)
            p = std::make_shared<PointState>();
        const int type = static_cast<int>(rows.integer(1).value_or(0));
        const bool minUsed = rows.integer(4).value_or(0) == 1;
        const bool maxUsed = rows.integer(5).value_or(0) == 1;
        const double minLimit = rows.real(2).value_or(0);
        const double maxLimit = rows.real(3).value_or(0);
        if (!p->walk || p->type != type || p->minUsed != minUsed || p->maxUsed != maxUsed) {
            const double stepSecs = std::max(1.0, m_options.stepSecs);
            p->walk.emplace(type, minUsed, maxUsed, stepSecs, WalkTempo::live(), m_rng.next());
            p->walk->setValue(rows.real(8).value_or(typeProfile(type).center));
            p->alarm = rows.integer(9).value_or(0) > 0;
            p->out = outOfLimits(type, minUsed, minLimit, maxUsed, maxLimit, p->walk->value());
        }
        p->number = number;
        p->type = type;
        p->minUsed = minUsed;
        p->maxUsed = maxUsed;
        p->minLimit = minLimit;
        p->maxLimit = maxLimit;
        p->logged = p->logged || rows.integer(6).value_or(0) > 0 || rows.integer(7).value_or(0) > 0;
        points.append(p);
    }
    if (!rows.ok())
        return rows.error();
    batch.conditions.clear();
    batch.counters.clear();
    for (const auto& p : points) {
        if (DbError e = tickPoint(unit, *p, now, batch, s); e.isError())
            return e;
    }
    namespace SC = sch::SensorsCurrentCondition;
    if (DbError e = updatePoints(m_db, SC::table, SC::SeCC_SyI_Serialnumber, SC::SeCC_Sensornumber,
                                 unit.serial,
                                 {SC::SeCC_Currvalue.toString(), SC::SeCC_Outofbounds.toString(),
                                  SC::SeCC_Alarmcondition.toString()},
                                 batch.conditions);
        e.isError())
        return e;
    if (DbError e = updatePoints(m_db, SI::table, SI::SeI_SyI_Serialnumber, SI::SeI_Sensornumber,
                                 unit.serial,
                                 {SI::SeI_RecordsTable_Pagebyteswrit.toString(),
                                  SI::SeI_RecordsTable_Lastpagesn.toString()},
                                 batch.counters);
        e.isError())
        return e;

    const double step = std::max(1.0, m_options.stepSecs);
    if (m_rng.chance(step * kSupplyChangeRate)) {
        if (DbError e = toggleSupply(unit, now, s); e.isError())
            return e;
    }
    if (m_rng.chance(step * kFaultChangeRate)) {
        if (DbError e = toggleFault(unit, now, s); e.isError())
            return e;
    }
    if (m_rng.chance(step * kDeliveryRate)) {
        if (DbError e = deliverMessages(unit, now, s); e.isError())
            return e;
    }
    QList<SqlAssignment> condition;
    if (unit.clock == Clock::Set)
        condition.append({C::SyCC_Rtc.toString(), SqlDateTimeValue{now}});
    // Automatic notification follows the unit's own timetable: on (3) and off (2).
    if ((unit.notification == 2 || unit.notification == 3) &&
        m_rng.chance(step * kAutomaticFlipRate)) {
        unit.notification = 5 - unit.notification;
        condition.append({C::SyCC_Alarmcondition.toString(), qint64(unit.notification)});
    }
    if (condition.isEmpty())
        return {};
    return m_db.updateRows(C::table, condition, unitWhere(C::SyCC_SyI_Serialnumber, unit.serial));
}

SqlValue LiveServer::messageTime(const UnitState& unit, qint64 now) const
{
    switch (unit.clock) {
    case Clock::Missing:
        return std::monostate{};
    case Clock::Zero:
        return SqlDateTimeValue{secsFromCivil({1899, 12, 30, 0, 0, 0})};
    case Clock::Set:
        break;
    }
    return SqlDateTimeValue{now};
}

DbError LiveServer::tickPoint(const UnitState& unit, PointState& p, qint64 now, Batch& batch,
                              TickSummary& s)
{
    namespace SE = sch::SensorsEvents;
    const double v = p.walk->next();
    const bool out = outOfLimits(p.type, p.minUsed, p.minLimit, p.maxUsed, p.maxLimit, v);
    const bool bypassed =
        m_bypasses &&
        m_bypasses->value(bypassKey(unit.serial, static_cast<int>(p.number)), 0) > now;
    ++s.readings;

    if (out != p.out) {
        p.out = out;
        if (!bypassed) {
            EventRow ev;
            ev.secs = now;
            ev.source = static_cast<int>(p.number);
            ev.condition = out ? 1 : 0;
            ev.sensorType = p.type;
            ev.value = v;
            if (DbError e = appendEvent(m_db, unit.serial, ev); e.isError())
                return e;
            ++s.events;

            Rows last = m_db.read(u"SELECT MAX(SeE_Eventnumber) FROM Sensors_Events WHERE "_s +
                                  unitWhere(SE::SeE_SyI_Serialnumber, unit.serial) +
                                  u" AND SeE_Sensornumber="_s + QString::number(p.number));
            const qint64 number = last.next() ? last.integer(0).value_or(0) + 1 : 1;
            if (!last.ok())
                return last.error();
            if (DbError e = m_db.insertRow(
                    SE::table, {{SE::SeE_SyI_Serialnumber.toString(), unit.serial},
                                {SE::SeE_Sensornumber.toString(), p.number},
                                {SE::SeE_Eventnumber.toString(), number},
                                {SE::SeE_Eventtype.toString(), qint64(out ? 1 : 0)},
                                {SE::SeE_Recordedvalue.toString(), v},
                                {SE::SeE_Recordeddatetime.toString(), messageTime(unit, now)},
                                {SE::SeE_BeforeCounter.toString(), qint64(0)},
                                {SE::SeE_Recipients.toString(), qint64(3)}});
                e.isError())
                return e;
            ++s.messages;
        }
        if (out)
            p.alarm = true;
        else if (m_rng.chance(0.5))
            p.alarm = false; // otherwise latched until cleared at the unit
    } else if (!out && p.alarm &&
               m_rng.chance(std::max(1.0, m_options.stepSecs) * kAlarmClearRate)) {
        p.alarm = false;
    }
    if (bypassed)
        p.alarm = false;

    batch.conditions.append({p.number, v, qint64(out ? 1 : 0), qint64(p.alarm ? 1 : 0)});

    if (!p.logged || now - p.lastRecordSecs < m_options.recordSecs)
        return {};
    ++p.lastSn;
    p.lastRecordSecs = now;
    if (DbError e = batch.records->add(
            {unit.serial, p.number, SqlDateTimeValue{now}, v, qint64(p.type), p.lastSn});
        e.isError())
        return e;
    ++s.records;
    const StoreCounters c = storeCounters(p.lastSn, kRecordEntryBytes);
    batch.counters.append({p.number, c.pageBytes, c.lastPage});
    return {};
}

DbError LiveServer::toggleSupply(const UnitState& unit, qint64 now, TickSummary& s)
{
    namespace PC = sch::PowermonitoringCurrentCondit;
    namespace PE = sch::PowermonitoringEvents;
    // Newer units report a cut in its own column; older ones only as a fault.
    const bool separateCondition = unit.version >= 122;
    Rows rows = m_db.read(
        u"SELECT PmI_Powernumber, PmI_Used, PmCC_Powerfault, PmCC_Powercondition "
        "FROM Powermonitoring_Info LEFT JOIN Powermonitoring_Current_Condit "
        "ON PmCC_SyI_Serialnumber=PmI_SyI_Serialnumber AND PmCC_Powernumber=PmI_Powernumber "
        "WHERE "_s +
        unitWhere(sch::PowermonitoringInfo::PmI_SyI_Serialnumber, unit.serial) +
        u" ORDER BY PmI_Powernumber"_s);
    int highest = 0;
    int mask = 0;
    QList<int> used;
    while (rows.next()) {
        const int n = static_cast<int>(rows.integer(0).value_or(0));
        if (n < 1 || n > 4)
            continue;
        highest = std::max(highest, n);
        const bool cut = (separateCondition ? rows.integer(3) : rows.integer(2)).value_or(0) > 0;
        if (cut)
            mask |= 1 << (n - 1);
        if (rows.integer(1).value_or(0) == 1)
            used << n;
    }
    if (!rows.ok())
        return rows.error();
    if (used.isEmpty())
        return {};
    const int n = used[m_rng.between(0, static_cast<int>(used.size()) - 1)];
    mask ^= 1 << (n - 1);
    const bool cut = (mask >> (n - 1)) & 1;

    QList<SqlAssignment> values = {{PC::PmCC_Powerfault.toString(), qint64(cut ? 1 : 0)}};
    values.append({PC::PmCC_Powercondition.toString(), qint64(separateCondition && cut ? 1 : 0)});
    qint64 changed = 0;
    if (DbError e = m_db.updateRows(PC::table, values,
                                    unitWhere(PC::PmCC_SyI_Serialnumber, unit.serial) +
                                        u" AND PmCC_Powernumber="_s + QString::number(n),
                                    &changed);
        e.isError())
        return e;
    if (changed == 0) {
        values.append({PC::PmCC_SyI_Serialnumber.toString(), unit.serial});
        values.append({PC::PmCC_Powernumber.toString(), qint64(n)});
        if (DbError e = m_db.insertRow(PC::table, values); e.isError())
            return e;
    }

    const int further = highest - 1;
    const int condition = further > 0 ? (further << 4) | mask : (mask & 1);
    Rows last = m_db.read(u"SELECT MAX(PmE_Eventnumber) FROM Powermonitoring_Events WHERE "_s +
                          unitWhere(PE::PmE_SyI_Serialnumber, unit.serial));
    const qint64 number = last.next() ? last.integer(0).value_or(0) + 1 : 1;
    if (!last.ok())
        return last.error();
    if (DbError e = m_db.insertRow(PE::table,
                                   {{PE::PmE_SyI_Serialnumber.toString(), unit.serial},
                                    {PE::PmE_Eventnumber.toString(), number},
                                    {PE::PmE_Eventpowercondition.toString(), qint64(condition)},
                                    {PE::PmE_Recordeddatetime.toString(), messageTime(unit, now)},
                                    {PE::PmE_BeforeCounter.toString(), qint64(0)},
                                    {PE::PmE_Recipients.toString(), qint64(1)}});
        e.isError())
        return e;
    ++s.messages;
    EventRow ev;
    ev.secs = now;
    ev.source = kSourceMainsPower;
    ev.condition = condition;
    ++s.events;
    return appendEvent(m_db, unit.serial, ev);
}

DbError LiveServer::toggleFault(const UnitState& unit, qint64 now, TickSummary& s)
{
    namespace F = sch::SystemsFaults;
    const QString where = unitWhere(F::SyF_SyI_Serialnumber, unit.serial);
    Rows rows =
        m_db.read(u"SELECT SyF_Faulttype, SyF_Faultinfo FROM Systems_Faults WHERE "_s + where);
    QList<std::pair<qint64, QString>> faults;
    while (rows.next())
        faults.append({rows.integer(0).value_or(0), rows.text(1).value_or(QString())});
    if (!rows.ok())
        return rows.error();
    if (!faults.isEmpty() && m_rng.chance(0.6)) {
        const auto& [type, info] = faults[m_rng.between(0, static_cast<int>(faults.size()) - 1)];
        return m_db.deleteRows(F::table, where + u" AND SyF_Faulttype="_s + QString::number(type) +
                                             u" AND SyF_Faultinfo="_s + sqlQuote(info));
    }
    EventRow ev;
    ev.secs = now;
    qint64 type = 0;
    if (m_rng.chance(0.6)) {
        // Low battery and an unset clock are the everyday faults.
        static const int kCodes[] = {3, 3, 4, 4, 0, 1, 2, 5, 6, 7, 8};
        ev.info = QString::number(kCodes[m_rng.between(0, 10)]);
        ev.source = kSourceUnitFaults;
    } else {
        Rows points =
            m_db.read(u"SELECT SeI_Sensornumber FROM Sensors_Info WHERE SeI_Used=1 AND "_s +
                      unitWhere(sch::SensorsInfo::SeI_SyI_Serialnumber, unit.serial));
        QList<qint64> numbers;
        while (points.next())
            numbers << points.integer(0).value_or(0);
        if (!points.ok())
            return points.error();
        if (numbers.isEmpty())
            return {};
        type = 1;
        ev.info = QString::number(numbers[m_rng.between(0, static_cast<int>(numbers.size()) - 1)]);
        ev.source = kSourceSensorFaults;
    }
    for (const auto& f : faults) {
        if (f.first == type && f.second == ev.info)
            return {};
    }
    if (DbError e = m_db.insertRow(F::table, {{F::SyF_SyI_Serialnumber.toString(), unit.serial},
                                              {F::SyF_Faulttype.toString(), type},
                                              {F::SyF_Faultinfo.toString(), ev.info}});
        e.isError())
        return e;
    ++s.events;
    return appendEvent(m_db, unit.serial, ev);
}

DbError LiveServer::deliverMessages(const UnitState& unit, qint64 now, TickSummary& s)
{
    namespace SE = sch::SensorsEvents;
    namespace PE = sch::PowermonitoringEvents;
    const QString pointWhere =
        unitWhere(SE::SeE_SyI_Serialnumber, unit.serial) + u" AND SeE_Recipients<>0"_s;
    const QString powerWhere =
        unitWhere(PE::PmE_SyI_Serialnumber, unit.serial) + u" AND PmE_Recipients<>0"_s;
    qint64 archived = 0;
    qint64 n = 0;
    if (DbError e = m_db.updateRows(SE::table, {{SE::SeE_Recipients.toString(), qint64(0)}},
                                    pointWhere, &n);
        e.isError())
        return e;
    archived += n;
    if (DbError e = m_db.updateRows(PE::table, {{PE::PmE_Recipients.toString(), qint64(0)}},
                                    powerWhere, &n);
        e.isError())
        return e;
    archived += n;
    if (archived == 0)
        return {};
    EventRow ev;
    ev.secs = now;
    ev.source = kSourceMessageDelivery;
    // 5: delivered during an incoming call; else the recipient called, who may stop the rest.
    const int recipient = m_rng.chance(0.3) ? 5 : m_rng.between(1, 4);
    ev.info = u"%1;%2"_s.arg(recipient).arg(recipient != 5 && m_rng.chance(0.15) ? 1 : 0);
    ++s.events;
    return appendEvent(m_db, unit.serial, ev);
}

} // namespace sx::sim
