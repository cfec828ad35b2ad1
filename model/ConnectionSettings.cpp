#include "model/ConnectionSettings.h"

#include <QUrl>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sx {

DbKind dbKindFromSetting(int dbType)
{
    switch (dbType) {
    case 0:
        return DbKind::Access;
    case 2:
        return DbKind::SQLite;
    case 3:
        return DbKind::PostgreSQL;
    default:
        // Any other stored value means the Oracle server.
        return DbKind::Oracle;
    }
}

QString connectionString(const ConnectionSettings& s)
{
    const QString user = s.user.isEmpty() ? QString::fromUtf16(kDbUser) : s.user;
    const QString password = s.password.isEmpty() ? QString::fromUtf16(kDbPassword) : s.password;
    switch (s.kind) {
    case DbKind::Access:
        return u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source="_s + s.file +
               u";Jet OLEDB:Engine Type=5;;Jet OLEDB:Database Password="_s + password + u';';
    case DbKind::Oracle:
        if (s.serverIp.isEmpty())
            return u"Provider=oraOLEDB.Oracle;Data Source="_s + s.dataSource + u";User ID="_s +
                   user + u";Password="_s + password;
        return u"Provider=OraOLEDB.Oracle;Data Source=(DESCRIPTION=(CID=KRN_APP)(ADDRESS_LIST=(ADDRESS=(PROTOCOL=TCP)(HOST="_s +
               s.serverIp + u")(PORT="_s + s.serverPort + u")))(CONNECT_DATA=(SID="_s +
               s.dataSource + u")(SERVER=DEDICATED)));User Id="_s + user + u";Password="_s +
               password;
    case DbKind::SQLite:
        return u"Driver=SQLite;Data Source="_s + s.file + u";Password="_s + password + u';';
    case DbKind::PostgreSQL:
        return u"Driver=PostgreSQL;Server="_s +
               (s.serverIp.isEmpty() ? u"localhost"_s : s.serverIp) + u";Port="_s +
               (s.serverPort.isEmpty() ? u"5432"_s : s.serverPort) + u";Database="_s +
               s.dataSource + u";User Id="_s + user + u";Password="_s + password + u';';
    }
    return {};
}

bool isDecimalNumber(QStringView text)
{
    return !text.isEmpty() &&
           std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

QStringList serverList(const QString& text)
{
    QStringList out;
    for (const QString& part : text.split(u',')) {
        if (const QString entry = part.trimmed(); !entry.isEmpty())
            out.append(entry);
    }
    return out;
}

QList<std::pair<QString, QString>> pgServerKeywords(const ConnectionSettings& s, bool portApart)
{
    // One address goes to libpq exactly as typed, as it always has.
    const QStringList hosts = serverList(s.serverIp);
    const bool hostList = s.serverIp.contains(u',');
    const bool portList = s.serverPort.contains(u',');
    QList<std::pair<QString, QString>> out;
    out.append({u"host"_s, hostList ? hosts.join(u',')
                                    : (s.serverIp.isEmpty() ? u"localhost"_s : s.serverIp)});
    if (portList)
        out.append({u"port"_s, serverList(s.serverPort).join(u',')});
    else if (!s.serverPort.isEmpty() && !portApart)
        out.append({u"port"_s, s.serverPort});
    if (!s.sslMode.isEmpty())
        out.append({u"sslmode"_s, s.sslMode});
    if (!s.sslRootCert.isEmpty())
        out.append({u"sslrootcert"_s, s.sslRootCert});
    // A standby takes reads only: of several servers, the one that takes writes.
    if (!s.targetSessionAttrs.isEmpty())
        out.append({u"target_session_attrs"_s, s.targetSessionAttrs});
    else if (hosts.size() > 1)
        out.append({u"target_session_attrs"_s, u"read-write"_s});
    return out;
}

namespace {

QString decoded(QStringView text)
{
    return QUrl::fromPercentEncoding(text.toUtf8());
}

// "h1:p1,[::1]:p2,h3": QUrl takes one host only, libpq's URLs a list.
bool parseServers(QStringView authority, QStringList& hosts, QStringList& ports)
{
    if (authority.isEmpty())
        return true;
    for (QStringView part : authority.split(u',')) {
        QStringView host = part;
        QStringView port;
        if (part.startsWith(u'[')) {
            const qsizetype close = part.indexOf(u']');
            if (close < 0 || (close + 1 < part.size() && part.at(close + 1) != u':'))
                return false;
            host = part.mid(1, close - 1);
            port = part.mid(std::min(close + 2, part.size()));
        } else if (const qsizetype colon = part.indexOf(u':'); colon >= 0) {
            host = part.left(colon);
            port = part.mid(colon + 1);
        }
        if (host.isEmpty() || (!port.isEmpty() && !isDecimalNumber(port)))
            return false;
        hosts.append(decoded(host));
        ports.append(port.toString());
    }
    // A port named for some servers only: the others have libpq's default.
    if (std::all_of(ports.begin(), ports.end(), [](const QString& p) { return p.isEmpty(); }))
        ports.clear();
    for (QString& p : ports) {
        if (p.isEmpty())
            p = u"5432"_s;
    }
    return true;
}

bool parsePgUrl(QStringView rest, ConnectionSettings& out)
{
    QStringView query;
    if (const qsizetype q = rest.indexOf(u'?'); q >= 0) {
        query = rest.mid(q + 1);
        rest = rest.left(q);
    }
    const qsizetype slash = rest.indexOf(u'/');
    if (slash < 0 || slash + 1 >= rest.size())
        return false;
    QStringView authority = rest.left(slash);
    ConnectionSettings s;
    s.kind = DbKind::PostgreSQL;
    s.dataSource = decoded(rest.mid(slash + 1));
    if (const qsizetype at = authority.lastIndexOf(u'@'); at >= 0) {
        const QStringView who = authority.left(at);
        const qsizetype colon = who.indexOf(u':');
        s.user = decoded(who.left(colon));
        if (colon >= 0)
            s.password = decoded(who.mid(colon + 1));
        authority = authority.mid(at + 1);
    }
    QStringList hosts;
    QStringList ports;
    if (!parseServers(authority, hosts, ports))
        return false;
    s.serverIp = hosts.join(u',');
    s.serverPort = ports.join(u',');
    for (QStringView pair : query.split(u'&', Qt::SkipEmptyParts)) {
        const qsizetype eq = pair.indexOf(u'=');
        const QStringView key = pair.left(eq);
        const QString value = eq < 0 ? QString() : decoded(pair.mid(eq + 1));
        if (key == u"sslmode")
            s.sslMode = value;
        else if (key == u"sslrootcert")
            s.sslRootCert = value;
        else if (key == u"target_session_attrs")
            s.targetSessionAttrs = value;
        else
            return false; // a typing error must not go unnoticed
    }
    out = s;
    return true;
}

} // namespace

bool parseDbUrl(const QString& url, ConnectionSettings& out)
{
    if (url.startsWith(u"sqlite:")) {
        QString path = url.mid(7);
        if (path.startsWith(u"//"))
            path = path.mid(2);
        if (path.isEmpty())
            return false;
        out = {};
        out.kind = DbKind::SQLite;
        out.file = path;
        return true;
    }
    for (const QStringView scheme : {u"postgresql://", u"postgres://"}) {
        if (url.startsWith(scheme))
            return parsePgUrl(QStringView(url).mid(scheme.size()), out);
    }
    return false;
}

} // namespace sx
