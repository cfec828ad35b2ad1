#pragma once

#include "reports/Colors.h"

#include <QList>
#include <QString>

namespace sx::test {

using namespace Qt::StringLiterals;

// The colours of the current-condition view by name; "none" when unset.
inline QString tone(const QColor& c)
{
    const qsizetype i = QList{colors::kLightGrey, colors::kLightRed, colors::kLightBlue,
                              colors::kGreen, colors::kRed}
                            .indexOf(c);
    return i >= 0        ? u"grey pink lilac green red"_s.split(u' ')[i]
           : c.isValid() ? c.name()
                         : u"none"_s;
}

} // namespace sx::test
