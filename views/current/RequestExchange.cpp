#include "views/current/RequestExchange.h"

#include "app/AppContext.h"
#include "app/DialogService.h"
#include "app/GeneralDelay.h"
#include "app/QueryFailureReporter.h"
#include "model/Dialect.h"
#include "model/Schema.h"
#include "views/current/CommandRules.h"

#include <QApplication>
#include <QLabel>
#include <QVBoxLayout>
#include <QWidget>

#include <memory>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

namespace TR = schema::TerminalRequests;

constexpr int kPollMs = 500;

// The small "please wait" window shown while the server works on a request.
class WaitIndication {
public:
    explicit WaitIndication(QWidget* owner)
        : m_window(std::make_unique<QWidget>(owner, Qt::Tool | Qt::WindowTitleHint))
    {
        m_window->setObjectName(u"Waitfrm"_s);
        m_window->setWindowTitle(appTitle());
        auto* layout = new QVBoxLayout(m_window.get());
        auto* label = new QLabel(u"Παρακαλώ περιμένετε"_s, m_window.get());
        QFont font = label->font();
        font.setBold(true);
        label->setFont(font);
        label->setAlignment(Qt::AlignCenter);
        layout->addWidget(label);
        layout->setContentsMargins(24, 16, 24, 16);
        m_window->show();
        m_window->repaint();
        // Once, so that the window is on screen before the wait begins.
        QCoreApplication::processEvents();
    }

private:
    std::unique_ptr<QWidget> m_window;
};

// Keeps the window disabled until the end of the exchange, however it ends.
class DisabledWhileWaiting {
public:
    explicit DisabledWhileWaiting(QWidget* window) : m_window(window)
    {
        if (m_window)
            m_window->setEnabled(false);
    }
    ~DisabledWhileWaiting()
    {
        if (m_window) {
            m_window->setEnabled(true);
            m_window->repaint();
        }
    }

private:
    QWidget* m_window;
};

QDateTime nowOf(const AppContext& ctx)
{
    return ctx.clock ? ctx.clock->now() : QDateTime::currentDateTime();
}

void reportFailure(AppContext& ctx, const DbError& error, QWidget* window)
{
    if (ctx.failures)
        ctx.failures->reportAction(error, window);
}

void show(AppContext& ctx, QWidget* window, const QString& title, const commands::Notice& n)
{
    if (ctx.dialogs)
        ctx.dialogs->message(window, n.icon, title, n.text);
}

} // namespace

ExchangeOutcome exchangeRequest(AppContext& ctx, QWidget* window, const QString& title,
                                const TerminalRequest& request)
{
    ExchangeOutcome outcome;
    if (!ctx.db)
        return outcome;
    Database& db = *ctx.db;
    const DisabledWhileWaiting disabled(window);
    const WaitIndication wait(window);

    const QString select =
        u"SELECT TrmReq_SyI_Serialnumber, TrmReq_Requesttype, TrmReq_Attributes, "
        u"TrmReq_Requestcompleted, TrmReq_Requestreply FROM Terminal_Requests "
        u"WHERE TrmReq_SyI_Serialnumber="_s +
        sqlQuote(request.serial);
    // Our own row: the unit should have no other, but a stale row left by
    // another console must not be taken for the answer.
    const QString ownRow = u"TrmReq_SyI_Serialnumber="_s + sqlQuote(request.serial) +
                           u" AND TrmReq_Requesttype="_s + QString::number(request.type) +
                           u" AND TrmReq_Attributes="_s + sqlQuote(request.attributes);

    if (const DbError e = db.insertRow(TR::table, {{TR::TrmReq_SyI_Serialnumber, request.serial},
                                                   {TR::TrmReq_Requesttype, qint64(request.type)},
                                                   {TR::TrmReq_Attributes, request.attributes},
                                                   {TR::TrmReq_Requestcompleted, qint64(0)},
                                                   {TR::TrmReq_Requestreply, qint64(0)}});
        e.isError()) {
        reportFailure(ctx, e, window);
        // The row may have been written before the connection went.
        if (ctx.failures && ctx.failures->connectionLost())
            ctx.failures->runWhenBack(u"DELETE FROM "_s + TR::table.toString() + u" WHERE "_s +
                                      ownRow);
        return outcome;
    }
    const QDateTime written = nowOf(ctx);

    for (;;) {
        generalDelay(kPollMs);
        if (commands::requestTimedOut(written, nowOf(ctx))) {
            outcome.end = ExchangeOutcome::End::TimedOut;
            break;
        }
        Rows rows = db.read(select);
        bool found = false;
        qint64 completed = 0;
        qint64 reply = 0;
        while (rows.next()) {
            if (rows.intOr(TR::TrmReq_Requesttype, -1) != request.type ||
                rows.text(TR::TrmReq_Attributes) != request.attributes)
                continue;
            found = true;
            completed = rows.intOr(TR::TrmReq_Requestcompleted);
            reply = rows.intOr(TR::TrmReq_Requestreply);
            break;
        }
        if (!rows.ok()) {
            reportFailure(ctx, rows.error(), window);
            outcome.end = ExchangeOutcome::End::Failed;
            break;
        }
        if (!found) {
            // Someone else removed the row: nothing more will come, and no reply to tell.
            outcome.end = ExchangeOutcome::End::Answered;
            outcome.rowVanished = true;
            break;
        }
        if (completed != 0) {
            outcome.end = ExchangeOutcome::End::Answered;
            outcome.reply = static_cast<int>(reply);
            break;
        }
    }

    if (outcome.end == ExchangeOutcome::End::TimedOut) {
        show(ctx, window, title, commands::timeoutNotice());
    } else if (outcome.end == ExchangeOutcome::End::Answered) {
        if (const auto notice = commands::replyNotice(outcome.reply))
            show(ctx, window, title, *notice);
    }

    // Also after a time-out, so that a late answer finds no row.
    if (const DbError e = db.deleteRows(TR::table, ownRow); e.isError()) {
        // One box per exchange; a row the connection could not remove is
        // removed when the database answers again.
        if (outcome.end != ExchangeOutcome::End::Failed)
            reportFailure(ctx, e, window);
        if (ctx.failures && ctx.failures->connectionLost())
            ctx.failures->runWhenBack(u"DELETE FROM "_s + TR::table.toString() + u" WHERE "_s +
                                      ownRow);
        outcome.end = ExchangeOutcome::End::Failed;
    }
    return outcome;
}

} // namespace sx
