#include "net/UdpLink.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <QSocketNotifier>
#include <QUdpSocket>

class UdpHealthTest final : public QObject
{
    Q_OBJECT

private slots:
    void keepalives();
    void health_data();
    void health();
    void everyDatagramIsHeard_data();
    void everyDatagramIsHeard();
    void audioBeforeReadyIsHeard();
    void pongIsHeard();
    void unhealthyLinkIsSetUpAnew();
    void staleReinitializationIsDropped();
    void closedSocketIsUnhealthy();
    void wakeUpForNothing();
};

namespace {

constexpr qint64 kSilent = 35000; // ms

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

/// Sends it, and waits until it has been heard.
bool isHeard(UdpLink &link, const QByteArray &datagram)
{
    const int before = link.clockReads;
    link.server.sendDatagram(datagram);
    return QTest::qWaitFor([&] { return link.clockReads > before; });
}

/// Whether the link is healthy for as long as the last sign of life counts from now on, and no longer.
bool wasHeardJustNow(UdpLink &link, LogCapture &log)
{
    link.now += kSilent;
    link.checkHealth();
    const bool wasHealthy = link.udp.isReady();
    log.expectWarning(q("[UDP] Socket health check FAILED"));
    link.now += 1;
    link.checkHealth();
    return wasHealthy && !link.udp.isReady();
}

} // namespace

void UdpHealthTest::keepalives()
{
    LogCapture log;
    UdpLink link;
    link.udp.sendKeepalive();
    QVERIFY(link.bringUp());
    for (int i = 1; i <= 20; ++i) {
        link.udp.sendKeepalive();
        QVERIFY(link.server.waitForDatagram("KEEPALIVE", i));
        QVERIFY(link.settle());
    }
    QCOMPARE(link.server.datagramCount("KEEPALIVE"), 20);
    QVERIFY2(log.count(q("[UDP] KEEPALIVE_OK received - socket healthy")) == 2, "every tenth answer is told");
}

void UdpHealthTest::health_data()
{
    QTest::addColumn<qint64>("silent");
    QTest::addColumn<bool>("keepalive");
    QTest::addColumn<bool>("healthy");
    QTest::newRow("just heard") << qint64(0) << false << true;
    QTest::newRow("20 s") << qint64(20000) << false << true;
    QTest::newRow("over 20 s") << qint64(20001) << true << true;
    QTest::newRow("35 s") << qint64(35000) << true << true;
    QTest::newRow("over 35 s") << qint64(35001) << false << false;
    QTest::newRow("never heard") << -UdpLink::kStart << false << true;
}

void UdpHealthTest::health()
{
    QFETCH(qint64, silent);
    QFETCH(bool, keepalive);
    QFETCH(bool, healthy);
    LogCapture log;
    UdpLink link;
    if (silent < 0)
        link.now = 0;
    QVERIFY(link.bringUp());
    if (!healthy)
        log.expectWarning(q("[UDP] Socket health check FAILED state: "));
    link.now = silent < 0 ? 10 * UdpLink::kStart : link.now + silent;
    link.checkHealth();
    QCOMPARE(link.udp.isReady(), healthy);
    if (keepalive)
        QVERIFY(link.server.waitForDatagram("KEEPALIVE"));
    else if (healthy)
        QVERIFY(link.settle());
    QCOMPARE(link.server.datagramCount("KEEPALIVE"), keepalive ? 1 : 0);
}

void UdpHealthTest::everyDatagramIsHeard_data()
{
    QTest::addColumn<QByteArray>("datagram");
    QTest::newRow("audio") << QByteArray::fromHex("0000000155aa");
    QTest::newRow("keep-alive answer") << QByteArray("KEEPALIVE_OK");
    QTest::newRow("confirmation") << QByteArray("TOKEN_OK");
    QTest::newRow("too short for audio") << QByteArray("x");
}

void UdpHealthTest::everyDatagramIsHeard()
{
    QFETCH(QByteArray, datagram);
    LogCapture log;
    UdpLink link;
    QVERIFY(link.bringUp());
    link.now += kSilent;
    QVERIFY(isHeard(link, datagram));
    QVERIFY(wasHeardJustNow(link, log));
}

