#include "ui/QueryFailureReporter.h"

#include "model/DbLink.h"
#include "ui/AppContext.h"
#include "ui/DialogService.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>
#include <QTimer>
#include <QWidget>

#include <thread>

using namespace Qt::StringLiterals;

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

struct Reopened {
    DbError error;
    QStringList failed;
};

// On the connection's thread: a connection that still works is kept (a side
// connection's failure says nothing of it); else it is opened again. Then the
// left-overs of actions cut short run before anything else.
Reopened reopenAndRun(Database& db, const QStringList& pending, bool probeFirst)
{
    Reopened out;
    // A connection that looks open may still be cut: only a statement tells.
    if (!db.isOpen() || db.connectionLost() || db.exec(u"SELECT 1"_s).isError()) {
        if (probeFirst && !Database::reachable(db.settings())) {
            out.error = {kProviderErrorNumber, u"The connection to the database is lost."_s,
                         DbFailureCause::Unreachable};
            out.failed = pending;
            return out;
        }
        out.error = db.reopen();
        if (out.error.isError()) {
            out.failed = pending;
            return out;
        }
    }
    for (const QString& sql : pending) {
        if (db.exec(sql).isError())
            out.failed.append(sql);
    }
    return out;
}

} // namespace

QueryFailureReporter::QueryFailureReporter(AppContext& ctx, QObject* parent)
    : QObject(parent), m_ctx(ctx)
{
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &QueryFailureReporter::startProbe);
    if (m_ctx.db)
        connect(m_ctx.db, &DbLink::connectionLost, this, &QueryFailureReporter::noteLost);
}

QueryFailureReporter::~QueryFailureReporter() = default;

void QueryFailureReporter::report(const DbError& error, QWidget* parent, FailureOrigin origin)
{
    if (!error.isError())
        return;
    ++m_failures;
    if (parent && !m_failedIn.contains(parent))
        m_failedIn.append(parent);
    // A lost main connection is heard of from the link itself; an unreachable
    // server met on any connection starts the same watch, but a connection
    // that still works is kept when the server answers again.
    if ((error.cause == DbFailureCause::Unreachable || databaseFileGone()) && !m_locked)
        noteLost();
    else if (m_locked || lockedByWriter(error, m_ctx.dbKind()))
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

void QueryFailureReporter::refillNow(QWidget* view, const std::function<void()>& refill)
{
    const auto previous = m_failedBeforeReturn;
    m_failedBeforeReturn.append(view);
    const bool wasRefilling = std::exchange(m_refilling, true);
    refill();
    m_refilling = wasRefilling;
    m_failedBeforeReturn = previous;
}

bool QueryFailureReporter::databaseFileGone() const
{
    // A file is looked at, not read: no wait on anything.
    return m_ctx.db && m_ctx.db->kind() == DbKind::SQLite &&
           !QFileInfo::exists(m_ctx.db->settings().file);
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
    DbLink* db = m_ctx.db;
    if (!db)
        return false;
    if (!m_lost) {
        // Each read of a locked file sleeps its busy time-out: the refresh
        // leaves it to the probe, and an action that failed already does not
        // try its remaining reads.
        if (m_locked)
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
    const Reopened back =
        db->call([pending = m_pending](Database& d) { return reopenAndRun(d, pending, true); });
    --m_userWaits;
    if (active && wasEnabled)
        active->setEnabled(true);
    if (!m_lost)
        return true; // the background probe reconnected meanwhile
    if (back.error.isError())
        return false;
    reconnected(back.error, back.failed);
    return true;
}

void QueryFailureReporter::runWhenBack(const QString& sql)
{
    if (!m_pending.contains(sql))
        m_pending.append(sql);
    savePending();
    noteLost();
}

void QueryFailureReporter::keepPendingIn(const QString& file)
{
    m_pendingFile = file;
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly))
        return;
    for (const QJsonValue& v : QJsonDocument::fromJson(in.readAll()).array()) {
        if (v.isString() && !m_pending.contains(v.toString()))
            m_pending.append(v.toString());
    }
}

void QueryFailureReporter::savePending() const
{
    if (m_pendingFile.isEmpty())
        return;
    if (m_pending.isEmpty()) {
        QFile::remove(m_pendingFile);
        return;
    }
    QSaveFile out(m_pendingFile);
    if (!out.open(QIODevice::WriteOnly))
        return;
    out.write(QJsonDocument(QJsonArray::fromStringList(m_pending)).toJson(QJsonDocument::Compact));
    out.commit();
}

void QueryFailureReporter::runPending()
{
    if (!m_ctx.db || m_pending.isEmpty())
        return;
    m_ctx.db->post(
        this, [pending = m_pending](Database& d) { return reopenAndRun(d, pending, false); },
        [this, sent = m_pending](const Reopened& r) {
            // Statements added meanwhile stay, and so do those that failed.
            QStringList keep = r.failed;
            for (const QString& sql : std::as_const(m_pending)) {
                if (!sent.contains(sql) && !keep.contains(sql))
                    keep.append(sql);
            }
            m_pending = keep;
            savePending();
        });
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
        m_locked = false;
        m_delayMs = m_firstDelayMs;
    }
    if (!m_retry.isActive() && !m_probe && !m_reconnecting)
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
    if (m_probe || m_reconnecting || !m_ctx.db || !(m_lost || m_locked))
        return;
    m_probe = true;
    // A probe of a silent server may outlast the console: nobody waits for it.
    QPointer<QueryFailureReporter> self(this);
    std::thread([self, lost = m_lost, settings = m_ctx.db->settings()] {
        const bool answered = lost ? Database::reachable(settings) : answersReads(settings);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, answered] {
                if (self) {
                    self->m_probe = false;
                    self->probeFinished(answered);
                }
            },
            Qt::QueuedConnection);
    }).detach();
}

void QueryFailureReporter::probeFinished(bool reachable)
{
    if (m_lost) {
        if (reachable) {
            reconnect();
            return;
        }
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

void QueryFailureReporter::reconnect()
{
    DbLink* db = m_ctx.db;
    if (!db || m_reconnecting)
        return;
    m_reconnecting = true;
    db->post(
        this, [pending = m_pending](Database& d) { return reopenAndRun(d, pending, false); },
        [this](const Reopened& r) {
            m_reconnecting = false;
            if (!m_lost)
                return; // a user's action reconnected meanwhile
            reconnected(r.error, r.failed);
        });
}

void QueryFailureReporter::reconnected(const DbError& opened, const QStringList& failed)
{
    if (opened.isError()) {
        m_delayMs = std::min(m_delayMs * 2, m_longestDelayMs);
        m_retry.start(m_delayMs);
        return;
    }
    m_pending = failed;
    savePending();
    m_lost = false;
    m_outage = false;
    m_retry.stop();
    m_delayMs = m_firstDelayMs;
    announceBack();
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
