#include "server/Permit.h"
#include "server/ServerRig.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

/// A radio permit that ends suspends its holder, logged in or not.
class ServerPermitsTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void ends_data();
    void ends();
    void dayAfterSuspends();
    void offlineAccountsReadSuspended();
    void startLooksToo();
    void loginNotesIt();
    void othersKeepTheirStatus();
    void editWithAPastDateActsAtOnce_data();
    void editWithAPastDateActsAtOnce();
    void editWithALaterDateBringsBack();
    void failedWriteIsTriedAgain();
    void failedReadIsTriedAgain();

private:
    void setExpiry(const char *callsign, const QDate &day);

    std::unique_ptr<ServerRig> m_rig;
    std::unique_ptr<RawClient> m_admin;
    std::unique_ptr<RawClient> m_member;
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

QString edit(const char *status, const QDate &expiry)
{
    return QStringLiteral("ADMIN_UPDATE_USER 1 \"a\" \"b\" \"%1\" \"c\" \"d\" \"e\" \"f\" \"g\" 1 0 \"%2\"")
        .arg(QLatin1String(status), expiry.toString(Qt::ISODate));
}

} // namespace

void ServerPermitsTest::init()
{
    m_rig = std::make_unique<ServerRig>();
    m_admin = m_rig->client();
    QVERIFY(m_admin->login(q("YB4D")).startsWith(q("LOGIN_OK")));
    setExpiry("YB1A", m_rig->today);
    m_member = m_rig->client();
    QVERIFY(m_member->enter(q("YB1A")));
}

void ServerPermitsTest::cleanup()
{
    m_member.reset();
    m_admin.reset();
    m_rig.reset();
}

void ServerPermitsTest::setExpiry(const char *callsign, const QDate &day)
{
    m_rig->change(q(callsign), [&day](Account &account) { account.expiry = day.toString(Qt::ISODate); });
}

void ServerPermitsTest::ends_data()
{
    QTest::addColumn<QString>("expiry");
    QTest::addColumn<bool>("hasEnded");
    QTest::addColumn<QString>("warning");
    QTest::newRow("none") << QString() << false << QString();
    QTest::newRow("no date") << q("soon") << false << QString();
    QTest::newRow("yesterday") << q("2026-11-20") << true << q("Izin radio berakhir 2026-11-20 (-1 hari lagi)");
    QTest::newRow("today") << q("2026-11-21") << false << q("Izin radio berakhir 2026-11-21 (0 hari lagi)");
    QTest::newRow("in 30 days") << q("2026-12-21") << false << q("Izin radio berakhir 2026-12-21 (30 hari lagi)");
    QTest::newRow("in 31 days") << q("2026-12-22") << false << QString();
}

void ServerPermitsTest::ends()
{
    QFETCH(QString, expiry);
    Account account;
    account.expiry = expiry;
    QTEST(Permit::hasEnded(account, QDate(2026, 11, 21)), "hasEnded");
    QTEST(Permit::warning(account, QDate(2026, 11, 21)), "warning");
}

void ServerPermitsTest::dayAfterSuspends()
{
    const QString expiry = m_rig->today.toString(Qt::ISODate);
    m_rig->server().watchPermits();
    QCOMPARE(m_member->answer(q("ROOMS"), q("ROOMS")), q("ROOMS|Lobby,Alpha"));
    const LogCapture log;
    m_rig->today = m_rig->today.addDays(1);
    m_rig->server().watchPermits();
    const QStringList told = m_member->until(q("KICKED"));
    QCOMPARE(told.last(), q("KICKED|Akun disuspend, izin radio berakhir ") + expiry);
    QVERIFY2(told.contains(q("USER_LIST|Lobby||||||")), "the radio is released");
    QCOMPARE(m_rig->store().account(1)->status, q("suspended"));
    QVERIFY(log.contains(q("YB1A suspended, the permit ended on ") + expiry));
    QCOMPARE(m_member->login(q("YB1A")), q("LOGIN_FAILED|Akun disuspend"));
}

void ServerPermitsTest::offlineAccountsReadSuspended()
{
    setExpiry("YB2B", m_rig->today);
    m_rig->today = m_rig->today.addDays(1);
    m_rig->server().watchPermits();
    QCOMPARE(m_admin->answer(q("ADMIN_GET_ALL_USERS"), q("ADMIN_ALL")).count(q("\"status\":\"suspended\"")), 2);
}

