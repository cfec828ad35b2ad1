#pragma once

#include "model/ConnectionSettings.h"
#include "model/DbError.h"
#include "model/RowCursor.h"

#include <QSqlDatabase>
#include <QString>

#include <variant>

namespace sx {

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
    DbError updateRows(QStringView table, const QList<SqlAssignment>& values,
                       const QString& where, qint64* rowsAffected = nullptr);
    DbError deleteRows(QStringView table, const QString& where, qint64* rowsAffected = nullptr);

    DbError begin();
    DbError commit();
    DbError rollback();

    // The SQL literal of a value in this database's dialect.
    [[nodiscard]] QString literal(const SqlValue& value) const;

    // Reads through QSqlQuery even where a native handle exists (for comparison).
    void setNativeReads(bool on) { m_native = on; }

private:
    DbError noteFailure(DbError e);

    QString m_name;
    ConnectionSettings m_settings;
    OpenMode m_mode = OpenMode::Existing;
    bool m_native = true;
    bool m_lost = false;
};

} // namespace sx
