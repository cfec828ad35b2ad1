#include "app/SettingsStore.h"

#include "app/AppContext.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>

using namespace Qt::StringLiterals;

namespace sx {

SettingsStore::SettingsStore()
    : m_settings(std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                             appTitle(), appTitle()))
{
}

SettingsStore::SettingsStore(const QString& fileName)
    : m_settings(std::make_unique<QSettings>(fileName, QSettings::IniFormat))
{
}

SettingsStore::~SettingsStore()
{
    sync();
}

QString SettingsStore::value(const QString& section, const QString& key,
                             const QString& fallback) const
{
    return m_settings->value(section + u'/' + key, fallback).toString();
}

void SettingsStore::setValue(const QString& section, const QString& key, const QString& value)
{
    m_settings->setValue(section + u'/' + key, value);
}

void SettingsStore::sync()
{
    m_settings->sync();
    const QString file = m_settings->fileName();
    if (QFile::exists(file))
        QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
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
    return s;
}

} // namespace sx
