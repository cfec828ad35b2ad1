#pragma once

#include "model/ConnectionSettings.h"

#include <QString>

#include <memory>

class QSettings;

namespace sx {

// The per-user settings: section AppSettings (Init, DBType, DBFile,
// DBDataSource, DBServerIP, DBServerPORT) and section SPS (SP1, the code that
// protects them). Every value is text. The file is readable by its owner only.
class SettingsStore {
public:
    // The user's own store.
    SettingsStore();
    // A store in a given file (tests).
    explicit SettingsStore(const QString& fileName);
    ~SettingsStore();

    [[nodiscard]] QString value(const QString& section, const QString& key,
                                const QString& fallback = {}) const;
    void setValue(const QString& section, const QString& key, const QString& value);
    // Writes to disk and restricts the file to its owner.
    void sync();

    [[nodiscard]] QString fileName() const;
    // Beside the settings: statements left for the next start (request rows to remove).
    [[nodiscard]] QString pendingStatementsFile() const;

    // Shorthands for the keys the console uses.
    [[nodiscard]] QString app(const QString& key, const QString& fallback = {}) const
    {
        return value(QStringLiteral("AppSettings"), key, fallback);
    }
    void setApp(const QString& key, const QString& v) { setValue(QStringLiteral("AppSettings"), key, v); }
    [[nodiscard]] QString protectionCode() const { return value(QStringLiteral("SPS"), QStringLiteral("SP1")); }
    void setProtectionCode(const QString& code) { setValue(QStringLiteral("SPS"), QStringLiteral("SP1"), code); }

    // Desktop alarm notifications (AppSettings/Notifications): on unless "0".
    [[nodiscard]] bool notificationsOn() const
    {
        return app(QStringLiteral("Notifications")) != QStringLiteral("0");
    }

    // DBType as stored; absent or not a number counts as 0.
    [[nodiscard]] int dbType() const;
    // Where the database is, from the stored settings.
    [[nodiscard]] ConnectionSettings connection() const;

private:
    std::unique_ptr<QSettings> m_settings;
};

} // namespace sx
