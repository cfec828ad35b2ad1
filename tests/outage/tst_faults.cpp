#include "../current/CurrentSeed.h"
#include "../records/RecordsSeed.h"
#include "ChooseItem.h"
#include "FaultProxy.h"
#include "GuiFixture.h"
#include "UserTexts.h"
#include "reports/events/EventsModel.h"
#include "reports/records/RecordsModel.h"
#include "shell/SecondaryViews.h"
#include "ui/UnitList.h"
#include "views/current/CurrentPrint.h"
#include "views/current/MainWindow.h"
#include "views/current/UnitCommands.h"
#include "views/events/EventsWindow.h"
#include "views/messages/MessagesWindow.h"
#include "views/overview/FleetWatch.h"
#include "views/records/RecordsWindow.h"

#include <QComboBox>
#include <QDBusConnection>
#include <QElapsedTimer>
#include <QFile>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>

#include <map>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

// Faults of the network or the database file start while the console works;
// then they end. The window never blocks, the user hears of it once, and every
// view fills again by itself.
class TestFaults : public QObject {
    Q_OBJECT

    static bool seed(Database& db)
    {
        CurrentSeed s(db);
        bool ok = s.unit(u"S-1"_s, u"Σταθμός"_s) && s.power(u"S-1"_s, 1, u"NULL"_s) &&
                  s.powerCondition(u"S-1"_s, 1, u"0"_s, u"0"_s) &&
                  s.condition(u"S-1"_s, u"1"_s, u"1"_s);
        for (int n = 1; n <= 4; ++n)
            ok = ok && s.point(u"S-1"_s, n, u"'Ζ'"_s) &&
                 s.pointCondition(u"S-1"_s, n, QString::number(n));
        // Records of zone 1 and new alarms in March 2026, the views' opening month.
        ok = ok &&
             !db.exec(u"UPDATE Sensors_Info SET SeI_RecordsTable_Pagebyteswrit=64"_s).isError() &&
             !db.exec(u"UPDATE Systems_Info SET SyI_EventsTable_Pagebyteswritt=32"_s).isError();
        const qint64 from = *parseSqlDateTime(u"2026-03-02 00:00:00");
        RecordsSeed e(db);
        ok = ok && e.series(u"S-1"_s, 1, from, 3600, kRecords, [](int i) { return 20.0 + i; });
        for (int i = 1; i <= kEvents; ++i)
            ok = ok && e.event(u"S-1"_s, i, u"2026-03-0%1 08:00:00"_s.arg(i), 1, 1);
        return ok;
    }

    static constexpr int kRecords = 6;
    static constexpr int kEvents = 3;

    // The view shows what the database holds (not the lost or empty state).
    static bool filled(ViewWindow* view)
    {
        if (auto* v = qobject_cast<MainWindow*>(view))
            return !v->databaseLost() && v->pointsGrid()->rowCount() == 4;
        if (auto* v = qobject_cast<RecordsWindow*>(view))
            return v->model()->rowCount() == kRecords;
        if (auto* v = qobject_cast<EventsWindow*>(view))
            return v->model()->rowCount() == kEvents;
        if (auto* v = qobject_cast<MessagesWindow*>(view))
            return !v->messageText().isEmpty();
        return false;
    }

