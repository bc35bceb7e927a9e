#include "WindowRig.h"
#include "net/TcpClient.h"
#include "net/UdpAudio.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QTcpServer>
#include <QTcpSocket>

class ReconnectTest final : public QObject
{
    Q_OBJECT

private slots:
    void timersAreSetAsPromised();
    void comesBackAfterALoss_data();
    void comesBackAfterALoss();
    void keepsTrying();
    void firstConnectRefusedIsALossToo();
    void halfOpenAttemptIsAborted();
    void connectedStopsTheTimer();
    void udpFailureIsReportedAndRetried();
    void roomKeyRestartsAFailedLink();
    void keepaliveRunsOnceReady();
    void unconfirmedTokenStillCounts();
};

void ReconnectTest::timersAreSetAsPromised()
{
    const TestConfig config({{QStringLiteral("server_address"), QString()}});
    ScriptedPrompts prompts;
    const Endpoints endpoints;
    const MainWindow window(endpoints, prompts);
    const auto *reconnect = window.findChild<QTimer *>(QStringLiteral("reconnectTimer"));
    QCOMPARE(reconnect->interval(), 10000);
    QVERIFY(!reconnect->isSingleShot());
    const auto *arm = window.findChild<QTimer *>(QStringLiteral("reconnectArmTimer"));
    QCOMPARE(arm->interval(), 3000);
    QVERIFY(arm->isSingleShot());
    QCOMPARE(arm->timerType(), Qt::PreciseTimer);
    QCOMPARE(window.findChild<QTimer *>(QStringLiteral("udpRetryTimer"))->interval(), 10000);
}

void ReconnectTest::comesBackAfterALoss_data()
{
    QTest::addColumn<bool>("reset");
    QTest::newRow("server closes") << false;
    QTest::newRow("connection reset") << true;
}

void ReconnectTest::comesBackAfterALoss()
{
    QFETCH(bool, reset);
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    rig.server.drop(reset);
    QVERIFY(rig.server.waitForClient(2));
    QVERIFY(rig.showed(QStringLiteral("Reconnecting to %1...").arg(rig.server.host())));
    QVERIFY(rig.server.waitForLine(QStringLiteral("LOGIN "), 2));
    QVERIFY(rig.server.waitForLine(QStringLiteral("JOIN "), 2));
    QTRY_VERIFY(rig.action("toolbarLeave")->isVisible());
}

void ReconnectTest::keepsTrying()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn());
    rig.server.stopListening();
    rig.server.drop();
    const QString attempt = QStringLiteral("Reconnecting to %1... (0)").arg(rig.server.host());
    QTRY_VERIFY(rig.statuses().count(attempt) >= 3);
    rig.server.listenAgain();
    QVERIFY(rig.server.waitForLine(QStringLiteral("LOGIN "), 2));
}

void ReconnectTest::firstConnectRefusedIsALossToo()
{
    WindowRig rig;
    rig.server.stopListening();
    rig.open();
    QTRY_VERIFY(rig.timer("reconnectTimer")->isActive());
    rig.server.listenAgain();
    QVERIFY(rig.server.waitForLine(QStringLiteral("LOGIN ")));
}

void ReconnectTest::halfOpenAttemptIsAborted()
{
    // A name that takes for ever to connect: a listener whose queue is full never answers.
    WindowRig rig({{QStringLiteral("setup_completed"), false}});
    rig.open();
    auto *client = rig.service<TcpClient>();
    client->connectToServer(rig.server.host(), rig.server.port());
    QVERIFY(client->socketState() != QAbstractSocket::UnconnectedState);
    QMetaObject::invokeMethod(rig.timer("reconnectTimer"), "timeout", Qt::DirectConnection);
    QCOMPARE(client->socketState(), QAbstractSocket::UnconnectedState);
    QMetaObject::invokeMethod(rig.timer("reconnectTimer"), "timeout", Qt::DirectConnection);
    QVERIFY(rig.server.waitForClient());
}

void ReconnectTest::connectedStopsTheTimer()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn());
    rig.timer("reconnectTimer")->setInterval(500); // long enough to be seen running
    rig.server.drop();
    QTRY_VERIFY(rig.timer("reconnectTimer")->isActive());
    QVERIFY(rig.server.waitForLine(QStringLiteral("LOGIN "), 2));
    QVERIFY(!rig.timer("reconnectTimer")->isActive());
    QVERIFY(!rig.timer("reconnectArmTimer")->isActive());
}

void ReconnectTest::udpFailureIsReportedAndRetried()
{
    LogCapture log;
    WindowRig rig({{QStringLiteral("default_room"), QString()}});
    rig.server.answerPing(false);
    QVERIFY(rig.openAndLogIn());
    QTRY_VERIFY_WITH_TIMEOUT(rig.showed(QStringLiteral("UDP connection lost - auto-retrying..."), 5000), 10000);
    QVERIFY(log.contains(QStringLiteral("[MainWindow] UDP failed, will retry automatically")));
    QVERIFY(log.contains(QStringLiteral("[MainWindow] ***** UDP FAILED SIGNAL *****")));
    rig.server.answerPing(true);
    QTRY_VERIFY_WITH_TIMEOUT(rig.showed(QStringLiteral("UDP audio ready"), 3000), 10000);
    QVERIFY(rig.service<UdpAudio>()->isReady());
}

void ReconnectTest::roomKeyRestartsAFailedLink()
{
    LogCapture log;
    WindowRig rig({{QStringLiteral("default_room"), QString()}});
    rig.server.answerPing(false);
    QVERIFY(rig.openAndLogIn());
    rig.timer("udpRetryTimer")->setInterval(60000);
    QTRY_VERIFY_WITH_TIMEOUT(log.contains(QStringLiteral("[MainWindow] UDP failed, will retry automatically")), 10000);
    rig.server.answerPing(true);
    rig.server.send(QStringLiteral("JOIN_OK|Lobby|") + WindowRig::key());
    QTRY_VERIFY(rig.showed(QStringLiteral("UDP audio ready"), 3000));
    QVERIFY(log.contains(QStringLiteral("[MainWindow] UDP not ready, reinitializing for new room...")));
}

void ReconnectTest::keepaliveRunsOnceReady()
{
    WindowRig rig({{QStringLiteral("default_room"), QString()}});
    QVERIFY(rig.openAndLogIn());
    QTRY_VERIFY(rig.timer("keepaliveTimer"));
    QCOMPARE(rig.timer("keepaliveTimer")->interval(), 25000);
    QVERIFY(rig.timer("keepaliveTimer")->isActive());
    rig.timer("keepaliveTimer")->start(10);
    QVERIFY(rig.server.waitForDatagram("KEEPALIVE", 2));
}

void ReconnectTest::unconfirmedTokenStillCounts()
{
    WindowRig rig({{QStringLiteral("default_room"), QString()}});
    rig.server.answerToken(false);
    QVERIFY(rig.openAndLogIn());
    QTRY_VERIFY_WITH_TIMEOUT(rig.showed(QStringLiteral("UDP audio ready"), 3000), 10000);
}

EVOX_TEST_MAIN(ReconnectTest, QApplication)
#include "tst_reconnect.moc"
