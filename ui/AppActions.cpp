#include "ui/AppActions.h"

#include "model/settings/SettingsStore.h"
#include "ui/AppContext.h"
#include "ui/DialogService.h"

#include <QDir>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

QString settingsChangeTitle()
{
    return appTitle() + u" / Αλλαγή παραμέτρων εφαρμογής"_s;
}

// A version part in decimal without leading zeros; anything else counts as 0.
int versionPart(const QStringList& parts, qsizetype index)
{
    if (index >= parts.size())
        return 0;
    bool ok = false;
    const int n = parts.at(index).trimmed().toInt(&ok);
    return ok && n >= 0 ? n : 0;
}

} // namespace

QString softwareVersionText(const QString& version)
{
    const QStringList parts = version.split(u'.');
    // Four parts are a file version (major.minor.0.revision); three are
    // major.minor.revision.
    const qsizetype revision = parts.size() >= 4 ? 3 : 2;
    return u"V"_s + QString::number(versionPart(parts, 0)) + u'.' +
           QString::number(versionPart(parts, 1)) + QString::number(versionPart(parts, revision));
}

void showSoftInfo(AppContext& ctx, QWidget* parent)
{
    ctx.dialogs->message(parent, DialogService::Icon::Information, u"Πληροφορίες εφαρμογής"_s,
                         u"Έκδοση Λογισμικού:\r\n"_s + appTitle() + u' ' +
                             softwareVersionText(QStringLiteral(SX_VERSION)));
}

void changeAppSettings(AppContext& ctx, QWidget* parent)
{
    const auto code = ctx.dialogs->codePrompt(
        parent, settingsChangeTitle(), u"Παρακαλώ εισάγετε τον κωδικό προστασίας παραμέτρων"_s);
    if (!code || code->isEmpty())
        return;
    if (*code != ctx.settings->protectionCode()) {
        ctx.dialogs->message(parent, DialogService::Icon::Critical, settingsChangeTitle(),
                             u"Λάθος κωδικός !"_s);
        return;
    }
    if (!ctx.dialogs->settingsDialog(parent))
        return;
    ctx.settings->setApp(u"Init"_s, u"1"_s);
    if (!ctx.settings->sync()) {
        reportSettingsNotSaved(*ctx.dialogs, parent, *ctx.settings);
        return;
    }
    ctx.dialogs->message(
        parent, DialogService::Icon::Information, settingsChangeTitle(),
        u"Πατήστε 'ΟΚ' για να τερματίσετε την εφαρμογή.\r\n"
        u"Οι αλλαγές θα ισχύσουν απο την επόμενη φορά που θα εκτελεστεί η εφαρμογή "_s +
            appTitle());
    if (ctx.terminate)
        ctx.terminate();
}

void reportSettingsNotSaved(DialogService& dialogs, QWidget* parent, const SettingsStore& store)
{
    dialogs.message(parent, DialogService::Icon::Critical, appTitle(),
                    u"Οι παράμετροι της εφαρμογής δεν αποθηκεύτηκαν.\r\n"
                    u"Δεν είναι δυνατή η εγγραφή στο αρχείο παραμέτρων:\r\n"_s +
                        QDir::toNativeSeparators(store.fileName()) +
                        u"\r\nΙσχύουν οι προηγούμενες παράμετροι."_s);
}

} // namespace sx
