#pragma once

#include "model/ConnectionSettings.h"

#include <QString>

#include <optional>

namespace sx {

class SettingsStore;

// What the settings dialog holds when OK is pressed, as typed.
struct SettingsForm {
    DbKind kind = DbKind::Access;
    QString file;
    QString dataSource;
    QString serverIp;
    QString serverPort;
    QString code;
    QString confirmation;
    bool notifications = true;
};

[[nodiscard]] inline bool isFileKind(DbKind kind)
{
    return kind == DbKind::Access || kind == DbKind::SQLite;
}

// The checks of OK in their order: the message of the first that fails, or
// nothing when the form may be saved.
[[nodiscard]] std::optional<QString> settingsProblem(const SettingsForm& form);

// The DBType text of a kind: "0" Access, "1" Oracle, "2" SQLite, "3" PostgreSQL.
[[nodiscard]] QString dbTypeSetting(DbKind kind);

// The form as the store holds it (the dialog opens with this).
[[nodiscard]] SettingsForm readSettingsForm(const SettingsStore& store);

// Saves every field exactly as typed, whatever the kind, then writes the file;
// false when the file could not be written (the store then holds what it held before).
[[nodiscard]] bool writeSettingsForm(SettingsStore& store, const SettingsForm& form);

} // namespace sx
