#pragma once

#include <QString>

class QPrinter;

namespace sx {

// A printer that writes a PDF file writes it under a name of its own beside
// the file the user chose; commit() then puts it in that file's place in one
// step. A drawing that fails (a full disk, a lost database) thus leaves the
// user's old file as it was. Printers that do not write a file are left alone.
class PdfFileSwap {
public:
    explicit PdfFileSwap(QPrinter& printer);
    ~PdfFileSwap();
    PdfFileSwap(const PdfFileSwap&) = delete;
    PdfFileSwap& operator=(const PdfFileSwap&) = delete;

    // Call once the painter on the printer has ended; false when the part
    // written is empty or could not take the chosen file's place.
    [[nodiscard]] bool commit();

private:
    QPrinter& printer_;
    QString target_;
    QString part_;
};

} // namespace sx
