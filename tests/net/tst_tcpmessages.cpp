#include "SignalLog.h"
#include "net/TcpClient.h"
#include "support/FakeServer.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

class TcpMessagesTest final : public QObject
{
    Q_OBJECT

private slots:
    void messages_data();
    void messages();
    void loginStateIsKept();
    void roomOrderAsksForTheRooms();
    void kickedAndBannedDisconnect_data();
    void kickedAndBannedDisconnect();
    void payloadOnTheNextLine();
    void frameInTwoArrivals();
    void partialFrameCanBeDiscarded();
    void overlongMessageEndsTheConnection();
    void lineCutOffByALossIsKept();
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

/// A connected client whose signals and diagnostics are recorded from here on.
struct Connected
{
    FakeServer server;
    TcpClient client;
    SignalLog signals_{&client};

    [[nodiscard]] bool connect()
    {
        client.connectToServer(server.host(), server.port());
        const bool up = QTest::qWaitFor([this] { return client.isConnected(); }) && server.waitForClient();
        signals_.clear();
        return up;
    }
    /// Sends the bytes and waits until everything before a closing mark has been dispatched.
    [[nodiscard]] QStringList after(const QByteArray &bytes)
    {
        server.sendRaw(bytes + "ROOMS|mark\r\n");
        const QString mark = q("roomListReceived([mark])");
        const bool seen = QTest::qWaitFor([&] { return signals_.entries().contains(mark); });
        QStringList entries = signals_.entries();
        entries.removeOne(mark);
        return seen ? entries : QStringList{q("no answer")};
    }
};

} // namespace

