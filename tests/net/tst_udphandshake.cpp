#include "net/UdpLink.h"
#include "support/LogCapture.h"
#include "support/ResourceLimit.h"
#include "support/TestMain.h"

#include <QHostInfo>

class UdpHandshakeTest final : public QObject
{
    Q_OBJECT

private slots:
    void timers();
    void wholeHandshake();
    void tokenForms_data();
    void tokenForms();
    void confirmations_data();
    void confirmations();
    void wordsThatConfirmNothing_data();
    void wordsThatConfirmNothing();
    void secondPongSendsNoSecondToken();
    void noPongFails();
    void noConfirmationCountsAsReady();
    void badHosts_data();
    void badHosts();
    void namesAreLookedUp();
    void failedLookupLeavesTheOldLink();
    void noSocketToBeHad();
    void enablingAgainStartsOver();
    void stopsSilently();
    void tokenIsResent();
    void tokenHasItsOwnTime();
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

void UdpHandshakeTest::timers()
{
    const UdpAudio udp;
    const auto *health = udp.findChild<QTimer *>(q("healthTimer"));
    QCOMPARE(health->interval(), 30000);
    QVERIFY(health->isActive());
    QVERIFY(!health->isSingleShot());
    const auto *handshake = udp.findChild<QTimer *>(q("handshakeTimer"));
    QCOMPARE(handshake->interval(), 3000);
    QVERIFY(handshake->isSingleShot());
    QVERIFY(!handshake->isActive());
    QCOMPARE(udp.findChild<QTimer *>(q("reinitializeTimer"))->interval(), 200);
    QVERIFY(!udp.isReady());
}

void UdpHandshakeTest::wholeHandshake()
{
    LogCapture log;
    UdpLink link;
    QVERIFY(link.enable("abc"));
    QVERIFY(!link.udp.isReady());
    link.udp.setUserId(42);
    QTRY_COMPARE(link.ready.size(), 1);
    QVERIFY(link.udp.isReady());
    QVERIFY(!link.timer("handshakeTimer")->isActive());
    QCOMPARE(link.server.datagrams(), QList<QByteArray>({"PING", "TOKEN:abc:42"}));
    const QStringList lines = log.lines();
    QCOMPARE(lines.mid(0, 5), QStringList({q("[UDP] ========================================"),
                                           q("[UDP] enableUdp called with:"), q("[UDP]   host: ") + link.server.host(),
                                           q("[UDP]   port: 8082"), q("[UDP]   token length: 3")}));
    QVERIFY(lines.at(5).startsWith(q("[UDP] Bound to local port: ")));
    QCOMPARE(lines.mid(6),
             QStringList({q("[UDP] Sending PING (format1) to ") + link.server.host() + q(" : 8082"),
                          q("[UDP] PING sent, bytes: 4"), q("[UDP] PONG received! Handshake step: 0"),
                          q("[UDP] Sending TOKEN, length: 12"), q("[UDP] TOKEN content (first 50): TOKEN:abc:42"),
                          q("[UDP] Token confirmed: TOKEN_OK")}));
}

void UdpHandshakeTest::tokenForms_data()
{
    QTest::addColumn<int>("userId");
    QTest::addColumn<QByteArray>("datagram");
    QTest::newRow("id known") << 42 << QByteArray("TOKEN:abc:42");
    QTest::newRow("id 0") << 0 << QByteArray("TOKEN:abc");
    QTest::newRow("id negative") << -5 << QByteArray("TOKEN:abc");
}

void UdpHandshakeTest::tokenForms()
{
    QFETCH(int, userId);
    UdpLink link;
    link.udp.setUserId(userId);
    QVERIFY(link.bringUp());
    QTEST(link.server.datagrams().last(), "datagram");
}

void UdpHandshakeTest::confirmations_data()
{
    QTest::addColumn<QByteArray>("word");
    QTest::addColumn<QStringList>("logged");
    const QStringList registered{q("[UDP] REGISTERED received! user_id: 42"),
                                 q("[UDP] UDP is now READY - audio will use UDP!")};
    QTest::newRow("registered") << QByteArray("REGISTERED:42") << registered;
    QTest::newRow("registered with more") << QByteArray("REGISTERED:42:x\r\n") << registered;
    QTest::newRow("registered without an id")
        << QByteArray("REGISTERED:")
        << QStringList{q("[UDP] REGISTERED received! user_id: 0"), q("[UDP] UDP is now READY - audio will use UDP!")};
    QTest::newRow("TOKEN_OK") << QByteArray("TOKEN_OK") << QStringList{q("[UDP] Token confirmed: TOKEN_OK")};
    QTest::newRow("OK") << QByteArray(" OK\r\n") << QStringList{q("[UDP] Token confirmed: OK")};
}

void UdpHandshakeTest::confirmations()
{
    QFETCH(QByteArray, word);
    QFETCH(QStringList, logged);
    for (const bool afterPong : {true, false}) {
        UdpLink link;
        link.server.answerToken(false);
        link.server.answerPing(false);
        QVERIFY(link.enable());
        QVERIFY(link.server.waitForDatagram("PING"));
        if (afterPong) {
            link.server.sendDatagram("PONG\r\n");
            QVERIFY(link.server.waitForDatagram("TOKEN:abc"));
        }
        LogCapture log;
        link.server.sendDatagram(word);
        QTRY_COMPARE(link.ready.size(), 1);
        QVERIFY(!link.timer("handshakeTimer")->isActive());
        QTRY_COMPARE(log.lines(), logged);
    }
}

void UdpHandshakeTest::wordsThatConfirmNothing_data()
{
    QTest::addColumn<QByteArray>("word");
    QTest::newRow("no colon") << QByteArray("REGISTERED");
    QTest::newRow("lower case") << QByteArray("registered:42");
    QTest::newRow("NUL behind the word") << QByteArray("TOKEN_OK\0x", 10);
    QTest::newRow("NUL at the end") << QByteArray("OK\0", 3);
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("keep-alive answer") << QByteArray("KEEPALIVE_OK");
    QTest::newRow("audio") << QByteArray::fromHex("0000000155aa");
    QTest::newRow("no text") << QByteArray::fromHex("fffefdfcfb");
}

void UdpHandshakeTest::wordsThatConfirmNothing()
{
    QFETCH(QByteArray, word);
    UdpLink link;
    link.server.answerPing(false);
    QSignalSpy audio(&link.udp, &UdpAudio::audioReceived);
    QVERIFY(link.enable());
    QVERIFY(link.server.waitForDatagram("PING"));
    LogCapture log;
    link.server.sendDatagram(word);
    link.server.sendDatagram("PONG"); // what comes next shows that the word has been handled
    QVERIFY(link.server.waitForDatagram("TOKEN:"));
    QCOMPARE(log.lines().first(), q("[UDP] PONG received! Handshake step: 0"));
    QVERIFY(audio.isEmpty());
}

void UdpHandshakeTest::secondPongSendsNoSecondToken()
{
    LogCapture log;
    UdpLink link;
    link.server.answerToken(false);
    QVERIFY(link.enable());
    QVERIFY(link.server.waitForDatagram("TOKEN:"));
    link.server.sendDatagram("PONG");
    link.server.sendDatagram("TOKEN_OK");
    QTRY_COMPARE(link.ready.size(), 1);
    QVERIFY(log.contains(q("[UDP] PONG received! Handshake step: 1")));
    link.server.sendDatagram("PONG");
    QTRY_VERIFY(log.contains(q("[UDP] PONG received! Handshake step: 2")));
    QCOMPARE(link.server.datagramCount("TOKEN:"), 1);
}

void UdpHandshakeTest::noPongFails()
{
    LogCapture log;
    UdpLink link;
    link.server.answerPing(false);
    link.timer("handshakeTimer")->setInterval(20);
    QVERIFY(link.enable());
    QTRY_COMPARE(link.failed.size(), 1);
    QVERIFY(!link.udp.isReady());
    QCOMPARE(log.lines().mid(log.lines().size() - 3),
             QStringList({q("[UDP] Handshake timeout at step 0"), q("[UDP] No PONG received from server!"),
                          q("[UDP] UDP handshake failed! Using TCP fallback")}));
    QCOMPARE(link.server.datagramCount("PING"), 1);
}

void UdpHandshakeTest::noConfirmationCountsAsReady()
{
    LogCapture log;
    UdpLink link;
    link.server.answerToken(false);
    link.timer("handshakeTimer")->setInterval(200);
    QVERIFY(link.enable());
    QTRY_COMPARE(link.ready.size(), 1);
    QVERIFY(link.udp.isReady());
    QCOMPARE(link.failed.size(), 0);
    QCOMPARE(
        log.lines().mid(log.lines().size() - 2),
        QStringList({q("[UDP] Handshake timeout at step 1"), q("[UDP] No token confirmation, but continuing anyway")}));
    // Judged by its PONG: 35 s later the next check sets the link up anew.
    link.now += 35001;
    log.expectWarning(q("[UDP] Socket health check FAILED"));
    link.checkHealth();
    QVERIFY(link.server.waitForDatagram("PING", 2));
}

void UdpHandshakeTest::tokenHasItsOwnTime()
{
    UdpLink link;
    link.server.answerPing(false);
    link.server.answerToken(false);
    QVERIFY(link.enable());
    QVERIFY(link.server.waitForDatagram("PING"));
    link.timer("handshakeTimer")->stop(); // that of the PING
    link.server.sendDatagram("PONG");
    QVERIFY(link.server.waitForDatagram("TOKEN:"));
    QVERIFY(link.timer("handshakeTimer")->isActive());
}

void UdpHandshakeTest::badHosts_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<QString>("logged");
    QTest::newRow("empty") << QString() << q("[UDP] ERROR: host is empty!");
    QTest::newRow("unknown name") << q("no-such-host.invalid") << q("[UDP] Failed to resolve host: Host not found");
}

