#include "ScriptedDialogs.h"

#include <QPrinter>

using namespace Qt::StringLiterals;

namespace sx::test {

ScriptedDialogs::Shown& ScriptedDialogs::record(Shown s)
{
    m_shown.append(std::move(s));
    if (onShown)
        onShown(m_shown.last());
    return m_shown.last();
}

QList<ScriptedDialogs::Shown> ScriptedDialogs::messages() const
{
    QList<Shown> out;
    for (const Shown& s : m_shown) {
        if (s.kind == u"message")
            out << s;
    }
    return out;
}

bool ScriptedDialogs::anyUnexpected() const
{
    for (const Shown& s : m_shown) {
        if (s.unexpected)
            return true;
    }
    return false;
}

int ScriptedDialogs::pendingAnswers() const
{
    return static_cast<int>(m_messages.size() + m_inputs.size() + m_codes.size() +
                            m_selections.size() + m_files.size() + m_prints.size() +
                            m_settings.size() + m_previews.size());
}

DialogService::Answer ScriptedDialogs::message(QWidget*, Icon icon, const QString& title,
                                               const QString& text, Buttons buttons)
{
    Shown s{u"message"_s, icon, buttons, title, text, {}, false};
    Answer a = buttons == Buttons::Ok      ? Answer::Ok
               : buttons == Buttons::YesNo ? Answer::No
                                           : Answer::Cancel;
    // A box with only OK needs no script.
    if (buttons != Buttons::Ok) {
        if (m_messages.isEmpty())
            s.unexpected = true;
        else
            a = m_messages.takeFirst();
    }
    record(s);
    return a;
}

std::optional<QString> ScriptedDialogs::inputText(QWidget*, const QString& title,
                                                  const QString& prompt, const QString& defaultText)
{
    Shown s{u"input"_s, Icon::None, Buttons::OkCancel, title, prompt, {defaultText}, false};
    std::optional<QString> a;
    if (m_inputs.isEmpty())
        s.unexpected = true;
    else
        a = m_inputs.takeFirst();
    record(s);
    return a;
}

std::optional<QString> ScriptedDialogs::codePrompt(QWidget*, const QString& title,
                                                   const QString& label)
{
    Shown s{u"code"_s, Icon::None, Buttons::OkCancel, title, label, {}, false};
    std::optional<QString> a;
    if (m_codes.isEmpty())
        s.unexpected = true;
    else
        a = m_codes.takeFirst();
    record(s);
    return a;
}

std::optional<DialogService::Selection> ScriptedDialogs::selection(QWidget*, const QString& caption,
                                                                   const QString& label,
                                                                   const QStringList& first,
                                                                   const QStringList& second)
{
    QStringList items = first;
    if (!second.isEmpty())
        items << u"|"_s << second;
    Shown s{u"selection"_s, Icon::None, Buttons::OkCancel, caption, label, items, false};
    std::optional<Selection> a;
    if (m_selections.isEmpty())
        s.unexpected = true;
    else
        a = m_selections.takeFirst();
    record(s);
    return a;
}

QString ScriptedDialogs::openFileName(QWidget*, const QString& title, const QString& filter,
                                      const QString& proposed)
{
    Shown s{u"open"_s, Icon::None, Buttons::OkCancel, title, filter, {proposed}, false};
    QString a;
    if (m_files.isEmpty())
        s.unexpected = true;
    else
        a = m_files.takeFirst();
    record(s);
    return a;
}

QString ScriptedDialogs::saveFileName(QWidget*, const QString& title, const QString& filter,
                                      const QString& proposed)
{
    Shown s{u"save"_s, Icon::None, Buttons::OkCancel, title, filter, {proposed}, false};
    QString a;
    if (m_files.isEmpty())
        s.unexpected = true;
    else
        a = m_files.takeFirst();
    record(s);
    return a;
}

bool ScriptedDialogs::printDialog(QWidget*, QPrinter& printer)
{
    Shown s{u"print"_s, Icon::None, Buttons::OkCancel, {}, {}, {}, false};
    bool accept = false;
    if (m_prints.isEmpty()) {
        s.unexpected = true;
    } else {
        auto [ok, setup] = m_prints.takeFirst();
        accept = ok;
        if (setup)
            setup(printer);
    }
    record(s);
    return accept;
}

void ScriptedDialogs::printPreview(QWidget*, QPrinter& printer,
                                   const std::function<void(QPrinter&)>& paint)
{
    Shown s{u"preview"_s, Icon::None, Buttons::Ok, {}, {}, {}, m_previews.isEmpty()};
    record(s);
    if (!m_previews.isEmpty())
        m_previews.takeFirst()(printer, paint);
}

bool ScriptedDialogs::settingsDialog(QWidget*)
{
    Shown s{u"settings"_s, Icon::None, Buttons::OkCancel, {}, {}, {}, false};
    bool accepted = false;
    std::function<bool()> hook;
    if (m_settings.isEmpty())
        s.unexpected = true;
    else
        hook = m_settings.takeFirst();
    record(s);
    if (hook)
        accepted = hook();
    return accepted;
}

} // namespace sx::test
