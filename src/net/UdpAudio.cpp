#include "net/UdpAudio.h"

#include "net/protocol/AudioDatagram.h"

#include <QDateTime>
#include <QDebug>
#include <QHostInfo>
#include <QPointer>
#include <QTimer>
#include <QUdpSocket>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kHandshakeStep{3000};
constexpr milliseconds kHealthInterval{30000};
constexpr milliseconds kReinitializeDelay{200};
constexpr milliseconds kQuiet{20000};  // silence that a keep-alive ends
constexpr milliseconds kSilent{35000}; // silence after which the link is set up anew
constexpr int kSocketBuffer = 65536;   // bytes, each way
constexpr int kLargestDatagram = 65536;

constexpr int kLoggedSends = 5;
constexpr int kLoggedDatagrams = 10;
constexpr int kShownBytes = 20;
constexpr int kShownTokenBytes = 50;
constexpr int kKeepalivesPerLine = 10;

// Process-wide, for the rate of the diagnostics only.
int s_keepaliveReplies = 0;
int s_sendCalls = 0;
int s_sendCallsNotReady = 0;
int s_datagramsSent = 0;

} // namespace

UdpAudio::UdpAudio(QObject *parent)
    : QObject(parent)
    , m_socket(new QUdpSocket(this))
    , m_handshakeTimer(new QTimer(this))
    , m_healthTimer(new QTimer(this))
    , m_reinitializeTimer(new QTimer(this))
    , m_clock(&QDateTime::currentMSecsSinceEpoch)
{
    m_handshakeTimer->setObjectName(QStringLiteral("handshakeTimer"));
    m_handshakeTimer->setSingleShot(true);
    m_handshakeTimer->setInterval(kHandshakeStep);
    m_reinitializeTimer->setObjectName(QStringLiteral("reinitializeTimer"));
    m_reinitializeTimer->setSingleShot(true);
    m_reinitializeTimer->setInterval(kReinitializeDelay);
    m_healthTimer->setObjectName(QStringLiteral("healthTimer"));
    connect(m_socket, &QUdpSocket::readyRead, this, &UdpAudio::onReadyRead);
    connect(m_handshakeTimer, &QTimer::timeout, this, &UdpAudio::onHandshakeTimeout);
    connect(m_reinitializeTimer, &QTimer::timeout, this, &UdpAudio::reinitialize);
    connect(m_healthTimer, &QTimer::timeout, this, &UdpAudio::checkHealth);
    m_healthTimer->start(kHealthInterval);
}

UdpAudio::~UdpAudio()
{
    stop();
}

bool UdpAudio::isReady() const
{
    return m_ready;
}

void UdpAudio::setUserId(int userId)
{
    m_userId = userId;
}

void UdpAudio::setClock(std::function<qint64()> clock)
{
    m_clock = std::move(clock);
}

void UdpAudio::stop()
{
    m_handshakeTimer->stop();
    m_reinitializeTimer->stop();
    m_ready = false;
    m_arrived.clear();
    m_socket->close();
}

bool UdpAudio::enableUdp(const QString &host, quint16 port, const QString &token)
{
    qDebug() << "[UDP] ========================================";
    qDebug() << "[UDP] enableUdp called with:";
    qDebug().noquote() << "[UDP]   host:" << host;
    qDebug() << "[UDP]   port:" << port;
    qDebug() << "[UDP]   token length:" << token.size();
    m_reinitializeTimer->stop();
    const QHostAddress address = resolve(host);
    if (address.isNull()) {
        emit udpFailed();
        return false;
    }
    m_serverAddress = address;
    m_serverPort = port;
    m_token = token;
    m_step = Step::AwaitPong;
    m_ready = false;
    m_lastReceived = m_clock();
    m_handshakeTimer->stop(); // of the handshake that this one replaces
    if (!openSocket()) {
        emit udpFailed();
        return false;
    }
    sendPing();
    return true;
}

