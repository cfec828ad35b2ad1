#pragma once

#include "model/RowCursor.h"

#include <QSqlDatabase>

struct sqlite3;
struct pg_conn;
struct pg_result;

namespace sx::detail {

// Reads straight from the driver's own handle: QSqlQuery costs three times
// the raw driver on a year of records, and PostgreSQL date-times even more.
[[nodiscard]] std::unique_ptr<CursorBackend> sqliteCursor(sqlite3* db, const QString& sql,
                                                          DbError& failure);
[[nodiscard]] std::unique_ptr<CursorBackend> pgCursor(pg_conn* conn, const QString& sql,
                                                      DbError& failure, int deadlineMs);
// Any other Qt driver (ODBC, OCI).
[[nodiscard]] std::unique_ptr<CursorBackend> qtCursor(const QSqlDatabase& db, const QString& sql,
                                                      DbError& failure);

// Statements without rows; rowsAffected may be null.
[[nodiscard]] DbError sqliteExec(sqlite3* db, const QString& sql, qint64* rowsAffected);
[[nodiscard]] DbError pgExec(pg_conn* conn, const QString& sql, qint64* rowsAffected,
                             int deadlineMs);
[[nodiscard]] DbError qtExec(const QSqlDatabase& db, const QString& sql, qint64* rowsAffected);

[[nodiscard]] sqlite3* sqliteHandle(const QSqlDatabase& db);
[[nodiscard]] pg_conn* pgHandle(const QSqlDatabase& db);
// Sends `sql` and waits for its result at most `deadlineMs`. On the GUI
// thread the wait keeps timers and painting going (user input waits), so a
// silent server never freezes the window. Null with `failure` set on any
// error; a missed deadline leaves the connection unusable (the caller drops it).
[[nodiscard]] pg_result* pgRun(pg_conn* conn, const QByteArray& sql, int deadlineMs,
                               DbError& failure);
inline constexpr char16_t kDeadlineMissed[] = u"The server did not answer in time.";

// true when a PostgreSQL server answers at that address (accepting or not).
[[nodiscard]] bool pgReachable(const QString& host, const QString& port, const QString& dbName);

// false when the server connection has been lost.
[[nodiscard]] bool pgConnectionOk(pg_conn* conn);

} // namespace sx::detail
