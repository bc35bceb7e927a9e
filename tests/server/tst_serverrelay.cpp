#include "net/UdpAudio.h"
#include "server/ServerRig.h"
#include "support/TestMain.h"

#include <QSignalSpy>

class ServerRelayTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void handshakeWords();
    void strangerIsNotKeptAlive();
    void clientComesBackAfterItsAddressWasLost();
    void talkerIsHeardUnderHisOwnId();
    void othersAreNotHeard_data();
    void othersAreNotHeard();
    void strangerIsNotHeard();
    void addressIsRelearnedByTheToken();
    void staleTokenBindsNothing();
    void oversizedDatagramIsDropped();

private:
    [[nodiscard]] bool talk(RawClient &client);

    std::unique_ptr<ServerRig> m_rig;
    std::unique_ptr<RawClient> m_a;
    std::unique_ptr<RawClient> m_b;
};

namespace {

const QByteArray kFrame = QByteArray::fromHex("7fffffff") + "frame";

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

void ServerRelayTest::init()
{
    m_rig = std::make_unique<ServerRig>();
    m_a = m_rig->client();
    QVERIFY(m_a->enter(q("YB1A")));
    m_b = m_rig->client();
    QVERIFY(m_b->enter(q("YB2B")));
}

void ServerRelayTest::cleanup()
{
    m_a.reset();
    m_b.reset();
    m_rig.reset();
}

bool ServerRelayTest::talk(RawClient &client)
{
    return client.answer(q("TX_START \"Lobby\""), q("TX_START")) == q("TX_START_OK");
}

void ServerRelayTest::handshakeWords()
{
    QCOMPARE(m_a->sendUdp("PING"), QByteArray("PONG"));
    QCOMPARE(m_a->sendUdp("KEEPALIVE"), QByteArray("KEEPALIVE_OK"));
    QCOMPARE(m_a->sendUdp("TOKEN:unknown"), QByteArray());
}

void ServerRelayTest::strangerIsNotKeptAlive()
{
    auto stranger = m_rig->client();
    stranger->sendUdpSilently("KEEPALIVE");
    QCOMPARE(stranger->sendUdp("PING"), QByteArray("PONG")); // answers keep their order
    m_a->send(q("QUIT"));
    QTRY_VERIFY(!m_a->isConnected());
    m_a->sendUdpSilently("KEEPALIVE");
    QCOMPARE(m_a->sendUdp("PING"), QByteArray("PONG"));
}

/// As when a router gives its connection another port: the client is not told, it only hears no answer any more.
void ServerRelayTest::clientComesBackAfterItsAddressWasLost()
{
    auto control = m_rig->client();
    const QString token = control->login(q("YB3C")).section(QLatin1Char('|'), 1, 1);
    QVERIFY(control->answer(q("JOIN Lobby"), q("JOIN_OK")).startsWith(q("JOIN_OK")));
    UdpAudio udp;
    qint64 now = 1;
    udp.setClock([&now] { return now; });
    QSignalSpy ready(&udp, &UdpAudio::udpReady);
    QSignalSpy audio(&udp, &UdpAudio::audioReceived);
    QVERIFY(udp.enableUdp(q("127.0.0.1"), m_rig->server().udpPort(), token));
    QTRY_COMPARE(ready.size(), 1);
    auto elsewhere = m_rig->client();
    QCOMPARE(elsewhere->sendUdp("TOKEN:" + token.toUtf8()), QByteArray("REGISTERED:3"));
    for (int i = 0; i < 2; ++i) {
        now += 25000;
        QMetaObject::invokeMethod(&udp, "checkHealth", Qt::DirectConnection);
        // By then an answer would have come, and after two rounds of the event loop be handled.
        QCOMPARE(elsewhere->sendUdp("PING"), QByteArray("PONG"));
        for (int round = 0; round < 5; ++round)
            QCoreApplication::processEvents();
    }
    QTRY_COMPARE(ready.size(), 2);
    QVERIFY(talk(*m_a));
    m_a->sendUdpSilently(kFrame);
    QTRY_COMPARE(audio.size(), 1);
}

void ServerRelayTest::talkerIsHeardUnderHisOwnId()
{
    QVERIFY(talk(*m_a));
    m_a->sendUdpSilently(kFrame);
    QCOMPARE(m_b->nextDatagram(), QByteArray::fromHex("00000001") + "frame");
    QCOMPARE(m_a->nextDatagram(), QByteArray());
    QCOMPARE(m_rig->server().udpPort() != 0, true);
}

void ServerRelayTest::othersAreNotHeard_data()
{
    QTest::addColumn<QString>("why");
    for (const char *why : {"no right", "muted", "not approved", "stopped", "other room", "kicked"})
        QTest::newRow(why) << q(why);
}

void ServerRelayTest::othersAreNotHeard()
{
    QFETCH(QString, why);
    auto admin = m_rig->client();
    QVERIFY(admin->login(q("YB4D")).startsWith(q("LOGIN_OK")));
    if (why != q("no right"))
        QVERIFY(talk(*m_a));
    if (why == q("muted"))
        QCOMPARE((admin->send(q("ADMIN_MUTE 1 1")), m_a->until(q("MUTED")).last()), q("MUTED|1|oleh YB4D"));
    if (why == q("not approved"))
        QVERIFY(!admin->answer(q("ADMIN_UNAPPROVE_USER 1"), q("ADMIN")).isEmpty());
    if (why == q("stopped"))
        QVERIFY(!m_a->answer(q("TX_STOP \"Lobby\""), q("TX_STOP")).isEmpty());
    if (why == q("other room"))
        QVERIFY(!m_a->answer(q("JOIN Alpha"), q("JOIN_OK")).isEmpty());
    if (why == q("kicked"))
        QVERIFY(!admin->answer(q("ADMIN_KICK 1"), q("ADMIN")).isEmpty());
    m_a->sendUdpSilently(kFrame);
    QCOMPARE(m_b->nextDatagram(), QByteArray());
}

void ServerRelayTest::strangerIsNotHeard()
{
    QVERIFY(talk(*m_a));
    auto stranger = m_rig->client();
    stranger->sendUdpSilently(QByteArray::fromHex("00000001") + "frame");
    QCOMPARE(m_b->nextDatagram(), QByteArray());
}

void ServerRelayTest::addressIsRelearnedByTheToken()
{
    auto fresh = m_rig->client();
    const QString token = fresh->login(q("YB3C")).section(QLatin1Char('|'), 1, 1);
    QVERIFY(fresh->answer(q("JOIN Lobby"), q("JOIN_OK")).startsWith(q("JOIN_OK")));
    QCOMPARE(fresh->sendUdp("TOKEN:" + token.toUtf8()), QByteArray("REGISTERED:3"));
    auto elsewhere = m_rig->client(); // the same member behind another address
    QCOMPARE(elsewhere->sendUdp("TOKEN:" + token.toUtf8() + ":3"), QByteArray("REGISTERED:3"));
    QVERIFY(talk(*m_a));
    m_a->sendUdpSilently(kFrame);
    QCOMPARE(elsewhere->nextDatagram(), QByteArray::fromHex("00000001") + "frame");
    QCOMPARE(fresh->nextDatagram(), QByteArray());
}

void ServerRelayTest::staleTokenBindsNothing()
{
    auto client = m_rig->client();
    const QByteArray token = client->login(q("YB3C")).section(QLatin1Char('|'), 1, 1).toUtf8();
    QVERIFY(client->login(q("YB3C")).startsWith(q("LOGIN_OK")));
    QCOMPARE(client->sendUdp("TOKEN:" + token), QByteArray());
}

void ServerRelayTest::oversizedDatagramIsDropped()
{
    QVERIFY(talk(*m_a));
    m_a->sendUdpSilently(QByteArray(4 + UdpRelay::kLargestPayload + 1, '\1'));
    m_a->sendUdpSilently(QByteArray(4 + UdpRelay::kLargestPayload, '\1'));
    QCOMPARE(m_b->nextDatagram().size(), 4 + UdpRelay::kLargestPayload);
    QCOMPARE(m_b->nextDatagram(), QByteArray());
}

EVOX_TEST_MAIN(ServerRelayTest, QCoreApplication)
#include "tst_serverrelay.moc"
