#include "net/protocol/Commands.h"
#include "server/Passwords.h"
#include "server/ServerRig.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

class ServerRegistrationTest final : public QObject
{
    Q_OBJECT

private slots:
    void newGatewayWaitsForApproval();
    void autoApproval();
    void pendingListensAndDoesNotTransmit();
    void approvalReachesALoggedInGateway();
    void firstLoginBindsTheDevice();
    void loginWithoutADeviceBindsNothing_data();
    void loginWithoutADeviceBindsNothing();
    void refusalsLeaveNoAccount_data();
    void refusalsLeaveNoAccount();
    void floodIsSlowedDown();
    void administratorsAreExempt();
    void onlySoManyWaitForApproval();
    void registeringDoesNotBlockLogins();
    void passwordsStayOutOfTheLog();
};

namespace {

const QString kPending = QStringLiteral("REGISTER_OK|Pendaftaran berhasil, menunggu persetujuan admin");
const QString kFlood = QStringLiteral("REGISTER_FAILED|Terlalu banyak pendaftaran, coba lagi nanti");

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

QString line(const QString &callsign, const QString &password = QStringLiteral("x"))
{
    return Commands::registerGateway({q("RF-GW Bukit"), callsign, q("-"), q("-"), q("-"), q("Sari"), q("YB0ABC"),
                                      password, q("sari@localhost"), q("-")});
}

QString apply(RawClient &client, const QString &command)
{
    return client.answer(command, q("REGISTER_"));
}

} // namespace

void ServerRegistrationTest::newGatewayWaitsForApproval()
{
    ServerRig rig;
    auto client = rig.client();
    QCOMPARE(apply(*client, line(q("yh0gw"))), kPending);
    const Account account = *rig.store().account(q("YH0GW"));
    QCOMPARE(account.status, q("pending"));
    QVERIFY(!account.approved && !account.admin);
    QCOMPARE(account.gatewayName, q("RF-GW Bukit"));
    QVERIFY(Passwords::matches(account.passwordHash, q("x")));

    auto admin = rig.client();
    QVERIFY(admin->login(q("YB4D")).startsWith(q("LOGIN_OK")));
    const QString pending = admin->answer(q("ADMIN_PENDING"), q("ADMIN_PENDING"));
    const QJsonArray users = QJsonDocument::fromJson(pending.section(QLatin1Char('|'), 1).toUtf8()).array();
    QCOMPARE(users.size(), 1);
    QCOMPARE(users.at(0).toObject().value(q("callsign")).toString(), q("YH0GW"));
    QCOMPARE(users.at(0).toObject().value(q("status")).toString(), q("pending"));

    QCOMPARE(admin->answer(QStringLiteral("ADMIN_APPROVE_USER %1").arg(account.id), q("ADMIN")),
             q("ADMIN_APPROVE_USER_OK"));
    QCOMPARE(rig.store().account(q("YH0GW"))->status, q("active"));
    QVERIFY(rig.store().account(q("YH0GW"))->approved);
    QCOMPARE(admin->answer(q("ADMIN_PENDING"), q("ADMIN_PENDING")), q("ADMIN_PENDING|[]"));
}

