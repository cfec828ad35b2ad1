#pragma once

#include "model/fleet/FleetSummary.h"

#include <QObject>

class QSystemTrayIcon;

namespace sx {

// The worst state of the fleet and the number of units in alarm, in the
// desktop's tray; nothing at all where the desktop has no tray.
class FleetTrayIcon : public QObject {
    Q_OBJECT
public:
    explicit FleetTrayIcon(QObject* parent = nullptr);

    void setFleet(const FleetSummary& fleet);
    void setDatabaseLost();
    [[nodiscard]] bool available() const { return m_tray != nullptr; }

signals:
    void activated();

private:
    QSystemTrayIcon* m_tray = nullptr;
};

// The tray's picture: the state's mark with the number in alarm on it (none for 0).
[[nodiscard]] QIcon fleetTrayImage(FleetState worst, int inAlarm);

} // namespace sx
