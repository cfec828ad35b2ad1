#pragma once

#include <QDateTime>
#include <QString>

#include <optional>
#include <string_view>

namespace sx {

// Date-times travel through the data layer as whole seconds since
// 1970-01-01 00:00:00 of the calendar, with no time zone: the database stores
// wall-clock times of the units. Building a QDateTime per row is slow, so bulk
// readers keep these integers and format only what is shown.
struct CivilTime {
    int year = 1970;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

[[nodiscard]] qint64 secsFromCivil(const CivilTime& t);
[[nodiscard]] CivilTime civilFromSecs(qint64 secs);

// Parses "YYYY-MM-DD[ T]HH:MM[:SS[.fff]]" or "YYYY-MM-DD" by its fixed-width
// digits. Nothing for text of another shape or out-of-range fields.
[[nodiscard]] std::optional<qint64> parseSqlDateTime(std::string_view text);
[[nodiscard]] std::optional<qint64> parseSqlDateTime(QStringView text);

// Reads a column of date-times row after row as parseSqlDateTime does, but
// rows of one day (a year of minutes has 1,440 a day) reuse the date part of
// the row before: the bulk readers spend most of their own time on dates.
class SqlDateTimeReader {
public:
    [[nodiscard]] std::optional<qint64> operator()(std::string_view text);

private:
    char m_day[10] = {};
    qint64 m_daySecs = 0;
    bool m_known = false;
};

// The zero date (30/12/1899) means "not set".
[[nodiscard]] bool isZeroDate(qint64 secs);

[[nodiscard]] QDateTime toQDateTime(qint64 secs);
[[nodiscard]] qint64 fromQDateTime(const QDateTime& dt);

// "YYYY-MM-DD HH:MM:SS", the stored form; text order is time order.
[[nodiscard]] QString sqlDateTimeText(qint64 secs);

} // namespace sx
