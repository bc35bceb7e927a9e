#include "RegistrationPeer.h"

#include <QSemaphore>
#include <QTcpServer>
#include <QTcpSocket>

namespace {

constexpr int kPatience = 20000; // milliseconds
constexpr int kPause = 30;       // milliseconds, so that answers arrive one by one

void talk(QTcpSocket *socket, const RegistrationPeer::Script &script, QByteArray *received)
{
    socket->write(script.greeting);
    socket->waitForBytesWritten(kPatience);
    while (!received->endsWith("\r\n") && socket->waitForReadyRead(kPatience))
        *received += socket->readAll();
    for (const QByteArray &answer : script.answers) {
        socket->write(answer);
        socket->waitForBytesWritten(kPatience);
        socket->waitForDisconnected(kPause);
    }
    if (script.closes)
        socket->disconnectFromHost();
    if (socket->state() != QAbstractSocket::UnconnectedState)
        socket->waitForDisconnected(kPatience);
}

} // namespace

RegistrationPeer::RegistrationPeer(const QList<Script> &scripts)
{
    QSemaphore listening;
    m_thread.reset(QThread::create([this, scripts, &listening] {
        QTcpServer server;
        server.listen(QHostAddress::LocalHost);
        m_port = server.serverPort();
        listening.release();
        for (const Script &script : scripts) {
            if (!server.waitForNewConnection(kPatience))
                return;
            const std::unique_ptr<QTcpSocket> socket(server.nextPendingConnection());
            QByteArray received;
            talk(socket.get(), script, &received);
            m_received.append(received);
        }
    }));
    m_thread->start();
    listening.acquire();
}

RegistrationPeer::~RegistrationPeer()
{
    m_thread->wait();
}

QList<QByteArray> RegistrationPeer::received() const
{
    m_thread->wait();
    return m_received;
}
