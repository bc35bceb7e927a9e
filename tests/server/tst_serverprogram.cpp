#include "server/AccountStore.h"
#include "server/Passwords.h"
#include "support/ChildProcess.h"
#include "support/TestMain.h"

#include <QFile>
#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <memory>

/// The program itself: its options, what it prints and when it refuses to start.
class ServerProgramTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void everyAddressIncludesIpv4();
    void firstStartMakesTheRoomOfNewClients();
    void namedRoomsAreAllThereIs();
    void webPort_data();
    void webPort();
    void takenDefaultPortIsDoneWithout();
    void takenNamedPortIsAnError();
    void wrongOptions_data();
    void wrongOptions();
    void servesTheFilesOfTheOperator();
    void helpNamesEveryOption();
    void passwordIsChangedAlone();
    void unusablePasswords_data();
    void unusablePasswords();
    void commandsWithoutAnAccount();
    void listsUsers();

private:
    [[nodiscard]] bool start(const QStringList &options);
    [[nodiscard]] int exitCode(const QStringList &options);
    [[nodiscard]] QString databasePath() const { return m_folder->filePath(QStringLiteral("club.sqlite")); }
    [[nodiscard]] bool beginCommand(const QStringList &words);
    [[nodiscard]] bool command(const QStringList &words);
    [[nodiscard]] std::optional<Account> account(const char *callsign) const;
    [[nodiscard]] QString file(const char *name, const QByteArray &content) const;
    [[nodiscard]] QByteArray get(const QString &target);
    [[nodiscard]] QString roomsAfterLogin();

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ChildProcess> m_program;
    QHostAddress m_address; ///< one of this test's own, where 8088 is free
    int m_port = 0;
    int m_webPort = 0;
};

namespace {

constexpr quint16 kDefaultWebPort = 8088;

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

QString serverPath()
{
    return QCoreApplication::applicationDirPath() + q("/evox-server");
}

} // namespace

void ServerProgramTest::init()
{
    m_program = std::make_unique<ChildProcess>();
    m_folder = std::make_unique<QTemporaryDir>();
    QTcpServer probe;
    auto address = 0x7F030001 + static_cast<quint32>(QCoreApplication::applicationPid() % 4000) * 16;
    while (!probe.listen(QHostAddress(address), kDefaultWebPort))
        ++address;
    m_address = QHostAddress(address);
}

bool ServerProgramTest::start(const QStringList &options)
{
    const QStringList own{q("--database"), m_folder->filePath(q("club.sqlite")), q("--port"), q("0"), q("--udp-port"),
                          q("0")};
    const bool hasAddress = options.contains(q("--listen"));
    if (!m_program->begin(serverPath(),
                          own + (hasAddress ? QStringList() : QStringList{q("--listen"), m_address.toString()}) +
                              options))
        return false;
    static const QRegularExpression ready(q("^evox-server ready: tcp (\\d+) udp (\\d+) http (\\d+)\n$"));
    QByteArray output;
    QRegularExpressionMatch match;
    static_cast<void>(QTest::qWaitFor(
        [&] {
            output += m_program->readAllStandardOutput();
            match = ready.match(QString::fromUtf8(output));
            return match.hasMatch() || !m_program->isRunning();
        },
        20000));
    m_port = match.captured(1).toInt();
    m_webPort = match.captured(3).toInt();
    return match.hasMatch();
}

int ServerProgramTest::exitCode(const QStringList &options)
{
    const bool started = start(options);
    return started || !m_program->waitForEnd() ? -1 : m_program->exitCode();
}

bool ServerProgramTest::beginCommand(const QStringList &words)
{
    return m_program->begin(serverPath(), QStringList{q("--database"), databasePath()} + words);
}

/// Runs it to its end; whether it succeeded.
bool ServerProgramTest::command(const QStringList &words)
{
    return beginCommand(words) && m_program->waitForEnd() && m_program->exitCode() == 0;
}

