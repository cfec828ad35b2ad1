#include "model/UnitEntries.h"

#include <algorithm>
#include <tuple>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

// The name as a Greek reader orders it: without accents or diaeresis and
// without case (final sigma reads as sigma). Greek and Latin letters are each
// in alphabetical order in Unicode once so reduced.
QString primaryKey(const QString& name)
{
    const QString decomposed = name.normalized(QString::NormalizationForm_D);
    QString key;
    key.reserve(decomposed.size());
    for (const QChar c : decomposed) {
        if (c.category() != QChar::Mark_NonSpacing &&
            c.category() != QChar::Mark_SpacingCombining && c.category() != QChar::Mark_Enclosing)
            key += c;
    }
    return key.toCaseFolded();
}

} // namespace

QList<UnitEntry> readUnitList(Database& db, DbError* error)
{
    struct Row {
        QString name;
        bool hasName;
        UnitEntry entry;
        QString key;
        QString folded;
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
        const QString raw = name.value_or(QString());
        rows.append({raw,
                     name.has_value(),
                     {serial, shown + u" ["_s + location + u"] ("_s + serial + u')'},
                     primaryKey(raw),
                     raw.normalized(QString::NormalizationForm_D).toCaseFolded()});
    }
    if (error)
        *error = r.error();
    // Sorted here rather than by the database, so that every kind orders the
    // same way: missing names first, then by letters regardless of accents and
    // case; names equal so put the unaccented first, then capitals, then serials.
    std::sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) {
        if (a.hasName != b.hasName)
            return !a.hasName;
        return std::tie(a.key, a.folded, a.name, a.entry.serial) <
               std::tie(b.key, b.folded, b.name, b.entry.serial);
    });
    QList<UnitEntry> out;
    out.reserve(rows.size());
    for (const Row& row : rows)
        out.append(row.entry);
    return out;
}

} // namespace sx
