#include "net/TcpClient.h"

#include "net/protocol/Commands.h"
#include "net/protocol/ServerMessage.h"

#include <QDateTime>
#include <QDebug>
#include <QPointer>
#include <QTcpSocket>
#include <QTimer>

#include <chrono>
#include <utility>

namespace {

constexpr std::chrono::milliseconds kHeartbeatInterval{5000};

// A message of these words that stands alone on its line announces that its payload is the next line.
bool announcesPayload(const QByteArray &line)
{
    return line == "USER_PROFILE" || line == "USER_INFO_RESULT";
}

} // namespace

TcpClient::TcpClient(QObject *parent)
    : QObject(parent)
    , m_socket(new QTcpSocket(this))
    , m_heartbeat(new QTimer(this))
{
    m_heartbeat->setInterval(kHeartbeatInterval);
    connect(m_heartbeat, &QTimer::timeout, this, &TcpClient::onHeartbeat);
    // Queued: the reaction may open a box, and that must not happen inside the socket's own signal.
    connect(m_socket, &QTcpSocket::connected, this, &TcpClient::onConnected, Qt::QueuedConnection);
    connect(m_socket, &QTcpSocket::disconnected, this, &TcpClient::onDisconnected);
    connect(m_socket, &QTcpSocket::readyRead, this, &TcpClient::onReadyRead);
    connect(m_socket, &QTcpSocket::errorOccurred, this, &TcpClient::onError);
}

TcpClient::~TcpClient()
{
    disconnectFromServer();
}

bool TcpClient::isConnected() const
{
    return m_connected;
}

QAbstractSocket::SocketState TcpClient::socketState() const
{
    return m_socket->state();
}

QString TcpClient::udpToken() const
{
    return m_udpToken;
}

int TcpClient::userId() const
{
    return m_userId;
}

bool TcpClient::isAdmin() const
{
    return m_isAdmin;
}

void TcpClient::connectToServer(const QString &host, quint16 port)
{
    qDebug().noquote() << "[TCP] Connecting to" << host << port;
    const QPointer<TcpClient> self(this);
    abortConnection();
    if (self)
        m_socket->connectToHost(host, port);
}

void TcpClient::disconnectFromServer()
{
    if (m_connected) {
        sendCommand(Commands::quit());
        m_socket->flush();
    }
    m_heartbeat->stop();
    if (m_socket->state() == QAbstractSocket::ConnectedState)
        m_socket->close(); // what has been written still goes out
    else if (m_socket->state() != QAbstractSocket::ClosingState)
        m_socket->abort(); // an attempt would otherwise go on and only then be closed
    if (m_lossPending)
        tellDisconnected();
}

void TcpClient::disconnectFrom(int connection)
{
    if (connection == m_connection)
        disconnectFromServer();
}

void TcpClient::abortConnection()
{
    if (m_socket->state() != QAbstractSocket::UnconnectedState)
        m_socket->abort();
    if (m_lossPending)
        tellDisconnected();
}

void TcpClient::sendCommand(const QString &line)
{
    if (!m_connected || m_socket->state() != QAbstractSocket::ConnectedState)
        return;
    QByteArray bytes = line.toUtf8();
    bytes.replace('\r', ' ').replace('\n', ' '); // a value with a line end must not begin another command
    m_socket->write(bytes + "\r\n");
}

void TcpClient::login(const QString &callsign, const QString &password, const QString &hwid)
{
    sendCommand(Commands::login(callsign, password, hwid));
}

void TcpClient::joinRoom(const QString &room)
{
    sendCommand(Commands::join(room));
}

void TcpClient::stopTransmit(const QString &room)
{
    sendCommand(Commands::stopTransmit(room));
}

void TcpClient::approveUser(int userId)
{
    sendCommand(Commands::approveUser(userId));
}

void TcpClient::unapproveUser(int userId)
{
    sendCommand(Commands::unapproveUser(userId));
}

void TcpClient::muteUser(int userId, int muted)
{
    sendCommand(Commands::mute(userId, muted));
}

void TcpClient::sendAudio(const QByteArray &frame)
{
    Q_UNUSED(frame)
    qDebug() << "[TCP] sendAudio called but TCP audio not supported - drop frame";
}

