// What each message of the server does.

#include "net/TcpClient.h"
#include "net/protocol/Commands.h"
#include "net/protocol/ServerMessage.h"

#include <QDebug>
#include <QHash>
#include <QJsonObject>
#include <QPointer>
#include <QVarLengthArray>

#include <unordered_map>

namespace {

constexpr int kShownKeyPart = 16;

} // namespace

TcpClient::Handler TcpClient::handlerFor(std::string_view word)
{
    using Client = TcpClient;
    static const std::unordered_map<std::string_view, Handler> table{
        {"LOGIN_OK", &Client::handleLoginOk},
        {"LOGIN_FAILED", &Client::handleLoginFailed},
        {"REGISTER_OK", &Client::handleRegisterOk},
        {"REGISTER_FAILED", &Client::handleRegisterFailed},
        {"ROOMS", &Client::handleRooms},
        {"JOIN_OK", &Client::handleJoinOk},
        {"JOIN_FAILED", &Client::handleJoinFailed},
        {"LEAVE_OK", &Client::handleLeaveOk},
        {"MOVED", &Client::handleMoved},
        {"USER_LIST", &Client::handleUserList},
        {"ONLINE_USERS", &Client::handleOnlineUsers},
        {"ADMIN_ALL_USERS", &Client::handleAllUsers},
        {"ADMIN_GET_ALL_USERS", &Client::handleAllUsers},
        {"ADMIN_PENDING", &Client::handlePendingUsers},
        {"USER_INFO", &Client::handleUserInfo},
        {"USER_INFO_RESULT", &Client::handleUserInfoResult},
        {"USER_PROFILE", &Client::handleUserProfile},
        {"TX_START_OK", &Client::handleTransmitStarted},
        {"TX_START_FAILED", &Client::handleTransmitFailed},
        {"TX_STOP_OK", &Client::handleTransmitStopped},
        {"USER_CHANGE_PASSWORD_OK", &Client::handlePasswordChanged},
        {"USER_CHANGE_PASSWORD_FAIL", &Client::handlePasswordChangeFailed},
        {"USER_REQUEST_HWID_RESET_OK", &Client::handleAcknowledged},
        {"ADMIN_NOTIFICATION", &Client::handleNotification},
        {"MUTED", &Client::handleMuted},
        {"ADMIN_RESET_HWID_OK", &Client::handleHwidReset},
        {"ADMIN_SET_ROOM_ORDER_OK", &Client::handleRoomOrderSaved},
        {"ADMIN_SET_AUDIO_QUALITY_OK", &Client::handleSubjectAcknowledged},
        {"ADMIN_CREATE_ROOM_OK", &Client::handleSubjectAcknowledged},
        {"ADMIN_DELETE_ROOM_OK", &Client::handleSubjectAcknowledged},
        {"ADMIN_EDIT_ROOM_OK", &Client::handleSubjectAcknowledged},
        {"ADMIN_RESET_PASSWORD_OK", &Client::handleSubjectAcknowledged},
        {"ADMIN_KICK_OK", &Client::handleAcknowledged},
        {"ADMIN_APPROVE_USER_OK", &Client::handleAcknowledged},
        {"ADMIN_UNAPPROVE_USER_OK", &Client::handleAcknowledged},
        {"ADMIN_UPDATE_USER_OK", &Client::handleAcknowledged},
        {"ADMIN_DELETE_USER_OK", &Client::handleAcknowledged},
        {"ADMIN_APPROVE_OK", &Client::handleAcknowledged},
        {"ADMIN_UNAPPROVE_OK", &Client::handleAcknowledged},
        {"ADMIN_BAN_OK", &Client::handleAcknowledged},
        {"ADMIN_MOVE_OK", &Client::handleAcknowledged},
        {"SERVER_INFO", &Client::handleServerInfo},
        {"AUDIO_QUALITY", &Client::handleAudioQuality},
        {"ERROR", &Client::handleError},
        {"KICKED", &Client::handleKicked},
        {"BANNED", &Client::handleBanned},
    };
    QVarLengthArray<char, 64> capitals;
    for (const char c : word)
        capitals.append(c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c);
    const auto found = table.find({capitals.constData(), static_cast<std::size_t>(capitals.size())});
    return found != table.end() ? found->second : nullptr;
}

