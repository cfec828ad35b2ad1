#include "model/fleet/FleetChanges.h"

#include "model/Formatting.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

const ZoneAlert* findZone(const UnitSummary& unit, int number)
{
    for (const ZoneAlert& z : unit.zones) {
        if (z.number == number)
            return &z;
    }
    return nullptr;
}

// "8.5 °C (μέγ. όριο 6.0 °C)": the value and the limit it crossed.
QString zoneReading(const ZoneAlert& z)
{
    if (!z.value)
        return {};
    QString text = formatReading(*z.value, z.sensorType);
    const QString unit = unitSuffix(z.sensorType);
    if (z.maxLimit && *z.value > *z.maxLimit)
        text += u" (μέγ. όριο "_s + formatValue(*z.maxLimit) + unit + u')';
    else if (z.minLimit && *z.value < *z.minLimit)
        text += u" (ελάχ. όριο "_s + formatValue(*z.minLimit) + unit + u')';
    return u": "_s + text;
}

// As the power grid labels its inputs.
QString powerInputLabel(const PowerAlert& p)
{
    if (p.number == 1)
        return u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ"_s;
    return u'[' + QString::number(p.number - 1) + u"] "_s +
           (p.name.isEmpty() ? u"Ανώνυμη ζώνη"_s : p.name);
}

} // namespace

std::optional<FleetNotice> fleetNotice(const UnitSummary& known, const UnitSummary& now)
{
    QStringList lines;
    bool critical = false;
    if (known.connected() && now.online == 0)
        lines << u"Χάθηκε η σύνδεση με το σύστημα"_s;
    // A unit that is not connected reports stale zones; they wait until it is back.
    if (now.connected()) {
        for (const ZoneAlert& z : now.zones) {
            const ZoneAlert* before = known.connected() ? findZone(known, z.number) : nullptr;
            if (z.alarm && !(before && before->alarm)) {
                lines << u"Συναγερμός στη ζώνη "_s + zoneLabel(z) + zoneReading(z);
                critical = true;
            } else if (!z.alarm && z.outOfBounds &&
                       !(before && (before->outOfBounds || before->alarm))) {
                lines << u"Εκτός ορίων η ζώνη "_s + zoneLabel(z) + zoneReading(z);
                critical = true;
            }
        }
        for (const PowerAlert& p : now.powers) {
            const bool was =
                known.connected() &&
                std::any_of(known.powers.cbegin(), known.powers.cend(),
                            [&p](const PowerAlert& k) { return k.number == p.number; });
            if (!was) {
                lines << u"Διακοπή ρεύματος: "_s + powerInputLabel(p);
                critical = true;
            }
        }
    }
    QStringList oldFaults = known.faults;
    for (const QString& f : now.faults) {
        if (!oldFaults.removeOne(f))
            lines << u"Βλάβη: "_s + f;
    }
    if (now.newMessages > known.newMessages)
        lines << u"Νέα μηνύματα: "_s + QString::number(now.newMessages - known.newMessages);
    if (lines.isEmpty())
        return std::nullopt;
    return FleetNotice{now.serial, now.title(), lines.join(u'\n'), critical};
}

FleetNotice fleetDigest(QList<FleetNotice> notices, int lines)
{
    std::stable_sort(
        notices.begin(), notices.end(),
        [](const FleetNotice& a, const FleetNotice& b) { return a.critical && !b.critical; });
    FleetNotice digest;
    digest.title =
        u"SENTORAX Monitor: αλλαγές σε "_s + QString::number(notices.size()) + u" συστήματα"_s;
    digest.overview = true;
    QStringList body;
    for (const FleetNotice& n : std::as_const(notices)) {
        digest.critical = digest.critical || n.critical;
        if (body.size() < lines)
            body << n.title + u": "_s + n.body.section(u'\n', 0, 0);
    }
    if (notices.size() > lines)
        body << u"και "_s + QString::number(notices.size() - lines) + u" ακόμη"_s;
    digest.body = body.join(u'\n');
    return digest;
}

FleetNotice connectionLostNotice()
{
    return {{}, u"SENTORAX Monitor"_s, u"Χάθηκε η σύνδεση με τη βάση δεδομένων"_s, true};
}

FleetNotice connectionBackNotice()
{
    return {{}, u"SENTORAX Monitor"_s, u"Η σύνδεση με τη βάση δεδομένων αποκαταστάθηκε"_s, false};
}

} // namespace sx
