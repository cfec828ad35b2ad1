#include "ui/AppIcon.h"

#include <QGuiApplication>

namespace sx {

QIcon appIcon()
{
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256})
        icon.addFile(QStringLiteral(":/icons/%1.png").arg(size), QSize(size, size));
    return icon;
}

void useAppIcon()
{
    QGuiApplication::setWindowIcon(appIcon());
    QGuiApplication::setDesktopFileName(QString::fromUtf16(kDesktopId));
}

} // namespace sx
