#include "sim/BulkInsert.h"

using namespace Qt::StringLiterals;

namespace sx::sim {

BulkInsert::BulkInsert(Database& db, QStringView table, const QStringList& columns,
                       int rowsPerStatement)
    : m_db(db), m_head(u"INSERT INTO "_s + table.toString() + u" ("_s + columns.join(u", "_s) +
                       u") VALUES "_s),
      m_rowsPerStatement(rowsPerStatement)
{
}

DbError BulkInsert::add(const QList<SqlValue>& values)
{
    m_pending += m_pendingRows == 0 ? u"("_s : u", ("_s;
    for (qsizetype i = 0; i < values.size(); ++i) {
        if (i > 0)
            m_pending += u", "_s;
        m_pending += m_db.literal(values[i]);
    }
    m_pending += u')';
    if (++m_pendingRows >= m_rowsPerStatement)
        return finish();
    return {};
}

DbError BulkInsert::finish()
{
    if (m_pendingRows == 0)
        return {};
    const DbError e = m_db.exec(m_head + m_pending);
    m_pending.clear();
    m_pendingRows = 0;
    return e;
}

} // namespace sx::sim
