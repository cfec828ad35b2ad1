#pragma once

#include "ui/AppContext.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QWidget;

namespace sx {

class SingleInstance;
class ViewWindow;

// How the process ends when start-up does not reach the running console.
inline constexpr int kExitNormal = 0;       // second copy, first-run set-up refused
inline constexpr int kExitNoConnection = 1; // the database could not be opened

// The refresh timer of the main window. Start-up finds it by this object name
// and sets its interval; the main window arms it after its first refresh.
inline constexpr char16_t kUpdateTimerName[] = u"UpdateMainfrm";
inline constexpr int kUpdateIntervalMs = 10000;

// The text of the wait window while the connection is being opened.
[[nodiscard]] QString waitMessageFor(const ConnectionSettings& settings);

// The start of the console, in this order: a second copy ends; the first run
// asks for the settings; the connection is opened behind the wait window (a
// failure is explained and always ends the process); the main window is made,
// its unit list filled (which selects the first unit and so refreshes it) and
// shown.
class Startup {
public:
    using MainFactory = std::function<ViewWindow*(AppContext&)>;

    Startup(AppContext& ctx, MainFactory makeMain);
    ~Startup();
    Startup(const Startup&) = delete;
    Startup& operator=(const Startup&) = delete;

    // The lock that refuses a second copy; the user's runtime folder unless set.
    void setLockFile(const QString& path) { m_lockFile = path; }
    // Called with the wait window on screen, just before the connection is opened.
    void setConnectingHook(std::function<void(QWidget*)> hook) { m_connecting = std::move(hook); }

    // Nothing when the main window is up and the event loop should run;
    // otherwise the process ends with the code returned.
    [[nodiscard]] std::optional<int> run();

    // The main window, owned here for the life of the process.
    [[nodiscard]] ViewWindow* mainWindow() const { return m_main.get(); }

private:
    [[nodiscard]] bool firstRun();
    [[nodiscard]] int connectionFailed(const DbError& error);

    AppContext& m_ctx;
    MainFactory m_makeMain;
    QString m_lockFile;
    std::function<void(QWidget*)> m_connecting;
    std::unique_ptr<SingleInstance> m_instance;
    std::unique_ptr<ViewWindow> m_main;
};

// The shutdown steps of the running console: closes the connection and leaves
// the event loop; no window is asked. `ended` tells main() that it happened
// before the loop was entered.
[[nodiscard]] std::function<void()> processShutdown(DbLink& db, bool& ended);

// Log-off and system shutdown end the console without asking.
void endWithSession(AppContext& ctx);

} // namespace sx