void TcpMessagesTest::messages_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("emitted");
    QTest::addColumn<QString>("logged"); // empty: nothing
    const auto row = [](const char *name, const char *line, const QStringList &emitted, const char *logged = "") {
        QTest::newRow(name) << q(line) << emitted << q(logged);
    };
    const char *loggedIn = "[TCP] Login successful, user_id: 42 is_admin: false";
    row("login", "LOGIN_OK|tok||False|42|", {q("loginResult(true, Login berhasil)")}, loggedIn);
    row("login in lower case", "login_ok|tok||false|42|", {q("loginResult(true, Login berhasil)")}, loggedIn);
    row("login of an administrator", "LOGIN_OK|tok||TRUE|42", {q("loginResult(true, Login berhasil)")},
        "[TCP] Login successful, user_id: 42 is_admin: true");
    row("login without anything", "LOGIN_OK", {q("loginResult(true, Login berhasil)")},
        "[TCP] Login successful, user_id: 0 is_admin: false");
    row("login with a session key", "LOGIN_OK|tok||False|42||||||||||||skey", {q("loginResult(true, Login berhasil)")},
        loggedIn);
    row("login with a session key in its place", "LOGIN_OK|tok||False|42|||||||||||skey|x",
        {q("sessionKeyReceived(skey)"), q("loginResult(true, Login berhasil)")}, loggedIn);
    row("refused", "LOGIN_FAILED|Password salah", {q("loginResult(false, Password salah)")});
    row("refused without a reason", "LOGIN_FAILED", {q("loginResult(false, Login gagal)")});
    row("registered", "REGISTER_OK|Baik", {q("registerResult(true, Baik)")});
    row("registered without a text", "REGISTER_OK", {q("registerResult(true, Registrasi berhasil)")});
    row("not registered", "REGISTER_FAILED|Ada", {q("registerResult(false, Ada)")});
    row("not registered without a text", "REGISTER_FAILED", {q("registerResult(false, Registrasi gagal)")});
    row("rooms", "ROOMS|Lobby,,Ruang Dua,", {q("roomListReceived([Lobby,Ruang Dua])")});
    row("no rooms", "ROOMS", {q("roomListReceived([])")});
    row("joined", "JOIN_OK|Lobby|0123456789abcdefXYZ",
        {q("roomKeyReceived(0123456789abcdefXYZ)"), q("joinRoomResult(true, Lobby)")},
        "[TCP] JOIN_OK room: Lobby key: 0123456789abcdef...");
    row("joined without a key", "JOIN_OK|Lobby", {q("joinRoomResult(true, Lobby)")},
        "[TCP] JOIN_OK room: Lobby key: none");
    row("not joined", "JOIN_FAILED|Penuh", {q("joinRoomResult(false, Penuh)")});
    row("not joined without a reason", "JOIN_FAILED", {q("joinRoomResult(false, Gagal join room)")});
    row("left", "LEAVE_OK|Lobby", {q("leaveRoomResult(true, )")});
    row("moved", "MOVED|Alpha|admin|key", {q("roomKeyReceived(key)"), q("joinRoomResult(true, Alpha)")});
    row("moved without a key", "MOVED|Alpha", {q("joinRoomResult(true, Alpha)")});
    row("user list", "USER_LIST|Lobby|7|YB1X|Ani|TX|1|0",
        {q("roomUsersReceived([{\"approved\":true,\"callsign\":\"YB1X\",\"is_muted\":false,"
           "\"is_transmitting\":true,\"name\":\"Ani\",\"user_id\":7}])")});
    row("online users", "ONLINE_USERS|7,YB1X,Ani,Lobby,True",
        {q("onlineUsersReceived([{\"callsign\":\"YB1X\",\"id\":7,\"is_admin\":true,\"name\":\"Ani\","
           "\"room\":\"Lobby\"}])")});
    row("all users", "ADMIN_ALL_USERS|[{\"id\":7}]", {q("allUsersReceived([{\"id\":7}])")});
    row("all users, other word", "ADMIN_GET_ALL_USERS|[]", {q("allUsersReceived([])")});
    row("all users with a bar", "ADMIN_ALL_USERS|[{\"name\":\"a|b\"}]", {q("allUsersReceived([{\"name\":\"a|b\"}])")});
    row("all users, no array", "ADMIN_ALL_USERS|{}", {});
    row("pending users", "ADMIN_PENDING|[{\"id\":7}]", {q("pendingUsersReceived([{\"id\":7}])")});
    row("pending users, broken", "ADMIN_PENDING|[{", {});
    row("user information", "USER_INFO|{\"id\":7}", {q("userInfoReceived({\"id\":7})")});
    row("user information, no object", "USER_INFO|[]", {});
    row("user information result", "USER_INFO_RESULT|{\"name\":\"a|b\"}", {q("userInfoReceived({\"name\":\"a|b\"})")});
    row("profile", "USER_PROFILE|{\"name\":\"a|b\"}", {q("userProfileReceived({\"name\":\"a|b\"})")});
    row("profile, broken", "USER_PROFILE|{\"name\"", {});
    row("transmission started", "TX_START_OK|Lobby", {q("transmitStarted()")});
    row("transmission refused", "TX_START_FAILED|Kanal sedang dipakai", {q("transmitFailed(Kanal sedang dipakai)")});
    row("transmission refused without a reason", "TX_START_FAILED", {q("transmitFailed(TX gagal)")});
    row("transmission stopped", "TX_STOP_OK", {q("transmitStopped()")});
    row("password changed", "USER_CHANGE_PASSWORD_OK", {q("userPasswordChanged(true, Password berhasil diubah)")},
        "[TCP] Password changed OK");
    row("password not changed", "USER_CHANGE_PASSWORD_FAIL|Lama|salah", {q("userPasswordChanged(false, Lama|salah)")},
        "[TCP] Password change failed: Lama|salah");
    row("password not changed without a reason", "USER_CHANGE_PASSWORD_FAIL", {q("userPasswordChanged(false, Gagal)")},
        "[TCP] Password change failed: Gagal");
    row("device reset asked for", "USER_REQUEST_HWID_RESET_OK", {}, "[TCP] HWID reset request sent OK");
    row("notice", "ADMIN_NOTIFICATION|HWID_RESET_REQUEST|YB1X|7", {q("adminNotification(HWID_RESET_REQUEST, YB1X:7)")});
    row("notice too short", "ADMIN_NOTIFICATION|HWID_RESET_REQUEST|YB1X", {});
    row("notice of another type", "ADMIN_NOTIFICATION|OTHER|YB1X|7", {});
    row("muted", "MUTED|1|a|b", {q("adminMuted(true, a|b)")});
    row("unmuted", "MUTED|0", {q("adminMuted(false, )")});
    row("muted by another word is unmuted", "MUTED|true|x", {q("adminMuted(false, x)")});
    row("device reset", "ADMIN_RESET_HWID_OK|YB1X", {q("hwidReset(YB1X)")});
    row("quality set", "ADMIN_SET_AUDIO_QUALITY_OK|high", {}, "[TCP] Admin set audio quality OK: high");
    row("room created", "ADMIN_CREATE_ROOM_OK|Alpha", {}, "[TCP] Admin create room OK: Alpha");
    row("room deleted", "ADMIN_DELETE_ROOM_OK|Alpha", {}, "[TCP] Admin delete room OK: Alpha");
    row("room edited", "ADMIN_EDIT_ROOM_OK|Alpha", {}, "[TCP] Admin edit room OK: Alpha");
    row("password reset", "ADMIN_RESET_PASSWORD_OK|YB1X", {}, "[TCP] Admin reset password OK for user: YB1X");
    row("kick done", "ADMIN_KICK_OK", {}, "[TCP] Admin kick OK");
    row("approval done", "ADMIN_APPROVE_USER_OK", {}, "[TCP] Admin approve OK");
    row("approval done, other form", "ADMIN_APPROVE_OK", {}, "[TCP] Admin approve OK");
    row("approval taken back", "ADMIN_UNAPPROVE_USER_OK", {}, "[TCP] Admin unapprove OK");
    row("approval taken back, other form", "ADMIN_UNAPPROVE_OK", {}, "[TCP] Admin unapprove OK");
    row("user updated", "ADMIN_UPDATE_USER_OK", {}, "[TCP] Admin update user OK");
    row("user deleted", "ADMIN_DELETE_USER_OK", {}, "[TCP] Admin delete user OK");
    row("ban done", "ADMIN_BAN_OK", {}, "[TCP] Admin ban OK");
    row("move done", "ADMIN_MOVE_OK", {}, "[TCP] Admin move OK");
    row("server information", "SERVER_INFO|{\"online_users\":3}", {q("serverInfoReceived({\"online_users\":3})")});
    row("server information, broken", "SERVER_INFO|x", {});
    row("quality", "AUDIO_QUALITY|low|16000|24000|20|5",
        {q("audioQualityReceived({\"bitrate\":16000,\"complexity\":5,\"frame_duration\":20,\"preset\":\"low\","
           "\"sample_rate\":24000})")});
    row("error", "ERROR|Tidak boleh", {q("errorOccurred(Tidak boleh)")});
    row("error without a text", "ERROR", {q("errorOccurred(Server error)")});
    row("greeting", "ROIP SERVER READY v4|x", {}, "[TCP] Server ready");
    row("unknown", "hello|x", {}, "[TCP] Unknown command: HELLO");
    row("PONG with more is unknown", "PONG|1", {}, "[TCP] Unknown command: PONG");
    row("audio header without a length", "AUDIO 7", {}, "[TCP] Unknown command: AUDIO 7");
}

