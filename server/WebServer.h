#pragma once

#include "server/WebConnection.h"

#include <QObject>
#include <QTcpServer>

#include <chrono>

/// A web server for the few small documents of WebSite: GET and HEAD, one request a connection. Bounded in everything
/// that a stranger could make large.
class WebServer final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(WebServer)

public:
    static constexpr int kMostConnections = 64; ///< at a time; further ones are closed at once

    explicit WebServer(WebConnection::Handler handler, QObject *parent = nullptr);
    ~WebServer() override;

    /// A literal address; port 0 takes any free one. False, with the reason, when the port cannot be had.
    [[nodiscard]] bool listen(const QString &address, quint16 port, QString *error);
    [[nodiscard]] quint16 port() const { return m_tcp.serverPort(); } ///< 0: not listening
    [[nodiscard]] int connections() const { return m_connections; }
    /// How long a request may take to come.
    void setPatience(std::chrono::milliseconds patience) { m_patience = patience; }

private:
    void onNewConnection();

    WebConnection::Handler m_handler;
    QTcpServer m_tcp;
    std::chrono::milliseconds m_patience{10000};
    int m_connections = 0;
};
