#include "server/ServerRig.h"
#include "support/TestMain.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

/// What an administrator does reaches the people concerned, and the other administrators, while they are logged in.
class ServerReachTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void roomLimitsGoToAdministrators();
    void roomLimitsFollowEveryChange();
    void requestIsToldOncePerAccount();
    void grantedRequestIsSettledForAll();
    void deletedAccountAsksForNothing();
    void recordsTellTheMute();
    void editReachesThePerson();
    void approvalReachesThePersonInNoRoom();
    void newAdministratorIsTold();
    void ownEditKeepsTheGatewayName();
    void freedAccountMovesToTheNewDevice();
    void loginWithoutADeviceTakesNothingOver();
    void muteIsToldAgainInTheNextRoom();

private:
    [[nodiscard]] std::unique_ptr<RawClient> loggedIn(const char *callsign);

    std::unique_ptr<ServerRig> m_rig;
    std::unique_ptr<RawClient> m_admin;
    std::unique_ptr<RawClient> m_member;
};

namespace {

const QString kRequest = QStringLiteral("ADMIN_NOTIFICATION|HWID_RESET_REQUEST|YB2B|2");

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

QJsonObject jsonOf(const QString &line)
{
    return QJsonDocument::fromJson(line.section(QLatin1Char('|'), 1).toUtf8()).object();
}

/// The administrator's form for YB1A.
QString edit(const char *status, int approved, int admin)
{
    return QStringLiteral("ADMIN_UPDATE_USER 1 \"Ani\" \"YB1X\" \"%1\" \"Bukit\" \"146,440 MHz\" \"Jl. Satu, Medan\" "
                          "\"a@b\" \"0812\" %2 %3 \"2099-01-01\"")
        .arg(QLatin1String(status))
        .arg(approved)
        .arg(admin);
}

} // namespace

void ServerReachTest::init()
{
    m_rig = std::make_unique<ServerRig>();
    m_admin = loggedIn("YB4D");
    m_member = loggedIn("YB1A");
}

void ServerReachTest::cleanup()
{
    m_member.reset();
    m_admin.reset();
    m_rig.reset();
}

std::unique_ptr<RawClient> ServerReachTest::loggedIn(const char *callsign)
{
    auto client = m_rig->client();
    if (!client->login(q(callsign)).startsWith(q("LOGIN_OK")))
        QTest::qFail(callsign, __FILE__, __LINE__);
    return client;
}

void ServerReachTest::roomLimitsGoToAdministrators()
{
    const QString forAdmin = m_admin->until(q("SERVER_INFO")).last();
    QCOMPARE(jsonOf(forAdmin).value(q("room_limits")).toObject(), (QJsonObject{{q("Lobby"), 0}, {q("Alpha"), 0}}));
    const QJsonObject forMember = jsonOf(m_member->until(q("SERVER_INFO")).last());
    QCOMPARE(forMember.value(q("online_users")).toInt(), 2);
    QVERIFY(!forMember.contains(q("room_limits")));
}

void ServerReachTest::roomLimitsFollowEveryChange()
{
    const auto limitsAfter = [this](const char *command) {
        static_cast<void>(m_admin->answer(q("PING"), q("PONG")));
        static_cast<void>(m_admin->answer(q(command), q("ADMIN_")));
        return jsonOf(m_admin->until(q("SERVER_INFO")).last()).value(q("room_limits")).toObject();
    };
    QCOMPARE(limitsAfter("ADMIN_CREATE_ROOM \"Ruang|Dua\" 7"),
             (QJsonObject{{q("Lobby"), 0}, {q("Alpha"), 0}, {q("Ruang Dua"), 7}}));
    QCOMPARE(limitsAfter("ADMIN_EDIT_ROOM \"Alpha\" \"Beta\" 12 \"\""),
             (QJsonObject{{q("Lobby"), 0}, {q("Beta"), 12}, {q("Ruang Dua"), 7}}));
    QCOMPARE(limitsAfter("ADMIN_DELETE_ROOM \"Lobby\""), (QJsonObject{{q("Beta"), 12}, {q("Ruang Dua"), 7}}));
}

void ServerReachTest::requestIsToldOncePerAccount()
{
    for (int i = 0; i < 3; ++i)
        QCOMPARE(m_member->answer(q("USER_REQUEST_HWID_RESET \"YB1A\""), q("USER_REQ")),
                 q("USER_REQUEST_HWID_RESET_OK"));
    QCOMPARE(m_admin->answer(q("PING"), q("PONG")), q("PONG"));
    QCOMPARE(m_member->answer(q("USER_REQUEST_HWID_RESET \"YB1A\""), q("USER_REQ")), q("USER_REQUEST_HWID_RESET_OK"));
    m_admin->send(q("PING"));
    QVERIFY2(m_admin->until(q("PONG")).filter(q("ADMIN_NOTIFICATION")).isEmpty(), "it waits already");
    m_admin = loggedIn("YB4D");
    m_admin->send(q("PING"));
    QCOMPARE(m_admin->until(q("PONG")).filter(q("ADMIN_NOTIFICATION")),
             QStringList(q("ADMIN_NOTIFICATION|HWID_RESET_REQUEST|YB1A|1")));
}

