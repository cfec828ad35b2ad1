#pragma once

#include <QHostAddress>
#include <QString>
#include <QThread>

namespace sx::test {

class ProxyCore;

// A TCP proxy between the console and a database server, in a thread of its own, that fails on
// demand: it passes, refuses new connections, cuts every connection, black-holes (accepts, then
// never answers) or delays each packet.
class FaultProxy {
public:
    enum class Mode { Pass, Refuse, BlackHole, Delay };

    FaultProxy(const QString& targetHost, quint16 targetPort);
    ~FaultProxy();
    FaultProxy(const FaultProxy&) = delete;
    FaultProxy& operator=(const FaultProxy&) = delete;

    // The loopback port to connect to instead of the server; 0 when listening failed.
    [[nodiscard]] quint16 port() const { return m_port; }
    // Leaving BlackHole cuts the connections it held: their streams lost data.
    void setMode(Mode mode, int delayMs = 0);
    // Closes every open connection, as a server that went away does.
    void cutAll();

private:
    QThread m_thread;
    ProxyCore* m_core = nullptr;
    quint16 m_port = 0;
};

} // namespace sx::test
