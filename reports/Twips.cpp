#include "reports/Twips.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <cmath>

using namespace Qt::StringLiterals;

namespace sx {

int twips(int value, const QWidget* w)
{
    int dpi = 96;
    if (w)
        dpi = w->logicalDpiX();
    else if (const QScreen* s = QGuiApplication::primaryScreen())
        dpi = static_cast<int>(std::lround(s->logicalDotsPerInchX()));
    return static_cast<int>(std::lround(value * dpi / 1440.0));
}

QRect twipsRect(int left, int top, int width, int height, const QWidget* w)
{
    return {twips(left, w), twips(top, w), twips(width, w), twips(height, w)};
}

void placeAt(QWidget* child, int left, int top, int width, int height)
{
    child->setGeometry(twipsRect(left, top, width, height, child));
}

QFont uiFont(double points, bool bold, bool italic)
{
    static const QString family = [] {
        const QStringList families = QFontDatabase::families();
        return families.contains(u"Arial"_s) ? u"Arial"_s : u"Liberation Sans"_s;
    }();
    QFont f(family);
    f.setPointSizeF(points);
    f.setBold(bold);
    f.setItalic(italic);
    return f;
}

} // namespace sx
