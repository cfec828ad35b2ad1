#pragma once

#include <QString>

#include <functional>

namespace sx {

// What the records report prints, read from the records window at the moment
// of the command: the list texts and the selected rows in grid order.
struct RecordsReportInput {
    QString unitText;
    QString zoneText;
    QString monthText;
    QString yearText;
    int rowCount = 0;
    // Texts of row i (0 = the first selected row) as the grid shows them.
    std::function<QString(int)> dateText;
    std::function<QString(int)> readingText;
};

namespace records_report {

inline constexpr double kMarginMm = 10.0;
inline constexpr double kTableTopMm = 34.0;
inline constexpr double kFirstLineMm = 35.0;
inline constexpr double kPageLineTopMm = 10.5;
inline constexpr int kColumnsPerPage = 4;

[[nodiscard]] QString titleText();
// The heading before wrapping.
[[nodiscard]] QString headingText(const RecordsReportInput& in);
// "Σελίδα n/N".
[[nodiscard]] QString pageLine(int page, int pages);

// Where each row goes: rows fill a column top to bottom from y = 35 while the
// next line stays above the bottom limit, then the next column, four per page.
struct Layout {
    int rowsPerColumn = 0;
    int pages = 1; // the number the page lines give
    [[nodiscard]] int pageOf(int row) const { return row / (rowsPerColumn * kColumnsPerPage); }
    [[nodiscard]] int columnOf(int row) const { return (row / rowsPerColumn) % kColumnsPerPage; }
    [[nodiscard]] int lineOf(int row) const { return row % rowsPerColumn; }
};
// `printableHeight` and `lineHeight` in millimetres; at least one row per column.
[[nodiscard]] Layout layoutRows(int rowCount, double printableHeight, double lineHeight);

// Left edge of column c, and the right end of its reading (2 mm inside the line).
[[nodiscard]] double columnTextLeft(int column, double printableWidth);
[[nodiscard]] double columnTextRight(int column, double printableWidth);

} // namespace records_report

} // namespace sx
