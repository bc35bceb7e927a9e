#pragma once

#include <QAbstractSocket>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

class QTcpSocket;
class QTimer;

/// The control connection to the server: a TCP socket with a line protocol. Sends commands, keeps a heart-beat that
/// measures the round trip, and turns every server line into a signal. Never reconnects by itself. GUI thread only.
///
/// Lines are dispatched from the event loop, never inside the socket's own signals, so a receiver may open a blocking
/// box: later lines are then dispatched under it, each once and in order.
class TcpClient final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TcpClient)

public:
    explicit TcpClient(QObject *parent = nullptr);
    ~TcpClient() override;

    [[nodiscard]] bool isConnected() const;
    [[nodiscard]] QAbstractSocket::SocketState socketState() const;
    [[nodiscard]] QString udpToken() const; ///< from the last successful login; empty before
    [[nodiscard]] int userId() const;       ///< from the last successful login; 0 before
    [[nodiscard]] bool isAdmin() const;     ///< from the last successful login; false before

    void connectToServer(const QString &host, quint16 port);
    /// Says goodbye when connected and closes the socket.
    void disconnectFromServer();
    /// Drops a connection attempt, or a connection, at once and without a word to the server.
    void abortConnection();
    /// Sends one command line; dropped silently while not connected.
    void sendCommand(const QString &line);
    void login(const QString &callsign, const QString &password, const QString &hwid);
    void joinRoom(const QString &room);
    void stopTransmit(const QString &room);
    void approveUser(int userId);
    void unapproveUser(int userId);
    void muteUser(int userId, int muted);
    /// Audio does not travel on this connection: the frame is logged and dropped.
    void sendAudio(const QByteArray &frame);
    /// Forgets a binary audio frame of which only a part has arrived.
    void discardPendingAudio();

signals:
    void connected();
    void disconnected();
    void loginResult(bool success, const QString &message);
    void registerResult(bool success, const QString &message);
    void licenseWarning(const QString &message);
    void roomListReceived(const QStringList &rooms);
    void roomUsersReceived(const QList<QVariantMap> &users);
    void onlineUsersReceived(const QList<QVariantMap> &users);
    void allUsersReceived(const QList<QVariantMap> &users);
    void userInfoReceived(const QVariantMap &info);
    void joinRoomResult(bool success, const QString &room);
    void leaveRoomResult(bool success, const QString &room);
    void transmitStarted();
    void transmitStopped();
    void transmitFailed(const QString &reason);
    void audioReceived(const QByteArray &data, uint userId);
    void pingUpdated(float latencyMs);
    void serverInfoReceived(const QVariantMap &info);
    void audioQualityReceived(const QVariantMap &quality);
    void sessionKeyReceived(const QString &key);
    void roomKeyReceived(const QString &key);
    /// Never raised: no server message carries it. Kept for its receivers.
    void gatewayInfoReceived(const QVariantMap &info);
    void hwidReset(const QString &callsign);
    void errorOccurred(const QString &error);
    void kicked(const QString &reason);
    void banned(const QString &reason);
    void adminMuted(bool muted, const QString &reason);
    void userPasswordChanged(bool success, const QString &message);
    void userProfileReceived(const QVariantMap &profile);
    void adminNotification(const QString &type, const QString &message);
    void pendingUsersReceived(const QList<QVariantMap> &users);

private slots:
    void onConnected();
    void onDisconnected();
    void onReadyRead();
    void onError(QAbstractSocket::SocketError error);
    void onHeartbeat();
};
