#include "views/current/MainWindow.h"

#include "reports/Colors.h"
#include "reports/Twips.h"
#include "ui/AppActions.h"
#include "ui/NavigationFrame.h"
#include "ui/QueryFailureReporter.h"
#include "ui/UnitList.h"
#include "views/current/CurrentCondition.h"
#include "views/current/CurrentPrint.h"
#include "views/current/UnitCommands.h"

#include <QComboBox>
#include <QFontMetricsF>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTableWidget>

#include <cmath>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

// Room the item views leave on either side of a cell's text.
constexpr int kCellMargin = 3;

QGroupBox* makeFrame(const QString& name, const QString& caption, const QFont& font,
                     QWidget* parent)
{
    auto* frame = new QGroupBox(caption, parent);
    frame->setObjectName(name);
    frame->setFont(font);
    return frame;
}

QLabel* makeLabel(const QString& name, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    label->setFont(uiFont(9.75));
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    label->setAutoFillBackground(true);
    label->setFrameShape(QFrame::Panel);
    label->setFrameShadow(QFrame::Sunken);
    return label;
}

void setLabelColors(QLabel* label, const QColor& background, const QColor& text)
{
    QPalette p = label->palette();
    if (p.color(QPalette::Window) == background && p.color(QPalette::WindowText) == text)
        return;
    p.setColor(QPalette::Window, background);
    p.setColor(QPalette::WindowText, text);
    label->setPalette(p);
}

QPushButton* makeCommand(const QString& name, const QString& caption, QWidget* parent)
{
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    b->setFont(uiFont(9));
    placeAt(b, 120, 360, 2295, 735);
    setButtonColor(b, colors::kLightGrey);
    b->setEnabled(false);
    return b;
}

void setCommand(QPushButton* b, const Look& look)
{
    if (b->text() != look.text)
        b->setText(look.text);
    if (b->property("sxColor").value<QColor>() != look.color)
        setButtonColor(b, look.color);
}

// Header texts as the format strings give them: "^" centres, the blanks stay.
QStringList pointHeaders()
{
    return {QString(59, u' ') + u"ΣΗΜΕΙΟ"_s, u"  ΕΝΔΕΙΞΗ"_s, u"ΕΛΑΧ. ΟΡΙΟ"_s, u"ΜΕΓ. ΟΡΙΟ"_s};
}

QStringList powerHeaders()
{
    return {QString(60, u' ') + u"ΔΙΚΤΥΟ ΡΕΥΜΑΤΟΣ"_s + QString(15, u' '), u" ΚΑΤΑΣΤΑΣΗ"_s};
}

int textWidth(const QFontMetricsF& fm, const QString& text)
{
    return static_cast<int>(std::ceil(fm.horizontalAdvance(text))) + 2 * kCellMargin;
}

QTableWidget* makeGrid(const QString& name, const QStringList& headers, QWidget* parent)
{
    auto* grid = new QTableWidget(0, static_cast<int>(headers.size()), parent);
    grid->setObjectName(name);
    grid->setFont(uiFont(9.75));
    grid->setHorizontalHeaderLabels(headers);
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setSelectionMode(QAbstractItemView::NoSelection);
    grid->setFocusPolicy(Qt::NoFocus);
    grid->setWordWrap(true);
    grid->setCornerButtonEnabled(false);
    grid->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);

    QPalette p = grid->palette();
    p.setColor(QPalette::Base, colors::kLightGrey);
    p.setColor(QPalette::Text, Qt::black);
    grid->setPalette(p);

    QHeaderView* header = grid->horizontalHeader();
    header->setFont(grid->font());
    header->setDefaultAlignment(Qt::AlignCenter);
    header->setHighlightSections(false);
    header->setSectionsClickable(false);
    header->setSectionResizeMode(QHeaderView::Fixed);
    header->setStyleSheet(
        u"QHeaderView::section { color: rgb(0,0,255); background-color: white; padding: 1px %1px;"
        " border: none; border-right: 1px solid #a0a0a0; border-bottom: 1px solid #a0a0a0; }"_s.arg(
            kCellMargin));

    const QFontMetricsF fm(grid->font());
    QHeaderView* rows = grid->verticalHeader();
    rows->hide();
    rows->setSectionResizeMode(QHeaderView::Fixed);
    rows->setMinimumSectionSize(1);
    rows->setDefaultSectionSize(static_cast<int>(std::ceil(fm.height())) + 4);
    for (int c = 0; c < headers.size(); ++c)
        grid->setColumnWidth(c, textWidth(fm, headers.at(c)));
    return grid;
}

