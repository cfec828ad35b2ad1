#include "ui/SelectionDialog.h"

#include "reports/Twips.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace sx {

SelectionDialog::SelectionDialog(const QString& caption, const QString& label,
                                 const QStringList& first, const QStringList& second,
                                 QWidget* parent)
    : QDialog(parent)
{
    setObjectName(u"Selectionfrm"_s);
    setWindowTitle(caption.isEmpty() ? u"Εισαγωγή παραμέτρου"_s : caption);
    setFont(uiFont(9.75));
    setFixedSize(twips(7335, this), twips(2760, this));

    auto* instruction = new QLabel(label, this);
    instruction->setObjectName(u"Label1"_s);
    instruction->setTextFormat(Qt::PlainText);
    instruction->setWordWrap(true);
    instruction->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    instruction->setFont(uiFont(9.75));
    placeAt(instruction, 120, 120, 6975, 735);

    m_first = new QComboBox(this);
    m_first->setObjectName(u"Selcombo"_s);
    m_first->setFont(uiFont(11.25));
    m_first->addItems(first);
    placeAt(m_first, 188, 1080, 6855, 390);

    m_second = new QComboBox(this);
    m_second->setObjectName(u"Selcombo2"_s);
    m_second->setFont(uiFont(11.25));
    m_second->addItems(second);
    placeAt(m_second, 188, 1500, 6855, 390);
    m_second->setVisible(!second.isEmpty());

    auto* ok = new QPushButton(u"OK"_s, this);
    ok->setObjectName(u"cmdOK"_s);
    ok->setDefault(true);
    placeAt(ok, 1965, 2160, 1140, 390);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);

    auto* cancel = new QPushButton(u"Άκυρο"_s, this);
    cancel->setObjectName(u"cmdCancel"_s);
    placeAt(cancel, 4125, 2160, 1140, 390);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

DialogService::Selection SelectionDialog::selection() const
{
    DialogService::Selection s;
    s.first = m_first->currentIndex();
    // isVisibleTo: the dialog itself may not be on screen (yet).
    s.second = m_second->isVisibleTo(this) ? m_second->currentIndex() : -1;
    return s;
}

std::optional<DialogService::Selection>
SelectionDialog::ask(QWidget* parent, const QString& caption, const QString& label,
                     const QStringList& first, const QStringList& second)
{
    SelectionDialog dialog(caption, label, first, second, parent);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.selection();
}

} // namespace sx
