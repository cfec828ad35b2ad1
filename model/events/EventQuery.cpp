#include "model/events/EventQuery.h"

#include "model/Dialect.h"
#include "model/SqlDateTime.h"

using namespace Qt::StringLiterals;

namespace sx::events {

namespace {

const QString kMainsAlarms =
    u"((Event_Condition=1) OR (Event_Condition BETWEEN 17 AND 19) OR (Event_Condition BETWEEN 33 "
    "AND 39) OR (Event_Condition BETWEEN 49 AND 63))"_s;
const QString kMainsRestorations =
    u"((Event_Condition=0) OR (Event_Condition=16) OR (Event_Condition=32) OR "
    "(Event_Condition=64))"_s;

QString num(int n)
{
    return QString::number(n);
}

QString conditionClause(int source, EventKind kind)
{
    if (kind == EventKind::Both || !kindOptionsApply(source))
        return {};
    const bool alarms = kind == EventKind::Alarms;
    if (source == kAllZonesSource || (source >= kFirstZone && source <= kLastZone))
        return alarms ? u" AND Event_Condition=1"_s : u" AND Event_Condition=0"_s;
    if (source == kMainsSource)
        return u" AND "_s + (alarms ? kMainsAlarms : kMainsRestorations);
    // Every source: alarms take sources 22 to 24 as they are; 25 is in neither set.
    QString out = u" AND (((Event_EventSource BETWEEN 1 AND "_s + num(kLastZone) +
                  (alarms ? u") AND (Event_Condition=1)) OR ((Event_EventSource="_s
                          : u") AND (Event_Condition=0)) OR ((Event_EventSource="_s) +
                  num(kMainsSource) + u") AND "_s + (alarms ? kMainsAlarms : kMainsRestorations) +
                  u')';
    if (alarms) {
        out += u" OR (Event_EventSource BETWEEN "_s + num(kSensorFaultSource) + u" AND "_s +
               num(kDeliverySource) + u')';
    }
    return out + u')';
}

QString serialEquals(QStringView column, const QString& serial)
{
    return column.toString() + u'=' + sqlQuote(serial);
}

QString serialIn(QStringView column, const QStringList& serials)
{
    if (serials.size() == 1)
        return serialEquals(column, serials.first());
    QString list;
    for (const QString& s : serials) {
        if (!list.isEmpty())
            list += u',';
        list += sqlQuote(s);
    }
    return column.toString() + u" IN ("_s + list + u')';
}

} // namespace

EventPeriod eventsPeriod(int yearIndex, int monthIndex)
{
    const int year = 2000 + yearIndex;
    if (monthIndex < 0 || monthIndex >= kWholeYearIndex)
        return {secsFromCivil({year, 1, 1, 0, 0, 0}), secsFromCivil({year + 1, 1, 1, 0, 0, 0}) - 1};
    const int month = monthIndex + 1;
    const CivilTime next =
        month == 12 ? CivilTime{year + 1, 1, 1, 0, 0, 0} : CivilTime{year, month + 1, 1, 0, 0, 0};
    return {secsFromCivil({year, month, 1, 0, 0, 0}), secsFromCivil(next) - 1};
}

static QString eventQuerySql(DbKind kind, const EventFilter& filter, const QStringList& serials)
{
    QString sql = u"SELECT * FROM Events_1 WHERE "_s + serialIn(u"Event_SyI_Serialnumber", serials);
    if (filter.source == kAllZonesSource)
        sql += u" AND Event_EventSource BETWEEN 1 AND "_s + num(kLastZone);
    else if (filter.source >= kFirstZone && filter.source <= kBypassSource)
        sql += u" AND Event_EventSource="_s + num(filter.source);
    sql += conditionClause(filter.source, filter.kind);
    if (filter.newOnly)
        sql += u" AND Event_Ack=0"_s;
    sql += u" AND Event_Datetime"_s + sqlDateRange(kind, toQDateTime(filter.period.fromSecs),
                                                   toQDateTime(filter.period.toSecs));
    return sql;
}

QString orderedEventQuerySql(DbKind kind, const EventFilter& filter, const QStringList& serials)
{
    return eventQuerySql(kind, filter, serials) + u" ORDER BY Event_SystemEventSN"_s;
}

QString eventQuerySql(DbKind kind, const EventFilter& filter)
{
    return eventQuerySql(kind, filter, QStringList{filter.serial});
}

QString orderedEventQuerySql(DbKind kind, const EventFilter& filter)
{
    return orderedEventQuerySql(kind, filter, QStringList{filter.serial});
}

QString sourceEntryText(int source, const QString& zoneName)
{
    if (source >= kFirstZone && source <= kLastZone) {
        return u'[' + num(source) + u"] "_s + (zoneName.isEmpty() ? u"Ανώνυμη ζώνη"_s : zoneName);
    }
    switch (source) {
    case kAllZonesSource:
        return u"Ζώνες παρακολούθησης"_s;
    case kAllSourcesSource:
        return u"ΟΛΑ"_s;
    case kMainsSource:
        return u"Δίκτυο ρεύματος"_s;
    case kSensorFaultSource:
        return u"Βλάβες αισθητηρίων"_s;
    case kUnitFaultSource:
        return u"Βλάβες συστήματος"_s;
    case kDeliverySource:
        return u"Παράδοση μηνυμάτων"_s;
    case kBypassSource:
        return u"Παράκαμψη ζώνης"_s;
    default:
        return {};
    }
}

QString eventMemorySql(const QString& serial)
{
    return u"SELECT SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, SyI_Model, "
           "SyI_EventsTable_Pagebyteswritt, SyI_EventsTable_Lastpagesn FROM Systems_Info WHERE "
           "(SyI_EventsTable_Pagebyteswritt>0 OR SyI_EventsTable_Lastpagesn>0) AND "_s +
           serialEquals(u"SyI_Serialnumber", serial);
}

QString sourceExistsSql(DbKind kind, const QString& serial, int source)
{
    QString sql = u"SELECT Event_SyI_Serialnumber, Event_EventSource FROM Events_1 WHERE "_s +
                  serialEquals(u"Event_SyI_Serialnumber", serial);
    if (source == kAllZonesSource)
        sql += u" AND Event_EventSource BETWEEN 1 AND "_s + num(kLastZone);
    else
        sql += u" AND Event_EventSource="_s + num(source);
    return sqlFirstRowOnly(kind, sql);
}

QString zoneNameSql(const QString& serial, int zone)
{
    return u"SELECT SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensorname FROM Sensors_Info "
           "WHERE "_s +
           serialEquals(u"SeI_SyI_Serialnumber", serial) + u" AND SeI_Sensornumber="_s + num(zone);
}

QString unitLabelSql(const QString& serial)
{
    return unitLabelSql(QStringList{serial});
}

QString powerNamesSql(const QString& serial)
{
    return powerNamesSql(QStringList{serial});
}

QString zoneNamesSql(const QString& serial)
{
    return zoneNamesSql(QStringList{serial});
}

QString unitLabelSql(const QStringList& serials)
{
    return u"SELECT SyI_Serialnumber, SyI_Systemname, SyI_Locationnumber FROM Systems_Info WHERE "_s +
           serialIn(u"SyI_Serialnumber", serials);
}

QString powerNamesSql(const QStringList& serials)
{
    return u"SELECT PmI_SyI_Serialnumber, PmI_Powernumber, PmI_Powername FROM "
           "Powermonitoring_Info WHERE "_s +
           serialIn(u"PmI_SyI_Serialnumber", serials);
}

QString zoneNamesSql(const QStringList& serials)
{
    return u"SELECT SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensorname FROM Sensors_Info "
           "WHERE "_s +
           serialIn(u"SeI_SyI_Serialnumber", serials);
}

} // namespace sx::events
