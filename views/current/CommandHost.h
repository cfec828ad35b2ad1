#pragma once

#include <QString>

class QWidget;

namespace sx {

// What the unit commands need from the current-condition window.
class CommandHost {
public:
    virtual ~CommandHost() = default;
    // The window that is disabled while a command waits for the server.
    [[nodiscard]] virtual QWidget* commandWindow() = 0;
    // The serial of the unit chosen in the unit list.
    [[nodiscard]] virtual QString commandSerial() const = 0;
    // The caption of the relay B button as last refreshed.
    [[nodiscard]] virtual QString relayCaption() const = 0;
    // One refresh at once.
    virtual void refreshNow() = 0;
};

} // namespace sx
