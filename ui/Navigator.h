#pragma once

#include "ui/AppContext.h"
#include "ui/ViewId.h"
#include "ui/ViewWindow.h"

#include <QPointer>

#include <functional>

namespace sx {

// Hands over between the four views: the main view is hidden and shown again,
// the other views are created on arrival and unloaded on departure, and the
// selected unit travels as its index in the unit list.
class Navigator {
public:
    using Factory = std::function<ViewWindow*(AppContext&)>;

    explicit Navigator(AppContext& ctx);

    void setMainView(ViewWindow* main) { m_main = main; }
    void setFactory(ViewId id, Factory factory);

    void navigate(ViewWindow& from, ViewId to);

    [[nodiscard]] ViewWindow* mainView() const { return m_main; }
    // The secondary view that exists, if any (at most one at a time).
    [[nodiscard]] ViewWindow* secondaryView() const { return m_secondary; }
    [[nodiscard]] ViewWindow* visibleView() const;

private:
    ViewWindow* create(ViewId id);

    AppContext& m_ctx;
    QPointer<ViewWindow> m_main;
    QPointer<ViewWindow> m_secondary;
    Factory m_factories[4];
};

} // namespace sx
