#include "server/ServerRig.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

/// What the server refuses, and what it notes. One server for all: a refusal leaves it as it was.
class ServerRightsTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void unknownUsers();
    void editsThatAreRefused_data();
    void editsThatAreRefused();
    void roomsThatAreRefused_data();
    void roomsThatAreRefused();
    void ownAccountIsSafe_data();
    void ownAccountIsSafe();
    void everyCommandIsForAdministrators_data();
    void everyCommandIsForAdministrators();
    void eachDeedIsOneLogLine(); // the last, as it does what the others do not

private:
    std::unique_ptr<ServerRig> m_rig;
    std::unique_ptr<RawClient> m_admin;
    std::unique_ptr<RawClient> m_member;
    std::unique_ptr<RawClient> m_stranger;
    bool m_isChanged = false;
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

struct Deed
{
    const char *command;
    const char *log; ///< what the log says of it; nothing for a mere look
};

/// One of each, in an order in which all of them can be done.
constexpr Deed kDeeds[] = {
    {"ADMIN_GET_ALL_USERS", ""},
    {"ADMIN_PENDING", ""},
    {"ADMIN_GET_AUDIO_QUALITY", ""},
    {"ADMIN_APPROVE_USER 3", "approved YB3C"},
    {"ADMIN_UNAPPROVE_USER 3", "took back the approval of YB3C"},
    {"ADMIN_UPDATE_USER 3 \"a\" \"b\" \"active\" \"c\" \"d\" \"e\" \"f\" \"g\" 1 0 \"\"", "edited YB3C"},
    {"ADMIN_RESET_HWID 3", "reset the device of YB3C"},
    {"ADMIN_RESET_PASSWORD 3 \"hidden\"", "reset the password of YB3C"},
    {"ADMIN_BAN 3", "banned YB3C"},
    {"ADMIN_DELETE_USER 3", "deleted YB3C"},
    {"ADMIN_MUTE 1 1", "muted YB1A"},
    {"ADMIN_MUTE 1 0", "unmuted YB1A"},
    {"ADMIN_MOVE 1 Alpha", "moved YB1A to Alpha"},
    {"ADMIN_SET_AUDIO_QUALITY low", "set the audio quality to low"},
    {"ADMIN_CREATE_ROOM \"Bravo\" 5", "created the room Bravo"},
    {"ADMIN_EDIT_ROOM \"Alpha\" \"Beta\" 5 \"\"", "edited the room Alpha: Beta, at most 5"},
    {"ADMIN_SET_ROOM_ORDER Bravo|Lobby", "ordered the rooms"},
    {"ADMIN_DELETE_ROOM \"Beta\"", "deleted the room Beta"},
};

} // namespace

void ServerRightsTest::initTestCase()
{
    m_rig = std::make_unique<ServerRig>();
    m_admin = m_rig->client();
    QVERIFY(m_admin->login(q("YB4D")).startsWith(q("LOGIN_OK")));
    m_member = m_rig->client();
    QVERIFY(m_member->enter(q("YB1A")));
    m_stranger = m_rig->client();
}

void ServerRightsTest::cleanup()
{
    if (m_isChanged)
        return;
    QCOMPARE(m_rig->store().accounts().size(), 4);
    QCOMPARE(m_admin->answer(q("ROOMS"), q("ROOMS")), q("ROOMS|Lobby,Alpha"));
}

void ServerRightsTest::unknownUsers()
{
    for (const char *command :
         {"ADMIN_BAN 99", "ADMIN_UPDATE_USER 1x", "ADMIN_APPROVE_USER x", "ADMIN_RESET_HWID", "ADMIN_DELETE_USER -1",
          "ADMIN_RESET_PASSWORD 99 \"x\"", "ADMIN_UPDATE_USER 99", "ADMIN_MUTE 99 1"})
        QCOMPARE(m_admin->answer(q(command), q("ERROR")), q("ERROR|User tidak ditemukan"));
}

void ServerRightsTest::editsThatAreRefused_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::newRow("id only") << q("1");
    QTest::newRow("too few") << q("1 \"Ani\" \"YB1X\" \"active\"");
    QTest::newRow("too many") << q("1 \"a\" \"b\" \"active\" \"c\" \"d\" \"e\" \"f\" \"g\" 1 0 \"2030-01-01\" 1");
    QTest::newRow("no such status") << q("1 \"a\" \"b\" \"gone\" \"c\" \"d\" \"e\" \"f\" \"g\" 1 0 \"2030-01-01\"");
    QTest::newRow("no such day") << q("1 \"a\" \"b\" \"active\" \"c\" \"d\" \"e\" \"f\" \"g\" 1 0 \"2030-02-30\"");
    QTest::newRow("another form") << q("1 \"a\" \"b\" \"active\" \"c\" \"d\" \"e\" \"f\" \"g\" 1 0 \"01/02/2030\"");
}

