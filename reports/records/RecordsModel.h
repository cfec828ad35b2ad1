#pragma once

#include "model/LoadedRecords.h"
#include "model/records/RecordsQuery.h"

#include <QAbstractTableModel>
#include <QLocale>

#include <memory>

namespace sx {

// The records grid (MSFlexGrid1): date-time and reading of each loaded record,
// newest first. Texts and colours are made in data(), only for the rows a view
// asks for, so a year of records costs its compact rows and nothing more.
class RecordsModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { DateColumn = 0, ReadingColumn = 1 };

    explicit RecordsModel(QObject* parent = nullptr);

    // One reset: the rows of `records` coloured by the limits of `rule`.
    void setRecords(std::shared_ptr<const LoadedRecords> records, const records::LimitRule& rule);
    // Header only.
    void clear();

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

    // The texts of a row as the grid shows them ("dd/MM/yyyy - HH:MM", reading).
    [[nodiscard]] QString dateText(int row) const;
    [[nodiscard]] QString readingText(int row) const;
    [[nodiscard]] records::Marking marking(int row) const;

    [[nodiscard]] const std::shared_ptr<const LoadedRecords>& records() const { return m_records; }

    // The column titles of the layout string: the blanks set the widths.
    [[nodiscard]] static QString headerText(int column);

private:
    [[nodiscard]] const RecordPoint* at(int row) const;

    std::shared_ptr<const LoadedRecords> m_records;
    records::LimitRule m_rule;
    QLocale m_locale;
};

} // namespace sx
