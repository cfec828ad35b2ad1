#include "views/current/UnitCommands.h"

#include "model/Dialect.h"
#include "model/Schema.h"
#include "model/commands/CommandRules.h"
#include "ui/AppContext.h"
#include "ui/DbCall.h"
#include "ui/DialogService.h"
#include "ui/QueryFailureReporter.h"
#include "views/current/CommandHost.h"
#include "views/current/RequestExchange.h"

#include <QWidget>

#include <optional>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

namespace C = commands;
using Icon = DialogService::Icon;

void showNotice(AppContext& ctx, QWidget* window, const QString& title, const C::Notice& n)
{
    ctx.dialogs->message(window, n.icon, title, n.text);
}

// The code prompt and its checks; nothing when the command ends here.
std::optional<QString> askCode(AppContext& ctx, QWidget* window, const QString& title,
                               const QString& prompt)
{
    const std::optional<QString> typed = ctx.dialogs->codePrompt(window, title, prompt);
    const C::CodeCheck check = C::checkCode(typed);
    if (const auto notice = C::codeNotice(check))
        showNotice(ctx, window, title, *notice);
    if (check != C::CodeCheck::Accepted)
        return std::nullopt;
    return typed;
}

// The value of the entry chosen in a list; nothing for an index outside it.
std::optional<int> chosenValue(const QList<C::Choice>& choices, int index)
{
    if (index < 0 || index >= choices.size())
        return std::nullopt;
    return choices.at(index).value;
}

void enableAndRepaint(QWidget* window)
{
    if (!window)
        return;
    window->setEnabled(true);
    window->repaint();
}

void disable(QWidget* window)
{
    if (window)
        window->setEnabled(false);
}

bool ready(AppContext& ctx)
{
    if (!ctx.db || !ctx.dialogs)
        return false;
    // A connection lost since the last refresh is reopened before the first query.
    if (ctx.failures)
        (void)ctx.failures->ensureConnection(FailureOrigin::User);
    return true;
}

struct UnitRow {
    QString serial;
    std::optional<QString> model;
    std::optional<QString> softver;
};

enum class Lookup { Found, Missing, Failed };

// The unit's Systems_Info row. A unit that has vanished from the table gets
// the answer the server would give for it (no connection), and a refresh.
Lookup lookUpUnit(AppContext& ctx, CommandHost& host, const QString& title, const QString& sql,
                  UnitRow& unit)
{
    QWidget* window = host.commandWindow();
    struct Read {
        bool found = false;
        UnitRow unit;
        DbError error;
    };
    const Read read = dbCall(ctx, window, [&sql](Database& db) {
        Read r;
        Rows rows = db.readFirst(sql);
        r.found = rows.next();
        if (r.found) {
            r.unit.serial = rows.textOr(schema::SystemsInfo::SyI_Serialnumber);
            r.unit.model = rows.text(schema::SystemsInfo::SyI_Model);
            r.unit.softver = rows.text(schema::SystemsInfo::SyI_Softver);
        }
        r.error = rows.error();
        return r;
    });
    if (read.error.isError()) {
        if (ctx.failures)
            ctx.failures->reportAction(read.error, window);
        return Lookup::Failed;
    }
    if (!read.found) {
        showNotice(ctx, window, title, *C::replyNotice(kReplyOffline));
        host.refreshNow();
        return Lookup::Missing;
    }
    unit = read.unit;
    return Lookup::Found;
}

void exchangeAndRefresh(AppContext& ctx, CommandHost& host, const QString& title,
                        const TerminalRequest& request)
{
    (void)exchangeRequest(ctx, host.commandWindow(), title, request);
    host.refreshNow();
}

} // namespace

