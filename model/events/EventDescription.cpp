#include "model/events/EventDescription.h"

#include "model/FaultCodes.h"
#include "model/Formatting.h"
#include "model/events/EventQuery.h"

#include <QList>

#include <limits>
#include <optional>

using namespace Qt::StringLiterals;

namespace sx::events {

namespace {

const QString kAnonymousZone = u"Ανώνυμη ζώνη"_s;

// Optional sign and decimal digits within int range; nothing otherwise.
std::optional<int> wholeNumber(QStringView field)
{
    qsizetype i = 0;
    bool negative = false;
    if (i < field.size() && (field[i] == u'-' || field[i] == u'+')) {
        negative = field[i] == u'-';
        ++i;
    }
    if (i == field.size())
        return std::nullopt;
    qint64 magnitude = 0;
    for (; i < field.size(); ++i) {
        const char16_t c = field[i].unicode();
        if (c < u'0' || c > u'9')
            return std::nullopt;
        magnitude = magnitude * 10 + (c - u'0');
        if (magnitude > qint64(std::numeric_limits<int>::max()) + 1)
            return std::nullopt;
    }
    const qint64 value = negative ? -magnitude : magnitude;
    if (value > std::numeric_limits<int>::max())
        return std::nullopt;
    return static_cast<int>(value);
}

struct Field {
    QString text;              // trimmed, as stored
    std::optional<int> number; // when it reads as a whole number

