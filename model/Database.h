#pragma once

#include "model/ConnectionSettings.h"
#include "model/DbError.h"
#include "model/RowCursor.h"

#include <QSqlDatabase>
#include <QString>

#include <atomic>
#include <memory>
#include <variant>

namespace sx {

namespace detail {
struct StatementWatch;
}

// A value written into a row: NULL, whole number, real, text or a date-time
// (seconds since 1970, wall clock).
struct SqlDateTimeValue {
    qint64 secs = 0;
};
using SqlValue = std::variant<std::monostate, qint64, double, QString, SqlDateTimeValue>;
struct SqlAssignment {
    SqlAssignment(QStringView c, SqlValue v) : column(c.toString()), value(std::move(v)) {}
    QString column;
    SqlValue value;
};

// The one connection to the shared database. Reads go through the driver's
// own handle where Qt gives one (SQLite, PostgreSQL); writes are literal SQL
// with every value escaped.
class Database {
public:
    enum class OpenMode { Existing, CreateIfMissing };

    Database();
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // An empty result means the database is open.
    DbError open(const ConnectionSettings& settings, OpenMode mode = OpenMode::Existing);
    void close();
    [[nodiscard]] bool isOpen() const;
    // Closes and opens again with the same settings (after a lost connection).
    DbError reopen();
    // true when a connection with these settings would be answered now. It may
    // block for the connect time-out: call it away from the GUI thread.
    [[nodiscard]] static bool reachable(const ConnectionSettings& settings);
    // true when the last failure came from a connection that is gone.
    [[nodiscard]] bool connectionLost() const;

    [[nodiscard]] DbKind kind() const { return m_settings.kind; }
    [[nodiscard]] const ConnectionSettings& settings() const { return m_settings; }
    [[nodiscard]] QSqlDatabase qtDatabase() const;

    // Runs a read query; the result carries its own error.
    [[nodiscard]] Rows read(const QString& sql);
    // At most the first row.
    [[nodiscard]] Rows readFirst(const QString& sql);
    // true when the query yields at least one row; a failure is reported in `error`.
    [[nodiscard]] bool exists(const QString& sql, DbError* error = nullptr);

    // A statement without rows.
    DbError exec(const QString& sql, qint64* rowsAffected = nullptr);
    DbError insertRow(QStringView table, const QList<SqlAssignment>& values);
    DbError updateRows(QStringView table, const QList<SqlAssignment>& values, const QString& where,
                       qint64* rowsAffected = nullptr);
    DbError deleteRows(QStringView table, const QString& where, qint64* rowsAffected = nullptr);

    DbError begin();
    DbError commit();
    DbError rollback();

    // The SQL literal of a value in this database's dialect.
    [[nodiscard]] QString literal(const SqlValue& value) const;

    // Reads through QSqlQuery even where a native handle exists (for comparison).
    void setNativeReads(bool on) { m_native = on; }

    // How long a statement may run before it is cancelled and fails as slow
    // (a negative value waits for ever). The connection stays; only a server
    // that does not answer the cancel either is taken for gone.
    void setDeadline(int ms) { m_deadlineMs = ms; }
    [[nodiscard]] int deadline() const { return m_deadlineMs; }
    // Set from any thread: the running statement is abandoned at once (the
    // connection with it) and no other starts. Used when the console ends.
    void setAbortFlag(const std::atomic<bool>* abort) { m_abort = abort; }

    // The console's windows never wait for the network. With the guard on
    // (SX_GUI_THREAD_GUARD=1 in the environment, as the tests run), a
    // statement started on the GUI thread ends the process, unless the
    // connection belongs to a tool without windows or to a test's own set-up.
    static void setGuiThreadGuard(bool on);
    // The console ends: every statement of every connection, side reads
    // included, is abandoned at once, so the end never waits on a server.
    static void abandonAll(bool on = true);
    [[nodiscard]] static bool guiThreadGuard();
    void allowGuiThread() { m_guiThreadAllowed = true; }

    // The server cancels a statement after this long; the console's own
    // deadline is a little longer so the server's answer wins when it has one.
    static constexpr int kStatementTimeoutMs = 30000;
    static constexpr int kDefaultDeadlineMs = kStatementTimeoutMs + 5000;
    // A writer may hold an SQLite file this long before a read gives up.
    static constexpr int kSqliteBusyTimeoutMs = 150;

private:
    DbError noteFailure(DbError e);
    void startStatement(const QString& sql);
    DbError fileGone();
    [[nodiscard]] Rows readOnce(const QString& sql);
    // Reopens a connection lost outside a transaction when another server may
    // have taken over; true when it worked.
    [[nodiscard]] bool failOver();

    QString m_name;
    ConnectionSettings m_settings;
    OpenMode m_mode = OpenMode::Existing;
    bool m_native = true;
    bool m_lost = false;
    bool m_failOver = false;
    bool m_wasIdle = false;  // outside a transaction when the last statement began
    bool m_lostIdle = false; // ... when the connection was lost
    bool m_guiThreadAllowed = false;
    int m_deadlineMs = kDefaultDeadlineMs;
    const std::atomic<bool>* m_abort = nullptr;
    std::unique_ptr<detail::StatementWatch> m_watch;
};

} // namespace sx