QString shownText(const QString& text)
{
    QString out = text;
    out.replace(u"\r\n"_s, u"\n"_s);
    return out;
}

} // namespace

MainWindow::MainWindow(AppContext& ctx) : ViewWindow(ctx, ViewId::Current, u"Τρέχουσα κατάσταση"_s)
{
    setObjectName(u"Mainfrm"_s);
    setFont(uiFont(9.75));
    QWidget* central = centralWidget();
    placeAt(navigation(), 120, 120, 5895, 2535);
    buildInfoFrame(central);
    buildReadingsFrame(central);
    buildMenus();

    central->setMinimumSize(twips(15255, this), twips(10695, this));
    resize(twips(15255, this), twips(10695, this) + menuBar()->sizeHint().height());

    m_timer.setObjectName(u"UpdateMainfrm"_s);
    m_timer.setInterval(kRefreshIntervalMs);
    // Restarted at the end of every refresh, so the period runs from its end.
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &MainWindow::refresh);
}

void MainWindow::buildMenus()
{
    QMenu* manage = menuBar()->addMenu(u"Διαχείριση"_s);
    manage->setObjectName(u"Diahirisi"_s);
    QAction* print = manage->addAction(u"Εκτύπωση τρέχουσας κατάστασης"_s);
    print->setObjectName(u"Printcurrent"_s);
    connect(print, &QAction::triggered, this,
            [this] { printCurrentCondition(context(), this, selectedSerial()); });
    manage->addSeparator();
    addExitItem(manage);
    manage->addSeparator();
    QAction* preview = manage->addAction(u"Προεπισκόπηση τρέχουσας κατάστασης"_s);
    preview->setObjectName(u"Previewcurrent"_s);
    connect(preview, &QAction::triggered, this, [this] {
        printCurrentCondition(context(), this, selectedSerial(), ReportOutput::Preview);
    });

    QMenu* misc = menuBar()->addMenu(u"Διάφορα"_s);
    misc->setObjectName(u"Diafora"_s);
    QAction* info = misc->addAction(u"Πληροφορίες εφαρμογής"_s);
    info->setObjectName(u"ShowSoftInfo"_s);
    connect(info, &QAction::triggered, this, [this] { showSoftInfo(context(), this); });
    QAction* settings = misc->addAction(u"Παράμετροι εφαρμογής"_s);
    settings->setObjectName(u"ChangeAppSettings"_s);
    connect(settings, &QAction::triggered, this, [this] { changeAppSettings(context(), this); });
}

void MainWindow::buildInfoFrame(QWidget* central)
{
    const QFont small = uiFont(9.75);
    QGroupBox* info = makeFrame(u"Frame2"_s, u"Πληροφορίες Συστήματος"_s, uiFont(11.25), central);
    placeAt(info, 120, 5160, 6495, 5415);

    m_connection = makeLabel(u"Label6"_s, info);
    placeAt(m_connection, 120, 360, 5295, 735);
    const Look initial = connectionLook(0);
    m_connection->setText(initial.text);
    setLabelColors(m_connection, colors::kLightGrey, initial.color);

    m_status = makeLabel(u"Systemstatus"_s, info);
    placeAt(m_status, 120, 1200, 5295, 735);
    setLabelColors(m_status, colors::kLightGrey, Qt::black);

    m_clock = makeLabel(u"Systemdatetimelabel"_s, info);
    placeAt(m_clock, 120, 2040, 5295, 735);
    setLabelColors(m_clock, colors::kLightGrey, Qt::black);

    QGroupBox* phone = makeFrame(u"Frame3"_s, u"Τηλεφωνική Ειδοποίηση"_s, small, info);
    placeAt(phone, 120, 2760, 2655, 1215);
    m_notification = makeCommand(u"Command4"_s, u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s, phone);
    connect(m_notification, &QPushButton::clicked, this,
            [this] { runNotificationCommand(context(), *this); });

    QGroupBox* bypass = makeFrame(u"Frame7"_s, u"Παράκαμψη σημείου"_s, small, info);
    placeAt(bypass, 3000, 2760, 2655, 1215);
    m_bypass = makeCommand(u"Command7"_s, u"ΑΛΛΑΓΗ ΚΑΤΑΣΤΑΣΗΣ"_s, bypass);
    connect(m_bypass, &QPushButton::clicked, this, [this] { runBypassCommand(context(), *this); });

    QGroupBox* relay = makeFrame(u"Frame4"_s, u"Διακόπτης"_s, small, info);
    placeAt(relay, 120, 4080, 2655, 1215);
    m_relay = makeCommand(u"Command5"_s, u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s, relay);
    connect(m_relay, &QPushButton::clicked, this, [this] { runRelayCommand(context(), *this); });
}