/// As another program reads it.
std::optional<Account> ServerProgramTest::account(const char *callsign) const
{
    AccountStore store;
    QString error;
    return store.open(databasePath(), &error) ? store.account(q(callsign)) : std::nullopt;
}

QString ServerProgramTest::file(const char *name, const QByteArray &content) const
{
    QFile file(m_folder->filePath(q(name)));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        QTest::qFail("no file", __FILE__, __LINE__);
    return file.fileName();
}

QByteArray ServerProgramTest::get(const QString &target)
{
    QNetworkAccessManager network;
    const QString address = QStringLiteral("http://%1:%2%3").arg(m_address.toString()).arg(m_webPort).arg(target);
    const std::unique_ptr<QNetworkReply> reply(network.get(QNetworkRequest(QUrl(address))));
    static_cast<void>(QTest::qWaitFor([&] { return reply->isFinished(); }));
    return reply->readAll();
}

/// The answer to ROOMS, after the account YB1A was made and logged in.
QString ServerProgramTest::roomsAfterLogin()
{
    QTcpSocket socket;
    socket.connectToHost(m_address, static_cast<quint16>(m_port));
    socket.write("LOGIN YB1A secret pc\r\nROOMS\r\n");
    QByteArray lines;
    static const QRegularExpression rooms(q("\nROOMS\\|(.*)\r\n"));
    QRegularExpressionMatch match;
    static_cast<void>(QTest::qWaitFor([&] {
        lines += socket.readAll();
        match = rooms.match(QString::fromUtf8(lines));
        return match.hasMatch();
    }));
    return match.captured(1);
}

void ServerProgramTest::everyAddressIncludesIpv4()
{
    QVERIFY(start({q("--listen"), q("::"), q("--http-port"), q("0")}));
    QTcpSocket socket;
    socket.connectToHost(m_address, static_cast<quint16>(m_port));
    QTRY_VERIFY2(socket.canReadLine(), "no greeting by IPv4");
}

void ServerProgramTest::firstStartMakesTheRoomOfNewClients()
{
    QVERIFY(ChildProcess::outputOf(serverPath(), {q("--database"), m_folder->filePath(q("club.sqlite")), q("add-user"),
                                                  q("YB1A"), q("--password"), q("secret")})
                .isEmpty());
    QVERIFY(start({}));
    QCOMPARE(roomsAfterLogin(), q("== LOBBY =="));
}

void ServerProgramTest::namedRoomsAreAllThereIs()
{
    QVERIFY(ChildProcess::outputOf(serverPath(), {q("--database"), m_folder->filePath(q("club.sqlite")), q("add-user"),
                                                  q("YB1A"), q("--password"), q("secret")})
                .isEmpty());
    QVERIFY(start({q("--room"), q("Utara"), q("--room"), q("Selatan")}));
    QCOMPARE(roomsAfterLogin(), q("Utara,Selatan"));
    m_program = std::make_unique<ChildProcess>();
    QVERIFY(start({q("--room"), q("Utara"), q("--room"), q("Timur")}));
    QCOMPARE(roomsAfterLogin(), q("Utara,Selatan")); // from the second start on they are an administrator's
}

void ServerProgramTest::webPort_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("port");
    QTest::newRow("by itself") << QStringList() << int(kDefaultWebPort);
    QTest::newRow("named") << QStringList{q("--http-port"), q("8089")} << 8089;
    QTest::newRow("off") << QStringList{q("--http-port"), q("0")} << 0;
}

void ServerProgramTest::webPort()
{
    QFETCH(QStringList, options);
    QVERIFY(start(options));
    QTEST(m_webPort, "port");
    if (m_webPort)
        QVERIFY(get(q("/update/")).contains("\"version\""));
}

void ServerProgramTest::takenDefaultPortIsDoneWithout()
{
    QTcpServer other;
    QVERIFY(other.listen(m_address, kDefaultWebPort));
    QVERIFY(start({}));
    QCOMPARE(m_webPort, 0);
    QTRY_VERIFY(!m_program->log().filter(q("HTTP port 8088: ")).filter(q("serving without")).isEmpty());
}

