#pragma once

#include "ui/ViewId.h"

#include <QGroupBox>

class QComboBox;
class QPushButton;

namespace sx {

// The "Πλοήγηση" frame every view carries: the unit list in "Επιλογή
// συστήματος" and the four navigation buttons. Laid out in twips as the
// views place it (left, top of the frame given by the view).
class NavigationFrame : public QGroupBox {
    Q_OBJECT
public:
    NavigationFrame(ViewId own, QWidget* parent);

    [[nodiscard]] QComboBox* systemSelect() const { return m_systemSelect; }
    [[nodiscard]] QPushButton* button(ViewId target) const;
    // Background of the messages button: light red while new messages exist.
    void setNewMessages(bool on);
    [[nodiscard]] bool newMessagesShown() const { return m_newMessages; }

signals:
    // A button of another view was pressed.
    void navigate(ViewId target);

private:
    ViewId m_own;
    QComboBox* m_systemSelect = nullptr;
    QPushButton* m_buttons[4] = {};
    bool m_newMessages = false;
};

// Gives a button a flat background colour, with a thin border that sinks when pressed.
void setButtonColor(QPushButton* button, const QColor& color);

} // namespace sx
