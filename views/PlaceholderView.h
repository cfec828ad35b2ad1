#pragma once

#include "app/ViewWindow.h"

namespace sx {

// A secondary view that so far offers only its frame: navigation, the unit
// list, the management menu (its print and save items not yet available) and
// the exit rules.
class PlaceholderView : public ViewWindow {
    Q_OBJECT
public:
    PlaceholderView(AppContext& ctx, ViewId id, const QString& viewName,
                    const QList<QPair<QString, QString>>& menuItems);

    void unitSelected(int index) override;
};

} // namespace sx
