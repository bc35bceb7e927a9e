#pragma once

#include "support/ChildProcess.h"
#include "support/LossyProxy.h"

#include <QHostAddress>
#include <QJsonArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// The real server with a database of its own, on a 127.x.y.z on which nobody else listens. The clients' datagrams go
/// through a proxy on UDP port 8082, which counts them and can make the line a bad one.
class CompanionServer final
{
public:
    explicit CompanionServer(const QStringList &rooms = {QStringLiteral("Lobby")});
    CompanionServer(const CompanionServer &) = delete;
    CompanionServer &operator=(const CompanionServer &) = delete;

    /// An approved account; before start(). False, after printing why, when the server's own command refuses.
    [[nodiscard]] bool addUser(const QString &callsign, const QString &password, bool admin = false) const;
    /// What its callsign registry knows; before start(). Otherwise what the server brings along.
    [[nodiscard]] bool setRegistry(const QJsonArray &records);
    /// Waits until it listens; also after kill(), on the same ports.
    [[nodiscard]] bool start();
    void kill() { m_program.killNow(); }

    [[nodiscard]] QString host() const { return m_address.toString(); }
    [[nodiscard]] quint16 port() const { return m_port; }
    /// Where its registry and update pages begin.
    [[nodiscard]] QString webUrl() const;
    [[nodiscard]] const ChildProcess &program() const { return m_program; }
    [[nodiscard]] LossyProxy &line() { return m_line; }

private:
    [[nodiscard]] bool takeAddress();
    [[nodiscard]] quint16 freePort() const;
    [[nodiscard]] QString database() const { return m_folder.filePath(QStringLiteral("evox.sqlite")); }
    [[nodiscard]] bool run(const QStringList &arguments) const;

    QTemporaryDir m_folder;
    QStringList m_rooms;
    QHostAddress m_address;
    quint16 m_port = 0;
    quint16 m_udpPort = 0;
    quint16 m_httpPort = 0;
    QString m_registry; ///< file of it; empty: the server's own
    LossyProxy m_line;
    ChildProcess m_program;
};
