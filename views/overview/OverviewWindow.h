#pragma once

#include "model/fleet/FleetSummary.h"

#include <QWidget>

#include <memory>

class QLabel;
class QLineEdit;
class QSortFilterProxyModel;
class QTableView;

namespace sx {

class FleetModel;

// "Επισκόπηση συστημάτων": every unit with its state, worst first, a filter,
// the counts per state; Enter or a double-click hands the unit to the main view.
class OverviewWindow : public QWidget {
    Q_OBJECT
public:
    explicit OverviewWindow(QWidget* parent = nullptr);

    void setFleet(std::shared_ptr<const FleetSummary> fleet);
    // Shown above the table while the database cannot be read.
    void setDatabaseLost(bool lost);

    [[nodiscard]] QTableView* table() const { return m_table; }
    [[nodiscard]] QLineEdit* filter() const { return m_filter; }
    [[nodiscard]] QLabel* counts() const { return m_counts; }
    // The serial of a row of the table as shown.
    [[nodiscard]] QString serialAt(int row) const;

signals:
    void unitChosen(const QString& serial);

private:
    void updateCounts();

    FleetModel* m_model = nullptr;
    QSortFilterProxyModel* m_proxy = nullptr;
    QTableView* m_table = nullptr;
    QLineEdit* m_filter = nullptr;
    QLabel* m_counts = nullptr;
    bool m_lost = false;
    bool m_sized = false;
};

} // namespace sx
