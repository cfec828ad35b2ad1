#pragma once

#include "model/report/SummaryReportLayout.h"
#include "model/summary/SummaryData.h"

#include <QList>
#include <QString>
#include <QStringList>

class QPagedPaintDevice;

namespace sx {

class ReportPainter;

// Draws the whole summary on `device`; false when a page could not be begun or finished.
bool drawSummaryReport(QPagedPaintDevice& device, const summary::SummaryInput& in);

} // namespace sx
