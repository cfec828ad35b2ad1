#include "views/records/RecordsWindow.h"

#include "reports/Colors.h"
#include "reports/Twips.h"
#include "reports/records/RecordsModel.h"
#include "reports/xlsx/XlsxExport.h"
#include "ui/DbCall.h"
#include "ui/DialogService.h"
#include "ui/NavigationFrame.h"
#include "ui/QueryFailureReporter.h"
#include "ui/WaitWindow.h"
#include "views/records/RecordsPrint.h"

#include <QComboBox>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QResizeEvent>
#include <QStyle>

#include <climits>
#include <cmath>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

// Room the item views leave on either side of a cell's text.
constexpr int kCellMargin = 3;

// The layout in twips: navigation at the top left, "Καταγραφές" below it
// with the period, zone and limits on its left and the grid on its right.
constexpr int kRecordsFrameTop = 2760;
constexpr int kRecordsFrameHeight = 7575;
constexpr int kGridLeft = 5895;
constexpr int kGridTop = 360;
constexpr int kGridHeight = 7095;
constexpr int kMargin = 120;

QGroupBox* makeFrame(const QString& name, const QString& caption, const QFont& font,
                     QWidget* parent)
{
    auto* frame = new QGroupBox(caption, parent);
    frame->setObjectName(name);
    frame->setFont(font);
    return frame;
}

QComboBox* makeList(const QString& name, QWidget* parent)
{
    auto* list = new QComboBox(parent);
    list->setObjectName(name);
    list->setFont(uiFont(9, true, true));
    list->setMaxVisibleItems(13);
    return list;
}

QLabel* makeBound(const QString& name, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    label->setFont(uiFont(9.75));
    label->setAlignment(Qt::AlignCenter);
    label->setTextFormat(Qt::PlainText);
    label->setAutoFillBackground(true);
    label->setFrameShape(QFrame::Panel);
    label->setFrameShadow(QFrame::Sunken);
    QPalette p = label->palette();
    p.setColor(QPalette::Window, colors::kLightGrey);
    p.setColor(QPalette::WindowText, Qt::black);
    label->setPalette(p);
    return label;
}

// The picture of GraphBut: a small line chart with its axes.
QIcon graphIcon(int size)
{
    QPixmap pix(size, size);
    pix.fill(Qt::transparent);
    QPainter p(&pix);
    p.setRenderHint(QPainter::Antialiasing);
    const qreal s = size;
    p.fillRect(QRectF(s * 0.08, s * 0.08, s * 0.84, s * 0.84), Qt::white);
    p.setPen(QPen(Qt::black, qMax<qreal>(1.0, s / 32)));
    p.drawLine(QPointF(s * 0.16, s * 0.12), QPointF(s * 0.16, s * 0.84));
    p.drawLine(QPointF(s * 0.16, s * 0.84), QPointF(s * 0.9, s * 0.84));
    p.setPen(QPen(QColor(255, 0, 0), qMax<qreal>(1.0, s / 40), Qt::DashLine));
    p.drawLine(QPointF(s * 0.18, s * 0.3), QPointF(s * 0.88, s * 0.3));
    p.setPen(QPen(QColor(0, 128, 0), qMax<qreal>(1.5, s / 18)));
    const QPointF line[] = {{s * 0.18, s * 0.7},  {s * 0.32, s * 0.52}, {s * 0.44, s * 0.62},
                            {s * 0.58, s * 0.26}, {s * 0.72, s * 0.46}, {s * 0.86, s * 0.38}};
    p.drawPolyline(line, static_cast<int>(std::size(line)));
    return QIcon(pix);
}

// The save dialog for a workbook; ".xlsx" is added to a name without an
// extension. Empty when cancelled.
QString askExcelFileName(DialogService& dialogs, QWidget* parent, const QString& proposed)
{
    QString path = dialogs.saveFileName(parent, u"Αποθήκευση αρχείου καταγραφών"_s,
                                        u"Excel Files (*.xlsx)"_s, proposed);
    if (!path.isEmpty() && QFileInfo(path).suffix().isEmpty())
        path += u".xlsx"_s;
    return path;
}

