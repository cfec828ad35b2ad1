#include "ui/ViewWindow.h"

#include "model/QueryHelpers.h"
#include "ui/DbCall.h"
#include "ui/DialogService.h"
#include "ui/NavigationFrame.h"
#include "ui/Navigator.h"
#include "ui/QueryFailureReporter.h"
#include "ui/UnitList.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QMenu>
#include <QMenuBar>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace sx {

void confirmExit(AppContext& ctx, QWidget* parent)
{
    const auto answer = ctx.dialogs->message(
        parent, DialogService::Icon::None, appTitle(),
        u"Είστε βέβαιοι ότι θέλετε να τερματίσετε την εφαρμογή "_s + appTitle() + u" ;"_s,
        DialogService::Buttons::YesNo);
    if (answer == DialogService::Answer::Yes && ctx.terminate)
        ctx.terminate();
}

ViewWindow::ViewWindow(AppContext& ctx, ViewId id, const QString& viewName, QWidget* parent)
    : QMainWindow(parent), m_ctx(ctx), m_id(id)
{
    setWindowTitle(appTitle() + u" / "_s + viewName);
    auto* central = new QWidget(this);
    central->setObjectName(u"central"_s);
    setCentralWidget(central);
    m_nav = new NavigationFrame(id, central);
    connect(m_nav, &NavigationFrame::navigate, this, [this](ViewId target) {
        if (m_ctx.navigator)
            m_ctx.navigator->navigate(*this, target);
    });
    connect(systemSelect(), &QComboBox::activated, this,
            [this](int index) { unitSelected(index); });
    if (m_ctx.failures)
        connect(m_ctx.failures, &QueryFailureReporter::databaseBack, this,
                &ViewWindow::refillAfterOutage);
}

void ViewWindow::refillAfterOutage()
{
    if (!isVisible()) {
        // The database came back while this view was still being built (its
        // box standing): it refills as soon as it is on screen.
        m_refillOnShow = m_ctx.failures && m_ctx.failures->failedIn(this);
        return;
    }
    if (m_unitListStale || systemSelect()->count() == 0)
        fillSystemSelect(*this, unitIndex(), m_id == ViewId::Events, FailureOrigin::Refresh);
    else if (m_ctx.failures && m_ctx.failures->failedIn(this))
        unitSelected(unitIndex());
}

QComboBox* ViewWindow::systemSelect() const
{
    return m_nav->systemSelect();
}

int ViewWindow::unitIndex() const
{
    return systemSelect()->currentIndex();
}

QString ViewWindow::selectedSerial() const
{
    return m_ctx.serialAt(unitIndex());
}

void ViewWindow::updateNewMessagesIndicator()
{
    DbError e;
    if (m_ctx.failures && !m_ctx.failures->ensureConnection())
        return;
    const bool on = dbCall(
        m_ctx, this, [&e](Database& db) { return hasMessages(db, MessageKind::New, {}, &e); });
    if (e.isError() && m_ctx.failures) {
        // Only built views ask this; the unit list read next tells the user.
        m_ctx.failures->report(e, this, FailureOrigin::Quiet);
        return;
    }
    m_nav->setNewMessages(on);
}

void ViewWindow::unloadByProgram()
{
    m_unloading = true;
    close();
    deleteLater();
}

void ViewWindow::addExitItem(QMenu* menu)
{
    QAction* exit = menu->addAction(u"Έξοδος"_s);
    exit->setObjectName(u"Terminateprg"_s);
    connect(exit, &QAction::triggered, this, [this] { confirmExit(m_ctx, this); });
}

QAction* ViewWindow::overviewItem()
{
    if (m_overviewItem)
        return m_overviewItem;
    // Added on first show, after the view has built its own menus, so that it
    // comes after their items.
    QMenu* misc = nullptr;
    for (QAction* a : menuBar()->actions()) {
        if (a->menu() && a->text() == u"Διάφορα"_s)
            misc = a->menu();
    }
    if (!misc)
        misc = menuBar()->addMenu(u"Διάφορα"_s);
    m_overviewItem = misc->addAction(u"Επισκόπηση συστημάτων"_s);
    m_overviewItem->setObjectName(u"ShowOverview"_s);
    m_overviewItem->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O));
    connect(m_overviewItem, &QAction::triggered, this, [this] {
        if (m_ctx.showOverview)
            m_ctx.showOverview();
    });
    return m_overviewItem;
}

void ViewWindow::showEvent(QShowEvent* event)
{
    (void)overviewItem();
    QMainWindow::showEvent(event);
    if (std::exchange(m_refillOnShow, false))
        QTimer::singleShot(0, this, [this] {
            if (m_ctx.failures && !m_ctx.failures->connectionLost())
                m_ctx.failures->refillNow(this, [this] { refillAfterOutage(); });
        });
}

void ViewWindow::closeEvent(QCloseEvent* event)
{
    if (m_unloading) {
        event->accept();
        return;
    }
    // Closing any view ends the application: the user is asked, anything else
    // (log-off, shutdown) ends it without asking.
    event->ignore();
    if (event->spontaneous())
        confirmExit(m_ctx, this);
    else if (m_ctx.terminate)
        m_ctx.terminate();
}

} // namespace sx
