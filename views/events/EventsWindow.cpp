#include "views/events/EventsWindow.h"

#include "model/records/RecordsQuery.h"
#include "reports/Colors.h"
#include "reports/Twips.h"
#include "reports/events/EventsModel.h"
#include "ui/DbCall.h"
#include "ui/DialogService.h"
#include "ui/NavigationFrame.h"
#include "ui/QueryFailureReporter.h"
#include "ui/WaitWindow.h"
#include "views/events/EventsPrint.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QFontMetricsF>
#include <QGroupBox>
#include <QHash>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QResizeEvent>
#include <QStyle>

#include <climits>
#include <cmath>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

// Room the item views leave on either side of a cell's text.
constexpr int kCellMargin = 3;
// Layout in twips: navigation at the top left, the three choice frames to its
// right, the grid below across the window.
constexpr int kMargin = 120;
constexpr int kRightLeft = 6135;
constexpr int kGridTop = 2775;
constexpr int kGridHeight = 6735;

QGroupBox* makeFrame(const QString& name, const QString& caption, QWidget* parent)
{
    auto* frame = new QGroupBox(caption, parent);
    frame->setObjectName(name);
    frame->setFont(uiFont(9.75));
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

QRadioButton* makeOption(const QString& name, const QString& caption, QWidget* parent)
{
    auto* option = new QRadioButton(caption, parent);
    option->setObjectName(name);
    option->setFont(uiFont(9));
    return option;
}

std::unique_ptr<WaitWindow> showWait(QWidget* over, const QString& message)
{
    auto wait = std::make_unique<WaitWindow>(message);
    wait->move(over->frameGeometry().center() - wait->rect().center());
    return wait;
}

DbError lostConnection()
{
    return {kProviderErrorNumber, u"The connection to the database is lost."_s,
            DbFailureCause::Unreachable};
}

// Text lines of a description in the grid's column, on the loading thread.
// Words are laid out greedily from a table of character advances; only a text
// whose break falls near the column's edge, where kerning could move it, is
// laid out exactly.
class LineMeasure {
public:
    LineMeasure(const QFont& font, double columnWidth)
        : m_font(font), m_width(columnWidth), m_advance(0x10000, -1.0f)
    {
    }

    int operator()(const QString& text)
    {
        if (!m_metrics)
            m_metrics = std::make_unique<QFontMetricsF>(m_font);
        if (const int lines = estimate(text); lines > 0)
            return lines;
        // Wide texts repeat (a unit's faults, deliveries, bypasses): measured once each.
        const auto known = m_exact.constFind(text);
        if (known != m_exact.constEnd())
            return *known;
        const int lines = measure(text);
        m_exact.insert(text, lines);
        return lines;
    }

private:
    float advance(QChar c)
    {
        float& a = m_advance[c.unicode()];
        if (a < 0)
            a = float(m_metrics->horizontalAdvance(c));
        return a;
    }

    // The lines of a greedy word wrap, or 0 when a decision is too close to call.
    int estimate(const QString& text)
    {
        const double edge = m_width * 0.01;
        int lines = 1;
        double line = 0; // the current line up to its last word, trailing blanks left out
        double blanks = 0;
        double word = 0;
        double sum = 0;
        const auto place = [&]() {
            if (word == 0)
                return true;
            const double wide = line + blanks + word;
            if (std::abs(wide - m_width) < edge || word > m_width - edge)
                return false;
            if (wide > m_width && line > 0) {
                ++lines;
                line = word;
            } else {
                line = wide;
            }
            blanks = word = 0;
            return true;
        };
        for (const QChar c : text) {
            const float a = advance(c);
            sum += a;
            if (c == u' ') {
                if (!place())
                    return 0;
                blanks += a;
            } else if (c.unicode() < 0x20 || c.isSpace() || c.isSurrogate()) {
                return 0; // line breaks, tabs, pairs: exact layout
            } else {
                word += a;
            }
        }
        if (!place())
            return 0;
        // As the exact measure: never fewer lines than the whole width takes.
        const double rounds = sum / m_width;
        if (rounds > 0.5 && std::abs(rounds - std::round(rounds)) * m_width < edge)
            return 0;
        return std::max(lines, int(std::ceil(rounds)));
    }

    int measure(const QString& text) const
    {
        const double width = m_metrics->horizontalAdvance(text);
        if (width < m_width)
            return 1;
        const int byWidth = int(std::ceil(width / m_width));
        // Lines break at blanks, which may take one line more than the width alone.
        const QRectF wrapped = m_metrics->boundingRect(
            QRectF(0, 0, m_width, 1e6), Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop, text);
        const int byWords = int(std::lround(wrapped.height() / m_metrics->lineSpacing()));
        return std::max(byWidth, byWords);
    }

    QFont m_font;
    double m_width;
    std::vector<float> m_advance;
    std::unique_ptr<QFontMetricsF> m_metrics;
    QHash<QString, int> m_exact;
};

} // namespace