// It is dropped, but a server that sends it is there.
void UdpHealthTest::audioBeforeReadyIsHeard()
{
    LogCapture log;
    UdpLink link;
    link.server.answerToken(false);
    QVERIFY(link.enable());
    QVERIFY(link.server.waitForDatagram("TOKEN:"));
    link.now += kSilent;
    const QSignalSpy audio(&link.udp, &UdpAudio::audioReceived);
    QVERIFY(isHeard(link, QByteArray::fromHex("0000000155aa")));
    QVERIFY(audio.isEmpty());
    QMetaObject::invokeMethod(&link.udp, "onHandshakeTimeout");
    QVERIFY(wasHeardJustNow(link, log));
}

void UdpHealthTest::pongIsHeard()
{
    LogCapture log;
    UdpLink link;
    link.server.answerPing(false);
    link.server.answerToken(false);
    QVERIFY(link.enable());
    QVERIFY(link.server.waitForDatagram("PING"));
    link.now += kSilent;
    QVERIFY(isHeard(link, "PONG"));
    QMetaObject::invokeMethod(&link.udp, "onHandshakeTimeout"); // never confirmed
    QVERIFY(wasHeardJustNow(link, log));
}

void UdpHealthTest::unhealthyLinkIsSetUpAnew()
{
    LogCapture log;
    log.expectWarning(q("[UDP] Socket health check FAILED"));
    UdpLink link;
    link.udp.setUserId(42);
    QVERIFY(link.bringUp());
    link.now += 40000;
    link.checkHealth();
    QVERIFY(log.lines().last().startsWith(q("[UDP] Socket health check FAILED state: ")));
    QVERIFY(log.lines().last().endsWith(q(" silent: 40000 ms — reinitializing...")));
    QVERIFY(!link.udp.isReady());
    QTRY_COMPARE(link.ready.size(), 2);
    QVERIFY(log.contains(q("[UDP] Reinitializing UDP socket...")));
    QCOMPARE(link.server.datagramCount("TOKEN:abc:42"), 2);
}

void UdpHealthTest::staleReinitializationIsDropped()
{
    LogCapture log;
    log.expectWarning(q("[UDP] Socket health check FAILED"));
    UdpLink link;
    QVERIFY(link.bringUp());
    link.now += 40000;
    link.checkHealth();
    QVERIFY(link.timer("reinitializeTimer")->isActive());
    QVERIFY(link.enable("fresh"));
    QVERIFY(!link.timer("reinitializeTimer")->isActive());
    QTRY_COMPARE(link.ready.size(), 2);
    QCOMPARE(link.server.datagrams().last(), QByteArray("TOKEN:fresh"));

    link.now += 40000;
    link.checkHealth();
    link.udp.stop();
    QVERIFY(!link.timer("reinitializeTimer")->isActive());
}

void UdpHealthTest::closedSocketIsUnhealthy()
{
    LogCapture log;
    log.expectWarning(q("[UDP] Socket health check FAILED state: QAbstractSocket::UnconnectedState silent: 0 ms"));
    UdpLink link;
    QVERIFY(link.bringUp());
    link.udp.findChild<QUdpSocket *>()->close();
    link.checkHealth();
    QVERIFY(!link.udp.isReady());
    QTRY_COMPARE(link.ready.size(), 2);
}

// The system says that there is a datagram, finds its checksum wrong and drops it.
void UdpHealthTest::wakeUpForNothing()
{
    UdpLink link;
    QVERIFY(link.bringUp());
    const QSignalSpy audio(&link.udp, &UdpAudio::audioReceived);
    for (QSocketNotifier *notifier : link.udp.findChild<QUdpSocket *>()->findChildren<QSocketNotifier *>()) {
        QEvent nothing(QEvent::SockAct);
        if (notifier->type() == QSocketNotifier::Read)
            QCoreApplication::sendEvent(notifier, &nothing);
    }
    for (int i = 1; i <= 2; ++i) {
        link.server.sendDatagram(QByteArray::fromHex("0000000155aa"));
        QTRY_COMPARE(audio.size(), i);
    }
}

EVOX_TEST_MAIN(UdpHealthTest, QCoreApplication)
#include "tst_udphealth.moc"
