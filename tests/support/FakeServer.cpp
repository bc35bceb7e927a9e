#include "support/FakeServer.h"

#include <QCoreApplication>
#include <QTcpSocket>
#include <QTest>

#include <algorithm>

FakeServer::FakeServer(QObject *parent)
    : QObject(parent)
{
    // Every 127.x.y.z is this machine, so that each test has port 8082 to itself.
    static quint32 s_next = static_cast<quint32>(QCoreApplication::applicationPid()) * 16;
    do {
        m_address = QHostAddress(0x7F010000U + (s_next++ % 0xFF00U) + 1);
    } while (!m_udp.bind(m_address, kUdpPort, QUdpSocket::DontShareAddress));
    m_tcp.listen(m_address);
    m_port = m_tcp.serverPort();
    connect(&m_tcp, &QTcpServer::newConnection, this, &FakeServer::onNewConnection);
    connect(&m_udp, &QUdpSocket::readyRead, this, &FakeServer::onDatagram);
}

bool FakeServer::isClientConnected() const
{
    return m_client && m_client->state() == QAbstractSocket::ConnectedState;
}

int FakeServer::count(const QString &beginning) const
{
    return static_cast<int>(std::count_if(m_lines.cbegin(), m_lines.cend(),
                                          [&beginning](const QString &line) { return line.startsWith(beginning); }));
}

int FakeServer::datagramCount(const QByteArray &beginning) const
{
    return static_cast<int>(
        std::count_if(m_datagrams.cbegin(), m_datagrams.cend(),
                      [&beginning](const QByteArray &datagram) { return datagram.startsWith(beginning); }));
}

void FakeServer::clear()
{
    m_received.clear();
    m_lines.clear();
    m_datagrams.clear();
}

bool FakeServer::waitForLine(const QString &beginning, int count)
{
    return QTest::qWaitFor([&] { return this->count(beginning) >= count; });
}

bool FakeServer::waitForDatagram(const QByteArray &beginning, int count)
{
    return QTest::qWaitFor([&] { return datagramCount(beginning) >= count; });
}

bool FakeServer::waitForClient(int connections)
{
    return QTest::qWaitFor([&] { return m_connections >= connections && isClientConnected(); });
}

void FakeServer::send(const QString &line)
{
    sendRaw(line.toUtf8() + "\r\n");
}

void FakeServer::sendRaw(const QByteArray &bytes)
{
    if (m_client) {
        m_client->write(bytes);
        m_client->flush();
    }
}

void FakeServer::sendDatagram(const QByteArray &datagram)
{
    m_udp.writeDatagram(datagram, m_peerAddress, m_peerPort);
}

void FakeServer::drop(bool reset)
{
    if (!m_client)
        return;
    if (reset)
        m_client->abort();
    else
        m_client->disconnectFromHost();
}

void FakeServer::stopListening()
{
    m_tcp.close();
}

void FakeServer::listenAgain()
{
    m_tcp.listen(m_address, m_port);
}

void FakeServer::onNewConnection()
{
    while (QTcpSocket *socket = m_tcp.nextPendingConnection()) {
        if (m_client)
            m_client->disconnect(this);
        m_client = socket;
        m_pending.clear();
        ++m_connections;
        connect(socket, &QTcpSocket::readyRead, this, &FakeServer::onReadyRead);
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            if (m_client == socket)
                m_client = nullptr;
            socket->deleteLater();
        });
    }
}

void FakeServer::onReadyRead()
{
    const QByteArray bytes = m_client->readAll();
    m_received += bytes;
    m_pending += bytes;
    for (int end = m_pending.indexOf('\n'); end >= 0; end = m_pending.indexOf('\n')) {
        const QString line = QString::fromUtf8(m_pending.left(end)).remove(QLatin1Char('\r'));
        m_pending.remove(0, end + 1);
        m_lines.append(line);
        for (auto it = m_replies.cbegin(); it != m_replies.cend(); ++it) {
            if (!line.startsWith(it.key()))
                continue;
            for (const QString &reply : it.value())
                send(reply);
        }
    }
}

void FakeServer::onDatagram()
{
    while (m_udp.hasPendingDatagrams()) {
        QByteArray datagram(static_cast<int>(m_udp.pendingDatagramSize()), Qt::Uninitialized);
        m_udp.readDatagram(datagram.data(), datagram.size(), &m_peerAddress, &m_peerPort);
        m_datagrams.append(datagram);
        if (m_answersPing && datagram == "PING")
            sendDatagram("PONG");
        else if (m_answersToken && datagram.startsWith("TOKEN:"))
            sendDatagram("TOKEN_OK");
        else if (datagram == "KEEPALIVE")
            sendDatagram("KEEPALIVE_OK");
    }
}
