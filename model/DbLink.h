#pragma once

#include "model/ConnectionSettings.h"
#include "model/DbError.h"

#include <QObject>
#include <QPointer>

class QThread;

#include <functional>
#include <memory>
#include <optional>
#include <type_traits>

namespace sx {

class Database;

// The console's connection, kept on a thread of its own so that no window
// ever waits for the network. Work is posted as a job that receives the
// connection; jobs run one after another in the order posted, and their
// results come back on the thread that owns this object.
class DbLink : public QObject {
    Q_OBJECT
public:
    // A job's deadline: the link's default for user actions.
    static constexpr int kDefaultDeadline = -2;

    explicit DbLink(QObject* parent = nullptr);
    // Ends the thread; a statement waiting for a silent server is abandoned.
    ~DbLink() override;

    // The settings of the last open (known at once, before the open ends).
    [[nodiscard]] const ConnectionSettings& settings() const { return m_settings; }
    [[nodiscard]] DbKind kind() const { return m_settings.kind; }

    // Opens and waits for the open as call() waits.
    DbError openAndWait(const ConnectionSettings& settings);
    // Closes the connection, then calls `done`.
    void close(QObject* receiver = nullptr, std::function<void()> done = {});

    // Runs `job(db)` on the worker, then `done(result)` on the receiver's
    // thread, unless the receiver is gone by then. `done` may run after the
    // caller's frame has ended: it captures values, never references. Once
    // shutdown() has begun neither runs.
    template <class Job, class Done>
    void post(QObject* receiver, Job job, Done done, int deadlineMs = kDefaultDeadline)
    {
        using R = std::invoke_result_t<Job&, Database&>;
        auto result = std::make_shared<std::optional<R>>();
        enqueue([job = std::move(job), result](Database& db) mutable { result->emplace(job(db)); },
                receiver,
                [done = std::move(done), result]() mutable {
                    // A job cut short by the shutdown has no result to give.
                    if (*result)
                        done(std::move(**result));
                },
                deadlineMs);
    }

    // Runs `job(db)` on the worker and returns its result. The calling thread
    // keeps serving every event meanwhile (the caller disables what must not
    // take input), so a timer or a box of another view goes on while it waits.
    // Once shutdown() has begun the job does not run and R{} comes back.
    template <class Job>
    auto call(Job job, int deadlineMs = kDefaultDeadline) -> std::invoke_result_t<Job&, Database&>
    {
        using R = std::invoke_result_t<Job&, Database&>;
        if constexpr (std::is_void_v<R>) {
            waitFor([&job](Database& db) { job(db); }, deadlineMs);
        } else {
            std::optional<R> result;
            waitFor([&job, &result](Database& db) { result.emplace(job(db)); }, deadlineMs);
            return result ? std::move(*result) : R{};
        }
    }

    // Calls `fn` once no job is queued or running (at once when idle).
    void whenIdle(QObject* receiver, std::function<void()> fn);

    // true while a job is queued or running.
    [[nodiscard]] bool busy() const { return m_pending > 0; }
    // The deadline of jobs posted without one.
    void setDefaultDeadline(int ms) { m_defaultDeadline = ms; }
    [[nodiscard]] int defaultDeadline() const { return m_defaultDeadline; }

    // Abandons the running statement and every queued job, and refuses new
    // ones: the console ends.
    void shutdown();
    [[nodiscard]] bool shuttingDown() const;

    // Changes whenever the connection may be a different one (opened, closed,
    // found lost): what a console learnt of the database holds while it stays.
    // Safe to read from any thread, a job's included.
    [[nodiscard]] quint64 connectionNumber() const;

    // Used by the tests: the connection as seen from the worker, after the queue.
    [[nodiscard]] bool isOpen();

signals:
    // A job found the connection gone (closed, or its server lost).
    void connectionLost();

private:
    struct Shared;

    // false when refused (after shutdown()).
    bool enqueue(std::function<void(Database&)> job, QObject* receiver, std::function<void()> done,
                 int deadlineMs);
    void waitFor(std::function<void(Database&)> job, int deadlineMs);
    void finished(const QPointer<QObject>& receiver, bool hadReceiver,
                  const std::function<void()>& done, bool lost);

    ConnectionSettings m_settings;
    std::shared_ptr<Shared> m_shared;
    QThread* m_thread = nullptr;
    int m_pending = 0;
    int m_defaultDeadline;
    QList<QPair<QPointer<QObject>, std::function<void()>>> m_idleWaiters;
};

} // namespace sx
