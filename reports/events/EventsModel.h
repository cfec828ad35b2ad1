#pragma once

#include "model/events/EventsData.h"
#include "reports/events/EventsReport.h"

#include <QAbstractTableModel>
#include <QLocale>

namespace sx {

// The events grid (MSFlexGrid1): date and description of each event, newest
// first. Texts are made in data(), only for the rows a view asks for; a row
// keeps its raw values, its colour and its height in lines.
class EventsModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { DateColumn = 0, DescriptionColumn = 1 };

    explicit EventsModel(QObject* parent = nullptr);

    // One reset.
    void setEvents(events::EventsLoad load);
    // Header only.
    void clear();

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

    // The texts of a row as the grid shows them.
    [[nodiscard]] QString dateText(int row) const;
    [[nodiscard]] QString descriptionText(int row) const;
    [[nodiscard]] events::EventColour colour(int row) const;
    [[nodiscard]] int lines(int row) const;
    // The row list: the unit's index in the unit list, its serial and the event's sequence number.
    [[nodiscard]] int unitIndex(int row) const;
    [[nodiscard]] QString serial(int row) const;
    [[nodiscard]] qint64 sequence(int row) const;

    // The report of rows first..last: their texts come from a copy of the rows,
    // so the report may be drawn on another thread while the grid is refilled.
    [[nodiscard]] EventsReportInput reportInput(int first, int last, const QString& choices) const;

    // The header texts: the blanks set the column widths.
    [[nodiscard]] static QString headerText(int column);

private:
    [[nodiscard]] const events::EventLine* at(int row) const;

    events::EventsLoad m_load;
    QLocale m_locale;
};

} // namespace sx
