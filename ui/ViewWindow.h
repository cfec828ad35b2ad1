#pragma once

#include "ui/AppContext.h"
#include "ui/ViewId.h"

#include <QMainWindow>

class QAction;
class QComboBox;

namespace sx {

class NavigationFrame;

// What the four main views share: title, navigation frame with the unit list,
// the messages indicator and the exit rules of a close request.
class ViewWindow : public QMainWindow {
    Q_OBJECT
public:
    ViewWindow(AppContext& ctx, ViewId id, const QString& viewName, QWidget* parent = nullptr);

    [[nodiscard]] ViewId viewId() const { return m_id; }
    [[nodiscard]] AppContext& context() const { return m_ctx; }
    [[nodiscard]] NavigationFrame* navigation() const { return m_nav; }
    [[nodiscard]] QComboBox* systemSelect() const;
    // The selected entry of the unit list, -1 when it is empty.
    [[nodiscard]] int unitIndex() const;
    // The serial of the selected entry ("*" for "ΟΛΑ"), empty when none.
    [[nodiscard]] QString selectedSerial() const;

    // The selection event of the unit list: load the view's data for the entry.
    virtual void unitSelected(int index) = 0;

    // Sets the messages button from hasMessages (new messages, any unit).
    void updateNewMessagesIndicator();

    // Closes the window without asking (navigation away from it).
    void unloadByProgram();

    // true while the unit list shown could not be read (it is read again when
    // the database answers).
    [[nodiscard]] bool unitListStale() const { return m_unitListStale; }
    void setUnitListStale(bool stale) { m_unitListStale = stale; }
    // The database answers again after an outage: a visible view that failed
    // meanwhile, or whose unit list could not be read, fills itself again.
    virtual void refillAfterOutage();
    // The unit list is empty after a fill, or could not be read: nothing was selected.
    virtual void unitListUnread() {}
    // "Επισκόπηση συστημάτων", last in "Διάφορα" (made when the view has none).
    [[nodiscard]] QAction* overviewItem();

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    // Adds "Έξοδος" (Terminateprg) to a menu.
    void addExitItem(class QMenu* menu);

private:
    AppContext& m_ctx;
    ViewId m_id;
    NavigationFrame* m_nav = nullptr;
    bool m_unloading = false;
    bool m_unitListStale = false;
    bool m_refillOnShow = false;
    QAction* m_overviewItem = nullptr;
};

// Asks whether to end the application; on Yes runs the shutdown steps.
void confirmExit(AppContext& ctx, QWidget* parent);

} // namespace sx
