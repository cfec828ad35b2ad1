#include "views/SecondaryViews.h"

#include "app/Navigator.h"
#include "views/events/EventsWindow.h"
#include "views/messages/MessagesWindow.h"
#include "views/records/RecordsWindow.h"

namespace sx {

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
