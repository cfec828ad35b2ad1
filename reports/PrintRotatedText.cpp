#include "reports/PrintRotatedText.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPaintDevice>
#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

// Arial is named by the callers; where it is missing its metric twin stands in.
QString resolvedFace(const QString& face)
{
    static const bool haveArial = QFontDatabase::families().contains(u"Arial"_s);
    if (!haveArial && face.compare(u"Arial"_s, Qt::CaseInsensitive) == 0)
        return u"Liberation Sans"_s;
    return face;
}

} // namespace

QFont rotatedTextFont(const QString& fontFace, double height, int weight, bool italic,
                      bool underline, bool strikeOut, const QPaintDevice* device)
{
    QFont font(resolvedFace(fontFace));
    font.setWeight(static_cast<QFont::Weight>(std::clamp(weight, 100, 900)));
    font.setItalic(italic);
    font.setUnderline(underline);
    font.setStrikeOut(strikeOut);
    font.setHintingPreference(QFont::PreferNoHinting);
    // Qt sizes the em, GDI the cell: measure the cell of a large em and scale.
    QFont probe = font;
    probe.setPixelSize(1000);
    const double cellPerEm = QFontMetricsF(probe).height() / 1000.0;
    // Pixel sizes are whole numbers; a point size keeps the fraction.
    const double em = height / (cellPerEm > 0 ? cellPerEm : 1.0);
    const int dpi = device ? device->logicalDpiY() : 72;
    font.setPointSizeF(std::max(0.01, em * 72.0 / dpi));
    return font;
}

void printRotatedText(QPainter& surface, const QString& text, double x, double y,
                      const QString& fontFace, double height, int weight, double angleDegrees,
                      bool italic, bool underline, bool strikeOut, double shiftUp, double shiftLeft)
{
    const QFont font =
        rotatedTextFont(fontFace, height, weight, italic, underline, strikeOut, surface.device());
    surface.save();
    surface.setFont(font);
    const QFontMetricsF metrics(font, surface.device());
    surface.translate(x - shiftLeft, y - shiftUp);
    surface.rotate(-angleDegrees);
    surface.drawText(QPointF(0.0, metrics.ascent()), text);
    surface.restore();
}

} // namespace sx
