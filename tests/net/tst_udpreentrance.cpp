#include "net/UdpAudio.h"
#include "support/FakeServer.h"
#include "support/TestMain.h"

#include <QEventLoop>
#include <QSignalSpy>

#include <memory>

// What a receiver may do inside the link's own signals.
class UdpReentranceTest final : public QObject
{
    Q_OBJECT

private slots:
    void linkGoes_data();
    void linkGoes();
    void linkIsEnabledAgain();
    void waitingDatagramsGoWithTheirSocket_data();
    void waitingDatagramsGoWithTheirSocket();
    void laterDatagramsGoOnUnderABox();
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

[[nodiscard]] bool enable(UdpAudio &udp, const FakeServer &server, const char *token)
{
    return udp.enableUdp(server.host(), FakeServer::kUdpPort, q(token));
}

} // namespace

void UdpReentranceTest::linkGoes_data()
{
    QTest::addColumn<QByteArray>("confirmation"); // empty: the link goes with the first audio
    QTest::newRow("ready by TOKEN_OK") << QByteArray("TOKEN_OK");
    QTest::newRow("ready by REGISTERED") << QByteArray("REGISTERED:42");
    QTest::newRow("audio") << QByteArray();
}

void UdpReentranceTest::linkGoes()
{
    QFETCH(QByteArray, confirmation);
    FakeServer server;
    server.answerToken(false);
    auto udp = std::make_unique<UdpAudio>();
    const auto destroy = [&udp] { udp.reset(); };
    if (confirmation.isEmpty())
        connect(udp.get(), &UdpAudio::audioReceived, this, destroy);
    else
        connect(udp.get(), &UdpAudio::udpReady, this, destroy);
    QVERIFY(enable(*udp, server, "abc"));
    QVERIFY(server.waitForDatagram("TOKEN:"));
    server.sendDatagram(confirmation.isEmpty() ? "TOKEN_OK" : confirmation);
    server.sendDatagram("audio");
    server.sendDatagram("audio");
    QTRY_VERIFY(!udp);
}

void UdpReentranceTest::linkIsEnabledAgain()
{
    FakeServer server;
    UdpAudio udp;
    int times = 0;
    connect(&udp, &UdpAudio::udpReady, this, [&] {
        if (++times == 1)
            QVERIFY(enable(udp, server, "xyz"));
    });
    QVERIFY(enable(udp, server, "abc"));
    QTRY_COMPARE(times, 2);
    QCOMPARE(server.datagrams(), QList<QByteArray>({"PING", "TOKEN:abc", "PING", "TOKEN:xyz"}));
    QVERIFY(udp.isReady());
}

void UdpReentranceTest::waitingDatagramsGoWithTheirSocket_data()
{
    QTest::addColumn<bool>("again"); // else the link is stopped
    QTest::newRow("enabled again") << true;
    QTest::newRow("stopped") << false;
}

void UdpReentranceTest::waitingDatagramsGoWithTheirSocket()
{
    QFETCH(bool, again);
    FakeServer server;
    server.answerToken(false);
    UdpAudio udp;
    QSignalSpy ready(&udp, &UdpAudio::udpReady);
    QSignalSpy audio(&udp, &UdpAudio::audioReceived);
    connect(&udp, &UdpAudio::udpReady, this, [&] {
        if (!again)
            udp.stop();
        else if (ready.size() == 1)
            QVERIFY(enable(udp, server, "xyz"));
    });
    QVERIFY(enable(udp, server, "abc"));
    QVERIFY(server.waitForDatagram("TOKEN:abc"));
    server.sendDatagram("TOKEN_OK"); // all in one arrival; the second confirms a token that is no longer the link's
    server.sendDatagram("TOKEN_OK");
    server.sendDatagram("audio");
    QTRY_COMPARE(ready.size(), 1);
    if (again)
        QVERIFY(server.waitForDatagram("TOKEN:xyz"));
    QCoreApplication::processEvents();
    QCOMPARE(ready.size(), 1);
    QVERIFY(audio.isEmpty());
    QVERIFY(!udp.isReady());
}

void UdpReentranceTest::laterDatagramsGoOnUnderABox()
{
    FakeServer server;
    UdpAudio udp;
    QEventLoop box;
    QList<QByteArray> heard;
    connect(&udp, &UdpAudio::audioReceived, this, [&](const QByteArray &data) {
        heard.append(data);
        if (data == "1") {
            server.sendDatagram("idid3");
            box.exec();
            heard.append("closed");
        } else if (data == "3") {
            box.quit();
        }
    });
    QVERIFY(enable(udp, server, "abc"));
    QTRY_VERIFY(udp.isReady());
    server.sendDatagram("idid1");
    server.sendDatagram("idid2");
    QTRY_COMPARE(heard, QList<QByteArray>({"1", "2", "3", "closed"}));
}

EVOX_TEST_MAIN(UdpReentranceTest, QCoreApplication)
#include "tst_udpreentrance.moc"