// The wait window, centred over the window that waits for it.
std::unique_ptr<WaitWindow> showWait(QWidget* over, const QString& message)
{
    auto wait = std::make_unique<WaitWindow>(message);
    wait->move(over->frameGeometry().center() - wait->rect().center());
    return wait;
}

} // namespace

RecordsWindow::RecordsWindow(AppContext& ctx, QWidget* parent)
    : ViewWindow(ctx, ViewId::Records, u"Αρχείο καταγραφών"_s, parent),
      m_templatePath(xlsx::defaultTemplatePath())
{
    setObjectName(u"Recordsfrm"_s);
    setFont(uiFont(9.75));
    QWidget* central = centralWidget();
    placeAt(navigation(), 120, 120, 5895, 2535);
    buildRecordsFrame(central);
    buildMenus();
    const QSize size(m_recordsFrame->geometry().right() + 1 + twips(kMargin, this),
                     m_recordsFrame->geometry().bottom() + 1 + twips(kMargin, this));
    central->setMinimumSize(size);
    resize(size.width(), size.height() + menuBar()->sizeHint().height());

    updateNewMessagesIndicator();

    // The start-up sets month and year without loading anything.
    m_loading = true;
    m_monthSelect->addItems(records::monthNames());
    m_yearSelect->addItems(records::yearNames());
    const QDate today = (ctx.clock ? ctx.clock->now() : QDateTime::currentDateTime()).date();
    m_monthSelect->setCurrentIndex(today.month() - 1);
    m_yearSelect->setCurrentIndex(records::yearIndexOf(today.year()));
    m_loading = false;
    setRecordCommandsEnabled(false);
}

RecordsWindow::~RecordsWindow() = default;

void RecordsWindow::buildMenus()
{
    QMenu* manage = menuBar()->addMenu(u"Διαχείριση"_s);
    manage->setObjectName(u"Diahirisi"_s);
    m_save = manage->addAction(u"Αποθήκευση αρχείου καταγραφών"_s);
    m_save->setObjectName(u"Saverecords"_s);
    connect(m_save, &QAction::triggered, this, &RecordsWindow::saveRecords);
    m_print = manage->addAction(u"Εκτύπωση αρχείου καταγραφών"_s);
    m_print->setObjectName(u"Printrecords"_s);
    connect(m_print, &QAction::triggered, this, [this] { printRecords(ReportOutput::Print); });
    manage->addSeparator();
    addExitItem(manage);
    manage->addSeparator();
    m_summary = manage->addAction(u"Σύνοψη μήνα"_s);
    m_summary->setObjectName(u"Summaryrecords"_s);
    connect(m_summary, &QAction::triggered, this,
            [this] { printMonthSummary(ReportOutput::Print); });
    m_previewRecords = manage->addAction(u"Προεπισκόπηση αρχείου καταγραφών"_s);
    m_previewRecords->setObjectName(u"Previewrecords"_s);
    connect(m_previewRecords, &QAction::triggered, this,
            [this] { printRecords(ReportOutput::Preview); });
    m_previewSummary = manage->addAction(u"Προεπισκόπηση σύνοψης μήνα"_s);
    m_previewSummary->setObjectName(u"Previewsummary"_s);
    connect(m_previewSummary, &QAction::triggered, this,
            [this] { printMonthSummary(ReportOutput::Preview); });
}

