#include "model/ConnectionSettings.h"

#include <QUrl>

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
               s.serverIp + u")(PORT="_s + s.serverPort +
               u")))(CONNECT_DATA=(SID="_s + s.dataSource +
               u")(SERVER=DEDICATED)));User Id="_s + user + u";Password="_s + password;
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
    if (url.startsWith(u"postgresql://") || url.startsWith(u"postgres://")) {
        const QUrl u(url);
        if (!u.isValid() || u.path().size() < 2)
            return false;
        out = {};
        out.kind = DbKind::PostgreSQL;
        out.serverIp = u.host();
        out.serverPort = u.port() > 0 ? QString::number(u.port()) : QString();
        out.dataSource = u.path().mid(1);
        out.user = u.userName();
        out.password = u.password();
        return true;
    }
    return false;
}

} // namespace sx
