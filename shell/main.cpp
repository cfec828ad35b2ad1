#include "model/DbLink.h"
#include "model/settings/SettingsStore.h"
#include "reports/Twips.h"
#include "shell/SecondaryViews.h"
#include "shell/Startup.h"
#include "shell/cli/ReportCommand.h"
#include "ui/AppContext.h"
#include "ui/AppIcon.h"
#include "ui/Navigator.h"
#include "ui/QueryFailureReporter.h"
#include "ui/WidgetDialogService.h"
#include "views/current/MainWindow.h"
#include "views/overview/FleetWatch.h"

#include <QApplication>

int main(int argc, char** argv)
{
    using namespace sx;

    // A report from the command line: no window, no single-copy lock.
    if (cli::isReportCommand(argc, argv))
        return cli::reportMain(argc, argv);

    QApplication app(argc, argv);
    QApplication::setApplicationName(appTitle());
    QApplication::setApplicationVersion(QStringLiteral(SX_VERSION));
    useAppIcon();
    // Every way out goes through the shutdown steps; hiding the main view
    // while another view opens must not end anything.
    QApplication::setQuitOnLastWindowClosed(false);
    QFont font = QApplication::font();
    font.setFamily(uiFont(9).family());
    QApplication::setFont(font);

    SettingsStore settings;
    WidgetDialogService dialogs(&settings);
    DbLink db;
    Clock clock;

    AppContext ctx;
    ctx.db = &db;
    ctx.dialogs = &dialogs;
    ctx.settings = &settings;
    ctx.clock = &clock;
    QueryFailureReporter failures(ctx);
    ctx.failures = &failures;
    // Request rows the console could not remove before it ended last time.
    failures.keepPendingIn(settings.pendingStatementsFile());
    Navigator navigator(ctx);
    ctx.navigator = &navigator;
    registerSecondaryViews(navigator);

    bool ended = false;
    ctx.terminate = processShutdown(db, ended);
    endWithSession(ctx);

    Startup startup(ctx, [](AppContext& c) -> ViewWindow* {
        auto* window = new MainWindow(c);
        // Its timer is a plain member, not a child start-up could find by name.
        window->refreshTimer()->setInterval(kUpdateIntervalMs);
        return window;
    });
    if (const auto code = startup.run())
        return *code;
    if (ended)
        return kExitNormal;
    // The fleet is read at every refresh tick of the main view, hidden or not.
    FleetWatch fleet(ctx);
    if (auto* main = qobject_cast<MainWindow*>(navigator.mainView()))
        QObject::connect(main->refreshTimer(), &QTimer::timeout, &fleet, &FleetWatch::refresh);
    fleet.refresh();
    const int code = QApplication::exec();
    delete navigator.secondaryView();
    return code;
}