    [[nodiscard]] QString shown() const { return number ? QString::number(*number) : text; }
};

QList<Field> splitFields(const QString& info1, bool dropEmpty)
{
    QList<Field> out;
    for (QStringView part : QStringView(info1).split(u';')) {
        const QStringView trimmed = part.trimmed();
        if (dropEmpty && trimmed.isEmpty())
            continue;
        out.append(Field{trimmed.toString(), wholeNumber(trimmed)});
    }
    return out;
}

// " (Ψυγείο)" or " (Ανώνυμη ζώνη)".
QString zoneLabel(const NameCache& names, std::optional<int> zone)
{
    const QString name = zone ? names.zone(*zone) : QString();
    return u" ("_s + (name.isEmpty() ? kAnonymousZone : name) + u')';
}

EventText describePoint(const EventRow& row, const NameCache& names, const QLocale& locale)
{
    const bool alarm = row.condition == 1;
    QString text = u"ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ "_s + QString::number(row.source) +
                   zoneLabel(names, row.source) +
                   (alarm ? u" ΕΚΤΟΣ ΟΡΙΩΝ: "_s : u" ΕΝΤΟΣ ΟΡΙΩΝ: "_s);
    if (row.sensorType == ContactSensorType)
        text += row.value > 0 ? u"ΕΙΣΟΔΟΣ ΚΛΕΙΣΤΗ"_s : u"ΕΙΣΟΔΟΣ ΑΝΟΙΧΤΗ"_s;
    else
        text += formatValue(row.value, locale) + unitSuffix(row.sensorType);
    return {text, alarm ? EventColour::Alarm : EventColour::Normal};
}

EventText describeMains(const EventRow& row, const NameCache& names)
{
    const unsigned bits = static_cast<unsigned>(row.condition) & 0xFFu;
    const unsigned further = (bits & 48u) / 16u;
    const auto cut = [bits](unsigned bit) { return (bits & (1u << bit)) != 0; };
    if (further == 0) {
        if (cut(0))
            return {u"ΕΓΙΝΕ ΔΙΑΚΟΠΗ ΣΤΗΝ ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ"_s, EventColour::Alarm};
        return {u"Η ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ ΕΠΑΝΗΛΘΕ"_s, EventColour::Normal};
    }
    const auto state = [](bool isCut) { return isCut ? u"ΔΙΑΚΟΠΗ"_s : u"ΚΑΝΟΝΙΚΗ"_s; };
    bool anyCut = cut(0);
    QString text = u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ:"_s + state(cut(0));
    for (unsigned i = 1; i <= further; ++i) {
        const QString name = names.power(i + 1);
        anyCut = anyCut || cut(i);
        text += u"  /  ["_s + QString::number(i) + u"] "_s +
                (name.isEmpty() ? kAnonymousZone : name) + u':' + state(cut(i));
    }
    return {text, anyCut ? EventColour::Alarm : EventColour::Normal};
}

EventText describeSensorFaults(const EventRow& row, const NameCache& names)
{
    const QList<Field> fields = splitFields(row.info1, true);
    QString text = fields.size() > 1 ? u"ΒΛΑΒΗ ΣΤΑ ΑΙΣΘΗΤΗΡΙΑ ΤΩΝ ΣΗΜΕΙΩΝ: "_s
                                     : u"ΒΛΑΒΗ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ ΤΟΥ ΣΗΜΕΙΟΥ "_s;
    for (qsizetype i = 0; i < fields.size(); ++i) {
        if (i > 0)
            text += u", "_s;
        text += fields[i].shown() + zoneLabel(names, fields[i].number);
    }
    return {text, EventColour::Alarm};
}

EventText describeUnitFaults(const EventRow& row)
{
    const QList<Field> fields = splitFields(row.info1, true);
    QString text = fields.size() > 1 ? u"ΒΛΑΒΕΣ ΣΥΣΤΗΜΑΤΟΣ: "_s : u"ΒΛΑΒΗ ΣΥΣΤΗΜΑΤΟΣ: "_s;
    for (qsizetype i = 0; i < fields.size(); ++i) {
        if (i > 0)
            text += u", "_s;
        // The table is keyed by the plain digit, so "03" finds code 3.
        if (fields[i].number && *fields[i].number >= 0) {
            if (const auto fault = unitFault(QString::number(*fields[i].number)))
                text += fault->text;
        }
    }
    return {text, EventColour::Alarm};
}

EventText describeDelivery(const EventRow& row)
{
    const QList<Field> fields = splitFields(row.info1, false);
    const bool hasA = !fields.isEmpty() && fields[0].number.has_value();
    const int a = hasA ? *fields[0].number : 0;
    const bool cancelled = fields.size() >= 2 && fields[1].number.value_or(0) == 1;
    if (hasA && a == 5)
        return {u"ΝΕΑ ΜΗΝΥΜΑΤΑ ΠΑΡΑΔΟΘΗΚΑΝ ΣΕ ΕΙΣΕΡΧΟΜΕΝΗ ΤΗΛΕΦΩΝΙΚΗ ΚΛΗΣΗ"_s, EventColour::Alarm};
    QString text = u"ΝΕΑ ΜΗΝΥΜΑΤΑ ΠΑΡΑΔΟΘΗΚΑΝ ΣΕ ΕΞΕΡΧΟΜΕΝΗ ΤΗΛΕΦΩΝΙΚΗ ΚΛΗΣΗ"_s;
    if (hasA)
        text += u" ΣΤΟΝ "_s + QString::number(a) + u"ο ΠΑΡΑΛΗΠΤΗ"_s;
    if (cancelled)
        text += u". Ο ΠΑΡΑΛΗΠΤΗΣ ΑΚΥΡΩΣΕ ΤΗΝ ΠΑΡΑΔΟΣΗ ΤΩΝ ΜΗΝΥΜΑΤΩΝ ΣΤΟΥΣ ΥΠΟΛΟΙΠΟΥΣ ΠΑΡΑΛΗΠΤΕΣ"_s;
    return {text, EventColour::Alarm};
}

EventText describeBypass(const EventRow& row, const NameCache& names)
{
    const QList<Field> fields = splitFields(row.info1, false);
    const auto field = [&fields](qsizetype i) { return i < fields.size() ? fields[i] : Field{}; };
    const Field origin = field(0);
    const Field point = field(1);
    const Field hours = field(2);
    QString text = u"ΕΝΕΡΓΟΠΟΙΗΘΗΚΕ Η ΠΑΡΑΚΑΜΨΗ ΣΤΟ ΣΗΜΕΙΟ "_s + point.shown() +
                   zoneLabel(names, point.number) + u" ΓΙΑ "_s + hours.shown() + u" ΩΡΕΣ, ΜΕΣΩ "_s;
    const int who = origin.number.value_or(-1);
    if (who == 0)
        text += u"ΕΙΣΕΡΧΟΜΕΝΗΣ ΤΗΛΕΦΩΝΙΚΗΣ ΚΛΗΣΗΣ"_s;
    else if (who == 1)
        text += u"ΤΗΣ ΚΕΝΤΡΙΚΗΣ ΜΟΝΑΔΑΣ ΤΟΥ ΣΥΣΤΗΜΑΤΟΣ"_s;
    else
        text += u"ΤΗΣ ΕΦΑΡΜΟΓΗΣ SENTORAX MONITOR"_s;
    return {text, EventColour::Bypass};
}

} // namespace

QString NameCache::zone(qint64 number) const
{
    if (number < 1 || number > qint64(zones.size()))
        return {};
    return zones[static_cast<std::size_t>(number - 1)];
}

QString NameCache::power(qint64 number) const
{
    if (number < 1 || number > qint64(powers.size()))
        return {};
    return powers[static_cast<std::size_t>(number - 1)];
}

EventText describeEvent(const EventRow& row, const NameCache& names, const QLocale& locale)
{
    if (row.source >= kFirstZone && row.source <= kLastZone)
        return describePoint(row, names, locale);
    switch (row.source) {
    case kMainsSource:
        return describeMains(row, names);
    case kSensorFaultSource:
        return describeSensorFaults(row, names);
    case kUnitFaultSource:
        return describeUnitFaults(row);
    case kDeliverySource:
        return describeDelivery(row);
    case kBypassSource:
        return describeBypass(row, names);
    default:
        return {};
    }
}

QString unitPrefix(const QString& serial, const QString& name, const QString& location)
{
    return (name.isEmpty() ? u"Ανώνυμο σύστημα"_s : name) + u" ["_s + location + u"] ("_s + serial +
           u") -> "_s;
}

} // namespace sx::events
