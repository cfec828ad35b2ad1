#pragma once

#include <QList>
#include <QPageLayout>
#include <QPagedPaintDevice>
#include <QString>

#include <atomic>
#include <functional>

class QPdfWriter;
class QPrinter;

namespace sx {

// What the events report prints, read from the events window at the moment
// of the command: the choices line and the selected rows in grid order. The
// text functions may be called on a drawing thread of their own.
struct EventsReportInput {
    QString choices;
    int rowCount = 0;
    // Texts of row i (0 = the first selected row) as the grid shows them.
    std::function<QString(int)> dateText;
    std::function<QString(int)> descriptionText;
};

namespace events_report {

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

} // namespace events_report

// How far a drawing has come, for a thread that shows it: pages is known
// once the entries are laid out, page counts the pages begun.
struct ReportProgress {
    std::atomic<int> page{0};
    std::atomic<int> pages{0};
};

// The whole report on `device` (A4 portrait); false when a page failed. A
// printer that writes a PDF file has the file written directly.
bool drawEventsReport(QPagedPaintDevice& device, const EventsReportInput& in,
                      ReportProgress* progress = nullptr);

// What a PDF file of the report is written with, taken from the printer the
// user chose so that a drawing thread needs nothing of it.
struct PdfTarget {
    QString file;
    QPageLayout layout;
    int resolution = 1200;
    QString title;
    QString creator;
    QPagedPaintDevice::PdfVersion version = QPagedPaintDevice::PdfVersion_1_4;

    explicit PdfTarget(const QPrinter& printer);
    void setUp(QPdfWriter& writer) const;
};

// A year of events runs to thousands of pages: their text is written
// straight to the file. A text only Qt can set (a mark, another script) sends
// the whole report through Qt's PDF engine instead.
bool writeEventsPdf(const PdfTarget& target, const EventsReportInput& in,
                    ReportProgress* progress = nullptr);

} // namespace sx
