#pragma once

#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionSlider>

namespace sx::test {

// Where the style draws a part of a scroll bar (an arrow, the trough on either
// side of the handle), for real clicks on it.
inline QRect scrollBarPart(const QScrollBar* bar, QStyle::SubControl part)
{
    QStyleOptionSlider opt;
    opt.initFrom(bar);
    opt.subControls = QStyle::SC_All;
    opt.orientation = bar->orientation();
    opt.minimum = bar->minimum();
    opt.maximum = bar->maximum();
    opt.sliderPosition = bar->sliderPosition();
    opt.sliderValue = bar->value();
    opt.singleStep = bar->singleStep();
    opt.pageStep = bar->pageStep();
    opt.upsideDown = bar->invertedAppearance();
    if (bar->orientation() == Qt::Horizontal)
        opt.state |= QStyle::State_Horizontal;
    return bar->style()->subControlRect(QStyle::CC_ScrollBar, &opt, part, bar);
}

} // namespace sx::test