EventsWindow::EventsWindow(AppContext& ctx, QWidget* parent)
    : ViewWindow(ctx, ViewId::Events, u"Αρχείο συμβάντων"_s, parent)
{
    setObjectName(u"Eventsfrm"_s);
    setFont(uiFont(9.75));
    QWidget* central = centralWidget();
    placeAt(navigation(), kMargin, kMargin, 5895, 2535);
    buildSourceFrame(central);
    buildPeriodFrame(central);
    buildEventsFrame(central);
    buildGrid(central);
    buildMenus();

    const int right = std::max(m_grid->geometry().right(), m_sourceFrame->geometry().right());
    m_baseCentral = QSize(right + 1 + twips(kMargin, this),
                          m_grid->geometry().bottom() + 1 + twips(kMargin, this));
    central->setMinimumSize(m_baseCentral);
    resize(m_baseCentral.width(), m_baseCentral.height() + menuBar()->sizeHint().height());

    updateNewMessagesIndicator();

    // The start-up sets month and year without loading anything.
    m_loading = true;
    m_monthSelect->addItems(records::monthNames());
    m_yearSelect->addItems(records::yearNames());
    const QDate today = (ctx.clock ? ctx.clock->now() : QDateTime::currentDateTime()).date();
    m_monthSelect->setCurrentIndex(today.month() - 1);
    m_yearSelect->setCurrentIndex(records::yearIndexOf(today.year()));
    m_loading = false;
    setSelectorsEnabled(false);
    setEventCommandsEnabled(false);
}

EventsWindow::~EventsWindow() = default;

void EventsWindow::buildMenus()
{
    QMenu* manage = menuBar()->addMenu(u"Διαχείριση"_s);
    manage->setObjectName(u"Diahirisi"_s);
    m_print = manage->addAction(u"Εκτύπωση αρχείου συμβάντων"_s);
    m_print->setObjectName(u"Printrecords"_s);
    connect(m_print, &QAction::triggered, this, [this] { printEvents(); });
    QAction* separator = manage->addSeparator();
    separator->setObjectName(u"l2"_s);
    addExitItem(manage);
    manage->addSeparator();
    m_preview = manage->addAction(u"Προεπισκόπηση αρχείου συμβάντων"_s);
    m_preview->setObjectName(u"Previewevents"_s);
    connect(m_preview, &QAction::triggered, this, [this] { printEvents(ReportOutput::Preview); });
}

void EventsWindow::buildSourceFrame(QWidget* central)
{
    // The frame carries the form's own name.
    m_sourceFrame = makeFrame(u"Eventsfrm"_s, u"Επιλογή προέλευσης"_s, central);
    placeAt(m_sourceFrame, kRightLeft, kMargin, 7755, 1215);
    m_sensorSelect = makeList(u"SensorSelect"_s, m_sourceFrame);
    placeAt(m_sensorSelect, 120, 330, 7515, 345);
    auto* group = new QButtonGroup(this);
    const QString captions[] = {u"Συναγερμός"_s, u"Αποκατάσταση"_s, u"Όλα"_s};
    const int lefts[] = {120, 2640, 5160};
    for (int i = 0; i < 3; ++i) {
        m_kind[i] = makeOption(u"Option2_%1"_s.arg(i), captions[i], m_sourceFrame);
        placeAt(m_kind[i], lefts[i], 780, 2400, 315);
        group->addButton(m_kind[i], i);
    }
    m_kind[0]->setChecked(true);
    connect(group, &QButtonGroup::idClicked, this, [this] {
        if (!m_sources.isEmpty())
            refreshEvents();
    });
    connect(m_sensorSelect, &QComboBox::activated, this, [this] { sourceSelected(); });
}

