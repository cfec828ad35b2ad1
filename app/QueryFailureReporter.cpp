#include "app/QueryFailureReporter.h"

#include "app/AppContext.h"
#include "app/DialogService.h"

#include <QEventLoop>
#include <QThread>
#include <QWidget>

namespace sx {

namespace {

// SQLite's busy and locked codes; its extended codes keep them in the low byte.
constexpr int kSqliteBusy = 5;
constexpr int kSqliteLocked = 6;

bool lockedByWriter(const DbError& e, DbKind kind)
{
    if (kind != DbKind::SQLite || e.number <= 0)
        return false;
    const int primary = e.number & 0xff;
    return primary == kSqliteBusy || primary == kSqliteLocked;
}

// Whether a read gets through now: an SQLite file a writer holds opens, but
// cannot be read.
bool answersReads(const ConnectionSettings& settings)
{
    if (settings.kind != DbKind::SQLite)
        return Database::reachable(settings);
    Database probe;
    return !probe.open(settings).isError();
}

} // namespace

QueryFailureReporter::QueryFailureReporter(AppContext& ctx, QObject* parent)
    : QObject(parent), m_ctx(ctx)
{
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &QueryFailureReporter::startProbe);
}

QueryFailureReporter::~QueryFailureReporter()
{
    if (m_probe)
        m_probe->wait();
}

void QueryFailureReporter::report(const DbError& error, QWidget* parent, FailureOrigin origin)
{
    if (!error.isError())
        return;
    if (parent && !m_failedIn.contains(parent))
        m_failedIn.append(parent);
    Database* db = m_ctx.db;
    // While a writer holds the file, a read not tried says "lost" too; it is not.
    if ((db && (!db->isOpen() || db->connectionLost())) ||
        (error.cause == DbFailureCause::Unreachable && !m_locked))
        noteLost();
    else if (m_locked || (db && lockedByWriter(error, db->kind())))
        noteLocked();
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
    // Set before the box: its own event loop lets the refresh run meanwhile.
    m_outage = true;
    ++m_shown;
    if (m_ctx.dialogs)
        m_ctx.dialogs->message(parent, DialogService::Icon::Critical, appTitle(),
                               explainDbError(error));
}

void QueryFailureReporter::clear()
{
    if (m_lost)
        return;
    if (m_locked) {
        // A read got through: the writer let go before the probe noticed.
        m_locked = false;
        m_retry.stop();
        m_delayMs = m_firstDelayMs;
        announceBack();
    }
    m_outage = false;
    m_failedIn.clear();
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
    Database* db = m_ctx.db;
    if (!db)
        return false;
    if (!m_lost) {
        if (db->isOpen() && !db->connectionLost()) {
            // Each read of a locked file sleeps its busy time-out on this thread:
            // the refresh leaves it to the probe, and an action that failed
            // already does not try its remaining reads.
            if (m_locked)
                return origin == FailureOrigin::User && !(m_actionDepth > 0 && m_actionReported);
            return true;
        }
        noteLost();
    }
    if (origin != FailureOrigin::User)
        return false;

    // The user waits for an answer now, with the window painting meanwhile.
    bool answered = false;
    std::unique_ptr<QThread> probe(QThread::create(
        [&answered, settings = db->settings()] { answered = Database::reachable(settings); }));
    QEventLoop loop;
    connect(probe.get(), &QThread::finished, &loop, &QEventLoop::quit);
    probe->start();
    ++m_userWaits;
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    --m_userWaits;
    probe->wait();
    if (!m_lost)
        return true; // the background probe reconnected meanwhile
    return answered && reconnect();
}

void QueryFailureReporter::runWhenBack(const QString& sql)
{
    m_pending.append(sql);
    noteLost();
}

void QueryFailureReporter::setRetryDelays(int firstMs, int longestMs)
{
    m_firstDelayMs = firstMs;
    m_longestDelayMs = longestMs;
    m_delayMs = firstMs;
}

void QueryFailureReporter::noteLost()
{
    if (!m_lost) {
        m_lost = true;
        m_delayMs = m_firstDelayMs;
    }
    if (!m_retry.isActive() && !m_probe)
        m_retry.start(m_delayMs);
}

void QueryFailureReporter::noteLocked()
{
    if (m_lost)
        return;
    if (!m_locked) {
        m_locked = true;
        m_delayMs = m_firstDelayMs;
    }
    if (!m_retry.isActive() && !m_probe)
        m_retry.start(m_delayMs);
}

void QueryFailureReporter::startProbe()
{
    if (m_probe || !m_ctx.db || !(m_lost || m_locked))
        return;
    auto answered = std::make_shared<bool>(false);
    m_probe.reset(QThread::create([answered, lost = m_lost, settings = m_ctx.db->settings()] {
        *answered = lost ? Database::reachable(settings) : answersReads(settings);
    }));
    connect(m_probe.get(), &QThread::finished, this, [this, answered] {
        m_probe->wait();
        m_probe.reset();
        probeFinished(*answered);
    });
    m_probe->start();
}

void QueryFailureReporter::probeFinished(bool reachable)
{
    if (m_lost) {
        if (reachable && reconnect())
            return;
    } else if (m_locked) {
        if (reachable) {
            m_locked = false;
            m_delayMs = m_firstDelayMs;
            announceBack();
            return;
        }
    } else {
        return;
    }
    // A long outage costs one probe every few seconds, not one per refresh.
    m_delayMs = std::min(m_delayMs * 2, m_longestDelayMs);
    m_retry.start(m_delayMs);
}

bool QueryFailureReporter::reconnect()
{
    Database* db = m_ctx.db;
    if (!db || db->busy())
        return false;
    if (db->reopen().isError())
        return false;
    // Left-overs of actions cut short: run them before anything else.
    QStringList failed;
    for (const QString& sql : std::as_const(m_pending)) {
        if (db->exec(sql).isError())
            failed.append(sql);
    }
    m_pending = failed;
    m_lost = false;
    m_outage = false;
    m_retry.stop();
    m_delayMs = m_firstDelayMs;
    announceBack();
    return true;
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
