#include "SignalLog.h"
#include "net/TcpClient.h"
#include "support/FakeServer.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <QEventLoop>

#include <functional>
#include <memory>

// What the end of a connection looks like: in which order it is told, and what a receiver may do about it.
class TcpLossesTest final : public QObject
{
    Q_OBJECT

private slots:
    void linesBeforeALossComeFirst();
    void lossUnderABoxIsToldUnderIt();
    void kickAndCloseAtOnce();
    void connectingAgainUnderAnError();
    void clientGoesWithTheLoss_data();
    void clientGoesWithTheLoss();
    void nothingIsSentAfterTheLoss();
    void endIsToldAtOnce_data();
    void endIsToldAtOnce();
    void attemptIsDropped_data();
    void attemptIsDropped();
};

using Action = std::function<void(TcpClient &)>;
Q_DECLARE_METATYPE(Action)

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

const QString &remoteClosed()
{
    static const QString text = q("errorOccurred(The remote host closed the connection)");
    return text;
}

[[nodiscard]] bool connectTo(TcpClient &client, FakeServer &server)
{
    const int before = server.connections();
    client.connectToServer(server.host(), server.port());
    return QTest::qWaitFor([&] { return client.isConnected(); }) && server.waitForClient(before + 1);
}

} // namespace

void TcpLossesTest::linesBeforeALossComeFirst()
{
    FakeServer server;
    TcpClient client;
    SignalLog log(&client);
    QVERIFY(connectTo(client, server));
    log.clear();
    server.sendRaw("JOIN_OK|Lobby|\r\nTX_STOP_OK\r\nTX_STA");
    server.drop();
    QTRY_VERIFY(!client.isConnected());
    QCOMPARE(log.entries(), QStringList({q("joinRoomResult(true, Lobby)"), q("transmitStopped()"), remoteClosed(),
                                         q("disconnected()")}));
}

void TcpLossesTest::lossUnderABoxIsToldUnderIt()
{
    FakeServer server;
    TcpClient client;
    SignalLog log(&client);
    QStringList seenUnderTheBox;
    QEventLoop box;
    connect(&client, &TcpClient::loginResult, this, [&] {
        box.exec();
        seenUnderTheBox = log.entries();
    });
    connect(&client, &TcpClient::disconnected, &box, &QEventLoop::quit);
    QVERIFY(connectTo(client, server));
    log.clear();
    server.sendRaw("LOGIN_FAILED|x\r\nJOIN_OK|Lobby|\r\n");
    server.drop();
    QTRY_VERIFY(!seenUnderTheBox.isEmpty());
    QCOMPARE(seenUnderTheBox, QStringList({q("loginResult(false, x)"), q("joinRoomResult(true, Lobby)"), remoteClosed(),
                                           q("disconnected()")}));
    QCOMPARE(log.entries(), seenUnderTheBox);
}

void TcpLossesTest::kickAndCloseAtOnce()
{
    LogCapture diagnostics;
    FakeServer server;
    TcpClient client;
    SignalLog log(&client);
    QVERIFY(connectTo(client, server));
    log.clear();
    server.sendRaw("KICKED|x\r\n");
    server.drop();
    QTRY_VERIFY(!client.isConnected());
    QCoreApplication::processEvents();
    QStringList entries = log.entries();
    entries.removeOne(remoteClosed()); // told only where the server's goodbye comes before the kick is handled
    QCOMPARE(entries, QStringList({q("kicked(x)"), q("errorOccurred(KICKED: x)"), q("disconnected()")}));
}

void TcpLossesTest::connectingAgainUnderAnError()
{
    LogCapture diagnostics;
    FakeServer server;
    TcpClient client;
    QEventLoop box;
    int errors = 0;
    connect(&client, &TcpClient::errorOccurred, this, [&] {
        if (++errors > 1)
            return;
        client.connectToServer(server.host(), server.port());
        box.exec(); // a box that the operator answers when the connection is back
    });
    QVERIFY(connectTo(client, server));
    connect(&client, &TcpClient::connected, &box, &QEventLoop::quit);
    server.drop();
    QVERIFY(server.waitForClient(2));
    QTRY_VERIFY(client.isConnected());
    client.sendCommand(q("MARK"));
    QVERIFY(server.waitForLine(q("MARK")));
    QCOMPARE(errors, 1);
    QCOMPARE(diagnostics.count(q("[TCP] Disconnected!")), 1);
}

