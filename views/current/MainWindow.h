#pragma once

#include "ui/ViewWindow.h"
#include "views/current/CommandHost.h"

#include <QTimer>

class QLabel;
class QPushButton;
class QTableWidget;

namespace sx {

struct CurrentCondition;

// The current condition of one unit: the points and power grids, the
// connection, fault and clock labels, the three command buttons, refreshed on
// selection and then 10 s after the end of each refresh (also while hidden).
class MainWindow : public ViewWindow, public CommandHost {
    Q_OBJECT
public:
    static constexpr int kRefreshIntervalMs = 10000;

    explicit MainWindow(AppContext& ctx);

    // The selection event: empties the labels and grids, then refreshes at once.
    void unitSelected(int index) override;
    // One refresh, read on the connection's thread and shown when it comes
    // back; while the unit list is empty it reads the list instead.
    void refresh();
    // true while a refresh is on its way.
    [[nodiscard]] bool refreshing() const { return m_refreshing; }
    // Refreshes that read the database and came back, failed or not.
    [[nodiscard]] int refreshesRead() const { return m_reads; }

    [[nodiscard]] QTimer* refreshTimer() { return &m_timer; }
    [[nodiscard]] QTableWidget* pointsGrid() const { return m_points; }
    [[nodiscard]] QTableWidget* powerGrid() const { return m_powers; }
    // true while the last refresh could not read the database.
    [[nodiscard]] bool databaseLost() const { return m_databaseLost; }

    QWidget* commandWindow() override { return this; }
    [[nodiscard]] QString commandSerial() const override { return selectedSerial(); }
    [[nodiscard]] QString relayCaption() const override;
    void refreshNow() override { refresh(); }
    // Rounds go on without a unit: the list is read again until units come.
    void unitListUnread() override;

private:
    void buildMenus();
    void buildInfoFrame(QWidget* central);
    void buildReadingsFrame(QWidget* central);
    void finishRefresh(const QString& serial, const CurrentCondition& cc, quint64 failuresBefore);
    void apply(const CurrentCondition& cc);
    void showDatabaseLost();
    void trimRows(QTableWidget* grid, int rows);
    void setRow(QTableWidget* grid, int row, const QStringList& texts, const QColor& color);
    void setLabel(QLabel* label, const QString& text);
    void fitColumns(QTableWidget* grid);

    QTimer m_timer;
    QLabel* m_connection = nullptr;
    QLabel* m_status = nullptr;
    QLabel* m_clock = nullptr;
    QPushButton* m_notification = nullptr;
    QPushButton* m_relay = nullptr;
    QPushButton* m_bypass = nullptr;
    QTableWidget* m_points = nullptr;
    QTableWidget* m_powers = nullptr;
    bool m_refreshing = false;
    int m_reads = 0;
    bool m_databaseLost = false;
};

} // namespace sx
