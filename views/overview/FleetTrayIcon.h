#pragma once

#include "model/fleet/FleetChanges.h"
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
    // A notice the desktop did not take, as the tray's own message.
    void showNotice(const FleetNotice& notice);
    // A line kept under the state in the tool tip.
    void setNote(const QString& note);
    [[nodiscard]] bool available() const { return m_tray != nullptr; }

signals:
    void activated();
    // The message of a unit's notice was clicked; an empty serial for any other.
    void noticeClicked(const QString& serial);

private:
    void setToolTip(const QString& state);

    QSystemTrayIcon* m_tray = nullptr;
    QString m_state;
    QString m_note;
    QString m_shownSerial;
};

// The tray's picture: the state's mark with the number in alarm on it (none for 0).
[[nodiscard]] QIcon fleetTrayImage(FleetState worst, int inAlarm);

} // namespace sx
