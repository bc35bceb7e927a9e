#include "server/ServerRig.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <QDate>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>

class ServerAccountsTest final : public QObject
{
    Q_OBJECT

private slots:
    void loginAnswers();
    void refusals_data();
    void refusals();
    void bindsTheFirstDevice();
    void sameDeviceTakesOver();
    void runningProgramIsToldOfAnother();
    void otherDeviceIsRefusedWhileActive();
    void warnsOfTheExpiry();
    void guessingIsSlowedDown();
    void commandsNeedALogin();
    void profile();
    void infoHidesWhatIsPrivate();
    void changesPassword();
    void deviceResetReachesAdministrators();
    void editsTheOwnRecordOnly();
    void surviesARestart();
    void longLineEndsTheConnection_data();
    void longLineEndsTheConnection();
    void floodEndsTheConnection();
    void survivesRandomBytes();
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

void ServerAccountsTest::loginAnswers()
{
    LogCapture log;
    ServerRig rig;
    auto client = rig.client();
    const QStringList fields = client->login(q("yb1a")).split(QLatin1Char('|'));
    QCOMPARE(fields.value(0), q("LOGIN_OK"));
    QCOMPARE(fields.value(1).size(), 48);
    QCOMPARE(fields.value(3), q("False"));
    QCOMPARE(fields.value(4), q("1"));
    QCOMPARE(fields.value(6), QString());
    const QString info = client->until(q("SERVER_INFO|")).last();
    const QJsonObject facts = QJsonDocument::fromJson(info.mid(12).toUtf8()).object();
    QCOMPARE(facts.value(q("online_users")).toInt(), 1);
    QCOMPARE(facts.value(q("total_rooms")).toInt(), 2);
    QCOMPARE(client->answer(q("PING"), q("PONG")), q("PONG"));
    QCOMPARE(client->answer(q("GET_AUDIO_QUALITY"), q("AUDIO")), q("AUDIO_QUALITY|standard|32000|48000|20|5"));
    QCOMPARE(client->answer(q("ROOMS"), q("ROOMS")), q("ROOMS|Lobby,Alpha"));
    auto admin = rig.client();
    QCOMPARE(admin->login(q("YB4D")).section(QLatin1Char('|'), 3, 3), q("True"));
    for (const QString &line : log.lines())
        QVERIFY2(!line.contains(q("secret")) && !line.contains(fields.value(1)), qPrintable(line));
}

void ServerAccountsTest::refusals_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("status");
    QTest::addColumn<QString>("expiry");
    QTest::addColumn<QString>("reason");
    QTest::newRow("unknown") << q("YB9Z") << q("secret") << q("active") << QString() << q("Callsign tidak terdaftar");
    QTest::newRow("wrong password") << q("YB1A") << q("Secret") << q("active") << QString() << q("Password salah");
    QTest::newRow("banned") << q("YB1A") << q("secret") << q("banned") << QString() << q("Akun dibanned");
    QTest::newRow("suspended") << q("YB1A") << q("secret") << q("suspended") << QString() << q("Akun disuspend");
    QTest::newRow("expired") << q("YB1A") << q("secret") << q("active") << q("2020-01-01") << q("Akun disuspend");
}

void ServerAccountsTest::refusals()
{
    QFETCH(QString, call);
    QFETCH(QString, password);
    QFETCH(QString, status);
    QFETCH(QString, expiry);
    QFETCH(QString, reason);
    ServerRig rig;
    rig.change(q("YB1A"), [&](Account &account) {
        account.status = status;
        account.expiry = expiry;
    });
    auto client = rig.client();
    QCOMPARE(client->login(call, password), q("LOGIN_FAILED|") + reason);
    QCOMPARE(client->answer(q("ROOMS"), q("ERROR")), q("ERROR|Belum login"));
}

void ServerAccountsTest::bindsTheFirstDevice()
{
    ServerRig rig;
    auto client = rig.client();
    QVERIFY(client->login(q("YB1A"), q("secret"), q("pc-one")).startsWith(q("LOGIN_OK")));
    client.reset();
    auto other = rig.client();
    const QString refusal = q("LOGIN_FAILED|Perangkat ini tidak terdaftar untuk akun Anda");
    QCOMPARE(other->login(q("YB1A"), q("secret"), q("pc-two")), refusal);
    QCOMPARE(other->login(q("YB1A"), q("secret"), {}), refusal);
    QVERIFY(other->login(q("YB1A"), q("secret"), q("pc-one")).startsWith(q("LOGIN_OK")));
}

