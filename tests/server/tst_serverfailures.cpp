#include "server/ServerRig.h"
#include "server/WebServer.h"
#include "support/LogCapture.h"
#include "support/ResourceLimit.h"
#include "support/TestMain.h"

#include <QFile>

/// What the server does when the disk is full or no file is left to open, and when a client does not read.
class ServerFailuresTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void deedsThatCannotBeStored_data();
    void deedsThatCannotBeStored();
    void gatewaysLogInAllTheSame();
    void accountsThatCannotBeRead_data();
    void accountsThatCannotBeRead();
    void loginsWaitForTheDatabase();
    void roomsThatCannotBeReadStopTheStart();
    void whoDoesNotReadCostsNobodyElse();
    void acceptsAgainOnceFilesAreLeft();

private:
    // One server for all deeds: none of them leaves a trace.
    std::unique_ptr<ServerRig> m_rig;
    std::unique_ptr<RawClient> m_admin;
    std::unique_ptr<RawClient> m_member;
    QString m_users;
};

namespace {

const QString kRefusal = QStringLiteral("ERROR|Perubahan tidak dapat disimpan");

const QString kTalking = QStringLiteral("USER_LIST|Lobby|1|YB1A|Op YB1A|TX|1|0");

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

void fillDisk(ServerRig *rig)
{
    const QString trigger =
        QStringLiteral("CREATE TRIGGER %2_%1 BEFORE %1 ON %2 BEGIN SELECT RAISE(ABORT, 'full'); END");
    for (const char *table : {"accounts", "rooms", "settings"}) {
        for (const char *change : {"INSERT", "UPDATE", "DELETE"})
            rig->execute(trigger.arg(QLatin1String(change), QLatin1String(table)));
    }
}

/// The first that is free: as many are in use, without a gap.
quint64 nextFile()
{
    QFile probe(QCoreApplication::applicationFilePath());
    return probe.open(QIODevice::ReadOnly) ? static_cast<quint64>(probe.handle()) : 0;
}

} // namespace

void ServerFailuresTest::initTestCase()
{
    m_rig = std::make_unique<ServerRig>();
    m_member = m_rig->client();
    QVERIFY(m_member->enter(q("YB1A")));
    m_admin = m_rig->client();
    QVERIFY(m_admin->login(q("YB4D")).startsWith(q("LOGIN_OK")));
    QCOMPARE(m_member->answer(q("TX_START \"Lobby\""), q("USER_LIST")), kTalking);
    m_users = m_admin->answer(q("ADMIN_GET_ALL_USERS"), q("ADMIN_ALL"));
    fillDisk(m_rig.get());
}

void ServerFailuresTest::cleanupTestCase()
{
    m_member.reset();
    m_admin.reset();
    m_rig.reset();
}

void ServerFailuresTest::deedsThatCannotBeStored_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("refusal");
    for (const char *command :
         {"ADMIN_APPROVE_USER 1", "ADMIN_UNAPPROVE_USER 1", "ADMIN_BAN 1", "ADMIN_MUTE 1 1", "ADMIN_RESET_HWID 1",
          "ADMIN_UPDATE_USER 1 \"a\" \"b\" \"suspended\" \"c\" \"d\" \"e\" \"f\" \"g\" 0 1 \"\"",
          "ADMIN_UPDATE_USER 4 \"a\" \"b\" \"active\" 1 0 \"c\" \"d\" \"e\" \"f\" \"g\"",
          "ADMIN_RESET_PASSWORD 1 \"other\"", "ADMIN_DELETE_USER 1", "USER_REQUEST_HWID_RESET \"YB4D\"",
          "ADMIN_SET_AUDIO_QUALITY low", "ADMIN_CREATE_ROOM \"Bravo\" 5", "ADMIN_EDIT_ROOM \"Lobby\" \"Aula\" 5 \"\"",
          "ADMIN_DELETE_ROOM \"Lobby\"", "ADMIN_DELETE_ROOM \"Alpha\""})
        QTest::newRow(command) << q(command) << kRefusal;
    QTest::newRow("order") << q("ADMIN_SET_ROOM_ORDER Alpha|Lobby") << q("ERROR|Urutan room tidak dapat disimpan");
    QTest::newRow("own password") << q("USER_CHANGE_PASSWORD \"secret\" \"newsecret\"")
                                  << q("USER_CHANGE_PASSWORD_FAIL|Perubahan tidak dapat disimpan");
    QTest::newRow("registration")
        << q("REGISTER_GATEWAY \"GW\" \"YH1AB\" \"-\" \"-\" \"-\" \"Op\" \"-\" \"secret\" \"-\" \"-\"")
        << q("REGISTER_FAILED|Pendaftaran tidak dapat disimpan, coba lagi nanti");
}

