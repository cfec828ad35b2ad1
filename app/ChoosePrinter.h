#pragma once

class QPrinter;
class QWidget;

namespace sx {

struct AppContext;

// The system print dialog before a report: the user may pick any printer or a
// PDF file. false when cancelled, and then nothing is printed.
[[nodiscard]] bool choosePrinter(AppContext& ctx, QWidget* owner, QPrinter& printer);

} // namespace sx
