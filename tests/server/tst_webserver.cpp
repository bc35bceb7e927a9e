#include "server/WebServer.h"
#include "server/WebSite.h"
#include "support/TestMain.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTcpSocket>

#include <memory>
#include <vector>

class WebServerTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void servesAnOrdinaryClient_data();
    void servesAnOrdinaryClient();
    void headHasNoBody();
    void bodyOfAPostIsNotReset();
    void answersRawBytes_data();
    void answersRawBytes();
    void requestInSmallPieces();
    void floodEnds();
    void cutOffRequestIsForgotten();
    void slowRequestIsEnded();
    void readerThatStopsIsEnded();
    void connectionsAreLimited();
    void survivesRandomBytes();
    void takenPortIsReported();

private:
    [[nodiscard]] std::unique_ptr<QTcpSocket> connected() const;
    [[nodiscard]] QByteArray exchange(const QByteArray &bytes) const;
    [[nodiscard]] std::unique_ptr<QNetworkReply> finished(QNetworkReply *reply) const;
    [[nodiscard]] QNetworkRequest request(const QString &target) const;

    std::unique_ptr<WebServer> m_server;
    QNetworkAccessManager m_network;
};

namespace {

const QByteArray kGood = QByteArrayLiteral("GET /update/ HTTP/1.0\r\n\r\n");
const QByteArray kUpdate = QByteArrayLiteral("{\"version\":\"9.9\"}");
constexpr std::chrono::milliseconds kShort{50};

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

void WebServerTest::init()
{
    const WebSite site({CallsignRegistry::sample(), false, kUpdate});
    m_server = std::make_unique<WebServer>([site](const HttpRequest &request) { return site.answer(request); });
    QString error;
    QVERIFY2(m_server->listen(q("127.0.0.1"), 0, &error), qPrintable(error));
}

void WebServerTest::cleanup()
{
    m_server.reset();
}

std::unique_ptr<QTcpSocket> WebServerTest::connected() const
{
    auto socket = std::make_unique<QTcpSocket>();
    socket->connectToHost(QHostAddress(QHostAddress::LocalHost), m_server->port());
    if (!QTest::qWaitFor([&] { return socket->state() == QAbstractSocket::ConnectedState; }))
        QTest::qFail("no connection", __FILE__, __LINE__);
    return socket;
}

/// What comes back until the server ends the connection.
QByteArray WebServerTest::exchange(const QByteArray &bytes) const
{
    const auto socket = connected();
    socket->write(bytes);
    if (!QTest::qWaitFor([&] { return socket->state() == QAbstractSocket::UnconnectedState; }, 20000))
        QTest::qFail("the connection stayed open", __FILE__, __LINE__);
    return socket->readAll();
}

std::unique_ptr<QNetworkReply> WebServerTest::finished(QNetworkReply *reply) const
{
    if (!QTest::qWaitFor([reply] { return reply->isFinished(); }))
        QTest::qFail("no answer", __FILE__, __LINE__);
    return std::unique_ptr<QNetworkReply>(reply);
}

QNetworkRequest WebServerTest::request(const QString &target) const
{
    QNetworkRequest request(QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(m_server->port()).arg(target)));
    request.setRawHeader("User-Agent", "Mozilla/5.0");
    request.setRawHeader("X-Requested-With", "XMLHttpRequest");
    return request;
}

void WebServerTest::servesAnOrdinaryClient_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("part");
    QTest::newRow("callsign") << q("/registrant/searchDataIar/?callsign=YH0GW") << 200 << QByteArray("none-style");
    QTest::newRow("picture") << q("/images/not-found.png") << 200 << QByteArray("PNG");
    QTest::newRow("update") << q("/update/") << 200 << kUpdate;
    QTest::newRow("elsewhere") << q("/elsewhere") << 404 << QByteArray("404 Not Found");
}

void WebServerTest::servesAnOrdinaryClient()
{
    QFETCH(QString, target);
    QFETCH(QByteArray, part);
    const auto reply = finished(m_network.get(request(target)));
    QTEST(reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), "status");
    QVERIFY(reply->readAll().contains(part));
    QTRY_COMPARE(m_server->connections(), 0);
}

void WebServerTest::headHasNoBody()
{
    const auto reply = finished(m_network.head(request(q("/update/"))));
    QCOMPARE(reply->error(), QNetworkReply::NoError);
    QCOMPARE(reply->header(QNetworkRequest::ContentLengthHeader).toInt(), kUpdate.size());
    QVERIFY(exchange("HEAD /update/ HTTP/1.0\r\n\r\n").endsWith("\r\n\r\n"));
}

void WebServerTest::bodyOfAPostIsNotReset()
{
    const auto reply = finished(m_network.post(request(q("/update/")), QByteArray(64 * 1024, 'x')));
    QCOMPARE(reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), 405);
    QCOMPARE(reply->rawHeader("Allow"), QByteArray("GET, HEAD"));
}

