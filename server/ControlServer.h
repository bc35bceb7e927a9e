#pragma once

#include "server/AccountStore.h"
#include "server/LoginGuard.h"
#include "server/Room.h"
#include "server/UdpRelay.h"

#include <QDate>
#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QTcpServer>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class Command;
class Session;

/// The companion server: accounts, rooms and the relay of their audio. One event loop.
class ControlServer final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ControlServer)

public:
    struct Options
    {
        QString address = QStringLiteral("::"); ///< a literal address to listen on
        quint16 port = 8080;                    ///< TCP; 0: any
        quint16 udpPort = 8082;                 ///< 0: any
        QStringList rooms;                      ///< made in a database that has none
        bool autoApprove = false;               ///< gateways that register may transmit at once
    };
    /// From a program that runs comes a PING every 5 s. One that has lost its connection waits 13 s before it comes
    /// back.
    static constexpr qint64 kSignOfLife = 12000; // milliseconds
    /// How many gateways may wait for an administrator: more than a club can have, and a list that he can still read.
    /// Without a bound, strangers could fill the disk.
    static constexpr int kMostPending = 500;
    /// How long one talker may hold a room.
    static constexpr qint64 kTalkLimit = 300000; // milliseconds
    /// How many looks a connection may let pass without a line; clients send PING every 5 s.
    static constexpr int kSilentLooks = 6;
    /// How many passwords an address may have checked within LoginGuard::kWindow, right ones included: enough for a
    /// club behind one router that comes back all at once.
    static constexpr int kPasswordChecks = 60;

    /// The store is open and outlives the server.
    explicit ControlServer(AccountStore *store, QObject *parent = nullptr);
    ~ControlServer() override;

    /// False, with the reason, when a port cannot be had.
    [[nodiscard]] bool start(const Options &options, QString *error);
    [[nodiscard]] quint16 port() const { return m_tcp.serverPort(); }
    [[nodiscard]] quint16 udpPort() const { return m_relay.port(); }
    /// A steady clock in milliseconds, for tests.
    void setClock(std::function<qint64()> clock) { m_clock = std::move(clock); }
    /// The calendar, for tests; before start().
    void setToday(std::function<QDate()> today) { m_today = std::move(today); }
    /// Suspends the accounts whose permit has ended, once on each day; runs by itself every minute.
    void watchPermits();
    /// Ends overs that last too long; runs by itself every second.
    void enforceTalkLimit();
    /// Looks at all connections and ends those from which nothing comes any more: lost without a word, or held by
    /// somebody who never logs in. Runs by itself every ten seconds.
    void endSilentSessions();

