#pragma once

#include "model/summary/SummaryData.h"
#include "reports/xlsx/XlsxExport.h"

#include <QString>

namespace sx::summary {

// The summary as a workbook of its own, one sheet per zone ("Ζώνη 7"): the
// heading and totals from A1, the day table from A9, the excursions (or
// openings) from I9 and the gaps after them. Days and times are spreadsheet dates, values and
// minutes numbers. The target appears complete or not at all.
[[nodiscard]] xlsx::ExportStatus writeSummaryWorkbook(const QString& target,
                                                      const SummaryInput& in);

// A wall-clock time as a spreadsheet date number (days since 30/12/1899).
[[nodiscard]] double spreadsheetDate(qint64 secs);

} // namespace sx::summary
