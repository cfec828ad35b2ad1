#include "ScriptedDialogs.h"

#include <QPrinter>

using namespace Qt::StringLiterals;

namespace sx::test {

namespace {

// The next scripted answer; without one the dialog counts as unexpected.
template <typename T> T take(QList<T>& answers, ScriptedDialogs::Shown& s, T fallback = {})
{
    s.unexpected = answers.isEmpty();
    return s.unexpected ? fallback : answers.takeFirst();
}

} // namespace

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
    return std::any_of(m_shown.begin(), m_shown.end(), [](const Shown& s) { return s.unexpected; });
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
    // A box with only OK needs no script.
    const Answer a =
        buttons == Buttons::Ok
            ? Answer::Ok
            : take(m_messages, s, buttons == Buttons::YesNo ? Answer::No : Answer::Cancel);
    record(s);
    return a;
}

std::optional<QString> ScriptedDialogs::inputText(QWidget*, const QString& title,
                                                  const QString& prompt, const QString& defaultText)
{
    Shown s{u"input"_s, Icon::None, Buttons::OkCancel, title, prompt, {defaultText}, false};
    const std::optional<QString> a = take(m_inputs, s);
    record(s);
    return a;
}

std::optional<QString> ScriptedDialogs::codePrompt(QWidget*, const QString& title,
                                                   const QString& label)
{
    Shown s{u"code"_s, Icon::None, Buttons::OkCancel, title, label, {}, false};
    const std::optional<QString> a = take(m_codes, s);
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
    const std::optional<Selection> a = take(m_selections, s);
    record(s);
    return a;
}

QString ScriptedDialogs::openFileName(QWidget*, const QString& title, const QString& filter,
                                      const QString& proposed)
{
    Shown s{u"open"_s, Icon::None, Buttons::OkCancel, title, filter, {proposed}, false};
    const QString a = take(m_files, s);
    record(s);
    return a;
}

QString ScriptedDialogs::saveFileName(QWidget*, const QString& title, const QString& filter,
                                      const QString& proposed)
{
    Shown s{u"save"_s, Icon::None, Buttons::OkCancel, title, filter, {proposed}, false};
    const QString a = take(m_files, s);
    record(s);
    return a;
}

bool ScriptedDialogs::printDialog(QWidget*, QPrinter& printer)
{
    Shown s{u"print"_s, Icon::None, Buttons::OkCancel, {}, {}, {}, false};
    const auto [accept, setup] = take(m_prints, s);
    if (setup)
        setup(printer);
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
    const std::function<bool()> hook = take(m_settings, s);
    record(s);
    return hook && hook();
}

} // namespace sx::test