void ServerAccountsTest::sameDeviceTakesOver()
{
    ServerRig rig;
    auto old = rig.client();
    QVERIFY(old->enter(q("YB1A")));
    rig.now += ControlServer::kSignOfLife;
    auto fresh = rig.client();
    QVERIFY(fresh->login(q("YB1A")).startsWith(q("LOGIN_OK")));
    QTRY_VERIFY(!old->isConnected());
    QCOMPARE(fresh->answer(q("ONLINE_USERS"), q("ONLINE_USERS")), q("ONLINE_USERS|1,YB1A,Op YB1A,,False"));
}

/// Which would otherwise come back and turn the other one out, without end.
void ServerAccountsTest::runningProgramIsToldOfAnother()
{
    ServerRig rig;
    auto old = rig.client();
    QVERIFY(old->enter(q("YB1A")));
    rig.now += ControlServer::kSignOfLife - 1;
    QCOMPARE(old->answer(q("PING"), q("PONG")), q("PONG"));
    rig.now += ControlServer::kSignOfLife - 1;
    auto fresh = rig.client();
    QVERIFY(fresh->login(q("YB1A")).startsWith(q("LOGIN_OK")));
    const QStringList told = old->until(q("KICKED"));
    QCOMPARE(told.last(), q("KICKED|Akun login lagi dari program lain"));
    QVERIFY2(told.contains(q("USER_LIST|Lobby||||||")), "its radio is released");
    QCOMPARE(old->answer(q("PING"), q("PONG")), q("PONG"));
    QCOMPARE(fresh->answer(q("ONLINE_USERS"), q("ONLINE_USERS")), q("ONLINE_USERS|1,YB1A,Op YB1A,,False"));
}

void ServerAccountsTest::otherDeviceIsRefusedWhileActive()
{
    ServerRig rig;
    auto unbound = rig.client();
    QVERIFY(unbound->login(q("YB1A"), q("secret"), {}).startsWith(q("LOGIN_OK")));
    auto other = rig.client();
    QCOMPARE(other->login(q("YB1A"), q("secret"), q("pc-two")),
             q("LOGIN_FAILED|Akun sedang digunakan di perangkat lain"));
}

void ServerAccountsTest::warnsOfTheExpiry()
{
    ServerRig rig;
    const QString expiry = QDate::currentDate().addDays(10).toString(Qt::ISODate);
    rig.change(q("YB1A"), [&](Account &account) { account.expiry = expiry; });
    auto client = rig.client();
    QCOMPARE(client->login(q("YB1A")).section(QLatin1Char('|'), 6, 6),
             QStringLiteral("Izin radio berakhir %1 (10 hari lagi)").arg(expiry));
}

void ServerAccountsTest::guessingIsSlowedDown()
{
    ServerRig rig;
    auto client = rig.client();
    for (int i = 0; i < LoginGuard::kFailures; ++i)
        QCOMPARE(client->login(q("YB1A"), q("guess")), q("LOGIN_FAILED|Password salah"));
    const QString wait = q("LOGIN_FAILED|Terlalu banyak percobaan login, coba lagi nanti");
    QCOMPARE(client->login(q("YB1A")), wait);
    rig.now += LoginGuard::kWindow - 1;
    QCOMPARE(client->login(q("YB1A")), wait);
    rig.now += 1;
    QVERIFY(client->login(q("YB1A")).startsWith(q("LOGIN_OK")));
}

