// What an administrator's window remembers of the requests for a device reset.
#include "AdminUsers.h"
#include "net/TcpClient.h"
#include "support/FakeServer.h"
#include "support/TestMain.h"
#include "ui/admin/HwidRequests.h"

#include <QSignalSpy>

#include <memory>

using namespace AdminUsers;

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

const QDateTime kWhen({2025, 3, 9}, {7, 5});

QString callsigns(const HwidRequests &requests)
{
    QStringList texts;
    for (const HwidRequests::Request &request : requests.all())
        texts.append(request.callsign);
    return texts.join(QLatin1Char(' '));
}

QVariantMap account(int id, const char *callsign)
{
    return user(id, {{q("callsign"), q(callsign)}});
}

} // namespace

class HwidRequestsTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aUserIsListedOnce_data();
    void aUserIsListedOnce();
    void theOldestGoes();
    void resetSettles();
    void whoIsNoAccountAnyMoreGoes_data();
    void whoIsNoAccountAnyMoreGoes();
    void loginRepeatsWhatIsOpen();
    void dismissedStaysAwayAtALogin();
    void dismissedIsNewWhenAskedAnew();
    void dismissedAndResetIsNewAtALogin();
    void endsWithTheAccount_data();
    void endsWithTheAccount();

private:
    void connectClient();
    void send(const char *line);
    /// A login, with what the server tells of open requests, and the answer to the question for the rooms.
    void logIn(const QStringList &open, int userId = 4, bool admin = true);

    std::unique_ptr<FakeServer> m_server;
    std::unique_ptr<TcpClient> m_client;
    std::unique_ptr<HwidRequests> m_requests;
};

void HwidRequestsTest::init()
{
    m_server = std::make_unique<FakeServer>();
    m_client = std::make_unique<TcpClient>();
    m_requests = std::make_unique<HwidRequests>(m_client.get());
    connectClient();
}

void HwidRequestsTest::cleanup()
{
    m_requests.reset();
    m_client.reset();
    m_server.reset();
}

void HwidRequestsTest::connectClient()
{
    QSignalSpy connected(m_client.get(), &TcpClient::connected);
    m_client->connectToServer(m_server->host(), m_server->port());
    QVERIFY(connected.wait());
    QVERIFY(m_server->waitForClient());
}

/// Sends it, and waits until it and all before it were dispatched.
void HwidRequestsTest::send(const char *line)
{
    QSignalSpy errors(m_client.get(), &TcpClient::errorOccurred);
    m_server->send(q(line));
    m_server->send(q("ERROR|end"));
    QVERIFY(errors.wait());
}

void HwidRequestsTest::logIn(const QStringList &open, int userId, bool admin)
{
    m_server->send(q("LOGIN_OK|token|YB4D|%1|%2").arg(admin ? q("True") : q("False")).arg(userId));
    for (const QString &request : open)
        m_server->send(q("ADMIN_NOTIFICATION|HWID_RESET_REQUEST|") + request);
    send("ROOMS|Lobby");
}

void HwidRequestsTest::aUserIsListedOnce_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<QString>("listed");
    QTest::addColumn<int>("userId"); // of the first one
    QTest::newRow("again") << q("YB1A:1") << q("YB1A:1") << q("YB1A") << 1;
    QTest::newRow("small letters") << q("YB1A") << q("yb1a") << q("YB1A") << 0;
    QTest::newRow("the id comes later") << q("YB1A") << q("YB1A:7") << q("YB1A") << 7;
    QTest::newRow("the id came before") << q("YB1A:7") << q("YB1A") << q("YB1A") << 7;
    QTest::newRow("another callsign now") << q("YB1A:7") << q("YB1B:7") << q("YB1B") << 7;
    QTest::newRow("two users") << q("YB1A:1") << q("YB1B:2") << q("YB1A YB1B") << 1;
    QTest::newRow("two users of a callsign") << q("YB1A:1") << q("YB1A:2") << q("YB1A YB1A") << 1;
    QTest::newRow("a number that is no id") << q("YB1A:-3") << q("YB1A:99999999999") << q("YB1A") << 0;
}

void HwidRequestsTest::aUserIsListedOnce()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(QString, listed);
    QFETCH(int, userId);
    QSignalSpy changed(m_requests.get(), &HwidRequests::changed);
    m_requests->add(first, kWhen);
    m_requests->add(second, kWhen.addSecs(60));
    QCOMPARE(callsigns(*m_requests), listed);
    QCOMPARE(m_requests->all().first().userId, userId);
    QCOMPARE(m_requests->all().last().when, kWhen.addSecs(60));
    QCOMPARE(changed.size(), 2);
}

void HwidRequestsTest::theOldestGoes()
{
    for (int i = 0; i <= HwidRequests::kMost; ++i)
        m_requests->add(QStringLiteral("YB%1:%2").arg(i).arg(i + 1), kWhen);
    QCOMPARE(m_requests->all().size(), HwidRequests::kMost);
    QCOMPARE(m_requests->all().first().callsign, q("YB1"));
    QCOMPARE(m_requests->all().last().callsign, q("YB500"));
}

