#pragma once

#include "model/fleet/FleetChanges.h"

#include <QDateTime>
#include <QHash>

#include <functional>

namespace sx {

class Clock;

// Decides which notices reach the desktop: nothing for the state found at
// start-up, at most one notice a minute per unit, changes on many units at
// once as one digest (at most one a minute), one notice when the database is
// lost and one when it is back.
class AlarmNotifier {
public:
    using Send = std::function<void(const FleetNotice&)>;
    static constexpr qint64 kUnitQuietMs = 60'000;
    // More units than this changing in one read are told in one digest.
    static constexpr int kSingleNotices = 3;

    AlarmNotifier(const Clock& clock, Send send);

    void setEnabled(bool on) { m_enabled = on; }
    [[nodiscard]] bool enabled() const { return m_enabled; }

    // After every successful read of the fleet.
    void update(const FleetSummary& fleet);
    // After a read that failed.
    void readFailed();

private:
    void send(const FleetNotice& notice);

    const Clock& m_clock;
    Send m_send;
    bool m_enabled = true;
    bool m_started = false;
    bool m_lost = false;
    // What the operator was last told (or found at start-up), per unit.
    QHash<QString, UnitSummary> m_known;
    QHash<QString, QDateTime> m_lastSent;
    QDateTime m_lastDigest;
};

} // namespace sx
