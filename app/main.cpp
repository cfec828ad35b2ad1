#include "app/AppContext.h"
#include "app/AppIcon.h"
#include "app/Navigator.h"
#include "app/QueryFailureReporter.h"
#include "app/SettingsStore.h"
#include "app/Startup.h"
#include "app/Twips.h"
#include "app/WidgetDialogService.h"
#include "model/Database.h"

#if __has_include("views/current/MainWindow.h")
#include "views/current/MainWindow.h"
#define SX_HAVE_MAIN_WINDOW 1
#else
#include "views/PlaceholderView.h"
#endif

#include <QApplication>

using namespace Qt::StringLiterals;

int main(int argc, char** argv)
{
    using namespace sx;

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
    Database db;
    Clock clock;

    AppContext ctx;
    ctx.db = &db;
    ctx.dialogs = &dialogs;
    ctx.settings = &settings;
    ctx.clock = &clock;
    QueryFailureReporter failures(ctx);
    ctx.failures = &failures;
    Navigator navigator(ctx);
    ctx.navigator = &navigator;
    registerSecondaryViews(navigator);

    bool ended = false;
    ctx.terminate = processShutdown(db, ended);
    endWithSession(ctx);

    Startup startup(ctx, [](AppContext& c) -> ViewWindow* {
#ifdef SX_HAVE_MAIN_WINDOW
        auto* window = new MainWindow(c);
        // Its timer is a plain member, not a child start-up could find by name.
        window->refreshTimer()->setInterval(kUpdateIntervalMs);
        return window;
#else
        return new PlaceholderView(c, ViewId::Current, u"Τρέχουσα κατάσταση"_s, {});
#endif
    });
    if (const auto code = startup.run())
        return *code;
    if (ended)
        return kExitNormal;
    const int code = QApplication::exec();
    delete navigator.secondaryView();
    return code;
}
