#pragma once

#include <QByteArray>
#include <QList>
#include <QThread>

#include <memory>

/// A server for one registration after the other, in a thread of its own: the client blocks the test's thread.
class RegistrationPeer final
{
public:
    /// What the server does with one connection.
    struct Script
    {
        QByteArray greeting = "SELAMAT DATANG\r\n";
        QList<QByteArray> answers; ///< sent one after the other once a line has come
        bool closes = true;        ///< after the answers; else the connection stays until the client goes
    };

    explicit RegistrationPeer(const QList<Script> &scripts);
    ~RegistrationPeer();
    RegistrationPeer(const RegistrationPeer &) = delete;
    RegistrationPeer &operator=(const RegistrationPeer &) = delete;

    [[nodiscard]] quint16 port() const { return m_port; }
    /// What came on each connection; waits until the last one has ended.
    [[nodiscard]] QList<QByteArray> received() const;

private:
    quint16 m_port = 0;
    QList<QByteArray> m_received;
    std::unique_ptr<QThread> m_thread;
};
