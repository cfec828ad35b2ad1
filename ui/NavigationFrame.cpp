#include "ui/NavigationFrame.h"

#include "reports/Colors.h"
#include "reports/Twips.h"

#include <QComboBox>
#include <QPushButton>
#include <QStyleOptionButton>
#include <QStylePainter>

#include <utility>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

// A push button whose caption breaks between words when it does not fit on
// one line; text() stays the caption as written.
class WrappingButton : public QPushButton {
public:
    using QPushButton::QPushButton;

protected:
    void paintEvent(QPaintEvent*) override
    {
        QStylePainter p(this);
        QStyleOptionButton option;
        initStyleOption(&option);
        const QString caption = std::exchange(option.text, QString());
        p.drawControl(QStyle::CE_PushButton, option);
        const QRect area = style()->subElementRect(QStyle::SE_PushButtonContents, &option, this);
        p.drawItemText(area, Qt::AlignCenter | Qt::TextWordWrap, option.palette, isEnabled(),
                       caption, QPalette::ButtonText);
    }
};

} // namespace

void setButtonColor(QPushButton* button, const QColor& color)
{
    // A style sheet, because native styles ignore the palette's button colour.
    button->setStyleSheet(
        u"QPushButton { background-color: %1; border: 1px solid #808080; border-radius: 2px; }"
        "QPushButton:pressed { border: 2px inset #606060; }"
        "QPushButton:disabled { color: #8a8a8a; }"_s.arg(color.name()));
    button->setProperty("sxColor", color);
}

NavigationFrame::NavigationFrame(ViewId own, QWidget* parent)
    : QGroupBox(u"Πλοήγηση"_s, parent), m_own(own)
{
    setObjectName(u"Frame1"_s);
    setFont(uiFont(12.75, true, true));
    setStyleSheet(u"QGroupBox#Frame1 { color: rgb(0,0,255); }"_s);

    auto* unitFrame = new QGroupBox(u"Επιλογή συστήματος"_s, this);
    unitFrame->setObjectName(u"Frame6"_s);
    unitFrame->setFont(uiFont(9.75, true, true));
    unitFrame->setStyleSheet(u"QGroupBox { color: black; }"_s);
    placeAt(unitFrame, 120, 600, 5655, 975);

    m_systemSelect = new QComboBox(unitFrame);
    m_systemSelect->setObjectName(u"SystemSelect"_s);
    m_systemSelect->setFont(uiFont(9, true, true));
    placeAt(m_systemSelect, 120, 360, 5415, 345);

    struct Def {
        ViewId id;
        const char16_t* name;
        const char16_t* caption;
        int left;
    };
    static constexpr Def kButtons[] = {
        {ViewId::Current, u"Command1", u"Τρέχουσα κατάσταση", 120},
        {ViewId::Records, u"Command2", u"Αρχείο καταγραφών", 1560},
        {ViewId::Events, u"Command6", u"Αρχείο συμβάντων", 3000},
        // The first letter is a Latin M.
        {ViewId::Messages, u"Command3", u"Mηνύματα", 4440},
    };
    for (const Def& d : kButtons) {
        auto* b = new WrappingButton(QString::fromUtf16(d.caption), this);
        b->setObjectName(QString::fromUtf16(d.name));
        b->setFont(uiFont(9, true, true));
        placeAt(b, d.left, 1680, 1335, 735);
        setButtonColor(b, colors::kLightGrey);
        const ViewId target = d.id;
        connect(b, &QPushButton::clicked, this, [this, target] {
            if (target != m_own)
                emit navigate(target);
        });
        m_buttons[static_cast<int>(d.id)] = b;
    }
    resize(twips(5895, this), twips(2535, this));
}

QPushButton* NavigationFrame::button(ViewId target) const
{
    return m_buttons[static_cast<int>(target)];
}

void NavigationFrame::setNewMessages(bool on)
{
    m_newMessages = on;
    setButtonColor(button(ViewId::Messages), on ? colors::kLightRed : colors::kLightGrey);
}

} // namespace sx
