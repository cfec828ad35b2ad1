#include "views/current/CurrentCondition.h"

#include "model/Dialect.h"
#include "model/Formatting.h"
#include "model/QueryHelpers.h"
#include "model/SqlDateTime.h"
#include "reports/Colors.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

const QString kAnonymousZone = u"Ανώνυμη ζώνη"_s;

bool above0(std::optional<qint64> v)
{
    return v.has_value() && *v > 0;
}

QString numberText(std::optional<qint64> n)
{
    return n ? QString::number(*n) : QString();
}

// A number spliced into SQL; a missing one matches no row.
QString sqlNumber(std::optional<qint64> n)
{
    return n ? QString::number(*n) : u"NULL"_s;
}

// The points grid rows of unit `serial`, in point-number order.
DbError readPoints(Database& db, const QString& serial, const QLocale& locale, QList<PointRow>& out)
{
    Rows list = db.read(
        u"SELECT SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensortype, SeI_Maxlimit, SeI_Minlimit, SeI_Maxlimitused, SeI_Minlimitused, SeI_Sensorname, SeI_Used FROM Sensors_Info WHERE SeI_SyI_Serialnumber="_s +
        sqlQuote(serial) + u" AND SeI_Used=1 ORDER BY SeI_Sensornumber"_s);
    if (!list.ok())
        return list.error();
    const int cSerial = list.column(u"SeI_SyI_Serialnumber");
    const int cNumber = list.column(u"SeI_Sensornumber");
    const int cType = list.column(u"SeI_Sensortype");
    const int cMax = list.column(u"SeI_Maxlimit");
    const int cMin = list.column(u"SeI_Minlimit");
    const int cMaxUsed = list.column(u"SeI_Maxlimitused");
    const int cMinUsed = list.column(u"SeI_Minlimitused");
    const int cName = list.column(u"SeI_Sensorname");
    while (list.next()) {
        const std::optional<qint64> number = list.integer(cNumber);
        Rows detail = db.readFirst(
            u"SELECT SeCC_SyI_Serialnumber, SeCC_Sensornumber, SeCC_Currvalue, SeCC_Outofbounds, SeCC_Alarmcondition, SeCC_Notpowered FROM Sensors_Current_Condition WHERE SeCC_SyI_Serialnumber="_s +
            sqlQuote(list.text(cSerial).value_or(QString())) + u" AND SeCC_Sensornumber="_s +
            sqlNumber(number));
        const bool found = detail.next();
        if (!detail.ok())
            return detail.error();
        const int type = sensorTypeCode(list.integer(cType));
        PointRow row;
        // Without a current-condition row every field of it is missing, so the
        // point reads as not powered ("ΕΚΤΟΣ Λ.") and the label keeps its own number.
        row.label =
            pointLabel(found ? detail.integer(u"SeCC_Sensornumber") : number, list.text(cName));
        const Look look = found ? pointLook(detail.integer(u"SeCC_Notpowered"),
                                            detail.integer(u"SeCC_Alarmcondition"),
                                            detail.integer(u"SeCC_Outofbounds"),
                                            detail.real(u"SeCC_Currvalue"), type, locale)
                                : pointLook({}, {}, {}, {}, type, locale);
        row.reading = look.text;
        row.color = look.color;
        row.maxLimit = limitText(list.real(cMax), list.integer(cMaxUsed), type, locale);
        row.minLimit = limitText(list.real(cMin), list.integer(cMinUsed), type, locale);
        out.append(row);
    }
    return list.error();
}

