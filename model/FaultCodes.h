#pragma once

#include <QString>

#include <optional>

namespace sx {

// One row of the unit fault table shared by the current view, its report,
// the messages and the unit-fault events.
struct UnitFaultInfo {
    QString text;
    bool needsService = false;
};

// The fault of a unit fault code, compared as text; nothing for a code
// outside the table.
[[nodiscard]] std::optional<UnitFaultInfo> unitFault(QStringView code);

[[nodiscard]] QString serviceLineText();        // "* ΠΑΡΑΚΑΛΩ ΚΑΛΕΣΤΕ ΤΟ SERVICE *"
[[nodiscard]] QString sensorFaultPrefix();      // "ΠΡΟΒΛΗΜΑ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ "

} // namespace sx
