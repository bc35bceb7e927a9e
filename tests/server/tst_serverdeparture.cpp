#include "net/TcpClient.h"
#include "server/ServerRig.h"
#include "support/TestMain.h"

/// Whoever leaves a room, of his own accord or not: his radio must not stay keyed for a talker whom he hears no more.
class ServerDepartureTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void whoLeavesSeesTheRoomEmpty_data();
    void whoLeavesSeesTheRoomEmpty();
    void clientSeesTheRoomEmptyBeforeTheKick();
    void deletedRoomMovesItsMembers();
    void clientGoesAlongWhenItsRoomIsDeleted();
    void fullRoomsArePassedOver();
    void fullRoomsTakeWhoHasNoOther();
    void lastRoomStays();

private:
    [[nodiscard]] QString deleteRoom(const QString &name);
    void limitRoom(const char *name, int maximum);

    std::unique_ptr<ServerRig> m_rig;
    std::unique_ptr<RawClient> m_admin;
    std::unique_ptr<RawClient> m_a;
    std::unique_ptr<RawClient> m_talker;
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

const QString kTalking = QStringLiteral("USER_LIST|Lobby|1,2|YB1A,YB2B|Op YB1A,Op YB2B|RX,TX|1,1|0,0");
const QString kEmpty = QStringLiteral("USER_LIST|Lobby||||||");

/// The client program's own connection, logged in and in the room; what it is told, in order.
class Gateway final
{
public:
    Gateway(const ControlServer &server, const QString &callsign)
    {
        QObject::connect(&m_client, &TcpClient::connected, &m_client,
                         [this, callsign] { m_client.login(callsign, q("secret"), q("gateway")); });
        QObject::connect(&m_client, &TcpClient::loginResult, &m_client, [this] { m_client.joinRoom(q("Lobby")); });
        QObject::connect(&m_client, &TcpClient::joinRoomResult, &m_client,
                         [this](bool success, const QString &room) { told += (success ? q("in ") : q("no ")) + room; });
        QObject::connect(&m_client, &TcpClient::roomUsersReceived, &m_client, [this](const QList<QVariantMap> &users) {
            told += q("users %1").arg(users.size());
            for (const QVariantMap &user : users)
                told.last() += user.value(q("is_transmitting")).toBool() ? q(" TX") : q(" RX");
        });
        QObject::connect(&m_client, &TcpClient::kicked, &m_client, [this] { told += q("kicked"); });
        m_client.connectToServer(q("127.0.0.1"), server.port());
    }

    QStringList told;

private:
    TcpClient m_client;
};

} // namespace

