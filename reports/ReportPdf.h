#pragma once

#include <QPageLayout>

#include <functional>

class QPrinter;
class QString;

namespace sx {

// Draws one whole report on a printer; false when a page could not be begun or finished.
using ReportDrawing = std::function<bool(QPrinter&)>;

enum class ReportOutput { Print, Preview };

// A printer set to A4 in `orientation`.
void setUpA4(QPrinter& printer, QPageLayout::Orientation orientation);

// The drawing into a PDF file, set up as the print dialog leaves a PDF
// printer. The file appears complete or not at all (one already there is kept
// unless the new one was written in full).
[[nodiscard]] bool writeReportPdf(const QString& path, QPageLayout::Orientation orientation,
                                  const ReportDrawing& draw);

} // namespace sx
