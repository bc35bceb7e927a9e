#include "server/ServerRig.h"

#include "server/Passwords.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>

RawClient::RawClient(const ControlServer &server)
    : m_udpPort(server.udpPort())
{
    m_tcp.connectToHost(QHostAddress(QHostAddress::LocalHost), server.port());
    m_udp.bind(QHostAddress(QHostAddress::LocalHost), 0);
    static_cast<void>(until(QStringLiteral("ROIP SERVER READY")));
}

void RawClient::send(const QString &line)
{
    sendRaw(line.toUtf8() + "\r\n");
}

void RawClient::sendRaw(const QByteArray &bytes)
{
    m_tcp.write(bytes);
    m_tcp.flush();
}

QStringList RawClient::until(const QString &beginning)
{
    QStringList lines;
    static_cast<void>(QTest::qWaitFor([&] {
        m_pending += m_tcp.readAll();
        for (int end = m_pending.indexOf("\r\n"); end >= 0; end = m_pending.indexOf("\r\n")) {
            lines.append(QString::fromUtf8(m_pending.left(end)));
            m_pending.remove(0, end + 2);
            if (lines.last().startsWith(beginning))
                return true;
        }
        return false;
    }));
    return lines;
}

QString RawClient::answer(const QString &line, const QString &beginning)
{
    send(line);
    const QStringList lines = until(beginning);
    return lines.isEmpty() ? QString() : lines.last();
}

QString RawClient::login(const QString &callsign, const QString &password, const QString &hwid)
{
    return answer(QStringLiteral("LOGIN %1 %2 %3").arg(callsign, password, hwid).trimmed(), QStringLiteral("LOGIN_"));
}

void RawClient::sendUdpSilently(const QByteArray &datagram)
{
    m_udp.writeDatagram(datagram, QHostAddress(QHostAddress::LocalHost), m_udpPort);
}

QByteArray RawClient::sendUdp(const QByteArray &datagram)
{
    sendUdpSilently(datagram);
    return nextDatagram();
}

QByteArray RawClient::nextDatagram()
{
    if (!QTest::qWaitFor([this] { return m_udp.hasPendingDatagrams(); }, 500))
        return {};
    QByteArray datagram(static_cast<int>(m_udp.pendingDatagramSize()), Qt::Uninitialized);
    m_udp.readDatagram(datagram.data(), datagram.size());
    return datagram;
}

bool RawClient::enter(const QString &callsign, const QString &room)
{
    const QString token = login(callsign).section(QLatin1Char('|'), 1, 1);
    return sendUdp("TOKEN:" + token.toUtf8() + ":1").startsWith("REGISTERED:") &&
           answer(QStringLiteral("JOIN ") + room, QStringLiteral("JOIN_")).startsWith(QStringLiteral("JOIN_OK")) &&
           !until(QStringLiteral("USER_LIST")).isEmpty();
}

ServerRig::ServerRig(bool autoApprove)
    : m_autoApprove(autoApprove)
{
    static_cast<void>(Passwords::initialize());
    start();
    for (const char *callsign : {"YB1A", "YB2B", "YB3C", "YB4D"}) {
        Account account;
        account.callsign = QString::fromLatin1(callsign);
        account.name = QStringLiteral("Op ") + account.callsign;
        account.passwordHash = passwordHash();
        account.approved = true;
        account.admin = account.callsign == QLatin1String("YB4D");
        static_cast<void>(m_store->add(&account));
    }
}

QByteArray ServerRig::passwordHash()
{
    static const QByteArray hash = Passwords::hash(QStringLiteral("secret"));
    return hash;
}

void ServerRig::start()
{
    m_store = std::make_unique<AccountStore>();
    QString error;
    if (!m_store->open(m_folder.filePath(QStringLiteral("club.sqlite")), &error))
        QTest::qFail(qPrintable(error), __FILE__, __LINE__);
    m_server = std::make_unique<ControlServer>(m_store.get());
    m_server->setClock([this] { return now; });
    m_server->setToday([this] { return today; });
    ControlServer::Options options;
    options.address = QStringLiteral("127.0.0.1");
    options.port = 0;
    options.udpPort = 0;
    options.rooms = QStringList{QStringLiteral("Lobby"), QStringLiteral("Alpha")};
    options.autoApprove = m_autoApprove;
    if (!m_server->start(options, &error))
        QTest::qFail(qPrintable(error), __FILE__, __LINE__);
}

void ServerRig::restart()
{
    m_server.reset();
    m_store.reset();
    start();
}

void ServerRig::execute(const QString &sql)
{
    const QString connection = QStringLiteral("rig");
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        database.setDatabaseName(m_folder.filePath(QStringLiteral("club.sqlite")));
        QSqlQuery query(database);
        if (!database.open() || !query.exec(sql))
            QTest::qFail(qPrintable(database.lastError().text() + query.lastError().text()), __FILE__, __LINE__);
    }
    QSqlDatabase::removeDatabase(connection);
}

void ServerRig::change(const QString &callsign, const std::function<void(Account &)> &change)
{
    auto account = m_store->account(callsign);
    change(*account);
    static_cast<void>(m_store->update(*account));
}
