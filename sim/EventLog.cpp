#include "sim/EventLog.h"

#include "model/Dialect.h"
#include "model/Schema.h"
#include "sim/StoreCounters.h"

using namespace Qt::StringLiterals;

namespace sx::sim {

DbError appendEvent(Database& db, const QString& serial, const EventRow& event)
{
    namespace E = schema::Events1;
    namespace S = schema::SystemsInfo;
    Rows last =
        db.read(u"SELECT MAX(Event_SystemEventSN) FROM Events_1 WHERE Event_SyI_Serialnumber="_s +
                sqlQuote(serial));
    qint64 sn = 1;
    if (last.next())
        sn = last.integer(0).value_or(0) + 1;
    if (!last.ok())
        return last.error();

    if (DbError e =
            db.insertRow(E::table, {{E::Event_SyI_Serialnumber.toString(), serial},
                                    {E::Event_SystemEventSN.toString(), sn},
                                    {E::Event_Datetime.toString(), SqlDateTimeValue{event.secs}},
                                    {E::Event_EventSource.toString(), qint64(event.source)},
                                    {E::Event_Condition.toString(), qint64(event.condition)},
                                    {E::Event_SeI_Sensortype.toString(), qint64(event.sensorType)},
                                    {E::Event_Value.toString(), event.value},
                                    {E::Event_Info1.toString(), event.info},
                                    {E::Event_Ack.toString(), qint64(event.ack)}});
        e.isError())
        return e;
    const StoreCounters c = storeCounters(sn, kEventEntryBytes);
    return db.updateRows(S::table,
                         {{S::SyI_EventsTable_Pagebyteswritt.toString(), c.pageBytes},
                          {S::SyI_EventsTable_Lastpagesn.toString(), c.lastPage}},
                         S::SyI_Serialnumber.toString() + u'=' + sqlQuote(serial));
}

} // namespace sx::sim
