#include "SignalLog.h"
#include "net/TcpClient.h"
#include "support/FakeServer.h"
#include "support/TestMain.h"

#include <QEventLoop>

// Receivers open boxes, and a box is an event loop inside the signal.
class TcpReentranceTest final : public QObject
{
    Q_OBJECT

private slots:
    void laterLinesGoOnUnderABox_data();
    void laterLinesGoOnUnderABox();
    void boxesUnderBoxes();
    void clientGoesUnderABox_data();
    void clientGoesUnderABox();
    void boxAtConnectedSeesLines();
    void clientGoesWhenConnected();
    void newConnectionSurvivesAnOldKick();
    void overlongMessageUnderABox();
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

[[nodiscard]] bool connectTo(TcpClient &client, FakeServer &server)
{
    client.connectToServer(server.host(), server.port());
    return QTest::qWaitFor([&] { return client.isConnected(); }) && server.waitForClient();
}

} // namespace

void TcpReentranceTest::laterLinesGoOnUnderABox_data()
{
    QTest::addColumn<QByteArray>("blocking"); // the line whose receiver blocks
    QTest::newRow("kicked") << QByteArray("KICKED|x");
    QTest::newRow("banned") << QByteArray("BANNED|x");
    QTest::newRow("wrong password") << QByteArray("LOGIN_FAILED|Password salah");
    QTest::newRow("login") << QByteArray("LOGIN_OK|t||False|1");
}

void TcpReentranceTest::laterLinesGoOnUnderABox()
{
    QFETCH(QByteArray, blocking);
    FakeServer server;
    TcpClient client;
    QStringList rooms; // every dispatched list, with a mark where the box closed
    QEventLoop box;
    const auto block = [&] {
        box.exec();
        rooms.append(q("closed"));
    };
    connect(&client, &TcpClient::kicked, this, block);
    connect(&client, &TcpClient::banned, this, block);
    connect(&client, &TcpClient::loginResult, this, block);
    connect(&client, &TcpClient::roomListReceived, this, [&](const QStringList &list) {
        rooms.append(list);
        if (list.first() == q("2"))
            server.sendRaw("MS|3\r\nROOMS|4\r\n");
        if (list.first() == q("4"))
            box.quit();
    });
    QVERIFY(connectTo(client, server));
    // Two lines behind the blocking one in the same segment, two more under the box.
    server.sendRaw("ROOMS|0\r\n" + blocking + "\r\nROOMS|1\r\nROOMS|2\r\nROO");
    QTRY_COMPARE(rooms, QStringList({q("0"), q("1"), q("2"), q("3"), q("4"), q("closed")}));
}

void TcpReentranceTest::boxesUnderBoxes()
{
    FakeServer server;
    TcpClient client;
    QStringList order;
    connect(&client, &TcpClient::loginResult, this, [&](bool, const QString &message) {
        order.append(q("open ") + message);
        QEventLoop box;
        connect(&client, &TcpClient::transmitFailed, &box, [&, message](const QString &which) {
            if (which == message)
                box.quit();
        });
        box.exec();
        order.append(q("close ") + message);
    });
    connect(&client, &TcpClient::roomListReceived, this, [&](const QStringList &list) {
        order.append(list);
        if (list.first() == q("4"))
            server.sendRaw("TX_START_FAILED|b\r\nTX_START_FAILED|a\r\nROOMS|5\r\n");
    });
    QVERIFY(connectTo(client, server));
    server.sendRaw("LOGIN_FAILED|a\r\nROOMS|1\r\nLOGIN_FAILED|b\r\nROOMS|2\r\nLOGIN_FAILED|c\r\nROOMS|3\r\n"
                   "TX_START_FAILED|c\r\nROOMS|4\r\n");
    QTRY_VERIFY(order.contains(q("close a")));
    QTRY_VERIFY(order.contains(q("5")));
    QStringList lists;
    for (const QString &entry : qAsConst(order))
        if (entry.size() == 1)
            lists.append(entry);
    QCOMPARE(lists, QStringList({q("1"), q("2"), q("3"), q("4"), q("5")}));
    QCOMPARE(order.mid(0, 5), QStringList({q("open a"), q("1"), q("open b"), q("2"), q("open c")}));
    QVERIFY(order.indexOf(q("close c")) < order.indexOf(q("close b")));
    QVERIFY(order.indexOf(q("close b")) < order.indexOf(q("close a")));
}

