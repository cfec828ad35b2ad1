#pragma once

#include "model/Database.h"
#include "model/DbError.h"
#include "model/report/CurrentReportLayout.h"

#include <QString>

class QPrinter;

namespace sx {

// Everything the report shows but the time of printing, read before a line is
// printed, so that a failed query leaves no half-printed job.
[[nodiscard]] DbError readCurrentReport(Database& db, const QString& serial,
                                        report::ReportData& data);
// The whole report on `printer` (A4 portrait); false when a page failed.
bool drawCurrentReport(QPrinter& printer, const report::ReportData& data);

} // namespace sx