void TcpMessagesTest::messages()
{
    QFETCH(QString, line);
    QFETCH(QString, logged);
    Connected c;
    QVERIFY(c.connect());
    LogCapture log;
    QTEST(c.after(line.toUtf8() + "\r\n"), "emitted");
    QCOMPARE(log.lines(), logged.isEmpty() ? QStringList() : QStringList{logged});
}

void TcpMessagesTest::loginStateIsKept()
{
    Connected c;
    QVERIFY(c.connect());
    LogCapture log;
    log.expectWarning(q("[TCP] License warning: Izin habis"));
    QCOMPARE(c.client.userId(), 0);
    QCOMPARE(c.after("LOGIN_OK|secret-token-1||True|42||Izin habis\r\n"),
             QStringList({q("licenseWarning(Izin habis)"), q("loginResult(true, Login berhasil)")}));
    QCOMPARE(log.lines(), QStringList({q("[TCP] Login successful, user_id: 42 is_admin: true"),
                                       q("[TCP] License warning: Izin habis")}));
    QCOMPARE(c.client.udpToken(), q("secret-token-1"));
    QCOMPARE(c.client.userId(), 42);
    QVERIFY(c.client.isAdmin());
    c.server.drop();
    QTRY_VERIFY(!c.client.isConnected());
    QCOMPARE(c.client.userId(), 42);
    QVERIFY(c.client.isAdmin());
}

