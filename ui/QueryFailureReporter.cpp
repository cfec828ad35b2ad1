#include "ui/QueryFailureReporter.h"

#include "model/ConnectionHealth.h"
#include "model/DbLink.h"
#include "ui/AppContext.h"
#include "ui/DialogService.h"

#include <QApplication>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace sx {

QueryFailureReporter::QueryFailureReporter(AppContext& ctx, QObject* parent)
    : QObject(parent), m_ctx(ctx), m_health(new ConnectionHealth(ctx.db, this))
{
    connect(m_health, &ConnectionHealth::back, this, [this](bool reconnected) {
        if (reconnected)
            m_outage = false;
        announceBack();
    });
}

QueryFailureReporter::~QueryFailureReporter() = default;

void QueryFailureReporter::report(const DbError& error, QWidget* parent, FailureOrigin origin)
{
    // A statement cut short by the shutdown is no failure to tell.
    if (!error.isError() || (m_ctx.db && m_ctx.db->shuttingDown()))
        return;
    ++m_failures;
    if (parent && !m_failedIn.contains(parent))
        m_failedIn.append(parent);
    m_health->noteFailure(error);
    // A view that fills again after an outage tries by itself; failing again
    // is still the outage the user was told of.
    if (m_refilling && origin == FailureOrigin::User)
        origin = FailureOrigin::Refresh;
    // A refresh that fails while a user's action waits is explained by that action.
    if (origin == FailureOrigin::Refresh && m_userWaits > 0)
        m_outage = true;
    if (origin == FailureOrigin::Quiet || (origin == FailureOrigin::Refresh && m_outage))
        return;
    if (m_actionDepth > 0 && std::exchange(m_actionReported, true))
        return;
    m_outage = true;
    ++m_shown;
    if (origin == FailureOrigin::User) {
        // The user's own action: its box comes before the action ends.
        showBox(error, parent, origin);
        return;
    }
    // The watch's box is shown from the event loop: the refresh, the fleet
    // and the notices go on while nobody answers it.
    QTimer::singleShot(0, this, [this, error, p = QPointer<QWidget>(parent)] {
        showBox(error, p.data(), FailureOrigin::Refresh);
    });
}

void QueryFailureReporter::showBox(const DbError& error, QWidget* parent, FailureOrigin)
{
    if (m_ctx.dialogs)
        m_ctx.dialogs->message(parent, DialogService::Icon::Critical, appTitle(),
                               explainDbError(error));
}

void QueryFailureReporter::clear()
{
    if (m_health->lost())
        return;
    m_health->noteReadThrough();
    m_outage = false;
    m_failedIn.clear();
}

void QueryFailureReporter::refillNow(QWidget* view, const std::function<void()>& refill)
{
    const auto previous = m_failedBeforeReturn;
    m_failedBeforeReturn.append(view);
    const bool wasRefilling = std::exchange(m_refilling, true);
    refill();
    m_refilling = wasRefilling;
    m_failedBeforeReturn = previous;
}

bool QueryFailureReporter::failedIn(const QWidget* view) const
{
    for (const QPointer<QWidget>& w : m_failedIn + m_failedBeforeReturn) {
        // Walks across windows too: a graph or wait window belongs to its view.
        for (const QWidget* p = w.data(); p; p = p->parentWidget()) {
            if (p == view)
                return true;
        }
    }
    return false;
}

bool QueryFailureReporter::ensureConnection(FailureOrigin origin)
{
    if (!m_ctx.db)
        return false;
    if (!m_health->lost()) {
        // Each read of a locked file sleeps its busy time-out: the refresh
        // leaves it to the probe, and an action that failed already does not
        // try its remaining reads.
        if (m_health->locked())
            return origin == FailureOrigin::User && !(m_actionDepth > 0 && m_actionReported);
        return true;
    }
    if (origin != FailureOrigin::User)
        return false;

    // The user waits for an answer now; the window paints and the watch goes
    // on meanwhile, and the window the user acted in takes no second action.
    QPointer<QWidget> active = QApplication::activeWindow();
    const bool wasEnabled = active && active->isEnabled();
    if (wasEnabled)
        active->setEnabled(false);
    ++m_userWaits;
    const bool back = m_health->reconnectNow();
    --m_userWaits;
    if (active && wasEnabled)
        active->setEnabled(true);
    return back;
}

void QueryFailureReporter::announceBack()
{
    // Taken now: a good refresh before the views hear of it must not forget them.
    m_refillDue += std::exchange(m_failedIn, {});
    // Queued: the views refill from the event loop, not from inside the caller.
    QMetaObject::invokeMethod(
        this,
        [this] {
            // A refill waits in event loops of its own, where the next return may be announced.
            const auto previous =
                std::exchange(m_failedBeforeReturn,
                              std::exchange(m_refillDue, {}) + std::exchange(m_failedIn, {}));
            const bool wasRefilling = std::exchange(m_refilling, true);
            emit databaseBack();
            m_refilling = wasRefilling;
            m_failedBeforeReturn = previous;
        },
        Qt::QueuedConnection);
}

} // namespace sx
