#pragma once

#include "server/DatagramSocket.h"

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QString>
#include <QVector>

/// The audio side of the server. An address is bound to a member by the member's token and by nothing else; audio is
/// taken only from the bound address of the one member who talks in a room, and goes to the other bound members of it.
class UdpRelay final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UdpRelay)

public:
    static constexpr int kLargestPayload = 4096; ///< bytes; larger datagrams are dropped

    explicit UdpRelay(QObject *parent = nullptr);
    ~UdpRelay() override;

    [[nodiscard]] bool open(const QString &address, quint16 port, QString *error);
    [[nodiscard]] quint16 port() const { return m_socket.port(); }
    [[nodiscard]] qint64 forwarded() const { return m_forwarded; }
    [[nodiscard]] bool isBound(int userId) const;

    /// Announces a member; an earlier token of the same id is void.
    void addMember(int userId, const QByteArray &token);
    void removeMember(int userId);
    /// Puts a member into a room; an empty name takes it out of any.
    void setRoom(int userId, const QString &room);
    /// The one member whose audio the room hears; 0 for none.
    void setTalker(const QString &room, int userId);
    /// Handles the datagrams that have come, up to a bounded number. Runs by itself from the event loop.
    void relayWaiting();

private:
    struct Member;
    struct Room
    {
        QVector<Member *> members;
        Member *talker = nullptr;
    };
    struct Member
    {
        int userId = 0;
        QByteArray token;
        Endpoint endpoint;
        Room *room = nullptr;
        QString roomName;
    };

    void handle(int size, const Endpoint &from);
    [[nodiscard]] bool handleControl(const QByteArray &text, const Endpoint &from);
    void bindEndpoint(const QByteArray &token, const Endpoint &from);
    void forward(Member *talker, int size);

    DatagramSocket m_socket;
    QHash<int, Member *> m_members;
    QHash<QByteArray, Member *> m_byToken;
    QHash<Endpoint, Member *> m_byEndpoint;
    QHash<QString, Room *> m_rooms;
    QByteArray m_buffer;
    qint64 m_forwarded = 0;
};
