#include "reports/events/EventsModel.h"

#include "model/Formatting.h"
#include "model/SqlDateTime.h"
#include "reports/Colors.h"

#include <QBrush>

#include <memory>

using namespace Qt::StringLiterals;

namespace sx {

EventsModel::EventsModel(QObject* parent) : QAbstractTableModel(parent) {}

void EventsModel::setEvents(events::EventsLoad load)
{
    beginResetModel();
    m_load = std::move(load);
    endResetModel();
}

void EventsModel::clear()
{
    beginResetModel();
    m_load = {};
    endResetModel();
}

int EventsModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_load.rows.size());
}

int EventsModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : 2;
}

const events::EventLine* EventsModel::at(int row) const
{
    if (row < 0 || size_t(row) >= m_load.rows.size())
        return nullptr;
    return &m_load.rows[size_t(row)];
}

namespace {

QString lineDate(const events::EventLine& line, const TimeSeparators& sep)
{
    const CivilTime t = civilFromSecs(line.secs);
    return formatRecordTime(t.year, t.month, t.day, t.hour, t.minute, sep);
}

} // namespace

QString EventsModel::dateText(int row) const
{
    const events::EventLine* r = at(row);
    return r ? lineDate(*r, defaultTimeSeparators()) : QString();
}

QString EventsModel::descriptionText(int row) const
{
    const events::EventLine* r = at(row);
    return r ? events::cellText(m_load.units[r->unit], *r, m_locale) : QString();
}

events::EventColour EventsModel::colour(int row) const
{
    const events::EventLine* r = at(row);
    return r ? r->colour : events::EventColour::Normal;
}

int EventsModel::lines(int row) const
{
    const events::EventLine* r = at(row);
    return r ? r->lines : 0;
}

int EventsModel::unitIndex(int row) const
{
    const events::EventLine* r = at(row);
    return r ? m_load.units[r->unit].unitIndex : -1;
}

QString EventsModel::serial(int row) const
{
    const events::EventLine* r = at(row);
    return r ? m_load.units[r->unit].serial : QString();
}

qint64 EventsModel::sequence(int row) const
{
    const events::EventLine* r = at(row);
    return r ? r->sn : 0;
}

QVariant EventsModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.column() > DescriptionColumn)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return index.column() == DateColumn ? dateText(index.row()) : descriptionText(index.row());
    case Qt::ForegroundRole:
        switch (colour(index.row())) {
        case events::EventColour::Alarm:
            return QBrush(colors::kDarkRed);
        case events::EventColour::Bypass:
            return QBrush(colors::kBlue);
        case events::EventColour::Normal:
            break;
        }
        return {};
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(index.column() == DateColumn
                                       ? Qt::Alignment(Qt::AlignCenter)
                                       : Qt::Alignment(Qt::AlignLeft | Qt::AlignVCenter));
    default:
        return {};
    }
}

EventsReportInput EventsModel::reportInput(int first, int last, const QString& choices) const
{
    auto copy = std::make_shared<events::EventsLoad>();
    copy->units = m_load.units;
    const int count = rowCount();
    first = std::max(first, 0);
    last = std::min(last, count - 1);
    if (first <= last)
        copy->rows.assign(m_load.rows.begin() + first, m_load.rows.begin() + last + 1);
    EventsReportInput in;
    in.choices = choices;
    in.rowCount = int(copy->rows.size());
    // The separators and locale of this thread, where the grid shows the same texts.
    in.dateText = [copy, sep = defaultTimeSeparators()](int i) {
        return lineDate(copy->rows[size_t(i)], sep);
    };
    in.descriptionText = [copy, locale = m_locale](int i) {
        const events::EventLine& line = copy->rows[size_t(i)];
        return events::cellText(copy->units[line.unit], line, locale);
    };
    return in;
}

QString EventsModel::headerText(int column)
{
    return column == DateColumn ? QString(18, u' ') + u"ΗΜΕΡΟΜΗΝΙΑ"_s
                                : QString(176, u' ') + u"ΠΕΡΙΓΡΑΦΗ"_s;
}

QVariant EventsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical)
        return role == Qt::DisplayRole ? QVariant(QString()) : QVariant();
    if (section < 0 || section > DescriptionColumn)
        return {};
    if (role == Qt::DisplayRole)
        return headerText(section);
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::Alignment(Qt::AlignCenter));
    return {};
}

Qt::ItemFlags EventsModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

} // namespace sx