void TcpReentranceTest::clientGoesUnderABox_data()
{
    QTest::addColumn<QByteArray>("line");
    for (const char *line :
         {"KICKED|x", "BANNED|x", "LOGIN_OK|t||False|1||warning|||||||||key", "LOGIN_FAILED|x", "JOIN_OK|Lobby|key",
          "MOVED|Lobby||key", "ROOMS|a", "ERROR|x", "AUDIO 1 1\r\nx", "USER_PROFILE|{}"})
        QTest::newRow(line) << QByteArray(line);
}

void TcpReentranceTest::clientGoesUnderABox()
{
    QFETCH(QByteArray, line);
    FakeServer server;
    auto client = std::make_unique<TcpClient>();
    bool gone = false;
    const auto destroy = [&] {
        QCoreApplication::processEvents(); // as a box does
        client.reset();
        gone = true;
    };
    connect(client.get(), &TcpClient::kicked, this, destroy);
    connect(client.get(), &TcpClient::banned, this, destroy);
    connect(client.get(), &TcpClient::sessionKeyReceived, this, destroy);
    connect(client.get(), &TcpClient::loginResult, this, destroy);
    connect(client.get(), &TcpClient::roomKeyReceived, this, destroy);
    connect(client.get(), &TcpClient::roomListReceived, this, destroy);
    connect(client.get(), &TcpClient::errorOccurred, this, destroy);
    connect(client.get(), &TcpClient::audioReceived, this, destroy);
    connect(client.get(), &TcpClient::userProfileReceived, this, destroy);
    QVERIFY(connectTo(*client, server));
    server.sendRaw(line + "\r\nTX_START_OK\r\nTX_START_OK\r\n");
    QTRY_VERIFY(gone);
    QTRY_VERIFY(!server.isClientConnected());
}

void TcpReentranceTest::boxAtConnectedSeesLines()
{
    FakeServer server;
    TcpClient client;
    QEventLoop box;
    QStringList rooms;
    connect(&client, &TcpClient::connected, this, [&] {
        server.send(q("ROOMS|a"));
        box.exec();
    });
    connect(&client, &TcpClient::roomListReceived, this, [&](const QStringList &list) {
        rooms.append(list);
        box.quit();
    });
    client.connectToServer(server.host(), server.port());
    QVERIFY(server.waitForClient());
    QTRY_COMPARE(rooms, QStringList{q("a")});
}

void TcpReentranceTest::clientGoesWhenConnected()
{
    FakeServer server;
    auto client = std::make_unique<TcpClient>();
    connect(client.get(), &TcpClient::connected, this, [&] { client.reset(); });
    client->connectToServer(server.host(), server.port());
    QTRY_VERIFY(!client);
    QVERIFY(server.waitForLine(q("QUIT")));
}

void TcpReentranceTest::newConnectionSurvivesAnOldKick()
{
    FakeServer server;
    TcpClient client;
    QEventLoop box;
    connect(&client, &TcpClient::kicked, this, [&] {
        server.drop();
        box.exec();
    });
    connect(
        &client, &TcpClient::disconnected, &box, [&] { client.connectToServer(server.host(), server.port()); },
        Qt::QueuedConnection);
    QVERIFY(connectTo(client, server));
    connect(&client, &TcpClient::connected, &box, &QEventLoop::quit);
    server.send(q("KICKED|x"));
    QVERIFY(server.waitForClient(2));
    client.sendCommand(q("MARK"));
    QVERIFY(server.waitForLine(q("MARK")));
    QVERIFY(client.isConnected());
    QCOMPARE(server.count(q("QUIT")), 0);
}

void TcpReentranceTest::overlongMessageUnderABox()
{
    FakeServer server;
    TcpClient client;
    SignalLog log(&client);
    QEventLoop box;
    connect(&client, &TcpClient::loginResult, this, [&] { box.exec(); });
    connect(&client, &TcpClient::errorOccurred, &box, &QEventLoop::quit);
    QVERIFY(connectTo(client, server));
    log.clear();
    server.sendRaw("LOGIN_FAILED|x\r\nAUDIO 1 99999999\r\n");
    QTRY_COMPARE(log.entries(), QStringList({q("loginResult(false, x)"), q("errorOccurred(Server message too long)"),
                                             q("disconnected()")}));
}

EVOX_TEST_MAIN(TcpReentranceTest, QCoreApplication)
#include "tst_tcpreentrance.moc"
