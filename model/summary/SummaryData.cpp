#include "model/summary/SummaryData.h"

#include "model/Dialect.h"
#include "model/ReadAside.h"
#include "model/SqlDateTime.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
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

namespace {

// A single-precision limit as the decimal it was written as (4.45, not
// 4.44999980926514); it converts back to the same single.
double shortestOf(float f)
{
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), f).ptr;
    return QByteArray(text.data(), end - text.data()).toDouble();
}

} // namespace

ZoneRule ruleOf(const records::ZoneEntry& zone)
{
    ZoneRule rule{zone.sensorType, std::nullopt, std::nullopt};
    if (rule.isContact())
        return rule;
    if (zone.minUsed)
        rule.minLimit = shortestOf(zone.minLimit);
    if (zone.maxUsed)
        rule.maxLimit = shortestOf(zone.maxLimit);
    return rule;
}

namespace {

Sample sampleOf(Rows& rows)
{
    Sample s{*rows.dateTime(0), std::nullopt, static_cast<int>(rows.integer(2).value_or(0)),
             rows.integer(3).value_or(0)};
    // The stored double: figures show it as it is, limits compare it in single precision.
    s.value = rows.real(1);
    return s;
}

DbError readZone(Database& db, const SummaryPeriod& period, qint64 nowSecs, ZoneReport& out)
{
    const records::Period span{secsOf(period.first()), secsOf(period.last()) + 86399};
    const QString columns = u"SELECT Rec_Datetime, Rec_Value, Rec_Sensortype, Rec_SensRecSN "
                            u"FROM Records WHERE Rec_SyI_Serialnumber="_s +
                            sqlQuote(out.zone.serial) + u" AND Rec_SeI_Sensornumber="_s +
                            QString::number(out.zone.number);
    std::vector<Sample> samples;
    samples.reserve(records::expectedRows(span) + 2);
    // The last reading before the period and the first after it: what
    // crosses the period's edges is counted where it falls.
    const QString usable = u" AND Rec_Sensortype="_s + QString::number(out.zone.sensorType) +
                           u" AND Rec_Value IS NOT NULL AND Rec_Datetime"_s;
    for (const QString& edge :
         {columns + usable + u" < "_s + sqlDateTimeLiteral(db.kind(), span.fromSecs) +
              u" ORDER BY Rec_Datetime DESC, Rec_SensRecSN DESC"_s,
          columns + usable + u" > "_s + sqlDateTimeLiteral(db.kind(), span.toSecs) +
              u" ORDER BY Rec_Datetime, Rec_SensRecSN"_s}) {
        Rows one = db.readFirst(edge);
        if (one.next() && one.dateTime(0))
            samples.push_back(sampleOf(one));
        if (!one.ok())
            return one.error();
    }
    Rows rows =
        db.read(columns + u" AND Rec_Datetime"_s +
                sqlDateRange(db.kind(), toQDateTime(span.fromSecs), toQDateTime(span.toSecs)));
    while (rows.next()) {
        if (rows.dateTime(0))
            samples.push_back(sampleOf(rows));
    }
    if (!rows.ok())
        return rows.error();
    const ZoneRule rule = ruleOf(out.zone);
    if (!rule.isContact()) {
        // The chart draws the period's usable readings, newest first.
        out.chart.reserve(samples.size());
        for (const Sample& x : samples) {
            if (x.value && std::isfinite(*x.value) && x.sensorType == rule.sensorType &&
                x.secs >= span.fromSecs && x.secs <= span.toSecs)
                out.chart.push_back(
                    {x.secs, static_cast<float>(*x.value), static_cast<quint8>(x.sensorType)});
        }
        std::stable_sort(
            out.chart.begin(), out.chart.end(),
            [](const RecordPoint& a, const RecordPoint& b) { return a.secs > b.secs; });
    }
    out.summary = summarise(std::move(samples), rule, period.first(), period.last(), nowSecs);
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