// The power grid rows of unit `serial`, in input-number order.
DbError readPowers(Database& db, const QString& serial, int version, QList<PowerRow>& out)
{
    Rows list = db.read(
        u"SELECT PmI_SyI_Serialnumber, PmI_Powernumber, PmI_Powername, PmI_Used FROM Powermonitoring_Info WHERE PmI_SyI_Serialnumber="_s +
        sqlQuote(serial) + u" AND PmI_Used=1 ORDER BY PmI_Powernumber"_s);
    if (!list.ok())
        return list.error();
    const int cSerial = list.column(u"PmI_SyI_Serialnumber");
    const int cNumber = list.column(u"PmI_Powernumber");
    const int cName = list.column(u"PmI_Powername");
    while (list.next()) {
        const std::optional<qint64> number = list.integer(cNumber);
        Rows detail = db.readFirst(
            u"SELECT PmCC_SyI_Serialnumber, PmCC_Powernumber, PmCC_Powerfault, PmCC_Powercondition FROM Powermonitoring_Current_Condit WHERE PmCC_SyI_Serialnumber="_s +
            sqlQuote(list.text(cSerial).value_or(QString())) + u" AND PmCC_Powernumber="_s +
            sqlNumber(number));
        const bool found = detail.next();
        if (!detail.ok())
            return detail.error();
        PowerRow row;
        if (found) {
            row.label = powerLabel(detail.integer(u"PmCC_Powernumber"), list.text(cName));
            const Look look = powerLook(version, detail.integer(u"PmCC_Powerfault"),
                                        detail.integer(u"PmCC_Powercondition"));
            row.state = look.text;
            row.color = look.color;
        } else {
            // Nobody reported this input: "OK" would claim a state, so the cell stays empty.
            row.label = powerLabel(number, list.text(cName));
            row.color = colors::kLightGrey;
        }
        out.append(row);
    }
    return list.error();
}

} // namespace

QString pointLabel(std::optional<qint64> number, const std::optional<QString>& name)
{
    const QString shown = name && !name->isEmpty() ? *name : kAnonymousZone;
    return u'[' + numberText(number) + u"] "_s + shown;
}

QString powerLabel(std::optional<qint64> number, const std::optional<QString>& name)
{
    if (number == 1)
        return u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ"_s;
    const QString shown = name && !name->isEmpty() ? *name : kAnonymousZone;
    return u'[' + numberText(number ? std::optional<qint64>(*number - 1) : std::nullopt) + u"] "_s +
           shown;
}

Look pointLook(std::optional<qint64> notPowered, std::optional<qint64> alarm,
               std::optional<qint64> outOfBounds, std::optional<double> value, int sensorType,
               const QLocale& locale)
{
    const bool inAlarm = above0(alarm);
    if (notPowered.value_or(1) != 0)
        return {u"ΕΚΤΟΣ Λ."_s, inAlarm ? colors::kLightBlue : colors::kLightRed};
    QString text;
    if (sensorType == ContactSensorType)
        text = formatReading(value.value_or(0), sensorType, locale);
    else if (value)
        text = formatReading(*value, sensorType, locale);
    if (inAlarm)
        return {text, colors::kLightBlue};
    return {text, above0(outOfBounds) ? colors::kLightRed : colors::kLightGrey};
}

QString limitText(std::optional<double> limit, std::optional<qint64> used, int sensorType,
                  const QLocale& locale)
{
    if (used != 1 || sensorType == ContactSensorType || !limit)
        return {};
    return formatValue(*limit, locale) + unitSuffix(sensorType);
}

Look powerLook(int versionNumber, std::optional<qint64> powerFault,
               std::optional<qint64> powerCondition)
{
    const bool cut = versionNumber >= 122 ? above0(powerCondition) : above0(powerFault);
    return {cut ? u"ΔΙΑΚΟΠΗ"_s : u"OK"_s,
            above0(powerFault) ? colors::kLightRed : colors::kLightGrey};
}

Look notificationLook(std::optional<qint64> alarmCondition)
{
    if (alarmCondition == 0)
        return {u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s, colors::kLightGrey};
    if (alarmCondition == 1)
        return {u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s, colors::kLightRed};
    if (alarmCondition == 2)
        return {u"ΑΥΤΟΜΑΤΗ"_s, colors::kLightGrey};
    return {u"ΑΥΤΟΜΑΤΗ"_s, colors::kLightRed};
}

Look relayLook(std::optional<qint64> relayCondition)
{
    if (relayCondition == 1)
        return {u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s, colors::kLightRed};
    return {u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s, colors::kLightGrey};
}

