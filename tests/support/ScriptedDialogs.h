#pragma once

#include "ui/DialogService.h"

#include <QList>
#include <QStringList>

#include <functional>
#include <optional>

namespace sx::test {

// Dialog answers given in advance. Every dialog shown is recorded; one with no scripted answer
// counts as unexpected and gets the negative choice (No, Cancel, none), so a test never blocks.
class ScriptedDialogs : public DialogService {
public:
    struct Shown {
        // "message", "input", "code", "selection", "open", "save", "print", "preview", "settings"
        QString kind;
        Icon icon = Icon::None;
        Buttons buttons = Buttons::Ok;
        QString title;
        QString text;
        QStringList items; // selection lists: first list, then "|", then second
        bool unexpected = false;
    };

    // Answers, taken in order by the dialogs of the same kind.
    void answerMessage(Answer a) { m_messages << a; }
    void answerInput(std::optional<QString> text) { m_inputs << text; }
    void answerCode(std::optional<QString> code) { m_codes << code; }
    void answerSelection(std::optional<Selection> s) { m_selections << s; }
    void answerFile(const QString& path) { m_files << path; }
    // The print dialog: accepted as `setup` leaves the printer (e.g. PDF output), or refused.
    void answerPrint(bool accept, std::function<void(QPrinter&)> setup = {})
    {
        m_prints.append({accept, std::move(setup)});
    }
    // The print preview: the hook plays the user's part with the printer and the drawing.
    using PreviewHook = std::function<void(QPrinter&, const std::function<void(QPrinter&)>&)>;
    void answerPreview(PreviewHook hook) { m_previews << std::move(hook); }
    // The settings dialog: the hook plays the user's part and returns accepted.
    void answerSettings(std::function<bool()> hook) { m_settings << std::move(hook); }

    // The next message box not yet held stands open this long before its answer, as
    // when nobody is at the desk; events flow meanwhile, as under a real box.
    void leaveOpen(int ms) { m_leaveOpen << ms; }
    // How many boxes stand open now.
    [[nodiscard]] int standing() const { return m_standing; }

    // Runs right after a dialog is recorded (e.g. to stop a server mid-wait).
    std::function<void(const Shown&)> onShown;

    [[nodiscard]] const QList<Shown>& shown() const { return m_shown; }
    [[nodiscard]] QList<Shown> messages() const;
    [[nodiscard]] bool anyUnexpected() const;
    [[nodiscard]] int pendingAnswers() const;
    void clearShown() { m_shown.clear(); }

    Answer message(QWidget* parent, Icon icon, const QString& title, const QString& text,
                   Buttons buttons) override;
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
    Shown& record(const QString& kind, const QString& title = {}, const QString& text = {},
                  const QStringList& items = {}, Icon icon = Icon::None,
                  Buttons buttons = Buttons::OkCancel);

    QList<Answer> m_messages;
    QList<std::optional<QString>> m_inputs;
    QList<std::optional<QString>> m_codes;
    QList<std::optional<Selection>> m_selections;
    QStringList m_files;
    QList<QPair<bool, std::function<void(QPrinter&)>>> m_prints;
    QList<std::function<bool()>> m_settings;
    QList<PreviewHook> m_previews;
    QList<Shown> m_shown;
    QList<int> m_leaveOpen;
    int m_standing = 0;
};

} // namespace sx::test
