#include "ScriptedDialogs.h"

#include <QEventLoop>
#include <QPrinter>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace sx::test {

namespace {

// The next scripted answer for the dialog just recorded; without one it counts as unexpected.
template <typename T> T take(QList<T>& answers, ScriptedDialogs::Shown& shown, T fallback = {})
{
    shown.unexpected = answers.isEmpty();
    return shown.unexpected ? fallback : answers.takeFirst();
}

} // namespace

ScriptedDialogs::Shown& ScriptedDialogs::record(const QString& kind, const QString& title,
                                                const QString& text, const QStringList& items,
                                                Icon icon, Buttons buttons)
{
    m_shown.append({kind, icon, buttons, title, text, items, false});
    if (onShown)
        onShown(m_shown.last());
    return m_shown.last();
}

QList<ScriptedDialogs::Shown> ScriptedDialogs::messages() const
{
    QList<Shown> out;
    std::copy_if(m_shown.begin(), m_shown.end(), std::back_inserter(out),
                 [](const Shown& s) { return s.kind == u"message"; });
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
    Shown& s = record(u"message"_s, title, text, {}, icon, buttons);
    // A box with only OK needs no script.
    const Answer answer =
        buttons == Buttons::Ok
            ? Answer::Ok
            : take(m_messages, s, buttons == Buttons::YesNo ? Answer::No : Answer::Cancel);
    if (!m_leaveOpen.isEmpty()) {
        QEventLoop open;
        QTimer::singleShot(m_leaveOpen.takeFirst(), &open, &QEventLoop::quit);
        ++m_standing;
        open.exec();
        --m_standing;
    }
    return answer;
}

std::optional<QString> ScriptedDialogs::inputText(QWidget*, const QString& title,
                                                  const QString& prompt, const QString& defaultText)
{
    return take(m_inputs, record(u"input"_s, title, prompt, {defaultText}));
}

std::optional<QString> ScriptedDialogs::codePrompt(QWidget*, const QString& title,
                                                   const QString& label)
{
    return take(m_codes, record(u"code"_s, title, label));
}

std::optional<DialogService::Selection> ScriptedDialogs::selection(QWidget*, const QString& caption,
                                                                   const QString& label,
                                                                   const QStringList& first,
                                                                   const QStringList& second)
{
    const QStringList items = second.isEmpty() ? first : first + QStringList{u"|"_s} + second;
    return take(m_selections, record(u"selection"_s, caption, label, items));
}

QString ScriptedDialogs::openFileName(QWidget*, const QString& title, const QString& filter,
                                      const QString& proposed)
{
    return take(m_files, record(u"open"_s, title, filter, {proposed}));
}

QString ScriptedDialogs::saveFileName(QWidget*, const QString& title, const QString& filter,
                                      const QString& proposed)
{
    return take(m_files, record(u"save"_s, title, filter, {proposed}));
}

bool ScriptedDialogs::printDialog(QWidget*, QPrinter& printer)
{
    const auto [accept, setup] = take(m_prints, record(u"print"_s));
    if (setup)
        setup(printer);
    return accept;
}

void ScriptedDialogs::printPreview(QWidget*, QPrinter& printer,
                                   const std::function<void(QPrinter&)>& paint)
{
    if (const PreviewHook hook =
            take(m_previews, record(u"preview"_s, {}, {}, {}, Icon::None, Buttons::Ok)))
        hook(printer, paint);
}

bool ScriptedDialogs::settingsDialog(QWidget*)
{
    const std::function<bool()> hook = take(m_settings, record(u"settings"_s));
    return hook && hook();
}

} // namespace sx::test
