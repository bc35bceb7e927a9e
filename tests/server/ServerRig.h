#pragma once

#include "server/ControlServer.h"

#include <QDate>
#include <QStringList>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QUdpSocket>

#include <memory>

/// One client of the rig's server, speaking the protocol by hand.
class RawClient final
{
public:
    explicit RawClient(const ControlServer &server);

    void send(const QString &line);
    void sendRaw(const QByteArray &bytes);
    /// The lines that came since the last call, once a line that begins so is among them; else what came in 5 s.
    [[nodiscard]] QStringList until(const QString &beginning);
    /// The first line that begins so.
    [[nodiscard]] QString answer(const QString &line, const QString &beginning);
    /// Logs in; the whole LOGIN_OK or LOGIN_FAILED line.
    [[nodiscard]] QString login(const QString &callsign, const QString &password = QStringLiteral("secret"),
                                const QString &hwid = QStringLiteral("pc"));
    /// From now on what the server sends stays unread.
    void stopReading() { m_tcp.setReadBufferSize(1); }
    [[nodiscard]] bool isConnected() const { return m_tcp.state() == QAbstractSocket::ConnectedState; }
    /// Sends a token (or any other text) by UDP and waits for an answer.
    [[nodiscard]] QByteArray sendUdp(const QByteArray &datagram);
    void sendUdpSilently(const QByteArray &datagram);
    [[nodiscard]] bool hasDatagram() const { return m_udp.hasPendingDatagrams(); }
    /// The next datagram; empty after half a second without.
    [[nodiscard]] QByteArray nextDatagram();
    /// Logged in, in the room, with UDP bound.
    [[nodiscard]] bool enter(const QString &callsign, const QString &room = QStringLiteral("Lobby"));

private:
    QTcpSocket m_tcp;
    QUdpSocket m_udp;
    quint16 m_udpPort;
    QByteArray m_pending;
};

/// A server on this machine with accounts YB1A (id 1) to YB4D (id 4), all with the password "secret"; YB4D is an
/// administrator. Rooms Lobby and Alpha.
class ServerRig final
{
public:
    /// With autoApprove, gateways that register may transmit at once.
    explicit ServerRig(bool autoApprove = false);

    [[nodiscard]] AccountStore &store() { return *m_store; }
    [[nodiscard]] ControlServer &server() { return *m_server; }
    [[nodiscard]] std::unique_ptr<RawClient> client() { return std::make_unique<RawClient>(*m_server); }
    void change(const QString &callsign, const std::function<void(Account &)> &change);
    void restart();
    /// Of "secret".
    [[nodiscard]] static QByteArray passwordHash();
    /// Does something to the database file itself, past the server.
    void execute(const QString &sql);

    qint64 now = 1000; ///< the server's clock, in milliseconds
    QDate today = QDate::currentDate();

private:
    void start();

    bool m_autoApprove;
    QTemporaryDir m_folder;
    std::unique_ptr<AccountStore> m_store;
    std::unique_ptr<ControlServer> m_server;
};
