#include "model/settings/SettingsValidation.h"

#include "model/settings/SettingsStore.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

const QString kPortList =
    u"To πεδίo 'Port διακομιστή (server Port)' πρέπει να έχει έναν αριθμό ή τόσους αριθμούς, χωρισμένους με κόμμα, όσες είναι και οι διευθύνσεις του πεδίου 'IP διακομιστή (server IP)'."_s;

} // namespace

std::optional<QString> settingsProblem(const SettingsForm& form)
{
    if (!isFileKind(form.kind)) {
        if (form.dataSource.isEmpty())
            return u"Δεν έχετε συμπληρώσει τo πεδίo 'Όνομα βάσης δεδομένων (data source)'"_s;
        // Oracle by data-source name never uses the port; PostgreSQL always
        // does, also on this computer (empty IP), so a port typed there must
        // be a number too.
        const bool portUsed = !form.serverIp.isEmpty();
        const bool portChecked =
            portUsed || (form.kind == DbKind::PostgreSQL && !form.serverPort.isEmpty());
        if (portUsed && form.serverPort.isEmpty())
            return u"Δεν έχετε συμπληρώσει τo πεδίo 'Port διακομιστή (server Port)'"_s;
        // A list of servers (PostgreSQL only) takes one port for all or one for each.
        if (form.kind == DbKind::PostgreSQL && form.serverPort.contains(u',')) {
            const QStringList ports = form.serverPort.split(u',');
            const auto servers = std::max<qsizetype>(1, serverList(form.serverIp).size());
            if (ports.size() != servers ||
                !std::all_of(ports.begin(), ports.end(), isDecimalNumber))
                return kPortList;
        } else if (portChecked && !isDecimalNumber(form.serverPort)) {
            return u"To πεδίo 'Port διακομιστή (server Port)' πρέπει να είναι αριθμός."_s;
        }
    } else if (form.file.isEmpty()) {
        return u"Δεν έχετε συμπληρώσει τo πεδίo 'Αρχείο βάσης δεδομένων (sxdb.mdb)'"_s;
    }
    if (form.code.isEmpty() && form.confirmation.isEmpty())
        return u"Δεν έχετε συμπληρώσει τα πεδία 'Κωδικός προστασίας παραμέτρων' και 'Επιβεβαίωση κωδικού'"_s;
    if (form.code != form.confirmation)
        return u"Tα πεδία 'Κωδικός προστασίας παραμέτρων' και 'Επιβεβαίωση κωδικού' δεν συμφωνούν"_s;
    return std::nullopt;
}

QString dbTypeSetting(DbKind kind)
{
    return QString::number(static_cast<int>(kind));
}

SettingsForm readSettingsForm(const SettingsStore& store)
{
    SettingsForm form;
    form.kind = dbKindFromSetting(store.dbType());
    form.file = store.app(u"DBFile"_s);
    form.dataSource = store.app(u"DBDataSource"_s);
    form.serverIp = store.app(u"DBServerIP"_s);
    form.serverPort = store.app(u"DBServerPORT"_s);
    form.code = store.protectionCode();
    form.confirmation = form.code;
    form.notifications = store.notificationsOn();
    return form;
}

bool writeSettingsForm(SettingsStore& store, const SettingsForm& form)
{
    store.setProtectionCode(form.code);
    store.setApp(u"DBType"_s, dbTypeSetting(form.kind));
    store.setApp(u"DBFile"_s, form.file);
    store.setApp(u"DBDataSource"_s, form.dataSource);
    store.setApp(u"DBServerIP"_s, form.serverIp);
    store.setApp(u"DBServerPORT"_s, form.serverPort);
    store.setApp(u"Notifications"_s, form.notifications ? u"1"_s : u"0"_s);
    return store.sync();
}

} // namespace sx
