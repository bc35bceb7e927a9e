#pragma once

#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTcpServer>

#include <chrono>

class QTcpSocket;

/// The test's end of the line to a driven program. A program that starts itself anew connects anew, and from then on
/// it is the one that is asked.
class DriverLine final : public QObject
{
    Q_OBJECT

public:
    /// Listens at once, on a port of this machine that nobody else has.
    explicit DriverLine(QObject *parent = nullptr);

    [[nodiscard]] quint16 port() const { return m_server.serverPort(); }
    /// Programs that have introduced themselves so far.
    [[nodiscard]] int programs() const { return m_programs; }
    /// Of the latest program; 0 and empty before the first.
    [[nodiscard]] qint64 pid() const { return m_pid; }
    [[nodiscard]] const QStringList &arguments() const { return m_arguments; }

    /// Adds "id" and waits for the answer: an object with "result" or "error". A program that has ended, or blocks
    /// longer than the timeout, is an error too.
    [[nodiscard]] QJsonObject ask(QJsonObject request, std::chrono::milliseconds timeout = std::chrono::seconds(20));

private:
    void onNewConnection();
    void onReadyRead(QTcpSocket *socket);
    void introduce(QTcpSocket *socket, const QJsonObject &hello);

    QTcpServer m_server;
    QPointer<QTcpSocket> m_program;
    QJsonObject m_answer;
    QStringList m_arguments;
    qint64 m_pid = 0;
    int m_programs = 0;
    int m_lastId = 0;
};
