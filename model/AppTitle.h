#pragma once

#include <QString>

namespace sx {

// The console's name: window captions, the settings file's folder, report titles.
inline constexpr char16_t kAppTitle[] = u"SENTORAX Monitor";
[[nodiscard]] inline QString appTitle()
{
    return QString::fromUtf16(kAppTitle);
}

} // namespace sx
