#include "model/records/RecordsQuery.h"

#include "model/Dialect.h"
#include "model/Formatting.h"
#include "model/SqlDateTime.h"

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace sx::records {

QString zoneListSql(const QString& serial)
{
    return u"SELECT SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensortype, SeI_Maxlimit, "
           "SeI_Minlimit, SeI_Maxlimitused, SeI_Minlimitused, SeI_Sensorname, "
           "SeI_RecordsTable_Pagebyteswrit, SeI_RecordsTable_Lastpagesn FROM Sensors_Info WHERE "
           "(SeI_RecordsTable_Pagebyteswrit>0 OR SeI_RecordsTable_Lastpagesn>0) AND "
           "SeI_SyI_Serialnumber="_s +
           sqlQuote(serial);
}

QList<ZoneEntry> readZones(Database& db, const QString& serial, DbError* error)
{
    QList<ZoneEntry> zones;
    Rows r = db.read(zoneListSql(serial));
    const int cSerial = r.column(u"SeI_SyI_Serialnumber");
    const int cNumber = r.column(u"SeI_Sensornumber");
    const int cType = r.column(u"SeI_Sensortype");
    const int cMax = r.column(u"SeI_Maxlimit");
    const int cMin = r.column(u"SeI_Minlimit");
    const int cMaxUsed = r.column(u"SeI_Maxlimitused");
    const int cMinUsed = r.column(u"SeI_Minlimitused");
    const int cName = r.column(u"SeI_Sensorname");
    while (r.next()) {
        ZoneEntry z;
        z.serial = r.text(cSerial).value_or(QString());
        z.number = static_cast<qint16>(r.integer(cNumber).value_or(0));
        z.sensorType = static_cast<quint8>(r.integer(cType).value_or(0));
        z.maxLimit = static_cast<float>(r.real(cMax).value_or(0.0));
        z.minLimit = static_cast<float>(r.real(cMin).value_or(0.0));
        z.maxUsed = r.integer(cMaxUsed).value_or(0) == 1;
        z.minUsed = r.integer(cMinUsed).value_or(0) == 1;
        z.name = r.text(cName).value_or(QString());
        zones.append(z);
    }
    if (error)
        *error = r.error();
    // Ordered here rather than in SQL, so every database kind gives the same order.
    std::stable_sort(zones.begin(), zones.end(),
                     [](const ZoneEntry& a, const ZoneEntry& b) { return a.number < b.number; });
    return zones;
}

QString zoneItemText(const ZoneEntry& zone)
{
    return u'[' + QString::number(zone.number) + u"] "_s +
           (zone.name.isEmpty() ? u"Ανώνυμη ζώνη"_s : zone.name);
}

ZoneLimits zoneLimits(const ZoneEntry& zone, const QLocale& locale)
{
    ZoneLimits out;
    if (zone.sensorType == LimitRule::kContactType)
        return out;
    const QString unit = unitSuffix(zone.sensorType);
    if (zone.minUsed) {
        out.minText = formatValue(zone.minLimit, locale);
        out.minCaption = out.minText + unit;
    }
    if (zone.maxUsed) {
        out.maxText = formatValue(zone.maxLimit, locale);
        out.maxCaption = out.maxText + unit;
    }
    return out;
}

QStringList monthNames()
{
    // The third is written without its accent: workbooks and reports carry this text.
    return {u"Ιανουάριος"_s, u"Φεβρουάριος"_s, u"Μαρτιος"_s,   u"Απρίλιος"_s,    u"Μάιος"_s,
            u"Ιούνιος"_s,    u"Ιούλιος"_s,     u"Αύγουστος"_s, u"Σεπτέμβριος"_s, u"Οκτώβριος"_s,
            u"Νοέμβριος"_s,  u"Δεκέμβριος"_s,  u"ΟΛΟΙ"_s};
}

QStringList yearNames()
{
    QStringList years;
    years.reserve(kYearCount);
    for (int n = 0; n < kYearCount; ++n)
        years << QString::number(kFirstYear + n);
    return years;
}

int yearIndexOf(int year)
{
    return std::clamp(year - kFirstYear, 0, kYearCount - 1);
}

Period recordsPeriod(int yearIndex, int monthIndex)
{
    const int year = kFirstYear + yearIndex;
    if (monthIndex < 0 || monthIndex >= kWholeYearIndex) {
        return {secsFromCivil({year, 1, 1, 0, 0, 0}), secsFromCivil({year + 1, 1, 1, 0, 0, 0}) - 1};
    }
    const int month = monthIndex + 1;
    const CivilTime next =
        month == 12 ? CivilTime{year + 1, 1, 1, 0, 0, 0} : CivilTime{year, month + 1, 1, 0, 0, 0};
    return {secsFromCivil({year, month, 1, 0, 0, 0}), secsFromCivil(next) - 1};
}

size_t expectedRows(const Period& period)
{
    return period.toSecs >= period.fromSecs
               ? static_cast<size_t>((period.toSecs - period.fromSecs) / 60 + 1)
               : 0;
}

QString recordsSql(DbKind kind, const ZoneEntry& zone, const Period& period)
{
    return u"SELECT Rec_SyI_Serialnumber, Rec_SeI_Sensornumber, Rec_Datetime, Rec_Value, "
           "Rec_Sensortype, Rec_SensRecSN FROM Records WHERE Rec_SyI_Serialnumber="_s +
           sqlQuote(zone.serial) + u" AND Rec_SeI_Sensornumber="_s + QString::number(zone.number) +
           u" AND Rec_Datetime"_s +
           sqlDateRange(kind, toQDateTime(period.fromSecs), toQDateTime(period.toSecs));
}

} // namespace sx::records
