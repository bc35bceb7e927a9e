#include "e2e/AdminLine.h"

#include "support/CompanionServer.h"
#include "support/Wait.h"

namespace {

constexpr std::chrono::milliseconds kPatience{15000};

} // namespace

bool AdminLine::logIn(const CompanionServer &server, const QString &callsign, const QString &password)
{
    m_socket.connectToHost(server.host(), server.port());
    return waitFor([this] { return m_socket.state() == QAbstractSocket::ConnectedState; }, kPatience) &&
           ask(QStringLiteral("LOGIN %1 %2 hwid-of-the-admin").arg(callsign, password), "LOGIN_OK|");
}

bool AdminLine::ask(const QString &command, const QByteArray &answer)
{
    m_socket.write(command.toUtf8() + "\r\n");
    const auto isSaid = [this, &answer] {
        m_answers += m_socket.readAll();
        return answer.isEmpty() || m_answers.contains(answer);
    };
    return waitFor(isSaid, kPatience);
}
