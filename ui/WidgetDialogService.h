#pragma once

#include "ui/DialogService.h"

namespace sx {

class SettingsStore;

// The dialogs of the running console: message boxes with Greek buttons, the
// one-line input box, the code prompt, the selection dialog, the file choosers,
// the system print dialog and the settings dialog on the user's store.
class WidgetDialogService : public DialogService {
public:
    explicit WidgetDialogService(SettingsStore* settings = nullptr) : m_settings(settings) {}

    Answer message(QWidget* parent, Icon icon, const QString& title, const QString& text,
                   Buttons buttons = Buttons::Ok) override;
    std::optional<QString> inputText(QWidget* parent, const QString& title, const QString& prompt,
                                     const QString& defaultText) override;
    std::optional<QString> codePrompt(QWidget* parent, const QString& title,
                                      const QString& label) override;
    std::optional<Selection> selection(QWidget* parent, const QString& caption,
                                       const QString& label, const QStringList& first,
                                       const QStringList& second) override;
    QString openFileName(QWidget* parent, const QString& title, const QString& filter,
                         const QString& proposed) override;
    QString saveFileName(QWidget* parent, const QString& title, const QString& filter,
                         const QString& proposed) override;
    bool printDialog(QWidget* parent, QPrinter& printer) override;
    void printPreview(QWidget* parent, QPrinter& printer,
                      const std::function<void(QPrinter&)>& paint) override;
    bool settingsDialog(QWidget* parent) override;

private:
    SettingsStore* m_settings = nullptr;
};

} // namespace sx
