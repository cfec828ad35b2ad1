#include "views/current/RequestExchange.h"

#include "model/Dialect.h"
#include "model/Schema.h"
#include "model/commands/CommandRules.h"
#include "model/commands/RequestOwner.h"
#include "ui/AppContext.h"
#include "ui/DialogService.h"
#include "ui/GeneralDelay.h"
#include "ui/QueryFailureReporter.h"

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

// Removes our row. Without an owner: one row like ours, the completed ones
// first when `completedFirst`, else the waiting ones first; kinds without a
// row identity remove them all.
QString deleteOneSql(DbKind kind, const QString& ownRow, bool owned, bool completedFirst)
{
    const QString table = TR::table.toString();
    if (owned)
        return u"DELETE FROM "_s + table + u" WHERE "_s + ownRow;
    const QString order =
        completedFirst ? u"TrmReq_Requestcompleted DESC"_s : u"TrmReq_Requestcompleted ASC"_s;
    QString id;
    if (kind == DbKind::SQLite)
        id = u"rowid"_s;
    else if (kind == DbKind::PostgreSQL)
        id = u"ctid"_s;
    else
        return u"DELETE FROM "_s + table + u" WHERE "_s + ownRow;
    return u"DELETE FROM "_s + table + u" WHERE "_s + id + u" IN (SELECT "_s + id + u" FROM "_s +
           table + u" WHERE "_s + ownRow + u" ORDER BY "_s + order + u" LIMIT 1)"_s;
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
    const DisabledWhileWaiting disabled(window);
    const WaitIndication wait(window);
    // The whole exchange is the user's action: its box explains a refresh failing meanwhile.
    const QueryFailureReporter::UserWait waiting(ctx.failures);
    const DbKind kind = ctx.dbKind();
    const auto keepForLater = [&ctx](const QString& sql) {
        if (ctx.failures)
            ctx.failures->runWhenBack(sql);
    };

    // Whether the table names the console of each row is asked once per connection.
    DbLink* const link = ctx.db;
    const commands::RequestOwnerColumn known = ctx.requestOwnerColumn;
    const bool askColumn = !known.known || known.connection != link->connectionNumber();
    const QString token = commands::newRequestOwner();
    struct Written {
        DbError error;
        commands::RequestOwnerColumn column;
        bool inserting = false;
    };
    const Written written = ctx.db->call([&](Database& db) {
        Written w;
        w.column = known;
        if (askColumn) {
            w.column.connection = link->connectionNumber();
            w.column.present = commands::hasRequestOwnerColumn(db, &w.error);
            if (w.error.isError())
                return w;
            w.column.known = true;
        }
        const QString owner = w.column.present ? token : QString();
        // Without owners a completed row like ours left from before (its
        // removal failed, or its console ended) would pass for our answer: it
        // goes first. With owners nothing else passes for ours, and another
        // console's row, answered or not, is never ours to remove.
        if (owner.isEmpty()) {
            const QString stale =
                u"DELETE FROM "_s + TR::table.toString() + u" WHERE "_s +
                commands::requestRowWhere(request.serial, request.type, request.attributes, {}) +
                u" AND TrmReq_Requestcompleted<>0"_s;
            if ((w.error = db.exec(stale)).isError())
                return w;
        }
        QList<SqlAssignment> row{{TR::TrmReq_SyI_Serialnumber, request.serial},
                                 {TR::TrmReq_Requesttype, qint64(request.type)},
                                 {TR::TrmReq_Attributes, request.attributes},
                                 {TR::TrmReq_Requestcompleted, qint64(0)},
                                 {TR::TrmReq_Requestreply, qint64(0)}};
        if (!owner.isEmpty())
            row.append({TR::TrmReq_Requestowner, owner});
        w.inserting = true;
        w.error = db.insertRow(TR::table, row);
        return w;
    });
    if (written.column.known)
        ctx.requestOwnerColumn = written.column;
    const bool owned = written.column.known && written.column.present;
    if (owned)
        outcome.owner = token;
    const QString ownRow =
        commands::requestRowWhere(request.serial, request.type, request.attributes, outcome.owner);
    if (ctx.db->shuttingDown()) {
        // The console ends: a row written is removed at the next start.
        if (written.inserting)
            keepForLater(deleteOneSql(kind, ownRow, owned, true));
        return outcome;
    }
    if (written.error.isError()) {
        reportFailure(ctx, written.error, window);
        // The row may have been written before the connection went.
        if (written.inserting && ctx.failures && ctx.failures->connectionLost())
            keepForLater(deleteOneSql(kind, ownRow, owned, false));
        return outcome;
    }
    const QDateTime writtenAt = nowOf(ctx);

    struct Poll {
        bool found = false;
        bool completed = false;
        qint64 reply = 0;
        DbError error;
    };
    for (;;) {
        generalDelay(kPollMs);
        if (ctx.db->shuttingDown()) {
            // The console ends: the row is removed at the next start, by when
            // it has most likely been answered.
            keepForLater(deleteOneSql(kind, ownRow, owned, true));
            outcome.end = ExchangeOutcome::End::Failed;
            return outcome;
        }
        if (commands::requestTimedOut(writtenAt, nowOf(ctx))) {
            outcome.end = ExchangeOutcome::End::TimedOut;
            break;
        }
        const Poll poll = ctx.db->call([&ownRow](Database& db) {
            Poll p;
            Rows rows = db.read(u"SELECT TrmReq_Requestcompleted, TrmReq_Requestreply FROM "_s +
                                TR::table.toString() + u" WHERE "_s + ownRow);
            // Without owners, rows like ours of other consoles are answered
            // with ours, in the same update: any completed one is our answer.
            while (rows.next()) {
                p.found = true;
                if (rows.intOr(TR::TrmReq_Requestcompleted) != 0 && !p.completed) {
                    p.completed = true;
                    p.reply = rows.intOr(TR::TrmReq_Requestreply);
                }
            }
            p.error = rows.error();
            return p;
        });
        if (poll.error.isError()) {
            reportFailure(ctx, poll.error, window);
            outcome.end = ExchangeOutcome::End::Failed;
            break;
        }
        if (!poll.found) {
            // Someone else removed the row: nothing more will come, and no reply to tell.
            outcome.end = ExchangeOutcome::End::Answered;
            outcome.rowVanished = true;
            break;
        }
        if (poll.completed) {
            outcome.end = ExchangeOutcome::End::Answered;
            outcome.reply = static_cast<int>(poll.reply);
            break;
        }
    }

    if (outcome.end == ExchangeOutcome::End::TimedOut) {
        show(ctx, window, title, commands::timeoutNotice());
    } else if (outcome.end == ExchangeOutcome::End::Answered) {
        if (const auto notice = commands::replyNotice(outcome.reply))
            show(ctx, window, title, *notice);
    }

    // Also after a time-out, so that a late answer finds no row. Only our row
    // goes (one row like it without owners): another console's is its own to remove.
    const QString remove =
        deleteOneSql(kind, ownRow, owned, outcome.end == ExchangeOutcome::End::Answered);
    if (outcome.rowVanished)
        return outcome;
    if (ctx.db->shuttingDown()) {
        keepForLater(remove);
        outcome.end = ExchangeOutcome::End::Failed;
        return outcome;
    }
    if (const DbError e = ctx.db->call([&remove](Database& db) { return db.exec(remove); });
        e.isError()) {
        // One box per exchange; a row that could not be removed is removed
        // when the database answers again, or at the next start.
        if (outcome.end != ExchangeOutcome::End::Failed)
            reportFailure(ctx, e, window);
        keepForLater(remove);
        outcome.end = ExchangeOutcome::End::Failed;
    }
    return outcome;
}

} // namespace sx
