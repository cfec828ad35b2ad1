#pragma once

#include "model/fleet/FleetSummary.h"

#include <QIcon>
#include <QStringList>

class QComboBox;

namespace sx {

// A round mark in the colour of a state, the same in the overview, the unit
// lists and the tray.
[[nodiscard]] QIcon fleetStateMark(FleetState state);
[[nodiscard]] QColor fleetStateColor(FleetState state);

// Gives every entry of a freshly filled unit list its serial (Qt::UserRole)
// and the mark of its unit's state; the texts stay as they are.
void markUnitList(QComboBox& list, const QStringList& serials, const FleetSummary* fleet);
// The marks again after a new read, for a list markUnitList has filled.
void remarkUnitList(QComboBox& list, const FleetSummary* fleet);

} // namespace sx
