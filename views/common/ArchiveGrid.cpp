#include "views/common/ArchiveGrid.h"

#include <QFontMetricsF>
#include <QStyle>

#include <cmath>

using namespace Qt::StringLiterals;

namespace sx {

ArchiveGrid::ArchiveGrid(QWidget* parent) : QTableView(parent)
{
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ContiguousSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setWordWrap(false);
    verticalHeader()->hide();
    setHighlight(false);
}

void ArchiveGrid::setUpColumns(const QStringList& captions, int cellMargin,
                               QHeaderView::ResizeMode rowMode)
{
    const QFontMetricsF fm(font());
    QHeaderView* header = horizontalHeader();
    header->setFont(font());
    header->setDefaultAlignment(Qt::AlignCenter);
    header->setHighlightSections(false);
    header->setSectionsClickable(false);
    header->setSectionResizeMode(QHeaderView::Fixed);
    header->setStyleSheet(
        u"QHeaderView::section { color: rgb(0,0,255); background-color: white; padding: 1px %1px;"
        " border: none; border-right: 1px solid #a0a0a0; border-bottom: 1px solid #a0a0a0; }"_s.arg(
            cellMargin));
    int width = 0;
    for (int c = 0; c < captions.size(); ++c) {
        setColumnWidth(c, static_cast<int>(std::ceil(fm.horizontalAdvance(captions[c]))) +
                              2 * cellMargin);
        width += columnWidth(c);
    }
    QHeaderView* rows = verticalHeader();
    rows->setSectionResizeMode(rowMode);
    rows->setMinimumSectionSize(1);
    rows->setDefaultSectionSize(static_cast<int>(std::ceil(fm.height())) + 4);
    resize(width + style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this) +
               2 * frameWidth(),
           height());
}

void ArchiveGrid::selectAll()
{
    if (onSelectAll)
        onSelectAll();
}

void ArchiveGrid::setHighlight(bool on)
{
    m_highlight = on;
    QPalette p = palette();
    const QPalette standard = QPalette();
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        if (on) {
            // The same in both groups: the selection shows without the focus too.
            p.setColor(group, QPalette::Highlight,
                       standard.color(QPalette::Active, QPalette::Highlight));
            p.setColor(group, QPalette::HighlightedText,
                       standard.color(QPalette::Active, QPalette::HighlightedText));
        } else {
            p.setColor(group, QPalette::Highlight, p.color(group, QPalette::Base));
            p.setColor(group, QPalette::HighlightedText, p.color(group, QPalette::Text));
        }
    }
    setPalette(p);
}

} // namespace sx
