#pragma once

#include "model/records/RecordsQuery.h"
#include "reports/xlsx/XlsxExport.h"
#include "ui/PrintPreview.h"
#include "ui/ViewWindow.h"
#include "views/common/ArchiveGrid.h"

#include <functional>
#include <optional>

class QAction;
class QComboBox;
class QGroupBox;
class QLabel;
class QPushButton;

namespace sx {

class RecordsModel;

// "Αρχείο καταγραφών": the values one zone of a unit logged in a
// month or a year, newest first, coloured by the zone's limits; the limits;
// the graph button; save to a workbook and print from the management menu.
class RecordsWindow : public ViewWindow {
    Q_OBJECT
public:
    explicit RecordsWindow(AppContext& ctx, QWidget* parent = nullptr);
    ~RecordsWindow() override;

    // A unit chosen in the unit list: rebuilds the zone list for the unit.
    void unitSelected(int index) override;
    // Loads the chosen zone and period again when only the records failed.
    void refillAfterOutage() override;
    // Loads the records of the selected zone, month and year.
    void refreshRecords();

    // Grid select-all: every data row, when records are shown.
    void selectAllRecords();
    // The selected data rows (0 = the first data row) in grid order; {-1, -1} for none.
    [[nodiscard]] std::pair<int, int> selectedRows() const;
    // Selects one data row alone and scrolls it to the top (the graph's refusals).
    void selectRowAlone(int row);
    // Selects rows first..last with the current row at `current`.
    void selectRows(int first, int last, int current);

    // The export and the report of the selected rows.
    void saveRecords();
    void printRecords(ReportOutput output = ReportOutput::Print);
    void printMonthSummary(ReportOutput output);

    [[nodiscard]] QString unitText() const;
    [[nodiscard]] QString zoneText() const;
    [[nodiscard]] QString monthText() const;
    [[nodiscard]] QString yearText() const;
    [[nodiscard]] QString maxLimitCaption() const;
    [[nodiscard]] QString minLimitCaption() const;
    // The ZoneEntry of the selected zone, nothing when the list is empty.
    [[nodiscard]] std::optional<records::ZoneEntry> selectedZone() const;

    [[nodiscard]] ArchiveGrid* grid() const { return m_grid; }
    [[nodiscard]] RecordsModel* model() const { return m_model; }
    [[nodiscard]] QComboBox* yearSelect() const { return m_yearSelect; }
    [[nodiscard]] QComboBox* monthSelect() const { return m_monthSelect; }
    [[nodiscard]] QComboBox* sensorSelect() const { return m_sensorSelect; }
    [[nodiscard]] QPushButton* graphButton() const { return m_graphBut; }
    [[nodiscard]] QAction* saveAction() const { return m_save; }
    [[nodiscard]] QAction* printAction() const { return m_print; }
    [[nodiscard]] QAction* summaryAction() const { return m_summary; }
    // True only while the window's own start-up sets the month and year.
    [[nodiscard]] bool loading() const { return m_loading; }
    // Queries run so far (zone lists and record loads), for tests.
    [[nodiscard]] int queriesRun() const { return m_queries; }

    // TEMPLATEv2.xlsx beside the program unless set otherwise.
    [[nodiscard]] QString templatePath() const { return m_templatePath; }
    void setTemplatePath(const QString& path) { m_templatePath = path; }
    // The rows of a worksheet; smaller in tests, so the limit is reached quickly.
    void setSheetRows(int rows) { m_sheetRows = rows; }

signals:
    // GraphBut pressed: the graph view takes the selected rows from here.
    void graphRequested();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void buildMenus();
    void buildRecordsFrame(QWidget* central);
    void zoneSelected();
    void periodSelected();
    void showLimits();
    void setRecordCommandsEnabled(bool on);
    void showNoRecords();

    QAction* m_save = nullptr;
    QAction* m_print = nullptr;
    QAction* m_summary = nullptr;
    QAction* m_previewRecords = nullptr;
    QAction* m_previewSummary = nullptr;
    QGroupBox* m_recordsFrame = nullptr;
    QComboBox* m_yearSelect = nullptr;
    QComboBox* m_monthSelect = nullptr;
    QComboBox* m_sensorSelect = nullptr;
    QLabel* m_minBound = nullptr;
    QLabel* m_maxBound = nullptr;
    QPushButton* m_graphBut = nullptr;
    ArchiveGrid* m_grid = nullptr;
    RecordsModel* m_model = nullptr;
    QSize m_baseFrame;
    QSize m_baseGrid;
    QList<records::ZoneEntry> m_zones;
    QString m_templatePath;
    int m_sheetRows = xlsx::kSheetRows;
    bool m_loading = false;
    int m_queries = 0;
};

} // namespace sx
