#include "views/graph/GraphWindow.h"

#include "model/Formatting.h"
#include "model/graph/GraphRules.h"
#include "model/graph/Readout.h"
#include "reports/Twips.h"
#include "reports/graph/GraphPainting.h"
#include "reports/graph/GraphPrint.h"
#include "ui/AppContext.h"
#include "ui/DialogService.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QStyle>
#include <QVBoxLayout>

#include <cmath>

using namespace Qt::StringLiterals;

namespace sx {

namespace graph {

namespace {

// The chart block: its children are placed by hand so that the value and
// time labels line up with the chart to the pixel.
class ChartArea : public QWidget {
public:
    using QWidget::QWidget;
    std::function<void()> onResize;

protected:
    void resizeEvent(QResizeEvent* event) override
    {
        QWidget::resizeEvent(event);
        if (onResize)
            onResize();
    }
};

// The legend's sample of a limit line.
class LineSample : public QWidget {
public:
    LineSample(const QColor& colour, Qt::PenStyle style, QWidget* parent)
        : QWidget(parent), m_colour(colour), m_style(style)
    {
        setFixedSize(36, 14);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter p(this);
        p.fillRect(rect(), Qt::white);
        QPen pen(m_colour);
        pen.setStyle(m_style);
        p.setPen(pen);
        p.drawLine(2, height() / 2, width() - 3, height() / 2);
    }

private:
    QColor m_colour;
    Qt::PenStyle m_style;
};

QLabel* captionLabel(const QString& name, const QString& text, QWidget* parent,
                     const QColor& colour = Qt::black)
{
    auto* label = new QLabel(text, parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    QPalette p = label->palette();
    p.setColor(QPalette::WindowText, colour);
    label->setPalette(p);
    return label;
}

QLabel* valueLabel(const QString& name, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignCenter);
    label->setFrameShape(QFrame::Panel);
    label->setFrameShadow(QFrame::Sunken);
    label->setAutoFillBackground(true);
    QPalette p = label->palette();
    p.setColor(QPalette::Window, Qt::white);
    p.setColor(QPalette::WindowText, Qt::black);
    label->setPalette(p);
    label->setMinimumHeight(label->fontMetrics().height() + 8);
    return label;
}

// QPlainTextEdit shows one paragraph per line; the list keeps CR LF.
QString shownText(QString text)
{
    return text.replace(u"\r\n"_s, u"\n"_s);
}

constexpr int kMargin = 8;
constexpr int kUnitGap = 10;   // the time labels reach 9 pixels left of the chart
constexpr int kScrollGap = 10; // leaves the last time label room beside the vertical bar
constexpr int kPanelWidth = 340;

} // namespace

Picture::Picture(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void Picture::setPixmap(QPixmap pixmap)
{
    m_pixmap = std::move(pixmap);
    update();
}

void Picture::paintEvent(QPaintEvent* event)
{
    QPainter p(this);
    p.fillRect(event->rect(), Qt::white);
    p.drawPixmap(event->rect(), m_pixmap, event->rect());
}

ChartView::ChartView(QWidget* parent) : Picture(parent)
{
    setMouseTracking(true);
    setCursor(Qt::CrossCursor);
}

QRect ChartView::cursorRect() const
{
    if (!m_cursorX)
        return {};
    const int x = static_cast<int>(std::floor(*m_cursorX));
    return QRect(x - 1, 0, 3, height());
}

QRect ChartView::bandRect() const
{
    return m_band ? m_band->toAlignedRect().adjusted(-1, -1, 2, 2) : QRect();
}

void ChartView::setCursorLine(std::optional<double> x, double top, double bottom)
{
    const QRect old = cursorRect();
    m_cursorX = x;
    m_cursorTop = top;
    m_cursorBottom = bottom;
    update(old | cursorRect());
}

void ChartView::setRubberBand(std::optional<QRectF> rect)
{
    const QRect old = bandRect();
    m_band = rect;
    update(old | bandRect());
}

void ChartView::paintEvent(QPaintEvent* event)
{
    // The chart is not painted here: only its picture is copied, then the overlays.
    Picture::paintEvent(event);
    QPainter p(this);
    p.setPen(Qt::black);
    if (m_cursorX)
        p.drawLine(QPointF(*m_cursorX, m_cursorTop), QPointF(*m_cursorX, m_cursorBottom));
    if (m_band) {
        p.setBrush(Qt::NoBrush);
        p.drawRect(*m_band);
    }
}

void ChartView::mousePressEvent(QMouseEvent* event)
{
    if (onPress)
        onPress(event->button(), event->position());
}

void ChartView::mouseMoveEvent(QMouseEvent* event)
{
    if (onMove)
        onMove(event->position());
}

void ChartView::mouseReleaseEvent(QMouseEvent* event)
{
    const bool click = !m_doubleClicked && rect().contains(event->position().toPoint());
    m_doubleClicked = false;
    if (onRelease)
        onRelease(event->button(), event->position(), click);
}

void ChartView::mouseDoubleClickEvent(QMouseEvent* event)
{
    m_doubleClicked = true;
    event->accept();
}

} // namespace graph

using namespace graph;

GraphWindow::GraphWindow(AppContext& ctx, Source source, QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_source(std::move(source))
{
    setObjectName(u"GraphFrm"_s);
    setWindowTitle(appTitle() + u" / Γράφημα (ΣΥΣΤΗΜΑ:"_s + m_source.unitText +
                   u" , ΖΩΝΗ ΠΑΡΑΚΟΛΟΥΘΗΣΗΣ:"_s + m_source.zoneText + u")"_s);
    setWindowFlags(Qt::Window | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                   Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint);
    setSizeGripEnabled(true);
    setFont(uiFont(9.75));

    // Loading the window empties the markers; the view starts full.
    m_state = initialState(records(), m_source.first, m_source.last);
    if (m_source.records) {
        m_maxLimit = limitValue(m_source.records->maxLimitText);
        m_minLimit = limitValue(m_source.records->minLimitText);
    }
    build();
    resize(1240, 720);
    layout()->activate();
    layoutChartArea();
    updateScrollBars();
}

GraphWindow::~GraphWindow() = default;

const std::vector<RecordPoint>& GraphWindow::records() const
{
    static const std::vector<RecordPoint> none;
    return m_source.records ? m_source.records->records : none;
}

void GraphWindow::build()
{
    auto* top = new QHBoxLayout(this);
    top->setContentsMargins(0, 0, kMargin, kMargin);
    top->setSpacing(kMargin);

    auto* area = new ChartArea(this);
    area->setAutoFillBackground(true);
    QPalette white = area->palette();
    white.setColor(QPalette::Window, Qt::white);
    area->setPalette(white);
    area->onResize = [this] { layoutChartArea(); };
    m_chartArea = area;
    m_unitPic = new Picture(area);
    m_unitPic->setObjectName(u"Unitpic"_s);
    m_chart = new ChartView(area);
    m_chart->setObjectName(u"GraphPict"_s);
    m_timePic = new Picture(area);
    m_timePic->setObjectName(u"Timepic"_s);
    m_hScroll = new QScrollBar(Qt::Horizontal, area);
    m_hScroll->setObjectName(u"HScroll1"_s);
    m_vScroll = new QScrollBar(Qt::Vertical, area);
    m_vScroll->setObjectName(u"VScroll1"_s);
    connect(m_hScroll, &QScrollBar::valueChanged, this, &GraphWindow::hScrolled);
    connect(m_vScroll, &QScrollBar::valueChanged, this, &GraphWindow::vScrolled);
    m_chart->onPress = [this](Qt::MouseButton b, QPointF px) { mouseDown(b, chartPoint(px)); };
    m_chart->onMove = [this](QPointF px) { mouseMove(chartPoint(px)); };
    m_chart->onRelease = [this](Qt::MouseButton b, QPointF px, bool isClick) {
        mouseUp(b, chartPoint(px));
        if (isClick)
            click();
    };
    top->addWidget(area, 1);

    auto* panel = new QWidget(this);
    panel->setFixedWidth(kPanelWidth);
    auto* side = new QVBoxLayout(panel);
    side->setContentsMargins(0, kMargin, 0, 0);

    auto* point = new QGroupBox(panel);
    auto* pointGrid = new QGridLayout(point);
    pointGrid->addWidget(captionLabel(u"Label2"_s, u"Χρόνος σημείου"_s, point), 0, 0);
    m_timeValue = valueLabel(u"Label4"_s, point);
    pointGrid->addWidget(m_timeValue, 0, 1);
    pointGrid->addWidget(captionLabel(u"Label3"_s, u"Ένδειξη σημείου"_s, point), 1, 0);
    m_valueValue = valueLabel(u"Label5"_s, point);
    pointGrid->addWidget(m_valueValue, 1, 1);
    pointGrid->setColumnStretch(1, 1);
    side->addWidget(point);

    auto* legend = new QGroupBox(panel);
    auto* legendGrid = new QGridLayout(legend);
    m_unitCaption = captionLabel(u"Label8_0"_s, u"Mονάδα μέτρησης"_s, legend);
    legendGrid->addWidget(m_unitCaption, 0, 0, 1, 2);
    m_unitValue = valueLabel(u"Label8_1"_s, legend);
    legendGrid->addWidget(m_unitValue, 0, 2);
    legendGrid->addWidget(new LineSample(QColor(255, 0, 0), Qt::DashLine, legend), 1, 0);
    m_maxCaption = captionLabel(u"Label1_0"_s, u"Μέγιστο Όριο"_s, legend, QColor(255, 0, 0));
    legendGrid->addWidget(m_maxCaption, 1, 1);
    m_maxValue = valueLabel(u"Label6_0"_s, legend);
    legendGrid->addWidget(m_maxValue, 1, 2);
    legendGrid->addWidget(new LineSample(QColor(0, 0, 255), Qt::DotLine, legend), 2, 0);
    m_minCaption = captionLabel(u"Label1_1"_s, u"Ελάχιστο Όριο"_s, legend, QColor(0, 0, 255));
    legendGrid->addWidget(m_minCaption, 2, 1);
    m_minValue = valueLabel(u"Label6_1"_s, legend);
    legendGrid->addWidget(m_minValue, 2, 2);
    legendGrid->setColumnStretch(2, 1);
    side->addWidget(legend);

    m_text1 = new QPlainTextEdit(panel);
    m_text1->setObjectName(u"Text1"_s);
    m_text1->setReadOnly(true);
    m_text1->setFont(uiFont(8.25));
    m_text1->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    side->addWidget(m_text1, 1);

    m_command2 = new QPushButton(u"Διαγραφή μαρκαρισμένων σημείων"_s, panel);
    m_command2->setObjectName(u"Command2"_s);
    connect(m_command2, &QPushButton::clicked, this, &GraphWindow::deleteMarkers);
    side->addWidget(m_command2);

    auto* printBox = new QGroupBox(panel);
    auto* printGrid = new QGridLayout(printBox);
    m_option1 = new QRadioButton(u"Γράφημα"_s, printBox);
    m_option1->setObjectName(u"Option1"_s);
    m_option1->setChecked(true);
    m_option2 = new QRadioButton(u"Μαρκαρισμένα σημεία"_s, printBox);
    m_option2->setObjectName(u"Option2"_s);
    printGrid->addWidget(m_option1, 0, 0);
    printGrid->addWidget(m_option2, 1, 0);
    m_command1 = new QPushButton(u"Εκτύπωση"_s, printBox);
    m_command1->setObjectName(u"Command1"_s);
    m_command1->setMinimumHeight(2 * m_command1->sizeHint().height());
    connect(m_command1, &QPushButton::clicked, this, [this] { print(); });
    printGrid->addWidget(m_command1, 0, 1, 2, 1);
    m_preview = new QPushButton(u"Προεπισκόπηση"_s, printBox);
    m_preview->setObjectName(u"PreviewButton"_s);
    connect(m_preview, &QPushButton::clicked, this, [this] { print(ReportOutput::Preview); });
    printGrid->addWidget(m_preview, 2, 0, 1, 2);
    printGrid->setColumnStretch(1, 1);
    side->addWidget(printBox);

    top->addWidget(panel);
    setMinimumSize(900, 600);
}

void GraphWindow::layoutChartArea()
{
    if (!m_chartArea)
        return;
    const QSize area = m_chartArea->size();
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, m_hScroll);
    const int unitWidth =
        static_cast<int>(std::ceil(valueLabelsWidth(m_state.fullBottom, m_state.fullTop))) + 2;
    const int timeHeight = static_cast<int>(std::ceil(timeLabelLength())) + 6;
    const int chartX = kMargin + unitWidth + kUnitGap;
    const int chartY = kMargin + kLabelHalfPx;
    const int chartW = std::max(40, area.width() - chartX - kScrollGap - bar - kMargin);
    const int chartH = std::max(40, area.height() - chartY - timeHeight - 4 - bar - kMargin);

    m_chart->setGeometry(chartX, chartY, chartW, chartH);
    // Half a label beyond the chart on each side; these sizes make the label
    // scales step exactly (time) or within a fraction of a pixel (value) with the chart's.
    m_unitPic->setGeometry(kMargin, chartY - kLabelHalfPx, unitWidth,
                           chartH + 2 * kLabelHalfPx - 1);
    m_timePic->setGeometry(chartX - kLabelHalfPx, chartY + chartH, chartW + 2 * kLabelHalfPx - 1,
                           timeHeight);
    m_vScroll->setGeometry(chartX + chartW + kScrollGap, chartY, bar, chartH);
    m_hScroll->setGeometry(chartX, chartY + chartH + timeHeight + 4, chartW, bar);
    if (m_chart->size() != m_drawnSize)
        drawGraph();
}

QPointF GraphWindow::chartPoint(QPointF pixel) const
{
    return chartScale(m_state.view, m_chart->width(), m_chart->height()).toUser(pixel);
}

QPointF GraphWindow::pixelOf(QPointF chart) const
{
    return chartScale(m_state.view, m_chart->width(), m_chart->height()).toPixel(chart);
}

void GraphWindow::drawGraph()
{
    m_timeValue->clear();
    m_valueValue->clear();
    m_unitValue->clear();
    m_chart->setCursorLine(std::nullopt, 0, 0);
    m_chart->setRubberBand(std::nullopt);

    const GraphView& view = m_state.view;
    const qreal ratio = devicePixelRatioF();
    const auto picture = [ratio](QSize size, auto&& paint) {
        QPixmap pixmap(size * ratio);
        pixmap.setDevicePixelRatio(ratio);
        QPainter p(&pixmap);
        paint(p);
        return pixmap;
    };
    const QSize size = m_chart->size();
    const ChartData chartData{&records(), m_source.first, m_source.last,
                              view,       m_maxLimit,     m_minLimit};
    m_chartBase = picture(size, [&](QPainter& p) { paintChart(p, size, chartData); });
    QPixmap shown = m_chartBase;
    if (!m_state.markers.empty()) {
        QPainter p(&shown);
        for (size_t i = 0; i < m_state.markers.size(); ++i)
            paintMarker(p, size, view, static_cast<int>(i) + 1, m_state.markers[i]);
    }
    m_chart->setPixmap(shown);
    m_drawnSize = size;
    ++m_chartPaints;

    const QSize unitSize = m_unitPic->size();
    m_unitPic->setPixmap(
        picture(unitSize, [&](QPainter& p) { paintValueLabels(p, unitSize, view); }));
    const QSize timeSize = m_timePic->size();
    m_timePic->setPixmap(
        picture(timeSize, [&](QPainter& p) { paintTimeLabels(p, timeSize, size.width(), view); }));

    if (m_source.records) {
        m_maxValue->setText(m_source.records->maxLimitText);
        m_minValue->setText(m_source.records->minLimitText);
    }
    if (!records().empty())
        m_unitValue->setText(unitSuffix(records()[static_cast<size_t>(m_source.last)].sensorType));
}

void GraphWindow::updateScrollBars()
{
    m_state.scrollUpdating = true;
    const HScrollBar h = horizontalScrollBar(m_state);
    m_hScroll->setRange(h.minimum, h.maximum);
    m_hScroll->setPageStep(h.largeChange);
    m_hScroll->setSingleStep(1);
    m_hScroll->setValue(h.value);
    m_state.scrollFactor = h.factor;
    m_state.hScrollLast = static_cast<qint16>(m_hScroll->value());
    // The top of the bar is the top of the value range. Qt's top arrow and the
    // trough above the handle always lower the value, so the bar holds the
    // distance from the top: its value is the range less the view's bottom.
    const VScrollBar v = verticalScrollBar(m_state);
    m_vScroll->setRange(0, v.minimum - v.maximum);
    m_vScroll->setPageStep(v.largeChange);
    m_vScroll->setSingleStep(1);
    m_vScroll->setValue(v.minimum - v.value);
    m_state.scrollUpdating = false;
}

void GraphWindow::showView(const GraphView& view)
{
    m_state.view = view;
    drawGraph();
    updateScrollBars();
}

void GraphWindow::hScrolled(int value)
{
    if (m_state.scrollUpdating)
        return;
    showView(scrolledHorizontally(m_state, value));
    m_state.hScrollLast = static_cast<qint16>(m_hScroll->value());
}

void GraphWindow::vScrolled(int value)
{
    if (m_state.scrollUpdating)
        return;
    showView(scrolledVertically(m_state, m_vScroll->maximum() - value));
}

void GraphWindow::readoutAt(double x)
{
    const std::optional<int> index =
        nearestRecord(records(), m_source.first, m_source.last, cursorTime(m_state.view, x));
    if (!index)
        return;
    const RecordPoint& r = records()[static_cast<size_t>(*index)];
    m_timeValue->setText(recordTimeText(r.secs));
    m_valueValue->setText(plainNumber(static_cast<double>(r.value)) + unitSuffix(r.sensorType));
    m_current = r;
}

void GraphWindow::mouseMove(QPointF chart)
{
    if (!insideView(m_state.view, chart))
        return;
    readoutAt(chart.x());
    const QPointF at = pixelOf(chart);
    if (m_dragging) {
        m_dragEnd = chart;
        m_chart->setCursorLine(std::nullopt, 0, 0);
        m_chart->setRubberBand(QRectF(pixelOf(m_dragStart), at).normalized());
        return;
    }
    m_chart->setCursorLine(at.x(), pixelOf({0, m_state.view.top}).y(),
                           pixelOf({0, m_state.view.bottom}).y());
}

void GraphWindow::mouseDown(Qt::MouseButton button, QPointF chart)
{
    // A press tells where the mouse is, as a move would.
    if (!m_dragging)
        mouseMove(chart);
    if (button != Qt::LeftButton)
        return;
    m_dragStart = chart;
    m_dragEnd.reset();
    m_dragging = true;
}

void GraphWindow::mouseUp(Qt::MouseButton button, QPointF)
{
    m_dragging = false;
    m_lastButton = button;
    m_chart->setRubberBand(std::nullopt);
    if (button == Qt::LeftButton && m_dragEnd) {
        m_ctx.graphZoomed = true;
        if (const std::optional<GraphView> view = dragZoom(m_state, m_dragStart, *m_dragEnd))
            showView(*view);
        m_dragEnd.reset();
        m_state.justZoomed = true;
    } else if (button == Qt::RightButton) {
        if (m_ctx.graphZoomed) {
            showView(zoomOut(m_state));
            m_dragEnd.reset();
            m_state.justZoomed = true;
        }
    } else {
        m_state.justZoomed = false;
        m_dragEnd.reset();
    }
}

void GraphWindow::click()
{
    if (m_lastButton != Qt::LeftButton || m_dragEnd || m_state.justZoomed)
        return;
    addMarker();
}

void GraphWindow::addMarker()
{
    if (m_state.markers.size() >= static_cast<size_t>(kMaxMarkers)) {
        if (m_ctx.dialogs)
            m_ctx.dialogs->message(this, DialogService::Icon::None,
                                   QString::fromUtf16(kMarkerLimitCaption),
                                   QString::fromUtf16(kMarkerLimitMessage));
        return;
    }
    // Nothing has been under the cursor yet: there is no point to mark.
    if (!m_current)
        return;
    const RecordPoint point = *m_current;
    const int k = static_cast<int>(m_state.markers.size()) + 1;
    if (!graph::addMarker(m_state, point))
        return;
    m_markerText.prepend(
        markerEntry(k, recordTimeText(point.secs),
                    plainNumber(static_cast<double>(point.value)) + unitSuffix(point.sensorType)));
    m_text1->setPlainText(shownText(m_markerText));

    // Drawn onto the shown picture only: the chart itself is not repainted.
    QPixmap shown = m_chart->pixmap();
    {
        QPainter p(&shown);
        paintMarker(p, m_chart->size(), m_state.view, k, point);
    }
    m_chart->setPixmap(shown);
}

void GraphWindow::deleteMarkers()
{
    m_markerText.clear();
    m_text1->clear();
    clearMarkers(m_state);
    m_chart->setPixmap(m_chartBase);
}

QString GraphWindow::timeReadout() const
{
    return m_timeValue->text();
}

QString GraphWindow::valueReadout() const
{
    return m_valueValue->text();
}

QString GraphWindow::unitLabel() const
{
    return m_unitValue->text();
}

QString GraphWindow::maxLimitLabel() const
{
    return m_maxValue->text();
}

QString GraphWindow::minLimitLabel() const
{
    return m_minValue->text();
}

void GraphWindow::print(ReportOutput output)
{
    if (m_option2->isChecked())
        printMarkedPoints(output);
    else
        printChart(output);
}

void GraphWindow::printChart(ReportOutput output)
{
    ChartPrintInput in;
    in.data = {&records(), m_source.first, m_source.last, m_state.view, m_maxLimit, m_minLimit};
    in.markers = m_state.markers;
    in.unitRect = m_unitPic->geometry();
    in.chartRect = m_chart->geometry();
    in.timeRect = m_timePic->geometry();
    const QColor black(0, 0, 0);
    const auto colourOf = [](const QLabel* l) { return l->palette().color(QPalette::WindowText); };
    in.details = {
        {windowTitle(), black},
        {QString(), black},
        {m_unitCaption->text() + u": "_s + m_unitValue->text(), colourOf(m_unitCaption)},
        {m_maxCaption->text() + u": "_s + m_maxValue->text(), colourOf(m_maxCaption)},
        {m_minCaption->text() + u": "_s + m_minValue->text(), colourOf(m_minCaption)},
    };
    runReport(m_ctx, this, QPageLayout::Landscape, output,
              [&](QPrinter& printer) { return graph::drawChartPage(printer, in); });
}

void GraphWindow::printMarkedPoints(ReportOutput output)
{
    if (m_state.markers.empty()) {
        if (m_ctx.dialogs)
            m_ctx.dialogs->message(this, DialogService::Icon::Information, appTitle(),
                                   u"Δέν υπάρχουν μαρκαρισμένα σημεία !"_s);
        return;
    }
    MarkedPointsInput in;
    in.unitText = m_source.unitText;
    in.zoneText = m_source.zoneText;
    for (const RecordPoint& m : m_state.markers) {
        in.timeTexts.push_back(recordTimeText(m.secs));
        in.valueTexts.push_back(plainNumber(static_cast<double>(m.value)) +
                                unitSuffix(m.sensorType));
    }
    runReport(m_ctx, this, QPageLayout::Portrait, output,
              [&](QPrinter& printer) { return graph::drawMarkedPoints(printer, in); });
}

GraphWindow* openGraph(AppContext& ctx, QWidget* owner, const GraphRequest& request)
{
    const std::shared_ptr<const LoadedRecords> loaded = ctx.loadedRecords;
    const int first = request.first;
    const int last = request.last;
    if (!loaded || first < 0 || last >= static_cast<int>(loaded->records.size()))
        return nullptr;
    const SelectionCheck check = checkSelection(loaded->records, first, last);
    if (check.problem != SelectionProblem::None) {
        if (ctx.dialogs)
            ctx.dialogs->message(owner, DialogService::Icon::Exclamation,
                                 QString::fromUtf16(kGraphCaption),
                                 selectionMessage(check.problem));
        if (check.rowIndex >= 0 && request.selectRowAlone)
            request.selectRowAlone(check.rowIndex);
        return nullptr;
    }
    // Reopening starts over from the current selection.
    for (GraphWindow* old : owner->findChildren<GraphWindow*>(Qt::FindDirectChildrenOnly))
        delete old;
    auto* window =
        new GraphWindow(ctx, {loaded, first, last, request.unitText, request.zoneText}, owner);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowModality(Qt::ApplicationModal);
    window->show();
    return window;
}

} // namespace sx
