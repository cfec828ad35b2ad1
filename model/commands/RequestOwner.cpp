#include "model/commands/RequestOwner.h"

#include "model/Database.h"
#include "model/Dialect.h"
#include "model/Schema.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QSysInfo>

#include <atomic>

using namespace Qt::StringLiterals;

namespace sx::commands {

QString newRequestOwner()
{
    // The start time keeps a reused process id on the same host apart.
    static const QString prefix = QSysInfo::machineHostName() + u'/' +
                                  QString::number(QCoreApplication::applicationPid()) + u'/' +
                                  QString::number(QDateTime::currentMSecsSinceEpoch(), 36) + u'/';
    static std::atomic<quint64> counter{0};
    return prefix + QString::number(++counter);
}

bool hasRequestOwnerColumn(Database& db, DbError* error)
{
    QString sql;
    if (db.kind() == DbKind::SQLite)
        sql = u"SELECT 1 FROM pragma_table_info('Terminal_Requests') WHERE "
              u"lower(name)='trmreq_requestowner'"_s;
    else if (db.kind() == DbKind::PostgreSQL)
        sql = u"SELECT 1 FROM information_schema.columns WHERE table_schema=current_schema() "
              u"AND lower(table_name)='terminal_requests' AND "
              u"lower(column_name)='trmreq_requestowner'"_s;
    else
        return false;
    return db.exists(sql, error);
}

QString requestRowWhere(const QString& serial, int type, const QString& attributes,
                        const QString& owner)
{
    QString where = u"TrmReq_SyI_Serialnumber="_s + sqlQuote(serial) +
                    u" AND TrmReq_Requesttype="_s + QString::number(type) +
                    u" AND TrmReq_Attributes="_s + sqlQuote(attributes);
    if (!owner.isEmpty())
        where += u" AND TrmReq_Requestowner="_s + sqlQuote(owner);
    return where;
}

} // namespace sx::commands
