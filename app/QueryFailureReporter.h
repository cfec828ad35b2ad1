#pragma once

#include "model/DbError.h"

class QWidget;

namespace sx {

struct AppContext;

// The one place where a failed query after start-up is reported: the
// explanation box, shown once for an outage rather than at every refresh.
// The console keeps running; a lost connection is reopened by the next round.
class QueryFailureReporter {
public:
    explicit QueryFailureReporter(AppContext& ctx);

    void report(const DbError& error, QWidget* parent);
    // A round of queries succeeded: the next failure is news again.
    void clear() { m_outage = false; }
    [[nodiscard]] bool inOutage() const { return m_outage; }
    // Before a round of queries: reopens a lost connection. false while the
    // database stays out of reach.
    [[nodiscard]] bool ensureConnection();
    [[nodiscard]] int reportsShown() const { return m_shown; }

private:
    AppContext& m_ctx;
    bool m_outage = false;
    int m_shown = 0;
};

} // namespace sx
