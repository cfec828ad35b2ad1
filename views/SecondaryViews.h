#pragma once

namespace sx {

class Navigator;

// Tells the navigator how to build the records, events and messages windows,
// the views that open in place of the main one.
void registerSecondaryViews(Navigator& navigator);

} // namespace sx
