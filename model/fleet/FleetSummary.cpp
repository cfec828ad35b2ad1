#include "model/fleet/FleetSummary.h"

#include "model/FaultCodes.h"
#include "model/Formatting.h"

using namespace Qt::StringLiterals;

namespace sx {

namespace {

bool above0(std::optional<qint64> v)
{
    return v.value_or(0) > 0;
}

// The newest event is the one with the highest sequence number; each dialect
// finds it through the (serial, sequence) index without a scan per unit.
QString newestEventColumn(DbKind kind)
{
    switch (kind) {
    case DbKind::Access:
        return u"(SELECT TOP 1 Event_Datetime FROM Events_1 WHERE Event_SyI_Serialnumber=SyI_Serialnumber ORDER BY Event_SystemEventSN DESC)"_s;
    case DbKind::Oracle:
        return u"(SELECT MAX(Event_Datetime) KEEP (DENSE_RANK LAST ORDER BY Event_SystemEventSN) FROM Events_1 WHERE Event_SyI_Serialnumber=SyI_Serialnumber)"_s;
    case DbKind::SQLite:
        // Asked for its highest sequence number first, SQLite reads it off the
        // key's own index whatever other index of the table its statistics favour.
        return u"(SELECT Event_Datetime FROM Events_1 WHERE Event_SyI_Serialnumber=SyI_Serialnumber AND Event_SystemEventSN=(SELECT MAX(Event_SystemEventSN) FROM Events_1 WHERE Event_SyI_Serialnumber=SyI_Serialnumber))"_s;
    case DbKind::PostgreSQL:
        break;
    }
    return u"(SELECT Event_Datetime FROM Events_1 WHERE Event_SyI_Serialnumber=SyI_Serialnumber ORDER BY Event_SystemEventSN DESC LIMIT 1)"_s;
}

QString faultText(qint64 type, const QString& info)
{
    if (type == 1)
        return sensorFaultPrefix() + info;
    if (const auto fault = unitFault(info))
        return fault->text;
    return u"ΒΛΑΒΗ "_s + info;
}

} // namespace

FleetState UnitSummary::state() const
{
    if (online == 0)
        return FleetState::Offline;
    if (!connected())
        return FleetState::Programming;
    if (inAlarm())
        return FleetState::Alarm;
    if (!faults.isEmpty())
        return FleetState::Faults;
    return FleetState::Normal;
}

QString UnitSummary::shownName() const
{
    return name.isEmpty() ? u"Ανώνυμο σύστημα"_s : name;
}

QString UnitSummary::title() const
{
    return shownName() + u" ["_s + location + u']';
}

const UnitSummary* FleetSummary::find(const QString& serial) const
{
    const auto it = index.constFind(serial);
    return it == index.cend() ? nullptr : &units.at(*it);
}

int FleetSummary::count(FleetState state) const
{
    return static_cast<int>(
        std::count_if(units.cbegin(), units.cend(),
                      [state](const UnitSummary& u) { return u.state() == state; }));
}

FleetState FleetSummary::worst() const
{
    FleetState w = FleetState::Normal;
    for (const UnitSummary& u : units)
        w = std::min(w, u.state());
    return w;
}

FleetQueries fleetQueries(DbKind kind)
{
    FleetQueries q;
    // SQLite's planner would walk every zone in use and look its condition
    // up; CROSS JOIN makes it walk the conditions (few are out of limits) and
    // look up only those zones, about six times faster on a thousand units.
    const QString join = kind == DbKind::SQLite ? u" CROSS JOIN "_s : u" INNER JOIN "_s;
    q.units =
        u"SELECT SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, SyI_Online, SyI_Softver, SyCC_RelayBcondition, "_s +
        newestEventColumn(kind) +
        u" AS NewestEvent FROM Systems_Info LEFT JOIN Systems_Current_Condition ON SyCC_SyI_Serialnumber=SyI_Serialnumber WHERE SyI_Used=1"_s;
    q.zones =
        u"SELECT SeCC_SyI_Serialnumber, SeCC_Sensornumber, SeCC_Currvalue, SeCC_Outofbounds, SeCC_Alarmcondition, SeI_Sensorname, SeI_Sensortype, SeI_Maxlimit, SeI_Minlimit, SeI_Maxlimitused, SeI_Minlimitused FROM Sensors_Current_Condition"_s +
        join +
        u"Sensors_Info ON (SeI_SyI_Serialnumber=SeCC_SyI_Serialnumber AND SeI_Sensornumber=SeCC_Sensornumber) WHERE SeI_Used=1 AND (SeCC_Outofbounds>0 OR SeCC_Alarmcondition>0)"_s;
    q.powers =
        u"SELECT PmCC_SyI_Serialnumber, PmCC_Powernumber, PmCC_Powerfault, PmCC_Powercondition, PmI_Powername FROM Powermonitoring_Current_Condit"_s +
        join +
        u"Powermonitoring_Info ON (PmI_SyI_Serialnumber=PmCC_SyI_Serialnumber AND PmI_Powernumber=PmCC_Powernumber) WHERE PmI_Used=1 AND (PmCC_Powerfault>0 OR PmCC_Powercondition>0)"_s;
    q.faults = u"SELECT SyF_SyI_Serialnumber, SyF_Faulttype, SyF_Faultinfo FROM Systems_Faults"_s;
    q.messages =
        u"SELECT SeE_SyI_Serialnumber AS MsgSerial, COUNT(*) AS MsgCount FROM Sensors_Events WHERE SeE_Recipients<>0 GROUP BY SeE_SyI_Serialnumber UNION ALL SELECT PmE_SyI_Serialnumber, COUNT(*) FROM Powermonitoring_Events WHERE PmE_Recipients<>0 GROUP BY PmE_SyI_Serialnumber"_s;
    return q;
}

std::optional<FleetSummary> readFleetSummary(Database& db, DbError* error)
{
    const FleetQueries q = fleetQueries(db.kind());
    FleetSummary fleet;
    QHash<QString, int> versions;
    const auto failed = [error](const Rows& r) {
        if (error)
            *error = r.error();
        return std::nullopt;
    };

    {
        Rows r = db.read(q.units);
        while (r.next()) {
            UnitSummary u;
            u.serial = r.text(0).value_or(QString());
            u.location = r.text(1).value_or(QString());
            u.name = r.text(2).value_or(QString());
            u.online = r.integer(3);
            versions.insert(u.serial, unitVersionNumber(r.text(4).value_or(QString())));
            u.relayOn = r.integer(5) == 1;
            u.newestEvent = r.dateTime(6);
            fleet.index.insert(u.serial, fleet.units.size());
            fleet.units.append(std::move(u));
        }
        if (!r.ok())
            return failed(r);
    }
    // Rows of units not in use, or not listed, fall through find() and are dropped.
    const auto unit = [&fleet](const Rows& r) -> UnitSummary* {
        const auto it = fleet.index.constFind(r.text(0).value_or(QString()));
        return it == fleet.index.cend() ? nullptr : &fleet.units[*it];
    };
    {
        Rows r = db.read(q.zones);
        while (r.next()) {
            UnitSummary* u = unit(r);
            if (!u)
                continue;
            ZoneAlert z;
            z.number = static_cast<int>(r.integer(1).value_or(0));
            z.value = r.real(2);
            z.outOfBounds = above0(r.integer(3));
            z.alarm = above0(r.integer(4));
            z.name = r.text(5).value_or(QString());
            z.sensorType = static_cast<int>(r.integer(6).value_or(0));
            if (z.sensorType != ContactSensorType) {
                if (r.integer(9) == 1)
                    z.maxLimit = r.real(7);
                if (r.integer(10) == 1)
                    z.minLimit = r.real(8);
            }
            u->zones.append(z);
        }
        if (!r.ok())
            return failed(r);
    }
    {
        Rows r = db.read(q.powers);
        while (r.next()) {
            UnitSummary* u = unit(r);
            if (!u)
                continue;
            // As the current view: a fault always counts, a cut only where the
            // unit's version reports cuts in their own column.
            const bool cut = versions.value(u->serial) >= 122 ? above0(r.integer(3)) : false;
            if (!above0(r.integer(2)) && !cut)
                continue;
            u->powers.append(
                {static_cast<int>(r.integer(1).value_or(0)), r.text(4).value_or(QString())});
        }
        if (!r.ok())
            return failed(r);
    }
    {
        Rows r = db.read(q.faults);
        while (r.next()) {
            if (UnitSummary* u = unit(r))
                u->faults.append(
                    faultText(r.integer(1).value_or(0), r.text(2).value_or(QString())));
        }
        if (!r.ok())
            return failed(r);
    }
    {
        Rows r = db.read(q.messages);
        while (r.next()) {
            if (UnitSummary* u = unit(r))
                u->newMessages += static_cast<int>(r.integer(1).value_or(0));
        }
        if (!r.ok())
            return failed(r);
    }
    for (UnitSummary& u : fleet.units)
        std::sort(u.zones.begin(), u.zones.end(),
                  [](const ZoneAlert& a, const ZoneAlert& b) { return a.number < b.number; });
    return fleet;
}

QString fleetStateWord(FleetState state)
{
    switch (state) {
    case FleetState::Alarm:
        return u"Συναγερμός"_s;
    case FleetState::Offline:
        return u"Εκτός σύνδεσης"_s;
    case FleetState::Programming:
        return u"Προγραμματισμός"_s;
    case FleetState::Faults:
        return u"Βλάβες"_s;
    case FleetState::Normal:
        break;
    }
    return u"Κανονική"_s;
}

QString zoneLabel(const ZoneAlert& zone)
{
    return u'[' + QString::number(zone.number) + u"] "_s +
           (zone.name.isEmpty() ? u"Ανώνυμη ζώνη"_s : zone.name);
}

} // namespace sx
