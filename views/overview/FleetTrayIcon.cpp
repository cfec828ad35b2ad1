#include "views/overview/FleetTrayIcon.h"

#include "app/AppContext.h"
#include "app/UnitMarks.h"

#include <QPainter>
#include <QSystemTrayIcon>

using namespace Qt::StringLiterals;

namespace sx {

QIcon fleetTrayImage(FleetState worst, int inAlarm)
{
    QPixmap pm = fleetStateMark(worst).pixmap(32, 32);
    if (inAlarm > 0) {
        QPainter p(&pm);
        QFont f = p.font();
        f.setBold(true);
        f.setPixelSize(inAlarm > 99 ? 11 : 16);
        p.setFont(f);
        p.setPen(Qt::white);
        p.drawText(pm.rect(), Qt::AlignCenter, inAlarm > 999 ? u"999"_s : QString::number(inAlarm));
    }
    return QIcon(pm);
}

FleetTrayIcon::FleetTrayIcon(QObject* parent) : QObject(parent)
{
    if (!QSystemTrayIcon::isSystemTrayAvailable())
        return;
    m_tray = new QSystemTrayIcon(fleetTrayImage(FleetState::Normal, 0), this);
    m_tray->setToolTip(appTitle());
    connect(m_tray, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason r) {
        if (r == QSystemTrayIcon::Trigger || r == QSystemTrayIcon::DoubleClick)
            emit activated();
    });
    m_tray->show();
}

void FleetTrayIcon::setFleet(const FleetSummary& fleet)
{
    if (!m_tray)
        return;
    const int alarms = fleet.count(FleetState::Alarm);
    m_tray->setIcon(fleetTrayImage(fleet.worst(), alarms));
    m_tray->setToolTip(appTitle() + u"\n"_s + fleetStateWord(FleetState::Alarm) + u": "_s +
                       QString::number(alarms) + u" / "_s + QString::number(fleet.units.size()));
}

void FleetTrayIcon::setDatabaseLost()
{
    if (!m_tray)
        return;
    m_tray->setIcon(fleetTrayImage(FleetState::Offline, 0));
    m_tray->setToolTip(appTitle() + u"\nΣΦΑΛΜΑ ΣΥΝΔΕΣΗΣ ΜΕ ΤΗ ΒΑΣΗ ΔΕΔΟΜΕΝΩΝ"_s);
}

} // namespace sx
