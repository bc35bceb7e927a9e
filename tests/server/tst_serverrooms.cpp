#include "server/ServerRig.h"
#include "support/TestMain.h"

class ServerRoomsTest final : public QObject
{
    Q_OBJECT

private slots:
    void joinsAndLeaves();
    void refusedJoins();
    void keyIsOneForAllAndDiffersByRoom();
    void oneTalkerAtATime();
    void refusedTransmissions_data();
    void refusedTransmissions();
    void talkLimit();
    void disconnectionReleasesTheTalk();
    void renamedRoomKeepsItsMembers_data();
    void renamedRoomKeepsItsMembers();
    void occupiedRoomOutlivesItsRow();
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

void ServerRoomsTest::joinsAndLeaves()
{
    ServerRig rig;
    auto a = rig.client();
    QVERIFY(a->enter(q("YB1A")));
    auto b = rig.client();
    QVERIFY(b->enter(q("YB2B")));
    QCOMPARE(a->until(q("USER_LIST")).last(), q("USER_LIST|Lobby|1,2|YB1A,YB2B|Op YB1A,Op YB2B|RX,RX|1,1|0,0"));
    QCOMPARE(b->answer(q("LEAVE"), q("LEAVE_OK")), q("LEAVE_OK"));
    QCOMPARE(a->until(q("USER_LIST")).last(), q("USER_LIST|Lobby|1|YB1A|Op YB1A|RX|1|0"));
    QCOMPARE(b->answer(q("LEAVE"), q("LEAVE_OK")), q("LEAVE_OK"));
}

void ServerRoomsTest::refusedJoins()
{
    ServerRig rig;
    auto a = rig.client();
    QVERIFY(a->enter(q("YB1A"), q("Alpha")));
    auto admin = rig.client();
    QVERIFY(admin->login(q("YB4D")).startsWith(q("LOGIN_OK")));
    QCOMPARE(admin->answer(q("JOIN Nowhere"), q("JOIN")), q("JOIN_FAILED|Room tidak ditemukan"));
    QCOMPARE(admin->answer(q("ADMIN_EDIT_ROOM \"Alpha\" \"Ruang Satu\" 1 \"\""), q("ADMIN")),
             q("ADMIN_EDIT_ROOM_OK|Ruang Satu"));
    QVERIFY(a->until(q("JOIN_OK")).last().startsWith(q("JOIN_OK|Ruang Satu|")));
    QCOMPARE(admin->answer(q("JOIN Ruang Satu"), q("JOIN")), q("JOIN_FAILED|Room penuh"));
}

void ServerRoomsTest::keyIsOneForAllAndDiffersByRoom()
{
    ServerRig rig;
    QStringList keys;
    for (const char *callsign : {"YB1A", "YB2B", "YB3C"}) {
        auto client = rig.client();
        QVERIFY(client->login(q(callsign)).startsWith(q("LOGIN_OK")));
        keys.append(client->answer(keys.size() < 2 ? q("JOIN Lobby") : q("JOIN Alpha"), q("JOIN_OK"))
                        .section(QLatin1Char('|'), 2, 2));
    }
    QCOMPARE(QByteArray::fromBase64(keys.first().toLatin1()).size(), 32);
    QCOMPARE(keys.at(0), keys.at(1));
    QVERIFY(keys.at(0) != keys.at(2));
}

void ServerRoomsTest::oneTalkerAtATime()
{
    ServerRig rig;
    auto a = rig.client();
    QVERIFY(a->enter(q("YB1A")));
    auto b = rig.client();
    QVERIFY(b->enter(q("YB2B")));
    QCOMPARE(a->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
    QVERIFY(b->until(q("USER_LIST")).last().contains(q("|TX,RX|")));
    QCOMPARE(b->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_FAILED|Kanal sedang dipakai oleh YB1A"));
    QCOMPARE(b->answer(q("TX_STOP \"Lobby\""), q("TX_STOP")), q("TX_STOP_OK"));
    QCOMPARE(a->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
    QCOMPARE(a->answer(q("TX_STOP \"Lobby\""), q("TX_STOP")), q("TX_STOP_OK"));
    QCOMPARE(b->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
}

void ServerRoomsTest::refusedTransmissions_data()
{
    QTest::addColumn<QString>("room");
    QTest::addColumn<bool>("approved");
    QTest::addColumn<QString>("reason");
    QTest::newRow("other room") << q("Alpha") << true << q("Anda tidak berada di room ini");
    QTest::newRow("not approved") << q("Lobby") << false << q("Akun belum disetujui");
}

void ServerRoomsTest::refusedTransmissions()
{
    QFETCH(QString, room);
    QFETCH(bool, approved);
    QFETCH(QString, reason);
    ServerRig rig;
    rig.change(q("YB1A"), [approved](Account &account) { account.approved = approved; });
    auto client = rig.client();
    QVERIFY(client->enter(q("YB1A")));
    QCOMPARE(client->answer(QStringLiteral("TX_START \"%1\"").arg(room), q("TX_START")),
             q("TX_START_FAILED|") + reason);
}

void ServerRoomsTest::talkLimit()
{
    ServerRig rig;
    auto client = rig.client();
    QVERIFY(client->enter(q("YB1A")));
    QCOMPARE(client->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
    rig.now += ControlServer::kTalkLimit - 1;
    rig.server().enforceTalkLimit();
    // Asking again while talking does not begin a new over.
    QCOMPARE(client->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
    rig.now += 1;
    rig.server().enforceTalkLimit();
    QCOMPARE(client->until(q("ERROR")).last(), q("ERROR|Batas waktu bicara tercapai"));
    QVERIFY(client->until(q("USER_LIST")).last().contains(q("|RX|")));
}

void ServerRoomsTest::disconnectionReleasesTheTalk()
{
    ServerRig rig;
    auto a = rig.client();
    QVERIFY(a->enter(q("YB1A")));
    auto b = rig.client();
    QVERIFY(b->enter(q("YB2B")));
    QCOMPARE(a->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
    QVERIFY(b->until(q("USER_LIST")).last().contains(q("|TX,RX|")));
    a.reset();
    QVERIFY(!b->until(q("USER_LIST|Lobby|2|YB2B|Op YB2B|RX")).isEmpty());
    QCOMPARE(b->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
}

void ServerRoomsTest::renamedRoomKeepsItsMembers_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("clean");
    const QString longest(199, QLatin1Char('x'));
    QTest::newRow("plain") << q("Aula") << q("Aula");
    QTest::newRow("cut at a pair") << longest + q("\xF0\x9F\x98\x80") << longest;
    QTest::newRow("no character") << q("Aula ") + QChar(0xFFFF) << q("Aula");
    QTest::newRow("byte order mark") << QChar(0xFEFF) + q("Aula") << q("Aula");
}

void ServerRoomsTest::renamedRoomKeepsItsMembers()
{
    QFETCH(QString, name);
    QFETCH(QString, clean);
    ServerRig rig;
    auto a = rig.client();
    QVERIFY(a->enter(q("YB1A")));
    auto admin = rig.client();
    QVERIFY(admin->login(q("YB4D")).startsWith(q("LOGIN_OK")));
    QCOMPARE(admin->answer(QStringLiteral("ADMIN_EDIT_ROOM \"Lobby\" \"%1\" 5 \"\"").arg(name), q("ADMIN_EDIT")),
             q("ADMIN_EDIT_ROOM_OK|") + clean);
    QCOMPARE(a->answer(QStringLiteral("TX_START \"%1\"").arg(clean), q("TX_START")), q("TX_START_OK"));
    QVERIFY(admin->answer(q("JOIN ") + clean, q("JOIN")).startsWith(q("JOIN_OK")));
    QCOMPARE(admin->until(q("USER_LIST")).last(),
             q("USER_LIST|") + clean + q("|1,4|YB1A,YB4D|Op YB1A,Op YB4D|TX,RX|1,1|0,0"));
    rig.restart();
    auto b = rig.client();
    QVERIFY(b->login(q("YB2B")).startsWith(q("LOGIN_OK")));
    QCOMPARE(b->answer(q("ROOMS"), q("ROOMS")), q("ROOMS|") + clean + q(",Alpha"));
}

/// Somebody works on the file by hand.
void ServerRoomsTest::occupiedRoomOutlivesItsRow()
{
    ServerRig rig;
    auto a = rig.client();
    QVERIFY(a->enter(q("YB1A")));
    auto admin = rig.client();
    QVERIFY(admin->login(q("YB4D")).startsWith(q("LOGIN_OK")));
    rig.execute(q("DELETE FROM rooms WHERE name = 'Lobby'"));
    QCOMPARE(admin->answer(q("ADMIN_CREATE_ROOM \"Bravo\" 5"), q("ADMIN_CREATE")), q("ADMIN_CREATE_ROOM_OK|Bravo"));
    QCOMPARE(admin->until(q("ROOMS|")).last(), q("ROOMS|Lobby,Alpha,Bravo"));
    QVERIFY(admin->answer(q("JOIN Lobby"), q("JOIN")).startsWith(q("JOIN_OK")));
    QCOMPARE(admin->until(q("USER_LIST")).last(), q("USER_LIST|Lobby|1,4|YB1A,YB4D|Op YB1A,Op YB4D|RX,RX|1,1|0,0"));
}

EVOX_TEST_MAIN(ServerRoomsTest, QCoreApplication)
#include "tst_serverrooms.moc"
