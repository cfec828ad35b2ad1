#pragma once

#include "model/DbError.h"
#include "model/report/CurrentReportLayout.h"
#include "reports/ReportPdf.h"

#include <QString>

class QWidget;

namespace sx {

struct AppContext;

// Everything the report shows, read on the console's connection; the time of printing from the
// clock.
[[nodiscard]] DbError readCurrentReport(AppContext& ctx, const QString& serial,
                                        report::ReportData& data);

// "Εκτύπωση τρέχουσας κατάστασης": asks for a printer, then prints the
// current condition of the unit. Cancelling the dialog prints nothing.
void printCurrentCondition(AppContext& ctx, QWidget* parent, const QString& serial,
                           ReportOutput output = ReportOutput::Print);

} // namespace sx