void UdpHandshakeTest::badHosts()
{
    QFETCH(QString, host);
    QFETCH(QString, logged);
    LogCapture log;
    UdpLink link;
    QVERIFY(!link.udp.enableUdp(host, FakeServer::kUdpPort, q("abc")));
    QCOMPARE(link.failed.size(), 1);
    QVERIFY2(log.lines().last().startsWith(logged.left(27)), qPrintable(log.lines().last()));
    QVERIFY(!link.timer("handshakeTimer")->isActive());
}

void UdpHandshakeTest::namesAreLookedUp()
{
    LogCapture log;
    UdpLink link;
    QVERIFY(link.udp.enableUdp(q("localhost"), 9, q("abc")));
    QVERIFY2(log.contains(q("[UDP] Resolved to: 127.0.0.1")), "the first address of version 4 is taken");
}

void UdpHandshakeTest::failedLookupLeavesTheOldLink()
{
    UdpLink link;
    QVERIFY(link.bringUp());
    QVERIFY(!link.udp.enableUdp({}, FakeServer::kUdpPort, q("xyz")));
    link.udp.resendToken(q("abc"));
    QVERIFY(link.server.waitForDatagram("TOKEN:abc", 2));
}

void UdpHandshakeTest::noSocketToBeHad()
{
    if (!ResourceLimit::isPossible())
        QSKIP("this system has no limit for open sockets");
    LogCapture log;
    UdpLink link;
    QVERIFY(link.bringUp());
    link.server.answerPing(false);
    QVERIFY(link.enable()); // its handshake must not be told about once it has been replaced
    {
        // Qt's own event loop needs no further file here; a socket does.
        const ResourceLimit none(ResourceLimit::Of::OpenFiles, 0);
        QVERIFY(!link.enable());
    }
    QCOMPARE(link.failed.size(), 1);
    QVERIFY(log.lines().last().startsWith(q("[UDP] Failed to bind UDP socket: ")));
    QVERIFY(!link.timer("handshakeTimer")->isActive());
    QVERIFY(!link.udp.isReady());
    link.udp.sendKeepalive();
    link.udp.sendAudio("x");
    link.server.answerPing(true);
    QVERIFY(link.bringUp());
}

