#include "model/messages/MessagesBuilder.h"

#include "model/Dialect.h"
#include "model/FaultCodes.h"
#include "model/Formatting.h"
#include "model/SqlDateTime.h"

#include <QDateTime>
#include <QHash>
#include <QList>

#include <algorithm>
#include <limits>
#include <optional>
#include <tuple>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

const QString kCrLf = u"\r\n"_s;

struct Unit {
    QString serial;
    QString location;
    std::optional<QString> name;
};

struct ZoneInfo {
    std::optional<QString> name;
    std::optional<qint64> type;
};

struct ZoneMessage {
    qint64 zone = 0;
    qint64 number = 0;
    qint64 eventType = 0;
    std::optional<double> value;
    std::optional<qint64> when;
    qint64 age = 0;
};

struct PowerMessage {
    qint64 number = 0;
    quint8 condition = 0;
    std::optional<qint64> when;
    qint64 age = 0;
};

bool hasText(const std::optional<QString>& s)
{
    return s && !s->isEmpty();
}

// By the text of the location column ("10" before "9"); the serial settles ties.
bool locationBefore(const Unit& a, const Unit& b)
{
    return std::tie(a.location, a.serial) < std::tie(b.location, b.serial);
}

qint32 clampToInt32(qint64 v)
{
    return static_cast<qint32>(std::clamp<qint64>(v, std::numeric_limits<qint32>::min(),
                                                  std::numeric_limits<qint32>::max()));
}

// The one-line Greek date of a stored time, or the age when none is stored.
QString timeText(std::optional<qint64> when, qint64 age)
{
    if (when) {
        const CivilTime t = civilFromSecs(*when);
        // UTC avoids a time-zone lookup per row; only the calendar fields are shown.
        return greekDateTime(
            QDateTime(QDate(t.year, t.month, t.day), QTime(t.hour, t.minute, t.second), Qt::UTC),
            true);
    }
    return elapsedText(clampToInt32(age));
}

QString valueText(std::optional<double> value, std::optional<qint64> type, const QLocale& locale)
{
    if (type && *type == ContactSensorType)
        return value && *value > 0 ? u" ΚΛΕΙΣΤΗ"_s : u" ΑΝΟΙΧΤΗ"_s;
    if (!value)
        return {};
    QString out = formatValue(*value, locale);
    if (type && *type >= 0 && *type <= 20)
        out += unitSuffix(static_cast<int>(*type));
    return out;
}

