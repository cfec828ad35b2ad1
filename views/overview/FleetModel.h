#pragma once

#include "model/fleet/FleetSummary.h"

#include <QAbstractTableModel>

#include <memory>

namespace sx {

// The overview's table: one row per unit, formatted on demand. kSortRole
// gives the raw value each column sorts by; the state column sorts by
// severity, then location.
class FleetModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { State, Name, Location, Serial, Zones, Messages, NewestEvent, ColumnCount };
    static constexpr int kSortRole = Qt::UserRole + 1;
    static constexpr int kSerialRole = Qt::UserRole + 2;

    using QAbstractTableModel::QAbstractTableModel;

    void setFleet(std::shared_ptr<const FleetSummary> fleet);
    [[nodiscard]] const FleetSummary* fleet() const { return m_fleet.get(); }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation o, int role) const override;

private:
    std::shared_ptr<const FleetSummary> m_fleet;
};

// A location's sort key: numbers in their numeric order, before other texts.
[[nodiscard]] QString locationSortKey(const QString& location);

} // namespace sx
