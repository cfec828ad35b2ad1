#include "model/commands/CommandRules.h"

#include "model/Formatting.h"

#include <QStringView>

using namespace Qt::StringLiterals;

namespace sx::commands {

namespace {

using Icon = MessageIcon;

bool allAsciiDigits(QStringView text)
{
    for (const QChar c : text) {
        if (c < u'0' || c > u'9')
            return false;
    }
    return true;
}

} // namespace

QString notificationTitle()
{
    return u"Αλλαγή κατάστασης τηλεφωνικης ειδοποίησης"_s;
}

QString relayTitle()
{
    return u"Αλλαγή κατάστασης διακόπτη"_s;
}

QString bypassTitle()
{
    return u"Αλλαγή κατάστασης παράκαμψης σημείου"_s;
}

QString securityCodePrompt()
{
    return u"Παρακαλώ εισάγετε τον κωδικό ασφαλείας"_s;
}

QString entryCodePrompt()
{
    return u"Παρακαλώ εισάγετε τον κωδικό εισόδου"_s;
}

bool isExtendedUnit(const std::optional<QString>& model, const std::optional<QString>& softver)
{
    if (!model || !softver || !softver->contains(u'.'))
        return false;
    static constexpr QStringView kAlwaysExtended[] = {
        u"SENTORAX-1C", u"SENTORAX-1D", u"SENTORAX-1E", u"SENTORAX-1F",
        u"SENTORAX-1G", u"SENTORAX-2D", u"SENTORAX-2E", u"SENTORAX-2F",
    };
    for (const QStringView m : kAlwaysExtended) {
        if (model->contains(m))
            return true;
    }
    if (model->contains(u"SENTORAX-1A") || model->contains(u"SENTORAX-1B"))
        return unitVersionNumber(*softver) >= 115;
    return false;
}

CodeCheck checkCode(const std::optional<QString>& typed)
{
    if (!typed || typed->isEmpty())
        return CodeCheck::Cancelled;
    if (!allAsciiDigits(*typed))
        return CodeCheck::NotDigits;
    if (typed->size() < 4 || typed->size() > 8)
        return CodeCheck::BadLength;
    return CodeCheck::Accepted;
}

DelayCheck checkDelay(const std::optional<QString>& typed)
{
    const QString text = typed.value_or(QString());
    if (!allAsciiDigits(text))
        return DelayCheck::NotDigits;
    if (text.isEmpty())
        return DelayCheck::OutOfRange;
    // Leading zeros are allowed ("024"); a very long text overflows and is out of range.
    bool ok = false;
    const qulonglong hours = text.toULongLong(&ok);
    return ok && hours <= 24 ? DelayCheck::Accepted : DelayCheck::OutOfRange;
}

std::optional<Notice> codeNotice(CodeCheck check)
{
    switch (check) {
    case CodeCheck::NotDigits:
        return Notice{Icon::Exclamation, u"Ο κωδικός πρέπει να αποτελείται μόνο απο αριθμούς"_s};
    case CodeCheck::BadLength:
        return Notice{Icon::Exclamation, u"Ο κωδικός πρέπει να έχει μήκος απο 4 εώς 8 νούμερα"_s};
    case CodeCheck::Cancelled:
    case CodeCheck::Accepted:
        break;
    }
    return std::nullopt;
}

std::optional<Notice> delayNotice(DelayCheck check)
{
    switch (check) {
    case DelayCheck::NotDigits:
        return Notice{Icon::Exclamation, u"ΛΑΘΟΣ ΕΠΙΛΟΓΗ"_s};
    case DelayCheck::OutOfRange:
        return Notice{
            Icon::Exclamation,
            u"Η καθυστέρηση τηλεφωνικής ειδοποίησης πρέπει να είναι μεταξύ 0 και 24 ΩΡΕΣ"_s};
    case DelayCheck::Accepted:
        break;
    }
    return std::nullopt;
}

std::optional<Notice> replyNotice(int reply)
{
    switch (reply) {
    case 2:
        return Notice{Icon::Critical, u"ΛΑΘΟΣ ΚΩΔΙΚΟΣ"_s};
    case 3:
        return Notice{Icon::Critical, u"ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ ΜΗ ΔΙΑΘΕΣΙΜΗ"_s};
    case 4:
        return Notice{Icon::Exclamation, u"ΣΥΣΤΗΜΑ ΣΕ ΔΙΑΔΙΚΑΣΙΑ ΠΡΟΓΡΑΜΜΑΤΙΣΜΟΥ"_s};
    case 5:
    case 6:
        return Notice{Icon::Exclamation,
                      u"Η συγκεκριμένη λειτουργία δέν είναι διαθέσιμη στο σύστημα"_s};
    default:
        return std::nullopt;
    }
}

Notice timeoutNotice()
{
    return {Icon::Critical,
            u"Η εκτέλεση της εντολής είναι αδύνατη.\r\n"
            u"Βεβαιωθείτε ότι η εφαρμογή SENTORAX Server βρίσκεται σε λειτουργία και είναι "
            u"συνδεδεμένη"_s};
}

Notice noPointsNotice()
{
    return {Icon::Exclamation,
            u"Δεν υπάρχουν ενεργοποιημένα σημεία προς παρακολούθηση στο σύστημα !"_s};
}

QStringList choiceTexts(const QList<Choice>& choices)
{
    QStringList texts;
    texts.reserve(choices.size());
    for (const Choice& c : choices)
        texts << c.text;
    return texts;
}

QList<Choice> notificationChoices(bool extended)
{
    QList<Choice> choices{{u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s, 0}, {u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s, 1}};
    if (extended)
        choices.append({u"ΑΥΤΟΜΑΤΗ"_s, 2});
    return choices;
}

QList<Choice> bypassStateChoices()
{
    return {{u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΟ"_s, 0}, {u"ΠΑΡΑΚΑΜΨΗ"_s, 1}};
}

QString pointChoiceText(qint64 number, const std::optional<QString>& name)
{
    const QString shown = name && !name->isEmpty() ? *name : u"Ανώνυμη ζώνη"_s;
    return u'[' + QString::number(number) + u"] "_s + shown;
}

QString notificationSelectionCaption()
{
    return u"Επιλογή κατάστασης τηλεφωνικής ειδοποίησης"_s;
}

QString notificationSelectionLabel()
{
    return u"Παρακαλώ επιλέξτε"_s;
}

QString bypassSelectionLabel()
{
    return u"Παρακαλώ επιλέξτε σημείο και κατάσταση"_s;
}

QString delayPrompt()
{
    return u"Παρακαλώ εισάγετε την καθυστέρηση τηλεφωνικής ειδοποίησης σε ΩΡΕΣ"_s;
}

QString defaultDelay()
{
    return u"1"_s;
}

QString notificationAttributes(const QString& code, int state, bool extended, const QString& delay)
{
    QString attributes = code + u';' + QString::number(state);
    if (!extended)
        attributes += u';' + (state == 0 ? u"0"_s : delay);
    return attributes;
}

QString relayAttributes(const QString& code, const QString& relayCaption)
{
    return code + (relayCaption == u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ" ? u";0"_s : u";1"_s);
}

QString bypassAttributes(const QString& code, qint64 point, int state)
{
    return code + u';' + QString::number(point) + u';' + QString::number(state);
}

bool requestTimedOut(const QDateTime& written, const QDateTime& now)
{
    return now.toSecsSinceEpoch() - written.toSecsSinceEpoch() > 60;
}

} // namespace sx::commands
