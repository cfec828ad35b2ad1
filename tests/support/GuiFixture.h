#pragma once

#include "ScratchDatabase.h"
#include "ScriptedDialogs.h"
#include "model/settings/SettingsStore.h"
#include "ui/AppContext.h"
#include "ui/Navigator.h"
#include "ui/QueryFailureReporter.h"

#include <QDateTime>
#include <QWidget>

#include <memory>

namespace sx::test {

// A clock the test moves on by hand (or that runs fast), for time-outs.
class TestClock : public Clock {
public:
    [[nodiscard]] QDateTime now() const override
    {
        return QDateTime::currentDateTime().addMSecs(
            m_offsetMs + (m_speed - 1) * m_start.msecsTo(QDateTime::currentDateTime()));
    }
    void advance(qint64 ms) { m_offsetMs += ms; }
    // Time runs `speed` times faster from now on.
    void runFaster(int speed)
    {
        m_start = QDateTime::currentDateTime();
        m_speed = speed;
    }

private:
    qint64 m_offsetMs = 0;
    qint64 m_speed = 1;
    QDateTime m_start = QDateTime::currentDateTime();
};

// Everything a view needs: a scratch database with the schema, scripted dialogs, a settings
// file of its own and a terminate hook that only counts.
class GuiFixture {
public:
    GuiFixture();

    [[nodiscard]] bool ready() const { return m_ready; }
    [[nodiscard]] QString problem() const { return scratch.problem(); }

    ScratchDatabase scratch;
    // The test's own connection, for seeding and checking on the test's thread.
    Database db;
    // The console's connection, on its own thread, as the views use it.
    DbLink link;
    ScriptedDialogs dialogs;
    std::unique_ptr<SettingsStore> settings;
    TestClock clock;
    AppContext ctx;
    std::unique_ptr<QueryFailureReporter> failures;
    std::unique_ptr<Navigator> navigator;
    int terminated = 0;

    // Runs a SQL script (statements separated by ";\n").
    bool exec(const QString& sql);
    // Sets the clock to `t` (it runs on from there).
    void setNow(const QDateTime& t) { clock.advance(clock.now().msecsTo(t)); }
    // Answers the next print dialog with a new PDF file in the scratch folder; returns its name.
    QString answerPdf(bool accept = true);
    // Whether a wait window is up.
    [[nodiscard]] static bool waitWindowShown();
    // The first named, visible control under `top` that sticks out of its container; empty if none.
    [[nodiscard]] static QString clippedChild(const QWidget& top);

private:
    bool m_ready = false;
    int m_pdfs = 0;
};

} // namespace sx::test

// Skips the test when the fixture's database is not available; fails when it is but the
// fixture could not be set up.
#define SX_REQUIRE_FIXTURE(fx)                                                                     \
    do {                                                                                           \
        SX_REQUIRE_DB((fx).scratch);                                                               \
        QVERIFY2((fx).ready(), qPrintable((fx).problem()));                                        \
    } while (false)
