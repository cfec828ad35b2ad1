#include "reports/records/RecordsModel.h"

#include "model/Formatting.h"
#include "model/SqlDateTime.h"
#include "reports/Colors.h"

#include <QBrush>

using namespace Qt::StringLiterals;

namespace sx {

RecordsModel::RecordsModel(QObject* parent) : QAbstractTableModel(parent) {}

void RecordsModel::setRecords(std::shared_ptr<const LoadedRecords> records,
                              const records::LimitRule& rule)
{
    beginResetModel();
    m_records = std::move(records);
    m_rule = rule;
    endResetModel();
}

void RecordsModel::clear()
{
    beginResetModel();
    m_records.reset();
    m_rule = {};
    endResetModel();
}

int RecordsModel::rowCount(const QModelIndex& parent) const
{
    if (parent.isValid() || !m_records)
        return 0;
    return static_cast<int>(m_records->records.size());
}

int RecordsModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : 2;
}

const RecordPoint* RecordsModel::at(int row) const
{
    if (!m_records || row < 0 || static_cast<size_t>(row) >= m_records->records.size())
        return nullptr;
    return &m_records->records[static_cast<size_t>(row)];
}

QString RecordsModel::dateText(int row) const
{
    const RecordPoint* r = at(row);
    if (!r)
        return {};
    const CivilTime t = civilFromSecs(r->secs);
    return formatRecordTime(t.year, t.month, t.day, t.hour, t.minute);
}

QString RecordsModel::readingText(int row) const
{
    const RecordPoint* r = at(row);
    return r ? formatReading(r->value, r->sensorType, m_locale) : QString();
}

records::Marking RecordsModel::marking(int row) const
{
    const RecordPoint* r = at(row);
    return r ? m_rule(*r) : records::Marking::None;
}

QVariant RecordsModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.column() > ReadingColumn)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return index.column() == DateColumn ? dateText(index.row()) : readingText(index.row());
    case Qt::ForegroundRole:
        switch (marking(index.row())) {
        case records::Marking::AboveMax:
            return QBrush(colors::kDarkRed);
        case records::Marking::BelowMin:
            return QBrush(colors::kBlue);
        case records::Marking::None:
            break;
        }
        return {};
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::Alignment(Qt::AlignCenter));
    default:
        return {};
    }
}

QString RecordsModel::headerText(int column)
{
    // "^" + 34 blanks + "ΗΜΕΡΟΜΗΝΙΑ" | "^" + 42 blanks + "ΕΝΔΕΙΞΗ"
    return column == DateColumn ? QString(34, u' ') + u"ΗΜΕΡΟΜΗΝΙΑ"_s
                                : QString(42, u' ') + u"ΕΝΔΕΙΞΗ"_s;
}

QVariant RecordsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical) {
        // No fixed column: the row selectors carry no numbers.
        return role == Qt::DisplayRole ? QVariant(QString()) : QVariant();
    }
    if (section < 0 || section > ReadingColumn)
        return {};
    if (role == Qt::DisplayRole)
        return headerText(section);
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::Alignment(Qt::AlignCenter));
    return {};
}

Qt::ItemFlags RecordsModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

} // namespace sx
