#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

#include <optional>

namespace sx {

// The long Greek date: "Δευτέρα 16 Νοεμβρίου 2026 10:05 μμ". With oneLine false the time
// goes on a second line after CR LF. An invalid date-time gives the empty text.
[[nodiscard]] QString greekDateTime(const QDateTime& when, bool oneLine);

// "ΠΡΙΝ 1 ΩΡΕΣ ΚΑΙ 2 ΛΕΠΤΑ " for an age in seconds; always ends in a blank.
// Negative ages are written as seconds with their minus sign.
[[nodiscard]] QString elapsedText(qint32 seconds);

// The unit text appended to a value (" bar", " °C", ...); empty for contact inputs (2)
// and for unknown codes.
[[nodiscard]] QString unitSuffix(int sensorType);

inline constexpr int ContactSensorType = 2;

// A stored point type as the screen and the reports read it: a missing type is 0
// like any missing number (so its values carry " °C"); a code beyond 16 bits is
// no known type (-1, no unit text).
[[nodiscard]] int sensorTypeCode(std::optional<qint64> stored);

// A measured value as "####0.0": at least one integer digit, one decimal, no grouping, the
// locale's decimal mark and minus sign. Halves round away from zero (0.25 -> 0.3). A value
// that rounds to zero is written "0.0", never "-0.0". From 1e15 on, seven significant digits
// in exponent form ("1e+30"). NaN and infinities are written as QLocale writes them.
[[nodiscard]] QString formatValue(double v, const QLocale& locale = QLocale());

// A value as shown in grids and reports: the state of a contact input ("ΚΛΕΙΣΤΗ" above 0,
// otherwise "ΑΝΟΙΧΤΗ"), else the formatted value followed by its unit text.
[[nodiscard]] QString formatReading(double v, int sensorType, const QLocale& locale = QLocale());

// The date and time separators of the user's regional settings, read from the
// locale's short formats ("/" and ":" in Greek); "/" or ":" where a format has none.
struct TimeSeparators {
    QString date = QStringLiteral("/");
    QString time = QStringLiteral(":");
};
[[nodiscard]] TimeSeparators timeSeparators(const QLocale& locale);
// Those of the default locale, worked out again only when the default changes.
[[nodiscard]] const TimeSeparators& defaultTimeSeparators();

// Record and event times: "dd/MM/yyyy - HH:mm" ("16/11/2026 - 22:05"), 24-hour clock,
// with the given separators in place of "/" and ":".
// An invalid date-time gives the empty text.
[[nodiscard]] QString formatRecordTime(const QDateTime& when,
                                       const TimeSeparators& sep = defaultTimeSeparators());

// Same text built digit by digit from calendar fields, for grids with many rows.
// Fields are not validated; a year outside 0..9999 is written with as many digits as it has.
[[nodiscard]] QString formatRecordTime(int year, int month, int day, int hour, int minute,
                                       const TimeSeparators& sep = defaultTimeSeparators());

// The unit software version as a number: the digits before the first "." followed by at
// most two characters after it ("1.22" -> 122, "2.0" -> 20, "1.225" -> 122). A second "."
// ends the minor part ("1.2.3" -> 12). Surrounding blanks are ignored. Anything else
// (no ".", no major digits, a non-digit, a number beyond int) gives 0, so an unreadable
// version counts as older than every feature threshold.
[[nodiscard]] int unitVersionNumber(const QString& softver);

} // namespace sx
