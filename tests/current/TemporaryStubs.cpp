// Weak stand-ins for functions that other parts of the console provide, so the
// window links while those parts are being written. A real definition, once in
// sxgui, takes precedence; the build only compiles the ones still missing.
#include "app/AppActions.h"
#include "views/current/CurrentReport.h"
#include "views/current/UnitCommands.h"

namespace sx {

#ifdef SX_STUB_COMMANDS
[[gnu::weak]] void runNotificationCommand(AppContext&, CommandHost&) {}
[[gnu::weak]] void runRelayCommand(AppContext&, CommandHost&) {}
[[gnu::weak]] void runBypassCommand(AppContext&, CommandHost&) {}
#endif
#ifdef SX_STUB_REPORT
[[gnu::weak]] void printCurrentCondition(AppContext&, QWidget*, const QString&) {}
#endif
#ifdef SX_STUB_APPACTIONS
[[gnu::weak]] void showSoftInfo(AppContext&, QWidget*) {}
[[gnu::weak]] void changeAppSettings(AppContext&, QWidget*) {}
#endif

} // namespace sx
