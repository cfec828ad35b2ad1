#include "model/summary/SummaryData.h"

#include "model/Dialect.h"
#include "model/ReadAside.h"
#include "model/SqlDateTime.h"

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace sx::summary {

QDate SummaryPeriod::last() const
{
    const QDate start = first();
    return wholeYear() ? QDate(year, 12, 31) : QDate(year, month, start.daysInMonth());
}

QString periodText(const SummaryPeriod& period)
{
    if (period.wholeYear())
        return QString::number(period.year);
    return records::monthNames().value(period.month - 1) + u' ' + QString::number(period.year);
}

ZoneRule ruleOf(const records::ZoneEntry& zone)
{
    ZoneRule rule{zone.sensorType, std::nullopt, std::nullopt};
    if (rule.isContact())
        return rule;
    if (zone.minUsed)
        rule.minLimit = static_cast<double>(zone.minLimit);
    if (zone.maxUsed)
        rule.maxLimit = static_cast<double>(zone.maxLimit);
    return rule;
}

namespace {

DbError readZone(Database& db, const SummaryPeriod& period, qint64 nowSecs, ZoneReport& out)
{
    const records::Period span{secsOf(period.first()), secsOf(period.last()) + 86399};
    Rows rows =
        db.read(u"SELECT Rec_Datetime, Rec_Value, Rec_Sensortype FROM Records WHERE "
                u"Rec_SyI_Serialnumber="_s +
                sqlQuote(out.zone.serial) + u" AND Rec_SeI_Sensornumber="_s +
                QString::number(out.zone.number) + u" AND Rec_Datetime"_s +
                sqlDateRange(db.kind(), toQDateTime(span.fromSecs), toQDateTime(span.toSecs)));
    std::vector<Sample> samples;
    samples.reserve(records::expectedRows(span));
    while (rows.next()) {
        const auto when = rows.dateTime(0);
        if (!when)
            continue;
        Sample s{*when, std::nullopt, static_cast<int>(rows.integer(2).value_or(0))};
        // Single precision like the column, so a value on a limit compares as the view shows it.
        if (const auto v = rows.real(1))
            s.value = static_cast<double>(static_cast<float>(*v));
        samples.push_back(s);
    }
    if (!rows.ok())
        return rows.error();
    // Rows nearly always come in time order already; sorting in SQL would
    // cost the server a sort of the whole year every time.
    const auto byTime = [](const Sample& x, const Sample& y) { return x.secs < y.secs; };
    if (!std::is_sorted(samples.begin(), samples.end(), byTime))
        std::stable_sort(samples.begin(), samples.end(), byTime);
    const ZoneRule rule = ruleOf(out.zone);
    out.summary = summarise(samples, rule, period.first(), period.last(), nowSecs);
    if (!rule.isContact()) {
        out.chart.reserve(samples.size());
        for (auto it = samples.rbegin(); it != samples.rend(); ++it) {
            if (it->value && it->sensorType == rule.sensorType)
                out.chart.push_back({it->secs, static_cast<float>(*it->value),
                                     static_cast<quint8>(it->sensorType)});
        }
    }
    return {};
}

} // namespace

SummaryLoad loadSummary(Database& db, const QString& serial, int zoneNumber,
                        const SummaryPeriod& period, qint64 nowSecs)
{
    SummaryLoad out;
    out.input.serial = serial;
    out.input.period = period;
    {
        Rows unit = db.readFirst(u"SELECT SyI_Serialnumber, SyI_Systemname FROM Systems_Info "
                                 u"WHERE SyI_Serialnumber="_s +
                                 sqlQuote(serial));
        const bool found = unit.next();
        if (!unit.ok()) {
            out.problem = LoadProblem::Database;
            out.error = unit.error();
            return out;
        }
        if (!found) {
            out.problem = LoadProblem::UnknownUnit;
            return out;
        }
        out.input.unitName = unit.text(1).value_or(QString());
    }
    DbError error;
    const QList<records::ZoneEntry> zones = records::readZones(db, serial, &error);
    if (error.isError()) {
        out.problem = LoadProblem::Database;
        out.error = error;
        return out;
    }
    bool any = false;
    for (const records::ZoneEntry& zone : zones) {
        if (zoneNumber >= 0 && zone.number != zoneNumber)
            continue;
        ZoneReport report;
        report.zone = zone;
        if (const DbError e = readZone(db, period, nowSecs, report); e.isError()) {
            out.problem = LoadProblem::Database;
            out.error = e;
            return out;
        }
        any = any || report.summary.totals.readings + report.summary.totals.skipped > 0;
        out.input.zones.append(report);
    }
    if (out.input.zones.isEmpty())
        out.problem = LoadProblem::UnknownZone;
    else if (!any)
        out.problem = LoadProblem::NoRecords;
    return out;
}

SummaryLoad loadSummaryAside(const ConnectionSettings& settings, const QString& serial,
                             int zoneNumber, const SummaryPeriod& period, qint64 nowSecs)
{
    SummaryLoad result;
    if (const DbError e = readAside(
            settings,
            [&](Database& db) { result = loadSummary(db, serial, zoneNumber, period, nowSecs); });
        e.isError()) {
        result.problem = LoadProblem::Database;
        result.error = e;
    }
    return result;
}

} // namespace sx::summary