void WebServerTest::answersRawBytes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("status");
    QTest::newRow("HTTP/1.0") << kGood << QByteArray("200");
    QTest::newRow("HTTP/1.1") << QByteArray("GET /update/ HTTP/1.1\r\nHost: x\r\n\r\n") << QByteArray("200");
    QTest::newRow("asks to keep the connection")
        << QByteArray("GET /update/ HTTP/1.1\r\nHost: x\r\nConnection: keep-alive\r\n\r\n") << QByteArray("200");
    QTest::newRow("deletes") << QByteArray("DELETE /update/ HTTP/1.0\r\n\r\n") << QByteArray("405");
    QTest::newRow("unknown method") << QByteArray("BREW / HTTP/1.0\r\n\r\n") << QByteArray("405");
    QTest::newRow("no HTTP") << QByteArray("LOGIN YB1A secret\r\n\r\n") << QByteArray("400");
    QTest::newRow("no host") << QByteArray("GET / HTTP/1.1\r\n\r\n") << QByteArray("400");
    QTest::newRow("huge path") << "GET /" + QByteArray(9000, 'x') + " HTTP/1.0\r\n\r\n" << QByteArray("431");
    QTest::newRow("huge field") << "GET / HTTP/1.0\r\nA: " + QByteArray(9000, 'x') + "\r\n\r\n" << QByteArray("431");
    QTest::newRow("many fields") << "GET / HTTP/1.0\r\n" + QByteArray("A: b\r\n").repeated(2000) + "\r\n"
                                 << QByteArray("431");
}

void WebServerTest::answersRawBytes()
{
    QFETCH(QByteArray, bytes);
    const QByteArray answer = exchange(bytes);
    QTEST(answer.mid(9, 3), "status");
    QCOMPARE(answer.count("HTTP/1.1 "), 1);
    QTRY_COMPARE(m_server->connections(), 0);
}

void WebServerTest::requestInSmallPieces()
{
    const auto socket = connected();
    for (const char byte : kGood) {
        socket->write(&byte, 1);
        QSignalSpy written(socket.get(), &QTcpSocket::bytesWritten);
        QVERIFY(!written.isEmpty() || written.wait());
    }
    QTRY_COMPARE(socket->state(), QAbstractSocket::UnconnectedState);
    QVERIFY(socket->readAll().endsWith(kUpdate));
}

void WebServerTest::floodEnds()
{
    const auto socket = connected();
    socket->write(QByteArray(8 * 1024 * 1024, 'x'));
    QTRY_COMPARE_WITH_TIMEOUT(socket->state(), QAbstractSocket::UnconnectedState, 20000);
    QVERIFY(exchange(kGood).endsWith(kUpdate));
}

void WebServerTest::cutOffRequestIsForgotten()
{
    auto socket = connected();
    socket->write(kGood.left(10));
    QTRY_COMPARE(m_server->connections(), 1);
    socket->abort();
    QTRY_COMPARE(m_server->connections(), 0);
}

void WebServerTest::slowRequestIsEnded()
{
    m_server->setPatience(kShort);
    QVERIFY(exchange(kGood.left(10)).startsWith("HTTP/1.1 408 "));
    QVERIFY(exchange({}).startsWith("HTTP/1.1 408 "));
    QTRY_COMPARE(m_server->connections(), 0);
}

void WebServerTest::readerThatStopsIsEnded()
{
    const QByteArray body(64 * 1024 * 1024, 'x'); // more than any system keeps for a connection
    WebServer server([&body](const HttpRequest &) { return HttpResponse{200, "text/plain", body}; });
    server.setPatience(kShort);
    QString error;
    QVERIFY2(server.listen(q("127.0.0.1"), 0, &error), qPrintable(error));
    QTcpSocket socket;
    socket.setReadBufferSize(1);
    socket.connectToHost(QHostAddress(QHostAddress::LocalHost), server.port());
    socket.write(kGood);
    QTRY_COMPARE(socket.bytesAvailable(), 1);
    QTRY_COMPARE(server.connections(), 0);
}

void WebServerTest::connectionsAreLimited()
{
    std::vector<std::unique_ptr<QTcpSocket>> idle;
    for (int i = 0; i < WebServer::kMostConnections; ++i)
        idle.push_back(connected());
    QTRY_COMPARE(m_server->connections(), WebServer::kMostConnections);
    const auto extra = connected();
    QTRY_COMPARE(extra->state(), QAbstractSocket::UnconnectedState);
    QCOMPARE(extra->readAll(), QByteArray());
    idle.pop_back();
    QTRY_COMPARE(m_server->connections(), WebServer::kMostConnections - 1);
    QVERIFY(exchange(kGood).endsWith(kUpdate));
}

void WebServerTest::survivesRandomBytes()
{
    QRandomGenerator random(20261121);
    for (int round = 0; round < 100; ++round) {
        const auto socket = connected();
        QByteArray bytes = round % 2 ? kGood.left(random.bounded(kGood.size())) : QByteArray();
        for (int i = random.bounded(300); i > 0; --i)
            bytes += random.bounded(10) ? char(random.bounded(256)) : '\n';
        socket->write(bytes);
        socket->flush();
        if (random.bounded(2))
            socket->abort();
    }
    QTRY_VERIFY(m_server->connections() < WebServer::kMostConnections);
    QVERIFY(exchange(kGood).endsWith(kUpdate));
}

void WebServerTest::takenPortIsReported()
{
    WebServer second([](const HttpRequest &) { return HttpResponse(); });
    QString error;
    QVERIFY(!second.listen(q("127.0.0.1"), m_server->port(), &error));
    QVERIFY(!error.isEmpty());
    QCOMPARE(second.port(), quint16(0));
}

EVOX_TEST_MAIN(WebServerTest, QCoreApplication)
#include "tst_webserver.moc"