void TcpClient::discardPendingAudio()
{
    m_buffer.discardPartialAudio();
}

void TcpClient::onConnected()
{
    if (m_connected || m_socket->state() != QAbstractSocket::ConnectedState)
        return; // lost again before the event loop came round
    ++m_connection;
    m_connected = true;
    m_heartbeat->start();
    qDebug() << "[TCP] Connected!";
    emit connected();
}

void TcpClient::onDisconnected()
{
    m_lossPending = true;
    scheduleDrain();
}

void TcpClient::onError(QAbstractSocket::SocketError error)
{
    Q_UNUSED(error)
    m_pendingErrors.append(m_socket->errorString());
    scheduleDrain();
}

void TcpClient::tellDisconnected()
{
    m_lossPending = false;
    m_heartbeat->stop();
    m_connected = false;
    ++m_connection;
    qDebug() << "[TCP] Disconnected!";
    emit disconnected();
}

void TcpClient::tellError(const QString &text)
{
    qDebug().noquote() << "[TCP] Error:" << text;
    emit errorOccurred(text);
}

void TcpClient::onHeartbeat()
{
    if (!m_connected)
        return;
    m_pingSentAt = QDateTime::currentMSecsSinceEpoch();
    sendCommand(Commands::ping());
}

void TcpClient::onReadyRead()
{
    receive(m_socket->readAll());
}

void TcpClient::receive(const QByteArray &bytes)
{
    m_buffer.append(bytes);
    scheduleDrain();
}

void TcpClient::scheduleDrain()
{
    if (m_drainScheduled)
        return;
    m_drainScheduled = true;
    QMetaObject::invokeMethod(this, &TcpClient::drain, Qt::QueuedConnection);
}

/// Dispatches everything that is whole; errors and a loss are told after the lines that came before them. A receiver
/// may block in an event loop of its own: the drain that is scheduled first then goes on under it with what is left,
/// and this one finds nothing more when it gets back.
void TcpClient::drain()
{
    m_drainScheduled = false;
    const QPointer<TcpClient> self(this);
    while (const auto message = m_buffer.next()) {
        scheduleRest();
        if (message->kind == MessageBuffer::Message::Kind::Audio)
            emit audioReceived(message->bytes, message->userId);
        else
            dispatchLine(message->bytes);
        if (!self)
            return;
    }
    if (m_buffer.isOverflowing())
        endOverlongConnection();
    while (!m_pendingErrors.isEmpty()) {
        const QString text = m_pendingErrors.takeFirst();
        scheduleRest();
        tellError(text);
        if (!self)
            return;
    }
    if (m_lossPending)
        tellDisconnected();
}

void TcpClient::scheduleRest()
{
    if (!m_buffer.isEmpty() || !m_pendingErrors.isEmpty() || m_lossPending)
        scheduleDrain();
}

void TcpClient::endOverlongConnection()
{
    m_buffer = {};
    m_pendingErrors.append(QStringLiteral("Server message too long"));
    m_socket->abort();
}

void TcpClient::dispatchLine(const QByteArray &line)
{
    if (!m_pendingLine.isEmpty())
        dispatch(std::exchange(m_pendingLine, QByteArray()) + '|' + line);
    else if (announcesPayload(line))
        m_pendingLine = line;
    else
        dispatch(line);
}

void TcpClient::dispatch(const QByteArray &line)
{
    if (line == "PONG") {
        handlePong();
        return;
    }
    if (line.startsWith("ROIP SERVER READY")) {
        qDebug() << "[TCP] Server ready";
        return;
    }
    const ServerMessage message(line);
    if (const Handler handler = handlerFor(message.bytes(0)))
        (this->*handler)(message);
    else
        qDebug().noquote() << "[TCP] Unknown command:" << message.word();
}

void TcpClient::handlePong()
{
    if (m_pingSentAt == 0)
        return;
    const auto latency = static_cast<float>(QDateTime::currentMSecsSinceEpoch() - m_pingSentAt);
    m_pingSentAt = 0;
    emit pingUpdated(latency);
}
