#include "server/Session.h"

#include <QHostAddress>
#include <QPointer>
#include <QTcpSocket>

#include <algorithm>

namespace {

// A client that does not read is dropped. Lists of all accounts go to administrators only, and may be long.
constexpr qint64 kUnsentLimit = 4LL * 1024 * 1024;       // bytes
constexpr qint64 kUnsentLimitAdmin = 64LL * 1024 * 1024; // bytes

} // namespace

Session::Session(QTcpSocket *socket, QObject *parent)
    : QObject(parent)
    , m_socket(socket)
{
    m_socket->setParent(this);
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
    m_account = account;
    m_hwid = hwid;
}

void Session::send(const QString &line)
{
    if (m_isDropped)
        return;
    if (m_socket->bytesToWrite() > (m_account.admin ? kUnsentLimitAdmin : kUnsentLimit)) {
        // Not at once: whoever sends to many walks through a list, and the loss would take this one out of it.
        m_isDropped = true;
        QMetaObject::invokeMethod(
            m_socket, [this] { m_socket->abort(); }, Qt::QueuedConnection);
        return;
    }
    m_socket->write(line.toUtf8() + "\r\n");
}

void Session::close()
{
    m_socket->disconnectFromHost();
}

bool Session::mayTakeLine()
{
    const double seconds = static_cast<double>(m_clock.restart()) / 1000;
    m_credit = std::min<double>(kBurst, m_credit + seconds * kLinesPerSecond) - 1;
    return m_credit >= 0;
}

void Session::onReadyRead()
{
    m_buffer += m_socket->readAll();
    const QPointer<Session> self(this);
    int begin = 0;
    int end = 0;
    while ((end = m_buffer.indexOf('\n', begin)) >= 0) {
        const QString line = QString::fromUtf8(m_buffer.constData() + begin, end - begin).trimmed();
        begin = end + 1;
        if (!mayTakeLine()) {
            send(QStringLiteral("ERROR|Terlalu banyak perintah"));
            close();
            return;
        }
        if (!line.isEmpty())
            emit lineReceived(line);
        if (!self || m_isDropped || m_socket->state() != QAbstractSocket::ConnectedState)
            return;
    }
    m_buffer.remove(0, begin);
    if (m_buffer.size() > kLongestLine) {
        send(QStringLiteral("ERROR|Perintah terlalu panjang"));
        close();
    }
}
