#pragma once

#include <QIcon>
#include <QString>

namespace sx {

// The desktop entry, icon and metainfo of an installed console share this name.
inline constexpr char16_t kDesktopId[] = u"gr.sentorax.Monitor";

// The console's icon in the sizes the desktop gets; compiled in, so a copy run
// from its build folder shows it too.
[[nodiscard]] QIcon appIcon();

// Every window of the application shows the icon; on Wayland the desktop finds
// the entry (and so the icon in its panels) by the desktop id.
void useAppIcon();

} // namespace sx
