#pragma once

#include "ui/AppContext.h"
#include "ui/QueryFailureReporter.h"

#include <QPointer>
#include <QScopeGuard>
#include <QWidget>

namespace sx {

// A user's action reads or writes and waits for the answer. The window it
// started in takes no input meanwhile, while every other event (the refresh,
// painting, other boxes) goes on; nothing waits on the network on this thread.
template <class Job> auto dbCall(AppContext& ctx, QWidget* window, Job job)
{
    QPointer<QWidget> top = window ? window->window() : nullptr;
    const bool disable = top && top->isEnabled();
    if (disable)
        top->setEnabled(false);
    // A refresh that fails meanwhile is explained by this action's own box.
    const QueryFailureReporter::UserWait waiting(ctx.failures);
    const auto restore = qScopeGuard([&top, disable] {
        if (disable && top)
            top->setEnabled(true);
    });
    return ctx.db->call(std::move(job));
}

} // namespace sx
