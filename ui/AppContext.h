#pragma once

#include "model/AppTitle.h"
#include "model/Clock.h"
#include "model/Database.h"
#include "model/DbLink.h"
#include "model/LoadedRecords.h"
#include "model/commands/RequestOwner.h"

#include <QDateTime>
#include <QStringList>

#include <functional>

namespace sx {

class DialogService;
class SettingsStore;
class QueryFailureReporter;
class Navigator;
struct FleetSummary;
struct PrinterChoice;

// What every view shares: the connection (on its own thread: views post jobs
// to it and never run a statement themselves), the unit serials of the list
// filled last, the dialogs, the settings and the way out. Tests build one
// against a scratch database with scripted dialogs.
struct AppContext {
    DbLink* db = nullptr;
    DialogService* dialogs = nullptr;
    SettingsStore* settings = nullptr;
    Clock* clock = nullptr;
    QueryFailureReporter* failures = nullptr;
    Navigator* navigator = nullptr;

    // Serial of each entry of the unit list filled last; "*" for "ΟΛΑ".
    QStringList systemSerials;

    // The records the records view shows, for the graph; in grid order.
    std::shared_ptr<const LoadedRecords> loadedRecords;

    // The fleet as the last refresh read it (state marks of the unit lists);
    // empty until the first read.
    std::shared_ptr<const FleetSummary> fleet;
    // Opens the overview window ("Επισκόπηση συστημάτων").
    std::function<void()> showOverview;

    // Set by the first drag zoom of any graph and kept for the run: from then
    // on the right button zooms out, in every graph opened later too.
    bool graphZoomed = false;

    // Whether the request table names each row's console, as learnt on the
    // connection of that time (views/current/RequestExchange.cpp).
    commands::RequestOwnerColumn requestOwnerColumn;

    // The printer chosen last; none until the first print (ui/ChoosePrinter.h).
    std::shared_ptr<const PrinterChoice> printer;

    // The shutdown steps: close the connection (errors ignored) and end the
    // process. Tests replace it to see that it was reached.
    std::function<void()> terminate;

    [[nodiscard]] DbKind dbKind() const { return db ? db->kind() : DbKind::SQLite; }
    [[nodiscard]] QString serialAt(int index) const
    {
        return index >= 0 && index < systemSerials.size() ? systemSerials.at(index) : QString();
    }
};

} // namespace sx
