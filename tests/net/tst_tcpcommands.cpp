#include "net/TcpClient.h"
#include "support/FakeServer.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <QSignalSpy>
#include <QTimer>

#include <functional>

using Call = std::function<void(TcpClient &)>;
Q_DECLARE_METATYPE(Call)

class TcpCommandsTest final : public QObject
{
    Q_OBJECT

private slots:
    void commands_data();
    void commands();
    void nothingIsSentOrQueuedBeforeTheConnection();
    void connects();
    void refusedConnection();
    void disconnects();
    void destructionSaysGoodbye();
    void serverCloses();
    void connectingAgainDropsTheOldConnection();
    void abortIsSilent();
    void heartbeat();
    void pongWithoutPingIsIgnored();
    void audioIsNotSent();
    void secretsStayOutOfTheDiagnostics();
};

namespace {

[[nodiscard]] bool connectTo(TcpClient &client, FakeServer &server)
{
    QSignalSpy connected(&client, &TcpClient::connected);
    client.connectToServer(server.host(), server.port());
    return connected.wait() && server.waitForClient();
}

} // namespace

void TcpCommandsTest::commands_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QByteArray>("bytes");
    const auto row = [](const char *name, const Call &call, const char *bytes) {
        QTest::newRow(name) << call << QByteArray(bytes) + "\r\n";
    };
    const auto q = [](const char *text) { return QString::fromUtf8(text); };
    row(
        "login", [=](TcpClient &c) { c.login(q("YB0ABC"), q("p|w"), q("0123")); }, "LOGIN YB0ABC p|w 0123");
    row(
        "login without an identifier", [=](TcpClient &c) { c.login(q("YB0ABC"), q("pw"), {}); }, "LOGIN YB0ABC pw");
    row(
        "password with a percent sign", [=](TcpClient &c) { c.login(q("YB0ABC"), q("%1%2"), q("0123")); },
        "LOGIN YB0ABC %1%2 0123");
    row(
        "join, blank in the room", [=](TcpClient &c) { c.joinRoom(q("Ruang Dua")); }, "JOIN Ruang Dua");
    row(
        "stop, blank in the room", [=](TcpClient &c) { c.stopTransmit(q("Ruang Dua")); }, "TX_STOP \"Ruang Dua\"");
    row(
        "quotes are not escaped", [=](TcpClient &c) { c.stopTransmit(q("a\"b")); }, "TX_STOP \"a\"b\"");
    row(
        "approve", [](TcpClient &c) { c.approveUser(7); }, "ADMIN_APPROVE_USER 7");
    row(
        "unapprove", [](TcpClient &c) { c.unapproveUser(7); }, "ADMIN_UNAPPROVE_USER 7");
    row(
        "mute", [](TcpClient &c) { c.muteUser(7, 1); }, "ADMIN_MUTE 7 1");
    row(
        "unmute", [](TcpClient &c) { c.muteUser(-7, 0); }, "ADMIN_MUTE -7 0");
    row(
        "a line end in a value", [=](TcpClient &c) { c.sendCommand(q("A \"x\r\nQUIT\n\"")); }, "A \"x  QUIT \"");
    row(
        "any line, as UTF-8", [=](TcpClient &c) { c.sendCommand(q("TX_START \"Kafé\"")); }, "TX_START \"Kafé\"");
}

void TcpCommandsTest::commands()
{
    QFETCH(Call, call);
    FakeServer server;
    TcpClient client;
    QVERIFY(connectTo(client, server));
    call(client);
    QVERIFY(server.waitForLine(QString()));
    QTEST(server.received(), "bytes");
}

