#pragma once

#include <QString>

#include <array>
#include <functional>

class QIODevice;
class QWidget;

namespace sx {

class DialogService;

namespace xlsx {

// The file name of the spreadsheet template, kept beside the program.
inline constexpr char16_t kTemplateFileName[] = u"TEMPLATEv2.xlsx";
// The template of this installation: see templatePathFor.
[[nodiscard]] QString defaultTemplatePath();
// Where the template of a program in `programDir` is: beside the program (a
// build tree) or in the installed data folder beside its bin/ (`dataFromBin`,
// relative to `programDir`). When neither holds it, the installed place if that
// folder exists, so that the missing-file message names the right place.
[[nodiscard]] QString templatePathFor(const QString& programDir, const QString& dataFromBin);

// The save dialog for a workbook; ".xlsx" is added to a name without an
// extension. Empty when cancelled.
[[nodiscard]] QString askExcelFileName(DialogService& dialogs, QWidget* parent,
                                       const QString& proposed);

// What goes into the first worksheet: E2 to E6, then the rows from sheet row 2
// (A the date-time text, B the reading text), all as text cells.
struct SheetFill {
    // Unit, zone, month/year, maximum limit, minimum limit; an empty text leaves its cell empty.
    std::array<QString, 5> heading;
    int rowCount = 0;
    std::function<QString(int)> dateText;
    std::function<QString(int)> readingText;
};

// A worksheet has 1,048,576 rows and the records start at row 2. An export of
// more records than fit stops at the sheet's last row and the user hears how
// many were left out: one sheet keeps the workbook as the template shapes it
// (its heading beside the first rows), which a second sheet would not.
inline constexpr int kSheetRows = 1048576;
// How many of rowCount records a sheet of sheetRows rows takes.
[[nodiscard]] int recordsThatFit(int rowCount, int sheetRows = kSheetRows);
// The notice after an export that left records out.
[[nodiscard]] QString leftOutMessage(int written, int leftOut);

// Copies the template's first worksheet XML to `out` with the fill merged in:
// every other cell, row attribute and element of the template stays as it was.
// false when the XML cannot be read as a worksheet.
bool fillSheetXml(const QByteArray& templateSheet, QIODevice& out, const SheetFill& fill);

enum class ExportStatus {
    Written,
    TemplateMissing,   // no file at the template's place
    TemplateDamaged,   // not a zip, or no workbook with a first worksheet in it
    TargetNotWritable, // the copy cannot be made at the chosen place
    WriteFailed,       // the copy was started but could not be completed
    Unavailable,       // built without a zip library
};

// Fills a copy of the template and saves it as `target`. The template is only
// read; the target appears complete or not at all (a file already there is
// kept unless the new one was written in full).
[[nodiscard]] ExportStatus writeWorkbook(const QString& templatePath, const QString& target,
                                         const SheetFill& fill);

// The Greek message for a status the user must hear about; empty for the
// others (written, or a place that cannot be written, which passes silently).
[[nodiscard]] QString statusMessage(ExportStatus status, const QString& templatePath);

} // namespace xlsx
} // namespace sx
