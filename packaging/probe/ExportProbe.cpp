// Loaded into an installed sentorax-monitor by scripts/check-package
// (QT_QPA_GENERIC_PLUGINS=sxexportprobe), it plays the operator: waits for the
// main window and its unit list, opens the records view, picks the first zone
// that has records, selects them all, saves them to SX_PROBE_XLSX through the
// save dialog, and ends the process: 0 when the workbook was written, 2 when a
// message box came up instead (its text is printed), 3 when nothing happened
// in time. So the export runs with the installed program's own template lookup.
#include <QAbstractItemModel>
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QFileInfo>
#include <QGenericPlugin>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <cstdio>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

QWidget* shownWindow(const QString& name)
{
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (w->isVisible() && w->objectName() == name)
            return w;
    }
    return nullptr;
}

[[noreturn]] void finish(int code, const QString& text)
{
    std::fprintf(stderr, "export probe: %s\n", qUtf8Printable(text));
    std::fflush(stderr);
    ::_exit(code);
}

class Operator : public QObject {
public:
    Operator()
    {
        m_clock.start();
        connect(&m_tick, &QTimer::timeout, this, [this] { step(); });
        m_tick.start(250);
    }

private:
    void step()
    {
        for (QWidget* w : QApplication::topLevelWidgets()) {
            if (auto* box = qobject_cast<QMessageBox*>(w); box && box->isVisible())
                finish(2, u"message box: "_s + box->text());
        }
        if (m_clock.elapsed() > 60000)
            finish(3, u"no export after 60 s, stopped at step "_s + QString::number(m_state));
        switch (m_state) {
        case 0: // the main window with its unit list filled from the database
            if (QWidget* main = shownWindow(u"Mainfrm"_s)) {
                auto* units = main->findChild<QComboBox*>(u"SystemSelect"_s);
                auto* records = main->findChild<QPushButton*>(u"Command2"_s);
                if (units && records && units->count() > 0) {
                    std::fprintf(stderr, "export probe: main window up, %d units\n",
                                 units->count());
                    m_state = 1;
                    records->click();
                }
            }
            break;
        case 1: // the records view: the first zone whose current period has records
            if (QWidget* view = shownWindow(u"Recordsfrm"_s)) {
                auto* zones = view->findChild<QComboBox*>(u"SensorSelect"_s);
                auto* grid = view->findChild<QAbstractItemView*>(u"MSFlexGrid1"_s);
                if (!zones || !grid || zones->count() == 0)
                    break;
                if (grid->model()->rowCount() > 0) {
                    m_rows = grid->model()->rowCount();
                    grid->selectAll(); // the export writes the selected rows
                    m_state = 2;
                    auto* save = view->findChild<QAction*>(u"Saverecords"_s);
                    if (!save)
                        finish(3, u"the records view has no save action"_s);
                    QTimer::singleShot(0, save, &QAction::trigger);
                } else if (zones->currentIndex() + 1 < zones->count()) {
                    zones->setCurrentIndex(zones->currentIndex() + 1);
                } else if (m_clock.elapsed() > 30000) {
                    finish(3, u"no zone with records"_s);
                }
            }
            break;
        case 2: // the save dialog
            for (QWidget* w : QApplication::topLevelWidgets()) {
                if (auto* dialog = qobject_cast<QFileDialog*>(w); dialog && dialog->isVisible()) {
                    // selectFile() leaves a focused name field alone: type into it.
                    const QString target = qEnvironmentVariable("SX_PROBE_XLSX");
                    auto* name = dialog->findChild<QLineEdit*>(u"fileNameEdit"_s);
                    if (!name)
                        finish(3, u"the save dialog has no file name field"_s);
                    name->setText(target);
                    static_cast<QDialog*>(dialog)->accept(); // protected in QFileDialog
                    m_state = 3;
                }
            }
            break;
        default: // written once the view takes input again
            if (QWidget* view = shownWindow(u"Recordsfrm"_s);
                view && view->isEnabled() &&
                QFileInfo::exists(qEnvironmentVariable("SX_PROBE_XLSX")))
                finish(0, u"exported %1 records"_s.arg(m_rows));
            break;
        }
    }

    QTimer m_tick;
    QElapsedTimer m_clock;
    int m_state = 0;
    int m_rows = 0;
};

} // namespace

class ExportProbe : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "ExportProbe.json")
public:
    QObject* create(const QString&, const QString&) override { return new Operator; }
};

#include "ExportProbe.moc"