void ServerAccountsTest::commandsNeedALogin()
{
    ServerRig rig;
    auto client = rig.client();
    for (const char *command : {"ROOMS", "JOIN Lobby", "USER_GET_PROFILE", "ADMIN_KICK 1", "ADMIN_UPDATE_USER 1"})
        QCOMPARE(client->answer(q(command), q("ERROR")), q("ERROR|Belum login"));
    QCOMPARE(client->answer(q("hello world"), q("ERROR")), q("ERROR|Perintah tidak dikenal: HELLO"));
    QVERIFY(client->login(q("YB1A")).startsWith(q("LOGIN_OK")));
    for (const char *command : {"ADMIN_KICK 1", "ADMIN_GET_ALL_USERS", "ADMIN_SET_AUDIO_QUALITY high"})
        QCOMPARE(client->answer(q(command), q("ERROR")), q("ERROR|Hanya untuk administrator"));
}

void ServerAccountsTest::profile()
{
    ServerRig rig;
    auto client = rig.client();
    QVERIFY(client->login(q("YB1A")).startsWith(q("LOGIN_OK")));
    const QString line = client->answer(q("USER_GET_PROFILE"), q("USER_PROFILE|"));
    const QJsonObject record = QJsonDocument::fromJson(line.mid(13).toUtf8()).object();
    QCOMPARE(record.value(q("callsign")).toString(), q("YB1A"));
    QCOMPARE(record.value(q("user_id")).toInt(), 1);
    QVERIFY(!line.contains(q("argon2")));
}

void ServerAccountsTest::infoHidesWhatIsPrivate()
{
    ServerRig rig;
    rig.change(q("YB2B"), [](Account &account) { account.email = q("b@example.org"); });
    auto client = rig.client();
    QVERIFY(client->login(q("YB1A")).startsWith(q("LOGIN_OK")));
    QVERIFY(!client->answer(q("USER_GET_INFO YB2B"), q("USER_INFO_RESULT")).contains(q("b@example.org")));
    QCOMPARE(client->answer(q("USER_GET_INFO YB9Z"), q("ERROR")), q("ERROR|Callsign tidak ditemukan"));
    auto admin = rig.client();
    QVERIFY(admin->login(q("YB4D")).startsWith(q("LOGIN_OK")));
    QVERIFY(admin->answer(q("USER_GET_INFO YB2B"), q("USER_INFO_RESULT")).contains(q("b@example.org")));
}

void ServerAccountsTest::changesPassword()
{
    ServerRig rig;
    auto client = rig.client();
    QVERIFY(client->login(q("YB1A")).startsWith(q("LOGIN_OK")));
    const auto change = [&](const char *arguments) {
        return client->answer(q("USER_CHANGE_PASSWORD ") + q(arguments), q("USER_CHANGE"));
    };
    QCOMPARE(change("\"wrong\" \"new secret\""), q("USER_CHANGE_PASSWORD_FAIL|Password lama salah"));
    QCOMPARE(change("\"secret\" \"short\""), q("USER_CHANGE_PASSWORD_FAIL|Password minimal 6 karakter"));
    QCOMPARE(change("\"secret\" \"newsecret\""), q("USER_CHANGE_PASSWORD_OK"));
    client.reset();
    auto again = rig.client();
    QCOMPARE(again->login(q("YB1A")), q("LOGIN_FAILED|Password salah"));
    QVERIFY(again->login(q("YB1A"), q("newsecret")).startsWith(q("LOGIN_OK")));
}

void ServerAccountsTest::deviceResetReachesAdministrators()
{
    ServerRig rig;
    auto admin = rig.client();
    QVERIFY(admin->login(q("YB4D")).startsWith(q("LOGIN_OK")));
    auto client = rig.client();
    QCOMPARE(client->answer(q("USER_REQUEST_HWID_RESET \"YB1A\""), q("USER_REQUEST")), q("USER_REQUEST_HWID_RESET_OK"));
    QCOMPARE(admin->until(q("ADMIN_NOTIFICATION")).last(), q("ADMIN_NOTIFICATION|HWID_RESET_REQUEST|YB1A|1"));
    QVERIFY(rig.store().account(q("YB1A"))->resetRequested);
    QVERIFY(client->login(q("YB1A"), q("secret"), q("old")).startsWith(q("LOGIN_OK")));
    QCOMPARE(admin->answer(q("ADMIN_RESET_HWID 1"), q("ADMIN_RESET")), q("ADMIN_RESET_HWID_OK|YB1A"));
    QVERIFY(rig.store().account(q("YB1A"))->hwid.isEmpty());
    QVERIFY(!rig.store().account(q("YB1A"))->resetRequested);
}

