#include "server/WebServer.h"

#include "server/KeepAccepting.h"
#include "server/ListenAddress.h"

#include <QTcpSocket>

WebServer::WebServer(WebConnection::Handler handler, QObject *parent)
    : QObject(parent)
    , m_handler(std::move(handler))
{
    connect(&m_tcp, &QTcpServer::newConnection, this, &WebServer::onNewConnection);
    keepAccepting(&m_tcp);
}

WebServer::~WebServer() = default;

bool WebServer::listen(const QString &address, quint16 port, QString *error)
{
    const bool listening = m_tcp.listen(listenAddress(address), port);
    if (!listening)
        *error = m_tcp.errorString();
    return listening;
}

void WebServer::onNewConnection()
{
    while (QTcpSocket *socket = m_tcp.nextPendingConnection()) {
        if (m_connections >= kMostConnections) {
            delete socket;
            continue;
        }
        ++m_connections;
        auto *connection = new WebConnection(socket, m_handler, m_patience, this);
        connect(connection, &QObject::destroyed, this, [this] { --m_connections; });
    }
}
