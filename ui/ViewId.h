#pragma once

namespace sx {

// The four main views; one is visible at a time.
enum class ViewId { Current, Records, Events, Messages };

} // namespace sx
