#pragma once

#include "model/Database.h"
#include "model/Dialect.h"
#include "model/SqlDateTime.h"

#include <QString>
#include <QStringList>
#include <QtTest>

#include <functional>

// Units, zones and records written with plain SQL for the records view's tests.
namespace sx::test {

using namespace Qt::StringLiterals;

struct ZoneRow {
    int number = 1;
    QString name; // SQL literal: "'Ψυγείο'", "''", "NULL"
    int type = 0;
    double maxLimit = 30;
    double minLimit = 10;
    int maxUsed = 1;
    int minUsed = 1;
    int pageBytes = 64;
    int lastPage = 0;
};

class RecordsSeed {
public:
    explicit RecordsSeed(Database& db) : m_db(db) {}

    bool unit(const QString& serial, const QString& name, const QString& location = u"7"_s)
    {
        return run(
            u"INSERT INTO Systems_Info (SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, SyI_Used, SyI_Online, SyI_Softver, SyI_Model) VALUES (%1, %2, %3, 1, 1, '1.22', 'SENTORAX-1C')"_s
                .arg(sqlQuote(serial), sqlQuote(location), sqlQuote(name)));
    }

    bool zone(const QString& serial, const ZoneRow& z)
    {
        return run(
            u"INSERT INTO Sensors_Info (SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensorname, SeI_Sensortype, SeI_Used, SeI_Maxlimit, SeI_Minlimit, SeI_Maxlimitused, SeI_Minlimitused, SeI_RecordsTable_Pagebyteswrit, SeI_RecordsTable_Lastpagesn) VALUES (%1, %2, %3, %4, 1, %5, %6, %7, %8, %9, %10)"_s
                .arg(sqlQuote(serial), QString::number(z.number), z.name, QString::number(z.type),
                     QString::number(z.maxLimit), QString::number(z.minLimit),
                     QString::number(z.maxUsed), QString::number(z.minUsed),
                     QString::number(z.pageBytes))
                .arg(z.lastPage));
    }

    // One record; `when` as "YYYY-MM-DD HH:MM:SS".
    bool record(const QString& serial, int point, const QString& when, double value, int type,
                qint64 sn)
    {
        return run(insertHead() +
                   row(serial, point, *parseSqlDateTime(QStringView(when)), value, type, sn));
    }

    // `count` records `stepSecs` apart from `fromSecs`; value and type by index.
    bool series(const QString& serial, int point, qint64 fromSecs, qint64 stepSecs, int count,
                const std::function<double(int)>& value, int type = 0, qint64 firstSn = 1)
    {
        QStringList rows;
        for (int i = 0; i < count; ++i) {
            rows << row(serial, point, fromSecs + i * stepSecs, value(i), type, firstSn + i);
            if (rows.size() == 500 || i == count - 1) {
                if (!run(insertHead() + rows.join(u", "_s)))
                    return false;
                rows.clear();
            }
        }
        return true;
    }

private:
    static QString insertHead()
    {
        return u"INSERT INTO Records (Rec_SyI_Serialnumber, Rec_SeI_Sensornumber, Rec_Datetime, Rec_Value, Rec_Sensortype, Rec_SensRecSN) VALUES "_s;
    }

    QString row(const QString& serial, int point, qint64 secs, double value, int type,
                qint64 sn) const
    {
        return u"(%1, %2, %3, %4, %5, %6)"_s.arg(
            sqlQuote(serial), QString::number(point), sqlDateTimeLiteral(m_db.kind(), secs),
            QString::number(value, 'g', 9), QString::number(type), QString::number(sn));
    }

    bool run(const QString& sql)
    {
        const DbError e = m_db.exec(sql);
        if (e.isError())
            qWarning("%s\n  in: %s", qPrintable(e.description), qPrintable(sql.left(300)));
        return !e.isError();
    }

    Database& m_db;
};

} // namespace sx::test
