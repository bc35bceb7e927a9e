#include "server/Session.h"

#include <QHostAddress>
#include <QPointer>
#include <QTcpSocket>
#include <QTimer>

#include <algorithm>

namespace {

// A client that does not read is dropped. Strangers get short answers only; lists of all accounts go to administrators
// only, and may be long.
constexpr qint64 kUnsentLimitStranger = 64LL * 1024;     // bytes
constexpr qint64 kUnsentLimit = 4LL * 1024 * 1024;       // bytes
constexpr qint64 kUnsentLimitAdmin = 64LL * 1024 * 1024; // bytes
constexpr std::chrono::milliseconds kTurn{5};            // well below a frame of audio
const QString kTooLong = QStringLiteral("Perintah terlalu panjang");

} // namespace

Session::Session(QTcpSocket *socket, QObject *parent)
    : QObject(parent)
    , m_socket(socket)
    , m_unsentLimit(kUnsentLimitStranger)
{
    m_socket->setParent(this);
    m_socket->setReadBufferSize(kLongestLine + 1); // bytes; the rest waits on the sender's side
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_socket->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    m_clock.start();
    connect(m_socket, &QTcpSocket::readyRead, this, &Session::onReadyRead);
    connect(m_socket, &QTcpSocket::disconnected, this, &Session::closed);
}

QString Session::address() const
{
    return m_socket->peerAddress().toString();
}

void Session::logIn(const Account &account, const QString &hwid)
{
    setAccount(account);
    m_hwid = hwid;
}

/// What a connection may leave unread is not taken back when it logs out: it has to hear why it was.
void Session::setAccount(const Account &account)
{
    m_account = account;
    m_unsentLimit = account.admin ? kUnsentLimitAdmin : kUnsentLimit;
}

void Session::send(const QString &line)
{
    if (m_isDropped)
        return;
    if (m_socket->bytesToWrite() > m_unsentLimit) {
        // Not at once: whoever sends to many walks through a list, and the loss would take this one out of it.
        m_isDropped = true;
        QMetaObject::invokeMethod(this, &Session::abort, Qt::QueuedConnection);
        return;
    }
    m_socket->write(line.toUtf8() + "\r\n");
}

void Session::close()
{
    m_socket->disconnectFromHost();
    QTimer::singleShot(m_closingTime, this, &Session::abort);
}

void Session::abort()
{
    m_socket->abort();
}

bool Session::isOpen() const
{
    return !m_isDropped && m_socket->state() == QAbstractSocket::ConnectedState;
}

bool Session::mayTakeLine()
{
    const double seconds = static_cast<double>(m_clock.restart()) / 1000;
    m_credit = std::min<double>(kBurst, m_credit + seconds * kLinesPerSecond) - 1;
    return m_credit >= 0;
}

void Session::onReadyRead()
{
    if (!m_isPausing)
        takeLines();
}

/// What is left when the turn is over waits for the event loop: some lines take long, and audio and the other
/// connections want their turn in between.
void Session::takeLines()
{
    m_isPausing = false;
    const QByteArray arrived = m_socket->readAll();
    if (!isOpen())
        return; // read all the same: closed with bytes unread, the other side may lose what was sent last
    m_buffer += arrived;
    QElapsedTimer turn;
    turn.start();
    const QPointer<Session> self(this);
    int begin = 0;
    int end = 0;
    while (isOpen() && (end = m_buffer.indexOf('\n', begin)) >= 0 && !turn.hasExpired(kTurn.count())) {
        takeLine(m_buffer.mid(begin, end - begin));
        begin = end + 1;
        if (!self)
            return;
    }
    m_buffer.remove(0, begin);
    m_isPausing = isOpen() && end >= 0;
    if (m_isPausing)
        QMetaObject::invokeMethod(this, &Session::takeLines, Qt::QueuedConnection);
    else if (isOpen() && m_buffer.size() > kLongestLine)
        refuse(kTooLong);
}

void Session::takeLine(const QByteArray &line)
{
    m_silence = 0;
    const QString text = QString::fromUtf8(line).trimmed();
    if (line.size() > kLongestLine)
        refuse(kTooLong);
    else if (!mayTakeLine())
        refuse(QStringLiteral("Terlalu banyak perintah"));
    else if (!text.isEmpty())
        emit lineReceived(text);
}

void Session::refuse(const QString &reason)
{
    send(QStringLiteral("ERROR|") + reason);
    close();
}
