#pragma once

#include <QByteArray>
#include <QString>
#include <QTcpSocket>

class CompanionServer;

/// An administrator without a program: commands typed into a connection of one's own.
class AdminLine final
{
public:
    [[nodiscard]] bool logIn(const CompanionServer &server, const QString &callsign, const QString &password);
    /// Sends the command and waits until the server has said this; an empty answer is not waited for.
    [[nodiscard]] bool ask(const QString &command, const QByteArray &answer = {});

private:
    QTcpSocket m_socket;
    QByteArray m_answers;
};
