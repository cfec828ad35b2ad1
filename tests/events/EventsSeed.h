#pragma once

#include "model/Database.h"
#include "model/Dialect.h"
#include "model/SqlDateTime.h"

#include <QString>
#include <QtTest>

// Units, names and events written with plain SQL for the events window's tests.
namespace sx::test {

using namespace Qt::StringLiterals;

class EventsSeed {
public:
    explicit EventsSeed(Database& db) : m_db(db) {}

    bool unit(const QString& serial, const QString& name, const QString& location = u"7"_s,
              int pageBytes = 32, int lastPage = 0)
    {
        return run(
            u"INSERT INTO Systems_Info (SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, SyI_Used, SyI_Online, SyI_Softver, SyI_Model, SyI_EventsTable_Pagebyteswritt, SyI_EventsTable_Lastpagesn) VALUES (%1, %2, %3, 1, 1, '1.22', 'SENTORAX-1C', %4, %5)"_s
                .arg(sqlQuote(serial), sqlQuote(location), orNull(name), QString::number(pageBytes),
                     QString::number(lastPage)));
    }

    bool zone(const QString& serial, int number, const QString& name)
    {
        return run(
            u"INSERT INTO Sensors_Info (SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensorname, SeI_Sensortype, SeI_Used) VALUES (%1, %2, %3, 0, 1)"_s
                .arg(sqlQuote(serial), QString::number(number), orNull(name)));
    }

    // when: "YYYY-MM-DD HH:MM:SS"
    bool event(const QString& serial, qint64 sn, const QString& when, int source, int condition,
               int type = 0, double value = 0, const QString& info = {}, int ack = 0)
    {
        return run(
            u"INSERT INTO Events_1 (Event_SyI_Serialnumber, Event_SystemEventSN, Event_Datetime, Event_EventSource, Event_Condition, Event_SeI_Sensortype, Event_Value, Event_Info1, Event_Ack) VALUES (%1, %2, %3, %4, %5, %6, %7, %8, %9)"_s
                .arg(sqlQuote(serial), QString::number(sn),
                     sqlDateTimeLiteral(m_db.kind(), *parseSqlDateTime(QStringView(when))),
                     QString::number(source), QString::number(condition), QString::number(type),
                     QString::number(value, 'g', 9), orNull(info), QString::number(ack)));
    }

    // Acks of a unit's events by sequence number, "sn:ack" joined by blanks.
    QString acks(const QString& serial)
    {
        Rows r = m_db.read(
            u"SELECT Event_SystemEventSN, Event_Ack FROM Events_1 WHERE Event_SyI_Serialnumber="_s +
            sqlQuote(serial) + u" ORDER BY Event_SystemEventSN"_s);
        QStringList out;
        while (r.next())
            out << u"%1:%2"_s.arg(r.integer(0).value_or(-1)).arg(r.integer(1).value_or(-1));
        return out.join(u' ');
    }

    bool run(const QString& sql) { return ok(m_db.exec(sql), sql); }

    static bool ok(const DbError& e, const QString& sql = {})
    {
        if (e.isError())
            qWarning("%s\n  in: %s", qPrintable(e.description), qPrintable(sql.left(300)));
        return !e.isError();
    }

private:
    static QString orNull(const QString& s) { return s.isNull() ? u"NULL"_s : sqlQuote(s); }

    Database& m_db;
};

} // namespace sx::test
