#pragma once

#include <QFont>
#include <QRect>

class QWidget;

namespace sx {

// Layouts are given in twips (1/1440 inch); converted at the screen's resolution.
[[nodiscard]] int twips(int value, const QWidget* w = nullptr);
[[nodiscard]] QRect twipsRect(int left, int top, int width, int height, const QWidget* w = nullptr);
// Places `child` at a twips rectangle inside its parent.
void placeAt(QWidget* child, int left, int top, int width, int height);

// Arial (Liberation Sans where Arial is missing) in points.
[[nodiscard]] QFont uiFont(double points, bool bold = true, bool italic = false);

} // namespace sx
