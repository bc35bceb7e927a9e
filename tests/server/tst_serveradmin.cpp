#include "server/ServerRig.h"
#include "support/TestMain.h"

#include <QJsonArray>
#include <QJsonDocument>

class ServerAdminTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void kickRenewsTheKey();
    void banIsForGood();
    void moveTakesAlong();
    void muteEndsAnOver();
    void muteOutlivesTheConnection();
    void approval();
    void passwordAndDeletion();
    void editsAnyRecord();
    void editTurnsOutAtOnce_data();
    void editTurnsOutAtOnce();
    void editReachesTheRoom();
    void deviceResetIsKept();
    void requestsWaitForAnAdministrator();
    void roomsAndTheirOrder();
    void roomOrderTakesWhatThereIs();
    void editedRoom();
    void qualityReachesEverybody();
    void lists();
    void waitingForApproval_data();
    void waitingForApproval();
    void longListsAreNoOverload();
    void rightsFollowTheRecord();

private:
    /// The same server, with the same database and nobody connected.
    void restart();

    std::unique_ptr<ServerRig> m_rig;
    std::unique_ptr<RawClient> m_admin;
    std::unique_ptr<RawClient> m_a;
    std::unique_ptr<RawClient> m_b;
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

void ServerAdminTest::init()
{
    m_rig = std::make_unique<ServerRig>();
    m_admin = m_rig->client();
    QVERIFY(m_admin->login(q("YB4D")).startsWith(q("LOGIN_OK")));
    m_a = m_rig->client();
    QVERIFY(m_a->enter(q("YB1A")));
    m_b = m_rig->client();
    QVERIFY(m_b->enter(q("YB2B")));
}

void ServerAdminTest::cleanup()
{
    m_a.reset();
    m_b.reset();
    m_admin.reset();
    m_rig.reset();
}

void ServerAdminTest::restart()
{
    m_a.reset();
    m_b.reset();
    m_rig->restart();
    m_admin = m_rig->client();
    QVERIFY(m_admin->login(q("YB4D")).startsWith(q("LOGIN_OK")));
}

void ServerAdminTest::kickRenewsTheKey()
{
    const QString before = m_b->answer(q("JOIN Lobby"), q("JOIN_OK"));
    QCOMPARE(m_admin->answer(q("ADMIN_KICK 1"), q("ADMIN")), q("ADMIN_KICK_OK"));
    QCOMPARE(m_a->until(q("KICKED")).last(), q("KICKED|Dikeluarkan oleh YB4D"));
    const QString after = m_b->until(q("JOIN_OK")).last();
    QVERIFY(after.startsWith(q("JOIN_OK|Lobby|")));
    QVERIFY(after != before);
    QCOMPARE(m_a->answer(q("ROOMS"), q("ERROR")), q("ERROR|Belum login"));
    QVERIFY(m_a->login(q("YB1A")).startsWith(q("LOGIN_OK")));
}

void ServerAdminTest::banIsForGood()
{
    QCOMPARE(m_admin->answer(q("ADMIN_BAN 1"), q("ADMIN")), q("ADMIN_BAN_OK"));
    QCOMPARE(m_a->until(q("BANNED")).last(), q("BANNED|Dibanned oleh YB4D"));
    QVERIFY(m_b->until(q("JOIN_OK")).last().startsWith(q("JOIN_OK|Lobby|")));
    QCOMPARE(m_a->login(q("YB1A")), q("LOGIN_FAILED|Akun dibanned"));
    restart();
    auto again = m_rig->client();
    QCOMPARE(again->login(q("YB1A")), q("LOGIN_FAILED|Akun dibanned"));
}

