#include "support/FakeRegistry.h"

#include <QTcpSocket>

namespace {

QString callsignIn(const QByteArray &request)
{
    const int start = request.indexOf("?callsign=");
    return start < 0 ? QString()
                     : QString::fromLatin1(request.mid(start + 10, request.indexOf(' ', start) - start - 10));
}

QByteArray item(const char *title, const QString &value)
{
    return value.isNull() ? QByteArray()
                          : QByteArray("<li><div class=\"title-meta\">") + title +
                                "</div><div class=\"meta-details\">" + value.toUtf8() + "</div></li>\n";
}

} // namespace

FakeRegistry::FakeRegistry(QObject *parent)
    : QObject(parent)
{
    if (!m_server.listen(QHostAddress::LocalHost))
        qWarning("the registry cannot listen");
    connect(&m_server, &QTcpServer::newConnection, this, &FakeRegistry::onConnection);
}

QString FakeRegistry::url() const
{
    return QStringLiteral("http://127.0.0.1:%1").arg(m_server.serverPort());
}

QByteArray FakeRegistry::entry(const QString &name, const QString &address, const QString &validity,
                               const QString &status)
{
    return "<ul class=\"none-style\">\n" + item("Nama :", name) + item("Alamat :", address) +
           item("Masa Laku :", validity) + item("Status :", status) + "</ul>";
}

QByteArray FakeRegistry::notFound()
{
    return "<div><img src=\"/images/not-found.png\"></div>";
}

QStringList FakeRegistry::callsigns() const
{
    QStringList callsigns;
    for (const QByteArray &request : m_requests)
        callsigns.append(callsignIn(request));
    return callsigns;
}

void FakeRegistry::onConnection()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
            // One request a connection, without a body: it is whole at the empty line.
            const QByteArray sofar = socket->property("request").toByteArray() + socket->readAll();
            socket->setProperty("request", sofar);
            if (sofar.endsWith("\r\n\r\n"))
                onRequest(socket, sofar);
        });
    }
}

QByteArray FakeRegistry::answerTo(const QString &callsign) const
{
    const QByteArray page = m_pages.value(callsign, notFound());
    return "HTTP/1.1 " + m_status +
           "\r\nContent-Type: text/html\r\nConnection: close\r\nContent-Length: " + QByteArray::number(page.size()) +
           "\r\n\r\n" + page;
}

void FakeRegistry::onRequest(QTcpSocket *socket, const QByteArray &request)
{
    m_requests.append(request);
    m_waiting.append({socket, answerTo(callsignIn(request))});
    if (!m_holds)
        release();
}

void FakeRegistry::release()
{
    const auto waiting = m_waiting;
    m_waiting.clear();
    for (const Waiting &one : waiting) {
        if (!one.socket)
            continue;
        one.socket->write(one.answer);
        one.socket->disconnectFromHost();
    }
}

void FakeRegistry::cutOff()
{
    const auto waiting = m_waiting;
    m_waiting.clear();
    for (const Waiting &one : waiting) {
        if (!one.socket)
            continue;
        one.socket->write(one.answer.left(one.answer.size() / 2));
        one.socket->disconnectFromHost();
    }
}