void ServerReachTest::grantedRequestIsSettledForAll()
{
    m_rig->change(q("YB3C"), [](Account &account) { account.admin = true; });
    auto second = loggedIn("YB3C");
    auto stranger = m_rig->client();
    QCOMPARE(stranger->answer(q("USER_REQUEST_HWID_RESET \"YB2B\""), q("USER_REQ")), q("USER_REQUEST_HWID_RESET_OK"));
    QCOMPARE(second->until(kRequest).last(), kRequest);
    m_admin->send(q("ADMIN_RESET_HWID 2"));
    m_admin->send(q("PING"));
    QCOMPARE(m_admin->until(q("PONG")).filter(q("ADMIN_RESET")), QStringList(q("ADMIN_RESET_HWID_OK|YB2B")));
    QCOMPARE(second->until(q("ADMIN_RESET")).last(), q("ADMIN_RESET_HWID_OK|YB2B"));
    m_member->send(q("PING"));
    QVERIFY2(m_member->until(q("PONG")).filter(q("ADMIN_")).isEmpty(), "nothing for members");
}

void ServerReachTest::deletedAccountAsksForNothing()
{
    auto stranger = m_rig->client();
    QCOMPARE(stranger->answer(q("USER_REQUEST_HWID_RESET \"YB2B\""), q("USER_REQ")), q("USER_REQUEST_HWID_RESET_OK"));
    QCOMPARE(m_admin->until(kRequest).last(), kRequest);
    QCOMPARE(m_admin->answer(q("ADMIN_DELETE_USER 2"), q("ADMIN_DELETE")), q("ADMIN_DELETE_USER_OK"));
    QCOMPARE(m_admin->until(q("ADMIN_RESET")).last(), q("ADMIN_RESET_HWID_OK|YB2B"));
    QCOMPARE(m_admin->answer(q("ADMIN_DELETE_USER 3"), q("ADMIN_DELETE")), q("ADMIN_DELETE_USER_OK"));
    m_admin->send(q("PING"));
    QVERIFY(m_admin->until(q("PONG")).filter(q("ADMIN_RESET")).isEmpty());
}

void ServerReachTest::recordsTellTheMute()
{
    m_admin->send(q("ADMIN_MUTE 1 1"));
    const QString all = m_admin->answer(q("ADMIN_GET_ALL_USERS"), q("ADMIN_ALL_USERS|"));
    const QJsonArray users = QJsonDocument::fromJson(all.mid(16).toUtf8()).array();
    QCOMPARE(users.size(), 4);
    for (const QJsonValue &user : users)
        QCOMPARE(user.toObject().value(q("is_muted")), QJsonValue(user.toObject().value(q("id")).toInt() == 1));
    QVERIFY(jsonOf(m_member->answer(q("USER_GET_PROFILE"), q("USER_PROFILE"))).value(q("is_muted")).toBool());
}

void ServerReachTest::editReachesThePerson()
{
    QCOMPARE(m_admin->answer(edit("active", 1, 0), q("ADMIN_UPDATE")), q("ADMIN_UPDATE_USER_OK"));
    const QJsonObject profile = jsonOf(m_member->until(q("USER_PROFILE|")).last());
    QCOMPARE(profile.value(q("name")).toString(), q("Ani"));
    QCOMPARE(profile.value(q("gateway_name")).toString(), q("Bukit"));
    QCOMPARE(profile.value(q("frequency")).toString(), q("146,440 MHz"));
    QCOMPARE(profile.value(q("license_expiry")).toString(), q("2099-01-01"));
    QCOMPARE(m_admin->answer(edit("active", 1, 0), q("ADMIN_UPDATE")), q("ADMIN_UPDATE_USER_OK"));
    m_member->send(q("PING"));
    QVERIFY2(m_member->until(q("PONG")).filter(q("USER_PROFILE")).isEmpty(), "nothing changed");
}

void ServerReachTest::approvalReachesThePersonInNoRoom()
{
    for (const bool approved : {false, true}) {
        m_admin->send(approved ? q("ADMIN_APPROVE_USER 1") : q("ADMIN_UNAPPROVE_USER 1"));
        QCOMPARE(jsonOf(m_member->until(q("USER_PROFILE|")).last()).value(q("approved")), QJsonValue(approved));
    }
}

