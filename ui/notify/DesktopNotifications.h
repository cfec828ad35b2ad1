#pragma once

#include "model/fleet/FleetChanges.h"

#include <QDBusConnection>
#include <QHash>
#include <QObject>

#include <optional>

namespace sx {

// Sends notices to the desktop's notification service
// (org.freedesktop.Notifications) and reports a click on one as the unit to
// open. Each unit's notice replaces the one shown before it, as do the digest
// and the notices of the database. Calls do not wait for the service: a slow
// or missing one costs nothing, and what it did not take is handed back.
class DesktopNotifications : public QObject {
    Q_OBJECT
public:
    // A service that has not answered in this time is taken for none.
    static constexpr int kCallTimeoutMs = 5000;

    explicit DesktopNotifications(const QDBusConnection& bus = QDBusConnection::sessionBus(),
                                  QObject* parent = nullptr);

    void send(const FleetNotice& notice);
    // Takes this unit's notice off the desktop.
    void withdraw(const QString& serial);
    // No call to the service is on its way.
    [[nodiscard]] bool idle() const { return m_calls == 0 && m_waiting.isEmpty(); }

signals:
    // The operator clicked the notice of this unit.
    void unitRequested(const QString& serial);
    // The operator clicked a digest of several units.
    void overviewRequested();
    // The desktop no longer shows this notice (closed by the operator, expired).
    void closed(const FleetNotice& notice);
    // No service took the notice: none on the bus, or it answered with an error.
    void notDelivered(const FleetNotice& notice);

private slots:
    void onActionInvoked(uint id, const QString& action);
    void onClosed(uint id, uint reason);

private:
    // One notice place on the desktop: a unit's, the digest's or the database's.
    struct Slot {
        uint id = 0; // 0 while none is shown
        FleetNotice notice;
        bool calling = false;
        // What waits for the call on its way: a newer notice, or (empty) a close.
        bool followUp = false;
        std::optional<FleetNotice> next;
    };

    void askCapabilities();
    void notify(const QString& key, const FleetNotice& notice);
    void close(const QString& key);
    void followUp(const QString& key);

    QDBusConnection m_bus;
    enum class Caps { Unknown, Asking, Known } m_caps = Caps::Unknown;
    bool m_markup = false;
    QList<FleetNotice> m_waiting; // until the capabilities are known
    QHash<QString, Slot> m_slots;
    QHash<uint, QString> m_keys;
    int m_calls = 0;
};

} // namespace sx
