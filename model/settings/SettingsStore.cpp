#include "model/settings/SettingsStore.h"

#include "model/AppTitle.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include <utility>

using namespace Qt::StringLiterals;

namespace sx {

SettingsStore::SettingsStore() : m_settings(openSettings()) {}

SettingsStore::SettingsStore(const QString& fileName)
    : m_iniFile(fileName), m_settings(openSettings())
{
}

SettingsStore::~SettingsStore()
{
    // Nobody is left to tell; the saves that matter were checked where the user made them.
    static_cast<void>(sync());
}

std::unique_ptr<QSettings> SettingsStore::openSettings() const
{
    if (m_iniFile.isEmpty())
        return std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                           appTitle(), appTitle());
    return std::make_unique<QSettings>(m_iniFile, QSettings::IniFormat);
}

QString SettingsStore::value(const QString& section, const QString& key,
                             const QString& fallback) const
{
    return m_settings->value(section + u'/' + key, fallback).toString();
}

void SettingsStore::setValue(const QString& section, const QString& key, const QString& value)
{
    const QString path = section + u'/' + key;
    const QVariant stored = m_settings->value(path);
    if (stored == QVariant(value))
        return;
    if (!m_before.contains(path))
        m_before.insert(path, stored);
    m_settings->setValue(path, value);
}

bool SettingsStore::sync()
{
    // QSettings keeps its first error for good, so after a failure only a
    // fresh one can tell whether this write gets through. It shares the
    // values in memory with the old one, the unsaved ones included.
    if (m_settings->status() != QSettings::NoError)
        m_settings = openSettings();
    m_settings->sync();
    const QHash<QString, QVariant> before = std::exchange(m_before, {});
    if (m_settings->status() != QSettings::NoError) {
        for (auto it = before.cbegin(); it != before.cend(); ++it) {
            if (it.value().isValid())
                m_settings->setValue(it.key(), it.value());
            else
                m_settings->remove(it.key());
        }
        return false;
    }
    const QString file = m_settings->fileName();
    if (QFile::exists(file))
        QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    return true;
}

QString SettingsStore::fileName() const
{
    return m_settings->fileName();
}

QString SettingsStore::pendingStatementsFile() const
{
    return QFileInfo(fileName()).dir().filePath(u"pending-statements.json"_s);
}

int SettingsStore::dbType() const
{
    bool ok = false;
    const int type = app(u"DBType"_s).trimmed().toInt(&ok);
    return ok ? type : 0;
}

ConnectionSettings SettingsStore::connection() const
{
    ConnectionSettings s;
    s.kind = dbKindFromSetting(dbType());
    s.file = app(u"DBFile"_s);
    s.dataSource = app(u"DBDataSource"_s);
    s.serverIp = app(u"DBServerIP"_s);
    s.serverPort = app(u"DBServerPORT"_s);
    // Kept in the file only: who runs the server sets them, not the dialog.
    s.sslMode = app(u"DBSslMode"_s).trimmed();
    s.sslRootCert = app(u"DBSslRootCert"_s);
    return s;
}

} // namespace sx