void TcpLossesTest::clientGoesWithTheLoss_data()
{
    QTest::addColumn<bool>("withTheError"); // else with disconnected()
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("error") << true << QByteArray();
    QTest::newRow("disconnected") << false << QByteArray();
    QTest::newRow("error, overlong message") << true << QByteArray("AUDIO 1 99999999\r\n");
    QTest::newRow("disconnected, overlong message") << false << QByteArray("AUDIO 1 99999999\r\n");
    QTest::newRow("error, kicked") << true << QByteArray("KICKED|x\r\n");
    QTest::newRow("disconnected, kicked") << false << QByteArray("KICKED|x\r\n");
}

void TcpLossesTest::clientGoesWithTheLoss()
{
    QFETCH(bool, withTheError);
    QFETCH(QByteArray, bytes);
    FakeServer server;
    auto client = std::make_unique<TcpClient>();
    bool gone = false;
    const auto destroy = [&] {
        // As a window does that closes: the client goes, and with it every further word of it.
        std::unique_ptr<TcpClient> last = std::move(client);
        if (last)
            last->disconnect(this);
        last.reset();
        gone = true;
    };
    if (withTheError)
        connect(client.get(), &TcpClient::errorOccurred, this, destroy);
    else
        connect(client.get(), &TcpClient::disconnected, this, destroy);
    QVERIFY(connectTo(*client, server));
    if (bytes.isEmpty())
        server.drop();
    else
        server.sendRaw(bytes);
    QTRY_VERIFY(gone);
    QTRY_VERIFY(!server.isClientConnected());
}

void TcpLossesTest::nothingIsSentAfterTheLoss()
{
    LogCapture diagnostics; // a write to a closed socket would be a warning
    FakeServer server;
    TcpClient client;
    int sent = 0;
    connect(&client, &TcpClient::errorOccurred, this, [&] {
        client.sendCommand(q("LATE"));
        ++sent;
    });
    QVERIFY(connectTo(client, server));
    server.drop(true);
    QTRY_VERIFY(!client.isConnected());
    QCOMPARE(sent, 1);
    client.sendCommand(q("LATE"));
    QVERIFY(connectTo(client, server));
    client.sendCommand(q("MARK"));
    QVERIFY(server.waitForLine(q("MARK")));
    QCOMPARE(server.lines(), QStringList{q("MARK")});
}

void TcpLossesTest::endIsToldAtOnce_data()
{
    QTest::addColumn<Action>("end");
    QTest::newRow("disconnect") << Action([](TcpClient &client) { client.disconnectFromServer(); });
    QTest::newRow("abort") << Action([](TcpClient &client) { client.abortConnection(); });
    QTest::newRow("connect again") << Action([](TcpClient &client) { client.connectToServer(q("127.0.0.1"), 1); });
}

void TcpLossesTest::endIsToldAtOnce()
{
    QFETCH(Action, end);
    FakeServer server;
    TcpClient client;
    SignalLog log(&client);
    QVERIFY(connectTo(client, server));
    log.clear();
    end(client);
    QVERIFY(!client.isConnected());
    QCOMPARE(log.entries(), QStringList{q("disconnected()")});
    QTRY_VERIFY(!server.isClientConnected());
    QCOMPARE(log.entries().count(q("disconnected()")), 1);
}

void TcpLossesTest::attemptIsDropped_data()
{
    QTest::addColumn<Action>("end");
    QTest::newRow("disconnect") << Action([](TcpClient &client) { client.disconnectFromServer(); });
    QTest::newRow("abort") << Action([](TcpClient &client) { client.abortConnection(); });
}

void TcpLossesTest::attemptIsDropped()
{
    QFETCH(Action, end);
    FakeServer server;
    TcpClient client;
    SignalLog log(&client);
    client.connectToServer(server.host(), server.port());
    QVERIFY(client.socketState() != QAbstractSocket::UnconnectedState);
    end(client);
    QCOMPARE(client.socketState(), QAbstractSocket::UnconnectedState);
    QVERIFY(connectTo(client, server)); // what was left of the attempt would come before this
    QCOMPARE(log.entries(), QStringList{q("connected()")});
}

EVOX_TEST_MAIN(TcpLossesTest, QCoreApplication)
#include "tst_tcplosses.moc"