void RecordsWindow::buildRecordsFrame(QWidget* central)
{
    const QFont frameFont = uiFont(9.75);
    m_recordsFrame = makeFrame(u"Frame8"_s, u"Καταγραφές"_s, uiFont(11.25), central);
    placeAt(m_recordsFrame, kMargin, kRecordsFrameTop, kGridLeft, kRecordsFrameHeight);

    QGroupBox* period =
        makeFrame(u"Frame7"_s, u"Επιλογή χρονικής περιόδου"_s, frameFont, m_recordsFrame);
    placeAt(period, 120, 360, 5655, 1335);
    QGroupBox* year = makeFrame(u"Frame11"_s, u"Έτος"_s, frameFont, period);
    placeAt(year, 120, 300, 1935, 855);
    m_yearSelect = makeList(u"YearSelect"_s, year);
    placeAt(m_yearSelect, 120, 360, 1695, 345);
    QGroupBox* month = makeFrame(u"Frame10"_s, u"Μήνας"_s, frameFont, period);
    placeAt(month, 2175, 300, 3360, 855);
    m_monthSelect = makeList(u"MonthSelect"_s, month);
    placeAt(m_monthSelect, 120, 360, 3120, 345);

    QGroupBox* zone = makeFrame(u"Frame9"_s, u"Επιλογή ζώνης"_s, frameFont, m_recordsFrame);
    placeAt(zone, 120, 1815, 5655, 975);
    m_sensorSelect = makeList(u"SensorSelect"_s, zone);
    placeAt(m_sensorSelect, 120, 360, 5415, 345);

    QGroupBox* info = makeFrame(u"Frame2"_s, u"Πληροφορίες ζώνης"_s, frameFont, m_recordsFrame);
    placeAt(info, 120, 2910, 5655, 4485);
    QGroupBox* minFrame = makeFrame(u"Frame5"_s, u"Ελάχιστο όριο"_s, frameFont, info);
    placeAt(minFrame, 120, 360, 5415, 855);
    m_minBound = makeBound(u"RecsMinbound"_s, minFrame);
    placeAt(m_minBound, 120, 300, 5175, 435);
    QGroupBox* maxFrame = makeFrame(u"Frame4"_s, u"Μέγιστο όριο"_s, frameFont, info);
    placeAt(maxFrame, 120, 1335, 5415, 855);
    m_maxBound = makeBound(u"RecsMaxbound"_s, maxFrame);
    placeAt(m_maxBound, 120, 300, 5175, 435);
    QGroupBox* graph = makeFrame(u"Frame3"_s, u"Γράφημα"_s, frameFont, info);
    placeAt(graph, 120, 2310, 5415, 2055);
    m_graphBut = new QPushButton(graph);
    m_graphBut->setObjectName(u"GraphBut"_s);
    m_graphBut->setToolTip(u"Γράφημα"_s);
    placeAt(m_graphBut, 1800, 360, 1815, 1455);
    m_graphBut->setIcon(graphIcon(twips(1215, m_graphBut)));
    m_graphBut->setIconSize(QSize(twips(1215, m_graphBut), twips(1215, m_graphBut)));
    connect(m_graphBut, &QPushButton::clicked, this, &RecordsWindow::graphRequested);

    m_model = new RecordsModel(this);
    m_grid = new ArchiveGrid(m_recordsFrame);
    m_grid->setObjectName(u"MSFlexGrid1"_s);
    m_grid->setFont(uiFont(9.75));
    m_grid->setModel(m_model);
    m_grid->onSelectAll = [this] { selectAllRecords(); };
    placeAt(m_grid, kGridLeft, kGridTop, 0, kGridHeight);

    m_grid->setUpColumns({RecordsModel::headerText(0), RecordsModel::headerText(1)}, kCellMargin,
                         QHeaderView::Fixed);
    m_recordsFrame->resize(m_grid->geometry().right() + 1 + twips(kMargin, this),
                           m_recordsFrame->height());
    m_baseFrame = m_recordsFrame->size();
    m_baseGrid = m_grid->size();

    // Every choice reloads, the one already shown too: operators pick it again
    // to fetch what was logged since. Where the program sets a list it loads itself.
    connect(m_sensorSelect, &QComboBox::activated, this, [this] { zoneSelected(); });
    connect(m_monthSelect, &QComboBox::activated, this, [this] { periodSelected(); });
    connect(m_yearSelect, &QComboBox::activated, this, [this] { periodSelected(); });
}