void ServerRightsTest::editsThatAreRefused()
{
    QFETCH(QString, arguments);
    QCOMPARE(m_admin->answer(q("ADMIN_UPDATE_USER ") + arguments, q("ERROR")), q("ERROR|Data user tidak valid"));
    const Account account = *m_rig->store().account(1);
    QCOMPARE(account.name, q("Op YB1A"));
    QCOMPARE(account.status, q("active"));
}

void ServerRightsTest::roomsThatAreRefused_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("reason");
    QTest::newRow("no name") << q("ADMIN_CREATE_ROOM \"\" 5") << q("Nama room tidak boleh kosong");
    QTest::newRow("name of separators") << q("ADMIN_CREATE_ROOM \",|;\" 5") << q("Nama room tidak boleh kosong");
    QTest::newRow("there already") << q("ADMIN_CREATE_ROOM \"Alpha\" 5") << q("Room sudah ada");
    QTest::newRow("edit: unknown") << q("ADMIN_EDIT_ROOM \"Nowhere\" \"X\" 5 \"\"") << q("Room tidak ditemukan");
    QTest::newRow("edit: no new name") << q("ADMIN_EDIT_ROOM \"Lobby\" \"\" 5 \"\"")
                                       << q("Nama room tidak dapat dipakai");
    QTest::newRow("edit: another's name")
        << q("ADMIN_EDIT_ROOM \"Lobby\" \"Alpha\" 5 \"\"") << q("Nama room tidak dapat dipakai");
    QTest::newRow("delete: unknown") << q("ADMIN_DELETE_ROOM \"Nowhere\"") << q("Room tidak ditemukan");
    QTest::newRow("delete: none named") << q("ADMIN_DELETE_ROOM") << q("Room tidak ditemukan");
}

void ServerRightsTest::roomsThatAreRefused()
{
    QFETCH(QString, command);
    QFETCH(QString, reason);
    QCOMPARE(m_admin->answer(command, q("ERROR")), q("ERROR|") + reason);
    QCOMPARE(m_admin->answer(q("ROOMS"), q("ROOMS")), q("ROOMS|Lobby,Alpha"));
}

void ServerRightsTest::ownAccountIsSafe_data()
{
    QTest::addColumn<QString>("command");
    const QString edit = q("ADMIN_UPDATE_USER 4 \"a\" \"b\" \"%1\" \"c\" \"d\" \"e\" \"f\" \"g\" 1 %2 \"\"");
    QTest::newRow("ban") << q("ADMIN_BAN 4");
    QTest::newRow("delete") << q("ADMIN_DELETE_USER 4");
    QTest::newRow("no administrator") << edit.arg(q("active"), q("0"));
    QTest::newRow("suspended") << edit.arg(q("suspended"), q("1"));
    QTest::newRow("banned") << edit.arg(q("banned"), q("1"));
    QTest::newRow("a permit that has ended") << edit.arg(q("active"), q("1")).replace(q("\"\""), q("\"2001-01-01\""));
}

void ServerRightsTest::ownAccountIsSafe()
{
    QFETCH(QString, command);
    QCOMPARE(m_admin->answer(command, q("ERROR")), q("ERROR|Tidak dapat dilakukan pada akun sendiri"));
    const auto account = m_rig->store().account(4);
    QVERIFY(account && account->admin);
    QCOMPARE(account->status, q("active"));
    QCOMPARE(account->name, q("Op YB4D"));
}

void ServerRightsTest::everyCommandIsForAdministrators_data()
{
    QTest::addColumn<QString>("command");
    for (const Deed &deed : kDeeds)
        QTest::newRow(deed.command) << q(deed.command);
}

void ServerRightsTest::everyCommandIsForAdministrators()
{
    QFETCH(QString, command);
    const LogCapture log;
    QCOMPARE(m_member->answer(command, q("ERROR")), q("ERROR|Hanya untuk administrator"));
    QCOMPARE(m_stranger->answer(command, q("ERROR")), q("ERROR|Belum login"));
    QCOMPARE(log.lines(), QStringList());
}

void ServerRightsTest::eachDeedIsOneLogLine()
{
    m_isChanged = true;
    for (const Deed &deed : kDeeds) {
        const LogCapture log;
        m_admin->send(q(deed.command));
        QVERIFY(!m_admin->answer(q("PING"), q("PONG")).isEmpty());
        const QString line = q("YB4D 127.0.0.1 ") + q(deed.log);
        QCOMPARE(log.lines(), *deed.log ? QStringList(line) : QStringList()); // passwords are not for the log
    }
    const LogCapture log;
    m_admin->send(q("ADMIN_KICK 1"));
    QVERIFY(!m_admin->answer(q("PING"), q("PONG")).isEmpty());
    QCOMPARE(log.lines().value(0), q("YB4D 127.0.0.1 kicked YB1A"));
}

EVOX_TEST_MAIN(ServerRightsTest, QCoreApplication)
#include "tst_serverrights.moc"
