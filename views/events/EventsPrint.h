#pragma once

#include "reports/ReportPdf.h"
#include "reports/events/EventsReport.h"

class QWidget;

namespace sx {

struct AppContext;

// "Εκτύπωση αρχείου συμβάντων": the printer dialog, then the report.
// Cancelling prints nothing. A PDF is drawn on a thread of its own while the
// window keeps being painted and the wait window counts the pages; a printer
// and the preview are drawn here.
void printEventsReport(AppContext& ctx, QWidget* parent, const EventsReportInput& in,
                       ReportOutput output = ReportOutput::Print);

} // namespace sx