void EventsWindow::buildPeriodFrame(QWidget* central)
{
    QGroupBox* period = makeFrame(u"Frame7"_s, u"Επιλογή χρονικής περιόδου"_s, central);
    placeAt(period, kRightLeft, 1440, 3855, 1215);
    QGroupBox* year = makeFrame(u"Frame11"_s, u"Έτος"_s, period);
    placeAt(year, 120, 270, 1335, 825);
    m_yearSelect = makeList(u"YearSelect"_s, year);
    placeAt(m_yearSelect, 120, 330, 1095, 345);
    QGroupBox* month = makeFrame(u"Frame10"_s, u"Μήνας"_s, period);
    placeAt(month, 1575, 270, 2160, 825);
    m_monthSelect = makeList(u"MonthSelect"_s, month);
    placeAt(m_monthSelect, 120, 330, 1920, 345);
    // A choice loads even when it names the shown period again: that is how
    // an operator fetches what the units reported since.
    const auto periodChosen = [this] {
        if (!m_loading)
            refreshEvents();
    };
    connect(m_monthSelect, &QComboBox::activated, this, periodChosen);
    connect(m_yearSelect, &QComboBox::activated, this, periodChosen);
}

void EventsWindow::buildEventsFrame(QWidget* central)
{
    QGroupBox* frame = makeFrame(u"Frame2"_s, u"Συμβάντα"_s, central);
    placeAt(frame, kRightLeft + 3975, 1440, 3780, 1215);
    m_new[0] = makeOption(u"Option1_0"_s, u"Νέα συμβάντα"_s, frame);
    placeAt(m_new[0], 120, 270, 1935, 315);
    m_new[1] = makeOption(u"Option1_1"_s, u"Όλα"_s, frame);
    placeAt(m_new[1], 2160, 270, 1500, 315);
    m_new[0]->setChecked(true);
    auto* group = new QButtonGroup(this);
    group->addButton(m_new[0], 0);
    group->addButton(m_new[1], 1);
    connect(group, &QButtonGroup::idClicked, this, [this] { newOptionClicked(); });
    m_mark = new QPushButton(u"Μαρκάρισμα ως διαβασμένα"_s, frame);
    m_mark->setObjectName(u"EventsMarkCmd"_s);
    m_mark->setFont(uiFont(9));
    placeAt(m_mark, 120, 645, 3540, 450);
    connect(m_mark, &QPushButton::clicked, this, &EventsWindow::markSelected);
}

void EventsWindow::buildGrid(QWidget* central)
{
    m_model = new EventsModel(this);
    m_grid = new ArchiveGrid(central);
    m_grid->setObjectName(u"MSFlexGrid1"_s);
    m_grid->setFont(uiFont(9.75));
    m_grid->setWordWrap(true);
    m_grid->setTextElideMode(Qt::ElideNone);
    m_grid->setModel(m_model);
    m_grid->onSelectAll = [this] { selectAllEvents(); };
    placeAt(m_grid, kMargin, kGridTop, 0, kGridHeight);

    m_grid->setUpColumns({EventsModel::headerText(0), EventsModel::headerText(1)}, kCellMargin,
                         QHeaderView::Interactive);
    m_baseGrid = m_grid->size();
}

void EventsWindow::resizeEvent(QResizeEvent* event)
{
    ViewWindow::resizeEvent(event);
    if (!m_grid)
        return;
    // A larger window gives the grid the room; the rest keeps its place.
    const QWidget* central = centralWidget();
    m_grid->resize(
        std::max(m_baseGrid.width(), central->width() - m_grid->x() - twips(kMargin, this)),
        std::max(m_baseGrid.height(), central->height() - m_grid->y() - twips(kMargin, this)));
}

void EventsWindow::setSelectorsEnabled(bool on)
{
    m_sensorSelect->setEnabled(on);
    m_monthSelect->setEnabled(on);
    m_yearSelect->setEnabled(on);
    for (QRadioButton* o : m_new)
        o->setEnabled(on);
    for (QRadioButton* o : m_kind)
        o->setEnabled(on);
}

void EventsWindow::setEventCommandsEnabled(bool on)
{
    m_mark->setEnabled(on);
    m_print->setEnabled(on);
    m_preview->setEnabled(on);
}

void EventsWindow::showNoEvents()
{
    m_grid->setHighlight(false);
    m_model->clear();
    setEventCommandsEnabled(false);
}

