#pragma once

#include "model/settings/SettingsValidation.h"

#include <QDialog>

class QAbstractButton;
class QButtonGroup;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace sx {

class DialogService;
class SettingsStore;

// The kind of database and where it is, and the code that
// protects these settings. OK saves only what passes the checks; the dialog is
// accepted only after a save.
class SettingsDialog : public QDialog {
    Q_OBJECT
public:
    SettingsDialog(SettingsStore& store, DialogService& dialogs, QWidget* parent = nullptr);

    // The folder whose "../SENTORAX SERVER LX-RV" holds the server's database;
    // the program's own folder unless a test says otherwise.
    void setApplicationFolder(const QString& folder) { m_appFolder = folder; }

    [[nodiscard]] SettingsForm form() const;
    void setForm(const SettingsForm& form);
    void setKind(DbKind kind);
    [[nodiscard]] DbKind kind() const;
    [[nodiscard]] QString filePath() const { return m_file; }

    // The file chooser's proposal for a file kind: the server's database when it exists.
    [[nodiscard]] QString proposedFile(DbKind kind) const;

    // Command1 (Αναζήτηση) and cmdOK, also reachable without a click.
    void browse();
    void confirm();

private:
    void setFilePath(const QString& path);
    void updateEnabled();

    SettingsStore& m_store;
    DialogService& m_dialogs;
    QString m_appFolder;
    QString m_file;
    QButtonGroup* m_kinds = nullptr;
    QLabel* m_fileLabel = nullptr;
    QPushButton* m_browse = nullptr;
    QLabel* m_fileHeading = nullptr;
    QList<QWidget*> m_serverControls;
    QLineEdit* m_fields[5] = {};
    QCheckBox* m_notifications = nullptr;
};

} // namespace sx
