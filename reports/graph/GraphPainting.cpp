#include "reports/graph/GraphPainting.h"

#include "model/Formatting.h"
#include "model/SqlDateTime.h"
#include "model/graph/Decimate.h"
#include "model/graph/GraphRules.h"
#include "reports/PrintRotatedText.h"
#include "reports/Twips.h"

#include <QFontMetricsF>
#include <QImage>
#include <QLocale>
#include <QPainter>
#include <QPolygonF>

#include <cmath>
#include <span>

using namespace Qt::StringLiterals;

namespace sx::graph {

namespace {

const QString kLabelFace = u"Arial"_s;
constexpr int kLabelWeight = 400;

QColor toColour(Rgb c)
{
    return {c.r, c.g, c.b};
}

QPen pen(const QColor& colour, Qt::PenStyle style = Qt::SolidLine)
{
    QPen p(colour);
    p.setWidthF(1.0); // scales with the page when printed
    p.setStyle(style);
    p.setCapStyle(Qt::FlatCap);
    return p;
}

// A device the label fonts are measured on, at the resolution pictures use.
const QImage& measuringDevice()
{
    static const QImage image(1, 1, QImage::Format_RGB32);
    return image;
}

double labelWidth(const QString& text, const QPaintDevice* device)
{
    const QFont font =
        rotatedTextFont(kLabelFace, kLabelFontHeight, kLabelWeight, false, false, false, device);
    return QFontMetricsF(font, device).horizontalAdvance(text);
}

void printLabel(QPainter& p, const QString& text, double x, double y, double angle, double shiftUp,
                double shiftLeft)
{
    printRotatedText(p, text, x, y, kLabelFace, kLabelFontHeight, kLabelWeight, angle, false, false,
                     false, shiftUp, shiftLeft);
}

} // namespace

QFont pixelFont(double pixels, bool bold)
{
    QFont f = uiFont(10, bold);
    f.setPixelSize(std::max(1, static_cast<int>(std::lround(pixels))));
    f.setHintingPreference(QFont::PreferNoHinting);
    return f;
}

QString plainNumber(double v)
{
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    QString s = locale.toString(v, 'g', 7);
    if (s == u"-0"_s)
        s = u"0"_s;
    return s;
}

std::optional<double> limitValue(const QString& text)
{
    if (text.trimmed().isEmpty())
        return std::nullopt;
    bool ok = false;
    double v = QLocale().toDouble(text.trimmed(), &ok);
    if (!ok)
        v = QLocale::c().toDouble(text.trimmed(), &ok);
    return ok ? std::optional<double>(v) : std::nullopt;
}

QString recordTimeText(qint64 secs)
{
    const CivilTime t = civilFromSecs(secs);
    return formatRecordTime(t.year, t.month, t.day, t.hour, t.minute);
}

double timeLabelLength()
{
    return labelWidth(u"28/08/2088 - 28:08"_s, &measuringDevice());
}

double valueLabelWidth(const QString& text)
{
    return labelWidth(text, &measuringDevice());
}

double valueLabelsWidth(double bottom, double top)
{
    // The labels are whole numbers within the range; plainNumber writes seven
    // digits at most, and beyond them switches to the exponent form.
    QString widest = u"-8888888"_s;
    if (std::max(std::abs(bottom), std::abs(top)) >= 1e7) {
        widest = (bottom < 0 ? u"-8"_s : u"8"_s) + QLocale().decimalPoint() + u"888888e+88"_s;
    }
    return valueLabelWidth(widest);
}

void paintChart(QPainter& p, QSize size, const ChartData& data)
{
    const int w = size.width();
    const int h = size.height();
    p.fillRect(QRectF(0, 0, w, h), Qt::white);
    if (!data.records || w < 2 || h < 2)
        return;
    const GraphView& view = data.view;
    const PictureScale scale = chartScale(view, w, h);
    const auto at = [&](double x, double y) { return scale.toPixel({x, y}); };
    const int span = view.spanMinutes;
    const double bottom = view.bottom;
    const double top = view.top;
    const double valueSpan = top - bottom;

    p.setRenderHint(QPainter::Antialiasing, false);
    p.setPen(pen(Qt::black));
    const ValueSteps steps = valueSteps(static_cast<float>(valueSpan));
    for (const double y : valueTicks(bottom, top, steps.minor))
        p.drawLine(at(0, y), at(minorTickLength(span), y));
    for (const double y : valueTicks(bottom, top, steps.major))
        p.drawLine(at(0, y), at(majorTickLength(span), y));

    if (data.maxLimit) {
        p.setPen(pen(toColour(kMaxLimitColour), Qt::DashLine));
        p.drawLine(at(0, *data.maxLimit), at(span, *data.maxLimit));
    }
    if (data.minLimit) {
        p.setPen(pen(toColour(kMinLimitColour), Qt::DotLine));
        p.drawLine(at(0, *data.minLimit), at(span, *data.minLimit));
    }

    p.setPen(pen(Qt::black));
    for (const int t : timeTicks(span, timeStep(span)))
        p.drawLine(at(t, bottom + valueSpan / 64.0), at(t, bottom));
    p.drawRect(QRectF(at(0, top), at(span, bottom)));

    // One column of the finest device the picture lands on, so a printed
    // chart keeps its detail.
    const double deviceScale = std::max(1.0, std::abs(p.worldTransform().m11()));
    const int columns = static_cast<int>(std::lround(w * deviceScale));
    const std::span<const RecordPoint> all(*data.records);
    const auto selected = all.subspan(static_cast<size_t>(data.first),
                                      static_cast<size_t>(data.last - data.first + 1));
    const std::vector<QPointF> line = decimate(selected, view, columns);
    if (line.size() >= 2) {
        QPolygonF polygon;
        polygon.reserve(static_cast<qsizetype>(line.size()));
        for (const QPointF& point : line)
            polygon << scale.toPixel(point);
        p.setPen(pen(toColour(kDataLineColour)));
        p.drawPolyline(polygon);
    }
}

void paintMarker(QPainter& p, QSize size, const GraphView& view, int k, const RecordPoint& marker)
{
    if (!markerVisible(view, marker.secs) || size.width() < 2 || size.height() < 2)
        return;
    const PictureScale scale = chartScale(view, size.width(), size.height());
    const auto x = static_cast<double>(minuteDiff(view.startSecs, marker.secs));
    const QColor colour = toColour(markerColour(markerColourIndex(k)));
    const QPointF top = scale.toPixel({x, view.top});
    const QPointF bottom = scale.toPixel({x, view.bottom});
    p.setRenderHint(QPainter::Antialiasing, false);
    p.setPen(pen(colour));
    p.drawLine(top, bottom);

    const QFont font = pixelFont(11, true);
    const QFontMetricsF metrics(font, p.device());
    const QString caption = QString::number(k);
    const QRectF tag(top.x(), top.y(), metrics.horizontalAdvance(caption) + 5.0,
                     metrics.height() + 1.0);
    p.fillRect(tag, colour);
    p.setFont(font);
    // Every marker colour is dark: the number is written in white.
    p.setPen(Qt::white);
    p.drawText(tag, Qt::AlignCenter, caption);
}

void paintValueLabels(QPainter& p, QSize size, const GraphView& view)
{
    p.fillRect(QRectF(QPointF(0, 0), QSizeF(size)), Qt::white);
    const double valueSpan = static_cast<double>(view.top) - static_cast<double>(view.bottom);
    if (size.height() < 2 || !(valueSpan > 0))
        return;
    const PictureScale scale = unitScale(view, size.height(), size.width());
    p.setPen(Qt::black);
    const ValueSteps steps = valueSteps(static_cast<float>(valueSpan));
    for (const double y : valueTicks(view.bottom, view.top, steps.major)) {
        const QString text = plainNumber(y);
        const double x = size.width() - labelWidth(text, p.device());
        printLabel(p, text, x, scale.toPixel({0, y}).y(), 0.0, kLabelHalfPx, 0.0);
    }
}

void paintTimeLabels(QPainter& p, QSize size, int chartWidthPx, const GraphView& view)
{
    p.fillRect(QRectF(QPointF(0, 0), QSizeF(size)), Qt::white);
    const int span = view.spanMinutes;
    if (span <= 0)
        return;
    const PictureScale scale = timeScale(span, chartWidthPx, size.width(), size.height());
    p.setPen(Qt::black);
    for (const int t : timeTicks(span, timeStep(span))) {
        const QPointF at = scale.toPixel({static_cast<double>(t), 0.0});
        printLabel(p, recordTimeText(view.startSecs + qint64(t) * 60), at.x(), at.y(), 90.0, 0.0,
                   kLabelHalfPx);
    }
}

double paintDetails(QPainter* p, double width, const QList<DetailLine>& lines)
{
    const QFont font = pixelFont(15, true);
    const QFontMetricsF metrics(font);
    const double margin = 6.0;
    double y = margin;
    const int flags = Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap;
    if (p) {
        p->fillRect(QRectF(0, 0, width, paintDetails(nullptr, width, lines)), Qt::white);
        p->setFont(font);
    }
    for (const DetailLine& line : lines) {
        const QString text = line.text.isEmpty() ? u" "_s : line.text;
        const QRectF box(margin, y, width - 2 * margin, 1e6);
        const QRectF used = metrics.boundingRect(box, flags, text);
        if (p) {
            p->setPen(line.colour);
            p->drawText(box, flags, text);
        }
        y += std::max(used.height(), metrics.height());
    }
    return y + margin;
}

} // namespace sx::graph