void TcpClient::handleLoginOk(const ServerMessage &message)
{
    m_udpToken = message.field(1);
    m_isAdmin = message.field(3).compare(QLatin1String("true"), Qt::CaseInsensitive) == 0;
    m_userId = message.number(4);
    const QString warning = message.field(6);
    const QString sessionKey = message.field(15);
    const QPointer<TcpClient> self(this);
    if (!sessionKey.isEmpty())
        emit sessionKeyReceived(sessionKey);
    if (!self)
        return;
    qDebug() << "[TCP] Login successful, user_id:" << m_userId << "is_admin:" << m_isAdmin;
    if (!warning.isEmpty()) {
        qWarning().noquote() << "[TCP] License warning:" << warning;
        emit licenseWarning(warning);
    }
    if (self)
        emit loginResult(true, QStringLiteral("Login berhasil"));
}

void TcpClient::handleLoginFailed(const ServerMessage &message)
{
    emit loginResult(false, message.field(1, QStringLiteral("Login gagal")));
}

void TcpClient::handleRegisterOk(const ServerMessage &message)
{
    emit registerResult(true, message.field(1, QStringLiteral("Registrasi berhasil")));
}

void TcpClient::handleRegisterFailed(const ServerMessage &message)
{
    emit registerResult(false, message.field(1, QStringLiteral("Registrasi gagal")));
}

void TcpClient::handleRooms(const ServerMessage &message)
{
    emit roomListReceived(message.field(1).split(QLatin1Char(','), Qt::SkipEmptyParts));
}

void TcpClient::enterRoom(const QString &room, const QString &key)
{
    const QPointer<TcpClient> self(this);
    if (!key.isEmpty())
        emit roomKeyReceived(key);
    if (self)
        emit joinRoomResult(true, room);
}

void TcpClient::handleJoinOk(const ServerMessage &message)
{
    const QString key = message.field(2);
    qDebug().noquote() << "[TCP] JOIN_OK room:" << message.field(1) << "key:"
                       << (key.isEmpty() ? QStringLiteral("none") : key.left(kShownKeyPart) + QLatin1String("..."));
    enterRoom(message.field(1), key);
}

void TcpClient::handleJoinFailed(const ServerMessage &message)
{
    emit joinRoomResult(false, message.field(1, QStringLiteral("Gagal join room")));
}

void TcpClient::handleLeaveOk(const ServerMessage &message)
{
    Q_UNUSED(message)
    emit leaveRoomResult(true, QString());
}

/// To the one who is moved it looks like a join of his own.
void TcpClient::handleMoved(const ServerMessage &message)
{
    enterRoom(message.field(1), message.field(3));
}

void TcpClient::handleUserList(const ServerMessage &message)
{
    emit roomUsersReceived(ServerRecords::roomUsers(message));
}

void TcpClient::handleOnlineUsers(const ServerMessage &message)
{
    emit onlineUsersReceived(ServerRecords::onlineUsers(message));
}

void TcpClient::handleAllUsers(const ServerMessage &message)
{
    const QJsonDocument users = message.json();
    if (users.isArray())
        emit allUsersReceived(ServerRecords::objects(users));
}

void TcpClient::handlePendingUsers(const ServerMessage &message)
{
    const QJsonDocument users = message.json();
    if (users.isArray())
        emit pendingUsersReceived(ServerRecords::objects(users));
}

void TcpClient::handleUserInfo(const ServerMessage &message)
{
    const QJsonDocument info = message.json();
    if (info.isObject())
        emit userInfoReceived(info.object().toVariantMap());
}

void TcpClient::handleUserInfoResult(const ServerMessage &message)
{
    const QJsonDocument info = message.wholeJson();
    if (info.isObject())
        emit userInfoReceived(info.object().toVariantMap());
}

void TcpClient::handleUserProfile(const ServerMessage &message)
{
    const QJsonDocument profile = message.wholeJson();
    if (profile.isObject())
        emit userProfileReceived(profile.object().toVariantMap());
}

void TcpClient::handleTransmitStarted(const ServerMessage &message)
{
    Q_UNUSED(message)
    emit transmitStarted();
}

void TcpClient::handleTransmitFailed(const ServerMessage &message)
{
    emit transmitFailed(message.field(1, QStringLiteral("TX gagal")));
}

void TcpClient::handleTransmitStopped(const ServerMessage &message)
{
    Q_UNUSED(message)
    emit transmitStopped();
}

void TcpClient::handlePasswordChanged(const ServerMessage &message)
{
    Q_UNUSED(message)
    qDebug() << "[TCP] Password changed OK";
    emit userPasswordChanged(true, QStringLiteral("Password berhasil diubah"));
}

void TcpClient::handlePasswordChangeFailed(const ServerMessage &message)
{
    const QString reason = message.rest(1, QStringLiteral("Gagal"));
    qDebug().noquote() << "[TCP] Password change failed:" << reason;
    emit userPasswordChanged(false, reason);
}

