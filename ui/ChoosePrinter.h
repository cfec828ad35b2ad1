#pragma once

#include <QPageLayout>

class QPrinter;
class QWidget;

namespace sx {

struct AppContext;

// The system print dialog before a report: the user may pick any printer or a
// PDF file. false when cancelled, and then nothing is printed.
[[nodiscard]] bool choosePrinter(AppContext& ctx, QWidget* owner, QPrinter& printer);

// The same for a report laid out on A4 in one orientation: after the dialog the
// paper and orientation are set back, since the layout depends on them (a
// printer without A4 keeps its own paper; the font follows its width).
[[nodiscard]] bool chooseReportPrinter(AppContext& ctx, QWidget* owner, QPrinter& printer,
                                       QPageLayout::Orientation orientation);

// The printer could not start or a page could not be written.
void reportPrintFailed(AppContext& ctx, QWidget* owner);

} // namespace sx