QString unitHeader(MessageKind kind, const Unit& u)
{
    QString label;
    if (kind == MessageKind::New)
        label = hasText(u.name) ? *u.name + u" ["_s + u.location + u']'
                                : u"Ανώνυμο σύστημα ["_s + u.location + u']';
    else
        label = hasText(u.name) ? u'[' + u.location + u"] "_s + *u.name
                                : u"ΣΥΣΤΗΜΑ ["_s + u.location + u']';
    return u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: "_s + label + u" ("_s + u.serial + u')' + kCrLf;
}

QString zoneHeading(MessageKind kind, qint64 zone, const std::optional<QString>& name)
{
    const QString number = QString::number(zone);
    if (kind == MessageKind::New)
        return kCrLf + u"ΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ ["_s + number + u"] "_s +
               (hasText(name) ? *name : u"Ανώνυμη ζώνη"_s) + u':' + kCrLf;
    return kCrLf + u"ΜΗΝΥΜΑΤΑ ΤΟΥ ΣΗΜΕΙΟΥ ["_s + number + u']' +
           (hasText(name) ? u' ' + *name : QString()) + u':' + kCrLf;
}

QString inputLabel(MessageKind kind, int input, const std::optional<QString>& name)
{
    if (kind == MessageKind::New)
        return u'[' + QString::number(input) + u"] "_s +
               (hasText(name) ? *name + u':' : u"Ανώνυμη ζώνη:"_s);
    return u"ΤΑΣΗ ΔΙΚΤΥΟΥ ["_s + QString::number(input) + u']' +
           (hasText(name) ? u' ' + *name : QString()) + u':';
}

QString supplyState(quint8 condition, int bit)
{
    return isBitClear(condition, bit) ? u"ΚΑΝΟΝΙΚΗ "_s : u"ΔΙΑΚΟΠΗ "_s;
}

QString recipientsCondition(MessageKind kind, const QString& column)
{
    return u" AND "_s + column + (kind == MessageKind::New ? u"<>0"_s : u"=0"_s);
}

// One build: the text so far and the per-unit caches.
class Builder {
public:
    Builder(Database& db, MessageKind kind, const QLocale& locale)
        : m_db(db), m_kind(kind), m_locale(locale)
    {
    }

    MessagesText run();

private:
    DbError readUnits(QList<Unit>& units);
    DbError appendUnit(const Unit& u);
    DbError appendZones(const QString& quoted);
    DbError appendPower(const QString& quoted);
    DbError appendState(const Unit& u, const QString& quoted);
    DbError loadZones(const QString& quoted);
    DbError loadInputs(const QString& quoted);

    Database& m_db;
    MessageKind m_kind;
    QLocale m_locale;
    QString m_text;
    QHash<qint64, ZoneInfo> m_zones;
    QHash<qint64, std::optional<QString>> m_inputs;
    bool m_zonesLoaded = false;
    bool m_inputsLoaded = false;
};

MessagesText Builder::run()
{
    MessagesText out;
    QList<Unit> units;
    if (DbError e = readUnits(units); e.isError()) {
        out.error = e;
        return out;
    }
    for (const Unit& u : units) {
        // An empty serial would ask the message check about every unit.
        if (u.serial.isEmpty())
            continue;
        DbError e;
        if (!hasMessages(m_db, m_kind, u.serial, &e)) {
            if (e.isError()) {
                out.error = e;
                break;
            }
            continue;
        }
        ++out.unitsShown;
        e = appendUnit(u);
        if (e.isError()) {
            out.error = e;
            break;
        }
    }
    if (out.unitsShown == 0 && !out.error.isError()) {
        out.text = emptyListText(m_kind);
        out.centred = true;
        return out;
    }
    out.text = std::move(m_text);
    return out;
}

DbError Builder::readUnits(QList<Unit>& units)
{
    Rows r = m_db.read(
        u"SELECT SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, SyI_Used FROM Systems_Info WHERE SyI_Used=1"_s);
    const int cSerial = r.column(u"SyI_Serialnumber");
    const int cLocation = r.column(u"SyI_Locationnumber");
    const int cName = r.column(u"SyI_Systemname");
    while (r.next())
        units.append({r.text(cSerial).value_or(QString()), r.text(cLocation).value_or(QString()),
                      r.text(cName)});
    std::stable_sort(units.begin(), units.end(), locationBefore);
    return r.error();
}

DbError Builder::appendUnit(const Unit& u)
{
    m_zones.clear();
    m_inputs.clear();
    m_zonesLoaded = false;
    m_inputsLoaded = false;
    const QString quoted = sqlQuote(u.serial);

    m_text += unitHeader(m_kind, u);
    if (DbError e = appendZones(quoted); e.isError())
        return e;
    if (DbError e = appendPower(quoted); e.isError())
        return e;
    if (m_kind == MessageKind::New) {
        if (DbError e = appendState(u, quoted); e.isError())
            return e;
    }
    for (int i = 0; i < 6; ++i)
        m_text += kCrLf;
    return {};
}

DbError Builder::appendZones(const QString& quoted)
{
    QList<ZoneMessage> messages;
    {
        Rows r = m_db.read(
            u"SELECT SeE_SyI_Serialnumber, SeE_Sensornumber, SeE_Eventtype, SeE_Recordedvalue, SeE_Recordeddatetime, SeE_Recipients, SeE_BeforeCounter, SeE_Eventnumber FROM Sensors_Events WHERE SeE_SyI_Serialnumber="_s +
            quoted + recipientsCondition(m_kind, u"SeE_Recipients"_s) +
            u" ORDER BY SeE_Sensornumber, SeE_Eventnumber"_s);
        const int cZone = r.column(u"SeE_Sensornumber");
        const int cType = r.column(u"SeE_Eventtype");
        const int cValue = r.column(u"SeE_Recordedvalue");
        const int cWhen = r.column(u"SeE_Recordeddatetime");
        const int cAge = r.column(u"SeE_BeforeCounter");
        const int cNumber = r.column(u"SeE_Eventnumber");
        while (r.next())
            messages.append({r.integer(cZone).value_or(0), r.integer(cNumber).value_or(0),
                             r.integer(cType).value_or(0), r.real(cValue), r.dateTime(cWhen),
                             r.integer(cAge).value_or(0)});
        if (!r.ok())
            return r.error();
    }
    // Already in this order from the database, except where NULLs were read as 0.
    std::stable_sort(messages.begin(), messages.end(),
                     [](const ZoneMessage& a, const ZoneMessage& b) {
                         return a.zone != b.zone ? a.zone < b.zone : a.number < b.number;
                     });

    m_text.reserve(m_text.size() + messages.size() * 90);
    ZoneInfo info;
    for (qsizetype i = 0; i < messages.size(); ++i) {
        const ZoneMessage& m = messages.at(i);
        if (i == 0 || m.zone != messages.at(i - 1).zone) {
            if (DbError e = loadZones(quoted); e.isError())
                return e;
            info = m_zones.value(m.zone);
            m_text += zoneHeading(m_kind, m.zone, info.name);
        }
        m_text += u"* "_s;
        m_text += timeText(m.when, m.age);
        m_text += kCrLf;
        m_text += m.eventType == 0 ? u"ΕΝΤΟΣ ΟΡΙΩΝ: "_s : u"ΕΚΤΟΣ ΟΡΙΩΝ: "_s;
        m_text += valueText(m.value, info.type, m_locale);
        m_text += kCrLf;
    }
    return {};
}

DbError Builder::appendPower(const QString& quoted)
{
    QList<PowerMessage> messages;
    {
        Rows r = m_db.read(
            u"SELECT PmE_SyI_Serialnumber, PmE_Eventpowercondition, PmE_Recordeddatetime, PmE_Recipients, PmE_BeforeCounter, PmE_Eventnumber FROM Powermonitoring_Events WHERE PmE_SyI_Serialnumber="_s +
            quoted + recipientsCondition(m_kind, u"PmE_Recipients"_s) +
            u" ORDER BY PmE_Eventnumber"_s);
        const int cCondition = r.column(u"PmE_Eventpowercondition");
        const int cWhen = r.column(u"PmE_Recordeddatetime");
        const int cAge = r.column(u"PmE_BeforeCounter");
        const int cNumber = r.column(u"PmE_Eventnumber");
        while (r.next())
            messages.append({r.integer(cNumber).value_or(0),
                             static_cast<quint8>(r.integer(cCondition).value_or(0) & 0xFF),
                             r.dateTime(cWhen), r.integer(cAge).value_or(0)});
        if (!r.ok())
            return r.error();
    }
    if (messages.isEmpty())
        return {};
    std::stable_sort(
        messages.begin(), messages.end(),
        [](const PowerMessage& a, const PowerMessage& b) { return a.number < b.number; });

    m_text.reserve(m_text.size() + messages.size() * 110);
    m_text += kCrLf + u"ΜΗΝΥΜΑΤΑ ΓΙΑ ΤΟ ΔΙΚΤΥΟ ΡΕΥΜΑΤΟΣ:"_s + kCrLf;
    for (const PowerMessage& m : messages) {
        m_text += u"* "_s;
        m_text += timeText(m.when, m.age);
        m_text += kCrLf;
        const int further = (m.condition & 48) / 16;
        if (further == 0) {
            m_text += isBitClear(m.condition, 0) ? u"Η ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ ΕΠΑΝΗΛΘΕ"_s
                                                 : u"ΕΓΙΝΕ ΔΙΑΚΟΠΗ ΣΤΗΝ ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ"_s;
            m_text += kCrLf;
            continue;
        }
        if (DbError e = loadInputs(quoted); e.isError())
            return e;
        m_text += m_kind == MessageKind::New ? u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ:"_s : u"ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ:"_s;
        m_text += supplyState(m.condition, 0);
        for (int input = 1; input <= further; ++input) {
            m_text += kCrLf;
            // Further input i is the row of power number i + 1.
            m_text += inputLabel(m_kind, input, m_inputs.value(input + 1));
            m_text += supplyState(m.condition, input);
        }
        m_text += kCrLf;
    }
    return {};
}

DbError Builder::appendState(const Unit& u, const QString& quoted)
{
    DbError e;
    if (!hasFaults(m_db, u.serial, &e))
        return e;
    m_text += kCrLf + u"ΜΗΝΥΜΑΤΑ ΓΙΑ ΤΗ ΚΑΤΑΣΤΑΣΗ ΤΟΥ ΣΥΣΤΗΜΑΤΟΣ:"_s + kCrLf;
    bool service = false;
    for (const int type : {1, 0}) {
        QList<QString> infos;
        Rows r = m_db.read(
            u"SELECT SyF_SyI_Serialnumber, SyF_Faulttype, SyF_Faultinfo FROM Systems_Faults WHERE SyF_SyI_Serialnumber="_s +
            quoted + u" AND SyF_Faulttype="_s + QString::number(type) +
            u" ORDER BY SyF_Faultinfo"_s);
        const int cInfo = r.column(u"SyF_Faultinfo");
        while (r.next())
            infos.append(r.text(cInfo).value_or(QString()));
        if (!r.ok())
            return r.error();
        std::stable_sort(infos.begin(), infos.end());
        for (const QString& info : infos) {
            if (type == 1) {
                m_text += sensorFaultPrefix() + info + kCrLf;
                service = true;
            } else if (const auto fault = unitFault(info)) {
                m_text += fault->text + kCrLf;
                service = service || fault->needsService;
            }
        }
    }
    if (service)
        m_text += serviceLineText() + kCrLf;
    return {};
}

DbError Builder::loadZones(const QString& quoted)
{
    if (m_zonesLoaded)
        return {};
    Rows r = m_db.read(
        u"SELECT SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensorname, SeI_Sensortype FROM Sensors_Info WHERE SeI_SyI_Serialnumber="_s +
        quoted);
    const int cNumber = r.column(u"SeI_Sensornumber");
    const int cName = r.column(u"SeI_Sensorname");
    const int cType = r.column(u"SeI_Sensortype");
    while (r.next()) {
        const qint64 number = r.integer(cNumber).value_or(0);
        // The first row of a zone wins, as a query for the zone would read it.
        if (!m_zones.contains(number))
            m_zones.insert(number, {r.text(cName), r.integer(cType)});
    }
    m_zonesLoaded = r.ok();
    return r.error();
}

DbError Builder::loadInputs(const QString& quoted)
{
    if (m_inputsLoaded)
        return {};
    Rows r = m_db.read(
        u"SELECT PmI_SyI_Serialnumber, PmI_Powernumber, PmI_Powername FROM Powermonitoring_Info WHERE PmI_SyI_Serialnumber="_s +
        quoted);
    const int cNumber = r.column(u"PmI_Powernumber");
    const int cName = r.column(u"PmI_Powername");
    while (r.next()) {
        const qint64 number = r.integer(cNumber).value_or(0);
        if (!m_inputs.contains(number))
            m_inputs.insert(number, r.text(cName));
    }
    m_inputsLoaded = r.ok();
    return r.error();
}

} // namespace

