#include "ui/notify/DesktopNotifications.h"

#include "ui/AppContext.h"
#include "ui/AppIcon.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

const QString kService = u"org.freedesktop.Notifications"_s;
const QString kPath = u"/org/freedesktop/Notifications"_s;

QDBusMessage method(const QString& name)
{
    return QDBusMessage::createMethodCall(kService, kPath, kService, name);
}

QString unitKey(const QString& serial)
{
    return u"unit:"_s + serial;
}

// Which notice a new one replaces.
QString slotKey(const FleetNotice& n)
{
    if (n.overview)
        return u"digest"_s;
    return n.serial.isEmpty() ? u"database"_s : unitKey(n.serial);
}

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
    if (!m_bus.isConnected()) {
        // Handed back from the event loop, as after a failed call.
        ++m_calls;
        QMetaObject::invokeMethod(
            this,
            [this, notice] {
                --m_calls;
                emit notDelivered(notice);
            },
            Qt::QueuedConnection);
        return;
    }
    const QString key = slotKey(notice);
    if (m_caps != Caps::Known) {
        m_waiting.removeIf([&key](const FleetNotice& n) { return slotKey(n) == key; });
        m_waiting.append(notice);
        if (m_caps == Caps::Unknown)
            askCapabilities();
        return;
    }
    Slot& slot = m_slots[key];
    if (slot.calling) {
        // The id to replace comes with the answer on its way.
        slot.followUp = true;
        slot.next = notice;
        return;
    }
    notify(key, notice);
}

void DesktopNotifications::withdraw(const QString& serial)
{
    const QString key = unitKey(serial);
    m_waiting.removeIf([&key](const FleetNotice& n) { return slotKey(n) == key; });
    const auto it = m_slots.find(key);
    if (it == m_slots.end())
        return;
    if (it->calling) {
        it->followUp = true;
        it->next.reset();
        return;
    }
    close(key);
}

void DesktopNotifications::askCapabilities()
{
    m_caps = Caps::Asking;
    ++m_calls;
    auto* watcher = new QDBusPendingCallWatcher(
        m_bus.asyncCall(method(u"GetCapabilities"_s), kCallTimeoutMs), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* w) {
        w->deleteLater();
        const QDBusPendingReply<QStringList> reply = *w;
        const QList<FleetNotice> waiting = std::exchange(m_waiting, {});
        --m_calls;
        if (reply.isError()) {
            // Asked again with the next notice: a service started later is found then.
            m_caps = Caps::Unknown;
            for (const FleetNotice& n : waiting)
                emit notDelivered(n);
            return;
        }
        m_caps = Caps::Known;
        // Without it the service shows markup as it is written.
        m_markup = reply.value().contains(u"body-markup"_s);
        for (const FleetNotice& n : waiting)
            send(n);
    });
}

void DesktopNotifications::notify(const QString& key, const FleetNotice& notice)
{
    Slot& slot = m_slots[key];
    slot.calling = true;
    QStringList actions;
    if (!notice.serial.isEmpty() || notice.overview)
        actions << u"default"_s << u"Άνοιγμα"_s;
    const QString desktopId = QString::fromUtf16(kDesktopId);
    QVariantMap hints;
    hints.insert(u"urgency"_s, QVariant::fromValue<uchar>(notice.critical ? 2 : 1));
    hints.insert(u"category"_s, notice.critical ? u"device.error"_s : u"device"_s);
    hints.insert(u"desktop-entry"_s, desktopId);
    QDBusMessage call = method(u"Notify"_s);
    // The summary is plain text by the protocol; only the body is read as markup.
    call << appTitle() << slot.id << desktopId << notice.title
         << (m_markup ? notice.body.toHtmlEscaped() : notice.body) << actions << hints << -1;
    ++m_calls;
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call, kCallTimeoutMs), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, key, notice](QDBusPendingCallWatcher* w) {
                w->deleteLater();
                const QDBusPendingReply<uint> reply = *w;
                --m_calls;
                Slot& s = m_slots[key];
                s.calling = false;
                m_keys.remove(s.id);
                if (reply.isError()) {
                    s.id = 0;
                    m_caps = Caps::Unknown;
                    emit notDelivered(notice);
                } else {
                    s.id = reply.value();
                    s.notice = notice;
                    m_keys.insert(s.id, key);
                }
                followUp(key);
            });
}

void DesktopNotifications::followUp(const QString& key)
{
    const auto it = m_slots.find(key);
    if (it == m_slots.end() || !it->followUp)
        return;
    it->followUp = false;
    const std::optional<FleetNotice> next = std::exchange(it->next, std::nullopt);
    if (next)
        send(*next);
    else
        close(key);
}

void DesktopNotifications::close(const QString& key)
{
    const Slot slot = m_slots.take(key);
    if (slot.id == 0)
        return;
    m_keys.remove(slot.id);
    QDBusMessage call = method(u"CloseNotification"_s);
    call << slot.id;
    ++m_calls;
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call, kCallTimeoutMs), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* w) {
        w->deleteLater();
        --m_calls;
    });
}

void DesktopNotifications::onActionInvoked(uint id, const QString& action)
{
    const auto it = m_slots.constFind(m_keys.value(id));
    if (it == m_slots.cend() || action != u"default"_s)
        return;
    if (it->notice.overview)
        emit overviewRequested();
    else if (!it->notice.serial.isEmpty())
        emit unitRequested(it->notice.serial);
}

void DesktopNotifications::onClosed(uint id, uint)
{
    const auto key = m_keys.constFind(id);
    if (key == m_keys.cend())
        return;
    const auto it = m_slots.find(*key);
    m_keys.erase(key);
    // A replacement on its way comes back as a new notice.
    if (it == m_slots.end() || it->calling)
        return;
    const FleetNotice notice = it->notice;
    m_slots.erase(it);
    emit closed(notice);
}

} // namespace sx
