#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QGlyphRun>
#include <QHash>
#include <QList>
#include <QPainter>
#include <QPointF>
#include <QString>

class QPagedPaintDevice;

namespace sx {

class PdfDirectWriter;

// Arial bold (Liberation Sans where Arial is missing) at 8 pt scaled by the paper width
// against A4's 11906 twips, so every report keeps its proportions on other paper sizes.
[[nodiscard]] QFont reportFont(const QPagedPaintDevice& device);

// Draws a report the way a line printer is driven: positions in millimetres from the top left
// of the printable area, a current position that print() advances line by line, one current
// font. The painter is begun on construction and ended by end() or the destructor.
class ReportPainter {
public:
    // Starts with reportFont(device) and the current position at (0, 0).
    explicit ReportPainter(QPagedPaintDevice& device);
    // Draws into `pdf` instead; `device` only lends its page layout and
    // metrics and is not painted on. painter() is then inactive.
    ReportPainter(QPagedPaintDevice& device, PdfDirectWriter& pdf);
    ~ReportPainter();
    ReportPainter(const ReportPainter&) = delete;
    ReportPainter& operator=(const ReportPainter&) = delete;

    // False when the device could not be opened (for a PDF: the file cannot be written).
    [[nodiscard]] bool isActive() const;
    // Finishes the document; false when it could not be completed.
    bool end();

    [[nodiscard]] double pageWidth() const { return m_pageWidth; }
    [[nodiscard]] double pageHeight() const { return m_pageHeight; }

    [[nodiscard]] double currentY() const { return m_y; }
    void setCurrentX(double xMm) { m_x = xMm; }
    void setCurrentY(double yMm) { m_y = yMm; }

    void setFont(const QFont& font);
    [[nodiscard]] QFont font() const { return m_font; }
    [[nodiscard]] double textWidth(const QString& text) const;
    // Height of one line of the current font; print() advances by this much.
    [[nodiscard]] double textHeight() const;

    // Prints text with its top at the current y, then moves to the start of the next line.
    void print(const QString& text);
    // The same for a text that comes back many times in one report: it is laid
    // out once and its glyphs reused, so later lines skip the shaping.
    void printRecurring(const QString& text);
    // The same for a line whose start and end recur each on its own (a date and
    // a time): the end is placed where the start's advance ends.
    void printRecurring(const QString& start, const QString& end);
    // Starts a new page and returns to its top left corner.
    bool newPage();
    void drawRect(double x1, double y1, double x2, double y2);
    void drawLine(double x1, double y1, double x2, double y2);

    // For drawing this class does not cover (rotated text, curves): device coordinates.
    [[nodiscard]] QPainter& painter() { return m_painter; }
    [[nodiscard]] QPointF toDevice(double xMm, double yMm) const;
    [[nodiscard]] double deviceUnitsPerMmX() const { return m_unitsPerMmX; }
    [[nodiscard]] double deviceUnitsPerMmY() const { return m_unitsPerMmY; }

private:
    ReportPainter(QPagedPaintDevice& device, PdfDirectWriter* pdf);
    void drawText(QPointF topLeft, const QString& text);
    [[nodiscard]] QPointF toPoints(QPointF device) const;

    QPagedPaintDevice& m_device;
    PdfDirectWriter* m_pdf = nullptr;
    QPointF m_originPt; // the printable area's top left on the page, in points
    QPainter m_painter;
    QFont m_font;
    QFontMetricsF m_metrics;
    double m_unitsPerMmX = 1.0;
    double m_unitsPerMmY = 1.0;
    double m_pageWidth = 0.0;
    double m_pageHeight = 0.0;
    double m_x = 0.0;
    double m_y = 0.0;
    struct Recurring {
        QList<QGlyphRun> runs;
        double dy = 0.0;      // from the layout's baseline to ours
        double advance = 0.0; // device units
    };
    const Recurring& recurring(const QString& text);
    void drawRecurring(const Recurring& r, QPointF at);
    QHash<QString, Recurring> m_runs;
};

} // namespace sx
