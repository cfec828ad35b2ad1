#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <functional>

class QIODevice;

namespace sx::xlsx {

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

// The extent of the template's cells; false when it is no worksheet.
bool scanSheet(const QByteArray& sheet, int& maxRow, int& maxCol);

// Copies the template's first worksheet XML to `out` with the fill merged in:
// every other cell, row attribute and element of the template stays as it was.
// false when the XML cannot be read as a worksheet.
bool fillSheetXml(const QByteArray& templateSheet, QIODevice& out, const SheetFill& fill);

// The text without the control characters XML 1.0 has no place for.
[[nodiscard]] QString xmlText(const QString& text);

} // namespace sx::xlsx
