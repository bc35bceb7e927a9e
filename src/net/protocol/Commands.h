#pragma once

#include <QString>
#include <QStringList>

/// Every command line that a client sends, without its line end. Values go in as they are: nothing is escaped, so that
/// a double quote in a quoted value, or a blank in a bare one, breaks the line.
namespace Commands {

/// What a new gateway tells about itself, in the order of the line.
struct Registration
{
    QString gatewayName;
    QString callsign;
    QString frequency;
    QString permitExpiry; ///< yyyy-MM-dd
    QString location;
    QString operatorName;
    QString responsibleCallsign;
    QString password;
    QString email;
    QString phone; ///< for messages
};

/// What a user may change of his own account.
struct OwnProfile
{
    QString picName; ///< the person in charge
    QString picCallsign;
    QString gatewayName;
    QString frequency;
    QString location;
    QString email;
    QString whatsapp;
};

/// What an administrator may change of any account.
struct Account
{
    QString picName;
    QString picCallsign;
    QString status; ///< "active", "pending", "suspended" or "banned"
    QString gatewayName;
    QString frequency;
    QString location;
    QString email;
    QString whatsapp;
    bool approved = false;
    bool admin = false;
    QString permitExpiry; ///< yyyy-MM-dd
};

// The connection
/// The device identifier is left out when it is empty.
[[nodiscard]] QString login(const QString &callsign, const QString &password, const QString &deviceId);
[[nodiscard]] QString registerGateway(const Registration &registration);
[[nodiscard]] QString ping();
[[nodiscard]] QString quit();

// Rooms
[[nodiscard]] QString rooms();
/// The room goes bare here, quoted in the other commands.
[[nodiscard]] QString join(const QString &room);
[[nodiscard]] QString leave();
[[nodiscard]] QString startTransmit(const QString &room);
[[nodiscard]] QString stopTransmit(const QString &room);
[[nodiscard]] QString audioQuality();

// The own account
[[nodiscard]] QString profile();
[[nodiscard]] QString userInfo(const QString &callsign);
[[nodiscard]] QString changePassword(const QString &oldPassword, const QString &newPassword);
[[nodiscard]] QString requestDeviceReset(const QString &callsign);
/// Always asserts an active, approved account without administrator's rights.
[[nodiscard]] QString updateOwnProfile(int userId, const OwnProfile &profile);

// Administration: members
[[nodiscard]] QString kick(int userId);
[[nodiscard]] QString ban(int userId);
[[nodiscard]] QString move(int userId, const QString &room);
/// 1 mutes, 0 unmutes.
[[nodiscard]] QString mute(int userId, int muted);
[[nodiscard]] QString onlineUsers();

// Administration: accounts
[[nodiscard]] QString allUsers();
[[nodiscard]] QString pendingUsers();
[[nodiscard]] QString approveUser(int userId);
[[nodiscard]] QString unapproveUser(int userId);
[[nodiscard]] QString updateUser(int userId, const Account &account);
[[nodiscard]] QString resetDevice(int userId);
[[nodiscard]] QString resetPassword(int userId, const QString &newPassword);
[[nodiscard]] QString deleteUser(int userId);

// Administration: rooms and audio
[[nodiscard]] QString createRoom(const QString &name, int maximumUsers);
/// Ends with a field that is always empty.
[[nodiscard]] QString editRoom(const QString &oldName, const QString &newName, int maximumUsers);
[[nodiscard]] QString deleteRoom(const QString &name);
[[nodiscard]] QString setRoomOrder(const QStringList &names);
[[nodiscard]] QString adminAudioQuality();
[[nodiscard]] QString setAudioQuality(const QString &preset);

} // namespace Commands