void RecordsWindow::resizeEvent(QResizeEvent* event)
{
    ViewWindow::resizeEvent(event);
    if (!m_recordsFrame)
        return;
    // A larger window gives the grid the room; the rest keeps its place.
    const QWidget* central = centralWidget();
    const int width = std::max(m_baseFrame.width(),
                               central->width() - m_recordsFrame->x() - twips(kMargin, this));
    const int height = std::max(m_baseFrame.height(),
                                central->height() - m_recordsFrame->y() - twips(kMargin, this));
    m_recordsFrame->resize(width, height);
    m_grid->resize(m_baseGrid.width() + width - m_baseFrame.width(),
                   m_baseGrid.height() + height - m_baseFrame.height());
}

void RecordsWindow::setRecordCommandsEnabled(bool on)
{
    m_graphBut->setEnabled(on);
    m_save->setEnabled(on);
    m_print->setEnabled(on);
    m_summary->setEnabled(on);
    m_previewRecords->setEnabled(on);
    m_previewSummary->setEnabled(on);
}

void RecordsWindow::showNoRecords()
{
    m_grid->setHighlight(false);
    m_model->clear();
    setRecordCommandsEnabled(false);
}

void RecordsWindow::unitSelected(int index)
{
    AppContext& ctx = context();
    m_zones.clear();
    {
        const QSignalBlocker block(m_sensorSelect);
        m_sensorSelect->clear();
    }
    setRecordCommandsEnabled(false);
    m_maxBound->clear();
    m_minBound->clear();

    DbError error;
    if (index >= 0 && ctx.db) {
        ++m_queries;
        if (ctx.failures && !ctx.failures->ensureConnection(FailureOrigin::User))
            error = {kProviderErrorNumber, u"The connection to the database is lost."_s,
                     DbFailureCause::Unreachable};
        else
            m_zones = dbCall(ctx, this, [&error, serial = ctx.serialAt(index)](Database& db) {
                return records::readZones(db, serial, &error);
            });
        if (error.isError())
            m_zones.clear();
    }
    {
        const QSignalBlocker block(m_sensorSelect);
        for (const records::ZoneEntry& z : m_zones)
            m_sensorSelect->addItem(records::zoneItemText(z));
    }
    const bool any = !m_zones.isEmpty();
    m_sensorSelect->setEnabled(any);
    m_monthSelect->setEnabled(any);
    m_yearSelect->setEnabled(any);
    if (!any)
        showNoRecords();
    if (error.isError()) {
        if (ctx.failures)
            ctx.failures->reportAction(error, this);
        return;
    }
    if (ctx.failures && index >= 0)
        ctx.failures->clear();
    if (any) {
        {
            const QSignalBlocker block(m_sensorSelect);
            m_sensorSelect->setCurrentIndex(0);
        }
        zoneSelected();
    }
}

void RecordsWindow::refillAfterOutage()
{
    const AppContext& ctx = context();
    if (isVisible() && !unitListStale() && !m_zones.isEmpty() && ctx.failures &&
        ctx.failures->failedIn(this)) {
        refreshRecords();
        return;
    }
    ViewWindow::refillAfterOutage();
}

void RecordsWindow::zoneSelected()
{
    refreshRecords();
    showLimits();
}

void RecordsWindow::periodSelected()
{
    if (m_loading)
        return;
    refreshRecords();
}

std::optional<records::ZoneEntry> RecordsWindow::selectedZone() const
{
    const int index = m_sensorSelect->currentIndex();
    if (index < 0 || index >= m_zones.size())
        return std::nullopt;
    return m_zones.at(index);
}

