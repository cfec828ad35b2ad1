#include "model/report/CurrentReportLayout.h"

#include "model/AppTitle.h"
#include "model/FaultCodes.h"
#include "model/Formatting.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace sx::report {

namespace {

const QString kCrLf = u"\r\n"_s;
const QString kAnonymousZone = u"Ανώνυμη ζώνη"_s;
const QString kLabelGap = u"    "_s;

bool above0(std::optional<qint64> v)
{
    return v.value_or(0) > 0;
}

QString nameOr(const std::optional<QString>& name, const QString& fallback)
{
    return name && !name->isEmpty() ? *name : fallback;
}

} // namespace

QString titleText()
{
    return appTitle() + u" / ΑΝΑΦΟΡΑ ΤΡΕΧΟΥΣΑΣ ΚΑΤΑΣΤΑΣΗΣ ΣΥΣΤΗΜΑΤΟΣ"_s;
}

QString endText()
{
    return u"ΤΕΛΟΣ ΑΝΑΦΟΡΑΣ"_s;
}

QString pointText(const PointLine& p)
{
    // Without a current-condition row the point is named by its own number.
    const qint64 number = p.conditionNumber.value_or(p.number);
    const QString label =
        u'[' + QString::number(number) + u"] "_s + nameOr(p.name, kAnonymousZone) + kLabelGap;
    // A missing flag counts as not powered, as in the main window.
    if (p.notPowered.value_or(1) != 0)
        return label + u"ΕΚΤΟΣ ΛΕΙΤΟΥΡΓΕΙΑΣ"_s;
    QString reading;
    const int type = sensorTypeCode(p.type);
    if (type == ContactSensorType)
        reading = p.value.value_or(0) > 0 ? u"ΚΛΕΙΣΤΗ"_s : u"ΑΝΟΙΧΤΗ"_s;
    else if (p.value)
        reading = formatValue(*p.value) + unitSuffix(type);
    if (above0(p.outOfBounds))
        reading += u" !"_s;
    return label + reading;
}

QString powerText(const PowerLine& p, int versionNumber)
{
    const qint64 number = p.conditionNumber.value_or(p.number);
    const QString label = number == 1 ? u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ    "_s
                                      : u'[' + QString::number(number - 1) + u"] "_s +
                                            nameOr(p.name, kAnonymousZone) + kLabelGap;
    if (versionNumber >= 122) {
        QString state = above0(p.condition) ? u"ΔΙΑΚΟΠΗ"_s : u"ΚΑΝΟΝΙΚΗ"_s;
        if (above0(p.fault))
            state += u" !"_s;
        return label + state;
    }
    return label + (above0(p.fault) ? u"ΔΙΑΚΟΠΗ"_s : u"ΚΑΝΟΝΙΚΗ"_s);
}

QString notificationText(std::optional<qint64> alarm)
{
    switch (alarm.value_or(-1)) {
    case 0:
        return u"ΤΗΛΕΦΩΝΙΚΗ ΕΙΔΟΠΟΙΗΣΗ ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s;
    case 1:
        return u"ΤΗΛΕΦΩΝΙΚΗ ΕΙΔΟΠΟΙΗΣΗ ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s;
    case 2:
        return u"ΤΗΛΕΦΩΝΙΚΗ ΕΙΔΟΠΟΙΗΣΗ ΑΥΤΟΜΑΤΗ (ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ)"_s;
    default:
        return u"ΤΗΛΕΦΩΝΙΚΗ ΕΙΔΟΠΟΙΗΣΗ ΑΥΤΟΜΑΤΗ (ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ)"_s;
    }
}

QString relayText(std::optional<qint64> relayB)
{
    return relayB == 1 ? u"ΔΙΑΚΟΠΤΗΣ ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s : u"ΔΙΑΚΟΠΤΗΣ ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s;
}

QString headingText(const UnitInfo& unit, const std::optional<UnitCondition>& cond,
                    const QDateTime& printedAt)
{
    const QString location = unit.location.value_or(QString());
    const QString namePart = unit.name && !unit.name->isEmpty()
                                 ? *unit.name + u" ["_s + location + u']'
                                 : u"Ανώνυμο σύστημα ["_s + location + u']';
    const QDateTime when = cond && cond->rtc ? *cond->rtc : printedAt;
    return u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: "_s + namePart + u" ("_s + unit.serial + u')' + kCrLf +
           greekDateTime(when, true);
}

QString faultText(const QList<Fault>& pointFaults, const QList<Fault>& unitFaults)
{
    QString text;
    bool service = false;
    for (const Fault& f : pointFaults) {
        service = true;
        text += sensorFaultPrefix() + f.info.value_or(QString()) + kCrLf;
    }
    for (const Fault& f : unitFaults) {
        if (!f.info)
            continue;
        if (const auto known = unitFault(*f.info)) {
            text += known->text + kCrLf;
            service = service || known->needsService;
        }
    }
    if (service)
        text += serviceLineText() + kCrLf;
    return text;
}

QStringList bodyItems(const ReportData& data)
{
    QStringList items;
    if (!data.unit)
        return items;
    const UnitInfo& unit = *data.unit;
    items << headingText(unit, data.condition, data.printedAt) << kCrLf;

    if (unit.online != 1) {
        items << (unit.online == 2 ? u"ΣΥΣΤΗΜΑ ΣΕ ΔΙΑΔΙΚΑΣΙΑ ΠΡΟΓΡΑΜΜΑΤΙΣΜΟΥ"_s
                                   : u"ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ ΜΗ ΘΙΑΘΕΣΙΜΗ"_s);
    } else {
        for (const PointLine& p : data.points)
            items << pointText(p);
        items << kCrLf;
        const int version = unitVersionNumber(unit.softver.value_or(QString()));
        for (const PowerLine& p : data.powers)
            items << powerText(p, version);
        items << kCrLf;
        const std::optional<qint64> alarm =
            data.condition ? data.condition->alarm : std::optional<qint64>();
        const std::optional<qint64> relay =
            data.condition ? data.condition->relayB : std::optional<qint64>();
        items << notificationText(alarm) << kCrLf << relayText(relay) << kCrLf;
        items << u"ΚΑΤΑΣΤΑΣΗ ΣΥΣΤΗΜΑΤΟΣ:"_s;
        items << (data.hasFaults ? faultText(data.pointFaults, data.unitFaults) : u"OK"_s);
    }
    for (int i = 0; i < 4; ++i)
        items << kCrLf;
    return items;
}

QStringList itemLines(const QStringList& items)
{
    QStringList lines;
    for (const QString& item : items)
        lines << item.split(kCrLf);
    return lines;
}

PageLayout placeLines(const QStringList& lines, double startY, double lineHeight, double pageHeight)
{
    PageLayout layout;
    int page = 0;
    double y = startY;
    for (const QString& line : lines) {
        // A page holds at least one line, however small it is.
        if (y > 0.0 && y + lineHeight > pageHeight) {
            ++page;
            y = 0.0;
        }
        layout.lines.append({page, y, line});
        y += lineHeight;
    }
    y = std::round(y);
    if (y > 0.0 && y + lineHeight + 1.0 > pageHeight) {
        ++page;
        y = 0.0;
    }
    layout.endPage = page;
    layout.endY = y;
    layout.pages = page + 1;
    return layout;
}

} // namespace sx::report
