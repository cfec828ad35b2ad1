#pragma once

namespace sx {

class Navigator;
class RecordsWindow;

// Tells the navigator how to build the records, events and messages windows,
// the views that open in place of the main one.
void registerSecondaryViews(Navigator& navigator);

// The records window's graph button opens the graph of its selection.
void connectGraph(RecordsWindow& records);

} // namespace sx
