#include "ui/SettingsDialog.h"

#include "model/settings/SettingsStore.h"
#include "reports/Twips.h"
#include "ui/AppActions.h"
#include "ui/AppContext.h"
#include "ui/DialogService.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QCoreApplication>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

enum Field { DataSource, ServerIp, ServerPort, Code, Confirmation };

QLabel* heading(QWidget* parent, const QString& text, const QString& name)
{
    auto* label = new QLabel(text, parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace

SettingsDialog::SettingsDialog(SettingsStore& store, DialogService& dialogs, QWidget* parent)
    : QDialog(parent), m_store(store), m_dialogs(dialogs),
      m_appFolder(QCoreApplication::applicationDirPath())
{
    setObjectName(u"GeneralSettingsFrm"_s);
    setWindowTitle(appTitle() + u" / Παράμετροι εφαρμογής"_s);
    setFont(uiFont(9.75));
    setFixedSize(twips(9360, this), twips(5880, this));

    placeAt(heading(this, u"Τύπος βάσης δεδομένων"_s, u"Label1_5"_s), 240, 120, 4320, 285);
    m_kinds = new QButtonGroup(this);
    const struct {
        DbKind kind;
        const char16_t* caption;
        int left;
        int width;
    } options[] = {{DbKind::Access, u"Access", 360, 1560},
                   {DbKind::Oracle, u"Oracle", 2160, 1560},
                   {DbKind::SQLite, u"SQLite", 3960, 1560},
                   {DbKind::PostgreSQL, u"PostgreSQL", 5760, 2040}};
    for (const auto& o : options) {
        auto* option = new QRadioButton(QString::fromUtf16(o.caption), this);
        option->setObjectName(u"Option1_"_s + QString::number(static_cast<int>(o.kind)));
        placeAt(option, o.left, 420, o.width, 300);
        m_kinds->addButton(option, static_cast<int>(o.kind));
    }
    connect(m_kinds, &QButtonGroup::idToggled, this, [this](int, bool on) {
        if (on)
            updateEnabled();
    });

    m_fileHeading = heading(this, u"Αρχείο βάσης δεδομένων"_s, u"Label1_6"_s);
    placeAt(m_fileHeading, 240, 900, 4320, 285);
    m_fileLabel = new QLabel(this);
    m_fileLabel->setObjectName(u"Label2"_s);
    m_fileLabel->setTextFormat(Qt::PlainText);
    m_fileLabel->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    m_fileLabel->setAutoFillBackground(true);
    m_fileLabel->setBackgroundRole(QPalette::Base);
    placeAt(m_fileLabel, 240, 1200, 7200, 360);
    m_browse = new QPushButton(u"Αναζήτηση"_s, this);
    m_browse->setObjectName(u"Command1"_s);
    placeAt(m_browse, 7560, 1185, 1560, 390);
    connect(m_browse, &QPushButton::clicked, this, &SettingsDialog::browse);

    const auto field = [this](Field f, int left, int top, bool masked) {
        auto* edit = new QLineEdit(this);
        edit->setObjectName(u"AppSetting_"_s + QString::number(f));
        if (masked) {
            edit->setEchoMode(QLineEdit::Password);
            edit->setStyleSheet(u"lineedit-password-character: 42;"_s);
        }
        placeAt(edit, left, top, 4320, 345);
        m_fields[f] = edit;
        return edit;
    };
    const QString note =
        u"(Αφήστε το πεδίο κενό εάν η βάση δεδομένων βρίσκεται σε αυτόν τον Η/Υ)"_s;
    const auto noteLabel = [&](const QString& name, int top) {
        QLabel* label = heading(this, note, name);
        label->setFont(uiFont(8.25, false));
        label->setWordWrap(true);
        label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        placeAt(label, 4680, top, 4440, 450);
        return label;
    };

    QLabel* sourceHeading =
        heading(this, u"Όνομα βάσης δεδομένων διακομιστή (data source)"_s, u"Label1_0"_s);
    placeAt(sourceHeading, 240, 1740, 7200, 285);
    QLabel* ipHeading = heading(this, u"IP διακομιστή (server IP)"_s, u"Label1_1"_s);
    placeAt(ipHeading, 240, 2520, 4320, 285);
    QLabel* portHeading = heading(this, u"Port διακομιστή (server Port)"_s, u"Label1_2"_s);
    placeAt(portHeading, 240, 3300, 4320, 285);
    m_serverControls = {sourceHeading,
                        ipHeading,
                        portHeading,
                        noteLabel(u"Label1_3"_s, 2768),
                        noteLabel(u"Label1_4"_s, 3548),
                        field(DataSource, 240, 2040, false),
                        field(ServerIp, 240, 2820, false),
                        field(ServerPort, 240, 3600, false)};

    placeAt(heading(this, u"Κωδικός προστασίας παραμέτρων"_s, u"Label1_7"_s), 240, 4200, 4320, 285);
    field(Code, 240, 4500, true);
    placeAt(heading(this, u"Επιβεβαίωση κωδικού"_s, u"Label1_8"_s), 4680, 4200, 4320, 285);
    field(Confirmation, 4680, 4500, true);

    m_notifications = new QCheckBox(u"Ειδοποιήσεις συναγερμών στην επιφάνεια εργασίας"_s, this);
    m_notifications->setObjectName(u"Notifications"_s);
    placeAt(m_notifications, 240, 4890, 8880, 300);

    auto* ok = new QPushButton(u"OK"_s, this);
    ok->setObjectName(u"cmdOK"_s);
    ok->setDefault(true);
    placeAt(ok, 3000, 5220, 1440, 405);
    connect(ok, &QPushButton::clicked, this, &SettingsDialog::confirm);
    auto* cancel = new QPushButton(u"Άκυρο"_s, this);
    cancel->setObjectName(u"cmdCancel"_s);
    placeAt(cancel, 4920, 5220, 1440, 405);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    setForm(readSettingsForm(m_store));
}

SettingsForm SettingsDialog::form() const
{
    SettingsForm f;
    f.kind = kind();
    f.file = m_file;
    f.dataSource = m_fields[DataSource]->text();
    f.serverIp = m_fields[ServerIp]->text();
    f.serverPort = m_fields[ServerPort]->text();
    f.code = m_fields[Code]->text();
    f.confirmation = m_fields[Confirmation]->text();
    f.notifications = m_notifications->isChecked();
    return f;
}

void SettingsDialog::setForm(const SettingsForm& form)
{
    m_fields[Code]->setText(form.code);
    m_fields[Confirmation]->setText(form.confirmation);
    setKind(form.kind);
    setFilePath(form.file);
    m_fields[DataSource]->setText(form.dataSource);
    m_fields[ServerIp]->setText(form.serverIp);
    m_fields[ServerPort]->setText(form.serverPort);
    m_notifications->setChecked(form.notifications);
}

void SettingsDialog::setKind(DbKind kind)
{
    m_kinds->button(static_cast<int>(kind))->setChecked(true);
    updateEnabled();
}

DbKind SettingsDialog::kind() const
{
    const int id = m_kinds->checkedId();
    return id < 0 ? DbKind::Oracle : static_cast<DbKind>(id);
}

void SettingsDialog::updateEnabled()
{
    const bool file = isFileKind(kind());
    m_fileHeading->setEnabled(file);
    m_fileLabel->setEnabled(file);
    m_browse->setEnabled(file);
    for (QWidget* w : std::as_const(m_serverControls))
        w->setEnabled(!file);
}

void SettingsDialog::setFilePath(const QString& path)
{
    m_file = path;
    const int room = m_fileLabel->contentsRect().width() - 2 * m_fileLabel->margin() - 4;
    m_fileLabel->setText(m_fileLabel->fontMetrics().elidedText(path, Qt::ElideMiddle, room));
    m_fileLabel->setToolTip(path);
}

QString SettingsDialog::proposedFile(DbKind kind) const
{
    const QString name = kind == DbKind::SQLite ? u"sxdb.db"_s : u"sxdb.mdb"_s;
    const QString path = m_appFolder + u"/../SENTORAX SERVER LX-RV/"_s + name;
    return QFileInfo::exists(path) ? path : QString();
}

void SettingsDialog::browse()
{
    const DbKind k = kind();
    const QString filter = k == DbKind::SQLite ? u"SQLite Database Files (*.db *.sqlite)"_s
                                               : u"Access Database Files (*.mdb)"_s;
    const QString chosen =
        m_dialogs.openFileName(this, u"Αρχείο βάσης δεδομένων"_s, filter, proposedFile(k));
    if (!chosen.isEmpty())
        setFilePath(chosen);
}

void SettingsDialog::confirm()
{
    const SettingsForm f = form();
    if (const auto problem = settingsProblem(f)) {
        m_dialogs.message(this, DialogService::Icon::Exclamation, appTitle(), *problem);
        return;
    }
    // Unsaved, the dialog stays open with the input, as after a refused check.
    if (!writeSettingsForm(m_store, f)) {
        reportSettingsNotSaved(m_dialogs, this, m_store);
        return;
    }
    accept();
}

} // namespace sx
