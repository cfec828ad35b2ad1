#pragma once

#include "model/Database.h"

#include <QStringList>

namespace sx {

enum class MessageKind : quint8 { New = 0, Archived = 1 };

// The query of the fault check; an empty serial means every unit.
[[nodiscard]] QString hasFaultsSql(const QString& serial);
// The power-message query, then the point-message query, of the message check.
[[nodiscard]] QStringList hasMessagesSql(MessageKind kind, const QString& serial);

// true while the unit (every unit for an empty serial) has an open fault.
// A failed query reads as false and is reported in `error`.
[[nodiscard]] bool hasFaults(Database& db, const QString& serial, DbError* error = nullptr);
// true when messages of the kind exist; for new messages an open fault counts too.
[[nodiscard]] bool hasMessages(Database& db, MessageKind kind, const QString& serial,
                               DbError* error = nullptr);

} // namespace sx
