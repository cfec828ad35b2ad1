#include "sim/UnitCodes.h"

#include "model/Dialect.h"

using namespace Qt::StringLiterals;

namespace sx::sim {

DbError ensureUnitCodeTable(Database& db)
{
    // Looked up first: PostgreSQL would notice "already exists" on every start.
    const QString probe = db.kind() == DbKind::PostgreSQL
                              ? u"SELECT 1 WHERE to_regclass('sim_unit_codes') IS NOT NULL"_s
                              : u"SELECT 1 FROM sqlite_master WHERE type='table' AND "
                                "name='Sim_Unit_Codes'"_s;
    if (db.kind() == DbKind::PostgreSQL || db.kind() == DbKind::SQLite) {
        DbError e;
        if (db.exists(probe, &e))
            return {};
        if (e.isError())
            return e;
    }
    return db.exec(u"CREATE TABLE IF NOT EXISTS "_s + kUnitCodesTable.toString() +
                   u" (SimC_Serialnumber TEXT PRIMARY KEY, SimC_Code TEXT)"_s);
}

DbError storeUnitCode(Database& db, const QString& serial, const QString& code)
{
    if (DbError e = db.deleteRows(kUnitCodesTable, u"SimC_Serialnumber="_s + sqlQuote(serial));
        e.isError())
        return e;
    return db.insertRow(kUnitCodesTable,
                        {{u"SimC_Serialnumber"_s, serial}, {u"SimC_Code"_s, code}});
}

std::optional<QString> unitCode(Database& db, const QString& serial, DbError* error)
{
    Rows rows = db.readFirst(u"SELECT SimC_Code FROM "_s + kUnitCodesTable.toString() +
                             u" WHERE SimC_Serialnumber="_s + sqlQuote(serial));
    std::optional<QString> code;
    if (rows.next())
        code = rows.text(0);
    if (error)
        *error = rows.error();
    return code;
}

} // namespace sx::sim
