#include "ui/UnitMarks.h"

#include "reports/Colors.h"

#include <QComboBox>
#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>

using namespace Qt::StringLiterals;

namespace sx {

QColor fleetStateColor(FleetState state)
{
    switch (state) {
    case FleetState::Alarm:
        return colors::kRed;
    case FleetState::Offline:
        return QColor(128, 128, 128);
    case FleetState::Programming:
        return colors::kLightBlue;
    case FleetState::Faults:
        return QColor(255, 176, 0);
    case FleetState::Normal:
        break;
    }
    return colors::kGreen;
}

QIcon fleetStateMark(FleetState state)
{
    // Kept in the pixmap cache rather than in statics: pixmaps must not
    // outlive the application object.
    QIcon icon;
    for (const int size : {16, 32}) {
        const QString key = u"sx-mark-%1-%2"_s.arg(static_cast<int>(state)).arg(size);
        QPixmap pm;
        if (!QPixmapCache::find(key, &pm)) {
            pm = QPixmap(size, size);
            pm.fill(Qt::transparent);
            QPainter p(&pm);
            p.setRenderHint(QPainter::Antialiasing);
            p.setPen(QPen(fleetStateColor(state).darker(150), size / 16.0));
            p.setBrush(fleetStateColor(state));
            const qreal m = size / 8.0;
            p.drawEllipse(QRectF(m, m, size - 2 * m, size - 2 * m));
            p.end();
            QPixmapCache::insert(key, pm);
        }
        icon.addPixmap(pm);
    }
    return icon;
}

void remarkUnitList(QComboBox& list, const FleetSummary* fleet)
{
    for (int i = 0; i < list.count(); ++i) {
        const UnitSummary* unit = fleet ? fleet->find(list.itemData(i).toString()) : nullptr;
        list.setItemIcon(i, unit ? fleetStateMark(unit->state()) : QIcon());
    }
}

void markUnitList(QComboBox& list, const QStringList& serials, const FleetSummary* fleet)
{
    for (int i = 0; i < list.count() && i < serials.size(); ++i)
        list.setItemData(i, serials.at(i));
    remarkUnitList(list, fleet);
}

} // namespace sx
