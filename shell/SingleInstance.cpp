#include "shell/SingleInstance.h"

#include <QDir>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace sx {

SingleInstance::SingleInstance(const QString& lockFile) : m_fileName(lockFile), m_lock(lockFile)
{
    // By age alone a lock is never stale: the console may run for months.
    // A lock whose process is gone is still taken over.
    m_lock.setStaleLockTime(0);
}

bool SingleInstance::acquire()
{
    return m_lock.isLocked() || m_lock.tryLock(0);
}

QString SingleInstance::defaultLockFile()
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty())
        folder = QDir::homePath(); // per user, like the runtime folder
    return folder + u"/sentorax-monitor.lock"_s;
}

} // namespace sx