void TcpClient::handleNotification(const ServerMessage &message)
{
    const QString reset = QStringLiteral("HWID_RESET_REQUEST");
    if (message.size() >= 4 && message.field(1) == reset)
        emit adminNotification(reset, message.field(2) + QLatin1Char(':') + message.field(3));
}

void TcpClient::handleMuted(const ServerMessage &message)
{
    emit adminMuted(message.field(1) == QLatin1String("1"), message.rest(2));
}

void TcpClient::handleHwidReset(const ServerMessage &message)
{
    emit hwidReset(message.field(1));
}

void TcpClient::handleRoomOrderSaved(const ServerMessage &message)
{
    Q_UNUSED(message)
    qDebug() << "[TCP] Room order saved OK";
    sendCommand(Commands::rooms()); // so that every list of rooms is refreshed
}

void TcpClient::handleSubjectAcknowledged(const ServerMessage &message)
{
    static const QHash<QString, QString> texts{
        {QStringLiteral("ADMIN_SET_AUDIO_QUALITY_OK"), QStringLiteral("[TCP] Admin set audio quality OK:")},
        {QStringLiteral("ADMIN_CREATE_ROOM_OK"), QStringLiteral("[TCP] Admin create room OK:")},
        {QStringLiteral("ADMIN_DELETE_ROOM_OK"), QStringLiteral("[TCP] Admin delete room OK:")},
        {QStringLiteral("ADMIN_EDIT_ROOM_OK"), QStringLiteral("[TCP] Admin edit room OK:")},
        {QStringLiteral("ADMIN_RESET_PASSWORD_OK"), QStringLiteral("[TCP] Admin reset password OK for user:")},
    };
    qDebug().noquote() << texts.value(message.word()) << message.field(1);
}

void TcpClient::handleAcknowledged(const ServerMessage &message)
{
    // Two forms of the approval replies are in use; both are the same.
    static const QHash<QString, QString> texts{
        {QStringLiteral("USER_REQUEST_HWID_RESET_OK"), QStringLiteral("[TCP] HWID reset request sent OK")},
        {QStringLiteral("ADMIN_KICK_OK"), QStringLiteral("[TCP] Admin kick OK")},
        {QStringLiteral("ADMIN_APPROVE_USER_OK"), QStringLiteral("[TCP] Admin approve OK")},
        {QStringLiteral("ADMIN_APPROVE_OK"), QStringLiteral("[TCP] Admin approve OK")},
        {QStringLiteral("ADMIN_UNAPPROVE_USER_OK"), QStringLiteral("[TCP] Admin unapprove OK")},
        {QStringLiteral("ADMIN_UNAPPROVE_OK"), QStringLiteral("[TCP] Admin unapprove OK")},
        {QStringLiteral("ADMIN_UPDATE_USER_OK"), QStringLiteral("[TCP] Admin update user OK")},
        {QStringLiteral("ADMIN_DELETE_USER_OK"), QStringLiteral("[TCP] Admin delete user OK")},
        {QStringLiteral("ADMIN_BAN_OK"), QStringLiteral("[TCP] Admin ban OK")},
        {QStringLiteral("ADMIN_MOVE_OK"), QStringLiteral("[TCP] Admin move OK")},
    };
    qDebug().noquote() << texts.value(message.word());
}

void TcpClient::handleServerInfo(const ServerMessage &message)
{
    const QJsonDocument info = message.json();
    if (info.isObject())
        emit serverInfoReceived(info.object().toVariantMap());
}

void TcpClient::handleAudioQuality(const ServerMessage &message)
{
    emit audioQualityReceived(ServerRecords::audioQuality(message));
}

void TcpClient::handleError(const ServerMessage &message)
{
    emit errorOccurred(message.field(1, QStringLiteral("Server error")));
}

void TcpClient::handleKicked(const ServerMessage &message)
{
    const QString reason = message.rest(1, QStringLiteral("Dikeluarkan oleh admin"));
    const QPointer<TcpClient> self(this);
    const int connection = m_connection;
    emit kicked(reason); // may wait for hours; the connection may be another one afterwards
    if (self)
        emit errorOccurred(QStringLiteral("KICKED: ") + reason);
    if (self)
        disconnectFrom(connection);
}

void TcpClient::handleBanned(const ServerMessage &message)
{
    const QString reason = message.rest(1, QStringLiteral("Akun dibanned oleh admin"));
    const QPointer<TcpClient> self(this);
    const int connection = m_connection;
    emit banned(reason);
    if (self)
        emit errorOccurred(QStringLiteral("BANNED: ") + reason);
    if (self)
        disconnectFrom(connection);
}
