#include "reports/ReportPainter.h"

#include "reports/PdfDirectWriter.h"

#include <QFontDatabase>
#include <QPagedPaintDevice>
#include <QPen>
#include <QTextLayout>

#include <cmath>

namespace sx {

namespace {

constexpr double mmPerInch = 25.4;
constexpr double pointsPerInch = 72.0;
constexpr double twipsPerInch = 1440.0;
constexpr double a4WidthTwips = 11906.0;
constexpr double basePointSize = 8.0;
// A printer's one-pixel line is invisible at 1200 dpi; this is a thin but visible rule.
constexpr double lineWidthMm = 0.2;
// Laid-out texts kept for printRecurring; a report's distinct texts rarely reach this.
constexpr qsizetype maxRecurring = 50000;

QString reportFamily()
{
    // Decided once: the font list does not change while the program runs.
    static const QString family = [] {
        const QStringList families = QFontDatabase::families();
        const auto installed = [&](const QString& name) {
            return families.contains(name, Qt::CaseInsensitive);
        };
        if (installed(QStringLiteral("Arial")))
            return QStringLiteral("Arial");
        if (installed(QStringLiteral("Liberation Sans")))
            return QStringLiteral("Liberation Sans");
        // Let the font configuration substitute.
        return QStringLiteral("Arial");
    }();
    return family;
}

// A PDF spends as much on a blank's glyph as on a letter's; a reader finds
// the blank by the gap the glyph would have filled, so the glyph is left out.
QList<QGlyphRun> withoutBlanks(QList<QGlyphRun> runs)
{
    for (QGlyphRun& run : runs) {
        const QList<quint32> blank = run.rawFont().glyphIndexesForString(QStringLiteral(" "));
        if (blank.size() != 1)
            continue;
        const QList<quint32> glyphs = run.glyphIndexes();
        const QList<QPointF> positions = run.positions();
        QList<quint32> keptGlyphs;
        QList<QPointF> keptPositions;
        keptGlyphs.reserve(glyphs.size());
        keptPositions.reserve(glyphs.size());
        for (qsizetype i = 0; i < glyphs.size() && i < positions.size(); ++i) {
            if (glyphs.at(i) == blank.first())
                continue;
            keptGlyphs.append(glyphs.at(i));
            keptPositions.append(positions.at(i));
        }
        run.setGlyphIndexes(keptGlyphs);
        run.setPositions(keptPositions);
    }
    return runs;
}

} // namespace

QFont reportFont(const QPagedPaintDevice& device)
{
    const double widthMm = device.pageLayout().fullRect(QPageLayout::Millimeter).width();
    // Whole twips, as the page width of a printer is reported.
    const double widthTwips = std::round(widthMm * twipsPerInch / mmPerInch);
    QFont font(reportFamily());
    font.setBold(true);
    font.setPointSizeF(basePointSize * widthTwips / a4WidthTwips);
    // Unhinted metrics, so that a layout measured once holds at any resolution.
    font.setHintingPreference(QFont::PreferNoHinting);
    // Unkerned, as a printer sets text: a line is the sum of its letters, on
    // paper and in a PDF written directly alike.
    font.setKerning(false);
    return font;
}

ReportPainter::ReportPainter(QPagedPaintDevice& device) : ReportPainter(device, nullptr) {}

ReportPainter::ReportPainter(QPagedPaintDevice& device, PdfDirectWriter& pdf)
    : ReportPainter(device, &pdf)
{
}

ReportPainter::ReportPainter(QPagedPaintDevice& device, PdfDirectWriter* pdf)
    : m_device(device), m_pdf(pdf), m_metrics(QFont(), &device)
{
    m_unitsPerMmX = device.logicalDpiX() / mmPerInch;
    m_unitsPerMmY = device.logicalDpiY() / mmPerInch;
    // The layout's exact millimetres: width() in device pixels is rounded through whole points.
    const QRectF printable = device.pageLayout().paintRect(QPageLayout::Millimeter);
    m_pageWidth = printable.width();
    m_pageHeight = printable.height();
    if (pdf) {
        // Where Qt's engine puts it: on a whole device pixel.
        const int dpi = device.logicalDpiX();
        m_originPt =
            QPointF(device.pageLayout().paintRectPixels(dpi).topLeft()) * pointsPerInch / dpi;
        pdf->setLineWidth(lineWidthMm * pointsPerInch / mmPerInch);
    } else if (!m_painter.begin(&device)) {
        // Text can still be measured in the report font.
        m_metrics = QFontMetricsF(reportFont(device), &device);
        return;
    } else {
        QPen pen(Qt::black);
        pen.setWidthF(lineWidthMm * m_unitsPerMmX);
        m_painter.setPen(pen);
        m_painter.setBrush(Qt::NoBrush);
    }
    setFont(reportFont(device));
}

ReportPainter::~ReportPainter()
{
    if (m_painter.isActive())
        m_painter.end();
}

bool ReportPainter::isActive() const
{
    return m_pdf ? m_pdf->isOpen() : m_painter.isActive();
}

bool ReportPainter::end()
{
    if (m_pdf)
        return m_pdf->finish();
    return !m_painter.isActive() || m_painter.end();
}

void ReportPainter::setFont(const QFont& font)
{
    m_font = font;
    if (m_pdf) {
        // Qt sets text in whole device pixels; so must a PDF that matches its measures.
        QFont sized = font;
        const double dpi = m_device.logicalDpiY();
        sized.setPointSizeF(std::round(font.pointSizeF() * dpi / pointsPerInch) * pointsPerInch /
                            dpi);
        m_pdf->setFont(sized);
    } else {
        m_painter.setFont(font);
    }
    m_metrics = QFontMetricsF(font, &m_device);
    // Kept runs carry the glyphs of the font they were laid out in.
    m_runs.clear();
}

double ReportPainter::textWidth(const QString& text) const
{
    return m_metrics.horizontalAdvance(text) / m_unitsPerMmX;
}

double ReportPainter::textHeight() const
{
    return m_metrics.height() / m_unitsPerMmY;
}

void ReportPainter::drawText(QPointF topLeft, const QString& text)
{
    const QPointF baseline(topLeft.x(), topLeft.y() + m_metrics.ascent());
    if (m_pdf) {
        const QPointF at = toPoints(baseline);
        (void)m_pdf->drawText(at.x(), at.y(), text);
    } else {
        m_painter.drawText(baseline, text);
    }
}

void ReportPainter::print(const QString& text)
{
    if (!text.isEmpty())
        drawText(toDevice(m_x, m_y), text);
    m_x = 0.0;
    m_y += textHeight();
}

const ReportPainter::Recurring& ReportPainter::recurring(const QString& text)
{
    auto known = m_runs.constFind(text);
    if (known != m_runs.constEnd())
        return *known;
    if (m_runs.size() >= maxRecurring)
        m_runs.clear();
    // Shaped as drawText shapes it, fallback fonts included.
    QTextLayout layout(text, m_font, &m_device);
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(1e9);
    layout.endLayout();
    // A fallback font may deepen the layout's line; print() keeps the report
    // font's baseline.
    return *m_runs.insert(text,
                          {withoutBlanks(layout.glyphRuns()), m_metrics.ascent() - line.ascent(),
                           m_metrics.horizontalAdvance(text)});
}

void ReportPainter::drawRecurring(const Recurring& r, QPointF at)
{
    at.ry() += r.dy;
    for (const QGlyphRun& run : r.runs)
        m_painter.drawGlyphRun(at, run);
}

void ReportPainter::printRecurring(const QString& text)
{
    // The direct writer sets a line as cheaply as a kept one.
    if (m_pdf)
        return print(text);
    if (!text.isEmpty())
        drawRecurring(recurring(text), toDevice(m_x, m_y));
    m_x = 0.0;
    m_y += textHeight();
}

void ReportPainter::printRecurring(const QString& start, const QString& end)
{
    if (m_pdf)
        return print(start + end);
    QPointF at = toDevice(m_x, m_y);
    if (!start.isEmpty()) {
        const Recurring& r = recurring(start);
        drawRecurring(r, at);
        at.rx() += r.advance;
    }
    if (!end.isEmpty())
        drawRecurring(recurring(end), at);
    m_x = 0.0;
    m_y += textHeight();
}

bool ReportPainter::newPage()
{
    m_x = 0.0;
    m_y = 0.0;
    return m_pdf ? m_pdf->newPage() : m_device.newPage();
}

void ReportPainter::drawRect(double x1, double y1, double x2, double y2)
{
    const QRectF r = QRectF(toDevice(x1, y1), toDevice(x2, y2)).normalized();
    if (m_pdf)
        m_pdf->drawRect(QRectF(toPoints(r.topLeft()), toPoints(r.bottomRight())));
    else
        m_painter.drawRect(r);
}

void ReportPainter::drawLine(double x1, double y1, double x2, double y2)
{
    if (m_pdf)
        m_pdf->drawLine(toPoints(toDevice(x1, y1)), toPoints(toDevice(x2, y2)));
    else
        m_painter.drawLine(toDevice(x1, y1), toDevice(x2, y2));
}

QPointF ReportPainter::toPoints(QPointF device) const
{
    return m_originPt + QPointF(device.x() / m_unitsPerMmX, device.y() / m_unitsPerMmY) *
                            (pointsPerInch / mmPerInch);
}

QPointF ReportPainter::toDevice(double xMm, double yMm) const
{
    return {xMm * m_unitsPerMmX, yMm * m_unitsPerMmY};
}

} // namespace sx
