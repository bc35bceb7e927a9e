// What administrators do. Each leaves a line in the log; changes reach the people concerned at once.

#include "server/AudioPresets.h"
#include "server/Command.h"
#include "server/ControlServer.h"
#include "server/Passwords.h"
#include "server/Session.h"
#include "server/UserRecords.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace {

const QString kUnknownUser = QStringLiteral("ERROR|User tidak ditemukan");
const QString kNotOnline = QStringLiteral("ERROR|User tidak online");
const QString kUnknownRoom = QStringLiteral("ERROR|Room tidak ditemukan");
constexpr int kMostMembers = 10000;

bool isStatus(const QString &status)
{
    return QStringList{QStringLiteral("active"), QStringLiteral("pending"), QStringLiteral("suspended"),
                       QStringLiteral("banned")}
        .contains(status);
}

QString byAdmin(const Session &admin)
{
    return QStringLiteral("oleh ") + admin.account().callsign;
}

} // namespace

/// Writes the account and lets the one who is logged in with it go on with what it now says.
void ControlServer::store(const Account &account)
{
    if (!m_store->update(account))
        qWarning("an account could not be written to the database");
    Session *session = sessionOf(account.id);
    if (!session)
        return;
    session->setAccount(account);
    Room *room = session->room();
    if (!room)
        return;
    if (room->talker == session && !account.approved)
        releaseTalk(*room);
    sendUserList(*room);
}

void ControlServer::allUsers(Session &session, const Command &command)
{
    Q_UNUSED(command)
    QJsonArray users;
    for (const Account &account : m_store->accounts())
        users.append(userRecord(account, sessionOf(account.id) != nullptr));
    session.send(QStringLiteral("ADMIN_ALL_USERS|") +
                 QString::fromUtf8(QJsonDocument(users).toJson(QJsonDocument::Compact)));
}

void ControlServer::pendingUsers(Session &session, const Command &command)
{
    Q_UNUSED(command)
    QJsonArray users;
    for (const Account &account : m_store->accounts()) {
        if (!account.approved)
            users.append(userRecord(account, sessionOf(account.id) != nullptr));
    }
    session.send(QStringLiteral("ADMIN_PENDING|") +
                 QString::fromUtf8(QJsonDocument(users).toJson(QJsonDocument::Compact)));
}

void ControlServer::approve(Session &session, const Command &command)
{
    setApproved(session, command, true);
}

void ControlServer::unapprove(Session &session, const Command &command)
{
    setApproved(session, command, false);
}

void ControlServer::setApproved(Session &session, const Command &command, bool approved)
{
    auto account = m_store->account(command.number(0));
    if (!account) {
        session.send(kUnknownUser);
        return;
    }
    account->approved = approved;
    if (approved && account->status == QLatin1String("pending"))
        account->status = QStringLiteral("active");
    store(*account);
    audit(session,
          (approved ? QStringLiteral("approved ") : QStringLiteral("took back the approval of ")) + account->callsign);
    session.send(approved ? QStringLiteral("ADMIN_APPROVE_USER_OK") : QStringLiteral("ADMIN_UNAPPROVE_USER_OK"));
}

void ControlServer::removeFromRoom(Session &target, const QString &line)
{
    Room *room = target.room();
    leaveRoom(target);
    if (room)
        renewKey(*room);
    target.send(line);
    signOff(target); // the connection stays until the client has read it
}

void ControlServer::kick(Session &session, const Command &command)
{
    Session *target = sessionOf(command.number(0));
    if (!target) {
        session.send(kNotOnline);
        return;
    }
    audit(session, QStringLiteral("kicked ") + target->account().callsign);
    session.send(QStringLiteral("ADMIN_KICK_OK"));
    removeFromRoom(*target, QStringLiteral("KICKED|Dikeluarkan ") + byAdmin(session));
}

