#include "ui/PasswordDialog.h"

#include "reports/Twips.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace sx {

PasswordDialog::PasswordDialog(const QString& title, const QString& label, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(u"Passwordfrm"_s);
    setWindowTitle(title);
    setFont(uiFont(9.75));
    setFixedSize(twips(5640, this), twips(1980, this));

    auto* question = new QLabel(label, this);
    question->setObjectName(u"Label1"_s);
    question->setTextFormat(Qt::PlainText);
    question->setWordWrap(true);
    question->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    placeAt(question, 120, 120, 5400, 660);

    m_field = new QLineEdit(this);
    m_field->setObjectName(u"txtPassword"_s);
    m_field->setEchoMode(QLineEdit::Password);
    // The mask is "*" whatever the style would draw.
    m_field->setStyleSheet(u"lineedit-password-character: 42;"_s);
    placeAt(m_field, 120, 840, 5400, 375);

    auto* ok = new QPushButton(u"OK"_s, this);
    ok->setObjectName(u"cmdOK"_s);
    ok->setDefault(true);
    placeAt(ok, 1440, 1380, 1140, 390);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);

    auto* cancel = new QPushButton(u"Άκυρο"_s, this);
    cancel->setObjectName(u"cmdCancel"_s);
    placeAt(cancel, 3060, 1380, 1140, 390);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    m_field->setFocus();
}

QString PasswordDialog::text() const
{
    return m_field->text();
}

std::optional<QString> PasswordDialog::ask(QWidget* parent, const QString& title,
                                           const QString& label)
{
    PasswordDialog dialog(title, label, parent);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.text();
}

} // namespace sx