void ServerProgramTest::takenNamedPortIsAnError()
{
    QTcpServer other;
    QVERIFY(other.listen(m_address, kDefaultWebPort));
    QCOMPARE(exitCode({q("--http-port"), q("8088")}), 1);
    QVERIFY(m_program->lastLine(q("evox-server: HTTP port 8088: ")).size() > 30);
}

void ServerProgramTest::wrongOptions_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QByteArray>("content"); // of the file that the option names; null: the text itself
    QTest::addColumn<QString>("complaint");
    const auto row = [](const char *name, const char *option, const QByteArray &content, const char *complaint) {
        QTest::newRow(name) << q(option) << content << q(complaint);
    };
    row("port is a word", "--http-port=web", {}, "evox-server: --http-port: not a port");
    row("port is too large", "--http-port=65536", {}, "evox-server: --http-port: not a port");
    row("control port has a letter", "--port=8o80", {}, "evox-server: --port: not a port");
    row("control port is too large", "--port=65536", {}, "evox-server: --port: not a port");
    row("audio port is negative", "--udp-port=-1", {}, "evox-server: --udp-port: not a port");
    row("audio port is empty", "--udp-port=", {}, "evox-server: --udp-port: not a port");
    row("address is a name", "--listen=localhost", {}, "evox-server: --listen: not an IP address");
    row("address is cut off", "--listen=127.0.0.", {}, "evox-server: --listen: not an IP address");
    row("no registry file", "--registry=/nowhere.json", {}, "evox-server: /nowhere.json: No such file");
    row("registry is no array", "--registry=", "{}", "evox-server: FILE: not an array of callsigns");
    row("registry without a callsign", "--registry=", "[{}]", "evox-server: FILE: entry 1: no callsign");
    row("no update file", "--update=/nowhere.json", {}, "evox-server: /nowhere.json: No such file");
    row("update is no object", "--update=", "[]", "evox-server: FILE: not a JSON object");
    row("update is too long", "--update=", QByteArray(1024 * 1024 + 1, ' '),
        "evox-server: FILE: longer than 1048576 bytes");
}

void ServerProgramTest::wrongOptions()
{
    QFETCH(QString, option);
    QFETCH(QByteArray, content);
    QFETCH(QString, complaint);
    const QString path = content.isNull() ? QString() : file("content.json", content);
    QCOMPARE(exitCode({option + path}), 1);
    const QString expected = complaint.replace(q("FILE"), path);
    QVERIFY2(!m_program->lastLine(expected).isEmpty(), qPrintable(m_program->log().join(QLatin1Char('\n'))));
}

void ServerProgramTest::servesTheFilesOfTheOperator()
{
    const QByteArray update = "{ \"version\": \"5.0\", \"download_url_x64\": \"/x64\" }\n";
    const QString registry = file("registry.json", "[{\"callsign\":\"YH7TEST\",\"address\":\"Jl. Satu\"}]");
    QVERIFY(start({q("--registry"), registry, q("--registry-quoted"), q("--update"), file("update.json", update)}));
    QCOMPARE(get(q("/update/")), update);
    QVERIFY(get(q("/registrant/searchDataIar/?callsign=YH7TEST")).startsWith("\"<ul class=\\\"none-style\\\">"));
    QVERIFY(get(q("/registrant/searchDataIar/?callsign=YH0GW")).contains("not-found.png"));
}

void ServerProgramTest::helpNamesEveryOption()
{
    const QByteArray help = ChildProcess::outputOf(serverPath(), {q("--help")});
    for (const char *option : {"--listen", "--port", "--udp-port", "--http-port", "--registry", "--registry-quoted",
                               "--update", "--auto-approve", "--database", "--room", "== LOBBY ==", "8080", "8088"})
        QVERIFY2(help.contains(option), option);
}

