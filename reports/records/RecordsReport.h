#pragma once

#include "model/report/RecordsReportLayout.h"

#include <QString>

#include <functional>

class QPrinter;

namespace sx {

// The whole report on `printer` (A4 portrait); false when a page failed.
bool drawRecordsReport(QPrinter& printer, const RecordsReportInput& in);

} // namespace sx