    // The explanation boxes of failed queries (not a command's own notices).
    static int failureBoxes(const ScriptedDialogs& d)
    {
        const auto messages = d.messages();
        return int(std::count_if(messages.begin(), messages.end(), [](const auto& m) {
            return m.text.startsWith(texts::kErrorHeader);
        }));
    }

private slots:
    void faultThenRecovery_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<QString>("during");
        QTest::addColumn<int>("boxes");
        // Nobody answers the box: the fault ends and the views refill while it stands.
        QTest::addColumn<bool>("nobodyAnswers");
        const auto rows = [](const char* fault, const QStringList& during, int boxes = 1,
                             bool nobodyAnswers = false) {
            for (const QString& d : during)
                QTest::addRow("%s, %s%s", fault, qPrintable(d),
                              nobodyAnswers ? ", nobody answers" : "")
                    << QString::fromLatin1(fault) << d << boxes << nobodyAnswers;
        };
        const QString all = u"idle refresh;view change;command;print;marking;records load"_s;
        const QStringList unanswered{u"idle refresh"_s, u"view change"_s, u"records load"_s,
                                     u"events load"_s};
        if (ScratchDatabase::kindName() == u"postgresql") {
            rows("server gone", (all + u";fleet read;events load"_s).split(u';'));
            rows("black hole", (all + u";fleet read"_s).split(u';'));
            rows("slow packets", {u"idle refresh"_s, u"command"_s}, 0);
            rows("server gone", unanswered, 1, true);
        } else {
            // The file is in rollback-journal mode here, where a writer keeps readers out too.
            rows("file locked",
                 u"command;marking;records load;events load;view change;fleet read"_s.split(u';'));
            rows("file gone", u"idle refresh;view change;records load;print"_s.split(u';'));
            rows("file gone", unanswered, 1, true);
        }
    }

    void faultThenRecovery()
    {
        QFETCH(QString, fault);
        QFETCH(QString, during);
        QFETCH(int, boxes);
        QFETCH(bool, nobodyAnswers);
        GuiFixture fx;
        SX_REQUIRE_FIXTURE(fx);
        QVERIFY(seed(fx.db));
        if (fault == u"file locked") {
            // Another connection keeps a file in its journal mode: the console's waits meanwhile.
            QVERIFY(!fx.link.call([](Database& db) {
                db.close();
                return 0;
            }));
            QVERIFY(!fx.db.exec(u"PRAGMA journal_mode=DELETE"_s).isError());
            QVERIFY(!fx.link.openAndWait(fx.scratch.settings()).isError());
        }
        fx.setNow(QDateTime(QDate(2026, 3, 15), QTime(12, 0)));

        std::unique_ptr<FaultProxy> proxy;
        if (fx.scratch.isPostgres()) {
            ConnectionSettings through = fx.scratch.settings();
            proxy =
                std::make_unique<FaultProxy>(through.serverIp, quint16(through.serverPort.toInt()));
            QVERIFY(proxy->port() != 0);
            through.serverIp = u"127.0.0.1"_s;
            through.serverPort = QString::number(proxy->port());
            const DbError e = fx.link.openAndWait(through);
            QVERIFY2(!e.isError(), qPrintable(e.description));
        }
        // Short waits, so that a table of outages runs in seconds.
        fx.link.setDefaultDeadline(1200);
        fx.failures->setRefreshDeadlineMs(800);
        fx.failures->setRetryDelays(100, 800);
        registerSecondaryViews(*fx.navigator);

        const auto owned = std::make_unique<MainWindow>(fx.ctx);
        MainWindow* main = owned.get();
        fx.navigator->setMainView(main);
        main->show();
        fillSystemSelect(*main, 0, false);
        QTRY_COMPARE(main->pointsGrid()->rowCount(), 4);
        main->refreshTimer()->setInterval(300);
        // Read at every tick of the main view, as the console wires it; left
        // to itself where it meets the fault alone.
        FleetWatch fleet(fx.ctx, QDBusConnection(u"sx-no-bus"_s));
        if (during != u"fleet read")
            QObject::connect(main->refreshTimer(), &QTimer::timeout, &fleet, &FleetWatch::refresh);
        fleet.refresh();
        QTRY_VERIFY(fx.ctx.fleet);

        // The view the fault meets, opened and filled before it starts.
        ViewWindow* shown = main;
        const std::map<QString, ViewId> opened{{u"marking"_s, ViewId::Events},
                                               {u"events load"_s, ViewId::Events},
                                               {u"records load"_s, ViewId::Records}};
        if (const auto to = opened.find(during); to != opened.end()) {
            fx.navigator->navigate(*main, to->second);
            shown = fx.navigator->visibleView();
            QVERIFY(shown && shown->viewId() == to->second);
        }
        QVERIFY(filled(shown));
        EventsSeed events(fx.db);
        const QString acks = events.acks(u"S-1"_s);
        QString pdf;
        const QByteArray kept = "the report printed yesterday";

        Database locker;
        locker.allowGuiThread();
        const QString file = fx.scratch.settings().file;
        // The longest gap between two ticks of a 10-ms timer on the GUI thread.
        qint64 longest = 0;
        QElapsedTimer since;
        QTimer meter;
        QObject::connect(&meter, &QTimer::timeout,
                         [&] { longest = std::max(longest, since.restart()); });
        since.start();
        meter.start(10);
        bool ended = false;
        const auto endFault = [&] {
            if (std::exchange(ended, true))
                return;
            if (proxy)
                proxy->setMode(FaultProxy::Mode::Pass);
            if (fault == u"file locked")
                QVERIFY(!locker.exec(u"COMMIT"_s).isError());
            if (fault == u"file gone")
                QVERIFY(QFile::rename(file + u".away"_s, file));
        };
        // While the box stands: refresh reads (fleet reads ride on them) and a new reading shown.
        int readsWhileStanding = 0;
        bool freshWhileStanding = false;
        QTimer sampler;
        if (nobodyAnswers) {
            fx.dialogs.leaveOpen(6000);
            fx.dialogs.onShown = [&](const ScriptedDialogs::Shown&) {
                QTimer::singleShot(300, [&] {
                    endFault();
                    QVERIFY(!fx.db
                                 .exec(u"UPDATE Sensors_Current_Condition SET SeCC_Currvalue=77 "
                                       u"WHERE SeCC_Sensornumber=1"_s)
                                 .isError());
                });
            };
            auto seen = fx.ctx.fleet;
            QObject::connect(&sampler, &QTimer::timeout, [&, seen]() mutable {
                if (!ended || fx.dialogs.standing() == 0)
                    return;
                if (fx.ctx.fleet != seen) {
                    seen = fx.ctx.fleet;
                    ++readsWhileStanding;
                }
                const QTableWidgetItem* reading = main->pointsGrid()->item(0, 1);
                freshWhileStanding = freshWhileStanding ||
                                     (filled(shown) && reading && reading->text().contains(u"77"));
            });
            sampler.start(20);
        }
        if (fault == u"server gone") {
            proxy->setMode(FaultProxy::Mode::Refuse);
            proxy->cutAll();
        } else if (fault == u"black hole") {
            proxy->setMode(FaultProxy::Mode::BlackHole);
        } else if (fault == u"slow packets") {
            proxy->setMode(FaultProxy::Mode::Delay, 30);
        } else if (fault == u"file locked") {
            QVERIFY(!locker.open(fx.scratch.settings()).isError());
            QVERIFY(!locker.exec(u"BEGIN EXCLUSIVE"_s).isError());
        } else {
            QVERIFY(QFile::rename(file, file + u".away"_s));
        }

        auto* eventsView = qobject_cast<EventsWindow*>(shown);
        auto* recordsView = qobject_cast<RecordsWindow*>(shown);
        const auto faultFleet = fx.ctx.fleet;
        if (during == u"idle refresh") {
            main->refresh();
            main->refresh(); // still down: no second box
        } else if (during == u"view change") {
            fx.navigator->navigate(*main, ViewId::Messages);
            shown = fx.navigator->visibleView();
            QVERIFY(shown && shown->viewId() == ViewId::Messages);
        } else if (during == u"command") {
            // Nobody answers the request: its minute passes quickly.
            fx.clock.runFaster(60);
            fx.dialogs.answerCode(u"0042"_s);
            runRelayCommand(fx.ctx, *main);
        } else if (during == u"print") {
            // Into the file of an earlier report: it stays as it was.
            pdf = fx.answerPdf();
            QFile old(pdf);
            QVERIFY(old.open(QIODevice::WriteOnly) && old.write(kept) == kept.size());
            old.close();
            printCurrentCondition(fx.ctx, main, u"S-1"_s);
        } else if (during == u"marking") {
            eventsView->selectAllEvents();
            eventsView->markButton()->click();
        } else if (during.endsWith(u"load")) {
            QComboBox* zones =
                recordsView ? recordsView->sensorSelect() : eventsView->sensorSelect();
            chooseItem(zones, recordsView ? 0 : zones->count() - 1);
            QVERIFY(nobodyAnswers || !filled(shown));
        } else {
            fleet.refresh(); // alone, then with the main view: one box between them
            main->refresh();
            fleet.refresh();
        }
        QTRY_COMPARE(failureBoxes(fx.dialogs), boxes);

        endFault();

        // Refilled by itself within one refresh interval of the console.
        const auto state = [&] {
            return u"units %1, lost %2, locked %3, filled %4, fleet read %5"_s.arg(
                QString::number(shown->systemSelect()->count()),
                QString::number(fx.failures->connectionLost()),
                QString::number(fx.failures->lockedOut()), QString::number(filled(shown)),
                QString::number(fx.ctx.fleet != faultFleet));
        };
        QTRY_COMPARE_WITH_TIMEOUT(state(), u"units 1, lost 0, locked 0, filled 1, fleet read 1"_s,
                                  MainWindow::kRefreshIntervalMs);
        QCOMPARE(failureBoxes(fx.dialogs), boxes);
        if (nobodyAnswers) {
            QTRY_COMPARE(fx.dialogs.standing(), 0);
            QVERIFY2(readsWhileStanding >= 2, qPrintable(QString::number(readsWhileStanding)));
            QVERIFY(freshWhileStanding);
        }
        QVERIFY2(longest <= 250, qPrintable(QString::number(longest)));
        QVERIFY(fx.failures->pendingStatements().isEmpty());
        // Nothing half marked, and no half-written report over the old one.
        QCOMPARE(events.acks(u"S-1"_s), acks);
        if (during == u"print") {
            QFile old(pdf);
            QVERIFY(old.open(QIODevice::ReadOnly));
            QCOMPARE(old.readAll(), kept);
        }
        Rows left = fx.db.read(u"SELECT COUNT(*) AS n FROM Terminal_Requests"_s);
        QVERIFY(left.next() && left.intOr(u"n", -1) == 0);
        if (shown != main)
            delete shown;
    }
};

QTEST_MAIN(TestFaults)
#include "tst_faults.moc"
