#pragma once

#include "model/Database.h"

#include <QStringList>

namespace sx::sim {

// Collects rows for one table and writes them as multi-row INSERT statements,
// which both SQLite and PostgreSQL take in one round trip.
class BulkInsert {
public:
    BulkInsert(Database& db, QStringView table, const QStringList& columns,
               int rowsPerStatement = 400);

    // Adds one row (values in column order); may write a full batch.
    DbError add(const QList<SqlValue>& values);
    // Writes what is left.
    DbError finish();

private:
    Database& m_db;
    QString m_head;
    QString m_pending;
    int m_pendingRows = 0;
    int m_rowsPerStatement;
};

} // namespace sx::sim