/// By this administrator or by another one: the server tells them all.
void HwidRequestsTest::resetSettles()
{
    for (const char *details : {"YB1A:1", "YB1AB:2"})
        m_requests->add(q(details), kWhen);
    send("ADMIN_RESET_HWID_OK|YB1A");
    QCOMPARE(callsigns(*m_requests), q("YB1AB"));
}

void HwidRequestsTest::whoIsNoAccountAnyMoreGoes_data()
{
    QTest::addColumn<QString>("details");
    QTest::addColumn<bool>("isFirst"); // asked before the first list came
    QTest::addColumn<QString>("listed");
    QTest::newRow("deleted") << q("YB1A:1") << true << QString();
    QTest::newRow("deleted before a second list") << q("YB1A:1") << false << QString();
    QTest::newRow("deleted, and no id") << q("yb1a") << false << QString();
    QTest::newRow("still there") << q("YB2B:2") << false << q("YB2B");
    QTest::newRow("still there, and no id") << q("yb2b") << false << q("yb2b");
    QTest::newRow("in no list ever") << q("YB9Z:9") << false << q("YB9Z");
    QTest::newRow("in the second list") << q("YB3C:3") << true << q("YB3C");
}

void HwidRequestsTest::whoIsNoAccountAnyMoreGoes()
{
    QFETCH(QString, details);
    QFETCH(bool, isFirst);
    QFETCH(QString, listed);
    const Users first{account(1, "YB1A"), account(2, "YB2B")};
    if (isFirst)
        m_requests->add(details, kWhen);
    emit m_client->allUsersReceived(first);
    if (!isFirst)
        m_requests->add(details, kWhen);
    QCOMPARE(m_requests->all().size(), 1);
    emit m_client->allUsersReceived({account(2, "YB2B"), account(3, "YB3C")});
    QCOMPARE(callsigns(*m_requests), listed);
}

void HwidRequestsTest::loginRepeatsWhatIsOpen()
{
    logIn({q("YB1A|1"), q("YB2B|2")});
    logIn({q("YB1A|1"), q("YB2B|2"), q("YB3C|3")});
    QCOMPARE(callsigns(*m_requests), q("YB1A YB2B YB3C"));
}

void HwidRequestsTest::dismissedStaysAwayAtALogin()
{
    logIn({q("YB1A|1"), q("YB2B|2")});
    m_requests->dismiss(0);
    m_requests->dismiss(7);
    QCOMPARE(callsigns(*m_requests), q("YB2B"));
    for (int again = 0; again < 3; ++again) {
        m_server->drop();
        QTRY_VERIFY(!m_client->isConnected());
        m_client->connectToServer(m_server->host(), m_server->port());
        QTRY_VERIFY(m_client->isConnected());
        QVERIFY(m_server->waitForClient(2 + again));
        logIn({q("YB1A|1"), q("YB2B|2")});
        QCOMPARE(callsigns(*m_requests), q("YB2B"));
    }
}

void HwidRequestsTest::dismissedIsNewWhenAskedAnew()
{
    logIn({q("YB1A|1")});
    m_requests->dismiss(0);
    send("ADMIN_NOTIFICATION|HWID_RESET_REQUEST|YB1A|1");
    QCOMPARE(callsigns(*m_requests), q("YB1A"));
    m_requests->dismiss(0);
    logIn({q("YB1A|1")});
    QCOMPARE(callsigns(*m_requests), QString());
    send("ADMIN_NOTIFICATION|HWID_RESET_REQUEST|YB1A|1"); // after what a login brings
    QCOMPARE(callsigns(*m_requests), q("YB1A"));
}

void HwidRequestsTest::dismissedAndResetIsNewAtALogin()
{
    logIn({q("YB1A|1")});
    m_requests->dismiss(0);
    send("ADMIN_RESET_HWID_OK|YB1A");
    logIn({q("YB1A|1")}); // asked while nobody was there
    QCOMPARE(callsigns(*m_requests), q("YB1A"));
}

void HwidRequestsTest::endsWithTheAccount_data()
{
    QTest::addColumn<int>("userId");
    QTest::addColumn<bool>("admin");
    QTest::newRow("another administrator") << 5 << true;
    QTest::newRow("administrator no more") << 4 << false;
}

void HwidRequestsTest::endsWithTheAccount()
{
    QFETCH(int, userId);
    QFETCH(bool, admin);
    logIn({q("YB1A|1"), q("YB2B|2")});
    m_requests->dismiss(0);
    logIn({}, userId, admin);
    QCOMPARE(callsigns(*m_requests), QString());
    logIn({q("YB1A|1")}, userId);
    QCOMPARE(callsigns(*m_requests), q("YB1A")); // he has dismissed nothing
}

EVOX_TEST_MAIN(HwidRequestsTest, QApplication)
#include "tst_hwidrequests.moc"