/// The address to send to, null after a log line that says why there is none.
QHostAddress UdpAudio::resolve(const QString &host)
{
    if (host.isEmpty()) {
        qDebug() << "[UDP] ERROR: host is empty!";
        return {};
    }
    const QHostAddress literal(host);
    if (!literal.isNull())
        return literal;
    const QHostInfo info = QHostInfo::fromName(host);
    if (info.error() != QHostInfo::NoError) {
        qDebug().noquote() << "[UDP] Failed to resolve host:" << info.errorString();
        return {};
    }
    const auto addresses = info.addresses();
    if (addresses.isEmpty()) {
        qDebug().noquote() << "[UDP] No IP addresses found for:" << host;
        return {};
    }
    const auto ipv4 = std::find_if(addresses.cbegin(), addresses.cend(), [](const QHostAddress &address) {
        return address.protocol() == QAbstractSocket::IPv4Protocol;
    });
    const QHostAddress chosen = ipv4 != addresses.cend() ? *ipv4 : addresses.first();
    qDebug().noquote() << "[UDP] Resolved to:" << chosen.toString();
    return chosen;
}

bool UdpAudio::openSocket()
{
    m_arrived.clear();
    delete m_socket;
    m_socket = new QUdpSocket(this);
    connect(m_socket, &QUdpSocket::readyRead, this, &UdpAudio::onReadyRead);
    if (!m_socket->bind(0)) {
        qDebug().noquote() << "[UDP] Failed to bind UDP socket:" << m_socket->errorString();
        return false;
    }
    qDebug() << "[UDP] Bound to local port:" << m_socket->localPort();
    m_socket->setSocketOption(QAbstractSocket::SendBufferSizeSocketOption, kSocketBuffer);
    m_socket->setSocketOption(QAbstractSocket::ReceiveBufferSizeSocketOption, kSocketBuffer);
    return true;
}

void UdpAudio::sendPing()
{
    m_step = Step::AwaitPong;
    qDebug().noquote() << "[UDP] Sending PING (format1) to" << m_serverAddress.toString() << ":" << m_serverPort;
    const qint64 written = send(QByteArrayLiteral("PING")); // bare: servers take no line ending here
    qDebug() << "[UDP] PING sent, bytes:" << written;
    m_handshakeTimer->start();
}

void UdpAudio::sendToken()
{
    m_step = Step::AwaitConfirmation;
    const QString text = m_userId > 0 ? QStringLiteral("TOKEN:%1:%2").arg(m_token, QString::number(m_userId))
                                      : QStringLiteral("TOKEN:") + m_token;
    const QByteArray datagram = text.toUtf8();
    send(datagram);
    qDebug() << "[UDP] Sending TOKEN, length:" << datagram.size();
    qDebug().noquote() << "[UDP] TOKEN content (first 50):" << QString::fromUtf8(datagram.left(kShownTokenBytes));
    m_handshakeTimer->start();
}

void UdpAudio::resendToken(const QString &token)
{
    if (!m_ready)
        return;
    const QByteArray datagram = (QStringLiteral("TOKEN:") + token).toUtf8();
    send(datagram);
    qDebug() << "[UDP] TOKEN resent, length:" << datagram.size();
}

qint64 UdpAudio::send(const QByteArray &datagram)
{
    return m_socket->writeDatagram(datagram, m_serverAddress, m_serverPort);
}

void UdpAudio::onHandshakeTimeout()
{
    qDebug() << "[UDP] Handshake timeout at step" << static_cast<int>(m_step);
    switch (m_step) {
    case Step::AwaitPong:
        qDebug() << "[UDP] No PONG received from server!";
        fail();
        break;
    case Step::AwaitConfirmation:
        // A server that never confirms the token still counts as ready.
        qDebug() << "[UDP] No token confirmation, but continuing anyway";
        m_ready = true;
        emit udpReady();
        break;
    case Step::Confirmed: fail(); break;
    }
}

void UdpAudio::fail()
{
    qDebug() << "[UDP] UDP handshake failed! Using TCP fallback";
    emit udpFailed();
}

/// Datagrams are handled when the event loop comes round, not inside the socket's own signal: a receiver may replace
/// the socket, delete this link or wait in a box.
void UdpAudio::onReadyRead()
{
    // Reads once in any case: a datagram with a wrong checksum is gone by now, and without a read the socket would not
    // tell of the next one.
    do {
        const qint64 announced = m_socket->pendingDatagramSize();
        QByteArray datagram(announced >= 0 ? static_cast<int>(announced) : kLargestDatagram, Qt::Uninitialized);
        const qint64 size = m_socket->readDatagram(datagram.data(), datagram.size());
        if (size < 0)
            break; // the socket tells again when there is more
        datagram.truncate(static_cast<int>(size));
        m_arrived.append(datagram);
    } while (m_socket->hasPendingDatagrams());
    scheduleArrived();
}

