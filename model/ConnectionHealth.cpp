#include "model/ConnectionHealth.h"

#include "model/Database.h"
#include "model/DbLink.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPointer>
#include <QSaveFile>

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

ConnectionHealth::ConnectionHealth(DbLink* db, QObject* parent) : QObject(parent), m_db(db)
{
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &ConnectionHealth::startProbe);
    if (m_db)
        connect(m_db, &DbLink::connectionLost, this, &ConnectionHealth::noteLost);
}

ConnectionHealth::~ConnectionHealth() = default;

void ConnectionHealth::noteFailure(const DbError& error)
{
    // A lost main connection is heard of from the link itself; an unreachable
    // server met on any connection starts the same watch, but a connection
    // that still works is kept when the server answers again.
    if ((error.cause == DbFailureCause::Unreachable || databaseFileGone()) && !m_locked)
        noteLost();
    else if (m_locked || (m_db && lockedByWriter(error, m_db->kind())))
        noteLocked();
}

void ConnectionHealth::noteReadThrough()
{
    if (m_lost || !m_locked)
        return;
    m_locked = false;
    m_retry.stop();
    m_delayMs = m_firstDelayMs;
    emit back(false);
}

bool ConnectionHealth::databaseFileGone() const
{
    // A file is looked at, not read: no wait on anything.
    return m_db && m_db->kind() == DbKind::SQLite && !QFileInfo::exists(m_db->settings().file);
}

bool ConnectionHealth::reconnectNow()
{
    // Once the console ends nothing reconnects; the statements left wait for the next start.
    if (!m_db || m_db->shuttingDown())
        return false;
    const Reopened r =
        m_db->call([pending = m_pending](Database& d) { return reopenAndRun(d, pending, true); });
    if (!m_lost)
        return true; // the background probe reconnected meanwhile
    if (r.error.isError())
        return false;
    reconnected(r.error, r.failed);
    return true;
}

void ConnectionHealth::runWhenBack(const QString& sql)
{
    if (!m_pending.contains(sql))
        m_pending.append(sql);
    savePending();
    noteLost();
}

void ConnectionHealth::keepPendingIn(const QString& file)
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

void ConnectionHealth::savePending() const
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

void ConnectionHealth::runPending()
{
    if (!m_db || m_pending.isEmpty())
        return;
    m_db->post(
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

void ConnectionHealth::setRetryDelays(int firstMs, int longestMs)
{
    m_firstDelayMs = firstMs;
    m_longestDelayMs = longestMs;
    m_delayMs = firstMs;
}

void ConnectionHealth::noteLost()
{
    if (!m_lost) {
        m_lost = true;
        m_locked = false;
        m_delayMs = m_firstDelayMs;
    }
    if (!m_retry.isActive() && !m_probe && !m_reconnecting)
        m_retry.start(m_delayMs);
}

void ConnectionHealth::noteLocked()
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

void ConnectionHealth::startProbe()
{
    if (m_probe || m_reconnecting || !m_db || m_db->shuttingDown() || !(m_lost || m_locked))
        return;
    m_probe = true;
    // A probe of a silent server may outlast the console: nobody waits for it.
    QPointer<ConnectionHealth> self(this);
    std::thread([self, lost = m_lost, settings = m_db->settings()] {
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

void ConnectionHealth::probeFinished(bool reachable)
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
            emit back(false);
            return;
        }
    } else {
        return;
    }
    // A long outage costs one probe every few seconds, not one per refresh.
    m_delayMs = std::min(m_delayMs * 2, m_longestDelayMs);
    m_retry.start(m_delayMs);
}

void ConnectionHealth::reconnect()
{
    if (!m_db || m_reconnecting)
        return;
    m_reconnecting = true;
    m_db->post(
        this, [pending = m_pending](Database& d) { return reopenAndRun(d, pending, false); },
        [this](const Reopened& r) {
            m_reconnecting = false;
            if (!m_lost)
                return; // an action someone waited for reconnected meanwhile
            reconnected(r.error, r.failed);
        });
}

void ConnectionHealth::reconnected(const DbError& opened, const QStringList& failed)
{
    if (opened.isError()) {
        m_delayMs = std::min(m_delayMs * 2, m_longestDelayMs);
        m_retry.start(m_delayMs);
        return;
    }
    m_pending = failed;
    savePending();
    m_lost = false;
    m_retry.stop();
    m_delayMs = m_firstDelayMs;
    emit back(true);
}

} // namespace sx
