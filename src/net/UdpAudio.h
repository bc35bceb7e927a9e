#pragma once

#include <QHostAddress>
#include <QObject>

class QTimer;
class QUdpSocket;

/// The audio link to the server: one UDP socket, its text handshake (PING, PONG, TOKEN, confirmation), its health
/// check every 30 s, and the audio datagrams. GUI thread only; the name lookup of enableUdp() blocks.
class UdpAudio final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UdpAudio)

public:
    explicit UdpAudio(QObject *parent = nullptr);
    ~UdpAudio() override;

    /// True once the handshake has ended well: audio may be sent.
    [[nodiscard]] bool isReady() const;

    /// Opens a fresh socket and starts the handshake. False after udpFailed() when the host is empty or unknown or no
    /// port can be bound; otherwise udpReady() or udpFailed() follows.
    bool enableUdp(const QString &host, quint16 port, const QString &token);
    /// The id that goes into the token and into every datagram's header.
    void setUserId(int userId);
    /// Stops a handshake, clears the ready state and closes the socket. A scheduled re-initialisation is dropped.
    void stop();
    /// Sends one keep-alive; nothing while the link is not ready.
    void sendKeepalive();
    /// Announces this socket to the server again, after a change of room; nothing while the link is not ready.
    void resendToken(const QString &token);
    /// Frames and sends one payload; dropped while the link is not ready.
    void sendAudio(const QByteArray &payload);

signals:
    void audioReceived(const QByteArray &data);
    void udpReady();
    void udpFailed();

private slots:
    void onReadyRead();
    void onHandshakeTimeout();
};
