#include "ui/Navigator.h"

#include "ui/QueryFailureReporter.h"
#include "ui/UnitList.h"
#include "ui/ViewWindow.h"

namespace sx {

Navigator::Navigator(AppContext& ctx) : m_ctx(ctx) {}

void Navigator::setFactory(ViewId id, Factory factory)
{
    m_factories[static_cast<int>(id)] = std::move(factory);
}

ViewWindow* Navigator::create(ViewId id)
{
    const Factory& f = m_factories[static_cast<int>(id)];
    return f ? f(m_ctx) : nullptr;
}

ViewWindow* Navigator::visibleView() const
{
    if (m_main && m_main->isVisible())
        return m_main;
    return m_secondary;
}

void Navigator::navigate(ViewWindow& from, ViewId to)
{
    if (from.viewId() == to)
        return;
    const QueryFailureReporter::Action action(m_ctx.failures);
    const int index = from.unitIndex();
    // Only the events view lists "ΟΛΑ".
    const bool includeAll = to == ViewId::Events;

    if (to == ViewId::Current) {
        if (!m_main)
            return;
        fillSystemSelect(*m_main, index, false);
        m_main->show();
        from.unloadByProgram();
        m_secondary = nullptr;
        return;
    }

    const bool fromMain = &from == m_main.data();
    if (fromMain)
        from.hide();
    ViewWindow* target = create(to);
    if (!target) {
        from.show();
        return;
    }
    target->show();
    ViewWindow* previous = fromMain ? nullptr : &from;
    m_secondary = target;
    fillSystemSelect(*target, index, includeAll);
    if (previous)
        previous->unloadByProgram();
}

} // namespace sx
