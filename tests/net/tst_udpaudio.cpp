#include "net/UdpAudio.h"
#include "support/FakeServer.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <QSignalSpy>

// The counters of the diagnostics are process-wide: the first test sees the first lines.
class UdpAudioTest final : public QObject
{
    Q_OBJECT

private slots:
    void firstFramesAreLogged();
    void header_data();
    void header();
    void emptyPayloadIsNotSent();
    void received_data();
    void received();
    void audioBeforeReadyIsDropped();
    void anySenderIsHeard();
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

[[nodiscard]] bool bringUp(UdpAudio &udp, FakeServer &server)
{
    return udp.enableUdp(server.host(), FakeServer::kUdpPort, q("abc")) &&
           QTest::qWaitFor([&] { return udp.isReady(); });
}

} // namespace

void UdpAudioTest::firstFramesAreLogged()
{
    LogCapture log;
    FakeServer server;
    UdpAudio udp;
    udp.setUserId(7);
    const QByteArray frame = QByteArray::fromHex("000102030405060708090a0b0c0d0e0f101112131415");
    for (int i = 0; i < 3; ++i)
        udp.sendAudio(frame);
    QCOMPARE(
        log.lines(),
        QStringList({q("[UDP] sendAudio # 1 data size: 22 first 20 bytes: 000102030405060708090a0b0c0d0e0f10111213"),
                     q("[UDP] sendAudio: UDP not ready, skipping"),
                     q("[UDP] sendAudio # 2 data size: 22 first 20 bytes: 000102030405060708090a0b0c0d0e0f10111213"),
                     q("[UDP] sendAudio: UDP not ready, skipping"),
                     q("[UDP] sendAudio # 3 data size: 22 first 20 bytes: 000102030405060708090a0b0c0d0e0f10111213"),
                     q("[UDP] sendAudio: UDP not ready, skipping")}));
    QVERIFY(bringUp(udp, server));
    log.clear();
    for (int i = 0; i < 15; ++i)
        udp.sendAudio(frame);
    QVERIFY2(log.count(q("[UDP] sendAudio # 4 data size:")) == 1 && log.count(q("[UDP] sendAudio # 5 data size:")) == 1,
             "the first five calls");
    QVERIFY(log.contains(q("[UDP] sendAudio # 1 userId: 7 size: 22")));
    QVERIFY(log.contains(q("[UDP] sendAudio # 10 userId: 7 size: 22")));
    QVERIFY2(log.lines().size() == 12, "two calls and ten datagrams, then silence");
    udp.stop();
    log.clear();
    for (int i = 0; i < 10; ++i)
        udp.sendAudio(frame);
    QCOMPARE(log.lines(), QStringList({q("[UDP] sendAudio: UDP not ready, skipping"),
                                       q("[UDP] sendAudio: UDP not ready, skipping")}));
}

void UdpAudioTest::header_data()
{
    QTest::addColumn<int>("userId");
    QTest::addColumn<QByteArray>("datagram");
    QTest::newRow("1") << 1 << QByteArray::fromHex("0000000170");
    QTest::newRow("16909060") << 16909060 << QByteArray::fromHex("0102030470");
    QTest::newRow("negative") << -1 << QByteArray::fromHex("ffffffff70");
}

void UdpAudioTest::header()
{
    QFETCH(int, userId);
    QFETCH(QByteArray, datagram);
    FakeServer server;
    UdpAudio udp;
    QVERIFY(bringUp(udp, server));
    udp.setUserId(userId);
    udp.sendAudio("p");
    QVERIFY(server.waitForDatagram(datagram));
    QCOMPARE(server.datagrams().last(), datagram);
}

void UdpAudioTest::emptyPayloadIsNotSent()
{
    FakeServer server;
    UdpAudio udp;
    QVERIFY(bringUp(udp, server));
    server.clear();
    udp.sendAudio({});
    udp.sendAudio("p");
    QVERIFY(server.waitForDatagram(QByteArray()));
    QCOMPARE(server.datagrams().size(), 1);
    QCOMPARE(server.datagrams().first().size(), 5);
}

void UdpAudioTest::received_data()
{
    QTest::addColumn<QByteArray>("datagram");
    QTest::addColumn<QByteArray>("payload"); // empty: none
    QTest::newRow("five bytes") << QByteArray::fromHex("0000000755") << QByteArray::fromHex("55");
    QTest::newRow("four bytes") << QByteArray::fromHex("00000007") << QByteArray();
    QTest::newRow("empty") << QByteArray() << QByteArray();
    QTest::newRow("own id") << QByteArray::fromHex("0000002a5566") << QByteArray::fromHex("5566");
    QTest::newRow("reads PONG when trimmed") << QByteArray("  PONG  ") << QByteArray();
    QTest::newRow("reads OK when trimmed") << QByteArray("   OK   ") << QByteArray();
    QTest::newRow("reads TOKEN_OK") << QByteArray("TOKEN_OK") << QByteArray();
    QTest::newRow("reads KEEPALIVE_OK") << QByteArray("KEEPALIVE_OK") << QByteArray();
    QTest::newRow("begins with REGISTERED:") << QByteArray("REGISTERED:audio") << QByteArray();
    QTest::newRow("PONG, NUL and more is audio") << QByteArray("PONG\0abc", 8) << QByteArray("\0abc", 4);
    QTest::newRow("large") << QByteArray(60000, '\1') << QByteArray(59996, '\1');
}

void UdpAudioTest::received()
{
    QFETCH(QByteArray, datagram);
    QFETCH(QByteArray, payload);
    FakeServer server;
    UdpAudio udp;
    udp.setUserId(42);
    QSignalSpy audio(&udp, &UdpAudio::audioReceived);
    QVERIFY(bringUp(udp, server));
    server.sendDatagram(datagram);
    server.sendDatagram("mark-mark");
    QTRY_VERIFY(!audio.isEmpty() && audio.last().first().toByteArray() == "-mark");
    QCOMPARE(audio.size(), payload.isEmpty() ? 1 : 2);
    if (!payload.isEmpty())
        QCOMPARE(audio.first().first().toByteArray(), payload);
}

void UdpAudioTest::audioBeforeReadyIsDropped()
{
    FakeServer server;
    server.answerPing(false);
    UdpAudio udp;
    QSignalSpy audio(&udp, &UdpAudio::audioReceived);
    QVERIFY(udp.enableUdp(server.host(), FakeServer::kUdpPort, q("abc")));
    QVERIFY(server.waitForDatagram("PING"));
    server.sendDatagram(QByteArray::fromHex("0000000755"));
    server.sendDatagram("TOKEN_OK");
    QTRY_VERIFY(udp.isReady());
    QVERIFY(audio.isEmpty());
}

void UdpAudioTest::anySenderIsHeard()
{
    FakeServer server;
    UdpAudio udp;
    QSignalSpy audio(&udp, &UdpAudio::audioReceived);
    QVERIFY(bringUp(udp, server));
    QUdpSocket stranger;
    stranger.writeDatagram(QByteArray::fromHex("0000000755"), QHostAddress(QHostAddress::LocalHost),
                           udp.findChild<QUdpSocket *>()->localPort());
    QVERIFY(audio.wait());
}

EVOX_TEST_MAIN(UdpAudioTest, QCoreApplication)
#include "tst_udpaudio.moc"
