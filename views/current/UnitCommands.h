#pragma once

namespace sx {

struct AppContext;
class CommandHost;

// The three commands of the current-condition window: telephone notification
// (Command4), relay B (Command5) and point bypass (Command7).
void runNotificationCommand(AppContext& ctx, CommandHost& host);
void runRelayCommand(AppContext& ctx, CommandHost& host);
void runBypassCommand(AppContext& ctx, CommandHost& host);

} // namespace sx
