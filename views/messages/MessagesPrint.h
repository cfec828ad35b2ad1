#pragma once

#include "model/QueryHelpers.h"
#include "reports/ReportPdf.h"

#include <QString>

#include <functional>
#include <optional>

class QWidget;

namespace sx {

struct AppContext;

// Printmsgs: the nothing-to-print check, the rebuild of the view (nothing when
// it failed; the failure is already reported), the printer choice, the
// printout. Cancelling the printer choice prints nothing.
void printMessages(AppContext& ctx, QWidget* parent, MessageKind kind,
                   const std::function<std::optional<QString>()>& rebuild,
                   ReportOutput output = ReportOutput::Print);

} // namespace sx
