#pragma once

#include <QString>

class QWidget;

namespace sx {

struct AppContext;
class DialogService;
class SettingsStore;

// "Πληροφορίες εφαρμογής": the version box.
void showSoftInfo(AppContext& ctx, QWidget* parent);

// "V" + major + "." + minor + revision of a version text ("1.1.0.9" gives
// "V1.19", "1.0.0" gives "V1.00"): the revision is the last of three or four parts.
[[nodiscard]] QString softwareVersionText(const QString& version);

// "Παράμετροι εφαρμογής": the protected settings change. After a completed
// change the console ends (ctx.terminate); otherwise it returns.
void changeAppSettings(AppContext& ctx, QWidget* parent);

// The box for a settings save that did not reach the disk (SettingsStore::sync
// failed): the settings in force stay those of before.
void reportSettingsNotSaved(DialogService& dialogs, QWidget* parent, const SettingsStore& store);

} // namespace sx
