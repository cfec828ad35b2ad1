#pragma once

#include "model/Database.h"

namespace sx::sim {

// Starts a transaction that is going to write. SQLite takes the write lock at
// once (waiting out the console's own short writes), because a transaction
// that first reads and then writes fails outright when another connection
// committed in between.
[[nodiscard]] inline DbError beginWrite(Database& db)
{
    if (db.kind() == DbKind::SQLite)
        return db.exec(QStringLiteral("BEGIN IMMEDIATE"));
    return db.begin();
}

} // namespace sx::sim