void ControlServer::ban(Session &session, const Command &command)
{
    auto account = m_store->account(command.number(0));
    if (!account) {
        session.send(kUnknownUser);
        return;
    }
    account->status = QStringLiteral("banned");
    account->approved = false;
    store(*account);
    audit(session, QStringLiteral("banned ") + account->callsign);
    session.send(QStringLiteral("ADMIN_BAN_OK"));
    if (Session *target = sessionOf(account->id))
        removeFromRoom(*target, QStringLiteral("BANNED|Dibanned ") + byAdmin(session));
}

void ControlServer::mute(Session &session, const Command &command)
{
    Session *target = sessionOf(command.number(0));
    if (!target) {
        session.send(kNotOnline);
        return;
    }
    const bool muted = command.number(1) == 1;
    target->setMuted(muted);
    audit(session, (muted ? QStringLiteral("muted ") : QStringLiteral("unmuted ")) + target->account().callsign);
    target->send(QStringLiteral("MUTED|%1|%2").arg(QString::number(muted ? 1 : 0), byAdmin(session)));
    if (Room *room = target->room()) {
        if (muted && room->talker == target)
            releaseTalk(*room);
        sendUserList(*room);
    }
}

void ControlServer::move(Session &session, const Command &command)
{
    Session *target = sessionOf(command.number(0));
    Room *room = findRoom(command.rest(1));
    if (!target || !room) {
        session.send(target ? kUnknownRoom : kNotOnline);
        return;
    }
    if (room->isFull() && target->room() != room) {
        session.send(QStringLiteral("ERROR|Room penuh"));
        return;
    }
    audit(session, QStringLiteral("moved %1 to %2").arg(target->account().callsign, room->name));
    session.send(QStringLiteral("ADMIN_MOVE_OK"));
    Room *old = target->room();
    if (old == room)
        return;
    leaveRoom(*target);
    if (old)
        renewKey(*old);
    target->send(QStringLiteral("MOVED|%1|%2|%3")
                     .arg(room->name, session.account().callsign, QString::fromLatin1(room->key.toBase64())));
    enter(*target, *room);
}

/// Two forms: with 8 texts an account's own record, with 12 fields an administrator's edit of any.
void ControlServer::updateUser(Session &session, const Command &command)
{
    auto account = m_store->account(command.number(0));
    const bool ownForm = command.count() <= 11;
    if (!account || (!session.account().admin && (account->id != session.account().id || !ownForm))) {
        session.send(account ? QStringLiteral("ERROR|Hanya untuk administrator") : kUnknownUser);
        return;
    }
    const auto text = [&command](int index) { return cleanText(command.argument(index)); };
    account->name = text(1);
    account->responsibleCallsign = text(2).toUpper();
    if (ownForm) { // its status and rights are told as well, and are not taken from it
        account->gatewayName = text(6);
        account->frequency = text(7);
        account->location = text(8);
        account->email = text(9);
        account->whatsapp = text(10);
    } else {
        if (isStatus(command.argument(3)))
            account->status = command.argument(3);
        account->gatewayName = text(4);
        account->frequency = text(5);
        account->location = text(6);
        account->email = text(7);
        account->whatsapp = text(8);
        account->approved = command.number(9) == 1;
        account->admin = command.number(10) == 1;
        account->expiry = text(11);
    }
    store(*account);
    audit(session, QStringLiteral("edited ") + account->callsign);
    session.send(QStringLiteral("ADMIN_UPDATE_USER_OK"));
}

void ControlServer::resetDevice(Session &session, const Command &command)
{
    auto account = m_store->account(command.number(0));
    if (!account) {
        session.send(kUnknownUser);
        return;
    }
    account->hwid.clear();
    account->resetRequested = false;
    store(*account);
    audit(session, QStringLiteral("reset the device of ") + account->callsign);
    session.send(QStringLiteral("ADMIN_RESET_HWID_OK|") + account->callsign);
}

