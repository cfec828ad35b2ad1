#pragma once

#include <QList>
#include <QString>

namespace sx::events_report {

inline constexpr double kMarginMm = 10.0;
inline constexpr double kFrameTopMm = 34.0;
inline constexpr double kFirstLineMm = 35.0;
inline constexpr double kPageLineTopMm = 10.5;

// The texts of the controls the choices line restates.
struct Choices {
    QString unit;
    QString source;
    bool kindApplies = true; // the alarm/restoration options are enabled
    int kind = 0;            // 0 alarms, 1 restorations, 2 both
    QString month;
    QString year;
    bool newOnly = true;
};

[[nodiscard]] QString titleText();
[[nodiscard]] QString choicesLine(const Choices& c);
// "Σελίδα n/N".
[[nodiscard]] QString pageLine(int page, int pages);

// Where an entry goes: page and column (0-based) and its top in millimetres.
struct Placement {
    int page = 0;
    int column = 0;
    double y = kFirstLineMm;
};
struct Layout {
    QList<Placement> entries;
    int pages = 1;
};
// Entries fill the left column from y = 35, then the right one, then a new
// page; one that would end below pageHeight - 10 moves on. An entry taller
// than a whole column stays at the top of the column it starts and runs past.
[[nodiscard]] Layout layoutEntries(const QList<double>& heights, double pageHeight);

[[nodiscard]] double columnTextLeft(int column, double pageWidth);
[[nodiscard]] double columnTextWidth(double pageWidth);

} // namespace sx::events_report