/// What the server writes while the password is typed stays.
void ServerProgramTest::passwordIsChangedAlone()
{
    QVERIFY(Passwords::initialize());
    QVERIFY(command({q("add-user"), q("YB1A"), q("--password"), q("secret")}));
    QFile prompt(m_folder->filePath(q("prompt")));
    m_program = std::make_unique<ChildProcess>();
    m_program->setLogFile(prompt.fileName());
    QVERIFY(beginCommand({q("set-password"), q("yb1a")}));
    QTRY_VERIFY(prompt.isOpen() || prompt.open(QIODevice::ReadOnly));
    QByteArray asked;
    QTRY_VERIFY((asked += prompt.readAll()).startsWith("Password: "));
    {
        AccountStore store;
        QString error;
        QVERIFY2(store.open(databasePath(), &error), qPrintable(error));
        QCOMPARE(store.change(q("YB1A"), [](Account &account) { account.status = q("banned"); }),
                 AccountStore::Change::Done);
    }
    m_program->write("newsecret\n");
    QVERIFY(m_program->waitForEnd());
    QCOMPARE(m_program->exitCode(), 0);
    const auto changed = account("YB1A");
    QVERIFY(changed);
    QCOMPARE(changed->status, q("banned"));
    QVERIFY(Passwords::matches(changed->passwordHash, q("newsecret")));
}

void ServerProgramTest::unusablePasswords_data()
{
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("complaint");
    const QString unusable = q("a password has no blanks and no quotes: nobody could log in with it");
    QTest::newRow("empty") << q("") << q("a password has at least one character");
    QTest::newRow("two words") << q("dua kata") << unusable;
    QTest::newRow("tab") << q("dua\tkata") << unusable;
    QTest::newRow("quote in front") << q("\"kata") << unusable;
    QTest::newRow("quote inside") << q("ka\"ta") << unusable;
}

void ServerProgramTest::unusablePasswords()
{
    QFETCH(QString, password);
    QFETCH(QString, complaint);
    QVERIFY(command({q("add-user"), q("YB1A"), q("--password"), q("secret")}));
    const auto before = account("YB1A");
    QVERIFY(before);
    for (const QStringList &words :
         {QStringList{q("add-user"), q("YB2B")}, QStringList{q("set-password"), q("YB1A")}}) {
        QVERIFY(!command(words + QStringList{q("--password"), password}));
        QCOMPARE(m_program->exitCode(), 1);
        QCOMPARE(m_program->lastLine(q("evox-server: ")), q("evox-server: ") + complaint);
        QVERIFY(beginCommand(words));
        m_program->write(password.toUtf8() + '\n');
        QVERIFY(m_program->waitForEnd());
        QCOMPARE(m_program->exitCode(), 1);
        QVERIFY(m_program->log().value(0).endsWith(complaint)); // behind the prompt
    }
    QVERIFY(!account("YB2B"));
    QCOMPARE(account("YB1A")->passwordHash, before->passwordHash);
}

void ServerProgramTest::commandsWithoutAnAccount()
{
    for (const char *word : {"set-password", "make-admin"}) {
        QVERIFY(!command({q(word), q("yb9z"), q("--password"), q("secret")}));
        QCOMPARE(m_program->exitCode(), 1);
        QCOMPARE(m_program->log().value(0), q("evox-server: there is no account YB9Z"));
    }
}

void ServerProgramTest::listsUsers()
{
    QVERIFY(command({q("add-user"), q("yb1a"), q("--password"), q("secret"), q("--name"), q("Ani Siti")}));
    QVERIFY(command({q("add-user"), q("YB2B"), q("--password"), q("secret")}));
    QVERIFY(command({q("make-admin"), q("yb2b")}));
    QVERIFY(command({q("list-users")}));
    QCOMPARE(m_program->readAllStandardOutput(),
             QByteArray("1\tYB1A\tAni Siti\tactive\tapproved\t\n2\tYB2B\tYB2B\tactive\tapproved\tadmin\n"));
}

EVOX_TEST_MAIN(ServerProgramTest, QCoreApplication)
#include "tst_serverprogram.moc"
