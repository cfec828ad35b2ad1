#pragma once

#include <QComboBox>

namespace sx::test {

// The user picks entry `index` of a drop-down list, as from its pop-up: the entry becomes
// current and the list reports it as chosen, even when it was current already.
inline void chooseItem(QComboBox* list, int index)
{
    list->setCurrentIndex(index);
    emit list->activated(index);
}

// The entries of a drop-down list, in order.
inline QStringList comboTexts(const QComboBox* list)
{
    QStringList out;
    for (int i = 0; i < list->count(); ++i)
        out << list->itemText(i);
    return out;
}

} // namespace sx::test