void ControlServer::resetPassword(Session &session, const Command &command)
{
    auto account = m_store->account(command.number(0));
    if (!account || command.argument(1).isEmpty()) {
        session.send(account ? QStringLiteral("ERROR|Password tidak boleh kosong") : kUnknownUser);
        return;
    }
    account->passwordHash = Passwords::hash(command.argument(1));
    store(*account);
    audit(session, QStringLiteral("reset the password of ") + account->callsign);
    session.send(QStringLiteral("ADMIN_RESET_PASSWORD_OK|") + account->callsign);
}

void ControlServer::deleteUser(Session &session, const Command &command)
{
    const auto account = m_store->account(command.number(0));
    if (!account || !m_store->remove(account->id)) {
        session.send(kUnknownUser);
        return;
    }
    audit(session, QStringLiteral("deleted ") + account->callsign);
    session.send(QStringLiteral("ADMIN_DELETE_USER_OK"));
    if (Session *target = sessionOf(account->id))
        removeFromRoom(*target, QStringLiteral("KICKED|Akun dihapus ") + byAdmin(session));
}

void ControlServer::setQuality(Session &session, const Command &command)
{
    const QString preset = command.argument(0);
    if (!AudioPresets::contains(preset) || !m_store->setSetting(QStringLiteral("audio_preset"), preset)) {
        session.send(QStringLiteral("ERROR|Preset tidak dikenal"));
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
    const QString name = cleanText(command.argument(0));
    const int maximum = std::clamp(command.number(1), 0, kMostMembers);
    if (name.isEmpty() || !m_store->addRoom({name, maximum})) {
        session.send(QStringLiteral("ERROR|Room sudah ada"));
        return;
    }
    loadRooms();
    audit(session, QStringLiteral("created the room ") + name);
    session.send(QStringLiteral("ADMIN_CREATE_ROOM_OK|") + name);
    sendToAll(roomsLine());
    sendServerInfo();
}

void ControlServer::editRoom(Session &session, const Command &command)
{
    Room *room = findRoom(command.argument(0));
    const QString name = cleanText(command.argument(1));
    const int maximum = std::clamp(command.number(2), 0, kMostMembers);
    if (!room || name.isEmpty() || (name != room->name && findRoom(name)) ||
        !m_store->editRoom(room->name, {name, maximum})) {
        session.send(room ? QStringLiteral("ERROR|Nama room tidak dapat dipakai") : kUnknownRoom);
        return;
    }
    const QVector<Session *> members = room->members;
    audit(session, QStringLiteral("edited the room ") + name);
    if (name != room->name) {
        releaseTalk(*room);
        room->name = name;
        for (Session *member : members)
            m_relay.setRoom(member->account().id, name);
        for (Session *member : members)
            member->send(QStringLiteral("JOIN_OK|%1|%2").arg(name, QString::fromLatin1(room->key.toBase64())));
        sendUserList(*room);
    }
    loadRooms();
    session.send(QStringLiteral("ADMIN_EDIT_ROOM_OK|") + name);
    sendToAll(roomsLine());
}

void ControlServer::deleteRoom(Session &session, const Command &command)
{
    Room *room = findRoom(command.argument(0));
    if (!room || !m_store->removeRoom(room->name)) {
        session.send(kUnknownRoom);
        return;
    }
    const QString name = room->name;
    const QVector<Session *> members = room->members;
    for (Session *member : members) {
        leaveRoom(*member);
        member->send(QStringLiteral("LEAVE_OK"));
    }
    loadRooms();
    audit(session, QStringLiteral("deleted the room ") + name);
    session.send(QStringLiteral("ADMIN_DELETE_ROOM_OK|") + name);
    sendToAll(roomsLine());
    sendServerInfo();
}

void ControlServer::setRoomOrder(Session &session, const Command &command)
{
    if (!m_store->setRoomOrder(command.rest(0).split(QLatin1Char('|')))) {
        session.send(QStringLiteral("ERROR|Urutan room tidak dapat disimpan"));
        return;
    }
    loadRooms();
    audit(session, QStringLiteral("ordered the rooms"));
    session.send(QStringLiteral("ADMIN_SET_ROOM_ORDER_OK"));
    sendToAll(roomsLine());
}
