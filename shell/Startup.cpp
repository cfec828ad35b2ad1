#include "shell/Startup.h"

#include "model/settings/SettingsStore.h"
#include "shell/SingleInstance.h"
#include "ui/AppActions.h"
#include "ui/DialogService.h"
#include "ui/Navigator.h"
#include "ui/QueryFailureReporter.h"
#include "ui/UnitList.h"
#include "ui/ViewWindow.h"
#include "ui/WaitWindow.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QSessionManager>
#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;

namespace sx {

QString waitMessageFor(const ConnectionSettings& settings)
{
    if (settings.kind == DbKind::Access || settings.kind == DbKind::SQLite)
        return u"Άνοιγμα αρχείου βάσης δεδομένων."_s;
    return u"Επιχειρείται σύνδεση με τον διακομιστή.\r\nIP:"_s + settings.serverIp + u"  PORT:"_s +
           settings.serverPort;
}

Startup::Startup(AppContext& ctx, MainFactory makeMain)
    : m_ctx(ctx), m_makeMain(std::move(makeMain))
{
}

Startup::~Startup() = default;

std::optional<int> Startup::run()
{
    m_instance = std::make_unique<SingleInstance>(
        m_lockFile.isEmpty() ? SingleInstance::defaultLockFile() : m_lockFile);
    if (!m_instance->acquire())
        return kExitNormal;

    SettingsStore& settings = *m_ctx.settings;
    if (settings.app(u"Init"_s, u"0"_s) == u"0" && !firstRun())
        return kExitNormal;

    const ConnectionSettings where = settings.connection();
    DbError error;
    {
        WaitWindow wait(waitMessageFor(where));
        if (m_connecting)
            m_connecting(&wait);
        // The connect runs on the connection's thread; this one keeps the
        // wait window painted, however long a silent server takes.
        error = m_ctx.db->openAndWait(where);
    }
    QCoreApplication::processEvents();
    if (error.isError())
        return connectionFailed(error);
    if (m_ctx.failures)
        m_ctx.failures->runPending();

    m_main.reset(m_makeMain(m_ctx));
    m_main->setWindowTitle(appTitle() + u" / Τρέχουσα κατάσταση"_s);
    if (auto* timer = m_main->findChild<QTimer*>(QString::fromUtf16(kUpdateTimerName)))
        timer->setInterval(kUpdateIntervalMs);
    if (m_ctx.navigator)
        m_ctx.navigator->setMainView(m_main.get());
    fillSystemSelect(*m_main, -1, false);
    m_main->show();
    return std::nullopt;
}

bool Startup::firstRun()
{
    DialogService& dialogs = *m_ctx.dialogs;
    SettingsStore& settings = *m_ctx.settings;
    dialogs.message(
        nullptr, DialogService::Icon::Information, appTitle(),
        u"Καλωσορίσατε στην εφαρμογή "_s + appTitle() +
            u".\r\nΠαρακαλώ πατήστε 'ΟΚ' για να καθορίσετε τις παραμέτρους λειτουργίας της εφαρμογής."_s);
    settings.setProtectionCode({});
    settings.setApp(u"DBType"_s, u"0"_s);
    for (const QString& key : {u"DBFile"_s, u"DBDataSource"_s, u"DBServerIP"_s, u"DBServerPORT"_s})
        settings.setApp(key, {});
    // A store that cannot be written is reported by the dialog's own save.
    static_cast<void>(settings.sync());

    for (;;) {
        if (dialogs.settingsDialog(nullptr)) {
            settings.setApp(u"Init"_s, u"1"_s);
            if (settings.sync())
                return true;
            reportSettingsNotSaved(dialogs, nullptr, settings);
        }
        const auto answer = dialogs.message(
            nullptr, DialogService::Icon::Critical, appTitle(),
            u"H εφαρμογή "_s + appTitle() +
                u" δεν μπορεί να ξεκινήσει εάν δεν καθοριστούν οι παράμετροι λειτουργίας της.\r\n"
                u"Πατήστε 'ΟΚ' για καθορισμό ή 'Άκυρο' για να τερματίσετε την εφαρμογή."_s,
            DialogService::Buttons::OkCancel);
        if (answer != DialogService::Answer::Ok)
            return false;
    }
}

int Startup::connectionFailed(const DbError& error)
{
    const auto answer = m_ctx.dialogs->message(
        nullptr, DialogService::Icon::Critical, appTitle(),
        explainDbError(error) +
            u"\r\n\r\nΠατήστε 'Ναι' για να αλλάξετε τις παραμέτρους της εφαρμογής ή 'Όχι' για να τερματίσετε την εφαρμογή."_s,
        DialogService::Buttons::YesNo);
    if (answer == DialogService::Answer::Yes) {
        // A completed change ends the console itself, after its own message;
        // here that end is noted, and taken once, below.
        bool changed = false;
        std::function<void()> shutdown =
            std::exchange(m_ctx.terminate, [&changed] { changed = true; });
        changeAppSettings(m_ctx, nullptr);
        m_ctx.terminate = std::move(shutdown);
        if (!changed)
            m_ctx.dialogs->message(nullptr, DialogService::Icon::Information, appTitle(),
                                   u"Πατήστε 'ΟΚ' για να τερματίσετε την εφαρμογή."_s);
    }
    m_ctx.db->close();
    if (m_ctx.terminate)
        m_ctx.terminate();
    return kExitNoConnection;
}

std::function<void()> processShutdown(DbLink& db, bool& ended)
{
    return [&db, &ended] {
        ended = true;
        // A statement waiting for a silent server is abandoned, not awaited.
        db.shutdown();
        Database::abandonAll();
        QCoreApplication::exit(0);
    };
}

void endWithSession(AppContext& ctx)
{
#ifndef QT_NO_SESSIONMANAGER
    auto* app = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
    if (!app)
        return;
    QObject::connect(app, &QGuiApplication::commitDataRequest, app, [&ctx](QSessionManager&) {
        if (ctx.terminate)
            ctx.terminate();
    });
#else
    Q_UNUSED(ctx);
#endif
}

} // namespace sx