Look connectionLook(std::optional<qint64> online)
{
    if (online == 0)
        return {u"ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ ΜΗ ΔΙΑΘΕΣΙΜΗ"_s, colors::kRed};
    if (online == 1)
        return {u"ΣΕ ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ"_s, colors::kGreen};
    return {u"ΣΥΣΤΗΜΑ ΣΕ ΔΙΑΔΙΚΑΣΙΑ ΠΡΟΓΡΑΜΜΑΤΙΣΜΟΥ"_s, colors::kRed};
}

Look databaseLostLook()
{
    return {u"ΣΥΝΔΕΣΗ ΜΕ ΤΗ ΒΑΣΗ ΔΕΔΟΜΕΝΩΝ ΜΗ ΔΙΑΘΕΣΙΜΗ"_s, colors::kRed};
}

int labelRowLines(double textWidth, int columnWidth)
{
    if (columnWidth <= 0 || textWidth < columnWidth)
        return 0;
    int q = static_cast<int>(std::lround(textWidth)) / columnWidth;
    if (textWidth / columnWidth >= q)
        ++q;
    return q;
}

int labelRowHeight(double textWidth, double textHeight, int columnWidth)
{
    const int q = labelRowLines(textWidth, columnWidth);
    return q == 0 ? -1 : static_cast<int>(std::lround(q * textHeight));
}

CurrentCondition readCurrentCondition(Database& db, const QString& serial, const QLocale& locale)
{
    CurrentCondition cc;
    Rows unit = db.readFirst(
        u"SELECT SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, SyI_Online, SyI_Softver FROM Systems_Info WHERE SyI_Serialnumber="_s +
        sqlQuote(serial));
    cc.unitFound = unit.next();
    if (!unit.ok()) {
        cc.error = unit.error();
        return cc;
    }
    if (cc.unitFound) {
        const QString u = unit.text(u"SyI_Serialnumber").value_or(QString());
        const std::optional<qint64> online = unit.integer(u"SyI_Online");
        cc.connected = online == 1;
        cc.connection = connectionLook(online);
        if (cc.connected) {
            cc.error = readPoints(db, u, locale, cc.points);
            if (cc.error.isError())
                return cc;
            const int version = unitVersionNumber(unit.textOr(u"SyI_Softver"));
            cc.error = readPowers(db, u, version, cc.powers);
            if (cc.error.isError())
                return cc;

            Rows cond = db.readFirst(
                u"SELECT SyCC_SyI_Serialnumber, SyCC_Alarmcondition, SyCC_RelayBcondition, SyCC_Rtc FROM Systems_Current_Condition WHERE SyCC_SyI_Serialnumber="_s +
                sqlQuote(u));
            // A missing row reads as missing fields: notification "ΑΥΤΟΜΑΤΗ" on
            // light red, relay off, no clock.
            const bool found = cond.next();
            if (!cond.ok()) {
                cc.error = cond.error();
                return cc;
            }
            cc.notification =
                notificationLook(found ? cond.integer(u"SyCC_Alarmcondition") : std::nullopt);
            cc.relay = relayLook(found ? cond.integer(u"SyCC_RelayBcondition") : std::nullopt);
            const std::optional<qint64> rtc = found ? cond.dateTime(u"SyCC_Rtc") : std::nullopt;
            if (rtc)
                cc.clock = greekDateTime(toQDateTime(*rtc), false);

            DbError e;
            const bool faults = hasFaults(db, u, &e);
            if (e.isError()) {
                cc.error = e;
                return cc;
            }
            cc.status =
                faults
                    ? Look{u"ΥΠΑΡΧΟΥΝ ΠΡΟΒΛΗΜΑΤΑ ΣΤΟ ΣΥΣΤΗΜΑ\r\nΔΕΙΤΕ ΝΕΑ ΜΗΝΥΜΑΤΑ ΓΙΑ ΛΕΠΤΟΜΕΡΕΙΕΣ"_s,
                           colors::kLightRed}
                    : Look{u"ΚΑΤΑΣΤΑΣΗ ΣΥΣΤΗΜΑΤΟΣ ΟΚ"_s, colors::kLightGrey};
        } else {
            cc.status = {QString(), colors::kLightGrey};
        }
    }
    DbError e;
    cc.newMessages = hasMessages(db, MessageKind::New, {}, &e);
    cc.error = e;
    return cc;
}

} // namespace sx
