#pragma once

#include "model/ConnectionSettings.h"

#include <QDateTime>
#include <QString>

namespace sx {

// The date-range clause appended right after a date column name. Access and
// Oracle get the literal forms their drivers parse; SQLite and PostgreSQL
// compare with the stored "YYYY-MM-DD HH:MM:SS" form. Both ends are included.
[[nodiscard]] QString sqlDateRange(DbKind kind, const QDateTime& from, const QDateTime& to);

// A text value as an SQL literal: between single quotes, a quote doubled.
[[nodiscard]] QString sqlQuote(QStringView text);

// The same query limited to its first row where the dialect can say so in SQL;
// for the others the reader stops after one row.
[[nodiscard]] QString sqlFirstRowOnly(DbKind kind, const QString& select);

// A date-time literal for the kind (seconds since 1970, wall clock).
[[nodiscard]] QString sqlDateTimeLiteral(DbKind kind, qint64 secs);

// true when bit `bit` (0 to 7) of `value` is 0.
[[nodiscard]] constexpr bool isBitClear(quint8 value, int bit)
{
    return bit < 0 || bit > 7 || (value & (1u << bit)) == 0;
}

} // namespace sx
