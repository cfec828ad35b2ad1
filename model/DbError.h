#pragma once

#include <QString>

class QSqlError;

namespace sx {

// What went wrong when the shared database could not be opened or used.
// The cause picks the explanation for servers that do not speak in ORA codes.
enum class DbFailureCause {
    Unknown,
    Unreachable, // no route, refused, timed out
    Authentication,
    NoSuchDatabase,
    StartingUp,
    ShuttingDown,
    Slow,                // the server did not answer in time; the statement was cancelled
    CertificateRejected, // TLS: the server's certificate could not be verified
};

struct DbError {
    qint32 number = 0;
    QString description;
    DbFailureCause cause = DbFailureCause::Unknown;

    [[nodiscard]] bool isError() const { return number != 0 || !description.isEmpty(); }
};

// The number that provider errors carry when the driver gives none of its own.
inline constexpr qint32 kProviderErrorNumber = -2147467259; // 0x80004005

// The Greek explanation of a failed operation, picked by the ORA code in the
// description (wherever the driver put it), or the unknown-error text.
[[nodiscard]] QString explainDbError(qint32 number, const QString& description);

// The same header, with the causes chosen by what really went wrong when the
// description carries no ORA code (SQLite, PostgreSQL).
[[nodiscard]] QString explainDbError(const DbError& error);

// Reads the cause of a failure from the server's message and SQLSTATE.
[[nodiscard]] DbFailureCause classifyFailure(const QString& message, const QString& sqlState);

// A DbError from what Qt SQL reports.
[[nodiscard]] DbError dbErrorFromSql(const QSqlError& error);

} // namespace sx