void ServerAdminTest::moveTakesAlong()
{
    QCOMPARE(m_admin->answer(q("ADMIN_MOVE 1 Alpha"), q("ADMIN")), q("ADMIN_MOVE_OK"));
    const QStringList moved = m_a->until(q("MOVED")).last().split(QLatin1Char('|'));
    QCOMPARE(moved.mid(0, 3), QStringList({q("MOVED"), q("Alpha"), q("YB4D")}));
    QCOMPARE(QByteArray::fromBase64(moved.value(3).toLatin1()).size(), 32);
    QCOMPARE(m_a->until(q("USER_LIST")).last(), q("USER_LIST|Alpha|1|YB1A|Op YB1A|RX|1|0"));
    QVERIFY2(m_b->until(q("JOIN_OK")).last().startsWith(q("JOIN_OK|Lobby|")), "who stays gets a new key");
    QCOMPARE(m_admin->answer(q("ADMIN_MOVE 1 \"Lobby\""), q("ADMIN")), q("ADMIN_MOVE_OK"));
    QVERIFY(m_a->until(q("MOVED")).last().startsWith(q("MOVED|Lobby|YB4D|")));
    QCOMPARE(m_admin->answer(q("ADMIN_MOVE 1 Nowhere"), q("ERROR")), q("ERROR|Room tidak ditemukan"));
    QCOMPARE(m_admin->answer(q("ADMIN_MOVE 3 Alpha"), q("ERROR")), q("ERROR|User tidak online"));
}