void RecordsWindow::refreshRecords()
{
    const auto zone = selectedZone();
    AppContext& ctx = context();
    if (!zone || !ctx.db)
        return;
    const QPointer<RecordsWindow> self(this);
    setEnabled(false);
    auto wait = showWait(this, u"Ανάγνωση καταγραφών."_s);
    m_grid->setHighlight(false);

    const records::Period period =
        records::recordsPeriod(m_yearSelect->currentIndex(), m_monthSelect->currentIndex());
    ++m_queries;
    records::RecordsLoad load;
    if (ctx.failures && !ctx.failures->ensureConnection(FailureOrigin::User)) {
        load.error = {kProviderErrorNumber, u"The connection to the database is lost."_s,
                      DbFailureCause::Unreachable};
    } else {
        const QueryFailureReporter::UserWait waiting(ctx.failures);
        load = records::loadRecordsAside(ctx.db->settings(),
                                         records::recordsSql(ctx.dbKind(), *zone, period),
                                         records::expectedRows(period));
    }
    if (!self)
        return;

    if (load.error.isError()) {
        showNoRecords();
        wait.reset();
        setEnabled(true);
        if (ctx.failures)
            ctx.failures->reportAction(load.error, this);
        return;
    }
    if (ctx.failures)
        ctx.failures->clear();

    const records::ZoneLimits limits = records::zoneLimits(*zone);
    auto loaded = std::make_shared<LoadedRecords>();
    loaded->records = std::move(load.records);
    loaded->minLimitText = limits.minText;
    loaded->maxLimitText = limits.maxText;
    const bool any = !loaded->records.empty();
    m_model->setRecords(loaded, records::LimitRule(*zone));
    // A period without records leaves the shared records as they were.
    if (any)
        ctx.loadedRecords = loaded;
    setRecordCommandsEnabled(any);

    wait.reset();
    setEnabled(true);
    repaint();
    if (any) {
        m_grid->scrollToTop();
        selectRows(0, 0, 0);
        m_grid->setHighlight(true);
    }
}

void RecordsWindow::showLimits()
{
    const auto zone = selectedZone();
    const records::ZoneLimits limits = zone ? records::zoneLimits(*zone) : records::ZoneLimits{};
    m_minBound->setText(limits.minCaption);
    m_maxBound->setText(limits.maxCaption);

    AppContext& ctx = context();
    const auto& current = ctx.loadedRecords;
    if (current && current->minLimitText == limits.minText &&
        current->maxLimitText == limits.maxText)
        return;
    auto updated =
        current ? std::make_shared<LoadedRecords>(*current) : std::make_shared<LoadedRecords>();
    updated->minLimitText = limits.minText;
    updated->maxLimitText = limits.maxText;
    ctx.loadedRecords = std::move(updated);
}

void RecordsWindow::selectRows(int first, int last, int current)
{
    const int count = m_model->rowCount();
    if (count == 0)
        return;
    first = std::clamp(first, 0, count - 1);
    last = std::clamp(last, 0, count - 1);
    current = std::clamp(current, 0, count - 1);
    QItemSelectionModel* sm = m_grid->selectionModel();
    sm->setCurrentIndex(m_model->index(current, 0), QItemSelectionModel::NoUpdate);
    sm->select(QItemSelection(m_model->index(std::min(first, last), 0),
                              m_model->index(std::max(first, last), 1)),
               QItemSelectionModel::ClearAndSelect);
}

void RecordsWindow::selectAllRecords()
{
    if (!m_graphBut->isEnabled() || m_model->rowCount() == 0)
        return;
    selectRows(0, m_model->rowCount() - 1, 0);
}

void RecordsWindow::selectRowAlone(int row)
{
    if (row < 0 || row >= m_model->rowCount())
        return;
    m_grid->scrollTo(m_model->index(row, 0), QAbstractItemView::PositionAtTop);
    selectRows(row, row, row);
}