void UdpAudio::scheduleArrived()
{
    if (m_arrived.isEmpty() || m_arrivedScheduled)
        return;
    m_arrivedScheduled = true;
    QMetaObject::invokeMethod(this, &UdpAudio::handleArrived, Qt::QueuedConnection);
}

void UdpAudio::handleArrived()
{
    m_arrivedScheduled = false;
    const QPointer<UdpAudio> self(this);
    while (self && !m_arrived.isEmpty()) {
        const QByteArray datagram = m_arrived.takeFirst();
        scheduleArrived(); // goes on with the others while a receiver waits in a box
        handleDatagram(datagram);
    }
}

void UdpAudio::handleDatagram(const QByteArray &datagram)
{
    m_lastReceived = m_clock();
    const QString text = QString::fromUtf8(datagram.constData(), datagram.size()).trimmed();
    if (text == QLatin1String("PONG")) {
        qDebug() << "[UDP] PONG received! Handshake step:" << static_cast<int>(m_step);
        if (m_step == Step::AwaitPong)
            sendToken();
    } else if (text.startsWith(QLatin1String("REGISTERED:"))) {
        handleRegistered(text);
    } else if (text == QLatin1String("OK") || text == QLatin1String("TOKEN_OK")) {
        qDebug().noquote() << "[UDP] Token confirmed:" << text;
        confirm();
    } else if (text == QLatin1String("KEEPALIVE_OK")) {
        if (++s_keepaliveReplies % kKeepalivesPerLine == 0)
            qDebug() << "[UDP] KEEPALIVE_OK received - socket healthy";
    } else if (m_ready) {
        if (const auto audio = AudioDatagram::decode(datagram))
            emit audioReceived(audio->payload);
    }
}

void UdpAudio::handleRegistered(const QString &text)
{
    // The id is told for the log only: what counts is the one from the login.
    qDebug() << "[UDP] REGISTERED received! user_id:" << text.section(QLatin1Char(':'), 1, 1).toInt();
    confirm();
    qDebug() << "[UDP] UDP is now READY - audio will use UDP!";
}

void UdpAudio::confirm()
{
    m_handshakeTimer->stop();
    m_step = Step::Confirmed;
    m_ready = true;
    emit udpReady();
}

void UdpAudio::checkHealth()
{
    if (!m_ready || m_serverAddress.isNull() || m_serverPort == 0)
        return;
    const qint64 silent = m_clock() - m_lastReceived;
    const bool heardBefore = m_lastReceived > 0;
    const auto state = m_socket->state();
    const bool dead = state == QAbstractSocket::UnconnectedState || state == QAbstractSocket::ClosingState;
    if (dead || (heardBefore && silent > kSilent.count())) {
        qWarning().noquote() << "[UDP] Socket health check FAILED"
                             << "state:" << state << "silent:" << silent
                             << QStringLiteral("ms \u2014 reinitializing...");
        m_ready = false;
        m_reinitializeTimer->start();
    } else if (heardBefore && silent > kQuiet.count()) {
        sendKeepalive();
    }
}

void UdpAudio::reinitialize()
{
    qDebug() << "[UDP] Reinitializing UDP socket...";
    enableUdp(m_serverAddress.toString(), m_serverPort, m_token);
}

void UdpAudio::sendKeepalive()
{
    if (m_ready)
        send(QByteArrayLiteral("KEEPALIVE"));
}

void UdpAudio::sendAudio(const QByteArray &payload)
{
    ++s_sendCalls;
    if (s_sendCalls <= kLoggedSends)
        qDebug().noquote() << "[UDP] sendAudio #" << s_sendCalls << "data size:" << payload.size()
                           << "first 20 bytes:" << QString::fromLatin1(payload.left(kShownBytes).toHex());
    if (!m_ready) {
        if (++s_sendCallsNotReady <= kLoggedSends)
            qDebug() << "[UDP] sendAudio: UDP not ready, skipping";
        return;
    }
    if (payload.isEmpty() || m_serverAddress.isNull() || m_serverPort == 0)
        return;
    const QByteArray datagram = AudioDatagram{static_cast<quint32>(m_userId), payload}.encode();
    if (++s_datagramsSent <= kLoggedDatagrams)
        qDebug() << "[UDP] sendAudio #" << s_datagramsSent << "userId:" << m_userId << "size:" << payload.size();
    send(datagram);
}
