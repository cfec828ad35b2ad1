#pragma once

#include "model/RowCursor.h"

#include <QDeadlineTimer>
#include <QSqlDatabase>

#include <atomic>

struct sqlite3;
struct pg_conn;
struct pg_result;

namespace sx::detail {

// Reads straight from the driver's own handle: QSqlQuery costs three times
// the raw driver on a year of records, and PostgreSQL date-times even more.
[[nodiscard]] std::unique_ptr<CursorBackend> sqliteCursor(sqlite3* db, const QString& sql,
                                                          DbError& failure);
[[nodiscard]] std::unique_ptr<CursorBackend> pgCursor(pg_conn* conn, const QString& sql,
                                                      DbError& failure, int deadlineMs,
                                                      const std::atomic<bool>* abort = nullptr);
// Any other Qt driver (ODBC, OCI).
[[nodiscard]] std::unique_ptr<CursorBackend> qtCursor(const QSqlDatabase& db, const QString& sql,
                                                      DbError& failure);

// Statements without rows; rowsAffected may be null.
[[nodiscard]] DbError sqliteExec(sqlite3* db, const QString& sql, qint64* rowsAffected);
[[nodiscard]] DbError pgExec(pg_conn* conn, const QString& sql, qint64* rowsAffected,
                             int deadlineMs, const std::atomic<bool>* abort = nullptr);
[[nodiscard]] DbError qtExec(const QSqlDatabase& db, const QString& sql, qint64* rowsAffected);

[[nodiscard]] sqlite3* sqliteHandle(const QSqlDatabase& db);

// What may stop an SQLite statement: its deadline (a failure of cause Slow,
// the connection stays) or the console ending.
struct StatementWatch {
    QDeadlineTimer deadline{QDeadlineTimer::Forever};
    const std::atomic<bool>* abort = nullptr;
};
// Interrupts the statements of `db` as `watch` says; null removes the watch.
void sqliteWatch(sqlite3* db, const StatementWatch* watch);
[[nodiscard]] pg_conn* pgHandle(const QSqlDatabase& db);
// Sends `sql` and waits for its result. Past `deadlineMs` the server is asked
// to cancel the statement: its answer comes back as a failure of cause Slow,
// and the connection stays. A server that answers neither the statement nor
// the cancel within kCancelGraceMs, or a set `abort`, leaves the connection
// unusable (the caller drops it). Null with `failure` set on any error.
[[nodiscard]] pg_result* pgRun(pg_conn* conn, const QByteArray& sql, int deadlineMs,
                               DbError& failure, const std::atomic<bool>* abort = nullptr);
inline constexpr int kCancelGraceMs = 3000;
// Set once when the console ends: every statement of every connection is
// abandoned at once (side reads included), so the end never waits on a server.
[[nodiscard]] std::atomic<bool>& consoleEnding();
inline constexpr char16_t kDeadlineMissed[] = u"The server did not answer in time.";
inline constexpr char16_t kAborted[] = u"The statement was abandoned.";

// true when a PostgreSQL server answers at that address (accepting or not).
[[nodiscard]] bool pgReachable(const QString& host, const QString& port, const QString& dbName);

// true when the connection is open and outside a transaction.
[[nodiscard]] bool pgIdle(pg_conn* conn);

// false when the server connection has been lost.
[[nodiscard]] bool pgConnectionOk(pg_conn* conn);

} // namespace sx::detail