void MainWindow::buildReadingsFrame(QWidget* central)
{
    QGroupBox* readings = makeFrame(u"Frame5"_s, u"Ενδείξεις"_s, uiFont(11.25), central);
    placeAt(readings, 6720, 120, 8415, 10455);
    m_points = makeGrid(u"MSFlexGrid1"_s, pointHeaders(), readings);
    placeAt(m_points, 120, 240, 8175, 7095);
    m_powers = makeGrid(u"MSFlexGrid2"_s, powerHeaders(), readings);
    placeAt(m_powers, 120, 7440, 8175, 2895);
}

QString MainWindow::relayCaption() const
{
    return m_relay->text();
}

void MainWindow::unitSelected(int)
{
    setLabel(m_connection, {});
    setLabel(m_status, {});
    setLabel(m_clock, {});
    trimRows(m_points, 0);
    trimRows(m_powers, 0);
    refresh();
}

void MainWindow::refresh()
{
    AppContext& ctx = context();
    // The console ends: the timer stays off.
    if (ctx.db && ctx.db->shuttingDown()) {
        m_timer.stop();
        return;
    }
    // One round at a time; a round that comes back for another unit starts the next.
    if (m_refreshing)
        return;
    m_timer.stop();
    if (systemSelect()->count() == 0 || unitIndex() < 0) {
        // No unit, no refresh. A list that could not be read, or was empty
        // (a database still being set up), is read again every round.
        m_timer.start();
        if (ctx.db && (!ctx.failures || ctx.failures->ensureConnection()))
            fillSystemSelect(*this, 0, false, FailureOrigin::Refresh);
        return;
    }
    if (!ctx.db)
        return;
    if (ctx.failures && !ctx.failures->ensureConnection()) {
        CurrentCondition lost;
        lost.error = {kProviderErrorNumber, u"The connection to the database is lost."_s,
                      DbFailureCause::Unreachable};
        finishRefresh(selectedSerial(), lost, ctx.failures ? ctx.failures->failureCount() : 0);
        return;
    }
    m_refreshing = true;
    const QString serial = selectedSerial();
    const quint64 failuresBefore = ctx.failures ? ctx.failures->failureCount() : 0;
    // The refresh gives up on a silent server sooner than a user's action.
    ctx.db->post(
        this, [serial](Database& db) { return readCurrentCondition(db, serial); },
        [this, serial, failuresBefore](const CurrentCondition& cc) {
            m_refreshing = false;
            ++m_reads;
            finishRefresh(serial, cc, failuresBefore);
        },
        ctx.failures ? ctx.failures->refreshDeadlineMs() : ctx.db->defaultDeadline());
}

void MainWindow::unitListUnread()
{
    if (!m_refreshing && !m_timer.isActive())
        m_timer.start();
}

void MainWindow::finishRefresh(const QString& serial, const CurrentCondition& cc,
                               quint64 failuresBefore)
{
    AppContext& ctx = context();
    if (serial != selectedSerial()) {
        // The user chose another unit while this one was read.
        refresh();
        return;
    }
    if (cc.error.isError()) {
        showDatabaseLost();
        if (ctx.failures)
            ctx.failures->report(cc.error, this);
    } else {
        apply(cc);
        // A read begun before a failure elsewhere does not vouch for the database after it.
        if (ctx.failures)
            ctx.failures->clearSince(failuresBefore);
    }
    m_timer.start();
}

