#pragma once

#include "model/RowCursor.h"

#include <QSqlDatabase>

struct sqlite3;
struct pg_conn;

namespace sx::detail {

// Reads straight from the driver's own handle: QSqlQuery costs three times
// the raw driver on a year of records, and PostgreSQL date-times even more.
[[nodiscard]] std::unique_ptr<CursorBackend> sqliteCursor(sqlite3* db, const QString& sql,
                                                          DbError& failure);
[[nodiscard]] std::unique_ptr<CursorBackend> pgCursor(pg_conn* conn, const QString& sql,
                                                      DbError& failure);
// Any other Qt driver (ODBC, OCI).
[[nodiscard]] std::unique_ptr<CursorBackend> qtCursor(const QSqlDatabase& db, const QString& sql,
                                                      DbError& failure);

// Statements without rows; rowsAffected may be null.
[[nodiscard]] DbError sqliteExec(sqlite3* db, const QString& sql, qint64* rowsAffected);
[[nodiscard]] DbError pgExec(pg_conn* conn, const QString& sql, qint64* rowsAffected);
[[nodiscard]] DbError qtExec(const QSqlDatabase& db, const QString& sql, qint64* rowsAffected);

[[nodiscard]] sqlite3* sqliteHandle(const QSqlDatabase& db);
[[nodiscard]] pg_conn* pgHandle(const QSqlDatabase& db);
// false when the server connection has been lost.
[[nodiscard]] bool pgConnectionOk(pg_conn* conn);

} // namespace sx::detail
