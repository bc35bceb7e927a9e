#pragma once

#include <QJsonObject>
#include <QLocalServer>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTemporaryDir>

#include <chrono>

class QLocalSocket;

/// The test's end of the line to a driven program. A program that starts itself anew connects anew, and from then on
/// it is the one that is asked.
class DriverLine final : public QObject
{
    Q_OBJECT

public:
    /// Listens at once, on a socket of its own.
    explicit DriverLine(QObject *parent = nullptr);

    [[nodiscard]] QString socketPath() const { return m_server.fullServerName(); }
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
    void onReadyRead(QLocalSocket *socket);
    void introduce(QLocalSocket *socket, const QJsonObject &hello);

    QTemporaryDir m_folder;
    QLocalServer m_server;
    QPointer<QLocalSocket> m_program;
    QJsonObject m_answer;
    QStringList m_arguments;
    qint64 m_pid = 0;
    int m_programs = 0;
    int m_lastId = 0;
};
