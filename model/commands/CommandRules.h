#pragma once

#include "model/MessageIcon.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// The decisions of the three unit commands, without a database or a window.
namespace sx::commands {

// Titles of the three commands (message boxes, code prompt, delay box).
[[nodiscard]] QString notificationTitle();
[[nodiscard]] QString relayTitle();
[[nodiscard]] QString bypassTitle();

// Code prompt labels.
[[nodiscard]] QString securityCodePrompt();
[[nodiscard]] QString entryCodePrompt();

// Whether the unit takes the two-field notification request with the automatic
// state. A missing model, or a version text without "." (its number cannot be
// read), counts as not extended whatever the model.
[[nodiscard]] bool isExtendedUnit(const std::optional<QString>& model,
                                  const std::optional<QString>& softver);

enum class CodeCheck { Cancelled, NotDigits, BadLength, Accepted };
// The code prompt's answer: nothing (cancelled) and the empty text end silently.
[[nodiscard]] CodeCheck checkCode(const std::optional<QString>& typed);

enum class DelayCheck { NotDigits, OutOfRange, Accepted };
// The delay box's answer in hours; nothing (cancelled) counts as empty.
[[nodiscard]] DelayCheck checkDelay(const std::optional<QString>& typed);

// A message box to show: icon and text (the title is the caller's).
struct Notice {
    MessageIcon icon = MessageIcon::None;
    QString text;
    friend bool operator==(const Notice&, const Notice&) = default;
};
// Nothing for Accepted and Cancelled.
[[nodiscard]] std::optional<Notice> codeNotice(CodeCheck check);
[[nodiscard]] std::optional<Notice> delayNotice(DelayCheck check);
// The message of a server reply; nothing when the command was carried out.
[[nodiscard]] std::optional<Notice> replyNotice(int reply);
[[nodiscard]] Notice timeoutNotice();
[[nodiscard]] Notice noPointsNotice();

// An entry of a selection list and the value sent for it.
struct Choice {
    QString text;
    int value = 0;
};
[[nodiscard]] QStringList choiceTexts(const QList<Choice>& choices);
[[nodiscard]] QList<Choice> notificationChoices(bool extended);
[[nodiscard]] QList<Choice> bypassStateChoices();
// "[n] name", or "[n] Ανώνυμη ζώνη" for a missing or empty name.
[[nodiscard]] QString pointChoiceText(qint64 number, const std::optional<QString>& name);

// The selection dialogs' captions and labels.
[[nodiscard]] QString notificationSelectionCaption();
[[nodiscard]] QString notificationSelectionLabel();
[[nodiscard]] QString bypassSelectionLabel();
[[nodiscard]] QString delayPrompt();
[[nodiscard]] QString defaultDelay();

// TrmReq_Attributes of each request. The delay is sent as typed ("0" when the state is 0).
[[nodiscard]] QString notificationAttributes(const QString& code, int state, bool extended,
                                             const QString& delay);
// The relay is asked for the opposite of what its button shows.
[[nodiscard]] QString relayAttributes(const QString& code, const QString& relayCaption);
[[nodiscard]] QString bypassAttributes(const QString& code, qint64 point, int state);

// More than 60 whole seconds since the request was written, both times taken
// to the second as the clock shows them.
[[nodiscard]] bool requestTimedOut(const QDateTime& written, const QDateTime& now);

} // namespace sx::commands