void ServerAccountsTest::editsTheOwnRecordOnly()
{
    ServerRig rig;
    rig.change(q("YB1A"), [](Account &account) { account.approved = false; });
    auto client = rig.client();
    QVERIFY(client->login(q("YB1A")).startsWith(q("LOGIN_OK")));
    const QString fields = q(" \"Ani|x\" \"yb1a\" \"active\" 1 1 \"Bukit\" \"145.5\" \"Loc\" \"a@b\" \"0812\"");
    QCOMPARE(client->answer(q("ADMIN_UPDATE_USER 1") + fields, q("ADMIN_UPDATE")), q("ADMIN_UPDATE_USER_OK"));
    const Account account = *rig.store().account(q("YB1A"));
    QCOMPARE(account.name, q("Ani x"));
    QCOMPARE(account.gatewayName, QString());
    QCOMPARE(account.whatsapp, q("0812"));
    QVERIFY2(!account.approved && !account.admin, "nobody approves himself");
    QCOMPARE(client->answer(q("ADMIN_UPDATE_USER 2") + fields, q("ERROR")), q("ERROR|Hanya untuk administrator"));
    QCOMPARE(rig.store().account(q("YB2B"))->name, q("Op YB2B"));
    QCOMPARE(client->answer(q("ADMIN_UPDATE_USER 99") + fields, q("ERROR")), q("ERROR|Hanya untuk administrator"));
}

void ServerAccountsTest::surviesARestart()
{
    ServerRig rig;
    auto client = rig.client();
    QVERIFY(client->login(q("YB1A"), q("secret"), q("pc-one")).startsWith(q("LOGIN_OK")));
    rig.restart();
    auto other = rig.client();
    QCOMPARE(other->login(q("YB1A"), q("secret"), q("pc-two")),
             q("LOGIN_FAILED|Perangkat ini tidak terdaftar untuk akun Anda"));
}

void ServerAccountsTest::longLineEndsTheConnection_data()
{
    QTest::addColumn<QByteArray>("end");
    QTest::newRow("without an end") << QByteArray("x");
    QTest::newRow("with its end") << QByteArray("x\r\n");
}

void ServerAccountsTest::longLineEndsTheConnection()
{
    QFETCH(QByteArray, end);
    ServerRig rig;
    auto client = rig.client();
    auto other = rig.client();
    client->sendRaw(QByteArray(64 * 1024, 'x'));
    QCOMPARE(other->answer(q("PING"), q("PONG")), q("PONG")); // by then it has arrived, and is not too long
    QVERIFY(client->isConnected());
    client->sendRaw(end);
    QCOMPARE(client->until(q("ERROR")).last(), q("ERROR|Perintah terlalu panjang"));
    QTRY_VERIFY(!client->isConnected());
}

void ServerAccountsTest::floodEndsTheConnection()
{
    ServerRig rig;
    auto client = rig.client();
    client->sendRaw(QByteArray("PING\r\n").repeated(5000));
    QVERIFY(client->until(q("ERROR")).last().startsWith(q("ERROR|Terlalu banyak perintah")));
    QTRY_VERIFY(!client->isConnected());
}

void ServerAccountsTest::survivesRandomBytes()
{
    ServerRig rig;
    QRandomGenerator random(20261121);
    for (int round = 0; round < 40; ++round) {
        auto client = rig.client();
        QByteArray bytes;
        for (int i = 0; i < 2000; ++i) {
            bytes += char(random.bounded(256));
            if (random.bounded(20) == 0)
                bytes += "\r\nADMIN_MOVE \"|";
        }
        client->sendRaw(bytes);
        for (int i = 0; i < 50; ++i)
            client->sendUdpSilently(bytes.mid(i * 20, random.bounded(40)));
    }
    auto client = rig.client();
    QVERIFY(client->login(q("YB1A")).startsWith(q("LOGIN_OK")));
    QCOMPARE(client->sendUdp("PING"), QByteArray("PONG"));
}

EVOX_TEST_MAIN(ServerAccountsTest, QCoreApplication)
#include "tst_serveraccounts.moc"
