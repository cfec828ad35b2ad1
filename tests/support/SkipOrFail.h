#pragma once

#include <QString>
#include <QTest>

namespace sx::test {

// A build machine sets CI=true and has every component the tests need.
[[nodiscard]] inline bool onBuildMachine()
{
    return qEnvironmentVariable("CI") == QStringLiteral("true");
}

} // namespace sx::test

// A missing database, tool or service skips the test on a workstation; on a build
// machine it fails, so that a green run there means every test ran.
#define SX_SKIP_OR_FAIL(why)                                                                       \
    do {                                                                                           \
        if (sx::test::onBuildMachine())                                                            \
            QFAIL(why);                                                                            \
        QSKIP(why);                                                                                \
    } while (false)