void ServerAdminTest::muteEndsAnOver()
{
    QCOMPARE(m_a->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
    m_admin->send(q("ADMIN_MUTE 1 1"));
    QCOMPARE(m_a->until(q("MUTED")).last(), q("MUTED|1|oleh YB4D"));
    QCOMPARE(m_a->until(q("USER_LIST")).last(), q("USER_LIST|Lobby|1,2|YB1A,YB2B|Op YB1A,Op YB2B|RX,RX|1,1|1,0"));
    QCOMPARE(m_a->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_FAILED|Anda di-mute oleh admin"));
    m_admin->send(q("ADMIN_MUTE 1 0"));
    QCOMPARE(m_a->until(q("MUTED")).last(), q("MUTED|0|oleh YB4D"));
    QCOMPARE(m_a->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
}

void ServerAdminTest::muteOutlivesTheConnection()
{
    m_admin->send(q("ADMIN_MUTE 1 1"));
    QCOMPARE(m_a->until(q("MUTED")).last(), q("MUTED|1|oleh YB4D"));
    restart();
    m_a = m_rig->client();
    QVERIFY(m_a->login(q("YB1A")).startsWith(q("LOGIN_OK")));
    QCOMPARE(m_a->until(q("MUTED")).last(), q("MUTED|1|oleh admin"));
    QVERIFY(m_a->answer(q("JOIN Lobby"), q("USER_LIST")).endsWith(q("|1|1")));
    QCOMPARE(m_a->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_FAILED|Anda di-mute oleh admin"));
    m_a.reset();
    m_admin->send(q("ADMIN_MUTE 1 0")); // he need not be there
    QVERIFY(!m_admin->answer(q("PING"), q("PONG")).isEmpty());
    QVERIFY(!m_rig->store().account(1)->muted);
}

void ServerAdminTest::approval()
{
    QCOMPARE(m_a->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
    QCOMPARE(m_admin->answer(q("ADMIN_UNAPPROVE_USER 1"), q("ADMIN")), q("ADMIN_UNAPPROVE_USER_OK"));
    QVERIFY(!m_b->until(q("USER_LIST|Lobby|1,2|YB1A,YB2B|Op YB1A,Op YB2B|RX,RX|0,1|0,0")).isEmpty());
    QCOMPARE(m_a->answer(q("TX_START \"Lobby\""), q("TX_START_F")), q("TX_START_FAILED|Akun belum disetujui"));
    QVERIFY(!m_rig->store().account(1)->approved);
    QCOMPARE(m_admin->answer(q("ADMIN_APPROVE_USER 1"), q("ADMIN")), q("ADMIN_APPROVE_USER_OK"));
    QVERIFY(!m_a->until(q("USER_LIST|Lobby|1,2|YB1A,YB2B|Op YB1A,Op YB2B|RX,RX|1,1|0,0")).isEmpty());
    QVERIFY(m_rig->store().account(1)->approved);
    QCOMPARE(m_a->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
    m_rig->change(q("YB3C"), [](Account &account) {
        account.approved = false;
        account.status = q("pending");
    });
    QCOMPARE(m_admin->answer(q("ADMIN_APPROVE_USER 3"), q("ADMIN")), q("ADMIN_APPROVE_USER_OK"));
    QCOMPARE(m_rig->store().account(3)->status, q("active"));
}

void ServerAdminTest::passwordAndDeletion()
{
    QCOMPARE(m_admin->answer(q("ADMIN_RESET_PASSWORD 3 \"new one\""), q("ERROR")),
             q("ERROR|Password tidak boleh berisi spasi atau tanda kutip")); // nobody could log in with it
    QCOMPARE(m_admin->answer(q("ADMIN_RESET_PASSWORD 3 \"\""), q("ERROR")), q("ERROR|Password tidak boleh kosong"));
    QCOMPARE(m_admin->answer(q("ADMIN_RESET_PASSWORD 3 \"new1\""), q("ADMIN")), q("ADMIN_RESET_PASSWORD_OK|YB3C"));
    auto client = m_rig->client();
    QCOMPARE(client->login(q("YB3C")), q("LOGIN_FAILED|Password salah"));
    QVERIFY(client->login(q("YB3C"), q("new1")).startsWith(q("LOGIN_OK")));
    QCOMPARE(m_admin->answer(q("ADMIN_DELETE_USER 1"), q("ADMIN")), q("ADMIN_DELETE_USER_OK"));
    QVERIFY(m_a->until(q("KICKED")).last().startsWith(q("KICKED|Akun dihapus")));
    QCOMPARE(m_a->login(q("YB1A")), q("LOGIN_FAILED|Callsign tidak terdaftar"));
}

void ServerAdminTest::editsAnyRecord()
{
    QCOMPARE(m_admin->answer(q("ADMIN_UPDATE_USER 1 \"Ani\" \"YB1X\" \"suspended\" \"Bukit\" \"145.5\" \"Loc\" "
                               "\"a@b\" \"0812\" 1 1 \"2099-01-01\""),
                             q("ADMIN")),
             q("ADMIN_UPDATE_USER_OK"));
    const Account account = *m_rig->store().account(1);
    QCOMPARE(account.name, q("Ani"));
    QCOMPARE(account.responsibleCallsign, q("YB1X"));
    QCOMPARE(account.status, q("suspended"));
    QCOMPARE(account.gatewayName, q("Bukit"));
    QCOMPARE(account.frequency, q("145.5"));
    QCOMPARE(account.location, q("Loc"));
    QCOMPARE(account.email, q("a@b"));
    QCOMPARE(account.whatsapp, q("0812"));
    QCOMPARE(account.expiry, q("2099-01-01"));
    QVERIFY(account.admin && account.approved);
    // An account that is to wait for its approval has none.
    QCOMPARE(m_admin->answer(q("ADMIN_UPDATE_USER 2 \"Budi\" \"\" \"pending\" \"\" \"\" \"\" \"\" \"\" 1 0 \"\""),
                             q("ADMIN")),
             q("ADMIN_UPDATE_USER_OK"));
    QVERIFY(!m_rig->store().account(2)->approved);
    QCOMPARE(m_b->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_FAILED|Akun belum disetujui"));
    QVERIFY(m_admin->answer(q("ADMIN_PENDING"), q("ADMIN_PENDING")).contains(q("YB2B")));
}

void ServerAdminTest::editTurnsOutAtOnce_data()
{
    QTest::addColumn<QString>("status");
    QTest::addColumn<QString>("told");
    QTest::addColumn<QString>("login");
    QTest::newRow("banned") << q("banned") << q("BANNED|Dibanned oleh YB4D") << q("LOGIN_FAILED|Akun dibanned");
    QTest::newRow("suspended") << q("suspended") << q("KICKED|Akun disuspend oleh YB4D")
                               << q("LOGIN_FAILED|Akun disuspend");
}

void ServerAdminTest::editTurnsOutAtOnce()
{
    QFETCH(QString, status);
    QFETCH(QString, told);
    QFETCH(QString, login);
    const QString before = m_b->answer(q("JOIN Lobby"), q("JOIN_OK"));
    QCOMPARE(
        m_admin->answer(q("ADMIN_UPDATE_USER 1 \"a\" \"b\" \"%1\" \"c\" \"d\" \"e\" \"f\" \"g\" 1 0 \"\"").arg(status),
                        q("ADMIN")),
        q("ADMIN_UPDATE_USER_OK"));
    QCOMPARE(m_a->until(told).last(), told);
    QCOMPARE(m_a->answer(q("ROOMS"), q("ERROR")), q("ERROR|Belum login"));
    QVERIFY2(m_b->until(q("JOIN_OK")).last() != before, "who stays gets a new key");
    QCOMPARE(m_a->login(q("YB1A")), login);
}

void ServerAdminTest::editReachesTheRoom()
{
    QCOMPARE(
        m_admin->answer(q("ADMIN_UPDATE_USER 1 \"Ani\" \"\" \"active\" \"\" \"\" \"\" \"\" \"\" 0 1 \"\""), q("ADMIN")),
        q("ADMIN_UPDATE_USER_OK"));
    const QString list = q("USER_LIST|Lobby|1,2|YB1A,YB2B|Ani,Op YB2B|RX,RX|0,1|0,0");
    QCOMPARE(m_b->until(list).last(), list);
    QVERIFY(!m_b->until(q("SERVER_INFO")).filter(q("\"online_admins\":2")).isEmpty());
}

void ServerAdminTest::deviceResetIsKept()
{
    QCOMPARE(m_rig->store().account(1)->hwid, q("pc"));
    QCOMPARE(m_admin->answer(q("ADMIN_RESET_HWID 1"), q("ADMIN")), q("ADMIN_RESET_HWID_OK|YB1A"));
    restart();
    m_a = m_rig->client();
    QVERIFY(m_a->login(q("YB1A"), q("secret"), q("laptop")).startsWith(q("LOGIN_OK")));
    QCOMPARE(m_rig->store().account(1)->hwid, q("laptop"));
}

void ServerAdminTest::requestsWaitForAnAdministrator()
{
    m_admin.reset();
    QCOMPARE(m_a->answer(q("USER_REQUEST_HWID_RESET \"YB1A\""), q("USER_REQ")), q("USER_REQUEST_HWID_RESET_OK"));
    restart();
    const QString request = q("ADMIN_NOTIFICATION|HWID_RESET_REQUEST|YB1A|1");
    QCOMPARE(m_admin->until(q("ADMIN_NOTIFICATION")).last(), request);
    QCOMPARE(m_admin->answer(q("ADMIN_RESET_HWID 1"), q("ADMIN_RESET")), q("ADMIN_RESET_HWID_OK|YB1A"));
    restart();
    QVERIFY2(!m_admin->until(q("SERVER_INFO")).contains(request), "it was granted");
}

void ServerAdminTest::roomsAndTheirOrder()
{
    QCOMPARE(m_admin->answer(q("ADMIN_CREATE_ROOM \"Ruang Dua\" 10"), q("ADMIN")), q("ADMIN_CREATE_ROOM_OK|Ruang Dua"));
    QCOMPARE(m_a->until(q("ROOMS")).last(), q("ROOMS|Lobby,Alpha,Ruang Dua"));
    QCOMPARE(m_admin->answer(q("ADMIN_CREATE_ROOM \"Alpha\" 10"), q("ERROR")), q("ERROR|Room sudah ada"));
    QCOMPARE(m_admin->answer(q("ADMIN_SET_ROOM_ORDER Ruang Dua|Lobby"), q("ADMIN")), q("ADMIN_SET_ROOM_ORDER_OK"));
    QCOMPARE(m_a->until(q("ROOMS")).last(), q("ROOMS|Ruang Dua,Lobby,Alpha"));
    QCOMPARE(m_admin->answer(q("ADMIN_DELETE_ROOM \"Lobby\""), q("ADMIN")), q("ADMIN_DELETE_ROOM_OK|Lobby"));
    QVERIFY(m_a->until(q("MOVED")).last().startsWith(q("MOVED|Ruang Dua|YB4D|")));
    QCOMPARE(m_a->until(q("ROOMS")).last(), q("ROOMS|Ruang Dua,Alpha"));
    QCOMPARE(m_a->answer(q("JOIN Lobby"), q("JOIN")), q("JOIN_FAILED|Room tidak ditemukan"));
    QStringList stored;
    for (const StoredRoom &room : m_rig->store().rooms())
        stored.append(room.name);
    QCOMPARE(stored, QStringList({q("Ruang Dua"), q("Alpha")}));
    QCOMPARE(m_rig->store().rooms().first().maximum, 10);
    restart();
    QCOMPARE(m_admin->answer(q("ROOMS"), q("ROOMS")), q("ROOMS|Ruang Dua,Alpha"));
}

void ServerAdminTest::roomOrderTakesWhatThereIs()
{
    QCOMPARE(m_admin->answer(q("ADMIN_SET_ROOM_ORDER Alpha|Nowhere|Alpha|"), q("ADMIN")), q("ADMIN_SET_ROOM_ORDER_OK"));
    QCOMPARE(m_a->until(q("ROOMS")).last(), q("ROOMS|Alpha,Lobby"));
    for (const char *names : {"", "Nowhere", "|||"})
        QCOMPARE(m_admin->answer(q("ADMIN_SET_ROOM_ORDER ") + q(names), q("ERROR")),
                 q("ERROR|Urutan room tidak dapat disimpan"));
    restart();
    QCOMPARE(m_admin->answer(q("ROOMS"), q("ROOMS")), q("ROOMS|Alpha,Lobby"));
}

void ServerAdminTest::editedRoom()
{
    QCOMPARE(m_a->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
    QCOMPARE(m_admin->answer(q("ADMIN_EDIT_ROOM \"Lobby\" \"Aula\" 2 \"\""), q("ADMIN")), q("ADMIN_EDIT_ROOM_OK|Aula"));
    QVERIFY(m_a->until(q("JOIN_OK")).last().startsWith(q("JOIN_OK|Aula|"))); // the members go along
    QCOMPARE(m_a->until(q("USER_LIST")).last(), q("USER_LIST|Aula|1,2|YB1A,YB2B|Op YB1A,Op YB2B|RX,RX|1,1|0,0"));
    QCOMPARE(m_b->until(q("ROOMS")).last(), q("ROOMS|Aula,Alpha"));
    QCOMPARE(m_admin->answer(q("JOIN Aula"), q("JOIN")), q("JOIN_FAILED|Room penuh"));
    QCOMPARE(m_rig->store().rooms().first().name, q("Aula"));
    QCOMPARE(m_rig->store().rooms().first().maximum, 2);
}

void ServerAdminTest::qualityReachesEverybody()
{
    QCOMPARE(m_admin->answer(q("ADMIN_SET_AUDIO_QUALITY low"), q("ADMIN")), q("ADMIN_SET_AUDIO_QUALITY_OK|low"));
    QCOMPARE(m_a->until(q("AUDIO_QUALITY")).last(), q("AUDIO_QUALITY|low|16000|24000|20|5"));
    QCOMPARE(m_admin->answer(q("ADMIN_GET_AUDIO_QUALITY"), q("AUDIO_QUALITY|low")),
             q("AUDIO_QUALITY|low|16000|24000|20|5"));
    QCOMPARE(m_admin->answer(q("ADMIN_SET_AUDIO_QUALITY louder"), q("ERROR")), q("ERROR|Preset tidak dikenal"));
    m_rig->restart();
    auto client = m_rig->client();
    QVERIFY(client->login(q("YB3C")).startsWith(q("LOGIN_OK")));
    QCOMPARE(client->answer(q("GET_AUDIO_QUALITY"), q("AUDIO")), q("AUDIO_QUALITY|low|16000|24000|20|5"));
}

void ServerAdminTest::lists()
{
    m_rig->change(q("YB3C"), [](Account &account) { account.approved = false; });
    const QString all = m_admin->answer(q("ADMIN_GET_ALL_USERS"), q("ADMIN_ALL_USERS|"));
    QCOMPARE(QJsonDocument::fromJson(all.mid(16).toUtf8()).array().size(), 4);
    QVERIFY(!all.contains(q("argon2")));
    const QString pending = m_admin->answer(q("ADMIN_PENDING"), q("ADMIN_PENDING|"));
    QCOMPARE(QJsonDocument::fromJson(pending.mid(14).toUtf8()).array().size(), 1);
}

void ServerAdminTest::waitingForApproval_data()
{
    QTest::addColumn<QString>("status");
    QTest::addColumn<bool>("waits");
    QTest::newRow("pending") << q("pending") << true;
    QTest::newRow("active") << q("active") << true;
    QTest::newRow("suspended") << q("suspended") << false;
    QTest::newRow("banned") << q("banned") << false;
}

void ServerAdminTest::waitingForApproval()
{
    QFETCH(QString, status);
    QFETCH(bool, waits);
    m_rig->change(q("YB3C"), [&status](Account &account) {
        account.approved = false;
        account.status = status;
    });
    QCOMPARE(m_admin->answer(q("ADMIN_PENDING"), q("ADMIN_PENDING|")).contains(q("YB3C")), waits);
}

/// The lists of a large club are longer than what an ordinary client may leave unread.
void ServerAdminTest::longListsAreNoOverload()
{
    constexpr int kAccounts = 100;
    for (int i = 0; i < kAccounts; ++i) {
        Account account;
        account.callsign = QStringLiteral("YC%1").arg(i);
        account.passwordHash = "none";
        account.location = QString(60000, QLatin1Char('x'));
        QVERIFY(m_rig->store().add(&account));
    }
    m_admin->sendRaw("ADMIN_GET_ALL_USERS\r\nADMIN_PENDING\r\nROOMS\r\n");
    const QStringList lines = m_admin->until(q("ROOMS|"));
    QVERIFY(m_admin->isConnected());
    QCOMPARE(lines.filter(q("ADMIN_ALL_USERS|")).size(), 1);
    QVERIFY(lines.filter(q("ADMIN_ALL_USERS|")).first().size() > kAccounts * 60000);
    QCOMPARE(lines.last(), q("ROOMS|Lobby,Alpha"));
}

/// Whoever was an administrator when he logged in need not be one any more.
void ServerAdminTest::rightsFollowTheRecord()
{
    const QString edit = q("ADMIN_UPDATE_USER 1 \"a\" \"b\" \"active\" \"c\" \"d\" \"e\" \"f\" \"g\" 1 %1 \"\"");
    QCOMPARE(m_admin->answer(edit.arg(1), q("ADMIN")), q("ADMIN_UPDATE_USER_OK"));
    QVERIFY(m_a->answer(q("ADMIN_PENDING"), q("ADMIN_PENDING")).startsWith(q("ADMIN_PENDING|")));
    QCOMPARE(m_admin->answer(edit.arg(0), q("ADMIN_UPDATE")), q("ADMIN_UPDATE_USER_OK"));
    QCOMPARE(m_a->answer(q("ADMIN_PENDING"), q("ERROR")), q("ERROR|Hanya untuk administrator"));
}

EVOX_TEST_MAIN(ServerAdminTest, QCoreApplication)
#include "tst_serveradmin.moc"
