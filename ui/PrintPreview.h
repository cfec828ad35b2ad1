#pragma once

#include "reports/ReportPdf.h"

#include <QPageLayout>

class QWidget;

namespace sx {

struct AppContext;

// A report laid out on A4 in `orientation`: through the print dialog, or shown
// in the print preview with its page count, from which the same drawing prints.
// Cancelling prints nothing; a drawing that fails is reported.
void runReport(AppContext& ctx, QWidget* owner, QPageLayout::Orientation orientation,
               ReportOutput output, const ReportDrawing& draw);

} // namespace sx
