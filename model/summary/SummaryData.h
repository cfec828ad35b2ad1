#pragma once

#include "model/Database.h"
#include "model/LoadedRecords.h"
#include "model/records/RecordsQuery.h"
#include "model/summary/ZoneSummary.h"

#include <QDate>
#include <QList>
#include <QString>

#include <vector>

// What the monthly summary shows, read from the database: the unit, each
// chosen zone with its summary and the readings its chart draws.
namespace sx::summary {

// A month (1 to 12) of a year, or the whole year (month 0).
struct SummaryPeriod {
    int year = 2000;
    int month = 0;
    [[nodiscard]] QDate first() const { return QDate(year, month > 0 ? month : 1, 1); }
    [[nodiscard]] QDate last() const;
    [[nodiscard]] bool wholeYear() const { return month == 0; }
};
// "Μάρτιος 2026", or "2026" for a whole year.
[[nodiscard]] QString periodText(const SummaryPeriod& period);

struct ZoneReport {
    records::ZoneEntry zone;
    ZoneSummary summary;
    // The zone's usable readings for the chart, newest first as the graph takes them.
    std::vector<RecordPoint> chart;
};

struct SummaryInput {
    QString serial;
    QString unitName;
    SummaryPeriod period;
    QList<ZoneReport> zones;
};

enum class LoadProblem { None, Database, UnknownUnit, UnknownZone, NoRecords };

struct SummaryLoad {
    SummaryInput input;
    LoadProblem problem = LoadProblem::None;
    DbError error;
};

// The zone's present type and limits in force, as the records view shows them.
[[nodiscard]] ZoneRule ruleOf(const records::ZoneEntry& zone);

// Reads one zone (zoneNumber) or every zone with records (zoneNumber < 0) of
// the unit. NoRecords when not one chosen zone has a record in the period.
// `nowSecs` (wall clock) ends an excursion that is still running.
[[nodiscard]] SummaryLoad loadSummary(Database& db, const QString& serial, int zoneNumber,
                                      const SummaryPeriod& period, qint64 nowSecs);

// The same on a connection of its own in a worker thread: the calling (window)
// thread keeps painting and serving its timers, and its connection stays free
// for the refresh, while a year of records is read and summed up.
[[nodiscard]] SummaryLoad loadSummaryAside(const ConnectionSettings& settings,
                                           const QString& serial, int zoneNumber,
                                           const SummaryPeriod& period, qint64 nowSecs);

} // namespace sx::summary
