#pragma once

#include "model/records/RecordsQuery.h"
#include "model/summary/SummaryData.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace sx {

namespace summary_report {

inline constexpr double kMarginMm = 10.0;
inline constexpr double kPageLineTopMm = 10.5;
inline constexpr double kChartHeightMm = 75.0;

// "SENTORAX Monitor / ΣΥΝΟΨΗ ΜΗΝΑ", or "... / ΣΥΝΟΨΗ ΕΤΟΥΣ" for a whole year.
[[nodiscard]] QString titleText(const summary::SummaryPeriod& period);
[[nodiscard]] QString headingText(const summary::SummaryInput& in, const records::ZoneEntry& zone);
[[nodiscard]] QString limitsText(const records::ZoneEntry& zone);
// "3 ώρ. 05 λεπ." (whole minutes, rounded).
[[nodiscard]] QString durationText(qint64 secs);
// "Σελίδα n/N".
[[nodiscard]] QString pageLine(int page, int pages);

// One piece of a zone's pages, in the order printed.
struct Block {
    enum class Kind { Chart, Line, Cells, Gap };
    Kind kind = Kind::Line;
    QStringList cells; // Line: one text; Cells: one per column
    int table = -1;    // Cells: the table it belongs to (its head is repeated on a new page)
    bool head = false; // the column titles of a table
    int zone = 0;      // index into SummaryInput::zones
};
[[nodiscard]] QList<Block> zoneBlocks(const summary::SummaryInput& in, int zoneIndex);

// Columns of a table: left edges as parts of the text width; numbers end at the next edge.
[[nodiscard]] QList<double> columnEdges(int table);
[[nodiscard]] bool alignRight(int table, int column);

struct Placement {
    int page = 0;
    double y = 0.0;
    bool headAbove = false; // a table went on to this page: its head comes first
};
struct Plan {
    QList<Placement> blocks;
    QList<int> zoneFirstPage;
    int pages = 1;
};
// Each zone starts on a page of its own; a block that would end below
// bottomY moves to the next page, where a table's head is printed again.
[[nodiscard]] Plan planBlocks(const QList<Block>& blocks, const QList<double>& heights,
                              double firstY, double bottomY);

} // namespace summary_report

} // namespace sx
