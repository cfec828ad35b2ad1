#pragma once

#include <QString>

#include <vector>

namespace sx::graph {

namespace marked_points {

inline constexpr double kMarginMm = 10.0;
inline constexpr double kPageLineTopMm = 10.5;

[[nodiscard]] QString titleText();
[[nodiscard]] QString headingText(const QString& unitText, const QString& zoneText);
[[nodiscard]] QString timeLine(int k, const QString& timeText);
[[nodiscard]] QString valueLine(int k, const QString& valueText);
// "Σελίδα n/N".
[[nodiscard]] QString pageLine(int page, int pages);

struct Placement {
    int page = 0;
    double y = 0.0;
};
struct Plan {
    std::vector<Placement> entries;
    int pages = 1;
};
// Entries of entryLines[i] lines each, one empty line between them, from
// firstY down to bottomY on every page; an entry that does not fit goes to
// the next page whole (alone on a page, it is printed anyway).
[[nodiscard]] Plan layoutEntries(const std::vector<int>& entryLines, double firstY,
                                 double lineHeight, double bottomY);

} // namespace marked_points

} // namespace sx::graph
