#include "views/overview/OverviewWindow.h"

#include "reports/Twips.h"
#include "ui/AppContext.h"
#include "views/overview/FleetModel.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace sx {

OverviewWindow::OverviewWindow(QWidget* parent) : QWidget(parent, Qt::Window)
{
    setObjectName(u"Overviewfrm"_s);
    setWindowTitle(appTitle() + u" / Επισκόπηση συστημάτων"_s);
    setFont(uiFont(9));

    m_counts = new QLabel(this);
    m_counts->setObjectName(u"counts"_s);
    m_counts->setTextFormat(Qt::RichText);
    m_filter = new QLineEdit(this);
    m_filter->setObjectName(u"filter"_s);
    m_filter->setClearButtonEnabled(true);
    m_filter->setPlaceholderText(u"όνομα, τοποθεσία, σειριακός αριθμός"_s);
    auto* filterLabel = new QLabel(u"Αναζήτηση:"_s, this);
    filterLabel->setBuddy(m_filter);

    m_model = new FleetModel(this);
    m_proxy = new QSortFilterProxyModel(this);
    m_proxy->setSourceModel(m_model);
    m_proxy->setSortRole(FleetModel::kSortRole);
    m_proxy->setFilterKeyColumn(-1);
    m_proxy->setFilterCaseSensitivity(Qt::CaseInsensitive);
    connect(m_filter, &QLineEdit::textChanged, m_proxy,
            &QSortFilterProxyModel::setFilterFixedString);

    m_table = new QTableView(this);
    m_table->setObjectName(u"fleet"_s);
    m_table->setModel(m_proxy);
    m_table->setSortingEnabled(true);
    m_table->sortByColumn(FleetModel::State, Qt::AscendingOrder);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setAlternatingRowColors(true);
    m_table->verticalHeader()->hide();
    // One line per unit: two hundred units should not need much scrolling.
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().height() + 6);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->horizontalHeader()->setSectionResizeMode(FleetModel::Name, QHeaderView::Stretch);
    m_table->setWordWrap(false);
    // Enter and a double-click both arrive here.
    connect(m_table, &QTableView::activated, this, [this](const QModelIndex& index) {
        if (index.isValid())
            emit unitChosen(index.data(FleetModel::kSerialRole).toString());
    });

    auto* top = new QHBoxLayout;
    top->addWidget(m_counts, 1);
    top->addWidget(filterLabel);
    top->addWidget(m_filter);
    m_filter->setMinimumWidth(twips(4200, this));
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(m_table);
    resize(twips(14400, this), twips(9000, this));
    updateCounts();
}

QString OverviewWindow::serialAt(int row) const
{
    return m_proxy->index(row, 0).data(FleetModel::kSerialRole).toString();
}

void OverviewWindow::setFleet(std::shared_ptr<const FleetSummary> fleet)
{
    // The reset forgets the selection; the same unit stays selected.
    const QModelIndex current = m_table->currentIndex();
    const QString serial =
        current.isValid() ? current.data(FleetModel::kSerialRole).toString() : QString();
    const int column = current.isValid() ? current.column() : 0;
    m_model->setFleet(std::move(fleet));
    if (!serial.isEmpty()) {
        for (int row = 0; row < m_proxy->rowCount(); ++row) {
            if (serialAt(row) == serial) {
                m_table->setCurrentIndex(m_proxy->index(row, column));
                break;
            }
        }
    }
    updateCounts();
    if (!m_sized && m_model->rowCount() > 0) {
        m_sized = true;
        m_table->resizeColumnsToContents();
    }
}

void OverviewWindow::setDatabaseLost(bool lost)
{
    m_lost = lost;
    updateCounts();
}

void OverviewWindow::updateCounts()
{
    const FleetSummary* fleet = m_model->fleet();
    QStringList parts;
    for (int s = 0; s < kFleetStateCount; ++s) {
        const auto state = static_cast<FleetState>(s);
        const int n = fleet ? fleet->count(state) : 0;
        const QString text = fleetStateWord(state) + u": "_s + QString::number(n);
        parts << (n > 0 && state != FleetState::Normal ? u"<b>"_s + text + u"</b>"_s : text);
    }
    parts << u"Σύνολο: "_s + QString::number(fleet ? fleet->units.size() : 0);
    QString text = parts.join(u" &nbsp;·&nbsp; "_s);
    if (m_lost)
        text =
            u"<span style=\"color:#ff0000\"><b>ΣΦΑΛΜΑ ΣΥΝΔΕΣΗΣ ΜΕ ΤΗ ΒΑΣΗ ΔΕΔΟΜΕΝΩΝ</b></span> &nbsp; "_s +
            text;
    m_counts->setText(text);
}

} // namespace sx
