#pragma once

#include "model/fleet/FleetChanges.h"

#include <QDateTime>
#include <QHash>

#include <functional>

namespace sx {

class Clock;

// Decides which notices reach the desktop: nothing for the state found at
// start-up, at most one notice a minute per unit, one notice when the
// database is lost and one when it is back. A few units may each have a
// notice standing on the desktop; past that they make way for one digest
// (at most one a minute), which gathers what changes until it is closed.
class AlarmNotifier {
public:
    using Send = std::function<void(const FleetNotice&)>;
    // Takes the notice of this unit off the desktop.
    using Withdraw = std::function<void(const QString& serial)>;
    static constexpr qint64 kUnitQuietMs = 60'000;
    // More units than this with a notice standing are told in one digest.
    static constexpr int kLiveNotices = 5;

    AlarmNotifier(const Clock& clock, Send send, Withdraw withdraw = {});

    void setEnabled(bool on) { m_enabled = on; }
    [[nodiscard]] bool enabled() const { return m_enabled; }

    // After every successful read of the fleet.
    void update(const FleetSummary& fleet);
    // After a read that failed.
    void readFailed();
    // The desktop no longer shows this notice: closed, expired, never delivered.
    void gone(const FleetNotice& notice);

private:
    void send(const FleetNotice& notice);

    const Clock& m_clock;
    Send m_send;
    Withdraw m_withdraw;
    bool m_enabled = true;
    bool m_started = false;
    bool m_lost = false;
    // What the operator was last told (or found at start-up), per unit.
    QHash<QString, UnitSummary> m_known;
    QHash<QString, QDateTime> m_lastSent;
    QDateTime m_lastDigest;
    // The units' own notices on the desktop, and what the standing digest names.
    QList<FleetNotice> m_live;
    QList<FleetNotice> m_digest;
};

} // namespace sx
