#pragma once

#include "model/ConnectionSettings.h"

#include <QHash>
#include <QString>
#include <QVariant>

#include <memory>

class QSettings;

namespace sx {

// The per-user settings: section AppSettings (Init, DBType, DBFile,
// DBDataSource, DBServerIP, DBServerPORT; DBSslMode and DBSslRootCert, set in
// the file by hand) and section SPS (SP1, the code that protects them). Every value is text. The
// file is readable by its owner only.
class SettingsStore {
public:
    // The user's own store.
    SettingsStore();
    // A store in a given file (tests).
    explicit SettingsStore(const QString& fileName);
    ~SettingsStore();

    [[nodiscard]] QString value(const QString& section, const QString& key,
                                const QString& fallback = {}) const;
    // A value equal to the stored one is no change and leaves nothing to write.
    void setValue(const QString& section, const QString& key, const QString& value);
    // Writes the changes to disk and restricts the file to its owner. When the
    // write fails, the changes since the last good write are undone, here and
    // for every store on the same file, so nobody goes on with values that
    // the next start would not find.
    [[nodiscard]] bool sync();

    [[nodiscard]] QString fileName() const;
    // Beside the settings: statements left for the next start (request rows to remove).
    [[nodiscard]] QString pendingStatementsFile() const;

    // Shorthands for the keys the console uses.
    [[nodiscard]] QString app(const QString& key, const QString& fallback = {}) const
    {
        return value(QStringLiteral("AppSettings"), key, fallback);
    }
    void setApp(const QString& key, const QString& v)
    {
        setValue(QStringLiteral("AppSettings"), key, v);
    }
    [[nodiscard]] QString protectionCode() const
    {
        return value(QStringLiteral("SPS"), QStringLiteral("SP1"));
    }
    void setProtectionCode(const QString& code)
    {
        setValue(QStringLiteral("SPS"), QStringLiteral("SP1"), code);
    }

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
    [[nodiscard]] std::unique_ptr<QSettings> openSettings() const;

    QString m_iniFile; // empty: the user's own store
    std::unique_ptr<QSettings> m_settings;
    // What each key changed since the last good write held before; invalid: absent.
    QHash<QString, QVariant> m_before;
};

} // namespace sx
