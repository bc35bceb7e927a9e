#include "net/protocol/Commands.h"

namespace {

QString quoted(const QString &value)
{
    return QLatin1Char('"') + value + QLatin1Char('"');
}

QString number(int value)
{
    return QString::number(value);
}

/// The word and its arguments with one blank between them; never QString::arg(), as a password may hold a "%1".
QString line(const char *word, const QStringList &arguments)
{
    return QLatin1String(word) + QLatin1Char(' ') + arguments.join(QLatin1Char(' '));
}

QString flag(bool on)
{
    return on ? QStringLiteral("1") : QStringLiteral("0");
}

} // namespace

namespace Commands {

QString login(const QString &callsign, const QString &password, const QString &deviceId)
{
    return line("LOGIN",
                deviceId.isEmpty() ? QStringList{callsign, password} : QStringList{callsign, password, deviceId});
}

QString registerGateway(const Registration &r)
{
    return line("REGISTER_GATEWAY",
                {quoted(r.gatewayName), quoted(r.callsign), quoted(r.frequency), quoted(r.permitExpiry),
                 quoted(r.location), quoted(r.operatorName), quoted(r.responsibleCallsign), quoted(r.password),
                 quoted(r.email), quoted(r.phone)});
}

QString ping()
{
    return QStringLiteral("PING");
}

QString quit()
{
    return QStringLiteral("QUIT");
}

QString rooms()
{
    return QStringLiteral("ROOMS");
}

QString join(const QString &room)
{
    return line("JOIN", {room});
}

QString leave()
{
    return QStringLiteral("LEAVE");
}

QString startTransmit(const QString &room)
{
    return line("TX_START", {quoted(room)});
}

QString stopTransmit(const QString &room)
{
    return line("TX_STOP", {quoted(room)});
}

QString audioQuality()
{
    return QStringLiteral("GET_AUDIO_QUALITY");
}

QString profile()
{
    return QStringLiteral("USER_GET_PROFILE");
}

QString userInfo(const QString &callsign)
{
    return line("USER_GET_INFO", {callsign});
}

QString changePassword(const QString &oldPassword, const QString &newPassword)
{
    return line("USER_CHANGE_PASSWORD", {quoted(oldPassword), quoted(newPassword)});
}

QString requestDeviceReset(const QString &callsign)
{
    return line("USER_REQUEST_HWID_RESET", {quoted(callsign)});
}

QString updateOwnProfile(int userId, const OwnProfile &p)
{
    return line("ADMIN_UPDATE_USER", {number(userId), quoted(p.picName), quoted(p.picCallsign),
                                      quoted(QStringLiteral("active")), flag(true), flag(false), quoted(p.gatewayName),
                                      quoted(p.frequency), quoted(p.location), quoted(p.email), quoted(p.whatsapp)});
}

QString kick(int userId)
{
    return line("ADMIN_KICK", {number(userId)});
}

QString ban(int userId)
{
    return line("ADMIN_BAN", {number(userId)});
}

QString move(int userId, const QString &room)
{
    return line("ADMIN_MOVE", {number(userId), room});
}

QString mute(int userId, int muted)
{
    return line("ADMIN_MUTE", {number(userId), number(muted)});
}

QString onlineUsers()
{
    return QStringLiteral("ONLINE_USERS");
}

QString allUsers()
{
    return QStringLiteral("ADMIN_GET_ALL_USERS");
}

QString pendingUsers()
{
    return QStringLiteral("ADMIN_PENDING");
}

QString approveUser(int userId)
{
    return line("ADMIN_APPROVE_USER", {number(userId)});
}

QString unapproveUser(int userId)
{
    return line("ADMIN_UNAPPROVE_USER", {number(userId)});
}

QString updateUser(int userId, const Account &a)
{
    return line("ADMIN_UPDATE_USER", {number(userId), quoted(a.picName), quoted(a.picCallsign), quoted(a.status),
                                      quoted(a.gatewayName), quoted(a.frequency), quoted(a.location), quoted(a.email),
                                      quoted(a.whatsapp), flag(a.approved), flag(a.admin), quoted(a.permitExpiry)});
}

QString resetDevice(int userId)
{
    return line("ADMIN_RESET_HWID", {number(userId)});
}

QString resetPassword(int userId, const QString &newPassword)
{
    return line("ADMIN_RESET_PASSWORD", {number(userId), quoted(newPassword)});
}

QString deleteUser(int userId)
{
    return line("ADMIN_DELETE_USER", {number(userId)});
}

QString createRoom(const QString &name, int maximumUsers)
{
    return line("ADMIN_CREATE_ROOM", {quoted(name), number(maximumUsers)});
}

QString editRoom(const QString &oldName, const QString &newName, int maximumUsers)
{
    return line("ADMIN_EDIT_ROOM", {quoted(oldName), quoted(newName), number(maximumUsers), quoted({})});
}

QString deleteRoom(const QString &name)
{
    return line("ADMIN_DELETE_ROOM", {quoted(name)});
}

QString setRoomOrder(const QStringList &names)
{
    return line("ADMIN_SET_ROOM_ORDER", {names.join(QLatin1Char('|'))});
}

QString adminAudioQuality()
{
    return QStringLiteral("ADMIN_GET_AUDIO_QUALITY");
}

QString setAudioQuality(const QString &preset)
{
    return line("ADMIN_SET_AUDIO_QUALITY", {preset});
}

} // namespace Commands
