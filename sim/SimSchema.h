#pragma once

#include "model/Database.h"

#include <QStringList>

namespace sx::sim {

// The CREATE statements of the shared database for the kind, with the keys
// and indexes the console's queries need. Safe to run on an existing schema.
[[nodiscard]] QStringList schemaStatements(DbKind kind);

struct SchemaColumn {
    QString table;
    QString column;
    char type; // t text, i integer, s small integer, r real, d date-time
};
// Every column of every table, in table order.
[[nodiscard]] QList<SchemaColumn> schemaColumns();

// Creates every table that is missing. Running it twice does no harm.
DbError createSchema(Database& db);

// Adds the column in which consoles name their request rows to a database
// made before it existed; nothing when it is there.
DbError ensureRequestOwnerColumn(Database& db);

} // namespace sx::sim
