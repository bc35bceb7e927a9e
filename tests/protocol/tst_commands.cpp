#include "net/protocol/Commands.h"
#include "support/TestMain.h"

class CommandsTest final : public QObject
{
    Q_OBJECT

private slots:
    void lines_data();
    void lines();
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

void CommandsTest::lines_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const QString &line, const char *expected) {
        QTest::newRow(name) << line << q(expected);
    };
    using namespace Commands;
    const QString room = q("Ruang Dua");
    row("login", login(q("YB0ABC"), q("p|w"), q("0123")), "LOGIN YB0ABC p|w 0123");
    row("login without a device", login(q("YB0ABC"), q("pw"), {}), "LOGIN YB0ABC pw");
    row("login, places in the password", login(q("YB0ABC"), q("%1%2"), q("0123")), "LOGIN YB0ABC %1%2 0123");
    row("register",
        registerGateway({q("Gerbang 1"), q("YH0ABC"), q("146.440 MHz"), q("2031-05-30"), q("Bandung"), q("Ani"),
                         q("YB0ABC"), q("p w"), q("a@example.org"), q("0812")}),
        "REGISTER_GATEWAY \"Gerbang 1\" \"YH0ABC\" \"146.440 MHz\" \"2031-05-30\" \"Bandung\" \"Ani\" "
        "\"YB0ABC\" \"p w\" \"a@example.org\" \"0812\"");
    row("register, nothing known", registerGateway({}),
        "REGISTER_GATEWAY \"\" \"\" \"\" \"\" \"\" \"\" \"\" \"\" \"\" \"\"");
    row("ping", ping(), "PING");
    row("quit", quit(), "QUIT");
    row("rooms", rooms(), "ROOMS");
    row("join, room bare", join(room), "JOIN Ruang Dua");
    row("leave", leave(), "LEAVE");
    row("start, room quoted", startTransmit(room), "TX_START \"Ruang Dua\"");
    row("stop, room quoted", stopTransmit(room), "TX_STOP \"Ruang Dua\"");
    row("quotes are not escaped", startTransmit(q("a\"b")), "TX_START \"a\"b\"");
    row("audio quality", audioQuality(), "GET_AUDIO_QUALITY");
    row("profile", profile(), "USER_GET_PROFILE");
    row("user information", userInfo(q("YB1ABC")), "USER_GET_INFO YB1ABC");
    row("change password", changePassword(q("old %2"), q("new")), "USER_CHANGE_PASSWORD \"old %2\" \"new\"");
    row("ask for a device reset", requestDeviceReset(q("YB0ABC")), "USER_REQUEST_HWID_RESET \"YB0ABC\"");
    row("own profile",
        updateOwnProfile(7, {q("Ani"), q("YB1ABC"), q("Gerbang"), q("146 MHz"), q("Bandung"), q("a@b"), q("0812")}),
        "ADMIN_UPDATE_USER 7 \"Ani\" \"YB1ABC\" \"active\" 1 0 \"Gerbang\" \"146 MHz\" \"Bandung\" \"a@b\" \"0812\"");
    row("kick", kick(7), "ADMIN_KICK 7");
    row("ban", ban(7), "ADMIN_BAN 7");
    row("move, room bare", Commands::move(7, room), "ADMIN_MOVE 7 Ruang Dua");
    row("mute", mute(7, 1), "ADMIN_MUTE 7 1");
    row("unmute", mute(7, 0), "ADMIN_MUTE 7 0");
    row("online users", onlineUsers(), "ONLINE_USERS");
    row("all users", allUsers(), "ADMIN_GET_ALL_USERS");
    row("pending users", pendingUsers(), "ADMIN_PENDING");
    row("approve", approveUser(7), "ADMIN_APPROVE_USER 7");
    row("unapprove", unapproveUser(7), "ADMIN_UNAPPROVE_USER 7");
    row("update user",
        updateUser(7, {q("Ani"), q("YB1ABC"), q("suspended"), q("Gerbang"), q("146 MHz"), q("Bandung"), q("a@b"),
                       q("0812"), true, false, q("2031-05-30")}),
        "ADMIN_UPDATE_USER 7 \"Ani\" \"YB1ABC\" \"suspended\" \"Gerbang\" \"146 MHz\" \"Bandung\" \"a@b\" \"0812\" 1 0 "
        "\"2031-05-30\"");
    row("reset device", resetDevice(7), "ADMIN_RESET_HWID 7");
    row("reset password", resetPassword(7, q("p w")), "ADMIN_RESET_PASSWORD 7 \"p w\"");
    row("delete user", deleteUser(7), "ADMIN_DELETE_USER 7");
    row("create room", createRoom(room, 25), "ADMIN_CREATE_ROOM \"Ruang Dua\" 25");
    row("edit room", editRoom(room, q("Tiga"), 30), "ADMIN_EDIT_ROOM \"Ruang Dua\" \"Tiga\" 30 \"\"");
    row("delete room", deleteRoom(room), "ADMIN_DELETE_ROOM \"Ruang Dua\"");
    row("room order", setRoomOrder({q("Lobby"), room}), "ADMIN_SET_ROOM_ORDER Lobby|Ruang Dua");
    row("audio quality for the panel", adminAudioQuality(), "ADMIN_GET_AUDIO_QUALITY");
    row("set audio quality", setAudioQuality(q("high")), "ADMIN_SET_AUDIO_QUALITY high");
}

void CommandsTest::lines()
{
    QFETCH(QString, line);
    QTEST(line, "expected");
}

EVOX_TEST_MAIN(CommandsTest, QCoreApplication)
#include "tst_commands.moc"