void TcpCommandsTest::nothingIsSentOrQueuedBeforeTheConnection()
{
    FakeServer server;
    TcpClient client;
    client.sendCommand(QStringLiteral("EARLY"));
    client.connectToServer(server.host(), server.port());
    client.sendCommand(QStringLiteral("EARLY"));
    QSignalSpy connected(&client, &TcpClient::connected);
    QVERIFY(connected.wait());
    client.sendCommand(QStringLiteral("LATE"));
    QVERIFY(server.waitForLine(QString()));
    QCOMPARE(server.lines(), QStringList{QStringLiteral("LATE")});
}

void TcpCommandsTest::connects()
{
    LogCapture log;
    FakeServer server;
    TcpClient client;
    QVERIFY(!client.isConnected());
    bool connectedAtOnce = false;
    connect(&client, &TcpClient::connected, [&] { connectedAtOnce = client.isConnected(); });
    QVERIFY(connectTo(client, server));
    QVERIFY(connectedAtOnce);
    QVERIFY(client.isConnected());
    QCOMPARE(log.lines(),
             QStringList({QStringLiteral("[TCP] Connecting to %1 %2").arg(server.host()).arg(server.port()),
                          QStringLiteral("[TCP] Connected!")}));
    QCOMPARE(client.findChild<QTimer *>()->interval(), 5000);
    QVERIFY(client.findChild<QTimer *>()->isActive());
}

void TcpCommandsTest::refusedConnection()
{
    LogCapture log;
    FakeServer server;
    const quint16 port = server.port();
    server.stopListening();
    TcpClient client;
    QSignalSpy errors(&client, &TcpClient::errorOccurred);
    QSignalSpy disconnected(&client, &TcpClient::disconnected);
    client.connectToServer(server.host(), port);
    QVERIFY(errors.wait());
    QCOMPARE(errors.size(), 1);
    QCOMPARE(errors.first().first().toString(), QStringLiteral("Connection refused"));
    QVERIFY(log.contains(QStringLiteral("[TCP] Error: Connection refused")));
    QCOMPARE(disconnected.size(), 0);
    QCOMPARE(client.socketState(), QAbstractSocket::UnconnectedState);
}

void TcpCommandsTest::disconnects()
{
    LogCapture log;
    FakeServer server;
    TcpClient client;
    QVERIFY(connectTo(client, server));
    QSignalSpy disconnected(&client, &TcpClient::disconnected);
    client.disconnectFromServer();
    QVERIFY(server.waitForLine(QStringLiteral("QUIT")));
    QTRY_COMPARE(disconnected.size(), 1);
    QVERIFY(!client.isConnected());
    QVERIFY(!client.findChild<QTimer *>()->isActive());
    QCOMPARE(log.lines().last(), QStringLiteral("[TCP] Disconnected!"));
    client.disconnectFromServer();
    QCOMPARE(disconnected.size(), 1);
}

void TcpCommandsTest::destructionSaysGoodbye()
{
    FakeServer server;
    auto client = std::make_unique<TcpClient>();
    QVERIFY(connectTo(*client, server));
    client.reset();
    QVERIFY(server.waitForLine(QStringLiteral("QUIT")));
}

void TcpCommandsTest::serverCloses()
{
    FakeServer server;
    TcpClient client;
    QVERIFY(connectTo(client, server));
    QSignalSpy disconnected(&client, &TcpClient::disconnected);
    server.drop();
    QVERIFY(disconnected.wait());
    QVERIFY(!client.isConnected());
    client.sendCommand(QStringLiteral("LATE"));
    QVERIFY(connectTo(client, server));
    client.sendCommand(QStringLiteral("AGAIN"));
    QVERIFY(server.waitForLine(QStringLiteral("AGAIN")));
    QCOMPARE(server.count(QStringLiteral("LATE")), 0);
}

void TcpCommandsTest::connectingAgainDropsTheOldConnection()
{
    FakeServer server;
    TcpClient client;
    QVERIFY(connectTo(client, server));
    QSignalSpy connected(&client, &TcpClient::connected);
    QSignalSpy disconnected(&client, &TcpClient::disconnected);
    client.connectToServer(server.host(), server.port());
    QVERIFY(connected.wait());
    QCOMPARE(disconnected.size(), 1);
    QVERIFY(server.waitForClient(2));
    client.sendCommand(QStringLiteral("MARK"));
    QVERIFY(server.waitForLine(QStringLiteral("MARK")));
}

