#include "support/DriverLine.h"

#include "support/Wait.h"
#include "support/driver/DriverWords.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTcpSocket>

namespace {

QJsonObject error(const QString &text)
{
    return {{QStringLiteral("error"), text}};
}

} // namespace

DriverLine::DriverLine(QObject *parent)
    : QObject(parent)
{
    connect(&m_server, &QTcpServer::newConnection, this, &DriverLine::onNewConnection);
    if (!m_server.listen(QHostAddress::LocalHost))
        qWarning().noquote() << "cannot listen for the program:" << m_server.errorString();
}

void DriverLine::onNewConnection()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { onReadyRead(socket); });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        onReadyRead(socket);
    }
}

void DriverLine::onReadyRead(QTcpSocket *socket)
{
    while (socket->canReadLine()) {
        const QJsonObject message = QJsonDocument::fromJson(socket->readLine()).object();
        if (message.contains(QLatin1String("pid")))
            introduce(socket, message);
        else if (socket == m_program)
            m_answer = message;
    }
    if (socket->bytesAvailable() > DriverWords::kMaxLine)
        socket->abort();
}

void DriverLine::introduce(QTcpSocket *socket, const QJsonObject &hello)
{
    m_program = socket;
    m_pid = static_cast<qint64>(hello.value(QLatin1String("pid")).toDouble());
    m_arguments.clear();
    const QJsonArray arguments = hello.value(QLatin1String("arguments")).toArray();
    for (const QJsonValue &argument : arguments)
        m_arguments.append(argument.toString());
    ++m_programs;
}

QJsonObject DriverLine::ask(QJsonObject request, std::chrono::milliseconds timeout)
{
    const QPointer<QTcpSocket> program = m_program;
    const auto isGone = [&program] { return !program || program->state() != QTcpSocket::ConnectedState; };
    if (isGone())
        return error(QStringLiteral("no program is there"));
    const int id = ++m_lastId;
    request.insert(QStringLiteral("id"), id);
    program->write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
    const auto isAnswered = [this, id] { return m_answer.value(QLatin1String("id")).toInt() == id; };
    (void)waitFor([&] { return isAnswered() || isGone(); }, timeout);
    if (isAnswered())
        return m_answer;
    return error(isGone() ? QStringLiteral("the program has ended") : QStringLiteral("the program does not answer"));
}
