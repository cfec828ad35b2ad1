#pragma once

#include "model/report/EventsReportLayout.h"

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
