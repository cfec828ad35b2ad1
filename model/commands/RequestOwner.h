#pragma once

#include "model/DbError.h"

#include <QString>

namespace sx {
class Database;
}

// Which console a row of Terminal_Requests belongs to. Rows carry no identity
// of their own, and consoles that send the same command to the same unit write
// identical rows; the owner column tells them apart where the database has it.
namespace sx::commands {

// A token no other request of any console carries: host, process id, start
// time and a counter.
[[nodiscard]] QString newRequestOwner();

// Whether Terminal_Requests has the owner column. A catalog read, so a missing
// column is no failure; kinds without a catalog read here answer false.
[[nodiscard]] bool hasRequestOwnerColumn(Database& db, DbError* error = nullptr);

// What a console learnt of its connection's request table, and on which of the
// link's connections (DbLink::connectionNumber): a new connection asks again.
struct RequestOwnerColumn {
    quint64 connection = 0;
    bool known = false;
    bool present = false;
};

// The WHERE clause of exactly one console's row, or of every row like it when
// `owner` is empty (a database without the column).
[[nodiscard]] QString requestRowWhere(const QString& serial, int type, const QString& attributes,
                                      const QString& owner);

} // namespace sx::commands
