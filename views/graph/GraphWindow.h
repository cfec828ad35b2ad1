#pragma once

#include "model/LoadedRecords.h"
#include "model/graph/GraphState.h"
#include "ui/PrintPreview.h"

#include <QDialog>
#include <QPixmap>
#include <QPointF>

#include <functional>
#include <memory>
#include <optional>

class QLabel;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;
class QScrollBar;

namespace sx {

struct AppContext;
namespace graph {

// A picture box: shows the pixmap it is given.
class Picture : public QWidget {
    Q_OBJECT
public:
    explicit Picture(QWidget* parent = nullptr);
    void setPixmap(QPixmap pixmap);
    [[nodiscard]] const QPixmap& pixmap() const { return m_pixmap; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPixmap m_pixmap;
};

// GraphPict: the chart painted once per view, with the cursor line or the
// rubber band drawn over it on every mouse move.
class ChartView : public Picture {
    Q_OBJECT
public:
    explicit ChartView(QWidget* parent = nullptr);

    // Pixel positions; nothing hides them.
    void setCursorLine(std::optional<double> x, double top, double bottom);
    void setRubberBand(std::optional<QRectF> rect);
    [[nodiscard]] std::optional<double> cursorLine() const { return m_cursorX; }
    [[nodiscard]] std::optional<QRectF> rubberBand() const { return m_band; }

    std::function<void(Qt::MouseButton, QPointF)> onPress;
    std::function<void(QPointF)> onMove;
    // `click`: released over the chart, and not the end of a double-click.
    std::function<void(Qt::MouseButton, QPointF, bool click)> onRelease;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    // The second press of a double-click has already been handled as a press;
    // its release is no click, so a double-click marks one point, not two.
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    [[nodiscard]] QRect cursorRect() const;
    [[nodiscard]] QRect bandRect() const;

    std::optional<double> m_cursorX;
    double m_cursorTop = 0;
    double m_cursorBottom = 0;
    std::optional<QRectF> m_band;
    bool m_doubleClicked = false;
};

} // namespace graph

// The selected records as a time/value chart, with a cursor
// readout, drag zoom and right-button zoom-out, scrolling, numbered markers
// and printing of the chart or of the marked points. Modal over the records
// window; the records it shows are shared with that window, never copied.
class GraphWindow : public QDialog {
    Q_OBJECT
public:
    struct Source {
        std::shared_ptr<const LoadedRecords> records;
        int first = 0; // newest selected
        int last = 0;  // oldest selected
        QString unitText;
        QString zoneText;
    };

    GraphWindow(AppContext& ctx, Source source, QWidget* parent = nullptr);
    ~GraphWindow() override;

    [[nodiscard]] const graph::GraphState& state() const { return m_state; }
    [[nodiscard]] const Source& source() const { return m_source; }

    // Draws the chart for the current view; sets the scroll bars to it.
    void drawGraph();
    void updateScrollBars();
    // How many times the chart was painted, so a test sees a cursor move does not.
    [[nodiscard]] int chartPaints() const { return m_chartPaints; }

    // Chart coordinates (minutes from the view start, value) of a GraphPict pixel, and back.
    [[nodiscard]] QPointF chartPoint(QPointF pixel) const;
    [[nodiscard]] QPointF pixelOf(QPointF chart) const;

    // The mouse on GraphPict, in chart coordinates.
    void mouseDown(Qt::MouseButton button, QPointF chart);
    void mouseMove(QPointF chart);
    void mouseUp(Qt::MouseButton button, QPointF chart);
    void click();

    void deleteMarkers();
    // Command1: the chart (Option1) or the marked points (Option2); the
    // preview button shows the same pages on screen first.
    void print(ReportOutput output = ReportOutput::Print);

    [[nodiscard]] QString timeReadout() const;
    [[nodiscard]] QString valueReadout() const;
    [[nodiscard]] QString unitLabel() const;
    [[nodiscard]] QString maxLimitLabel() const;
    [[nodiscard]] QString minLimitLabel() const;
    // Text1 with its CR LF line ends.
    [[nodiscard]] QString markerList() const { return m_markerText; }

    [[nodiscard]] graph::ChartView* chart() const { return m_chart; }
    [[nodiscard]] graph::Picture* unitPicture() const { return m_unitPic; }
    [[nodiscard]] QScrollBar* hScroll() const { return m_hScroll; }
    [[nodiscard]] QScrollBar* vScroll() const { return m_vScroll; }
    [[nodiscard]] QRadioButton* chartOption() const { return m_option1; }
    [[nodiscard]] QRadioButton* markedOption() const { return m_option2; }
    [[nodiscard]] QPushButton* printButton() const { return m_command1; }
    [[nodiscard]] QPushButton* previewButton() const { return m_preview; }
    [[nodiscard]] QPushButton* deleteButton() const { return m_command2; }

private:
    void build();
    void layoutChartArea();
    void showView(const graph::GraphView& view);
    void readoutAt(double x);
    void addMarker();
    void hScrolled(int value);
    void vScrolled(int value);
    void printChart(ReportOutput output);
    void printMarkedPoints(ReportOutput output);
    [[nodiscard]] const std::vector<RecordPoint>& records() const;

    AppContext& m_ctx;
    Source m_source;
    graph::GraphState m_state;
    std::optional<double> m_maxLimit;
    std::optional<double> m_minLimit;

    QWidget* m_chartArea = nullptr;
    graph::ChartView* m_chart = nullptr;
    graph::Picture* m_unitPic = nullptr;
    graph::Picture* m_timePic = nullptr;
    QScrollBar* m_hScroll = nullptr;
    QScrollBar* m_vScroll = nullptr;
    QLabel* m_timeValue = nullptr;   // Label4
    QLabel* m_valueValue = nullptr;  // Label5
    QLabel* m_unitCaption = nullptr; // Label8_0
    QLabel* m_unitValue = nullptr;   // Label8_1
    QLabel* m_maxCaption = nullptr;  // Label1_0
    QLabel* m_minCaption = nullptr;  // Label1_1
    QLabel* m_maxValue = nullptr;    // Label6_0
    QLabel* m_minValue = nullptr;    // Label6_1
    QPlainTextEdit* m_text1 = nullptr;
    QRadioButton* m_option1 = nullptr;
    QRadioButton* m_option2 = nullptr;
    QPushButton* m_command1 = nullptr;
    QPushButton* m_command2 = nullptr;
    QPushButton* m_preview = nullptr;

    QPixmap m_chartBase; // the view without markers
    QSize m_drawnSize;
    int m_chartPaints = 0;

    std::optional<RecordPoint> m_current;
    QString m_markerText;
    QPointF m_dragStart;
    std::optional<QPointF> m_dragEnd; // set once the drag moved inside the chart
    bool m_dragging = false;
    Qt::MouseButton m_lastButton = Qt::NoButton;
};

// What the records window asks the graph of: rows first..last of the records
// it shows (AppContext::loadedRecords), the texts of its lists, and how to
// select one row alone.
struct GraphRequest {
    int first = -1;
    int last = -1;
    QString unitText;
    QString zoneText;
    std::function<void(int row)> selectRowAlone;
};

// The graph button of the records window: checks the selection (a refusal is
// explained and may select the offending row alone) and opens the graph over
// `owner`, in place of one opened there before. Returns the window, or nothing
// when refused.
GraphWindow* openGraph(AppContext& ctx, QWidget* owner, const GraphRequest& request);

} // namespace sx