void ServerDepartureTest::init()
{
    m_rig = std::make_unique<ServerRig>();
    m_admin = m_rig->client();
    QVERIFY(m_admin->login(q("YB4D")).startsWith(q("LOGIN_OK")));
    m_a = m_rig->client();
    QVERIFY(m_a->enter(q("YB1A")));
    m_talker = m_rig->client();
    QVERIFY(m_talker->enter(q("YB2B")));
    QCOMPARE(m_talker->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
    QCOMPARE(m_a->until(kTalking).last(), kTalking);
}

void ServerDepartureTest::cleanup()
{
    m_a.reset();
    m_talker.reset();
    m_admin.reset();
    m_rig.reset();
}

QString ServerDepartureTest::deleteRoom(const QString &name)
{
    return m_admin->answer(QStringLiteral("ADMIN_DELETE_ROOM \"%1\"").arg(name), q("ADMIN_DELETE_ROOM_OK"));
}

void ServerDepartureTest::limitRoom(const char *name, int maximum)
{
    const QString command = QStringLiteral("ADMIN_EDIT_ROOM \"%1\" \"%1\" %2 \"\"").arg(q(name)).arg(maximum);
    QCOMPARE(m_admin->answer(command, q("ADMIN_EDIT")), q("ADMIN_EDIT_ROOM_OK|") + q(name));
}

void ServerDepartureTest::whoLeavesSeesTheRoomEmpty_data()
{
    QTest::addColumn<QString>("byAdmin");
    QTest::addColumn<QString>("byHimself");
    QTest::addColumn<QString>("told");
    const QString edit = q("ADMIN_UPDATE_USER 1 \"a\" \"b\" \"%1\" \"c\" \"d\" \"e\" \"f\" \"g\" 1 0 \"\"");
    QTest::newRow("kicked") << q("ADMIN_KICK 1") << QString() << q("KICKED");
    QTest::newRow("banned") << q("ADMIN_BAN 1") << QString() << q("BANNED");
    QTest::newRow("suspended") << edit.arg(q("suspended")) << QString() << q("KICKED");
    QTest::newRow("banned by an edit") << edit.arg(q("banned")) << QString() << q("BANNED");
    QTest::newRow("deleted") << q("ADMIN_DELETE_USER 1") << QString() << q("KICKED");
    QTest::newRow("leaves") << QString() << q("LEAVE") << q("LEAVE_OK");
    QTest::newRow("logs in anew") << QString() << q("LOGIN YB1A secret pc") << q("LOGIN_OK");
}

void ServerDepartureTest::whoLeavesSeesTheRoomEmpty()
{
    QFETCH(QString, byAdmin);
    QFETCH(QString, byHimself);
    QFETCH(QString, told);
    byAdmin.isEmpty() ? m_a->send(byHimself) : m_admin->send(byAdmin);
    const QStringList lines = m_a->until(told);
    QVERIFY(lines.last().startsWith(told));
    const QStringList lists = lines.filter(q("USER_LIST|"));
    QVERIFY2(!lists.isEmpty(), "no list before it");
    QCOMPARE(lists.last(), kEmpty);
}

void ServerDepartureTest::clientSeesTheRoomEmptyBeforeTheKick()
{
    Gateway gateway(m_rig->server(), q("YB3C"));
    QTRY_VERIFY(gateway.told.contains(q("users 3 RX TX RX")));
    gateway.told.clear();
    m_admin->send(q("ADMIN_KICK 3"));
    QTRY_COMPARE(gateway.told, QStringList({q("users 0"), q("kicked")}));
}

void ServerDepartureTest::deletedRoomMovesItsMembers()
{
    QCOMPARE(deleteRoom(q("Lobby")), q("ADMIN_DELETE_ROOM_OK|Lobby"));
    const QString list = q("USER_LIST|Alpha|1,2|YB1A,YB2B|Op YB1A,Op YB2B|RX,RX|1,1|0,0");
    const QStringList lines = m_a->until(list);
    QCOMPARE(lines.last(), list);
    const QStringList moved = lines.filter(q("MOVED|")).value(0).split(QLatin1Char('|'));
    QCOMPARE(moved.mid(0, 3), QStringList({q("MOVED"), q("Alpha"), q("YB4D")}));
    QCOMPARE(QByteArray::fromBase64(moved.value(3).toLatin1()).size(), 32);
    QVERIFY(!lines.contains(q("LEAVE_OK")));
    QCOMPARE(m_a->until(q("ROOMS|")).last(), q("ROOMS|Alpha"));
    QCOMPARE(m_talker->answer(q("TX_START \"Lobby\""), q("TX_START")),
             q("TX_START_FAILED|Anda tidak berada di room ini"));
    QCOMPARE(m_talker->answer(q("TX_START \"Alpha\""), q("TX_START")), q("TX_START_OK"));
    m_talker->sendUdpSilently(QByteArray(4, '\0') + "over");
    QVERIFY2(m_a->nextDatagram().endsWith("over"), "the audio goes along");
}

void ServerDepartureTest::clientGoesAlongWhenItsRoomIsDeleted()
{
    Gateway gateway(m_rig->server(), q("YB3C"));
    QTRY_VERIFY(gateway.told.contains(q("users 3 RX TX RX")));
    gateway.told.clear();
    QCOMPARE(deleteRoom(q("Lobby")), q("ADMIN_DELETE_ROOM_OK|Lobby"));
    QTRY_COMPARE(gateway.told, QStringList({q("in Alpha"), q("users 3 RX RX RX")}));
}

void ServerDepartureTest::fullRoomsArePassedOver()
{
    limitRoom("Alpha", 1);
    QCOMPARE(m_admin->answer(q("ADMIN_CREATE_ROOM \"Bravo\" 2"), q("ADMIN_CREATE")), q("ADMIN_CREATE_ROOM_OK|Bravo"));
    auto third = m_rig->client();
    QVERIFY(third->enter(q("YB3C"), q("Alpha")));
    QCOMPARE(deleteRoom(q("Lobby")), q("ADMIN_DELETE_ROOM_OK|Lobby"));
    QVERIFY(m_a->until(q("MOVED")).last().startsWith(q("MOVED|Bravo|YB4D|")));
    QVERIFY(m_talker->until(q("MOVED")).last().startsWith(q("MOVED|Bravo|YB4D|")));
}

void ServerDepartureTest::fullRoomsTakeWhoHasNoOther()
{
    limitRoom("Alpha", 1);
    Gateway third(m_rig->server(), q("YB3C"));
    QTRY_VERIFY(third.told.contains(q("users 3 RX TX RX")));
    third.told.clear();
    QCOMPARE(deleteRoom(q("Lobby")), q("ADMIN_DELETE_ROOM_OK|Lobby"));
    QTRY_COMPARE(third.told, QStringList({q("in Alpha"), q("users 3 RX RX RX")}));
    QVERIFY(m_talker->until(q("MOVED")).last().startsWith(q("MOVED|Alpha|YB4D|")));
    QCOMPARE(m_admin->answer(q("JOIN Alpha"), q("JOIN")), q("JOIN_FAILED|Room penuh"));
}

void ServerDepartureTest::lastRoomStays()
{
    QCOMPARE(deleteRoom(q("Alpha")), q("ADMIN_DELETE_ROOM_OK|Alpha"));
    QCOMPARE(m_admin->answer(q("ADMIN_DELETE_ROOM \"Lobby\""), q("ERROR")),
             q("ERROR|Room terakhir tidak dapat dihapus"));
    QCOMPARE(m_admin->answer(q("ROOMS"), q("ROOMS")), q("ROOMS|Lobby"));
    QCOMPARE(m_talker->answer(q("TX_STOP \"Lobby\""), q("TX_STOP")), q("TX_STOP_OK"));
    QCOMPARE(m_rig->store().rooms().size(), 1);
}

EVOX_TEST_MAIN(ServerDepartureTest, QCoreApplication)
#include "tst_serverdeparture.moc"
