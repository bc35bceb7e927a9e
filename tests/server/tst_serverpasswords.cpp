#include "server/LoginGuard.h"
#include "server/ServerRig.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <array>

/// Checking a password keeps the server busy: nobody may have it done without end, nor keep the others waiting with it.
class ServerPasswordsTest final : public QObject
{
    Q_OBJECT

private slots:
    void addressesThatCountAsOne_data();
    void addressesThatCountAsOne();
    void rightPasswordsAreCountedToo();
    void othersHaveTheirTurnBetweenLogins();
    void audioHasItsTurnBetweenConnections();
};

namespace {

constexpr std::array kCallsigns{"YB1A", "YB2B", "YB3C", "YB4D"};
/// Of "secret", and quickly checked.
const QByteArray kCheapHash =
    QByteArrayLiteral("$argon2id$v=19$m=8,t=1,p=1$83KtarNIFy78mn+ePwmd9w$MPoBoplb81vMNJjoSRdh8vdK8rIKwKQJFylDEwUgGks");
const QByteArray kLogin = QByteArrayLiteral("LOGIN YB1A secret pc\r\n");

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

void ServerPasswordsTest::addressesThatCountAsOne_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<bool>("areOne");
    const auto row = [](const char *name, const char *first, const char *second, bool areOne) {
        QTest::newRow(name) << q(first) << q(second) << areOne;
    };
    row("IPv4", "10.0.0.1", "10.0.0.2", false);
    row("IPv4 where both are listened for", "::ffff:10.0.0.1", "::ffff:10.0.0.2", false);
    row("IPv4 either way", "::ffff:10.0.0.1", "10.0.0.1", true);
    row("one network of IPv6", "2001:db8:0:1::1", "2001:db8:0:1:ffff::2", true);
    row("two networks of IPv6", "2001:db8:0:1::1", "2001:db8:0:2::1", false);
    row("two hosts on the link", "fe80::1%eth0", "fe80::2%eth0", false);
}

void ServerPasswordsTest::addressesThatCountAsOne()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(bool, areOne);
    LoginGuard guard(1);
    guard.count(first, 0);
    QVERIFY(!guard.mayTry(first, 1));
    QCOMPARE(guard.mayTry(second, 1), !areOne);
}

void ServerPasswordsTest::rightPasswordsAreCountedToo()
{
    ServerRig rig;
    rig.change(q("YB1A"), [](Account &account) { account.passwordHash = kCheapHash; });
    auto client = rig.client();
    client->sendRaw(kLogin.repeated(ControlServer::kPasswordChecks));
    for (int i = 0; i < ControlServer::kPasswordChecks; ++i)
        QVERIFY(client->until(q("LOGIN_")).last().startsWith(q("LOGIN_OK|")));
    QCOMPARE(client->answer(q("USER_CHANGE_PASSWORD \"secret\" \"newsecret\""), q("USER_CHANGE")),
             q("USER_CHANGE_PASSWORD_FAIL|Terlalu banyak percobaan, coba lagi nanti"));
    auto another = rig.client();
    const QString wait = q("LOGIN_FAILED|Terlalu banyak percobaan login, coba lagi nanti");
    QCOMPARE(another->login(q("YB2B")), wait);
    rig.now += LoginGuard::kWindow;
    QVERIFY(another->login(q("YB2B")).startsWith(q("LOGIN_OK|")));
}

void ServerPasswordsTest::othersHaveTheirTurnBetweenLogins()
{
    constexpr int kLogins = 8;
    LogCapture log;
    ServerRig rig;
    auto client = rig.client();
    auto other = rig.client();
    client->sendRaw(kLogin.repeated(kLogins));
    QCOMPARE(other->answer(q("PING"), q("PONG")), q("PONG"));
    const int before = log.count(q("YB1A 127.0.0.1 logged in"));
    QVERIFY2(before < kLogins, "they were all handled first");
    for (int i = 0; i < kLogins; ++i)
        QVERIFY(client->until(q("LOGIN_")).last().startsWith(q("LOGIN_OK|")));
}

/// Each is one line of its own connection, so the event loop finds them all at once.
void ServerPasswordsTest::audioHasItsTurnBetweenConnections()
{
    ServerRig rig;
    auto listener = rig.client();
    std::vector<std::unique_ptr<RawClient>> clients;
    for (size_t i = 0; i < kCallsigns.size(); ++i)
        clients.push_back(rig.client());
    LogCapture log;
    bool isSent = false;
    int loginsBefore = -1;      // those that were over when the datagram was answered
    rig.server().setClock([&] { // asked at each line and each login
        if (!isSent)
            listener->sendUdpSilently("PING");
        else if (loginsBefore < 0 && listener->hasDatagram())
            loginsBefore = log.lines().filter(q(" logged in")).size();
        isSent = true;
        return rig.now;
    });
    for (size_t i = 0; i < clients.size(); ++i)
        clients[i]->send(QStringLiteral("LOGIN %1 secret pc").arg(q(kCallsigns[i])));
    for (const auto &client : clients)
        QVERIFY(client->until(q("LOGIN_")).last().startsWith(q("LOGIN_OK|")));
    QVERIFY2(loginsBefore == 0 || loginsBefore == 1, qPrintable(QString::number(loginsBefore)));
    QCOMPARE(listener->nextDatagram(), QByteArray("PONG"));
}

EVOX_TEST_MAIN(ServerPasswordsTest, QCoreApplication)
#include "tst_serverpasswords.moc"
