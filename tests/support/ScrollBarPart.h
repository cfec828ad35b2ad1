#pragma once

#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionSlider>

namespace sx::test {

// Where the style draws a part of a scroll bar (an arrow, the trough by the handle), to click.
inline QRect scrollBarPart(const QScrollBar* bar, QStyle::SubControl part)
{
    // The bar's own options, as it paints with them: protected, reached by a member pointer.
    struct Open : QScrollBar {
        using QScrollBar::initStyleOption;
    };
    QStyleOptionSlider opt;
    (bar->*&Open::initStyleOption)(&opt);
    return bar->style()->subControlRect(QStyle::CC_ScrollBar, &opt, part, bar);
}

} // namespace sx::test
