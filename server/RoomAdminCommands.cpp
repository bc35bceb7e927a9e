// What administrators do to the rooms and to the audio quality of all.

#include "server/Answers.h"
#include "server/AudioPresets.h"
#include "server/Command.h"
#include "server/ControlServer.h"
#include "server/Session.h"

#include <algorithm>

using namespace Answers;

namespace {

constexpr int kMostMembers = 10000;
const QString kWrongMaximum = QStringLiteral("ERROR|Jumlah maksimum harus 0 sampai %1").arg(kMostMembers);

} // namespace

void ControlServer::setQuality(Session &session, const Command &command)
{
    const QString preset = command.argument(0);
    const bool isKnown = AudioPresets::contains(preset);
    if (!isKnown || !m_store->setSetting(QStringLiteral("audio_preset"), preset)) {
        session.send(isKnown ? kNotStored : QStringLiteral("ERROR|Preset tidak dikenal"));
        return;
    }
    audit(session, QStringLiteral("set the audio quality to ") + preset);
    session.send(QStringLiteral("ADMIN_SET_AUDIO_QUALITY_OK|") + preset);
    for (Session *other : qAsConst(m_sessions)) {
        if (other->isLoggedIn())
            sendQuality(*other);
    }
    sendServerInfo();
}

void ControlServer::createRoom(Session &session, const Command &command)
{
    const QString name = cleanName(command.argument(0));
    const auto maximum = command.numberWithin(1, 0, kMostMembers);
    if (name.isEmpty() || !maximum) {
        session.send(name.isEmpty() ? QStringLiteral("ERROR|Nama room tidak boleh kosong") : kWrongMaximum);
        return;
    }
    if (findRoom(name) || !addRoom({name, *maximum})) {
        session.send(findRoom(name) ? QStringLiteral("ERROR|Room sudah ada") : kNotStored);
        return;
    }
    audit(session, QStringLiteral("created the room ") + name);
    session.send(QStringLiteral("ADMIN_CREATE_ROOM_OK|") + name);
    sendToAll(roomsLine());
    sendServerInfo();
}

void ControlServer::editRoom(Session &session, const Command &command)
{
    Room *room = findRoom(command.argument(0));
    const QString name = cleanName(command.argument(1));
    const auto maximum = command.numberWithin(2, 0, kMostMembers);
    if (!room || !maximum) {
        session.send(room ? kWrongMaximum : kUnknownRoom);
        return;
    }
    const bool isFree = !name.isEmpty() && (name == room->name || !findRoom(name));
    if (!isFree || !m_store->editRoom(room->name, {name, *maximum})) {
        session.send(isFree ? kNotStored : QStringLiteral("ERROR|Nama room tidak dapat dipakai"));
        return;
    }
    const QVector<Session *> members = room->members;
    audit(session,
          QStringLiteral("edited the room %1: %2, at most %3").arg(room->name, name, QString::number(*maximum)));
    room->maximum = *maximum;
    if (name != room->name) {
        releaseTalk(*room);
        room->name = name;
        for (Session *member : members)
            m_relay.setRoom(member->account().id, name);
        for (Session *member : members)
            member->send(QStringLiteral("JOIN_OK|%1|%2").arg(name, QString::fromLatin1(room->key.toBase64())));
        sendUserList(*room);
    }
    session.send(QStringLiteral("ADMIN_EDIT_ROOM_OK|") + name);
    sendToAll(roomsLine());
    sendServerInfo();
}

void ControlServer::deleteRoom(Session &session, const Command &command)
{
    const Room *room = findRoom(command.argument(0));
    const bool isLast = room && m_rooms.size() == 1; // there would be nowhere to go for its members
    if (!room || isLast || !m_store->removeRoom(room->name)) {
        session.send(isLast ? QStringLiteral("ERROR|Room terakhir tidak dapat dihapus")
                            : (room ? kNotStored : kUnknownRoom));
        return;
    }
    const std::unique_ptr<Room> deleted = takeRoom(*room);
    const QString &name = deleted->name;
    releaseTalk(*deleted);
    for (Session *member : qAsConst(deleted->members)) {
        member->setRoom(nullptr);
        m_relay.setRoom(member->account().id, {});
    }
    moveOn(*deleted, session.account().callsign);
    audit(session, QStringLiteral("deleted the room ") + name);
    session.send(QStringLiteral("ADMIN_DELETE_ROOM_OK|") + name);
    sendToAll(roomsLine());
    sendServerInfo();
}

/// From here on it is not one of the rooms, though its members still point to it.
std::unique_ptr<Room> ControlServer::takeRoom(const Room &room)
{
    const auto found =
        std::find_if(m_rooms.begin(), m_rooms.end(), [&room](const auto &r) { return r.get() == &room; });
    std::unique_ptr<Room> taken = std::move(*found);
    m_rooms.erase(found);
    return taken;
}

/// The members of a room that is no more: each into the first room that has place, else into the first of all, full or
/// not. A gateway which nobody attends stays on the air by it, and a client that was only told that it left would go on
/// showing the old room.
void ControlServer::moveOn(const Room &deleted, const QString &by)
{
    QVector<const Room *> entered;
    for (Session *member : deleted.members) {
        const auto free = std::find_if(m_rooms.cbegin(), m_rooms.cend(), [](const auto &r) { return !r->isFull(); });
        Room &room = free == m_rooms.cend() ? *m_rooms.front() : **free;
        member->send(room.movedLine(by));
        admit(*member, room);
        if (!entered.contains(&room))
            entered.append(&room);
    }
    for (const Room *room : entered)
        sendUserList(*room);
}

void ControlServer::setRoomOrder(Session &session, const Command &command)
{
    QStringList order = command.rest(0).split(QLatin1Char('|'));
    order.removeDuplicates();
    order.erase(std::remove_if(order.begin(), order.end(), [this](const QString &name) { return !findRoom(name); }),
                order.end());
    if (order.isEmpty() || !m_store->setRoomOrder(order)) {
        session.send(QStringLiteral("ERROR|Urutan room tidak dapat disimpan"));
        return;
    }
    const auto place = [&order](const auto &room) {
        const int index = order.indexOf(room->name);
        return index < 0 ? order.size() : index;
    };
    std::stable_sort(m_rooms.begin(), m_rooms.end(),
                     [place](const auto &a, const auto &b) { return place(a) < place(b); });
    audit(session, QStringLiteral("ordered the rooms"));
    session.send(QStringLiteral("ADMIN_SET_ROOM_ORDER_OK"));
    sendToAll(roomsLine());
}
