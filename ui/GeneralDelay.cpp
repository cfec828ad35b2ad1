#include "ui/GeneralDelay.h"

#include <QEventLoop>
#include <QTimer>

namespace sx {

void generalDelay(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms < 0 ? 0 : ms, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace sx
