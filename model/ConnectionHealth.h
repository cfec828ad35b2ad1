#pragma once

#include "model/DbError.h"

#include <QObject>
#include <QStringList>
#include <QTimer>

namespace sx {

class DbLink;

// The console connection's health, without a word to the user: a lost
// connection (an unreachable server, a database file gone) or a file a
// writer holds is watched from here. Away from the GUI thread and less often
// the longer the outage lasts, a probe asks whether the database answers
// again; then the connection is reopened on its own thread and back() is
// emitted. Statements that must still run are kept (in a file, when one is
// named) and run first after reconnecting.
class ConnectionHealth : public QObject {
    Q_OBJECT
public:
    explicit ConnectionHealth(DbLink* db, QObject* parent = nullptr);
    ~ConnectionHealth() override;

    // A statement failed: an unreachable server or a vanished file starts
    // the watch for its return, a writer's lock the watch for its end.
    void noteFailure(const DbError& error);
    void noteLost();
    [[nodiscard]] bool lost() const { return m_lost; }
    [[nodiscard]] bool locked() const { return m_locked; }
    // A read got through: a writer's lock ended before the probe noticed.
    void noteReadThrough();

    // For an action someone waits for: probe and reopen now, waiting in an
    // event loop that lets everything through. True when the connection works.
    [[nodiscard]] bool reconnectNow();

    void runWhenBack(const QString& sql);
    [[nodiscard]] QStringList pendingStatements() const { return m_pending; }
    void keepPendingIn(const QString& file);
    void runPending();

    // Back-off of the probes: first wait, doubled up to the longest.
    void setRetryDelays(int firstMs, int longestMs);

signals:
    // The database answers again: `reconnected` after a lost connection,
    // otherwise a writer's lock ended.
    void back(bool reconnected);

private:
    void noteLocked();
    void startProbe();
    void probeFinished(bool reachable);
    void reconnect();
    void reconnected(const DbError& opened, const QStringList& failed);
    [[nodiscard]] bool databaseFileGone() const;
    void savePending() const;

    DbLink* m_db;
    bool m_lost = false;
    bool m_locked = false;
    int m_firstDelayMs = 500;
    int m_longestDelayMs = 5000;
    int m_delayMs = 500;
    bool m_reconnecting = false;
    bool m_probe = false;
    QTimer m_retry;
    QString m_pendingFile;
    QStringList m_pending;
};

} // namespace sx