void TcpCommandsTest::abortIsSilent()
{
    FakeServer server;
    TcpClient client;
    QVERIFY(connectTo(client, server));
    client.abortConnection();
    QVERIFY(!client.isConnected());
    QTRY_VERIFY(!server.isClientConnected());
    QVERIFY(server.received().isEmpty());
}

void TcpCommandsTest::heartbeat()
{
    FakeServer server;
    server.answer(QStringLiteral("PING"), {QStringLiteral("PONG")});
    TcpClient client;
    QSignalSpy pings(&client, &TcpClient::pingUpdated);
    QVERIFY(connectTo(client, server));
    client.findChild<QTimer *>()->start(10);
    QTRY_VERIFY(pings.size() >= 2);
    QVERIFY(server.count(QStringLiteral("PING")) >= 2);
    const float latency = pings.first().first().toFloat();
    QVERIFY2(latency >= 0 && latency < 5000, "a round trip on this machine, in milliseconds");
}

void TcpCommandsTest::pongWithoutPingIsIgnored()
{
    FakeServer server;
    TcpClient client;
    QSignalSpy pings(&client, &TcpClient::pingUpdated);
    QSignalSpy rooms(&client, &TcpClient::roomListReceived);
    QVERIFY(connectTo(client, server));
    QMetaObject::invokeMethod(&client, "onHeartbeat", Qt::DirectConnection);
    QVERIFY(server.waitForLine(QStringLiteral("PING")));
    server.sendRaw("PONG\r\nPONG\r\nROOMS|a\r\n");
    QVERIFY(rooms.wait());
    QVERIFY2(pings.size() == 1, "the second answer has no question");
}

void TcpCommandsTest::audioIsNotSent()
{
    LogCapture log;
    FakeServer server;
    TcpClient client;
    QVERIFY(connectTo(client, server));
    QSignalSpy errors(&client, &TcpClient::errorOccurred);
    client.sendAudio(QByteArray(100, 'a'));
    client.sendCommand(QStringLiteral("MARK"));
    QVERIFY(server.waitForLine(QString()));
    QCOMPARE(server.received(), QByteArray("MARK\r\n"));
    QVERIFY(log.contains(QStringLiteral("[TCP] sendAudio called but TCP audio not supported - drop frame")));
    QCOMPARE(errors.size(), 0);
}

void TcpCommandsTest::secretsStayOutOfTheDiagnostics()
{
    LogCapture log;
    FakeServer server;
    TcpClient client;
    QSignalSpy joined(&client, &TcpClient::joinRoomResult);
    QVERIFY(connectTo(client, server));
    client.login(QStringLiteral("YB0ABC"), QStringLiteral("password-secret"), QStringLiteral("device-secret"));
    client.sendCommand(QStringLiteral("USER_CHANGE_PASSWORD \"password-secret\" \"other-secret\""));
    server.sendRaw("LOGIN_OK|token-secret||False|1|||||||||||session-secret\r\n"
                   "JOIN_OK|Lobby|0123456789abcdef-key-secret\r\n"
                   "MOVED|Lobby||moved-secret\r\n");
    QTRY_COMPARE(joined.size(), 2);
    QVERIFY(log.contains(QStringLiteral("[TCP] JOIN_OK room: Lobby key: 0123456789abcdef...")));
    const QString all = log.lines().join(QLatin1Char('\n'));
    QVERIFY2(!all.contains(QLatin1String("secret")), qPrintable(all));
}

EVOX_TEST_MAIN(TcpCommandsTest, QCoreApplication)
#include "tst_tcpcommands.moc"
