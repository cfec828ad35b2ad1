#pragma once

namespace sx {

// Waits `ms` milliseconds while window events keep flowing (timers, clicks,
// repaints), in a nested event loop rather than a busy loop.
void generalDelay(int ms);

} // namespace sx
