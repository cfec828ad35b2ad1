#pragma once

#include "model/MessageIcon.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

class QWidget;
class QPrinter;

namespace sx {

// Every dialog a user answers goes through here, so tests can script the answers.
class DialogService {
public:
    using Icon = MessageIcon;
    enum class Buttons { Ok, OkCancel, YesNo };
    enum class Answer { Ok, Cancel, Yes, No };

    struct Selection {
        int first = -1;
        int second = -1; // -1 when the second list was hidden or empty
    };

    virtual ~DialogService() = default;

    // A message box. Lines of `text` are joined with CR LF as the console writes them.
    virtual Answer message(QWidget* parent, Icon icon, const QString& title, const QString& text,
                           Buttons buttons = Buttons::Ok) = 0;

    // A one-line input box; nothing when cancelled.
    virtual std::optional<QString> inputText(QWidget* parent, const QString& title,
                                             const QString& prompt, const QString& defaultText) = 0;

    // The masked code prompt (Passwordfrm); nothing when cancelled or closed.
    virtual std::optional<QString> codePrompt(QWidget* parent, const QString& title,
                                              const QString& label) = 0;

    // The selection dialog (Selectionfrm). An empty `second` hides the second list.
    // Nothing when cancelled.
    virtual std::optional<Selection> selection(QWidget* parent, const QString& caption,
                                               const QString& label, const QStringList& first,
                                               const QStringList& second) = 0;

    // File choosers: the chosen path, or empty text when cancelled.
    virtual QString openFileName(QWidget* parent, const QString& title, const QString& filter,
                                 const QString& proposed) = 0;
    virtual QString saveFileName(QWidget* parent, const QString& title, const QString& filter,
                                 const QString& proposed) = 0;

    // The system print dialog on `printer`; false when cancelled.
    virtual bool printDialog(QWidget* parent, QPrinter& printer) = 0;

    // The print preview of a report on `printer`: `paint` draws the pages whenever the
    // preview asks, and again on the printer chosen when the user prints from it.
    virtual void printPreview(QWidget* parent, QPrinter& printer,
                              const std::function<void(QPrinter&)>& paint) = 0;

    // The settings dialog (GeneralSettingsFrm); true when its values were accepted and saved.
    virtual bool settingsDialog(QWidget* parent) = 0;
};

} // namespace sx
