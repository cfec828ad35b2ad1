#include "model/DbLink.h"

#include "model/Database.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QSemaphore>
#include <QThread>

#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <deque>
#include <mutex>

namespace sx {

namespace {

struct Item {
    std::function<void(Database&)> job;
    int deadlineMs = Database::kDefaultDeadlineMs;
    // Runs on the worker right after the job, with whether the connection is gone.
    std::function<void(bool lost)> after;
};

// A thread stuck in a connect (a name server that never answers) may outlive
// the link; what it uses is shared so that it stays valid until then.
constexpr unsigned long kEndWaitMs = 800;

} // namespace

struct DbLink::Shared {
    std::mutex mutex;
    std::condition_variable wake;
    std::deque<Item> queue;
    bool stop = false;
    std::atomic<bool> abort{false};
    std::atomic<quint64> connection{1};

    void run()
    {
        // The connection is made, used and dropped on this thread only.
        Database db;
        db.setAbortFlag(&abort);
        for (;;) {
            Item item;
            {
                std::unique_lock lock(mutex);
                wake.wait(lock, [this] { return stop || !queue.empty(); });
                if (queue.empty())
                    break;
                item = std::move(queue.front());
                queue.pop_front();
            }
            if (!abort.load()) {
                db.setDeadline(item.deadlineMs);
                item.job(db);
                // A reopen after this is another connection, maybe to another server.
                if (!db.isOpen() || db.connectionLost())
                    ++connection;
            }
            if (item.after)
                item.after(db.connectionLost());
        }
        db.close();
    }
};

DbLink::DbLink(QObject* parent)
    : QObject(parent), m_shared(std::make_shared<Shared>()),
      m_defaultDeadline(Database::kDefaultDeadlineMs)
{
    // A console starts: statements may run again (tests start many in one process).
    Database::abandonAll(false);
    m_thread = QThread::create([shared = m_shared] { shared->run(); });
    m_thread->setObjectName(QStringLiteral("sx-db-link"));
    m_thread->start();
}

DbLink::~DbLink()
{
    shutdown();
    {
        const std::lock_guard lock(m_shared->mutex);
        m_shared->stop = true;
    }
    m_shared->wake.notify_all();
    if (m_thread->wait(kEndWaitMs)) {
        delete m_thread;
        return;
    }
    // Stuck where no flag reaches (a connect waiting for a name server): the
    // thread ends with the process; its QThread is left to it.
    qWarning("The database thread did not end in time; it is left to end with the process.");
}

bool DbLink::shuttingDown() const
{
    return m_shared->abort.load();
}

void DbLink::shutdown()
{
    m_shared->abort = true;
}

bool DbLink::enqueue(std::function<void(Database&)> job, QObject* receiver,
                     std::function<void()> done, int deadlineMs)
{
    // The console ends: nothing more goes to the connection.
    if (shuttingDown())
        return false;
    ++m_pending;
    Item item;
    item.job = std::move(job);
    item.deadlineMs = deadlineMs == kDefaultDeadline ? m_defaultDeadline : deadlineMs;
    QPointer<DbLink> self(this);
    item.after = [self, receiver = QPointer<QObject>(receiver), hadReceiver = receiver != nullptr,
                  done = std::move(done)](bool lost) {
        // The link outlives its thread's work except when the console ends.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, receiver, hadReceiver, done, lost] {
                if (self)
                    self->finished(receiver, hadReceiver, done, lost);
            },
            Qt::QueuedConnection);
    };
    {
        const std::lock_guard lock(m_shared->mutex);
        m_shared->queue.push_back(std::move(item));
    }
    m_shared->wake.notify_one();
    return true;
}

void DbLink::finished(const QPointer<QObject>& receiver, bool hadReceiver,
                      const std::function<void()>& done, bool lost)
{
    --m_pending;
    if (lost)
        emit connectionLost();
    if (done && (!hadReceiver || receiver))
        done();
    if (m_pending > 0)
        return;
    for (const auto& [who, fn] : std::exchange(m_idleWaiters, {})) {
        if (who)
            fn();
    }
}

void DbLink::waitFor(std::function<void(Database&)> job, int deadlineMs)
{
    auto ran = std::make_shared<QSemaphore>();
    auto loop = std::make_shared<QEventLoop*>(nullptr);
    QEventLoop events;
    *loop = &events;
    if (!enqueue(
            [&job, ran](Database& db) {
                job(db);
                ran->release();
            },
            nullptr,
            [loop] {
                if (*loop)
                    (*loop)->quit();
            },
            deadlineMs))
        return;
    if (!ran->tryAcquire()) {
        events.exec();
        *loop = nullptr;
        if (!ran->tryAcquire()) {
            // The loop ended without the job: the console is ending. The job
            // holds references into this frame, so it is cut short and awaited.
            shutdown();
            if (!ran->tryAcquire(1, kEndWaitMs)) {
                // Stuck where no flag reaches (a connect waiting for a name
                // server): the console ends now rather than hang.
                qWarning("The database thread did not end in time; the console ends.");
                std::quick_exit(0);
            }
        }
    }
    *loop = nullptr;
}

DbError DbLink::openAndWait(const ConnectionSettings& settings)
{
    m_settings = settings;
    return call([settings, shared = m_shared](Database& db) {
        ++shared->connection;
        return db.open(settings);
    });
}

quint64 DbLink::connectionNumber() const
{
    return m_shared->connection.load();
}

void DbLink::close(QObject* receiver, std::function<void()> done)
{
    enqueue([](Database& db) { db.close(); }, receiver, std::move(done), m_defaultDeadline);
}

void DbLink::whenIdle(QObject* receiver, std::function<void()> fn)
{
    if (!busy()) {
        fn();
        return;
    }
    m_idleWaiters.append({QPointer<QObject>(receiver), std::move(fn)});
}

bool DbLink::isOpen()
{
    return call([](Database& db) { return db.isOpen(); });
}

} // namespace sx
