#pragma once

#include "model/Database.h"

#include <optional>

namespace sx::sim {

// The access codes of the units. Only the server knows them (the unit checks
// the code the operator types), so they live in a table of the server's own
// that the console never reads.
inline constexpr QStringView kUnitCodesTable = u"Sim_Unit_Codes";

DbError ensureUnitCodeTable(Database& db);
DbError storeUnitCode(Database& db, const QString& serial, const QString& code);
// Nothing when the unit has no stored code (then any well-formed code is accepted).
[[nodiscard]] std::optional<QString> unitCode(Database& db, const QString& serial,
                                              DbError* error = nullptr);

} // namespace sx::sim
