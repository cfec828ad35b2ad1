#pragma once

#include "model/ConnectionSettings.h"
#include "model/Database.h"
#include "model/LoadedRecords.h"
#include "model/RecordReader.h"

#include <QLocale>
#include <QString>
#include <QStringList>

#include <vector>

// The data rules of the records view: which zones are offered, their limits,
// the period of the month and year lists, the query per database kind, the
// colour rule of a reading, and the loading of the records.
namespace sx::records {

// One zone offered in SensorSelect (a row of Sensors_Info).
struct ZoneEntry {
    QString serial;
    int number = 0;
    int sensorType = 0;
    float maxLimit = 0.0f;
    float minLimit = 0.0f;
    bool maxUsed = false;
    bool minUsed = false;
    QString name;
};

// Only zones whose record store in the unit is not empty.
[[nodiscard]] QString zoneListSql(const QString& serial);
// The unit's zones with records, ascending by zone number.
[[nodiscard]] QList<ZoneEntry> readZones(Database& db, const QString& serial,
                                         DbError* error = nullptr);
// "[7] Ψυγείο", or "[7] Ανώνυμη ζώνη" for a zone without a name.
[[nodiscard]] QString zoneItemText(const ZoneEntry& zone);

// The limits of a zone: the bare values (minText, maxText) and the
// label captions with the unit. All empty for a contact input or a limit not in force.
struct ZoneLimits {
    QString minText;
    QString maxText;
    QString minCaption;
    QString maxCaption;
};
[[nodiscard]] ZoneLimits zoneLimits(const ZoneEntry& zone, const QLocale& locale = QLocale());

// MonthSelect: January to December, then "ΟΛΟΙ" at index 12.
inline constexpr int kWholeYearIndex = 12;
[[nodiscard]] QStringList monthNames();
// YearSelect: 2000 to 2255; index n is year 2000 + n.
inline constexpr int kFirstYear = 2000;
inline constexpr int kYearCount = 256;
[[nodiscard]] QStringList yearNames();
// The list index of a year, kept inside the list.
[[nodiscard]] int yearIndexOf(int year);

// A period with both ends included, in seconds since 1970 (wall clock).
struct Period {
    qint64 fromSecs = 0;
    qint64 toSecs = 0;
};
// The month of the lists, or the whole year for kWholeYearIndex.
[[nodiscard]] Period recordsPeriod(int yearIndex, int monthIndex);

// The records of a zone in the period, in the dialect of the database kind.
// Rows come unordered; loadRecords puts them in grid order.
[[nodiscard]] QString recordsSql(DbKind kind, const ZoneEntry& zone, const Period& period);

// The colour rule of a reading: only a record of the zone's own type, never a
// contact input, strictly beyond a limit in force; the maximum is looked at first.
enum class Marking { None, AboveMax, BelowMin };
struct LimitRule {
    LimitRule() = default;
    explicit LimitRule(const ZoneEntry& zone)
        : sensorType(zone.sensorType), maxUsed(zone.maxUsed), minUsed(zone.minUsed),
          maxLimit(zone.maxLimit), minLimit(zone.minLimit)
    {
    }
    [[nodiscard]] Marking operator()(const RecordPoint& r) const
    {
        if (r.sensorType != sensorType || sensorType == kContactType)
            return Marking::None;
        if (maxUsed && r.value > maxLimit)
            return Marking::AboveMax;
        if (minUsed && r.value < minLimit)
            return Marking::BelowMin;
        return Marking::None;
    }

    static constexpr int kContactType = 2;
    int sensorType = -1;
    bool maxUsed = false;
    bool minUsed = false;
    float maxLimit = 0.0f;
    float minLimit = 0.0f;
};

// Room for one record a minute, the units' usual rate: reserved address space
// that costs memory only where rows arrive, and spares a year's load its regrowth.
[[nodiscard]] size_t expectedRows(const Period& period);

} // namespace sx::records
