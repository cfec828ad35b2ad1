#pragma once

#include "model/ConnectionHealth.h"
#include "model/DbError.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>

#include <functional>

class QWidget;

namespace sx {

struct AppContext;

// Who started the work that failed: the periodic refresh is explained once
// per outage, anything the user started is always explained, and a side
// query whose action reports its own failure right after is not explained.
enum class FailureOrigin { Refresh, User, Quiet };

// What the user hears of the connection: every failed query after start-up is
// reported here. The connection's health (ConnectionHealth) watches for the
// database's return and reconnects; this decides which failures a box
// explains, and on the return emits databaseBack() so that the views that
// failed refill. The box of a refresh failure never holds the caller: it is
// shown from the event loop, and the watch goes on behind it.
class QueryFailureReporter : public QObject {
    Q_OBJECT
public:
    explicit QueryFailureReporter(AppContext& ctx, QObject* parent = nullptr);
    ~QueryFailureReporter() override;

    void report(const DbError& error, QWidget* parent,
                FailureOrigin origin = FailureOrigin::Refresh);
    void reportAction(const DbError& error, QWidget* parent)
    {
        report(error, parent, FailureOrigin::User);
    }
    // One user action (a view change) that runs several queries: the user
    // hears of its first failure only.
    class Action {
    public:
        explicit Action(QueryFailureReporter* r) : m_r(r)
        {
            if (m_r && m_r->m_actionDepth++ == 0)
                m_r->m_actionReported = false;
        }
        ~Action()
        {
            if (m_r)
                --m_r->m_actionDepth;
        }
        Action(const Action&) = delete;
        Action& operator=(const Action&) = delete;

    private:
        QueryFailureReporter* m_r;
    };

    // A user's action waits for a worker: a refresh failing meanwhile leaves
    // the telling to that action.
    class UserWait {
    public:
        explicit UserWait(QueryFailureReporter* r) : m_r(r)
        {
            if (m_r)
                ++m_r->m_userWaits;
        }
        ~UserWait()
        {
            if (m_r)
                --m_r->m_userWaits;
        }
        UserWait(const UserWait&) = delete;
        UserWait& operator=(const UserWait&) = delete;

    private:
        QueryFailureReporter* m_r;
    };

    // A round of queries succeeded: the next failure is news again.
    void clear();
    // The same for a round that began when failureCount() was `seen`: a
    // failure met since then, elsewhere, is not forgotten by it.
    void clearSince(quint64 seen)
    {
        if (seen == m_failures)
            clear();
    }
    [[nodiscard]] quint64 failureCount() const { return m_failures; }
    [[nodiscard]] bool inOutage() const { return m_outage; }
    [[nodiscard]] bool connectionLost() const { return m_health->lost(); }
    // A writer held the database when a query failed, and no read got through since.
    [[nodiscard]] bool lockedOut() const { return m_health->locked(); }
    // Before queries: true when the connection is usable. A lost connection
    // is only reopened once the server has answered a probe; the refresh
    // never waits for that. A user's action has the probe and the reopen run
    // at once and waits for them (events keep flowing, the active window is
    // disabled meanwhile).
    [[nodiscard]] bool ensureConnection(FailureOrigin origin = FailureOrigin::Refresh);
    [[nodiscard]] int reportsShown() const { return m_shown; }
    // Refills `view` as after a return: it counts as failed during `refill`.
    void refillNow(QWidget* view, const std::function<void()>& refill);
    // Whether `view` (or a window inside it) had a failure since the last good round.
    [[nodiscard]] bool failedIn(const QWidget* view) const;

    // A statement that must still run (a request row to remove) when the
    // connection could not run it; runs first thing after reconnecting, or
    // at the next start when the console ends first (kept in `file`).
    void runWhenBack(const QString& sql) { m_health->runWhenBack(sql); }
    [[nodiscard]] QStringList pendingStatements() const { return m_health->pendingStatements(); }
    void keepPendingIn(const QString& file) { m_health->keepPendingIn(file); }
    // Runs the statements left over now (after the first connect).
    void runPending() { m_health->runPending(); }

    // Back-off of the reconnect probes: first wait, doubled up to the longest.
    void setRetryDelays(int firstMs, int longestMs)
    {
        m_health->setRetryDelays(firstMs, longestMs);
    }
    // How long a refresh's statements may wait for the server.
    [[nodiscard]] int refreshDeadlineMs() const { return m_refreshDeadlineMs; }
    void setRefreshDeadlineMs(int ms) { m_refreshDeadlineMs = ms; }

signals:
    // The lost connection works again, or a writer's lock ended; views refill
    // from whatever state they are in. A refill that fails again is a
    // failure of the refresh, not a new one of the user's.
    void databaseBack();

private:
    void announceBack();
    void showBox(const DbError& error, QWidget* parent, FailureOrigin origin);

    AppContext& m_ctx;
    ConnectionHealth* m_health;
    bool m_outage = false;
    bool m_refilling = false;
    int m_shown = 0;
    quint64 m_failures = 0;
    int m_userWaits = 0;
    int m_actionDepth = 0;
    bool m_actionReported = false;
    int m_refreshDeadlineMs = 5000;
    QList<QPointer<QWidget>> m_failedIn;
    QList<QPointer<QWidget>> m_failedBeforeReturn;
    QList<QPointer<QWidget>> m_refillDue;
};

} // namespace sx
