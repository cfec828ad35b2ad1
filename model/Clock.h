#pragma once

#include <QDateTime>

namespace sx {

// The time as the console sees it; tests move it on to reach time-outs quickly.
class Clock {
public:
    virtual ~Clock() = default;
    [[nodiscard]] virtual QDateTime now() const { return QDateTime::currentDateTime(); }
};

} // namespace sx
