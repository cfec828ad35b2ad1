#pragma once

#include <QString>

class QWidget;

namespace sx {

struct AppContext;

// "Εκτύπωση τρέχουσας κατάστασης": asks for a printer, then prints the
// current condition of the unit. Cancelling the dialog prints nothing.
void printCurrentCondition(AppContext& ctx, QWidget* parent, const QString& serial);

} // namespace sx
