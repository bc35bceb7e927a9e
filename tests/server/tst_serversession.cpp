#include "server/ServerRig.h"
#include "server/Session.h"
#include "support/TestMain.h"

#include <QSignalSpy>
#include <QTcpServer>

/// How long the server bears with a connection that says nothing, takes nothing or does not go.
class ServerSessionTest final : public QObject
{
    Q_OBJECT

private slots:
    void silentTalkerLosesTheChannel();
    void silentStrangerIsEnded();
    void strangerWhoPingsMayStay();
    void unreadAnswersAreFew_data();
    void unreadAnswersAreFew();
    void closingIsNotWaitedForInVain();
};

namespace {

constexpr int kMegabyte = 1024 * 1024;
constexpr std::chrono::milliseconds kShort{50};

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

/// Both ends of one connection.
class Line final
{
public:
    Line()
    {
        static_cast<void>(m_server.listen(QHostAddress(QHostAddress::LocalHost)));
        peer.connectToHost(m_server.serverAddress(), m_server.serverPort());
        if (!m_server.waitForNewConnection(5000))
            QTest::qFail("no connection", __FILE__, __LINE__);
        session = std::make_unique<Session>(m_server.nextPendingConnection(), nullptr);
    }

private:
    QTcpServer m_server;

public:
    QTcpSocket peer;
    std::unique_ptr<Session> session;
};

/// Everybody else has just been heard.
void look(ServerRig *rig, RawClient *other)
{
    QCOMPARE(other->answer(q("PING"), q("PONG")), q("PONG"));
    rig->server().endSilentSessions();
}

} // namespace

void ServerSessionTest::silentTalkerLosesTheChannel()
{
    ServerRig rig;
    auto silent = rig.client();
    QVERIFY(silent->enter(q("YB1A")));
    auto other = rig.client();
    QVERIFY(other->enter(q("YB2B")));
    QCOMPARE(silent->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
    for (int i = 0; i < ControlServer::kSilentLooks; ++i)
        look(&rig, other.get());
    QCOMPARE(other->answer(q("TX_START \"Lobby\""), q("TX_START")),
             q("TX_START_FAILED|Kanal sedang dipakai oleh YB1A"));
    look(&rig, other.get());
    const QString alone = q("USER_LIST|Lobby|2|YB2B|Op YB2B|RX|1|0");
    QVERIFY(other->until(alone).contains(alone));
    QCOMPARE(other->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
    QTRY_VERIFY(!silent->isConnected());
}

void ServerSessionTest::silentStrangerIsEnded()
{
    ServerRig rig;
    auto stranger = rig.client();
    auto other = rig.client();
    stranger->sendRaw("PIN"); // no line yet
    for (int i = 0; i <= ControlServer::kSilentLooks; ++i) {
        QVERIFY(stranger->isConnected());
        look(&rig, other.get());
    }
    QTRY_VERIFY(!stranger->isConnected());
}

/// A gateway registers on a connection that nobody logs in on, and its operator may take his time.
void ServerSessionTest::strangerWhoPingsMayStay()
{
    ServerRig rig;
    auto stranger = rig.client();
    for (int i = 0; i < 3 * ControlServer::kSilentLooks; ++i)
        look(&rig, stranger.get());
    QVERIFY(stranger
                ->answer(q("REGISTER_GATEWAY \"GW\" \"YH1AB\" \"-\" \"-\" \"-\" \"Op\" \"-\" \"secret\" \"-\" \"-\""),
                         q("REGISTER_"))
                .startsWith(q("REGISTER_OK|")));
}

void ServerSessionTest::unreadAnswersAreFew_data()
{
    QTest::addColumn<bool>("logsIn");
    QTest::addColumn<bool>("logsOut");
    QTest::addColumn<bool>("isDropped");
    QTest::newRow("stranger") << false << false << true;
    QTest::newRow("member") << true << false << false;
    QTest::newRow("turned out") << true << true << false;
}

void ServerSessionTest::unreadAnswersAreFew()
{
    QFETCH(bool, logsIn);
    QFETCH(bool, logsOut);
    Line line;
    Account account;
    account.id = 1;
    if (logsIn)
        line.session->logIn(account, {});
    if (logsOut)
        line.session->logOut();
    QSignalSpy closed(line.session.get(), &Session::closed);
    QByteArray told;
    // Nothing leaves before the event loop runs.
    line.session->send(QString(kMegabyte, QLatin1Char('x')));
    line.session->send(q("END"));
    QTRY_VERIFY(!closed.isEmpty() || (told += line.peer.readAll()).endsWith("END\r\n"));
    QTEST(!closed.isEmpty(), "isDropped");
}

void ServerSessionTest::closingIsNotWaitedForInVain()
{
    Line line;
    line.peer.setReadBufferSize(1);
    line.session->setClosingTime(kShort);
    QSignalSpy closed(line.session.get(), &Session::closed);
    line.session->send(QString(32 * kMegabyte, QLatin1Char('x'))); // more than the system holds for a reader
    line.session->close();
    QVERIFY(closed.isEmpty());
    QTRY_COMPARE(closed.size(), 1);
}

EVOX_TEST_MAIN(ServerSessionTest, QCoreApplication)
#include "tst_serversession.moc"
