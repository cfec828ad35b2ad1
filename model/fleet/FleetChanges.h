#pragma once

#include "model/fleet/FleetSummary.h"

#include <optional>

namespace sx {

// One desktop notification: what became worse on one unit since it was last known.
struct FleetNotice {
    QString serial;
    QString title;
    QString body;          // one line per change
    bool critical = false; // a zone or the power supply in alarm
    bool overview = false; // a digest of several units: a click opens the overview
};

// The changes that deserve the operator's attention: a zone newly in alarm
// or out of its limits, a power input newly cut, the connection lost, a new
// fault, more new messages. Nothing when only things got better.
[[nodiscard]] std::optional<FleetNotice> fleetNotice(const UnitSummary& known,
                                                     const UnitSummary& now);

// Several units at once, as one notice: the critical ones first, at most
// `lines` of them named, the rest counted.
[[nodiscard]] FleetNotice fleetDigest(QList<FleetNotice> notices, int lines = 5);

// The notices of the database connection.
[[nodiscard]] FleetNotice connectionLostNotice();
[[nodiscard]] FleetNotice connectionBackNotice();

} // namespace sx
