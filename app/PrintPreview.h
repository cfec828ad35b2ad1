#pragma once

#include <QPageLayout>

#include <functional>

class QPrinter;
class QString;
class QWidget;

namespace sx {

struct AppContext;

// Draws one whole report on a printer; false when a page could not be begun or finished.
using ReportDrawing = std::function<bool(QPrinter&)>;

enum class ReportOutput { Print, Preview };

// A report laid out on A4 in `orientation`: through the print dialog, or shown
// in the print preview with its page count, from which the same drawing prints.
// Cancelling prints nothing; a drawing that fails is reported.
void runReport(AppContext& ctx, QWidget* owner, QPageLayout::Orientation orientation,
               ReportOutput output, const ReportDrawing& draw);

// The same drawing into a PDF file, set up as the print dialog leaves a PDF
// printer. The file appears complete or not at all (one already there is kept
// unless the new one was written in full).
[[nodiscard]] bool writeReportPdf(const QString& path, QPageLayout::Orientation orientation,
                                  const ReportDrawing& draw);

} // namespace sx
