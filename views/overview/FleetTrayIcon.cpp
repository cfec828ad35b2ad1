#include "views/overview/FleetTrayIcon.h"

#include "ui/AppContext.h"
#include "ui/UnitMarks.h"

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
    connect(m_tray, &QSystemTrayIcon::messageClicked, this,
            [this] { emit noticeClicked(m_shownSerial); });
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
    setToolTip(fleetStateWord(FleetState::Alarm) + u": "_s + QString::number(alarms) + u" / "_s +
               QString::number(fleet.units.size()));
}

void FleetTrayIcon::setDatabaseLost()
{
    if (!m_tray)
        return;
    m_tray->setIcon(fleetTrayImage(FleetState::Offline, 0));
    setToolTip(u"ΣΦΑΛΜΑ ΣΥΝΔΕΣΗΣ ΜΕ ΤΗ ΒΑΣΗ ΔΕΔΟΜΕΝΩΝ"_s);
}

void FleetTrayIcon::showNotice(const FleetNotice& notice)
{
    if (!m_tray)
        return;
    m_shownSerial = notice.serial;
    m_tray->showMessage(notice.title, notice.body,
                        notice.critical ? QSystemTrayIcon::Critical : QSystemTrayIcon::Warning);
}

void FleetTrayIcon::setNote(const QString& note)
{
    m_note = note;
    setToolTip(m_state);
}

void FleetTrayIcon::setToolTip(const QString& state)
{
    m_state = state;
    if (!m_tray)
        return;
    QString text = appTitle();
    for (const QString& line : {state, m_note}) {
        if (!line.isEmpty())
            text += u'\n' + line;
    }
    m_tray->setToolTip(text);
}

} // namespace sx
