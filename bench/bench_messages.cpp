// Builds and shows the new messages of 20 units with 1,000 new messages each
// (and as many archived ones beside them): the text alone, and the window's
// whole step (build and set into the text box). SQLite always; PostgreSQL too
// when SX_TEST_PG names a server.
#include "GuiFixture.h"
#include "model/messages/MessagesBuilder.h"
#include "views/messages/MessagesWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QPlainTextEdit>

#include <algorithm>
#include <cstdio>
#include <ctime>

using namespace Qt::StringLiterals;
using namespace sx;

namespace {

constexpr int kUnits = 20;
constexpr int kMessagesPerUnit = 1000; // of each list
constexpr int kZones = 20;

// Multi-row inserts, a few hundred rows per statement.
class Inserter {
public:
    Inserter(Database& db, QString head) : m_db(db), m_head(std::move(head)) {}
    ~Inserter() { flush(); }
    void add(const QString& values)
    {
        m_rows << values;
        if (m_rows.size() >= 400)
            flush();
    }
    void flush()
    {
        if (m_rows.isEmpty())
            return;
        const DbError e = m_db.exec(m_head + u" VALUES "_s + m_rows.join(u','));
        if (e.isError())
            std::fprintf(stderr, "seed: %s\n", qPrintable(e.description));
        m_rows.clear();
    }

private:
    Database& m_db;
    QString m_head;
    QStringList m_rows;
};

void seed(Database& db)
{
    (void)db.begin();
    {
        Inserter units(
            db,
            u"INSERT INTO Systems_Info (SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, SyI_Used, SyI_Online)"_s);
        Inserter zones(
            db,
            u"INSERT INTO Sensors_Info (SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensorname, SeI_Sensortype, SeI_Used)"_s);
        Inserter inputs(
            db,
            u"INSERT INTO Powermonitoring_Info (PmI_SyI_Serialnumber, PmI_Powernumber, PmI_Powername, PmI_Used)"_s);
        Inserter faults(
            db,
            u"INSERT INTO Systems_Faults (SyF_SyI_Serialnumber, SyF_Faulttype, SyF_Faultinfo)"_s);
        Inserter zoneMessages(
            db,
            u"INSERT INTO Sensors_Events (SeE_SyI_Serialnumber, SeE_Sensornumber, SeE_Eventnumber, SeE_Eventtype, SeE_Recordedvalue, SeE_Recordeddatetime, SeE_BeforeCounter, SeE_Recipients)"_s);
        Inserter powerMessages(
            db,
            u"INSERT INTO Powermonitoring_Events (PmE_SyI_Serialnumber, PmE_Eventnumber, PmE_Eventpowercondition, PmE_Recordeddatetime, PmE_BeforeCounter, PmE_Recipients)"_s);
        static const int kConditions[] = {0x00, 0x01, 0x21, 0x31, 0x13};
        for (int u = 0; u < kUnits; ++u) {
            const QString serial = u"'SX%1'"_s.arg(10000 + u);
            units.add(u"(%1, '%2', 'Μονάδα %3', 1, 1)"_s.arg(serial).arg(1001 + u).arg(u + 1));
            for (int z = 1; z <= kZones; ++z)
                zones.add(
                    u"(%1, %2, 'Ζώνη %2', %3, 1)"_s.arg(serial).arg(z).arg(z % 4 == 0 ? 2 : z % 3));
            for (int i = 1; i <= 4; ++i)
                inputs.add(u"(%1, %2, 'Είσοδος %2', 1)"_s.arg(serial).arg(i));
            faults.add(u"(%1, 0, '3')"_s.arg(serial));
            for (int list = 0; list < 2; ++list) {
                const int recipients = list == 0 ? 3 : 0;
                for (int m = 0; m < kMessagesPerUnit; ++m) {
                    const int number = list * kMessagesPerUnit + m + 1;
                    const QString when =
                        m % 2 ? u"'2026-%1-%2 %3:%4:00'"_s.arg(1 + m % 12, 2, 10, QChar(u'0'))
                                    .arg(1 + m % 28, 2, 10, QChar(u'0'))
                                    .arg(m % 24, 2, 10, QChar(u'0'))
                                    .arg(m % 60, 2, 10, QChar(u'0'))
                              : u"NULL"_s;
                    if (m % 5 == 4)
                        powerMessages.add(u"(%1, %2, %3, %4, %5, %6)"_s.arg(serial)
                                              .arg(number)
                                              .arg(kConditions[m % 5 == 4 ? (m / 5) % 5 : 0])
                                              .arg(when)
                                              .arg(m * 37)
                                              .arg(recipients));
                    else
                        zoneMessages.add(u"(%1, %2, %3, %4, %5, %6, %7, %8)"_s.arg(serial)
                                             .arg(1 + m % kZones)
                                             .arg(number)
                                             .arg(m % 2)
                                             .arg(m % 40 * 0.5)
                                             .arg(when)
                                             .arg(m * 61)
                                             .arg(recipients));
                }
            }
        }
    }
    (void)db.commit();
}

double threadCpuSeconds()
{
    timespec ts{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) / 1e9;
}

// The fastest of three runs: wall-clock seconds, and the CPU seconds of this
// thread (what the figure would be on an idle machine; the database server's
// own work is not in it).
struct Timing {
    double wall = 1e9;
    double cpu = 1e9;
};

template <typename F> Timing best(F&& run)
{
    Timing t;
    for (int i = 0; i < 3; ++i) {
        QElapsedTimer timer;
        const double cpu0 = threadCpuSeconds();
        timer.start();
        run();
        t.wall = std::min(t.wall, timer.nsecsElapsed() / 1e9);
        t.cpu = std::min(t.cpu, threadCpuSeconds() - cpu0);
    }
    return t;
}

void report(const char* kind, const char* what, const Timing& t)
{
    std::printf("%-10s  %-26s %7.3f s   (CPU of this thread %.3f s)\n", kind, what, t.wall, t.cpu);
}

QByteArray loadAverage()
{
    QFile f(u"/proc/loadavg"_s);
    if (!f.open(QIODevice::ReadOnly))
        return "?";
    return f.readAll().split(' ').value(0);
}

void benchmark(const char* kind)
{
    qputenv("SX_TEST_DB", kind);
    test::GuiFixture fx;
    if (!fx.ready()) {
        std::printf("%-10s  not available: %s\n", kind, qPrintable(fx.problem()));
        return;
    }
    seed(fx.db);

    qsizetype chars = 0;
    int shown = 0;
    const Timing buildNew = best([&] {
        const MessagesText t = buildMessagesText(fx.db, MessageKind::New);
        chars = t.text.size();
        shown = t.unitsShown;
    });
    const Timing buildArchive =
        best([&] { (void)buildMessagesText(fx.db, MessageKind::Archived); });
    MessagesWindow w(fx.ctx);
    w.show();
    QCoreApplication::processEvents();
    const Timing showNew = best([&] {
        w.showList(MessageKind::New);
        QCoreApplication::processEvents();
    });
    const Timing switchLists = best([&] {
        w.showList(MessageKind::Archived);
        w.showList(MessageKind::New);
        QCoreApplication::processEvents();
    });
    std::printf("%-10s  units %d, new messages %d, text %lld chars, load average %s\n", kind, shown,
                kUnits * kMessagesPerUnit, static_cast<long long>(chars),
                loadAverage().constData());
    report(kind, "build new list", buildNew);
    report(kind, "build archive", buildArchive);
    report(kind, "build and show new list", showNew);
    report(kind, "archive, then new again", switchLists);
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark("sqlite");
    if (!qEnvironmentVariableIsEmpty("SX_TEST_PG"))
        benchmark("postgresql");
    return 0;
}