void ServerRegistrationTest::autoApproval()
{
    ServerRig rig(true);
    auto client = rig.client();
    QCOMPARE(apply(*client, line(q("YH0GW"))), q("REGISTER_OK|Pendaftaran berhasil, akun langsung aktif"));
    QCOMPARE(rig.store().account(q("YH0GW"))->status, q("active"));
    QVERIFY(rig.store().account(q("YH0GW"))->approved);
    QVERIFY(client->login(q("YH0GW"), q("x")).startsWith(q("LOGIN_OK")));
    QVERIFY(client->answer(q("JOIN Lobby"), q("JOIN_")).startsWith(q("JOIN_OK")));
    QCOMPARE(client->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
}

void ServerRegistrationTest::pendingListensAndDoesNotTransmit()
{
    ServerRig rig;
    auto fresh = rig.client();
    QCOMPARE(apply(*fresh, line(q("YH0GW"), q("secret"))), kPending);
    QVERIFY(fresh->enter(q("YH0GW")));
    auto member = rig.client();
    QVERIFY(member->enter(q("YB1A")));

    QCOMPARE(member->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
    member->sendUdpSilently(QByteArray::fromHex("00000000") + "over");
    QVERIFY2(!fresh->nextDatagram().isEmpty(), "a pending gateway hears the room");
    QCOMPARE(member->answer(q("TX_STOP \"Lobby\""), q("TX_STOP")), q("TX_STOP_OK"));

    QCOMPARE(fresh->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_FAILED|Akun belum disetujui"));
    fresh->sendUdpSilently(QByteArray::fromHex("7fffffff") + "over");
    QCOMPARE(member->nextDatagram(), QByteArray());
}

void ServerRegistrationTest::approvalReachesALoggedInGateway()
{
    ServerRig rig;
    auto fresh = rig.client();
    QCOMPARE(apply(*fresh, line(q("YH0GW"), q("secret"))), kPending);
    QVERIFY(fresh->enter(q("YH0GW")));
    auto admin = rig.client();
    QVERIFY(admin->login(q("YB4D")).startsWith(q("LOGIN_OK")));
    QCOMPARE(admin->answer(q("ADMIN_APPROVE_USER 5"), q("ADMIN")), q("ADMIN_APPROVE_USER_OK"));
    QCOMPARE(fresh->until(q("USER_LIST")).last(), q("USER_LIST|Lobby|5|YH0GW|RF-GW Bukit|RX|1|0"));
    QCOMPARE(fresh->answer(q("TX_START \"Lobby\""), q("TX_START")), q("TX_START_OK"));
}

void ServerRegistrationTest::firstLoginBindsTheDevice()
{
    ServerRig rig;
    auto client = rig.client();
    QCOMPARE(apply(*client, line(q("YH0GW"))), kPending);
    QCOMPARE(rig.store().account(q("YH0GW"))->hwid, QString());
    QVERIFY(client->login(q("YH0GW"), q("x"), q("pc-one")).startsWith(q("LOGIN_OK")));
    QCOMPARE(rig.store().account(q("YH0GW"))->hwid, q("pc-one"));
    client.reset();
    auto other = rig.client();
    QCOMPARE(other->login(q("YH0GW"), q("x"), q("pc-two")),
             q("LOGIN_FAILED|Perangkat ini tidak terdaftar untuk akun Anda"));
}

void ServerRegistrationTest::loginWithoutADeviceBindsNothing_data()
{
    QTest::addColumn<QString>("login");
    QTest::newRow("left out") << q("LOGIN YH0GW x");
    QTest::newRow("empty") << q("LOGIN YH0GW x \"\"");
    QTest::newRow("blanks") << q("LOGIN YH0GW x \"   \"");
}

void ServerRegistrationTest::loginWithoutADeviceBindsNothing()
{
    QFETCH(QString, login);
    ServerRig rig;
    auto client = rig.client();
    QCOMPARE(apply(*client, line(q("YH0GW"))), kPending);
    QVERIFY(client->answer(login, q("LOGIN_")).startsWith(q("LOGIN_OK")));
    QCOMPARE(rig.store().account(q("YH0GW"))->hwid, QString());
    client->send(q("QUIT"));
    QTRY_VERIFY(!client->isConnected());
    auto gateway = rig.client();
    QVERIFY(gateway->login(q("YH0GW"), q("x"), q("pc-one")).startsWith(q("LOGIN_OK")));
    QCOMPARE(rig.store().account(q("YH0GW"))->hwid, q("pc-one"));
}

void ServerRegistrationTest::refusalsLeaveNoAccount_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("reason");
    const QString fields = q(" \"-\" \"-\" \"-\" \"Sari\" \"-\" \"x\" \"-\" \"-\"");
    QTest::newRow("taken") << line(q("YH9OLD")) << q("Callsign sudah terdaftar");
    QTest::newRow("taken, in small letters") << line(q("yh9old")) << q("Callsign sudah terdaftar");
    QTest::newRow("nine fields") << q("REGISTER_GATEWAY \"YH0GW\"") + fields
                                 << q("Pendaftaran harus berisi 10 isian tanpa tanda kutip");
    QTest::newRow("quotes out of step") << q("REGISTER_GATEWAY \"A\"B\" \"YH0GW\"") + fields
                                        << q("Pendaftaran harus berisi 10 isian tanpa tanda kutip");
    QTest::newRow("no callsign of a gateway") << line(q("YB0GW")) << q("Format callsign harus YH[0-9][A-Z]{2,4}");
    QTest::newRow("a message in a callsign") << line(q("YH0GW|KICKED")) << q("Format callsign harus YH[0-9][A-Z]{2,4}");
    QTest::newRow("huge text") << line(QString(60000, QLatin1Char('Y')))
                               << q("Callsign terlalu panjang (maksimal 40 karakter)");
}

void ServerRegistrationTest::refusalsLeaveNoAccount()
{
    QFETCH(QString, command);
    QFETCH(QString, reason);
    ServerRig rig;
    Account old;
    old.callsign = q("YH9OLD");
    old.passwordHash = "kept";
    QVERIFY(rig.store().add(&old));
    const int before = rig.store().accounts().size();
    auto client = rig.client();
    QCOMPARE(apply(*client, command), q("REGISTER_FAILED|") + reason);
    QCOMPARE(rig.store().accounts().size(), before);
    QCOMPARE(rig.store().account(q("YH9OLD"))->passwordHash, QByteArray("kept"));
}

void ServerRegistrationTest::floodIsSlowedDown()
{
    ServerRig rig;
    auto client = rig.client();
    for (int i = 0; i < LoginGuard::kFailures; ++i) {
        const QString answer = apply(*client, line(QStringLiteral("YH%1GW").arg(i / 2))); // every other one is taken
        QCOMPARE(answer, i % 2 ? q("REGISTER_FAILED|Callsign sudah terdaftar") : kPending);
    }
    auto another = rig.client();
    QCOMPARE(apply(*another, line(q("YH9GW"))), kFlood);
    QVERIFY(!rig.store().account(q("YH9GW")));
    rig.now += LoginGuard::kWindow - 1;
    QCOMPARE(apply(*another, line(q("YH9GW"))), kFlood);
    rig.now += 1;
    QCOMPARE(apply(*another, line(q("YH9GW"))), kPending);
}

void ServerRegistrationTest::administratorsAreExempt()
{
    ServerRig rig;
    auto admin = rig.client();
    QVERIFY(admin->login(q("YB4D")).startsWith(q("LOGIN_OK")));
    for (int i = 0; i <= LoginGuard::kFailures; ++i)
        QCOMPARE(apply(*admin, line(QStringLiteral("YH1G%1").arg(QChar('A' + i)))), kPending);
    auto stranger = rig.client();
    QCOMPARE(apply(*stranger, line(q("YH2GW"))), kPending);
}

void ServerRegistrationTest::onlySoManyWaitForApproval()
{
    const QString full = q("REGISTER_FAILED|Terlalu banyak pendaftaran yang menunggu persetujuan, coba lagi nanti");
    ServerRig rig;
    auto client = rig.client();
    QCOMPARE(apply(*client, line(q("YH1AA"))), kPending);
    // As many more of it as there may be, but for one.
    rig.execute(QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < %1) "
                               "INSERT INTO accounts SELECT 100 + i, 'X' || i, password_hash, gateway_name, name, "
                               "responsible_callsign, frequency, location, email, whatsapp, status, approved, admin, "
                               "expiry, hwid, reset_requested, last_login, muted FROM n, accounts "
                               "WHERE callsign = 'YH1AA'")
                    .arg(ControlServer::kMostPending - 2));
    QCOMPARE(apply(*client, line(q("YH1AB"))), kPending);
    QCOMPARE(apply(*client, line(q("YH1AC"))), full);
    QVERIFY(!rig.store().account(q("YH1AC")));
    auto admin = rig.client();
    QVERIFY(admin->login(q("YB4D")).startsWith(q("LOGIN_OK")));
    QCOMPARE(apply(*admin, line(q("YH1AD"))), kPending);
    QCOMPARE(apply(*client, line(q("YH1AC"))), full);
    for (int id : {101, 102})
        QCOMPARE(admin->answer(QStringLiteral("ADMIN_DELETE_USER %1").arg(id), q("ADMIN")), q("ADMIN_DELETE_USER_OK"));
    QCOMPARE(apply(*client, line(q("YH1AC"))), kPending);
}

void ServerRegistrationTest::registeringDoesNotBlockLogins()
{
    ServerRig rig;
    auto client = rig.client();
    for (int i = 0; i < LoginGuard::kFailures; ++i)
        QVERIFY(apply(*client, q("REGISTER_GATEWAY")).startsWith(q("REGISTER_FAILED")));
    QVERIFY(client->login(q("YB1A")).startsWith(q("LOGIN_OK")));
    QCOMPARE(apply(*client, line(q("YH0GW"))), kFlood);
}

void ServerRegistrationTest::passwordsStayOutOfTheLog()
{
    LogCapture log;
    ServerRig rig;
    auto client = rig.client();
    QCOMPARE(apply(*client, line(q("YH0GW"), q("r4hasia"))), kPending);
    QVERIFY(!log.lines().filter(q("registered YH0GW")).isEmpty());
    QVERIFY(log.lines().filter(q("r4hasia")).isEmpty());
}

EVOX_TEST_MAIN(ServerRegistrationTest, QCoreApplication)
#include "tst_serverregistration.moc"
