#pragma once

#include <QHeaderView>
#include <QTableView>

#include <functional>

namespace sx {

// The archive grid (MSFlexGrid1) of the records and events views: two columns
// under one header row and no fixed column; whole rows, one contiguous range.
// Its select-all (Ctrl+A) asks the window first.
class ArchiveGrid : public QTableView {
    Q_OBJECT
public:
    explicit ArchiveGrid(QWidget* parent = nullptr);

    void selectAll() override;
    // Selection shown (with or without focus) or not shown at all.
    void setHighlight(bool on);
    [[nodiscard]] bool highlight() const { return m_highlight; }

    // Blue captions on white, each column as wide as its caption, no row
    // selectors, and the grid as wide as its columns and a vertical scroll bar.
    void setUpColumns(const QStringList& captions, int cellMargin, QHeaderView::ResizeMode rowMode);

    std::function<void()> onSelectAll;

private:
    bool m_highlight = false;
};

} // namespace sx
