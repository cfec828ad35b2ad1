#include "model/SqlDateTime.h"

#include <cstring>

namespace sx {

namespace {

// Days from 1970-01-01 of a proleptic Gregorian date (H. Hinnant's algorithm).
qint64 daysFromCivil(qint64 y, unsigned m, unsigned d)
{
    y -= m <= 2;
    const qint64 era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<qint64>(doe) - 719468;
}

int daysInMonth(int y, int m)
{
    static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
    return m == 2 && leap ? 29 : kDays[m - 1];
}

template <typename Char> bool digits(const Char* p, int n, int& out)
{
    int v = 0;
    for (int i = 0; i < n; ++i) {
        const auto c = p[i];
        if (c < '0' || c > '9')
            return false;
        v = v * 10 + static_cast<int>(c - '0');
    }
    out = v;
    return true;
}

template <typename Char> std::optional<qint64> parse(const Char* p, qsizetype n)
{
    // Tolerate surrounding blanks a foreign writer may leave.
    while (n > 0 && p[0] == ' ') {
        ++p;
        --n;
    }
    while (n > 0 && p[n - 1] == ' ')
        --n;
    CivilTime t;
    if (n < 10 || !digits(p, 4, t.year) || p[4] != '-' || !digits(p + 5, 2, t.month) ||
        p[7] != '-' || !digits(p + 8, 2, t.day))
        return std::nullopt;
    if (n > 10) {
        if ((p[10] != ' ' && p[10] != 'T') || n < 16 || !digits(p + 11, 2, t.hour) ||
            p[13] != ':' || !digits(p + 14, 2, t.minute))
            return std::nullopt;
        if (n > 16) {
            if (p[16] != ':' || n < 19 || !digits(p + 17, 2, t.second))
                return std::nullopt;
            // Fractions of a second and a zone suffix are ignored.
        }
    }
    if (t.month < 1 || t.month > 12 || t.day < 1 || t.day > daysInMonth(t.year, t.month) ||
        t.hour > 23 || t.minute > 59 || t.second > 60)
        return std::nullopt;
    return secsFromCivil(t);
}

void put(QChar*& out, int value, int width)
{
    for (int i = width - 1; i >= 0; --i) {
        out[i] = QChar(u'0' + value % 10);
        value /= 10;
    }
    out += width;
}

} // namespace

qint64 secsFromCivil(const CivilTime& t)
{
    return daysFromCivil(t.year, static_cast<unsigned>(t.month), static_cast<unsigned>(t.day)) *
               86400 +
           t.hour * 3600 + t.minute * 60 + t.second;
}

CivilTime civilFromSecs(qint64 secs)
{
    qint64 days = secs >= 0 ? secs / 86400 : -((-secs + 86399) / 86400);
    qint64 rem = secs - days * 86400;
    days += 719468;
    const qint64 era = (days >= 0 ? days : days - 146096) / 146097;
    const unsigned doe = static_cast<unsigned>(days - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    CivilTime t;
    t.day = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
    t.month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    t.year = static_cast<int>(static_cast<qint64>(yoe) + era * 400 + (t.month <= 2));
    t.hour = static_cast<int>(rem / 3600);
    t.minute = static_cast<int>(rem % 3600 / 60);
    t.second = static_cast<int>(rem % 60);
    return t;
}

std::optional<qint64> parseSqlDateTime(std::string_view text)
{
    return parse(text.data(), static_cast<qsizetype>(text.size()));
}

std::optional<qint64> parseSqlDateTime(QStringView text)
{
    return parse(text.utf16(), text.size());
}

std::optional<qint64> SqlDateTimeReader::operator()(std::string_view text)
{
    const char* p = text.data();
    const auto n = static_cast<qsizetype>(text.size());
    // Only a text that starts with a day already checked and has the full
    // time of day takes the short way; anything else is parsed in full.
    int h = 0;
    int m = 0;
    int s = 0;
    if (m_known && n >= 19 && std::memcmp(p, m_day, sizeof m_day) == 0 &&
        (p[10] == ' ' || p[10] == 'T') && p[13] == ':' && p[16] == ':' && digits(p + 11, 2, h) &&
        digits(p + 14, 2, m) && digits(p + 17, 2, s) && h <= 23 && m <= 59 && s <= 60)
        return m_daySecs + h * 3600 + m * 60 + s;
    const std::optional<qint64> secs = parse(p, n);
    if (secs && n >= 10 && p[0] != ' ') {
        std::memcpy(m_day, p, sizeof m_day);
        const qint64 intoDay = *secs % 86400;
        m_daySecs = *secs - (intoDay < 0 ? intoDay + 86400 : intoDay);
        m_known = true;
    }
    return secs;
}

bool isZeroDate(qint64 secs)
{
    // 1899-12-30 00:00:00, 25,569 days before 1970.
    constexpr qint64 kZero = -25569LL * 86400;
    return secs >= kZero && secs < kZero + 86400;
}

QDateTime toQDateTime(qint64 secs)
{
    const CivilTime t = civilFromSecs(secs);
    return QDateTime(QDate(t.year, t.month, t.day), QTime(t.hour, t.minute, t.second));
}

qint64 fromQDateTime(const QDateTime& dt)
{
    const QDate d = dt.date();
    const QTime tm = dt.time();
    return secsFromCivil({d.year(), d.month(), d.day(), tm.hour(), tm.minute(), tm.second()});
}

QString sqlDateTimeText(qint64 secs)
{
    const CivilTime t = civilFromSecs(secs);
    QString s(19, Qt::Uninitialized);
    QChar* p = s.data();
    put(p, t.year, 4);
    *p++ = u'-';
    put(p, t.month, 2);
    *p++ = u'-';
    put(p, t.day, 2);
    *p++ = u' ';
    put(p, t.hour, 2);
    *p++ = u':';
    put(p, t.minute, 2);
    *p++ = u':';
    put(p, t.second, 2);
    return s;
}

} // namespace sx
