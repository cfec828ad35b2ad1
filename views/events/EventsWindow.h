#pragma once

#include "model/events/EventsData.h"
#include "ui/PrintPreview.h"
#include "ui/ViewWindow.h"
#include "views/common/ArchiveGrid.h"

#include <QList>

#include <utility>

class QAction;
class QComboBox;
class QGroupBox;
class QPushButton;
class QRadioButton;

namespace sx {

class EventsModel;

// "Αρχείο συμβάντων": the events of a unit (or of all units) by
// source, alarm or restoration, new or all, month or year; newest first, with
// read/new marking of the selected rows and the printed report.
class EventsWindow : public ViewWindow {
    Q_OBJECT
public:
    explicit EventsWindow(AppContext& ctx, QWidget* parent = nullptr);
    ~EventsWindow() override;

    // A unit chosen in the unit list: rebuilds the source list for the unit (or all units).
    void unitSelected(int index) override;
    // Reads the chosen source and filters again when only the events failed.
    void refillAfterOutage() override;
    // Refills the grid from the database with the current choices.
    void refreshEvents();
    // EventsMarkCmd: marks the selected rows, then refills.
    void markSelected();
    // Printrecords.
    void printEvents(ReportOutput output = ReportOutput::Print);

    // Grid select-all: every data row, while marking is possible.
    void selectAllEvents();
    // Selects rows first..last (0 = the first data row).
    void selectRows(int first, int last);
    // The selected data rows, lower first; {-1, -1} for none.
    [[nodiscard]] std::pair<int, int> selectedRows() const;

    [[nodiscard]] const QList<events::SourceEntry>& sources() const { return m_sources; }
    // The choices line of the report, from the controls.
    [[nodiscard]] QString choicesText() const;

    [[nodiscard]] ArchiveGrid* grid() const { return m_grid; }
    [[nodiscard]] EventsModel* model() const { return m_model; }
    [[nodiscard]] QComboBox* sensorSelect() const { return m_sensorSelect; }
    [[nodiscard]] QComboBox* monthSelect() const { return m_monthSelect; }
    [[nodiscard]] QComboBox* yearSelect() const { return m_yearSelect; }
    // Option2: 0 "Συναγερμός", 1 "Αποκατάσταση", 2 "Όλα".
    [[nodiscard]] QRadioButton* kindOption(int i) const { return m_kind[i]; }
    // Option1: 0 "Νέα συμβάντα", 1 "Όλα".
    [[nodiscard]] QRadioButton* newOption(int i) const { return m_new[i]; }
    [[nodiscard]] QPushButton* markButton() const { return m_mark; }
    [[nodiscard]] QAction* printAction() const { return m_print; }
    // True only while the window's own start-up sets the month and year.
    [[nodiscard]] bool loading() const { return m_loading; }
    // Grid fills so far, for tests.
    [[nodiscard]] int fills() const { return m_fills; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void buildMenus();
    void buildSourceFrame(QWidget* central);
    void buildPeriodFrame(QWidget* central);
    void buildEventsFrame(QWidget* central);
    void buildGrid(QWidget* central);
    void sourceSelected();
    void newOptionClicked();
    void setSelectorsEnabled(bool on);
    void setEventCommandsEnabled(bool on);
    void showNoEvents();
    void applyRowHeights();
    [[nodiscard]] events::EventsRequest request() const;
    [[nodiscard]] events::LineCounter lineCounter() const;

    QAction* m_print = nullptr;
    QAction* m_preview = nullptr;
    QGroupBox* m_sourceFrame = nullptr;
    QComboBox* m_sensorSelect = nullptr;
    QRadioButton* m_kind[3] = {};
    QComboBox* m_monthSelect = nullptr;
    QComboBox* m_yearSelect = nullptr;
    QRadioButton* m_new[2] = {};
    QPushButton* m_mark = nullptr;
    ArchiveGrid* m_grid = nullptr;
    EventsModel* m_model = nullptr;
    QSize m_baseGrid;
    QSize m_baseCentral;
    QList<events::SourceEntry> m_sources;
    bool m_loading = false;
    int m_fills = 0;
};

} // namespace sx
