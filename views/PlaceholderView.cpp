#include "views/PlaceholderView.h"

#include "app/NavigationFrame.h"
#include "app/Navigator.h"
#include "app/Twips.h"
#include "views/events/EventsWindow.h"
#include "views/messages/MessagesWindow.h"
#include "views/records/RecordsWindow.h"

#include <QMenuBar>

using namespace Qt::StringLiterals;

namespace sx {

PlaceholderView::PlaceholderView(AppContext& ctx, ViewId id, const QString& viewName,
                                 const QList<QPair<QString, QString>>& menuItems)
    : ViewWindow(ctx, id, viewName)
{
    setFont(uiFont(9.75));
    QMenu* menu = menuBar()->addMenu(u"Διαχείριση"_s);
    menu->setObjectName(u"Diahirisi"_s);
    for (const auto& [name, caption] : menuItems) {
        QAction* a = menu->addAction(caption);
        a->setObjectName(name);
        a->setEnabled(false);
    }
    menu->addSeparator();
    addExitItem(menu);
    placeAt(navigation(), 120, 120, 5895, 2535);
    resize(twips(6300, this), twips(3200, this) + menuBar()->sizeHint().height());
    updateNewMessagesIndicator();
}

void PlaceholderView::unitSelected(int) {}

void registerSecondaryViews(Navigator& navigator)
{
    navigator.setFactory(ViewId::Records,
                         [](AppContext& ctx) -> ViewWindow* { return new RecordsWindow(ctx); });
    navigator.setFactory(ViewId::Events,
                         [](AppContext& ctx) -> ViewWindow* { return new EventsWindow(ctx); });
    navigator.setFactory(ViewId::Messages,
                         [](AppContext& ctx) -> ViewWindow* { return new MessagesWindow(ctx); });
}

} // namespace sx
