#pragma once

#include <QPageLayout>
#include <QPrinter>

class QWidget;

namespace sx {

struct AppContext;

// The printer chosen last in this run (AppContext::printer): the next print
// dialog starts from it. A printer of the system, or a PDF file.
struct PrinterChoice {
    QString name;
    QString pdfFile;
    int copies = 1;
    bool collate = true;
    QPrinter::DuplexMode duplex = QPrinter::DuplexNone;
    QPrinter::ColorMode colorMode = QPrinter::Color;
    QPrinter::PaperSource paperSource = QPrinter::Auto;
};

// Sets `printer` to the last choice; a printer no longer installed is left out.
// Without `withFile` a PDF file is left out too (the preview asks for its own).
void useLastPrinter(const AppContext& ctx, QPrinter& printer, bool withFile = true);
// Keeps the printer's choice for the next dialog.
void keepPrinter(AppContext& ctx, const QPrinter& printer);

// The system print dialog before a report, starting from the last choice: the
// user may pick any printer or a PDF file. false when cancelled, and then
// nothing is printed.
[[nodiscard]] bool choosePrinter(AppContext& ctx, QWidget* owner, QPrinter& printer);

// The same for a report laid out on A4 in one orientation: after the dialog the
// paper and orientation are set back, since the layout depends on them (a
// printer without A4 keeps its own paper; the font follows its width).
[[nodiscard]] bool chooseReportPrinter(AppContext& ctx, QWidget* owner, QPrinter& printer,
                                       QPageLayout::Orientation orientation);

// The printer could not start or a page could not be written.
void reportPrintFailed(AppContext& ctx, QWidget* owner);

} // namespace sx