void runNotificationCommand(AppContext& ctx, CommandHost& host)
{
    if (!ready(ctx))
        return;
    const QString title = C::notificationTitle();
    QWidget* window = host.commandWindow();

    UnitRow unit;
    if (lookUpUnit(ctx, host, title,
                   u"SELECT SyI_Serialnumber, SyI_Locationnumber, SyI_Softver, SyI_Model FROM "
                   u"Systems_Info WHERE SyI_Serialnumber="_s +
                       sqlQuote(host.commandSerial()),
                   unit) != Lookup::Found)
        return;
    const bool extended = C::isExtendedUnit(unit.model, unit.softver);

    const auto code =
        askCode(ctx, window, title, extended ? C::securityCodePrompt() : C::entryCodePrompt());
    if (!code)
        return;

    disable(window);
    const QList<C::Choice> states = C::notificationChoices(extended);
    const auto selection =
        ctx.dialogs->selection(window, C::notificationSelectionCaption(),
                               C::notificationSelectionLabel(), C::choiceTexts(states), {});
    const std::optional<int> state =
        selection ? chosenValue(states, selection->first) : std::nullopt;
    enableAndRepaint(window);
    if (!state)
        return;
    disable(window);

    QString delay = u"0"_s;
    if (!extended && *state != 0) {
        const std::optional<QString> typed =
            ctx.dialogs->inputText(window, title, C::delayPrompt(), C::defaultDelay());
        if (const auto notice = C::delayNotice(C::checkDelay(typed))) {
            // These two boxes carry the application's title, not the command's.
            showNotice(ctx, window, appTitle(), *notice);
            enableAndRepaint(window);
            return;
        }
        delay = *typed;
    }

    exchangeAndRefresh(ctx, host, title,
                       {unit.serial, kRequestNotification,
                        C::notificationAttributes(*code, *state, extended, delay)});
}

void runRelayCommand(AppContext& ctx, CommandHost& host)
{
    if (!ready(ctx))
        return;
    const QString title = C::relayTitle();
    QWidget* window = host.commandWindow();

    UnitRow unit;
    if (lookUpUnit(ctx, host, title,
                   u"SELECT SyI_Serialnumber, SyI_Locationnumber FROM Systems_Info WHERE "
                   u"SyI_Serialnumber="_s +
                       sqlQuote(host.commandSerial()),
                   unit) != Lookup::Found)
        return;

    const auto code = askCode(ctx, window, title, C::securityCodePrompt());
    if (!code)
        return;

    exchangeAndRefresh(
        ctx, host, title,
        {unit.serial, kRequestRelayB, C::relayAttributes(*code, host.relayCaption())});
}

void runBypassCommand(AppContext& ctx, CommandHost& host)
{
    if (!ready(ctx))
        return;
    namespace SI = schema::SensorsInfo;
    const QString title = C::bypassTitle();
    QWidget* window = host.commandWindow();
    const QString serial = host.commandSerial();

    QList<C::Choice> points;
    const DbError error = dbCall(ctx, window, [&serial, &points](Database& db) {
        Rows rows = db.read(u"SELECT SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensorname, "
                            u"SeI_Used FROM Sensors_Info WHERE SeI_SyI_Serialnumber="_s +
                            sqlQuote(serial) + u" AND SeI_Used=1 ORDER BY SeI_Sensornumber"_s);
        while (rows.next()) {
            // A point without a number cannot be named in a request.
            const std::optional<qint64> number = rows.integer(SI::SeI_Sensornumber);
            if (number)
                points.append({C::pointChoiceText(*number, rows.text(SI::SeI_Sensorname)),
                               static_cast<int>(*number)});
        }
        return rows.error();
    });
    if (error.isError()) {
        if (ctx.failures)
            ctx.failures->reportAction(error, window);
        return;
    }
    if (points.isEmpty()) {
        showNotice(ctx, window, title, C::noPointsNotice());
        return;
    }

    const auto code = askCode(ctx, window, title, C::securityCodePrompt());
    if (!code)
        return;

    disable(window);
    const QList<C::Choice> states = C::bypassStateChoices();
    const auto selection = ctx.dialogs->selection(window, title, C::bypassSelectionLabel(),
                                                  C::choiceTexts(points), C::choiceTexts(states));
    const std::optional<int> point =
        selection ? chosenValue(points, selection->first) : std::nullopt;
    const std::optional<int> state =
        selection ? chosenValue(states, selection->second) : std::nullopt;
    enableAndRepaint(window);
    if (!point || !state)
        return;
    disable(window);

    exchangeAndRefresh(ctx, host, title,
                       {serial, kRequestBypass, C::bypassAttributes(*code, *point, *state)});
}

} // namespace sx
