#pragma once

#include "server/AccountStore.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QString>

#include <chrono>

class QTcpSocket;
struct Room;

/// One control connection: its lines, and who is logged in on it. Ends the connection when a line is too long, too
/// many come at once or what is sent stays unread.
class Session final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Session)

public:
    static constexpr int kLongestLine = 64 * 1024; ///< bytes
    static constexpr int kLinesPerSecond = 50;     ///< on average
    static constexpr int kBurst = 200;             ///< lines

    /// Takes the socket over.
    Session(QTcpSocket *socket, QObject *parent);

    [[nodiscard]] QString address() const;
    [[nodiscard]] bool isLoggedIn() const { return m_account.id > 0; }
    [[nodiscard]] const Account &account() const { return m_account; }
    [[nodiscard]] QString hwid() const { return m_hwid; }
    [[nodiscard]] Room *room() const { return m_room; }
    /// When its last line came, on the server's clock.
    [[nodiscard]] qint64 heardAt() const { return m_heardAt; }
    void setHeardAt(qint64 time) { m_heardAt = time; }

    void logIn(const Account &account, const QString &hwid);
    void logOut() { m_account = {}; }
    /// The stored account changed.
    void setAccount(const Account &account);
    void setRoom(Room *room) { m_room = room; }
    /// One line, with its line end added. Nobody is lost by it before the event loop runs again.
    void send(const QString &line);
    /// Closes the connection after what was sent, or without it when it is not taken in time.
    void close();
    void setClosingTime(std::chrono::milliseconds time) { m_closingTime = time; }
    /// Ends the connection at once.
    void abort();
    /// How often this was asked since the last line came.
    [[nodiscard]] int countSilence() { return ++m_silence; }

signals:
    void lineReceived(const QString &line);
    void closed();

private:
    void onReadyRead();
    void takeLines();
    void takeLine(const QByteArray &line);
    [[nodiscard]] bool isOpen() const;
    [[nodiscard]] bool mayTakeLine();
    void refuse(const QString &reason);

    QTcpSocket *m_socket;
    std::chrono::milliseconds m_closingTime{5000};
    QByteArray m_buffer;
    bool m_isPausing = false; ///< lines wait until the event loop has come round
    Account m_account;
    QString m_hwid;
    Room *m_room = nullptr;
    qint64 m_heardAt = 0; ///< milliseconds
    QElapsedTimer m_clock;
    double m_credit = kBurst; ///< lines that may still come at once
    int m_silence = 0;
    qint64 m_unsentLimit;     ///< bytes
    bool m_isDropped = false; ///< it reads too little; its connection is about to end
};
