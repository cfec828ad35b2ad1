#include "model/Formatting.h"

#include <array>
#include <cmath>
#include <limits>

namespace sx {

namespace {

// Indexed by QDate::dayOfWeek() % 7, so Sunday (7) lands on 0.
const std::array<QString, 7>& weekdayNames()
{
    static const std::array<QString, 7> names = {
        QStringLiteral("Κυριακή "), QStringLiteral("Δευτέρα "), QStringLiteral("Τρίτη "),
        QStringLiteral("Τετάρτη "), QStringLiteral("Πέμπτη "),  QStringLiteral("Παρασκευή "),
        QStringLiteral("Σάββατο "),
    };
    return names;
}

const std::array<QString, 12>& monthNames()
{
    static const std::array<QString, 12> names = {
        QStringLiteral(" Ιανουαρίου "),  QStringLiteral(" Φεβρουαρίου "),
        QStringLiteral(" Μαρτίου "),     QStringLiteral(" Απριλίου "),
        QStringLiteral(" Μαΐου "),       QStringLiteral(" Ιουνίου "),
        QStringLiteral(" Ιουλίου "),     QStringLiteral(" Αυγούστου "),
        QStringLiteral(" Σεπτεμβρίου "), QStringLiteral(" Οκτωβρίου "),
        QStringLiteral(" Νοεμβρίου "),   QStringLiteral(" Δεκεμβρίου "),
    };
    return names;
}

void appendTwoDigits(QString& out, int n)
{
    out += QChar(u'0' + (n / 10) % 10);
    out += QChar(u'0' + n % 10);
}

} // namespace

QString greekDateTime(const QDateTime& when, bool oneLine)
{
    if (!when.isValid())
        return {};
    const QDate date = when.date();
    const QTime time = when.time();
    const int hour = time.hour();
    int hour12 = hour % 12;
    if (hour12 == 0)
        hour12 = 12;

    QString out = weekdayNames()[static_cast<std::size_t>(date.dayOfWeek() % 7)];
    out += QString::number(date.day());
    out += monthNames()[static_cast<std::size_t>(date.month() - 1)];
    out += QString::number(date.year());
    out += oneLine ? QStringLiteral(" ") : QStringLiteral("\r\n");
    out += QString::number(hour12);
    out += u':';
    appendTwoDigits(out, time.minute());
    out += hour >= 12 ? QStringLiteral(" μμ") : QStringLiteral(" πμ");
    return out;
}

QString elapsedText(qint32 seconds)
{
    constexpr qint32 minute = 60;
    constexpr qint32 hour = 3600;
    constexpr qint32 day = 86400;
    constexpr qint32 year = 31536000;

    qint32 first = seconds;
    qint32 second = 0;
    QString firstUnit = QStringLiteral(" ΔΕΥΤΕΡΟΛΕΠΤΑ ");
    QString secondUnit;
    if (seconds >= year) {
        first = seconds / year;
        second = seconds % year / day;
        firstUnit = QStringLiteral(" ΧΡΟΝΙΑ ");
        secondUnit = QStringLiteral(" ΗΜΕΡΕΣ ");
    } else if (seconds >= day) {
        first = seconds / day;
        second = seconds % day / hour;
        firstUnit = QStringLiteral(" ΗΜΕΡΕΣ ");
        secondUnit = QStringLiteral(" ΩΡΕΣ ");
    } else if (seconds >= hour) {
        first = seconds / hour;
        second = seconds % hour / minute;
        firstUnit = QStringLiteral(" ΩΡΕΣ ");
        secondUnit = QStringLiteral(" ΛΕΠΤΑ ");
    } else if (seconds >= minute) {
        first = seconds / minute;
        second = seconds % minute;
        firstUnit = QStringLiteral(" ΛΕΠΤΑ ");
        secondUnit = QStringLiteral(" ΔΕΥΤΕΡΟΛΕΠΤΑ ");
    }

    QString out = QStringLiteral("ΠΡΙΝ ") + QString::number(first) + firstUnit;
    if (second >= 1)
        out += QStringLiteral("ΚΑΙ ") + QString::number(second) + secondUnit;
    return out;
}

QString unitSuffix(int sensorType)
{
    static const std::array<QString, 21> units = {
        QStringLiteral(" °C"),     QStringLiteral(" %RH"),  QString(),
        QStringLiteral(" bar"),    QStringLiteral(" mbar"), QStringLiteral(" Psi"),
        QStringLiteral(" torr"),   QStringLiteral(" Pa"),   QStringLiteral(" °F"),
        QStringLiteral(" K"),      QStringLiteral(" %CO"),  QStringLiteral(" %CO2"),
        QStringLiteral(" %O2"),    QStringLiteral(" %N2"),  QStringLiteral(" %"),
        QStringLiteral(" lux"),    QStringLiteral(" pH"),   QStringLiteral(" ppm"),
        QStringLiteral(" kJ/mol"), QStringLiteral(" r/m"),  QStringLiteral(" r/s"),
    };
    if (sensorType < 0 || sensorType >= static_cast<int>(units.size()))
        return {};
    return units[static_cast<std::size_t>(sensorType)];
}

int sensorTypeCode(std::optional<qint64> stored)
{
    const qint64 type = stored.value_or(0);
    return type >= std::numeric_limits<qint16>::min() && type <= std::numeric_limits<qint16>::max()
               ? static_cast<int>(type)
               : -1;
}

QString formatValue(double v, const QLocale& locale)
{
    // Beyond this the tenths are below double precision and the integer path would overflow;
    // such values (a faulty unit's 1e30) are written with seven digits in exponent form,
    // short enough for the place a reading takes.
    constexpr double integerPathLimit = 1e15;
    if (!std::isfinite(v) || std::fabs(v) >= integerPathLimit) {
        QLocale plain = locale;
        plain.setNumberOptions(QLocale::OmitGroupSeparator);
        return plain.toString(v, 'g', 7);
    }

    const auto tenths = static_cast<qint64>(std::round(v * 10.0));
    const qint64 magnitude = tenths < 0 ? -tenths : tenths;
    QString out;
    out.reserve(24);
    if (tenths < 0)
        out += locale.negativeSign();
    out += QString::number(magnitude / 10);
    out += locale.decimalPoint();
    out += QChar(u'0' + static_cast<int>(magnitude % 10));
    return out;
}

QString formatReading(double v, int sensorType, const QLocale& locale)
{
    if (sensorType == ContactSensorType)
        return v > 0 ? QStringLiteral("ΚΛΕΙΣΤΗ") : QStringLiteral("ΑΝΟΙΧΤΗ");
    return formatValue(v, locale) + unitSuffix(sensorType);
}

namespace {

// The text between the first two fields of a date or time format: the letters
// of `fields` are fields, text in single quotes is literal.
QString separatorIn(const QString& format, QStringView fields)
{
    QString out;
    bool afterField = false;
    bool quoted = false;
    for (const QChar c : format) {
        if (c == u'\'') {
            quoted = !quoted;
            continue;
        }
        const bool field = !quoted && fields.contains(c);
        // Blanks around a mark stay ("d. M." parts with ". "); blanks alone do not count.
        if (field && afterField && !out.isEmpty())
            return out.trimmed().isEmpty() ? QString() : out;
        if (field)
            afterField = true;
        else if (afterField && (quoted || !c.isLetter()))
            out += c;
    }
    return {};
}

} // namespace

TimeSeparators timeSeparators(const QLocale& locale)
{
    // The C locale is no regional setting: it keeps "/" and ":".
    TimeSeparators sep;
    if (locale.language() == QLocale::C)
        return sep;
    if (QString d = separatorIn(locale.dateFormat(QLocale::ShortFormat), u"dMy"); !d.isEmpty())
        sep.date = d;
    if (QString t = separatorIn(locale.timeFormat(QLocale::ShortFormat), u"hHms"); !t.isEmpty())
        sep.time = t;
    return sep;
}

const TimeSeparators& defaultTimeSeparators()
{
    // Grids format many cells: a locale comparison is cheaper than reading its formats.
    thread_local QLocale cachedFor = QLocale::c();
    thread_local TimeSeparators cached = timeSeparators(cachedFor);
    const QLocale now;
    if (now != cachedFor) {
        cachedFor = now;
        cached = timeSeparators(now);
    }
    return cached;
}

QString formatRecordTime(const QDateTime& when, const TimeSeparators& sep)
{
    if (!when.isValid())
        return {};
    const QDate date = when.date();
    const QTime time = when.time();
    return formatRecordTime(date.year(), date.month(), date.day(), time.hour(), time.minute(), sep);
}

QString formatRecordTime(int year, int month, int day, int hour, int minute,
                         const TimeSeparators& sep)
{
    QString out;
    out.reserve(18);
    appendTwoDigits(out, day);
    out += sep.date;
    appendTwoDigits(out, month);
    out += sep.date;
    if (year >= 0 && year <= 9999) {
        appendTwoDigits(out, year / 100);
        appendTwoDigits(out, year % 100);
    } else {
        out += QString::number(year);
    }
    out += u" - ";
    appendTwoDigits(out, hour);
    out += sep.time;
    appendTwoDigits(out, minute);
    return out;
}

int unitVersionNumber(const QString& softver)
{
    const QString text = softver.trimmed();
    const qsizetype point = text.indexOf(u'.');
    if (point <= 0)
        return 0;
    QString minor = text.mid(point + 1, 2);
    if (const qsizetype secondPoint = minor.indexOf(u'.'); secondPoint >= 0)
        minor.truncate(secondPoint);
    const QString digits = text.left(point) + minor;

    qint64 number = 0;
    for (const QChar c : digits) {
        if (c < u'0' || c > u'9')
            return 0;
        number = number * 10 + (c.unicode() - u'0');
        if (number > std::numeric_limits<int>::max())
            return 0;
    }
    return static_cast<int>(number);
}

} // namespace sx
