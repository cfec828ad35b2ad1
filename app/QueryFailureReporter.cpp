#include "app/QueryFailureReporter.h"

#include "app/AppContext.h"
#include "app/DialogService.h"

namespace sx {

QueryFailureReporter::QueryFailureReporter(AppContext& ctx) : m_ctx(ctx) {}

void QueryFailureReporter::report(const DbError& error, QWidget* parent)
{
    if (m_outage || !error.isError())
        return;
    m_outage = true;
    ++m_shown;
    if (m_ctx.dialogs)
        m_ctx.dialogs->message(parent, DialogService::Icon::Critical, appTitle(),
                               explainDbError(error));
}

bool QueryFailureReporter::ensureConnection()
{
    Database* db = m_ctx.db;
    if (!db)
        return false;
    if (!db->connectionLost() && db->isOpen())
        return true;
    return !db->reopen().isError();
}

} // namespace sx