void MainWindow::apply(const CurrentCondition& cc)
{
    m_databaseLost = false;
    const QFontMetricsF fm(m_points->font());
    const auto fillLabelRow = [&fm](QTableWidget* grid, int row, const QString& label) {
        const int h =
            labelRowHeight(fm.horizontalAdvance(label), fm.height(), grid->columnWidth(0));
        QHeaderView* rows = grid->verticalHeader();
        const int wanted = h < 0 ? rows->defaultSectionSize() : h;
        if (rows->sectionSize(row) != wanted)
            rows->resizeSection(row, wanted);
        // Word wrapping may still cut a very long name; the tooltip shows all of it.
        grid->item(row, 0)->setToolTip(h < 0 ? QString() : label);
    };

    int r = 0;
    for (const PointRow& p : cc.points) {
        if (m_points->rowCount() <= r)
            m_points->insertRow(r);
        setRow(m_points, r, {p.label, p.reading, p.minLimit, p.maxLimit}, p.color);
        fillLabelRow(m_points, r, p.label);
        ++r;
    }
    trimRows(m_points, r);
    fitColumns(m_points);

    r = 0;
    for (const PowerRow& p : cc.powers) {
        if (m_powers->rowCount() <= r)
            m_powers->insertRow(r);
        setRow(m_powers, r, {p.label, p.state}, p.color);
        fillLabelRow(m_powers, r, p.label);
        ++r;
    }
    trimRows(m_powers, r);
    fitColumns(m_powers);

    if (cc.unitFound) {
        setLabel(m_connection, cc.connection.text);
        setLabelColors(m_connection, colors::kLightGrey, cc.connection.color);
        m_notification->setEnabled(cc.connected);
        m_relay->setEnabled(cc.connected);
        m_bypass->setEnabled(cc.connected);
        if (cc.connected) {
            setCommand(m_notification, cc.notification);
            setCommand(m_relay, cc.relay);
        }
        setLabel(m_clock, cc.clock);
        setLabel(m_status, cc.status.text);
        setLabelColors(m_status, cc.status.color, Qt::black);
    }
    navigation()->setNewMessages(cc.newMessages);
}

void MainWindow::showDatabaseLost()
{
    // Stale readings must not pass for current ones: the view empties itself.
    m_databaseLost = true;
    trimRows(m_points, 0);
    trimRows(m_powers, 0);
    const Look lost = databaseLostLook();
    setLabel(m_connection, lost.text);
    setLabelColors(m_connection, colors::kLightGrey, lost.color);
    setLabel(m_status, {});
    setLabelColors(m_status, colors::kLightGrey, Qt::black);
    setLabel(m_clock, {});
    m_notification->setEnabled(false);
    m_relay->setEnabled(false);
    m_bypass->setEnabled(false);
}

void MainWindow::trimRows(QTableWidget* grid, int rows)
{
    if (grid->rowCount() > rows)
        grid->setRowCount(rows);
}

void MainWindow::setRow(QTableWidget* grid, int row, const QStringList& texts, const QColor& color)
{
    const QBrush background(color);
    for (int c = 0; c < texts.size(); ++c) {
        QTableWidgetItem* item = grid->item(row, c);
        if (!item) {
            item = new QTableWidgetItem;
            item->setFlags(Qt::ItemIsEnabled);
            item->setForeground(QBrush(Qt::black));
            item->setTextAlignment(c == 0 ? Qt::AlignLeft | Qt::AlignVCenter : Qt::AlignCenter);
            grid->setItem(row, c, item);
        }
        // Unchanged values emit nothing, so an unchanged unit repaints nothing.
        item->setText(texts.at(c));
        item->setBackground(background);
    }
}

void MainWindow::setLabel(QLabel* label, const QString& text)
{
    const QString shown = shownText(text);
    if (label->text() != shown)
        label->setText(shown);
}

void MainWindow::fitColumns(QTableWidget* grid)
{
    // Columns keep their header widths; a value wider than its column (long
    // unit texts) widens that column rather than being cut.
    const QFontMetricsF fm(grid->font());
    // The grid line takes a pixel of the cell; without it "-1e+30 %RH" loses its end.
    const int gridLine = grid->showGrid() ? 1 : 0;
    for (int c = 1; c < grid->columnCount(); ++c) {
        int width = textWidth(fm, grid->horizontalHeaderItem(c)->text());
        for (int r = 0; r < grid->rowCount(); ++r) {
            if (const QTableWidgetItem* item = grid->item(r, c))
                width = std::max(width, textWidth(fm, item->text()) + gridLine);
        }
        if (grid->columnWidth(c) != width)
            grid->setColumnWidth(c, width);
    }
}

} // namespace sx
