#include "FaultProxy.h"

#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

namespace sx::test {

// Lives in the proxy's thread; every call from outside is a blocking queued call.
class ProxyCore : public QObject {
public:
    // The server moves to the proxy's thread with its parent and listens there.
    ProxyCore(QString host, quint16 port)
        : m_server(new QTcpServer(this)), m_host(std::move(host)), m_targetPort(port)
    {
        connect(m_server, &QTcpServer::newConnection, this, &ProxyCore::accept);
    }

    quint16 listen()
    {
        if (m_server->listen(QHostAddress::LocalHost, m_port))
            m_port = m_server->serverPort();
        return m_server->isListening() ? m_port : 0;
    }

    void setMode(FaultProxy::Mode mode, int delayMs)
    {
        if (m_mode == FaultProxy::Mode::BlackHole && mode != m_mode)
            cutAll();
        m_mode = mode;
        m_delayMs = delayMs;
        if (mode == FaultProxy::Mode::Refuse)
            m_server->close();
        else if (!m_server->isListening())
            listen();
    }

    void cutAll()
    {
        for (const QPointer<QTcpSocket>& s : std::as_const(m_sockets)) {
            if (s) {
                s->abort();
                s->deleteLater();
            }
        }
        m_sockets.clear();
    }

private:
    void accept()
    {
        while (QTcpSocket* client = m_server->nextPendingConnection()) {
            auto* server = new QTcpSocket(this);
            client->setParent(this);
            m_sockets << client << server;
            forward(client, server);
            forward(server, client);
            server->connectToHost(m_host, m_targetPort);
        }
    }

    void forward(QTcpSocket* from, QTcpSocket* to)
    {
        const QPointer<QTcpSocket> target(to);
        connect(from, &QTcpSocket::readyRead, this, [this, from, target] {
            const QByteArray data = from->readAll();
            if (m_mode == FaultProxy::Mode::BlackHole || !target)
                return;
            if (m_mode == FaultProxy::Mode::Delay && m_delayMs > 0) {
                // Equal delays keep the packets in order.
                QTimer::singleShot(m_delayMs, this, [target, data] {
                    if (target)
                        target->write(data);
                });
            } else {
                target->write(data);
            }
        });
        connect(from, &QTcpSocket::disconnected, this, [from, target] {
            if (target)
                target->disconnectFromHost();
            from->deleteLater();
        });
        connect(from, &QTcpSocket::errorOccurred, this, [from, target] {
            if (target)
                target->abort();
            from->deleteLater();
        });
    }

    QTcpServer* m_server = nullptr;
    QString m_host;
    quint16 m_targetPort;
    quint16 m_port = 0;
    FaultProxy::Mode m_mode = FaultProxy::Mode::Pass;
    int m_delayMs = 0;
    QList<QPointer<QTcpSocket>> m_sockets;
};

FaultProxy::FaultProxy(const QString& targetHost, quint16 targetPort)
    : m_core(new ProxyCore(targetHost, targetPort))
{
    m_core->moveToThread(&m_thread);
    m_thread.start();
    QMetaObject::invokeMethod(
        m_core, [this] { m_port = m_core->listen(); }, Qt::BlockingQueuedConnection);
}

// Everything with a socket notifier goes in its own thread: the thread deletes the core as it
// ends, and the core's connections go before its sockets, so no handler meets one half destroyed.
FaultProxy::~FaultProxy()
{
    m_core->deleteLater();
    m_thread.quit();
    m_thread.wait();
}

void FaultProxy::setMode(Mode mode, int delayMs)
{
    QMetaObject::invokeMethod(
        m_core, [this, mode, delayMs] { m_core->setMode(mode, delayMs); },
        Qt::BlockingQueuedConnection);
}

void FaultProxy::cutAll()
{
    QMetaObject::invokeMethod(m_core, &ProxyCore::cutAll, Qt::BlockingQueuedConnection);
}

} // namespace sx::test
