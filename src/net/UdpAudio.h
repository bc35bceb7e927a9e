#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QList>
#include <QObject>

#include <functional>

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
    /// Where the time comes from, in milliseconds since the epoch; for tests.
    void setClock(std::function<qint64()> clock);
    /// Frames and sends one payload; dropped while the link is not ready.
    void sendAudio(const QByteArray &payload);

signals:
    void audioReceived(const QByteArray &data);
    void udpReady();
    void udpFailed();

private slots:
    void onReadyRead();
    void onHandshakeTimeout();

private:
    enum class Step { AwaitPong = 0, AwaitConfirmation = 1, Confirmed = 2 };

    [[nodiscard]] QHostAddress resolve(const QString &host);
    [[nodiscard]] bool openSocket();
    void sendPing();
    void sendToken();
    void fail();
    void confirm();
    void scheduleArrived();
    void handleArrived();
    Q_INVOKABLE void handleDatagram(const QByteArray &datagram);
    void handleRegistered(const QString &text);
    Q_INVOKABLE void checkHealth();
    void reinitialize();
    qint64 send(const QByteArray &datagram);

    QUdpSocket *m_socket = nullptr; ///< never null; a fresh one for every enableUdp()
    QHostAddress m_serverAddress;
    quint16 m_serverPort = 0;
    int m_userId = 0;
    bool m_ready = false;
    QTimer *m_handshakeTimer = nullptr;
    Step m_step = Step::AwaitPong;
    QTimer *m_healthTimer = nullptr;
    QTimer *m_reinitializeTimer = nullptr;
    qint64 m_lastReceived = 0; ///< milliseconds since the epoch; 0 = never
    QString m_token;
    QList<QByteArray> m_arrived; ///< read from the present socket, not yet handled
    bool m_arrivedScheduled = false;
    std::function<qint64()> m_clock;
};
