#pragma once

#include <QFont>
#include <QString>

class QPaintDevice;
class QPainter;

namespace sx {

// The font printRotatedText draws with: `height` is the whole character cell
// (ascent + descent) in the painter's units, as a GDI font height is, and
// `weight` is on the 100 (thin) to 900 (black) scale, 400 regular, 700 bold.
// Sized for `device`: measure it with QFontMetricsF(font, device).
[[nodiscard]] QFont rotatedTextFont(const QString& fontFace, double height, int weight, bool italic,
                                    bool underline, bool strikeOut, const QPaintDevice* device);

// Draws text turned `angleDegrees` counter-clockwise, in the painter's own
// units (y grows downwards). Before turning, the top-left corner of the text
// cell sits at (x - shiftLeft, y - shiftUp); the text turns about that corner,
// so at 90 degrees it reads upwards from that point with its cell on the right.
void printRotatedText(QPainter& surface, const QString& text, double x, double y,
                      const QString& fontFace, double height, int weight, double angleDegrees,
                      bool italic, bool underline, bool strikeOut, double shiftUp,
                      double shiftLeft);

} // namespace sx
