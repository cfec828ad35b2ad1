#pragma once

#include "model/Database.h"
#include "model/UnitEntries.h"
#include "ui/QueryFailureReporter.h"

#include <QList>
#include <QString>

namespace sx {

class ViewWindow;

// Refills the view's unit list and the shared serials, adds "ΟΛΑ" when asked
// and there are two or more units, and selects the entry at `initialIndex`
// (entry 0 when out of range), which raises the view's selection event. An empty list selects
// nothing. A list that cannot be read keeps the entries it had (the view is marked for a refill
// when the database answers again); the failure is reported as coming from `origin`.
void fillSystemSelect(ViewWindow& view, int initialIndex, bool includeAll,
                      FailureOrigin origin = FailureOrigin::User);

} // namespace sx
