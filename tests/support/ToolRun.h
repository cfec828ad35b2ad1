#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

namespace sx::test {

// How a program ended: its exit code (-1 when it crashed or hung) and what it printed.
struct ToolRun {
    int code = -1;
    QString out;
    QString err;
};

inline ToolRun runTool(const QString& program, const QStringList& args,
                       const QProcessEnvironment& env = QProcessEnvironment::systemEnvironment())
{
    QProcess p;
    p.setProcessEnvironment(env);
    p.start(program, args);
    if (!p.waitForFinished(120000))
        return {}; // QProcess kills it on the way out
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
            QString::fromUtf8(p.readAllStandardOutput()),
            QString::fromUtf8(p.readAllStandardError())};
}

// What a command-line tool printed; empty when it failed.
inline QString toolOutput(const QString& program, const QStringList& args)
{
    const ToolRun r = runTool(program, args);
    return r.code == 0 ? r.out : QString();
}

} // namespace sx::test
