// Rooms, their members and their talkers.

#include "server/Command.h"
#include "server/ControlServer.h"
#include "server/Session.h"

#include <QDebug>

namespace {

QString keyText(const Room &room)
{
    return QString::fromLatin1(room.key.toBase64());
}

} // namespace

/// Once, at the start. Afterwards each change is made in both places: members hold on to their room, whatever the
/// database says about it then.
bool ControlServer::loadRooms()
{
    bool isRead = false;
    const QList<StoredRoom> stored = m_store->rooms(&isRead);
    for (const StoredRoom &room : stored)
        openRoom(room);
    return isRead;
}

void ControlServer::openRoom(const StoredRoom &stored)
{
    auto room = std::make_unique<Room>();
    room->name = stored.name;
    room->maximum = stored.maximum;
    room->renewKey();
    m_rooms.push_back(std::move(room));
}

/// False when the database does not take it.
bool ControlServer::addRoom(const StoredRoom &room)
{
    const bool isStored = m_store->addRoom(room);
    if (isStored)
        openRoom(room);
    return isStored;
}

Room *ControlServer::findRoom(const QString &name) const
{
    for (const auto &room : m_rooms) {
        if (room->name == name)
            return room.get();
    }
    return nullptr;
}

QString ControlServer::roomsLine() const
{
    QStringList names;
    for (const auto &room : m_rooms)
        names.append(room->name);
    return QStringLiteral("ROOMS|") + names.join(QLatin1Char(','));
}

QJsonObject ControlServer::roomLimits() const
{
    QJsonObject limits;
    for (const auto &room : m_rooms)
        limits.insert(room->name, room->maximum);
    return limits;
}

void ControlServer::rooms(Session &session, const Command &command)
{
    Q_UNUSED(command)
    session.send(roomsLine());
}

void ControlServer::join(Session &session, const Command &command)
{
    Room *room = findRoom(command.roomName(0));
    if (!room) {
        session.send(QStringLiteral("JOIN_FAILED|Room tidak ditemukan"));
        return;
    }
    if (session.room() != room && room->isFull()) {
        session.send(QStringLiteral("JOIN_FAILED|Room penuh"));
        return;
    }
    if (session.room() != room)
        leaveRoom(session);
    session.send(QStringLiteral("JOIN_OK|%1|%2").arg(room->name, keyText(*room)));
    enter(session, *room);
    if (session.account().muted)
        session.send(QStringLiteral("MUTED|1|oleh admin")); // a client forgets it when it leaves a room
}

/// Of the list of members, which follows, the others know nothing yet.
void ControlServer::admit(Session &session, Room &room)
{
    room.members.append(&session);
    session.setRoom(&room);
    m_relay.setRoom(session.account().id, room.name);
}

void ControlServer::enter(Session &session, Room &room)
{
    if (session.room() != &room)
        admit(session, room);
    sendUserList(room);
}

void ControlServer::leave(Session &session, const Command &command)
{
    Q_UNUSED(command)
    showOut(session);
    session.send(QStringLiteral("LEAVE_OK"));
}

void ControlServer::leaveRoom(Session &session)
{
    Room *room = session.room();
    if (!room)
        return;
    if (room->talker == &session)
        releaseTalk(*room);
    room->members.removeOne(&session);
    session.setRoom(nullptr);
    m_relay.setRoom(session.account().id, {});
    sendUserList(*room);
}

/// Like leaveRoom(), for one who stays connected: a client keys its radio by the user list alone, and would keep it
/// keyed for a talker whom it hears no more.
void ControlServer::showOut(Session &session)
{
    if (!session.room())
        return;
    const QString empty = session.room()->emptyUserList();
    leaveRoom(session);
    session.send(empty);
}

void ControlServer::startTransmission(Session &session, const Command &command)
{
    const auto fail = [&session](const QString &reason) { session.send(QStringLiteral("TX_START_FAILED|") + reason); };
    Room *room = session.room();
    if (!room || room->name != command.argument(0)) {
        fail(QStringLiteral("Anda tidak berada di room ini"));
    } else if (!session.account().approved) {
        fail(QStringLiteral("Akun belum disetujui"));
    } else if (session.account().muted) {
        fail(QStringLiteral("Anda di-mute oleh admin"));
    } else if (room->talker && room->talker != &session) {
        fail(QStringLiteral("Kanal sedang dipakai oleh ") + room->talker->account().callsign);
    } else {
        if (room->talker != &session)
            room->talkingSince = m_clock();
        room->talker = &session;
        m_relay.setTalker(room->name, session.account().id);
        session.send(QStringLiteral("TX_START_OK"));
        sendUserList(*room);
    }
}

void ControlServer::stopTransmission(Session &session, const Command &command)
{
    Q_UNUSED(command)
    Room *room = session.room();
    session.send(QStringLiteral("TX_STOP_OK"));
    if (room && room->talker == &session) {
        releaseTalk(*room);
        sendUserList(*room);
    }
}

void ControlServer::releaseTalk(Room &room)
{
    room.talker = nullptr;
    m_relay.setTalker(room.name, 0);
}

void ControlServer::enforceTalkLimit()
{
    for (const auto &room : m_rooms) {
        if (!room->talker || m_clock() - room->talkingSince < kTalkLimit)
            continue;
        audit(*room->talker, QStringLiteral("talked too long in ") + room->name);
        room->talker->send(QStringLiteral("ERROR|Batas waktu bicara tercapai"));
        releaseTalk(*room);
        sendUserList(*room);
    }
}

/// Whoever was removed knows the old key; those who stay get the new one as if they had joined again.
void ControlServer::renewKey(Room &room)
{
    room.renewKey();
    for (Session *member : qAsConst(room.members))
        member->send(QStringLiteral("JOIN_OK|%1|%2").arg(room.name, keyText(room)));
    sendUserList(room);
}

void ControlServer::sendUserList(const Room &room)
{
    const QString line = room.userList();
    for (Session *member : qAsConst(room.members))
        member->send(line);
}