MessagesText buildMessagesText(Database& db, MessageKind kind, const QLocale& locale)
{
    return Builder(db, kind, locale).run();
}

bool listHasMessages(Database& db, MessageKind kind, DbError* error)
{
    Rows r = db.read(
        u"SELECT SyI_Serialnumber, SyI_Locationnumber, SyI_Used FROM Systems_Info WHERE SyI_Used=1"_s);
    const int cSerial = r.column(u"SyI_Serialnumber");
    QStringList serials;
    while (r.next())
        serials.append(r.text(cSerial).value_or(QString()));
    if (error)
        *error = r.error();
    if (!r.ok())
        return false;
    for (const QString& serial : serials) {
        if (serial.isEmpty())
            continue;
        if (hasMessages(db, kind, serial, error))
            return true;
        if (error && error->isError())
            return false;
    }
    return false;
}

QString listCaption(MessageKind kind)
{
    return kind == MessageKind::New ? u"Νέα Μηνύματα"_s : u"Αρχείο Μηνυμάτων"_s;
}

QString emptyListText(MessageKind kind)
{
    return kind == MessageKind::New ? u"ΔΕΝ ΥΠΑΡΧΟΥΝ ΝΕΑ ΜΗΝΥΜΑΤΑ"_s
                                    : u"ΤΟ ΑΡΧΕΙΟ ΜΗΝΥΜΑΤΩΝ ΕΙΝΑΙ ΚΕΝΟ"_s;
}

} // namespace sx
