#include "ui/WidgetDialogService.h"

#include "ui/PasswordDialog.h"
#include "ui/SelectionDialog.h"
#include "ui/SettingsDialog.h"

#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

QMessageBox::Icon boxIcon(DialogService::Icon icon)
{
    switch (icon) {
    case DialogService::Icon::Information:
        return QMessageBox::Information;
    case DialogService::Icon::Exclamation:
        return QMessageBox::Warning;
    case DialogService::Icon::Critical:
        return QMessageBox::Critical;
    case DialogService::Icon::Question:
        return QMessageBox::Question;
    case DialogService::Icon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

// Qt lays out lines at LF; the console's texts join them with CR LF.
QString shownText(const QString& text)
{
    return QString(text).replace(u"\r\n"_s, u"\n"_s);
}

} // namespace

DialogService::Answer WidgetDialogService::message(QWidget* parent, Icon icon, const QString& title,
                                                   const QString& text, Buttons buttons)
{
    QMessageBox box(boxIcon(icon), title, shownText(text), QMessageBox::NoButton, parent);
    box.setTextFormat(Qt::PlainText);
    struct Choice {
        QString caption;
        QMessageBox::ButtonRole role;
        Answer answer;
    };
    QList<Choice> choices;
    switch (buttons) {
    case Buttons::Ok:
        choices = {{u"OK"_s, QMessageBox::AcceptRole, Answer::Ok}};
        break;
    case Buttons::OkCancel:
        choices = {{u"OK"_s, QMessageBox::AcceptRole, Answer::Ok},
                   {u"Άκυρο"_s, QMessageBox::RejectRole, Answer::Cancel}};
        break;
    case Buttons::YesNo:
        choices = {{u"Ναι"_s, QMessageBox::YesRole, Answer::Yes},
                   {u"Όχι"_s, QMessageBox::NoRole, Answer::No}};
        break;
    }
    QList<QPushButton*> added;
    for (const Choice& c : std::as_const(choices))
        added << box.addButton(c.caption, c.role);
    box.setDefaultButton(added.first());
    // Escape and the close box give the last choice (OK, Άκυρο, Όχι).
    box.setEscapeButton(added.last());
    box.exec();
    const int index =
        static_cast<int>(added.indexOf(qobject_cast<QPushButton*>(box.clickedButton())));
    return choices.at(index < 0 ? choices.size() - 1 : index).answer;
}

std::optional<QString> WidgetDialogService::inputText(QWidget* parent, const QString& title,
                                                      const QString& prompt,
                                                      const QString& defaultText)
{
    QInputDialog dialog(parent);
    dialog.setWindowTitle(title);
    dialog.setLabelText(shownText(prompt));
    dialog.setTextValue(defaultText);
    dialog.setOkButtonText(u"OK"_s);
    dialog.setCancelButtonText(u"Άκυρο"_s);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.textValue();
}

std::optional<QString> WidgetDialogService::codePrompt(QWidget* parent, const QString& title,
                                                       const QString& label)
{
    return PasswordDialog::ask(parent, title, label);
}

std::optional<DialogService::Selection>
WidgetDialogService::selection(QWidget* parent, const QString& caption, const QString& label,
                               const QStringList& first, const QStringList& second)
{
    return SelectionDialog::ask(parent, caption, label, first, second);
}

QString WidgetDialogService::openFileName(QWidget* parent, const QString& title,
                                          const QString& filter, const QString& proposed)
{
    return QFileDialog::getOpenFileName(parent, title, proposed, filter);
}

QString WidgetDialogService::saveFileName(QWidget* parent, const QString& title,
                                          const QString& filter, const QString& proposed)
{
    return QFileDialog::getSaveFileName(parent, title, proposed, filter);
}

bool WidgetDialogService::printDialog(QWidget* parent, QPrinter& printer)
{
    QPrintDialog dialog(&printer, parent);
    return dialog.exec() == QDialog::Accepted;
}

void WidgetDialogService::printPreview(QWidget* parent, QPrinter& printer,
                                       const std::function<void(QPrinter&)>& paint)
{
    QPrintPreviewDialog dialog(&printer, parent);
    dialog.setWindowTitle(u"Προεπισκόπηση εκτύπωσης"_s);
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                     [&paint](QPrinter* target) { paint(*target); });
    // Large enough to read a whole A4 page.
    dialog.resize(900, 1000);
    dialog.exec();
}

bool WidgetDialogService::settingsDialog(QWidget* parent)
{
    if (!m_settings)
        return false;
    SettingsDialog dialog(*m_settings, *this, parent);
    return dialog.exec() == QDialog::Accepted;
}

} // namespace sx
