#include "model/Dialect.h"

#include "model/SqlDateTime.h"

using namespace Qt::StringLiterals;

namespace sx {

namespace {

QString accessDate(const QDateTime& d)
{
    return QString::number(d.date().year()) + u'-' + QString::number(d.date().month()) + u'-' +
           QString::number(d.date().day()) + u' ' + QString::number(d.time().hour()) + u':' +
           QString::number(d.time().minute()) + u':' + QString::number(d.time().second());
}

QString oracleDate(const QDateTime& d)
{
    return QString::number(d.date().day()) + u'-' + QString::number(d.date().month()) + u'-' +
           QString::number(d.date().year()) + u' ' + QString::number(d.time().hour()) + u':' +
           QString::number(d.time().minute()) + u':' + QString::number(d.time().second());
}

} // namespace

QString sqlDateRange(DbKind kind, const QDateTime& from, const QDateTime& to)
{
    switch (kind) {
    case DbKind::Access:
        return u" BETWEEN #"_s + accessDate(from) + u"# AND #"_s + accessDate(to) + u'#';
    case DbKind::Oracle:
        return u" BETWEEN TO_DATE('"_s + oracleDate(from) + u"','DD-MM-YYYY HH24:MI:SS') AND TO_DATE('"_s +
               oracleDate(to) + u"','DD-MM-YYYY HH24:MI:SS')"_s;
    case DbKind::SQLite:
    case DbKind::PostgreSQL:
        break;
    }
    return u" BETWEEN '"_s + sqlDateTimeText(fromQDateTime(from)) + u"' AND '"_s +
           sqlDateTimeText(fromQDateTime(to)) + u'\'';
}

QString sqlQuote(QStringView text)
{
    QString out;
    out.reserve(text.size() + 2);
    out += u'\'';
    for (QChar c : text) {
        out += c;
        if (c == u'\'')
            out += u'\'';
    }
    out += u'\'';
    return out;
}

QString sqlFirstRowOnly(DbKind kind, const QString& select)
{
    if (kind == DbKind::SQLite || kind == DbKind::PostgreSQL)
        return select + u" LIMIT 1"_s;
    return select;
}

QString sqlDateTimeLiteral(DbKind kind, qint64 secs)
{
    const QDateTime d = toQDateTime(secs);
    switch (kind) {
    case DbKind::Access:
        return u'#' + accessDate(d) + u'#';
    case DbKind::Oracle:
        return u"TO_DATE('"_s + oracleDate(d) + u"','DD-MM-YYYY HH24:MI:SS')"_s;
    case DbKind::SQLite:
        break;
    case DbKind::PostgreSQL:
        return u"TIMESTAMP '"_s + sqlDateTimeText(secs) + u'\'';
    }
    return u'\'' + sqlDateTimeText(secs) + u'\'';
}

} // namespace sx
