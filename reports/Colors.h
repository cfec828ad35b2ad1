#pragma once

#include <QColor>

namespace sx::colors {

inline const QColor kLightGrey(224, 224, 224); // normal
inline const QColor kLightRed(255, 128, 128);  // attention, function switched on, new messages
inline const QColor kLightBlue(128, 128, 255); // point in alarm
inline const QColor kDarkRed(192, 0, 0);       // text: above a maximum, alarm events
inline const QColor kBlue(0, 0, 255);          // text: below a minimum, bypass events, grid headers
inline const QColor kRed(255, 0, 0);           // text: unit not reachable
inline const QColor kGreen(0, 192, 0);         // text: unit connected

} // namespace sx::colors