void TcpMessagesTest::roomOrderAsksForTheRooms()
{
    Connected c;
    QVERIFY(c.connect());
    LogCapture log;
    QVERIFY(c.after("ADMIN_SET_ROOM_ORDER_OK\r\n").isEmpty());
    QVERIFY(c.server.waitForLine(q("ROOMS")));
    QCOMPARE(log.lines(), QStringList{q("[TCP] Room order saved OK")});
}

void TcpMessagesTest::kickedAndBannedDisconnect_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QStringList>("emitted");
    QTest::newRow("kicked") << QByteArray("KICKED|a|b")
                            << QStringList{q("kicked(a|b)"), q("errorOccurred(KICKED: a|b)")};
    QTest::newRow("kicked without a reason")
        << QByteArray("KICKED")
        << QStringList{q("kicked(Dikeluarkan oleh admin)"), q("errorOccurred(KICKED: Dikeluarkan oleh admin)")};
    QTest::newRow("banned") << QByteArray("BANNED|a|b")
                            << QStringList{q("banned(a|b)"), q("errorOccurred(BANNED: a|b)")};
    QTest::newRow("banned without a reason")
        << QByteArray("BANNED")
        << QStringList{q("banned(Akun dibanned oleh admin)"), q("errorOccurred(BANNED: Akun dibanned oleh admin)")};
}

void TcpMessagesTest::kickedAndBannedDisconnect()
{
    QFETCH(QByteArray, line);
    QFETCH(QStringList, emitted);
    Connected c;
    QVERIFY(c.connect());
    c.server.sendRaw(line + "\r\n");
    QVERIFY(c.server.waitForLine(q("QUIT")));
    QTRY_COMPARE(c.signals_.entries(), emitted + QStringList{q("disconnected()")});
}

void TcpMessagesTest::payloadOnTheNextLine()
{
    Connected c;
    QVERIFY(c.connect());
    QCOMPARE(c.after("USER_PROFILE\r\n{\"a\":\"x|y\"}\r\nUSER_INFO_RESULT\r\n\r\n{\"b\":1}\r\n"),
             QStringList({q("userProfileReceived({\"a\":\"x|y\"})"), q("userInfoReceived({\"b\":1})")}));
}

void TcpMessagesTest::frameInTwoArrivals()
{
    Connected c;
    QVERIFY(c.connect());
    c.server.sendRaw("ROOMS|a\r\nAUDIO 7 4\r\nab");
    QTRY_COMPARE(c.signals_.entries(), QStringList{q("roomListReceived([a])")});
    QCOMPARE(c.after("cd"), QStringList({q("roomListReceived([a])"), q("audioReceived(61626364, 7)")}));
}

void TcpMessagesTest::partialFrameCanBeDiscarded()
{
    Connected c;
    QVERIFY(c.connect());
    c.server.sendRaw("ROOMS|a\r\nAUDIO 7 4\r\nab");
    QTRY_COMPARE(c.signals_.entries().size(), 1);
    c.client.discardPendingAudio();
    QCOMPARE(c.after("cd"), QStringList{q("roomListReceived([a])")});
}

void TcpMessagesTest::overlongMessageEndsTheConnection()
{
    LogCapture log;
    Connected c;
    QVERIFY(c.connect());
    c.server.sendRaw("AUDIO 7 67108865\r\n");
    QTRY_COMPARE(c.signals_.entries(), QStringList({q("errorOccurred(Server message too long)"), q("disconnected()")}));
    QVERIFY(log.contains(q("[TCP] Error: Server message too long")));
    QVERIFY(c.connect());
    QCOMPARE(c.after("TX_START_OK\r\n"), QStringList{q("transmitStarted()")});
}

void TcpMessagesTest::lineCutOffByALossIsKept()
{
    Connected c;
    QVERIFY(c.connect());
    c.server.sendRaw("ROOMS|a\r\nTX_START");
    QTRY_COMPARE(c.signals_.entries().size(), 1);
    c.server.drop();
    QTRY_VERIFY(!c.client.isConnected());
    QVERIFY(c.connect());
    QCOMPARE(c.after("_OK\r\n"), QStringList{q("transmitStarted()")});
}

EVOX_TEST_MAIN(TcpMessagesTest, QCoreApplication)
#include "tst_tcpmessages.moc"
