#include "views/overview/FleetWatch.h"

#include "model/settings/SettingsStore.h"
#include "ui/AppContext.h"
#include "ui/Navigator.h"
#include "ui/QueryFailureReporter.h"
#include "ui/UnitMarks.h"
#include "ui/ViewWindow.h"
#include "ui/notify/DesktopNotifications.h"
#include "views/overview/FleetTrayIcon.h"
#include "views/overview/OverviewWindow.h"

#include <QComboBox>
#include <QLabel>
#include <QSignalBlocker>
#include <QStatusBar>

using namespace Qt::StringLiterals;

namespace sx {

FleetWatch::FleetWatch(AppContext& ctx, const QDBusConnection& bus, QObject* parent)
    : QObject(parent), m_ctx(ctx), m_desktop(new DesktopNotifications(bus, this)),
      m_tray(new FleetTrayIcon(this)),
      m_notifier(
          *ctx.clock, [this](const FleetNotice& n) { m_desktop->send(n); },
          [this](const QString& serial) { m_desktop->withdraw(serial); })
{
    m_notifier.setEnabled(!ctx.settings || ctx.settings->notificationsOn());
    connect(m_desktop, &DesktopNotifications::unitRequested, this, &FleetWatch::openUnit);
    connect(m_desktop, &DesktopNotifications::overviewRequested, this, &FleetWatch::showOverview);
    connect(m_desktop, &DesktopNotifications::closed, this,
            [this](const FleetNotice& n) { m_notifier.gone(n); });
    connect(m_desktop, &DesktopNotifications::notDelivered, this, &FleetWatch::showElsewhere);
    connect(m_tray, &FleetTrayIcon::activated, this, &FleetWatch::showOverview);
    connect(m_tray, &FleetTrayIcon::noticeClicked, this, [this](const QString& serial) {
        if (serial.isEmpty())
            showOverview();
        else
            openUnit(serial);
    });
    m_ctx.showOverview = [this] { showOverview(); };
    if (ctx.failures)
        connect(ctx.failures, &QueryFailureReporter::databaseBack, this, &FleetWatch::refresh);
}

FleetWatch::~FleetWatch()
{
    m_ctx.showOverview = nullptr;
    delete m_overview;
}

OverviewWindow* FleetWatch::overview() const
{
    return m_overview;
}

void FleetWatch::refresh()
{
    // One read at a time; a tick that comes while one is on its way is skipped.
    if (m_reading || !m_ctx.db || m_ctx.db->shuttingDown())
        return;
    QueryFailureReporter* failures = m_ctx.failures;
    if (failures && !failures->ensureConnection()) {
        readFinished(std::nullopt,
                     {kProviderErrorNumber, u"The connection to the database is lost."_s,
                      DbFailureCause::Unreachable});
        return;
    }
    struct Read {
        std::optional<FleetSummary> fleet;
        DbError error;
    };
    m_reading = true;
    // Part of the refresh: it gives up on a silent server as soon.
    m_ctx.db->post(
        this,
        [](Database& db) {
            Read r;
            r.fleet = readFleetSummary(db, &r.error);
            return r;
        },
        [this](Read r) {
            m_reading = false;
            readFinished(std::move(r.fleet), r.error);
        },
        failures ? failures->refreshDeadlineMs() : m_ctx.db->defaultDeadline());
}

void FleetWatch::readFinished(std::optional<FleetSummary> read, const DbError& error)
{
    QueryFailureReporter* failures = m_ctx.failures;
    if (!read) {
        // A failure of the refresh: one box per outage, whoever meets it first,
        // and not one a round should the fleet alone keep failing.
        const FailureOrigin origin = m_lost ? FailureOrigin::Quiet : FailureOrigin::Refresh;
        m_lost = true;
        m_notifier.readFailed();
        m_tray->setDatabaseLost();
        if (m_overview)
            m_overview->setDatabaseLost(true);
        if (failures)
            failures->report(error, m_overview, origin);
        return;
    }
    auto fleet = std::make_shared<const FleetSummary>(std::move(*read));
    m_ctx.fleet = fleet;
    m_lost = false;
    m_notifier.update(*fleet);
    m_tray->setFleet(*fleet);
    if (m_overview) {
        m_overview->setDatabaseLost(false);
        m_overview->setFleet(fleet);
    }
    if (Navigator* nav = m_ctx.navigator) {
        for (ViewWindow* view : {nav->mainView(), nav->secondaryView()}) {
            if (view)
                remarkUnitList(*view->systemSelect(), fleet.get());
        }
    }
}

void FleetWatch::showElsewhere(const FleetNotice& notice)
{
    m_notifier.gone(notice);
    const QString note = QString::fromUtf16(kNoDesktopNotices);
    if (!m_toldNoDesktop) {
        m_toldNoDesktop = true;
        m_tray->setNote(QString::fromUtf16(kNoDesktopNoticesInFull));
    }
    m_tray->showNotice(notice);
    // The status line is plain text: one line, the time first.
    const QString line = m_ctx.clock->now().toString(u"HH:mm"_s) + u' ' + notice.title + u": "_s +
                         notice.body.split(u'\n').join(u" · "_s);
    Navigator* nav = m_ctx.navigator;
    if (!nav)
        return;
    for (ViewWindow* view : {nav->mainView(), nav->secondaryView()}) {
        if (!view)
            continue;
        QStatusBar* bar = view->statusBar();
        if (!bar->findChild<QLabel*>(u"desktopNotices"_s)) {
            auto* label = new QLabel(note, bar);
            label->setObjectName(u"desktopNotices"_s);
            label->setToolTip(QString::fromUtf16(kNoDesktopNoticesInFull));
            bar->addPermanentWidget(label);
        }
        bar->showMessage(line);
    }
}

void FleetWatch::showOverview()
{
    if (!m_overview) {
        m_overview = new OverviewWindow;
        connect(m_overview, &OverviewWindow::unitChosen, this, &FleetWatch::openUnit);
        m_overview->setFleet(m_ctx.fleet);
        m_overview->setDatabaseLost(m_lost);
    }
    m_overview->show();
    m_overview->raise();
    m_overview->activateWindow();
}

void FleetWatch::openUnit(const QString& serial)
{
    // A click arrives whenever the user makes it; the unit changes only
    // between statements, never under a read on its way.
    if (m_ctx.db && m_ctx.db->busy()) {
        m_ctx.db->whenIdle(this, [this, serial] { openUnit(serial); });
        return;
    }
    Navigator* nav = m_ctx.navigator;
    ViewWindow* main = nav ? nav->mainView() : nullptr;
    if (!main || serial.isEmpty())
        return;
    bool arrived = false;
    if (ViewWindow* other = nav->secondaryView(); other && other->isVisible()) {
        // Leave the other view as its navigation button would, with the unit
        // already chosen in its list so that the main view arrives on it.
        if (const int i = other->systemSelect()->findData(serial); i >= 0) {
            const QSignalBlocker block(other->systemSelect());
            other->systemSelect()->setCurrentIndex(i);
        }
        nav->navigate(*other, ViewId::Current);
        arrived = true;
    }
    QComboBox* list = main->systemSelect();
    const int index = list->findData(serial);
    if (index >= 0 && !(arrived && main->selectedSerial() == serial)) {
        {
            const QSignalBlocker block(list);
            list->setCurrentIndex(index);
        }
        main->unitSelected(index);
    }
    main->show();
    main->raise();
    main->activateWindow();
}

} // namespace sx
