#pragma once

#include "model/DbError.h"
#include "model/fleet/FleetSummary.h"
#include "ui/notify/AlarmNotifier.h"

#include <QDBusConnection>
#include <QObject>
#include <QPointer>

#include <memory>
#include <optional>

namespace sx {

struct AppContext;
class DesktopNotifications;
class FleetTrayIcon;
class OverviewWindow;

// Reads the whole fleet at every refresh tick and passes it on: the overview
// window, the state marks of the unit lists, the tray and the desktop notices.
// Notices the desktop does not take go to the tray and the views' status line.
class FleetWatch : public QObject {
    Q_OBJECT
public:
    explicit FleetWatch(AppContext& ctx, const QDBusConnection& bus = QDBusConnection::sessionBus(),
                        QObject* parent = nullptr);
    ~FleetWatch() override;

    // One read of the fleet (the first is what start-up found, told to nobody);
    // the result arrives later, from the event loop.
    void refresh();
    [[nodiscard]] bool reading() const { return m_reading; }
    void showOverview();
    // Brings the main view forward with this unit selected, as if the operator
    // had picked it in the unit list.
    void openUnit(const QString& serial);

    [[nodiscard]] OverviewWindow* overview() const;
    [[nodiscard]] AlarmNotifier& notifier() { return m_notifier; }
    [[nodiscard]] DesktopNotifications* desktop() const { return m_desktop; }

private:
    void readFinished(std::optional<FleetSummary> read, const DbError& error);
    void showElsewhere(const FleetNotice& notice);

    AppContext& m_ctx;
    DesktopNotifications* m_desktop = nullptr;
    FleetTrayIcon* m_tray = nullptr;
    AlarmNotifier m_notifier;
    QPointer<OverviewWindow> m_overview;
    bool m_lost = false;
    bool m_reading = false;
    bool m_toldNoDesktop = false;
};

// Said once, where the notices the desktop did not take are shown instead;
// short, so that the alarm beside it in the status line stays readable.
inline constexpr char16_t kNoDesktopNotices[] = u"Χωρίς ειδοποιήσεις επιφάνειας εργασίας";
// The same, told in full where there is room (tooltips).
inline constexpr char16_t kNoDesktopNoticesInFull[] =
    u"Η υπηρεσία ειδοποιήσεων της επιφάνειας εργασίας δεν απαντά· οι συναγερμοί εμφανίζονται εδώ";

} // namespace sx