void EventsWindow::unitSelected(int index)
{
    AppContext& ctx = context();
    m_sources.clear();
    {
        const QSignalBlocker block(m_sensorSelect);
        m_sensorSelect->clear();
    }
    setEventCommandsEnabled(false);

    DbError error;
    const QString serial = ctx.serialAt(index);
    if (serial == u"*"_s) {
        m_sources = events::allUnitsSourceList();
    } else if (index >= 0 && ctx.db) {
        if (ctx.failures && !ctx.failures->ensureConnection(FailureOrigin::User))
            error = lostConnection();
        else
            m_sources = dbCall(ctx, this, [&](Database& db) {
                return events::buildSourceList(db, serial, index, &error);
            });
    }
    {
        const QSignalBlocker block(m_sensorSelect);
        for (const events::SourceEntry& s : m_sources)
            m_sensorSelect->addItem(s.text);
    }
    const bool any = !m_sources.isEmpty();
    setSelectorsEnabled(any);
    if (!any)
        showNoEvents();
    if (error.isError()) {
        if (ctx.failures)
            ctx.failures->reportAction(error, this);
        return;
    }
    if (any) {
        {
            const QSignalBlocker block(m_sensorSelect);
            m_sensorSelect->setCurrentIndex(m_sensorSelect->count() - 1);
        }
        sourceSelected();
    }
}

void EventsWindow::refillAfterOutage()
{
    const AppContext& ctx = context();
    if (isVisible() && !unitListStale() && !m_sources.isEmpty() && ctx.failures &&
        ctx.failures->failedIn(this)) {
        refreshEvents();
        return;
    }
    ViewWindow::refillAfterOutage();
}

void EventsWindow::sourceSelected()
{
    const int i = m_sensorSelect->currentIndex();
    if (i < 0 || i >= m_sources.size())
        return;
    const bool kinds = events::kindOptionsApply(m_sources.at(i).source);
    for (QRadioButton* o : m_kind)
        o->setEnabled(kinds);
    refreshEvents();
}

void EventsWindow::newOptionClicked()
{
    m_mark->setText(m_new[0]->isChecked() ? u"Μαρκάρισμα ως διαβασμένα"_s : u"Μαρκάρισμα ως νέα"_s);
    if (!m_sources.isEmpty())
        refreshEvents();
}

events::EventsRequest EventsWindow::request() const
{
    const AppContext& ctx = context();
    const events::SourceEntry& entry = m_sources.at(m_sensorSelect->currentIndex());
    events::EventsRequest r;
    if (entry.unitIndex < 0) {
        // Every unit of the list but "ΟΛΑ" itself, which is the last.
        r.withPrefix = true;
        for (int i = 0; i + 1 < systemSelect()->count(); ++i)
            r.units.append({i, ctx.serialAt(i)});
    } else {
        r.units.append({entry.unitIndex, ctx.serialAt(entry.unitIndex)});
    }
    r.source = entry.source;
    r.kind = m_kind[0]->isChecked()   ? events::EventKind::Alarms
             : m_kind[1]->isChecked() ? events::EventKind::Restorations
                                      : events::EventKind::Both;
    r.newOnly = m_new[0]->isChecked();
    r.period = events::eventsPeriod(m_yearSelect->currentIndex(), m_monthSelect->currentIndex());
    return r;
}

events::LineCounter EventsWindow::lineCounter() const
{
    // The width the cell's text gets inside the column.
    const double width = m_grid->columnWidth(EventsModel::DescriptionColumn) - 2 * kCellMargin - 2;
    auto measure = std::make_shared<LineMeasure>(m_grid->font(), width);
    return [measure](const QString& text) { return (*measure)(text); };
}

void EventsWindow::applyRowHeights()
{
    QHeaderView* rows = m_grid->verticalHeader();
    const double lineHeight = QFontMetricsF(m_grid->font()).height();
    // Without updates the header skips a position lookup per resized row.
    rows->setUpdatesEnabled(false);
    for (int row = 0, n = m_model->rowCount(); row < n; ++row) {
        const int lines = m_model->lines(row);
        if (lines > 1)
            rows->resizeSection(row, int(std::ceil(lineHeight * lines)) + 4);
    }
    rows->setUpdatesEnabled(true);
}

