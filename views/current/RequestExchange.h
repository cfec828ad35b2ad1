#pragma once

#include <QString>

class QWidget;

namespace sx {

struct AppContext;

// One row of Terminal_Requests as the console writes it.
struct TerminalRequest {
    QString serial;
    int type = 0;
    QString attributes;
};

struct ExchangeOutcome {
    enum class End {
        Answered, // the server completed the row (or it vanished: no reply to show)
        TimedOut, // no answer within 60 s
        Failed,   // a query failed and was reported
    };
    End end = End::Failed;
    int reply = 0;
    bool rowVanished = false;
};

// The request exchange: with `window` disabled and the wait window shown,
// writes the row, polls it every 500 ms for at most 60 s (ctx.clock), shows
// the reply or the time-out under `title`, deletes the row (also after a
// time-out or a failed poll) and enables `window` again. The caller refreshes.
ExchangeOutcome exchangeRequest(AppContext& ctx, QWidget* window, const QString& title,
                                const TerminalRequest& request);

} // namespace sx
