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
    void approval();
    void passwordAndDeletion();
    void editsAnyRecord();
    void roomsAndTheirOrder();
    void qualityReachesEverybody();
    void lists();
    void unknownUsers();

private:
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
}

void ServerAdminTest::moveTakesAlong()
{
    QCOMPARE(m_admin->answer(q("ADMIN_MOVE 1 Alpha"), q("ADMIN")), q("ADMIN_MOVE_OK"));
    const QStringList moved = m_a->until(q("MOVED")).last().split(QLatin1Char('|'));
    QCOMPARE(moved.mid(0, 3), QStringList({q("MOVED"), q("Alpha"), q("YB4D")}));
    QCOMPARE(QByteArray::fromBase64(moved.value(3).toLatin1()).size(), 32);
    QCOMPARE(m_a->until(q("USER_LIST")).last(), q("USER_LIST|Alpha|1|YB1A|Op YB1A|RX|1|0"));
    QVERIFY2(m_b->until(q("JOIN_OK")).last().startsWith(q("JOIN_OK|Lobby|")), "who stays gets a new key");
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

void ServerAdminTest::approval()
{
    QCOMPARE(m_a->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
    QCOMPARE(m_admin->answer(q("ADMIN_UNAPPROVE_USER 1"), q("ADMIN")), q("ADMIN_UNAPPROVE_USER_OK"));
    QVERIFY(!m_b->until(q("USER_LIST|Lobby|1,2|YB1A,YB2B|Op YB1A,Op YB2B|RX,RX|0,1|0,0")).isEmpty());
    QCOMPARE(m_a->answer(q("TX_START \"Lobby\""), q("TX_START_F")), q("TX_START_FAILED|Akun belum disetujui"));
    QCOMPARE(m_admin->answer(q("ADMIN_APPROVE_USER 1"), q("ADMIN")), q("ADMIN_APPROVE_USER_OK"));
    QCOMPARE(m_a->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
}

void ServerAdminTest::passwordAndDeletion()
{
    QCOMPARE(m_admin->answer(q("ADMIN_RESET_PASSWORD 3 \"new one\""), q("ADMIN")), q("ADMIN_RESET_PASSWORD_OK|YB3C"));
    auto client = m_rig->client();
    QCOMPARE(client->login(q("YB3C")), q("LOGIN_FAILED|Password salah"));
    QCOMPARE(m_admin->answer(q("ADMIN_DELETE_USER 1"), q("ADMIN")), q("ADMIN_DELETE_USER_OK"));
    QVERIFY(m_a->until(q("KICKED")).last().startsWith(q("KICKED|Akun dihapus")));
    QCOMPARE(m_a->login(q("YB1A")), q("LOGIN_FAILED|Callsign tidak terdaftar"));
}

void ServerAdminTest::editsAnyRecord()
{
    QCOMPARE(m_admin->answer(q("ADMIN_UPDATE_USER 1 \"Ani\" \"YB1X\" \"suspended\" \"Bukit\" \"145.5\" \"Loc\" "
                               "\"a@b\" \"0812\" 1 1 \"2030-01-01\""),
                             q("ADMIN")),
             q("ADMIN_UPDATE_USER_OK"));
    const Account account = *m_rig->store().account(1);
    QCOMPARE(account.name, q("Ani"));
    QCOMPARE(account.status, q("suspended"));
    QCOMPARE(account.gatewayName, q("Bukit"));
    QCOMPARE(account.expiry, q("2030-01-01"));
    QVERIFY(account.admin && account.approved);
}

void ServerAdminTest::roomsAndTheirOrder()
{
    QCOMPARE(m_admin->answer(q("ADMIN_CREATE_ROOM \"Ruang Dua\" 10"), q("ADMIN")), q("ADMIN_CREATE_ROOM_OK|Ruang Dua"));
    QCOMPARE(m_a->until(q("ROOMS")).last(), q("ROOMS|Lobby,Alpha,Ruang Dua"));
    QCOMPARE(m_admin->answer(q("ADMIN_CREATE_ROOM \"Alpha\" 10"), q("ERROR")), q("ERROR|Room sudah ada"));
    QCOMPARE(m_admin->answer(q("ADMIN_SET_ROOM_ORDER Ruang Dua|Lobby"), q("ADMIN")), q("ADMIN_SET_ROOM_ORDER_OK"));
    QCOMPARE(m_a->until(q("ROOMS")).last(), q("ROOMS|Ruang Dua,Lobby,Alpha"));
    QCOMPARE(m_admin->answer(q("ADMIN_DELETE_ROOM \"Lobby\""), q("ADMIN")), q("ADMIN_DELETE_ROOM_OK|Lobby"));
    QCOMPARE(m_a->until(q("LEAVE_OK")).last(), q("LEAVE_OK"));
    QCOMPARE(m_a->until(q("ROOMS")).last(), q("ROOMS|Ruang Dua,Alpha"));
    QCOMPARE(m_a->answer(q("JOIN Lobby"), q("JOIN")), q("JOIN_FAILED|Room tidak ditemukan"));
}

void ServerAdminTest::qualityReachesEverybody()
{
    QCOMPARE(m_admin->answer(q("ADMIN_SET_AUDIO_QUALITY low"), q("ADMIN")), q("ADMIN_SET_AUDIO_QUALITY_OK|low"));
    QCOMPARE(m_a->until(q("AUDIO_QUALITY")).last(), q("AUDIO_QUALITY|low|16000|24000|20|5"));
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

void ServerAdminTest::unknownUsers()
{
    for (const char *command : {"ADMIN_BAN 99", "ADMIN_APPROVE_USER x", "ADMIN_RESET_HWID", "ADMIN_DELETE_USER -1",
                                "ADMIN_RESET_PASSWORD 99 \"x\"", "ADMIN_UPDATE_USER 99"})
        QCOMPARE(m_admin->answer(q(command), q("ERROR")), q("ERROR|User tidak ditemukan"));
}

EVOX_TEST_MAIN(ServerAdminTest, QCoreApplication)
#include "tst_serveradmin.moc"
