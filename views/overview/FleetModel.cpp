#include "views/overview/FleetModel.h"

#include "model/Formatting.h"
#include "model/SqlDateTime.h"
#include "ui/UnitMarks.h"

using namespace Qt::StringLiterals;

namespace sx {

QString locationSortKey(const QString& location)
{
    bool ok = false;
    const qlonglong n = location.trimmed().toLongLong(&ok);
    if (ok && n >= 0)
        return u"0"_s + u"%1"_s.arg(n, 19, 10, QChar(u'0'));
    return u"1"_s + location.toCaseFolded();
}

void FleetModel::setFleet(std::shared_ptr<const FleetSummary> fleet)
{
    beginResetModel();
    m_fleet = std::move(fleet);
    endResetModel();
}

int FleetModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() || !m_fleet ? 0 : static_cast<int>(m_fleet->units.size());
}

int FleetModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant FleetModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || !m_fleet)
        return {};
    const UnitSummary& u = m_fleet->units.at(index.row());
    if (role == kSerialRole)
        return u.serial;
    const auto zones = [&u] { return u.connected() ? static_cast<int>(u.zones.size()) : 0; };
    switch (role) {
    case Qt::DisplayRole:
        switch (index.column()) {
        case State:
            return fleetStateWord(u.state());
        case Name:
            return u.shownName();
        case Location:
            return u.location;
        case Serial:
            return u.serial;
        case Zones:
            return zones();
        case Messages:
            return u.newMessages;
        case NewestEvent: {
            if (!u.newestEvent)
                return QString();
            const CivilTime t = civilFromSecs(*u.newestEvent);
            return formatRecordTime(t.year, t.month, t.day, t.hour, t.minute);
        }
        default:
            return {};
        }
    case kSortRole:
        switch (index.column()) {
        case State:
            return QString::number(static_cast<int>(u.state())) + locationSortKey(u.location) +
                   u'\x1f' + u.shownName();
        case Location:
            return locationSortKey(u.location);
        case Zones:
            return zones();
        case Messages:
            return u.newMessages;
        case NewestEvent:
            return u.newestEvent.value_or(-1);
        default:
            return data(index, Qt::DisplayRole).toString().toCaseFolded();
        }
    case Qt::DecorationRole:
        if (index.column() == State)
            return fleetStateMark(u.state());
        return {};
    case Qt::TextAlignmentRole:
        if (index.column() == Zones || index.column() == Messages)
            return int(Qt::AlignCenter);
        return int(Qt::AlignLeft | Qt::AlignVCenter);
    case Qt::ToolTipRole: {
        QStringList lines;
        if (u.connected()) {
            for (const ZoneAlert& z : u.zones)
                lines << zoneLabel(z);
        }
        lines << u.faults;
        return lines.isEmpty() ? QVariant() : QVariant(lines.join(u'\n'));
    }
    default:
        return {};
    }
}

QVariant FleetModel::headerData(int section, Qt::Orientation o, int role) const
{
    if (o != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    static const char16_t* const titles[ColumnCount] = {
        u"Κατάσταση",         u"Όνομα",        u"Τοποθεσία",       u"Σειριακός αριθμός",
        u"Ζώνες εκτός ορίων", u"Νέα μηνύματα", u"Τελευταίο συμβάν"};
    return section >= 0 && section < ColumnCount ? QString::fromUtf16(titles[section]) : QVariant();
}

} // namespace sx