void ServerReachTest::newAdministratorIsTold()
{
    QCOMPARE(m_admin->answer(edit("active", 1, 1), q("ADMIN_UPDATE")), q("ADMIN_UPDATE_USER_OK"));
    QVERIFY(jsonOf(m_member->until(q("USER_PROFILE|")).last()).value(q("is_admin")).toBool());
    QVERIFY(jsonOf(m_member->until(q("SERVER_INFO|")).last()).contains(q("room_limits")));
}

void ServerReachTest::ownEditKeepsTheGatewayName()
{
    QCOMPARE(m_admin->answer(edit("active", 1, 0), q("ADMIN_UPDATE")), q("ADMIN_UPDATE_USER_OK"));
    // The name of a profile that was asked for before.
    QCOMPARE(m_member->answer(q("ADMIN_UPDATE_USER 1 \"Ani\" \"YB1X\" \"active\" 1 0 \"Lembah\" \"145,5\" \"Jl. Dua; "
                                "Medan\" \"c@d\" \"0813\""),
                              q("ADMIN_UPDATE")),
             q("ADMIN_UPDATE_USER_OK"));
    const Account account = *m_rig->store().account(1);
    QCOMPARE(account.gatewayName, q("Bukit"));
    QCOMPARE(account.callsign, q("YB1A"));
    QCOMPARE(account.frequency, q("145,5"));
    QCOMPARE(account.location, q("Jl. Dua; Medan"));
}

void ServerReachTest::freedAccountMovesToTheNewDevice()
{
    QVERIFY(m_member->answer(q("JOIN Lobby"), q("JOIN_OK")).startsWith(q("JOIN_OK|Lobby|")));
    QCOMPARE(m_admin->answer(q("ADMIN_RESET_HWID 1"), q("ADMIN_RESET")), q("ADMIN_RESET_HWID_OK|YB1A"));
    QCOMPARE(m_member->answer(q("ROOMS"), q("ROOMS")), q("ROOMS|Lobby,Alpha")); // until somebody takes over
    auto laptop = m_rig->client();
    QVERIFY(laptop->login(q("YB1A"), q("secret"), q("laptop")).startsWith(q("LOGIN_OK")));
    const QStringList told = m_member->until(q("KICKED"));
    QCOMPARE(told.last(), q("KICKED|Akun dipakai di perangkat baru"));
    QVERIFY(told.contains(q("USER_LIST|Lobby||||||")));
    QCOMPARE(m_member->answer(q("ROOMS"), q("ERROR")), q("ERROR|Belum login"));
    QCOMPARE(m_member->login(q("YB1A")), q("LOGIN_FAILED|Perangkat ini tidak terdaftar untuk akun Anda"));
    QCOMPARE(m_rig->store().account(1)->hwid, q("laptop"));
    QCOMPARE(laptop->answer(q("ROOMS"), q("ROOMS")), q("ROOMS|Lobby,Alpha"));
}

void ServerReachTest::loginWithoutADeviceTakesNothingOver()
{
    QCOMPARE(m_admin->answer(q("ADMIN_RESET_HWID 1"), q("ADMIN_RESET")), q("ADMIN_RESET_HWID_OK|YB1A"));
    auto other = m_rig->client();
    QCOMPARE(other->login(q("YB1A"), q("secret"), {}), q("LOGIN_FAILED|Akun sedang digunakan di perangkat lain"));
    QCOMPARE(other->login(q("YB1A"), q("guess"), q("laptop")), q("LOGIN_FAILED|Password salah"));
    QCOMPARE(m_member->answer(q("ROOMS"), q("ROOMS")), q("ROOMS|Lobby,Alpha"));
}

void ServerReachTest::muteIsToldAgainInTheNextRoom()
{
    const QString muted = q("MUTED|1|oleh admin");
    m_admin->send(q("ADMIN_MUTE 1 1"));
    QCOMPARE(m_member->until(q("MUTED")).last(), q("MUTED|1|oleh YB4D"));
    QVERIFY(!m_member->answer(q("JOIN Lobby"), q("JOIN_OK")).isEmpty());
    QCOMPARE(m_member->until(q("MUTED")).last(), muted);
    QCOMPARE(m_member->answer(q("LEAVE"), q("LEAVE_OK")), q("LEAVE_OK"));
    m_member->send(q("JOIN Alpha"));
    const QStringList lines = m_member->until(q("MUTED"));
    QCOMPARE(lines.last(), muted);
    QVERIFY2(lines.first().startsWith(q("JOIN_OK|Alpha|")), "the room comes first");
    m_admin->send(q("ADMIN_MUTE 1 0"));
    QCOMPARE(m_member->until(q("MUTED")).last(), q("MUTED|0|oleh YB4D"));
    m_member->send(q("JOIN Lobby"));
    m_member->send(q("PING"));
    QVERIFY(m_member->until(q("PONG")).filter(q("MUTED")).isEmpty());
}

EVOX_TEST_MAIN(ServerReachTest, QCoreApplication)
#include "tst_serverreach.moc"
