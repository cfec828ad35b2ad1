#include "reports/current/CurrentReport.h"

#include "model/Dialect.h"
#include "model/QueryHelpers.h"
#include "model/Schema.h"
#include "model/SqlDateTime.h"
#include "model/report/CurrentReportLayout.h"
#include "reports/PrintRoutines.h"
#include "reports/ReportPainter.h"

#include <QPrinter>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

namespace SI = schema::SystemsInfo;
namespace SC = schema::SystemsCurrentCondition;
namespace SEI = schema::SensorsInfo;
namespace SECC = schema::SensorsCurrentCondition;
namespace PI = schema::PowermonitoringInfo;
namespace PCC = schema::PowermonitoringCurrentCondit;
namespace SF = schema::SystemsFaults;

// Banners stand 10 mm into the printable area; after the title the origin
// moves 10 mm right, so body text starts under the banners' left edge.
constexpr double kBannerMm = 10.0;
constexpr double kBodyOriginMm = 10.0;

} // namespace

DbError readCurrentReport(Database& db, const QString& serial, report::ReportData& data)
{
    {
        Rows unit = db.readFirst(u"SELECT SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, "
                                 u"SyI_Online, SyI_Used, SyI_Softver FROM Systems_Info WHERE "
                                 u"SyI_Serialnumber="_s +
                                 sqlQuote(serial));
        if (unit.next()) {
            data.unit =
                report::UnitInfo{unit.textOr(SI::SyI_Serialnumber),
                                 unit.text(SI::SyI_Locationnumber), unit.text(SI::SyI_Systemname),
                                 unit.integer(SI::SyI_Online), unit.text(SI::SyI_Softver)};
        }
        if (!unit.ok())
            return unit.error();
    }
    if (!data.unit)
        return {};
    const QString unitSerial = sqlQuote(data.unit->serial);

    {
        Rows cond = db.readFirst(u"SELECT SyCC_SyI_Serialnumber, SyCC_Alarmcondition, "
                                 u"SyCC_RelayBcondition, SyCC_Rtc FROM Systems_Current_Condition "
                                 u"WHERE SyCC_SyI_Serialnumber="_s +
                                 unitSerial);
        if (cond.next()) {
            report::UnitCondition c;
            c.alarm = cond.integer(SC::SyCC_Alarmcondition);
            c.relayB = cond.integer(SC::SyCC_RelayBcondition);
            if (const auto rtc = cond.dateTime(SC::SyCC_Rtc))
                c.rtc = toQDateTime(*rtc);
            data.condition = c;
        }
        if (!cond.ok())
            return cond.error();
    }
    if (data.unit->online != 1)
        return {};

    {
        Rows points = db.read(u"SELECT SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensortype, "
                              u"SeI_Sensorname, SeI_Used FROM Sensors_Info WHERE "
                              u"SeI_SyI_Serialnumber="_s +
                              unitSerial + u" AND SeI_Used=1 ORDER BY SeI_Sensornumber"_s);
        QList<std::pair<QString, report::PointLine>> found;
        while (points.next()) {
            report::PointLine p;
            p.number = points.intOr(SEI::SeI_Sensornumber);
            p.name = points.text(SEI::SeI_Sensorname);
            p.type = points.integer(SEI::SeI_Sensortype);
            found.append({points.textOr(SEI::SeI_SyI_Serialnumber), p});
        }
        if (!points.ok())
            return points.error();
        for (auto& [owner, p] : found) {
            Rows cc = db.readFirst(u"SELECT SeCC_SyI_Serialnumber, SeCC_Sensornumber, "
                                   u"SeCC_Currvalue, SeCC_Outofbounds, SeCC_Notpowered FROM "
                                   u"Sensors_Current_Condition WHERE SeCC_SyI_Serialnumber="_s +
                                   sqlQuote(owner) + u" AND SeCC_Sensornumber="_s +
                                   QString::number(p.number));
            if (cc.next()) {
                p.conditionNumber = cc.integer(SECC::SeCC_Sensornumber);
                p.value = cc.real(SECC::SeCC_Currvalue);
                p.outOfBounds = cc.integer(SECC::SeCC_Outofbounds);
                p.notPowered = cc.integer(SECC::SeCC_Notpowered);
            }
            if (!cc.ok())
                return cc.error();
            data.points.append(p);
        }
    }

    {
        Rows inputs = db.read(u"SELECT PmI_SyI_Serialnumber, PmI_Powernumber, PmI_Powername, "
                              u"PmI_Used FROM Powermonitoring_Info WHERE PmI_SyI_Serialnumber="_s +
                              unitSerial + u" AND PmI_Used=1 ORDER BY PmI_Powernumber"_s);
        QList<std::pair<QString, report::PowerLine>> found;
        while (inputs.next()) {
            report::PowerLine p;
            p.number = inputs.intOr(PI::PmI_Powernumber);
            p.name = inputs.text(PI::PmI_Powername);
            found.append({inputs.textOr(PI::PmI_SyI_Serialnumber), p});
        }
        if (!inputs.ok())
            return inputs.error();
        for (auto& [owner, p] : found) {
            Rows cc = db.readFirst(
                u"SELECT PmCC_SyI_Serialnumber, PmCC_Powernumber, "
                u"PmCC_Powerfault, PmCC_Powercondition FROM "
                u"Powermonitoring_Current_Condit WHERE PmCC_SyI_Serialnumber="_s +
                sqlQuote(owner) + u" AND PmCC_Powernumber="_s + QString::number(p.number));
            if (cc.next()) {
                p.conditionNumber = cc.integer(PCC::PmCC_Powernumber);
                p.fault = cc.integer(PCC::PmCC_Powerfault);
                p.condition = cc.integer(PCC::PmCC_Powercondition);
            }
            if (!cc.ok())
                return cc.error();
            data.powers.append(p);
        }
    }

    DbError error;
    data.hasFaults = hasFaults(db, data.unit->serial, &error);
    if (error.isError() || !data.hasFaults)
        return error;
    const auto readFaults = [&](int type, QList<report::Fault>& into) {
        Rows rows = db.read(u"SELECT SyF_SyI_Serialnumber, SyF_Faulttype, SyF_Faultinfo FROM "
                            u"Systems_Faults WHERE SyF_SyI_Serialnumber="_s +
                            unitSerial + u" AND SyF_Faulttype="_s + QString::number(type) +
                            u" ORDER BY SyF_Faultinfo"_s);
        while (rows.next())
            into.append({rows.text(SF::SyF_Faultinfo)});
        return rows.error();
    };
    if (error = readFaults(1, data.pointFaults); error.isError())
        return error;
    return readFaults(0, data.unitFaults);
}

bool drawCurrentReport(QPrinter& printer, const report::ReportData& data)
{
    ReportPainter painter(printer);
    if (!painter.isActive())
        return false;
    printBanner(painter, kBannerMm, kBannerMm, report::titleText());
    const report::PageLayout layout =
        report::placeLines(report::itemLines(report::bodyItems(data)), painter.currentY(),
                           painter.textHeight(), painter.pageHeight());

    int page = 0;
    const auto turnTo = [&](int target) {
        for (; page < target; ++page) {
            if (!painter.newPage())
                return false;
        }
        return true;
    };
    for (const report::PlacedLine& line : layout.lines) {
        if (!turnTo(line.page))
            return false;
        painter.setCurrentX(kBodyOriginMm);
        painter.setCurrentY(line.y);
        painter.print(line.text);
    }
    if (!turnTo(layout.endPage))
        return false;
    printBanner(painter, kBannerMm, layout.endY, report::endText());
    return painter.end();
}

} // namespace sx
