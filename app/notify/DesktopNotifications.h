#pragma once

#include "model/fleet/FleetChanges.h"

#include <QDBusConnection>
#include <QHash>
#include <QObject>

namespace sx {

// Sends notices to the desktop's notification service
// (org.freedesktop.Notifications) and reports a click on one as the unit to
// open. Calls do not wait for the service: a slow or missing one costs nothing.
class DesktopNotifications : public QObject {
    Q_OBJECT
public:
    explicit DesktopNotifications(const QDBusConnection& bus = QDBusConnection::sessionBus(),
                                  QObject* parent = nullptr);

    void send(const FleetNotice& notice);

signals:
    // The operator clicked the notice of this unit.
    void unitRequested(const QString& serial);
    // The operator clicked a digest of several units.
    void overviewRequested();

private slots:
    void onActionInvoked(uint id, const QString& action);
    void onClosed(uint id, uint reason);

private:
    QDBusConnection m_bus;
    QHash<uint, QString> m_serials;
};

} // namespace sx