/// Nothing of it is said to have been done, told to anybody or kept while the server runs.
void ServerFailuresTest::deedsThatCannotBeStored()
{
    QFETCH(QString, command);
    QFETCH(QString, refusal);
    QCOMPARE(m_member->answer(q("TX_START \"Lobby\""), q("USER_LIST")), kTalking);
    LogCapture log;
    for (const char *callsign : {"YB1A", "YB4D"})
        log.expectWarning(q(callsign) + q(" could not be written to the database"));
    m_admin->send(command);
    m_admin->send(q("PING"));
    const QStringList answers = m_admin->until(q("PONG"));
    QCOMPARE(answers, QStringList({refusal, q("PONG")}));
    QCOMPARE(log.linesStartingWith(q("YB4D 127.0.0.1")), QStringList());
    m_member->send(q("PING"));
    QCOMPARE(m_member->until(q("PONG")), QStringList(q("PONG")));
    QCOMPARE(m_admin->answer(q("ADMIN_GET_ALL_USERS"), q("ADMIN_ALL")), m_users);
    QCOMPARE(m_admin->answer(q("ROOMS"), q("ROOMS")), q("ROOMS|Lobby,Alpha"));
    QCOMPARE(m_admin->answer(q("GET_AUDIO_QUALITY"), q("AUDIO")), q("AUDIO_QUALITY|standard|32000|48000|20|5"));
}

void ServerFailuresTest::gatewaysLogInAllTheSame()
{
    ServerRig rig;
    fillDisk(&rig);
    LogCapture log;
    log.expectWarning(q("YB1A could not be written to the database"));
    auto client = rig.client();
    QVERIFY(client->enter(q("YB1A")));
    QCOMPARE(log.count(q("YB1A could not be written")), 1);
    QVERIFY2(client->answer(q("USER_GET_PROFILE"), q("USER_PROFILE")).contains(q("\"registered_hwid\":\"\"")),
             "the device is not bound");
}

void ServerFailuresTest::accountsThatCannotBeRead_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("refusal");
    for (const char *command :
         {"ADMIN_GET_ALL_USERS", "ADMIN_PENDING", "ADMIN_APPROVE_USER 1", "ADMIN_BAN 1", "ADMIN_MUTE 1 1",
          "ADMIN_RESET_HWID 1", "ADMIN_RESET_PASSWORD 1 \"other\"", "ADMIN_DELETE_USER 1", "USER_GET_INFO YB1A",
          "ADMIN_UPDATE_USER 1 \"a\" \"b\" \"active\" \"c\" \"d\" \"e\" \"f\" \"g\" 0 1 \"\""})
        QTest::newRow(command) << q(command) << q("ERROR|Data tidak dapat dibaca");
    QTest::newRow("device") << q("USER_REQUEST_HWID_RESET \"YB4D\"") << kRefusal;
    QTest::newRow("registration")
        << q("REGISTER_GATEWAY \"GW\" \"YH1AB\" \"-\" \"-\" \"-\" \"Op\" \"-\" \"secret\" \"-\" \"-\"")
        << q("REGISTER_FAILED|Pendaftaran tidak dapat disimpan, coba lagi nanti");
}

/// It does not read as if there were none.
void ServerFailuresTest::accountsThatCannotBeRead()
{
    QFETCH(QString, command);
    QFETCH(QString, refusal);
    ServerRig rig;
    auto admin = rig.client();
    QVERIFY(admin->login(q("YB4D")).startsWith(q("LOGIN_OK")));
    QVERIFY(!admin->until(q("SERVER_INFO")).isEmpty());
    rig.execute(q("ALTER TABLE accounts RENAME TO kept"));
    LogCapture log;
    log.expectWarning(q("the database could not be read: "));
    admin->send(command);
    admin->send(q("PING"));
    QCOMPARE(admin->until(q("PONG")), QStringList({refusal, q("PONG")}));
    QCOMPARE(log.count(q("the database could not be read: ")), 1);
}

