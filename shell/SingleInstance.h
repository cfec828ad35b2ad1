#pragma once

#include <QLockFile>
#include <QString>

namespace sx {

// One running console per user: a lock file in the user's runtime folder,
// held for the life of the process and taken over when its owner has died.
class SingleInstance {
public:
    explicit SingleInstance(const QString& lockFile = defaultLockFile());

    // false when another running copy holds the lock.
    [[nodiscard]] bool acquire();
    [[nodiscard]] QString fileName() const { return m_fileName; }

    [[nodiscard]] static QString defaultLockFile();

private:
    QString m_fileName;
    QLockFile m_lock;
};

} // namespace sx
