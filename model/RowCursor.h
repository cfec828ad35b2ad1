#pragma once

#include "model/DbError.h"

#include <QString>

#include <memory>
#include <optional>

namespace sx {

// One driver's way of walking the rows of a read query.
class CursorBackend {
public:
    virtual ~CursorBackend() = default;
    // false at the end, or on an error that error() then describes.
    virtual bool next() = 0;
    [[nodiscard]] virtual int columnCount() const = 0;
    [[nodiscard]] virtual QString columnName(int c) const = 0;
    [[nodiscard]] virtual bool isNull(int c) const = 0;
    [[nodiscard]] virtual std::optional<qint64> integer(int c) const = 0;
    [[nodiscard]] virtual std::optional<double> real(int c) const = 0;
    [[nodiscard]] virtual std::optional<QString> text(int c) const = 0;
    [[nodiscard]] virtual std::optional<qint64> dateTime(int c) const = 0;
    [[nodiscard]] virtual DbError error() const = 0;
};

// The rows of one read query, walked forward once. Fields are read by column
// index (fast) or by name, matched without regard to case because PostgreSQL
// folds unquoted names. Every accessor is NULL-aware: a missing value gives
// nothing, distinct from 0 and from empty text; a column that is not in the
// result reads as missing too.
class Rows {
public:
    Rows() = default;
    explicit Rows(DbError failure);
    explicit Rows(std::unique_ptr<CursorBackend> backend);
    Rows(Rows&&) noexcept;
    Rows& operator=(Rows&&) noexcept;
    ~Rows();

    // false when the query failed to run or failed while rows were read.
    [[nodiscard]] bool ok() const { return !m_error.isError(); }
    [[nodiscard]] const DbError& error() const { return m_error; }

    // Moves to the next row (the first on the first call).
    bool next();
    // Stops after this many rows: next() then reports the end.
    void setRowLimit(qint64 limit) { m_limit = limit; }

    [[nodiscard]] int columnCount() const;
    [[nodiscard]] int column(QStringView name) const;

    [[nodiscard]] bool isNull(int c) const;
    [[nodiscard]] std::optional<qint64> integer(int c) const;
    [[nodiscard]] std::optional<double> real(int c) const;
    [[nodiscard]] std::optional<QString> text(int c) const;
    // Seconds since 1970 (wall clock); nothing for NULL, the zero date or a
    // value that is not a date-time.
    [[nodiscard]] std::optional<qint64> dateTime(int c) const;

    [[nodiscard]] bool isNull(QStringView name) const { return isNull(column(name)); }
    [[nodiscard]] std::optional<qint64> integer(QStringView name) const
    {
        return integer(column(name));
    }
    [[nodiscard]] std::optional<double> real(QStringView name) const { return real(column(name)); }
    [[nodiscard]] std::optional<QString> text(QStringView name) const { return text(column(name)); }
    [[nodiscard]] std::optional<qint64> dateTime(QStringView name) const
    {
        return dateTime(column(name));
    }
    // Shorthands for the common "missing counts as empty or 0" reading.
    [[nodiscard]] QString textOr(QStringView name, const QString& fallback = {}) const
    {
        return text(name).value_or(fallback);
    }
    [[nodiscard]] qint64 intOr(QStringView name, qint64 fallback = 0) const
    {
        return integer(name).value_or(fallback);
    }
    [[nodiscard]] double realOr(QStringView name, double fallback = 0) const
    {
        return real(name).value_or(fallback);
    }

private:
    [[nodiscard]] bool valid(int c) const;

    std::unique_ptr<CursorBackend> m_backend;
    int m_columns = 0; // asked once: every field read checks it
    DbError m_error;
    qint64 m_limit = -1;
    qint64 m_row = 0;
    bool m_onRow = false;
};

// Number parsing shared by the backends that receive values as text.
[[nodiscard]] std::optional<qint64> parseIntegerText(std::string_view text);
[[nodiscard]] std::optional<double> parseRealText(std::string_view text);

} // namespace sx
