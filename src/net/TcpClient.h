#pragma once

#include "net/protocol/MessageBuffer.h"

#include <QAbstractSocket>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <string_view>

class QTcpSocket;
class QTimer;
class ServerMessage;

/// The control connection to the server: a TCP socket with a line protocol. Sends commands, keeps a heart-beat that
/// measures the round trip, and turns every server line into a signal. Never reconnects by itself. GUI thread only.
///
/// Lines are dispatched from the event loop, never inside the socket's own signals, so a receiver may open a blocking
/// box: later lines are then dispatched under it, each once and in order, and errors and a loss after them.
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
    /// Sends one command line, line ends in it as blanks; dropped silently while not connected.
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

private:
    using Handler = void (TcpClient::*)(const ServerMessage &);

    /// Takes bytes as they arrive; they are dispatched when the event loop comes round.
    Q_INVOKABLE void receive(const QByteArray &bytes);
    void scheduleDrain();
    void drain();
    void scheduleRest();
    void tellDisconnected();
    void tellError(const QString &text);
    void dispatchLine(const QByteArray &line);
    void dispatch(const QByteArray &line);
    void endOverlongConnection();
    /// Says goodbye on the connection of that number, if it is still the present one.
    void disconnectFrom(int connection);

    // TcpClientMessages.cpp: one small handler per message word
    /// Null for a word that is not known; the word in any case.
    [[nodiscard]] static Handler handlerFor(std::string_view word);
    void handlePong();
    void handleLoginOk(const ServerMessage &message);
    void handleLoginFailed(const ServerMessage &message);
    void handleRegisterOk(const ServerMessage &message);
    void handleRegisterFailed(const ServerMessage &message);
    void handleRooms(const ServerMessage &message);
    void handleJoinOk(const ServerMessage &message);
    void handleJoinFailed(const ServerMessage &message);
    void handleLeaveOk(const ServerMessage &message);
    void handleMoved(const ServerMessage &message);
    void handleUserList(const ServerMessage &message);
    void handleOnlineUsers(const ServerMessage &message);
    void handleAllUsers(const ServerMessage &message);
    void handlePendingUsers(const ServerMessage &message);
    void handleUserInfo(const ServerMessage &message);
    void handleUserInfoResult(const ServerMessage &message);
    void handleUserProfile(const ServerMessage &message);
    void handleTransmitStarted(const ServerMessage &message);
    void handleTransmitFailed(const ServerMessage &message);
    void handleTransmitStopped(const ServerMessage &message);
    void handlePasswordChanged(const ServerMessage &message);
    void handlePasswordChangeFailed(const ServerMessage &message);
    void handleNotification(const ServerMessage &message);
    void handleMuted(const ServerMessage &message);
    void handleHwidReset(const ServerMessage &message);
    void handleRoomOrderSaved(const ServerMessage &message);
    void handleSubjectAcknowledged(const ServerMessage &message);
    void handleAcknowledged(const ServerMessage &message);
    void handleServerInfo(const ServerMessage &message);
    void handleAudioQuality(const ServerMessage &message);
    void handleError(const ServerMessage &message);
    void handleKicked(const ServerMessage &message);
    void handleBanned(const ServerMessage &message);
    void enterRoom(const QString &room, const QString &key);

    QTcpSocket *m_socket = nullptr;
    QTimer *m_heartbeat = nullptr;
    MessageBuffer m_buffer;
    bool m_connected = false;
    QByteArray m_pendingLine; ///< a line whose payload comes on the next one
    qint64 m_pingSentAt = 0;  ///< milliseconds since the epoch; 0 when no PING is outstanding
    QString m_udpToken;
    int m_userId = 0;
    bool m_isAdmin = false;
    int m_connection = 0; ///< counts connections, so that a late reaction does not hit the next one
    bool m_drainScheduled = false;
    bool m_lossPending = false;  ///< the socket is gone; told after the lines that came before
    QStringList m_pendingErrors; ///< told after the lines that came before
};
