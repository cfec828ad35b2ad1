#include "app/notify/DesktopNotifications.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

const QString kService = u"org.freedesktop.Notifications"_s;
const QString kPath = u"/org/freedesktop/Notifications"_s;

} // namespace

DesktopNotifications::DesktopNotifications(const QDBusConnection& bus, QObject* parent)
    : QObject(parent), m_bus(bus)
{
    m_bus.connect(kService, kPath, kService, u"ActionInvoked"_s, this,
                  SLOT(onActionInvoked(uint, QString)));
    m_bus.connect(kService, kPath, kService, u"NotificationClosed"_s, this,
                  SLOT(onClosed(uint, uint)));
}

void DesktopNotifications::send(const FleetNotice& notice)
{
    if (!m_bus.isConnected())
        return;
    QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, kService, u"Notify"_s);
    QStringList actions;
    const bool clickable = !notice.serial.isEmpty() || notice.overview;
    if (clickable)
        actions << u"default"_s << u"Άνοιγμα"_s;
    QVariantMap hints;
    hints.insert(u"urgency"_s, QVariant::fromValue<uchar>(notice.critical ? 2 : 1));
    hints.insert(u"category"_s, notice.critical ? u"device.error"_s : u"device"_s);
    hints.insert(u"desktop-entry"_s, u"sentorax-monitor"_s);
    call << u"SENTORAX Monitor"_s << 0u << u"sentorax-monitor"_s << notice.title << notice.body
         << actions << hints << -1;
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, clickable, serial = notice.serial](QDBusPendingCallWatcher* w) {
                const QDBusPendingReply<uint> reply = *w;
                // A digest is kept with an empty serial: it opens the overview.
                if (!reply.isError() && clickable)
                    m_serials.insert(reply.value(), serial);
                w->deleteLater();
            });
}

void DesktopNotifications::onActionInvoked(uint id, const QString& action)
{
    const auto it = m_serials.constFind(id);
    if (it == m_serials.cend() || action != u"default"_s)
        return;
    if (it->isEmpty())
        emit overviewRequested();
    else
        emit unitRequested(*it);
}

void DesktopNotifications::onClosed(uint id, uint)
{
    m_serials.remove(id);
}

} // namespace sx
