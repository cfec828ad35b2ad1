#include "sim/SimSchema.h"

#include "model/commands/RequestOwner.h"

using namespace Qt::StringLiterals;

namespace sx::sim {

namespace {

struct Column {
    const char16_t* name;
    char type; // t text, i integer, s small integer, r real, d date-time
};

struct Table {
    const char16_t* name;
    std::initializer_list<Column> columns;
    const char16_t* primaryKey; // may be null
    std::initializer_list<const char16_t*> indexes;
};

const std::initializer_list<Table>& tables()
{
    static const std::initializer_list<Table> kTables = {
        {u"Systems_Info",
         {{u"SyI_Serialnumber", 't'},
          {u"SyI_Locationnumber", 't'},
          {u"SyI_Systemname", 't'},
          {u"SyI_Used", 's'},
          {u"SyI_Online", 's'},
          {u"SyI_Softver", 't'},
          {u"SyI_Model", 't'},
          {u"SyI_EventsTable_Pagebyteswritt", 'i'},
          {u"SyI_EventsTable_Lastpagesn", 'i'}},
         u"SyI_Serialnumber",
         {}},
        {u"Systems_Current_Condition",
         {{u"SyCC_SyI_Serialnumber", 't'},
          {u"SyCC_Alarmcondition", 's'},
          {u"SyCC_RelayBcondition", 's'},
          {u"SyCC_Rtc", 'd'}},
         u"SyCC_SyI_Serialnumber",
         {}},
        {u"Sensors_Info",
         {{u"SeI_SyI_Serialnumber", 't'},
          {u"SeI_Sensornumber", 's'},
          {u"SeI_Sensorname", 't'},
          {u"SeI_Sensortype", 's'},
          {u"SeI_Used", 's'},
          {u"SeI_Maxlimit", 'r'},
          {u"SeI_Minlimit", 'r'},
          {u"SeI_Maxlimitused", 's'},
          {u"SeI_Minlimitused", 's'},
          {u"SeI_RecordsTable_Pagebyteswrit", 'i'},
          {u"SeI_RecordsTable_Lastpagesn", 'i'}},
         u"SeI_SyI_Serialnumber, SeI_Sensornumber",
         {}},
        {u"Sensors_Current_Condition",
         {{u"SeCC_SyI_Serialnumber", 't'},
          {u"SeCC_Sensornumber", 's'},
          {u"SeCC_Currvalue", 'r'},
          {u"SeCC_Outofbounds", 's'},
          {u"SeCC_Alarmcondition", 's'},
          {u"SeCC_Notpowered", 's'}},
         u"SeCC_SyI_Serialnumber, SeCC_Sensornumber",
         {}},
        {u"Powermonitoring_Info",
         {{u"PmI_SyI_Serialnumber", 't'},
          {u"PmI_Powernumber", 's'},
          {u"PmI_Powername", 't'},
          {u"PmI_Used", 's'}},
         u"PmI_SyI_Serialnumber, PmI_Powernumber",
         {}},
        {u"Powermonitoring_Current_Condit",
         {{u"PmCC_SyI_Serialnumber", 't'},
          {u"PmCC_Powernumber", 's'},
          {u"PmCC_Powerfault", 's'},
          {u"PmCC_Powercondition", 's'}},
         u"PmCC_SyI_Serialnumber, PmCC_Powernumber",
         {}},
        {u"Systems_Faults",
         {{u"SyF_SyI_Serialnumber", 't'}, {u"SyF_Faulttype", 's'}, {u"SyF_Faultinfo", 't'}},
         nullptr,
         {u"SyF_SyI_Serialnumber"}},
        {u"Sensors_Events",
         {{u"SeE_SyI_Serialnumber", 't'},
          {u"SeE_Sensornumber", 's'},
          {u"SeE_Eventnumber", 'i'},
          {u"SeE_Eventtype", 's'},
          {u"SeE_Recordedvalue", 'r'},
          {u"SeE_Recordeddatetime", 'd'},
          {u"SeE_BeforeCounter", 'i'},
          {u"SeE_Recipients", 'i'}},
         nullptr,
         {u"SeE_SyI_Serialnumber, SeE_Sensornumber, SeE_Eventnumber",
          u"SeE_Recipients, SeE_SyI_Serialnumber"}},
        {u"Powermonitoring_Events",
         {{u"PmE_SyI_Serialnumber", 't'},
          {u"PmE_Eventnumber", 'i'},
          {u"PmE_Eventpowercondition", 's'},
          {u"PmE_Recordeddatetime", 'd'},
          {u"PmE_BeforeCounter", 'i'},
          {u"PmE_Recipients", 'i'}},
         nullptr,
         {u"PmE_SyI_Serialnumber, PmE_Eventnumber", u"PmE_Recipients, PmE_SyI_Serialnumber"}},
        {u"Records",
         {{u"Rec_SyI_Serialnumber", 't'},
          {u"Rec_SeI_Sensornumber", 's'},
          {u"Rec_Datetime", 'd'},
          {u"Rec_Value", 'r'},
          {u"Rec_Sensortype", 's'},
          {u"Rec_SensRecSN", 'i'}},
         nullptr,
         {u"Rec_SyI_Serialnumber, Rec_SeI_Sensornumber, Rec_Datetime"}},
        {u"Events_1",
         {{u"Event_SyI_Serialnumber", 't'},
          {u"Event_SystemEventSN", 'i'},
          {u"Event_Datetime", 'd'},
          {u"Event_EventSource", 's'},
          {u"Event_Condition", 's'},
          {u"Event_SeI_Sensortype", 's'},
          {u"Event_Value", 'r'},
          {u"Event_Info1", 't'},
          {u"Event_Ack", 's'}},
         u"Event_SyI_Serialnumber, Event_SystemEventSN",
         {u"Event_SyI_Serialnumber, Event_Datetime"}},
        {u"Terminal_Requests",
         {{u"TrmReq_SyI_Serialnumber", 't'},
          {u"TrmReq_Requesttype", 's'},
          {u"TrmReq_Attributes", 't'},
          {u"TrmReq_Requestcompleted", 's'},
          {u"TrmReq_Requestreply", 's'},
          {u"TrmReq_Requestowner", 't'}},
         nullptr,
         {u"TrmReq_SyI_Serialnumber"}},
    };
    return kTables;
}

QString typeName(DbKind kind, char type)
{
    const bool pg = kind == DbKind::PostgreSQL;
    switch (type) {
    case 't':
        return u"TEXT"_s;
    case 'i':
        return u"INTEGER"_s;
    case 's':
        return pg ? u"SMALLINT"_s : u"INTEGER"_s;
    case 'r':
        return u"REAL"_s;
    case 'd':
        return pg ? u"TIMESTAMP(0)"_s : u"TEXT"_s;
    }
    return u"TEXT"_s;
}

} // namespace

QStringList schemaStatements(DbKind kind)
{
    QStringList out;
    for (const Table& t : tables()) {
        const QString name = QString::fromUtf16(t.name);
        QString sql = u"CREATE TABLE IF NOT EXISTS "_s + name + u" ("_s;
        bool first = true;
        for (const Column& c : t.columns) {
            if (!first)
                sql += u", "_s;
            first = false;
            sql += QString::fromUtf16(c.name) + u' ' + typeName(kind, c.type);
        }
        if (t.primaryKey)
            sql += u", PRIMARY KEY ("_s + QString::fromUtf16(t.primaryKey) + u')';
        sql += u')';
        out << sql;
    }
    for (const ConsoleIndex& index : consoleIndexes())
        out << createIndexStatement(index);
    return out;
}

QList<ConsoleIndex> consoleIndexes()
{
    QList<ConsoleIndex> out;
    for (const Table& t : tables()) {
        const QString name = QString::fromUtf16(t.name);
        int n = 0;
        for (const char16_t* index : t.indexes) {
            out.append({u"ix_"_s + name.toLower() + u'_' + QString::number(++n),
                        name,
                        QString::fromUtf16(index),
                        {}});
        }
    }
    // The fleet summary counts the new messages of every unit each round; the
    // condition is the query's own, so both planners take these small indexes
    // instead of reading the whole archive.
    out.append({u"ix_sensors_events_new"_s, u"Sensors_Events"_s, u"SeE_SyI_Serialnumber"_s,
                u"SeE_Recipients<>0"_s});
    out.append({u"ix_powermonitoring_events_new"_s, u"Powermonitoring_Events"_s,
                u"PmE_SyI_Serialnumber"_s, u"PmE_Recipients<>0"_s});
    // Its zones in alarm: few of the fleet's conditions, found without reading them all.
    out.append({u"ix_sensors_current_condition_alert"_s, u"Sensors_Current_Condition"_s,
                u"SeCC_SyI_Serialnumber, SeCC_Sensornumber"_s,
                u"SeCC_Outofbounds>0 OR SeCC_Alarmcondition>0"_s});
    // The newest event of every unit, read off the index alone (the table's
    // pages stay out of the round).
    out.append({u"ix_events_1_newest"_s,
                u"Events_1"_s,
                u"Event_SyI_Serialnumber, Event_SystemEventSN, Event_Datetime"_s,
                {}});
    return out;
}

QString createIndexStatement(const ConsoleIndex& index)
{
    QString sql = u"CREATE INDEX IF NOT EXISTS "_s + index.name + u" ON "_s + index.table +
                  u" ("_s + index.columns + u')';
    if (!index.condition.isEmpty())
        sql += u" WHERE "_s + index.condition;
    return sql;
}

DbError createConsoleIndexes(Database& db)
{
    for (const ConsoleIndex& index : consoleIndexes()) {
        if (DbError e = db.exec(createIndexStatement(index)); e.isError())
            return e;
    }
    return {};
}

DbError dropConsoleIndexes(Database& db)
{
    for (const ConsoleIndex& index : consoleIndexes()) {
        if (DbError e = db.exec(u"DROP INDEX IF EXISTS "_s + index.name); e.isError())
            return e;
    }
    return {};
}

QList<SchemaColumn> schemaColumns()
{
    QList<SchemaColumn> out;
    for (const Table& t : tables()) {
        for (const Column& c : t.columns)
            out.append({QString::fromUtf16(t.name), QString::fromUtf16(c.name), c.type});
    }
    return out;
}

DbError createSchema(Database& db)
{
    if (db.kind() == DbKind::SQLite) {
        // Readers (the console) and the writer (the server) share the file.
        const DbError e = db.exec(u"PRAGMA journal_mode=WAL"_s);
        if (e.isError())
            return e;
    }
    for (const QString& sql : schemaStatements(db.kind())) {
        const DbError e = db.exec(sql);
        if (e.isError())
            return e;
    }
    return ensureRequestOwnerColumn(db);
}

DbError ensureRequestOwnerColumn(Database& db)
{
    DbError e;
    if (commands::hasRequestOwnerColumn(db, &e) || e.isError())
        return e;
    return db.exec(u"ALTER TABLE Terminal_Requests ADD COLUMN TrmReq_Requestowner "_s +
                   typeName(db.kind(), 't'));
}

} // namespace sx::sim
