#include "ui/UnitList.h"

#include "ui/DbCall.h"
#include "ui/QueryFailureReporter.h"
#include "ui/UnitMarks.h"
#include "ui/ViewWindow.h"

#include <QComboBox>
#include <QPointer>
#include <QSignalBlocker>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

void applyUnitList(ViewWindow& view, const QList<UnitEntry>& units, const DbError& error,
                   int initialIndex, bool includeAll, FailureOrigin origin)
{
    AppContext& ctx = view.context();
    QComboBox* list = view.systemSelect();
    view.setUnitListStale(error.isError());
    if (error.isError()) {
        // The entries shown stay as they were, and so does the selection.
        if (ctx.failures)
            ctx.failures->report(error, &view, origin);
        if (list->count() == 0)
            view.unitListUnread();
        return;
    }
    {
        const QSignalBlocker block(list);
        list->clear();
        QStringList serials;
        for (const UnitEntry& u : units) {
            list->addItem(u.text);
            serials << u.serial;
        }
        if (includeAll && units.size() > 1) {
            list->addItem(u"ΟΛΑ"_s);
            serials << u"*"_s;
        }
        if (!serials.isEmpty())
            ctx.systemSerials = serials;
        markUnitList(*list, serials, ctx.fleet.get());
        if (list->count() == 0) {
            view.unitListUnread();
            return;
        }
        const int index = initialIndex >= 0 && initialIndex < list->count() ? initialIndex : 0;
        list->setCurrentIndex(index);
    }
    view.unitSelected(list->currentIndex());
}

struct UnitListRead {
    QList<UnitEntry> units;
    DbError error;
};

} // namespace

void fillSystemSelect(ViewWindow& view, int initialIndex, bool includeAll, FailureOrigin origin)
{
    AppContext& ctx = view.context();
    if (ctx.failures && !ctx.failures->ensureConnection(origin)) {
        applyUnitList(view, {},
                      {kProviderErrorNumber, u"The connection to the database is lost."_s,
                       DbFailureCause::Unreachable},
                      initialIndex, includeAll, origin);
        return;
    }
    if (!ctx.db)
        return;
    const auto read = [](Database& db) {
        UnitListRead r;
        r.units = readUnitList(db, &r.error);
        return r;
    };
    if (origin == FailureOrigin::User) {
        const UnitListRead r = dbCall(ctx, &view, read);
        applyUnitList(view, r.units, r.error, initialIndex, includeAll, origin);
        return;
    }
    // The watch refills on its own: the list comes when the database answers.
    QPointer<ViewWindow> target(&view);
    ctx.db->post(&view, read, [target, initialIndex, includeAll, origin](const UnitListRead& r) {
        if (target)
            applyUnitList(*target, r.units, r.error, initialIndex, includeAll, origin);
    });
}

} // namespace sx