private:
    enum class Access { Anyone, Member, Admin };
    using Handler = void (ControlServer::*)(Session &, const Command &);
    struct Row
    {
        Handler handler = nullptr;
        Access access = Access::Anyone;
    };
    [[nodiscard]] static const QHash<QString, Row> &commandTable(); // CommandTable.cpp

    // ControlServer.cpp
    [[nodiscard]] bool makeRooms(const QStringList &names);
    void onNewConnection();
    void onLine(Session &session, const QString &line);
    void onClosed(Session *session);
    [[nodiscard]] bool mayTryPassword(const Session &session);
    [[nodiscard]] Session *sessionOf(int userId) const;
    [[nodiscard]] Session *sessionOf(const QString &callsign) const;
    void signOff(Session &session);
    void sendToAll(const QString &line);
    void sendToAdmins(const QString &line);
    void sendServerInfo();
    void sendQuality(Session &session);
    void audit(const Session &session, const QString &text) const;

    // AccountCommands.cpp
    void ping(Session &session, const Command &command);
    void quit(Session &session, const Command &command);
    void login(Session &session, const Command &command);
    [[nodiscard]] QString refusalFor(Account *account, const QString &password, const QString &hwid);
    [[nodiscard]] bool suspend(Account account);
    void takeOver(Session &old, const QString &hwid);
    void completeLogin(Session &session, Account account, const QString &hwid);
    void getProfile(Session &session, const Command &command);
    void sendProfile(Session &session);
    void getInfo(Session &session, const Command &command);
    void changePassword(Session &session, const Command &command);
    void requestDeviceReset(Session &session, const Command &command);
    void sendResetRequests(Session &admin);
    void withdrawResetRequest(const Account &account);
    void getQuality(Session &session, const Command &command);
    void onlineUsers(Session &session, const Command &command);

    // RegistrationCommands.cpp
    void registerGateway(Session &session, const Command &command);
    [[nodiscard]] bool mayRegister(const Session &session);
    [[nodiscard]] QString registrationRefusal(const Session &session);
    [[nodiscard]] QString enroll(const Command &command);

    // RoomCommands.cpp
    void rooms(Session &session, const Command &command);
    void join(Session &session, const Command &command);
    void leave(Session &session, const Command &command);
    void startTransmission(Session &session, const Command &command);
    void stopTransmission(Session &session, const Command &command);
    [[nodiscard]] Room *findRoom(const QString &name) const;
    [[nodiscard]] QString roomsLine() const;
    [[nodiscard]] QJsonObject roomLimits() const;
    [[nodiscard]] bool loadRooms();
    void openRoom(const StoredRoom &stored);
    [[nodiscard]] bool addRoom(const StoredRoom &room);
    void admit(Session &session, Room &room);
    void enter(Session &session, Room &room);
    void leaveRoom(Session &session);
    void showOut(Session &session);
    void releaseTalk(Room &room);
    void renewKey(Room &room);
    void sendUserList(const Room &room);

    // AdminCommands.cpp
    [[nodiscard]] std::optional<Account> accountFor(Session &session, const Command &command);
    void sendUsers(Session &session, const QString &word, bool (*isWanted)(const Account &));
    void allUsers(Session &session, const Command &command);
    void pendingUsers(Session &session, const Command &command);
    void approve(Session &session, const Command &command);
    void unapprove(Session &session, const Command &command);
    void setApproved(Session &session, const Command &command, bool approved);
    void kick(Session &session, const Command &command);
    void ban(Session &session, const Command &command);
    void mute(Session &session, const Command &command);
    void move(Session &session, const Command &command);
    void updateUser(Session &session, const Command &command);
    void finishUpdate(Session &session, const Account &account);
    void resetDevice(Session &session, const Command &command);
    void resetPassword(Session &session, const Command &command);
    void deleteUser(Session &session, const Command &command);
    void removeFromRoom(Session &target, const QString &line);
    [[nodiscard]] bool isOwnAccount(Session &session, const Account &account);
    [[nodiscard]] bool write(const Account &account);
    void apply(const Account &account);
    [[nodiscard]] bool store(const Account &account);

    // RoomAdminCommands.cpp
    void setQuality(Session &session, const Command &command);
    void createRoom(Session &session, const Command &command);
    void editRoom(Session &session, const Command &command);
    void deleteRoom(Session &session, const Command &command);
    [[nodiscard]] std::unique_ptr<Room> takeRoom(const Room &room);
    void moveOn(const Room &deleted, const QString &by);
    void setRoomOrder(Session &session, const Command &command);

    AccountStore *m_store;
    QTcpServer m_tcp;
    UdpRelay m_relay;
    LoginGuard m_guard;
    LoginGuard m_passwordGuard{kPasswordChecks};
    LoginGuard m_registrationGuard;
    bool m_autoApprove = false;
    std::function<qint64()> m_clock;
    std::function<QDate()> m_today;
    QDate m_permitsSeen; ///< the day on which all were looked at
    QTimer m_talkTimer;
    QTimer m_permitTimer;
    QTimer m_silenceTimer;
    QList<Session *> m_sessions;
    std::vector<std::unique_ptr<Room>> m_rooms; ///< in their order
};
