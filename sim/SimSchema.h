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

// A secondary index the console's reads rely on (primary keys aside).
struct ConsoleIndex {
    QString name;
    QString table;
    QString columns;
    QString condition; // empty, or the WHERE of a partial index
};
// Every one of them, in the order they are made.
[[nodiscard]] QList<ConsoleIndex> consoleIndexes();
[[nodiscard]] QString createIndexStatement(const ConsoleIndex& index);
// Makes (drops) every index of consoleIndexes() that is missing (there).
DbError createConsoleIndexes(Database& db);
DbError dropConsoleIndexes(Database& db);

// Creates every table that is missing. Running it twice does no harm.
DbError createSchema(Database& db);

// Adds the column in which consoles name their request rows to a database
// made before it existed; nothing when it is there.
DbError ensureRequestOwnerColumn(Database& db);

} // namespace sx::sim
