#pragma once

#include "model/Database.h"

#include <QStringList>

namespace sx::sim {

// The CREATE statements of the shared database for the kind, with the keys
// and indexes the console's queries need. Safe to run on an existing schema.
[[nodiscard]] QStringList schemaStatements(DbKind kind);

// Creates every table that is missing. Running it twice does no harm.
DbError createSchema(Database& db);

} // namespace sx::sim