std::pair<int, int> RecordsWindow::selectedRows() const
{
    if (m_model->rowCount() == 0)
        return {-1, -1};
    const QItemSelection selection = m_grid->selectionModel()->selection();
    int top = INT_MAX;
    int bottom = -1;
    for (const QItemSelectionRange& range : selection) {
        top = std::min(top, range.top());
        bottom = std::max(bottom, range.bottom());
    }
    if (bottom >= 0)
        return {top, bottom};
    // Nothing selected: the current row alone, as the grid's own cursor row.
    const QModelIndex current = m_grid->currentIndex();
    return current.isValid() ? std::pair{current.row(), current.row()} : std::pair{-1, -1};
}

QString RecordsWindow::unitText() const
{
    return systemSelect()->currentText();
}

QString RecordsWindow::zoneText() const
{
    return m_sensorSelect->currentText();
}

QString RecordsWindow::monthText() const
{
    return m_monthSelect->currentText();
}

QString RecordsWindow::yearText() const
{
    return m_yearSelect->currentText();
}

QString RecordsWindow::maxLimitCaption() const
{
    return m_maxBound->text();
}

QString RecordsWindow::minLimitCaption() const
{
    return m_minBound->text();
}

void RecordsWindow::saveRecords()
{
    AppContext& ctx = context();
    if (!m_save->isEnabled() || !ctx.dialogs)
        return;
    // Asked before the window is disabled: a dialog over a disabled window takes no input.
    const QString target = askExcelFileName(*ctx.dialogs, this, u"records output"_s);
    if (target.isEmpty())
        return;

    const auto [first, last] = selectedRows();
    xlsx::SheetFill fill;
    fill.heading = {unitText(), zoneText(), monthText() + u'/' + yearText(), maxLimitCaption(),
                    minLimitCaption()};
    const int selected = first < 0 ? 0 : last - first + 1;
    fill.rowCount = xlsx::recordsThatFit(selected, m_sheetRows);
    fill.dateText = [this, row = first](int i) { return m_model->dateText(row + i); };
    fill.readingText = [this, row = first](int i) { return m_model->readingText(row + i); };

    setEnabled(false);
    auto wait = showWait(this, u"Αποθήκευση αρχείου καταγραφών."_s);
    const xlsx::ExportStatus status = xlsx::writeWorkbook(m_templatePath, target, fill);
    wait.reset();
    setEnabled(true);
    repaint();
    const QString message = xlsx::statusMessage(status, m_templatePath);
    if (!message.isEmpty())
        ctx.dialogs->message(this, DialogService::Icon::Critical, appTitle(), message);
    else if (status == xlsx::ExportStatus::Written && fill.rowCount < selected)
        ctx.dialogs->message(this, DialogService::Icon::Exclamation, appTitle(),
                             xlsx::leftOutMessage(fill.rowCount, selected - fill.rowCount));
}

void RecordsWindow::printRecords(ReportOutput output)
{
    if (!m_print->isEnabled())
        return;
    const auto [first, last] = selectedRows();
    RecordsReportInput in;
    in.unitText = unitText();
    in.zoneText = zoneText();
    in.monthText = monthText();
    in.yearText = yearText();
    in.rowCount = first < 0 ? 0 : last - first + 1;
    in.dateText = [this, row = first](int i) { return m_model->dateText(row + i); };
    in.readingText = [this, row = first](int i) { return m_model->readingText(row + i); };
    printRecordsReport(context(), this, in, output);
}

void RecordsWindow::printMonthSummary(ReportOutput output)
{
    const auto zone = selectedZone();
    if (!m_summary->isEnabled() || !zone)
        return;
    const int month = m_monthSelect->currentIndex();
    const summary::SummaryPeriod period{records::kFirstYear + m_yearSelect->currentIndex(),
                                        month >= 0 && month < records::kWholeYearIndex ? month + 1
                                                                                       : 0};
    printSummary(context(), this, zone->serial, zone->number, period, output);
}

} // namespace sx