void EventsWindow::refreshEvents()
{
    AppContext& ctx = context();
    const int entry = m_sensorSelect->currentIndex();
    if (entry < 0 || entry >= m_sources.size() || !ctx.db)
        return;
    ++m_fills;
    const QPointer<EventsWindow> self(this);
    setEnabled(false);
    auto wait = showWait(this, u"Ανάγνωση συμβάντων."_s);
    m_grid->setHighlight(false);
    m_grid->clearSelection();
    m_model->clear();

    events::EventsLoad load;
    if (ctx.failures && !ctx.failures->ensureConnection(FailureOrigin::User)) {
        load.error = lostConnection();
    } else {
        const QueryFailureReporter::UserWait waiting(ctx.failures);
        load = events::loadEventsAside(ctx.db->settings(), request(), lineCounter());
    }
    if (!self)
        return;
    if (load.error.isError()) {
        showNoEvents();
        wait.reset();
        setEnabled(true);
        if (ctx.failures)
            ctx.failures->reportAction(load.error, this);
        return;
    }
    if (ctx.failures)
        ctx.failures->clear();
    m_model->setEvents(std::move(load));
    applyRowHeights();
    const bool any = m_model->rowCount() > 0;
    setEventCommandsEnabled(any);
    wait.reset();
    setEnabled(true);
    if (any) {
        m_grid->scrollToTop();
        selectRows(0, 0);
        m_grid->setHighlight(true);
    }
}

void EventsWindow::selectRows(int first, int last)
{
    const int count = m_model->rowCount();
    if (count == 0)
        return;
    first = std::clamp(first, 0, count - 1);
    last = std::clamp(last, 0, count - 1);
    QItemSelectionModel* sm = m_grid->selectionModel();
    sm->setCurrentIndex(m_model->index(first, 0), QItemSelectionModel::NoUpdate);
    sm->select(QItemSelection(m_model->index(std::min(first, last), 0),
                              m_model->index(std::max(first, last), 1)),
               QItemSelectionModel::ClearAndSelect);
}

void EventsWindow::selectAllEvents()
{
    if (!m_mark->isEnabled() || m_model->rowCount() == 0)
        return;
    selectRows(0, m_model->rowCount() - 1);
}

std::pair<int, int> EventsWindow::selectedRows() const
{
    if (m_model->rowCount() == 0)
        return {-1, -1};
    int top = INT_MAX;
    int bottom = -1;
    for (const QItemSelectionRange& range : m_grid->selectionModel()->selection()) {
        top = std::min(top, range.top());
        bottom = std::max(bottom, range.bottom());
    }
    if (bottom >= 0)
        return {top, bottom};
    const QModelIndex current = m_grid->currentIndex();
    return current.isValid() ? std::pair{current.row(), current.row()} : std::pair{-1, -1};
}

void EventsWindow::markSelected()
{
    AppContext& ctx = context();
    const auto [first, last] = selectedRows();
    if (!m_mark->isEnabled() || first < 0 || !ctx.db)
        return;
    const int mark = events::markValue(m_new[0]->isChecked());
    QList<events::MarkTarget> targets;
    targets.reserve(last - first + 1);
    for (int row = first; row <= last; ++row)
        targets.append({m_model->serial(row), m_model->sequence(row)});

    const QPointer<EventsWindow> self(this);
    setEnabled(false);
    DbError error;
    {
        auto wait = showWait(this, u"Μαρκάρισμα συμβάντων."_s);
        if (ctx.failures && !ctx.failures->ensureConnection(FailureOrigin::User))
            error = lostConnection();
        else
            error = dbCall(ctx, this, [&targets, mark](Database& db) {
                return events::markEvents(db, targets, mark);
            });
    }
    if (!self)
        return;
    setEnabled(true);
    if (error.isError()) {
        // One transaction: nothing was marked, and the box says so first.
        error.description = u"Κανένα συμβάν δεν μαρκαρίστηκε. "_s + error.description;
        if (ctx.failures)
            ctx.failures->reportAction(error, this);
        return;
    }
    refreshEvents();
}

QString EventsWindow::choicesText() const
{
    events_report::Choices c;
    c.unit = systemSelect()->currentText();
    c.source = m_sensorSelect->currentText();
    c.kindApplies = m_kind[0]->isEnabled();
    c.kind = m_kind[0]->isChecked() ? 0 : m_kind[1]->isChecked() ? 1 : 2;
    c.month = m_monthSelect->currentText();
    c.year = m_yearSelect->currentText();
    c.newOnly = m_new[0]->isChecked();
    return events_report::choicesLine(c);
}

void EventsWindow::printEvents(ReportOutput output)
{
    if (!m_print->isEnabled())
        return;
    const auto [first, last] = selectedRows();
    const EventsReportInput in = m_model->reportInput(first, first < 0 ? -1 : last, choicesText());
    printEventsReport(context(), this, in, output);
}

} // namespace sx
