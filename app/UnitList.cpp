#include "app/UnitList.h"

#include "app/QueryFailureReporter.h"
#include "app/UnitMarks.h"
#include "app/ViewWindow.h"

#include <QComboBox>
#include <QSignalBlocker>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sx {

QList<UnitEntry> readUnitList(Database& db, DbError* error)
{
    struct Row {
        QString name;
        bool hasName;
        UnitEntry entry;
    };
    QList<Row> rows;
    Rows r = db.read(
        u"SELECT SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, SyI_Used FROM Systems_Info WHERE SyI_Used=1"_s);
    const int cSerial = r.column(u"SyI_Serialnumber");
    const int cLocation = r.column(u"SyI_Locationnumber");
    const int cName = r.column(u"SyI_Systemname");
    while (r.next()) {
        const auto name = r.text(cName);
        const QString serial = r.text(cSerial).value_or(QString());
        const QString location = r.text(cLocation).value_or(QString());
        const QString shown = name && !name->isEmpty() ? *name : u"Ανώνυμο σύστημα"_s;
        rows.append({name.value_or(QString()), name.has_value(),
                     {serial, shown + u" ["_s + location + u"] ("_s + serial + u')'}});
    }
    if (error)
        *error = r.error();
    // Sorted here rather than by the database, so that every kind orders the
    // same way: missing names first, then by the name's characters.
    std::stable_sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) {
        if (a.hasName != b.hasName)
            return !a.hasName;
        return a.name < b.name;
    });
    QList<UnitEntry> out;
    out.reserve(rows.size());
    for (const Row& row : rows)
        out.append(row.entry);
    return out;
}

void fillSystemSelect(ViewWindow& view, int initialIndex, bool includeAll)
{
    AppContext& ctx = view.context();
    QComboBox* list = view.systemSelect();
    DbError error;
    const QList<UnitEntry> units = readUnitList(*ctx.db, &error);
    if (error.isError() && ctx.failures)
        ctx.failures->report(error, &view);
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
        if (list->count() == 0)
            return;
        const int index = initialIndex >= 0 && initialIndex < list->count() ? initialIndex : 0;
        list->setCurrentIndex(index);
    }
    view.unitSelected(list->currentIndex());
}

} // namespace sx