void UdpHandshakeTest::enablingAgainStartsOver()
{
    UdpLink link;
    QVERIFY(link.bringUp());
    link.server.clear();
    QVERIFY(link.enable("xyz"));
    QVERIFY(!link.udp.isReady());
    QTRY_COMPARE(link.ready.size(), 2);
    QCOMPARE(link.server.datagrams(), QList<QByteArray>({"PING", "TOKEN:xyz"}));
}

void UdpHandshakeTest::stopsSilently()
{
    UdpLink link;
    link.server.answerPing(false);
    link.timer("handshakeTimer")->setInterval(20);
    QVERIFY(link.enable());
    link.udp.stop();
    QVERIFY(!link.timer("handshakeTimer")->isActive());
    QVERIFY(!link.udp.isReady());
    link.udp.sendKeepalive();
    link.udp.resendToken(q("abc"));
    link.udp.sendAudio("x");
    QVERIFY(link.failed.isEmpty());
}

void UdpHandshakeTest::tokenIsResent()
{
    LogCapture log;
    UdpLink link;
    link.udp.setUserId(42);
    link.udp.resendToken(q("abc"));
    QVERIFY(link.bringUp());
    link.udp.resendToken(q("xyz"));
    QVERIFY(link.server.waitForDatagram("TOKEN:xyz"));
    QCOMPARE(link.server.datagrams().last(), QByteArray("TOKEN:xyz"));
    QCOMPARE(log.count(q("[UDP] TOKEN resent, length: 9")), 1);
}

EVOX_TEST_MAIN(UdpHandshakeTest, QCoreApplication)
#include "tst_udphandshake.moc"
