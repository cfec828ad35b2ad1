#pragma once

#include "model/summary/SummaryData.h"
#include "reports/ReportPdf.h"
#include "reports/records/RecordsReport.h"

#include <QString>

class QWidget;

namespace sx {

struct AppContext;

// "Εκτύπωση αρχείου καταγραφών": the printer dialog, then the report, or its
// preview. Cancelling prints nothing.
void printRecordsReport(AppContext& ctx, QWidget* parent, const RecordsReportInput& in,
                        ReportOutput output = ReportOutput::Print);

// "Σύνοψη μήνα" of the records view: reads the zone's period, then prints it
// through the printer dialog or shows its preview. A failed read is reported.
void printSummary(AppContext& ctx, QWidget* parent, const QString& serial, int zoneNumber,
                  const summary::SummaryPeriod& period, ReportOutput output);

} // namespace sx
