#pragma once

#include "app/PrintPreview.h"
#include "model/DbError.h"
#include "views/current/CurrentReportLayout.h"

#include <QString>

class QPrinter;
class QWidget;

namespace sx {

struct AppContext;

// Everything the report shows, read before a line is printed; the time of printing from the clock.
[[nodiscard]] DbError readCurrentReport(AppContext& ctx, const QString& serial,
                                        report::ReportData& data);
// The whole report on `printer` (A4 portrait); false when a page failed.
bool drawCurrentReport(QPrinter& printer, const report::ReportData& data);

// "Εκτύπωση τρέχουσας κατάστασης": asks for a printer, then prints the
// current condition of the unit. Cancelling the dialog prints nothing.
void printCurrentCondition(AppContext& ctx, QWidget* parent, const QString& serial,
                           ReportOutput output = ReportOutput::Print);

} // namespace sx