void ServerPermitsTest::startLooksToo()
{
    m_rig->today = m_rig->today.addDays(400);
    m_rig->restart();
    QCOMPARE(m_rig->store().account(1)->status, q("suspended"));
    QCOMPARE(m_rig->store().account(2)->status, q("active"));
}

void ServerPermitsTest::loginNotesIt()
{
    setExpiry("YB2B", m_rig->today.addDays(-1)); // after the server looked
    auto client = m_rig->client();
    QCOMPARE(client->login(q("YB2B"), q("guess")), q("LOGIN_FAILED|Password salah"));
    QCOMPARE(m_rig->store().account(2)->status, q("active"));
    QCOMPARE(client->login(q("YB2B")), q("LOGIN_FAILED|Akun disuspend"));
    QCOMPARE(m_rig->store().account(2)->status, q("suspended"));
}

void ServerPermitsTest::othersKeepTheirStatus()
{
    setExpiry("YB2B", m_rig->today.addDays(-9));
    m_rig->change(q("YB2B"), [](Account &account) { account.status = q("banned"); });
    setExpiry("YB3C", m_rig->today.addDays(2));
    m_rig->today = m_rig->today.addDays(1);
    m_rig->server().watchPermits();
    QCOMPARE(m_rig->store().account(2)->status, q("banned"));
    QCOMPARE(m_rig->store().account(3)->status, q("active"));
    QCOMPARE(m_rig->store().account(4)->status, q("active"));
}

void ServerPermitsTest::editWithAPastDateActsAtOnce_data()
{
    QTest::addColumn<QString>("status");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("told");
    QTest::newRow("active") << q("active") << q("suspended") << q("KICKED|Akun disuspend oleh YB4D");
    QTest::newRow("pending") << q("pending") << q("suspended") << q("KICKED|Akun disuspend oleh YB4D");
    QTest::newRow("banned") << q("banned") << q("banned") << q("BANNED|Dibanned oleh YB4D");
}

void ServerPermitsTest::editWithAPastDateActsAtOnce()
{
    QFETCH(QString, status);
    QFETCH(QString, told);
    QCOMPARE(m_admin->answer(edit(qPrintable(status), m_rig->today.addDays(-1)), q("ADMIN_UPDATE")),
             q("ADMIN_UPDATE_USER_OK"));
    QCOMPARE(m_member->until(told).last(), told);
    QTEST(m_rig->store().account(1)->status, "stored");
}

void ServerPermitsTest::editWithALaterDateBringsBack()
{
    m_rig->today = m_rig->today.addDays(1);
    m_rig->server().watchPermits();
    QVERIFY(!m_member->until(q("KICKED")).isEmpty());
    QCOMPARE(m_admin->answer(edit("active", m_rig->today), q("ADMIN_UPDATE")), q("ADMIN_UPDATE_USER_OK"));
    QVERIFY(m_member->login(q("YB1A")).startsWith(q("LOGIN_OK")));
}

void ServerPermitsTest::failedWriteIsTriedAgain()
{
    LogCapture log;
    log.expectWarning(q("YB1A could not be written to the database"));
    m_rig->execute(q("CREATE TRIGGER full BEFORE UPDATE ON accounts BEGIN SELECT RAISE(ABORT, 'full'); END"));
    m_rig->today = m_rig->today.addDays(1);
    m_rig->server().watchPermits();
    QCOMPARE(m_rig->store().account(1)->status, q("active"));
    m_rig->execute(q("DROP TRIGGER full"));
    m_rig->server().watchPermits();
    QCOMPARE(m_rig->store().account(1)->status, q("suspended"));
}

void ServerPermitsTest::failedReadIsTriedAgain()
{
    LogCapture log;
    log.expectWarning(q("the database could not be read: "));
    m_rig->execute(q("ALTER TABLE accounts RENAME TO kept"));
    m_rig->today = m_rig->today.addDays(1);
    m_rig->server().watchPermits();
    QCOMPARE(log.count(q("the database could not be read: ")), 1);
    m_rig->execute(q("ALTER TABLE kept RENAME TO accounts"));
    m_rig->server().watchPermits();
    QCOMPARE(m_rig->store().account(1)->status, q("suspended"));
}

EVOX_TEST_MAIN(ServerPermitsTest, QCoreApplication)
#include "tst_serverpermits.moc"
