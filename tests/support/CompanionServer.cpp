#include "support/CompanionServer.h"

#include "support/Wait.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTcpServer>

namespace {

constexpr quint16 kUdpPort = 8082; // the only one that clients know
constexpr quint32 kFirstAddress = 0x7F020001;
constexpr quint32 kAddresses = 0xFE00;
constexpr std::chrono::milliseconds kStart{20000};

QString serverPath()
{
    return QCoreApplication::applicationDirPath() + QLatin1String("/evox-server");
}

} // namespace

CompanionServer::CompanionServer(const QStringList &rooms)
    : m_rooms(rooms)
{
    if (!takeAddress())
        qWarning() << "no free address with UDP port" << kUdpPort;
}

bool CompanionServer::takeAddress()
{
    auto place = static_cast<quint32>(QCoreApplication::applicationPid()) * 16;
    for (quint32 attempt = 0; attempt < kAddresses; ++attempt, ++place) {
        m_address = QHostAddress(kFirstAddress + place % kAddresses);
        if (m_line.listen(m_address, kUdpPort))
            return true;
    }
    return false;
}

bool CompanionServer::run(const QStringList &arguments) const
{
    ChildProcess program;
    if (!program.begin(serverPath(), QStringList{QStringLiteral("--database"), database()} + arguments))
        return false;
    if (program.waitForEnd() && program.exitStatus() == QProcess::NormalExit && program.exitCode() == 0)
        return true;
    program.printLog();
    return false;
}

bool CompanionServer::addUser(const QString &callsign, const QString &password, bool admin) const
{
    return run({QStringLiteral("add-user"), callsign, QStringLiteral("--password"), password}) &&
           (!admin || run({QStringLiteral("make-admin"), callsign}));
}

bool CompanionServer::setRegistry(const QJsonArray &records)
{
    m_registry = m_folder.filePath(QStringLiteral("registry.json"));
    QFile file(m_registry);
    return file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(records).toJson()) > 0;
}

QString CompanionServer::webUrl() const
{
    return QStringLiteral("http://%1:%2").arg(host()).arg(m_httpPort);
}

/// The server itself takes 0 for "no web pages". Nobody else listens on this address in between.
quint16 CompanionServer::freePort() const
{
    QTcpServer probe;
    return probe.listen(m_address) ? probe.serverPort() : quint16(0);
}

bool CompanionServer::start()
{
    if (m_httpPort == 0)
        m_httpPort = freePort();
    QStringList arguments{QStringLiteral("--database"),  database(),
                          QStringLiteral("--listen"),    host(),
                          QStringLiteral("--port"),      QString::number(m_port),
                          QStringLiteral("--udp-port"),  QString::number(m_udpPort),
                          QStringLiteral("--http-port"), QString::number(m_httpPort)};
    for (const QString &room : m_rooms)
        arguments += {QStringLiteral("--room"), room};
    if (!m_registry.isEmpty())
        arguments += {QStringLiteral("--registry"), m_registry};
    if (!m_program.begin(serverPath(), arguments))
        return false;
    QByteArray output;
    static const QRegularExpression ready(QStringLiteral("evox-server ready: tcp (\\d+) udp (\\d+) http (\\d+)"));
    QRegularExpressionMatch match;
    const auto listens = [&] {
        output += m_program.readAllStandardOutput();
        match = ready.match(QString::fromUtf8(output));
        return match.hasMatch() || !m_program.isRunning();
    };
    if (!waitFor(listens, kStart) || !match.hasMatch()) {
        m_program.printLog();
        return false;
    }
    m_port = match.captured(1).toUShort();
    m_udpPort = match.captured(2).toUShort();
    m_httpPort = match.captured(3).toUShort();
    m_line.setServer(m_address, m_udpPort);
    return true;
}
