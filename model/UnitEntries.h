#pragma once

#include "model/Database.h"

#include <QList>
#include <QString>

namespace sx {

struct UnitEntry {
    QString serial;
    QString text; // "name [location] (serial)"
};

// The units in use, ordered by name (missing names first), with the list texts.
[[nodiscard]] QList<UnitEntry> readUnitList(Database& db, DbError* error = nullptr);

} // namespace sx
