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
    // The owner written into the row; empty where the table has no owner column.
    QString owner;
};

// The request exchange: with `window` disabled and the wait window shown,
// writes the row, polls it every 500 ms for at most 60 s (ctx.clock), shows
// the reply or the time-out under `title`, deletes the row (also after a
// time-out or a failed poll) and enables `window` again. The caller refreshes.
// Where the table has an owner column the row carries this console's token and
// every statement after the write touches that row only.
ExchangeOutcome exchangeRequest(AppContext& ctx, QWidget* window, const QString& title,
                                const TerminalRequest& request);

} // namespace sx
