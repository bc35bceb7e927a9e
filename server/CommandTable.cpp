#include "server/ControlServer.h"

const QHash<QString, ControlServer::Row> &ControlServer::commandTable()
{
    using S = ControlServer;
    constexpr Access anyone = Access::Anyone;
    constexpr Access member = Access::Member;
    constexpr Access admin = Access::Admin;
    static const QHash<QString, Row> table{
        {QStringLiteral("PING"), {&S::ping, anyone}},
        {QStringLiteral("QUIT"), {&S::quit, anyone}},
        {QStringLiteral("LOGIN"), {&S::login, anyone}},
        {QStringLiteral("REGISTER_GATEWAY"), {&S::registerGateway, anyone}},
        {QStringLiteral("ROOMS"), {&S::rooms, member}},
        {QStringLiteral("JOIN"), {&S::join, member}},
        {QStringLiteral("LEAVE"), {&S::leave, member}},
        {QStringLiteral("TX_START"), {&S::startTransmission, member}},
        {QStringLiteral("TX_STOP"), {&S::stopTransmission, member}},
        {QStringLiteral("GET_AUDIO_QUALITY"), {&S::getQuality, member}},
        {QStringLiteral("ONLINE_USERS"), {&S::onlineUsers, member}},
        {QStringLiteral("USER_GET_PROFILE"), {&S::getProfile, member}},
        {QStringLiteral("USER_GET_INFO"), {&S::getInfo, member}},
        {QStringLiteral("USER_CHANGE_PASSWORD"), {&S::changePassword, member}},
        // Also for somebody whose login was refused because of the device.
        {QStringLiteral("USER_REQUEST_HWID_RESET"), {&S::requestDeviceReset, anyone}},
        // Members may edit their own record with it.
        {QStringLiteral("ADMIN_UPDATE_USER"), {&S::updateUser, member}},
        {QStringLiteral("ADMIN_GET_ALL_USERS"), {&S::allUsers, admin}},
        {QStringLiteral("ADMIN_PENDING"), {&S::pendingUsers, admin}},
        {QStringLiteral("ADMIN_APPROVE_USER"), {&S::approve, admin}},
        {QStringLiteral("ADMIN_UNAPPROVE_USER"), {&S::unapprove, admin}},
        {QStringLiteral("ADMIN_KICK"), {&S::kick, admin}},
        {QStringLiteral("ADMIN_BAN"), {&S::ban, admin}},
        {QStringLiteral("ADMIN_MUTE"), {&S::mute, admin}},
        {QStringLiteral("ADMIN_MOVE"), {&S::move, admin}},
        {QStringLiteral("ADMIN_RESET_HWID"), {&S::resetDevice, admin}},
        {QStringLiteral("ADMIN_RESET_PASSWORD"), {&S::resetPassword, admin}},
        {QStringLiteral("ADMIN_DELETE_USER"), {&S::deleteUser, admin}},
        {QStringLiteral("ADMIN_GET_AUDIO_QUALITY"), {&S::getQuality, admin}},
        {QStringLiteral("ADMIN_SET_AUDIO_QUALITY"), {&S::setQuality, admin}},
        {QStringLiteral("ADMIN_CREATE_ROOM"), {&S::createRoom, admin}},
        {QStringLiteral("ADMIN_EDIT_ROOM"), {&S::editRoom, admin}},
        {QStringLiteral("ADMIN_DELETE_ROOM"), {&S::deleteRoom, admin}},
        {QStringLiteral("ADMIN_SET_ROOM_ORDER"), {&S::setRoomOrder, admin}},
    };
    return table;
}
