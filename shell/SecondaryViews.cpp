#include "shell/SecondaryViews.h"

#include "ui/Navigator.h"
#include "views/events/EventsWindow.h"
#include "views/graph/GraphWindow.h"
#include "views/messages/MessagesWindow.h"
#include "views/records/RecordsWindow.h"

#include <QPointer>

namespace sx {

void registerSecondaryViews(Navigator& navigator)
{
    navigator.setFactory(ViewId::Records, [](AppContext& ctx) -> ViewWindow* {
        auto* records = new RecordsWindow(ctx);
        connectGraph(*records);
        return records;
    });
    navigator.setFactory(ViewId::Events,
                         [](AppContext& ctx) -> ViewWindow* { return new EventsWindow(ctx); });
    navigator.setFactory(ViewId::Messages,
                         [](AppContext& ctx) -> ViewWindow* { return new MessagesWindow(ctx); });
}

void connectGraph(RecordsWindow& records)
{
    RecordsWindow* w = &records;
    QObject::connect(w, &RecordsWindow::graphRequested, w, [w] {
        const auto [first, last] = w->selectedRows();
        const QPointer<RecordsWindow> alive(w);
        openGraph(w->context(), w, {first, last, w->unitText(), w->zoneText(), [alive](int row) {
                                        if (alive)
                                            alive->selectRowAlone(row);
                                    }});
    });
}

} // namespace sx