void ServerFailuresTest::loginsWaitForTheDatabase()
{
    ServerRig rig;
    rig.execute(q("ALTER TABLE accounts RENAME TO kept"));
    LogCapture log;
    log.expectWarning(q("the database could not be read: "));
    auto client = rig.client();
    for (int i = 0; i <= LoginGuard::kFailures; ++i)
        QCOMPARE(client->login(q("YB1A")), q("LOGIN_FAILED|Akun tidak dapat dibaca, coba lagi nanti"));
    rig.execute(q("ALTER TABLE kept RENAME TO accounts"));
    QVERIFY2(client->login(q("YB1A")).startsWith(q("LOGIN_OK")), "none of them was a guess");
}

/// They are not taken for a new database, which gets the rooms of the options.
void ServerFailuresTest::roomsThatCannotBeReadStopTheStart()
{
    ServerRig rig;
    rig.execute(q("ALTER TABLE rooms RENAME TO kept"));
    LogCapture log;
    log.expectWarning(q("the database could not be read: "));
    ControlServer server(&rig.store());
    ControlServer::Options options;
    options.rooms = QStringList(q("Lobby"));
    QString error;
    QVERIFY(!server.start(options, &error));
    QCOMPARE(error, q("the rooms could not be read from the database"));
    QVERIFY(!log.linesStartingWith(q("the database could not be read: ")).filter(q("no such table")).isEmpty());
}

/// A lost client leaves the lists that the server is walking through; the others are told each line once.
void ServerFailuresTest::whoDoesNotReadCostsNobodyElse()
{
    constexpr int kLines = 120;
    ServerRig rig;
    // A list of rooms of 200 KB.
    rig.execute(q("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 20) "
                  "INSERT INTO rooms SELECT printf('%010000d', i), 0, i + 2 FROM n"));
    rig.restart();
    auto member = rig.client();
    QVERIFY(member->login(q("YB2B")).startsWith(q("LOGIN_OK")));
    const auto strangers = {rig.client(), rig.client(), rig.client()}; // so that the one who is lost is a late one
    auto slow = rig.client();
    QVERIFY(slow->login(q("YB1A")).startsWith(q("LOGIN_OK")));
    auto other = rig.client();
    QVERIFY(other->login(q("YB3C")).startsWith(q("LOGIN_OK")));
    auto admin = rig.client();
    QVERIFY(admin->login(q("YB4D")).startsWith(q("LOGIN_OK")));
    slow->stopReading();
    for (int i = 0; i < kLines; ++i)
        QVERIFY(!admin->answer(q("ADMIN_SET_ROOM_ORDER Alpha|Lobby"), q("ROOMS|")).isEmpty());
    for (auto *client : {&member, &other}) {
        (*client)->send(q("PING"));
        QCOMPARE((*client)->until(q("PONG")).filter(q("ROOMS|")).size(), kLines);
    }
    const QString online = admin->answer(q("ONLINE_USERS"), q("ONLINE_USERS"));
    QVERIFY2(!online.contains(q("YB1A")), "it was dropped");
    QCOMPARE(online.count(QLatin1Char(';')), 2);
}

void ServerFailuresTest::acceptsAgainOnceFilesAreLeft()
{
    if (!ResourceLimit::isPossible())
        QSKIP("needs a limit of open files");
    ServerRig rig;
    WebServer web([](const HttpRequest &) { return HttpResponse::plain(404); });
    QString error;
    QVERIFY2(web.listen(q("127.0.0.1"), 0, &error), qPrintable(error));
    for (const quint16 port : {rig.server().port(), web.port()}) {
        LogCapture log;
        const QString warning = QStringLiteral("a connection on port %1 could not be accepted: ").arg(port);
        log.expectWarning(warning);
        QTcpSocket socket;
        socket.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
        socket.write("GET / HTTP/1.0\r\n\r\n");
        {
            const ResourceLimit full(ResourceLimit::Of::OpenFiles, nextFile());
            QTRY_VERIFY(log.count(warning) > 0);
        }
        QTRY_VERIFY2(socket.canReadLine(), "nobody is accepted any more");
    }
}

EVOX_TEST_MAIN(ServerFailuresTest, QCoreApplication)
#include "tst_serverfailures.moc"
