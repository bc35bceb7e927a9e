// What administrators do to accounts and people. Each deed leaves a line in the log and reaches the people concerned at
// once.

#include "server/Answers.h"
#include "server/Command.h"
#include "server/ControlServer.h"
#include "server/Passwords.h"
#include "server/Permit.h"
#include "server/Session.h"
#include "server/UserRecords.h"

#include <QDate>
#include <QDebug>
#include <QJsonArray>
#include <QJsonDocument>

using namespace Answers;

namespace {

constexpr int kOwnFormArguments = 11;
constexpr int kAdminFormArguments = 12;

bool isStatus(const QString &status)
{
    return QStringList{QStringLiteral("active"), QStringLiteral("pending"), QStringLiteral("suspended"),
                       QStringLiteral("banned")}
        .contains(status);
}

/// Somebody who was turned out does not wait for an approval.
bool isWaiting(const Account &account)
{
    return !account.approved && account.mayLogIn();
}

bool isDate(const QString &text)
{
    return text.isEmpty() || (text.size() == 10 && QDate::fromString(text, Qt::ISODate).isValid());
}

/// Status, rights and the gateway's name are told as well, and are an administrator's to change.
void takeOwnForm(const Command &command, Account *account)
{
    const auto name = [&command](int index) { return cleanName(command.argument(index)); };
    const auto text = [&command](int index) { return cleanText(command.argument(index)); };
    account->name = name(1);
    account->responsibleCallsign = name(2).toUpper();
    account->frequency = text(7);
    account->location = text(8);
    account->email = text(9);
    account->whatsapp = text(10);
}

bool isAdminForm(const Command &command)
{
    return command.count() == kAdminFormArguments && isStatus(command.argument(3)) && command.numberWithin(9, 0, 1) &&
           command.numberWithin(10, 0, 1) && isDate(command.argument(11));
}

void takeAdminForm(const Command &command, Account *account)
{
    const auto name = [&command](int index) { return cleanName(command.argument(index)); };
    const auto text = [&command](int index) { return cleanText(command.argument(index)); };
    account->name = name(1);
    account->responsibleCallsign = name(2).toUpper();
    account->status = command.argument(3);
    account->gatewayName = name(4);
    account->frequency = text(5);
    account->location = text(6);
    account->email = text(7);
    account->whatsapp = text(8);
    // "pending" is an account that may listen and not transmit.
    account->approved = command.number(9) == 1 && account->status != QLatin1String("pending");
    account->admin = command.number(10) == 1;
    account->expiry = command.argument(11);
}

QString byAdmin(const Session &admin)
{
    return QStringLiteral("oleh ") + admin.account().callsign;
}

} // namespace

bool ControlServer::write(const Account &account)
{
    const bool isWritten = m_store->update(account);
    if (!isWritten)
        qWarning().noquote() << account.callsign << "could not be written to the database";
    return isWritten;
}

/// Lets the one who is logged in with the account go on with what it now says.
void ControlServer::apply(const Account &account)
{
    Session *session = sessionOf(account.id);
    if (!session)
        return;
    const bool isNews = userRecord(session->account(), true) != userRecord(account, true);
    session->setAccount(account);
    if (isNews)
        sendProfile(*session);
    Room *room = session->room();
    if (!room)
        return;
    if (room->talker == session && (!account.approved || account.muted))
        releaseTalk(*room);
    sendUserList(*room);
}

/// False when the database does not take it: then nothing has changed, and whoever asked is to be told so.
bool ControlServer::store(const Account &account)
{
    if (!write(account))
        return false;
    apply(account);
    return true;
}

/// The account whose id the command begins with; nothing, after the answer that says so, when it cannot be had.
std::optional<Account> ControlServer::accountFor(Session &session, const Command &command)
{
    bool isRead = false;
    auto account = m_store->account(command.number(0), &isRead);
    if (!account)
        session.send(isRead ? kUnknownUser : kNotRead);
    return account;
}

void ControlServer::sendUsers(Session &session, const QString &word, bool (*isWanted)(const Account &))
{
    bool isRead = false;
    const QList<Account> accounts = m_store->accounts(&isRead);
    if (!isRead) {
        session.send(kNotRead);
        return;
    }
    QJsonArray users;
    for (const Account &account : accounts) {
        if (isWanted(account))
            users.append(userRecord(account, sessionOf(account.id) != nullptr));
    }
    session.send(word + QLatin1Char('|') + QString::fromUtf8(QJsonDocument(users).toJson(QJsonDocument::Compact)));
}

void ControlServer::allUsers(Session &session, const Command &command)
{
    Q_UNUSED(command)
    sendUsers(session, QStringLiteral("ADMIN_ALL_USERS"), [](const Account &) { return true; });
}

void ControlServer::pendingUsers(Session &session, const Command &command)
{
    Q_UNUSED(command)
    sendUsers(session, QStringLiteral("ADMIN_PENDING"), isWaiting);
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
    auto account = accountFor(session, command);
    if (!account)
        return;
    account->approved = approved;
    if (approved && account->status == QLatin1String("pending"))
        account->status = QStringLiteral("active");
    if (!store(*account)) {
        session.send(kNotStored);
        return;
    }
    audit(session,
          (approved ? QStringLiteral("approved ") : QStringLiteral("took back the approval of ")) + account->callsign);
    session.send(approved ? QStringLiteral("ADMIN_APPROVE_USER_OK") : QStringLiteral("ADMIN_UNAPPROVE_USER_OK"));
}

void ControlServer::removeFromRoom(Session &target, const QString &line)
{
    Room *room = target.room();
    showOut(target);
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

/// So that a club cannot lose its last administrator by a slip.
bool ControlServer::isOwnAccount(Session &session, const Account &account)
{
    if (account.id != session.account().id)
        return false;
    session.send(QStringLiteral("ERROR|Tidak dapat dilakukan pada akun sendiri"));
    return true;
}

void ControlServer::ban(Session &session, const Command &command)
{
    auto account = accountFor(session, command);
    if (!account)
        return;
    if (isOwnAccount(session, *account))
        return;
    account->status = QStringLiteral("banned");
    account->approved = false;
    if (!store(*account)) {
        session.send(kNotStored);
        return;
    }
    audit(session, QStringLiteral("banned ") + account->callsign);
    session.send(QStringLiteral("ADMIN_BAN_OK"));
    if (Session *target = sessionOf(account->id))
        removeFromRoom(*target, QStringLiteral("BANNED|Dibanned ") + byAdmin(session));
}

/// Kept with the account: whoever is muted is so after his next login as well.
void ControlServer::mute(Session &session, const Command &command)
{
    auto account = accountFor(session, command);
    if (!account)
        return;
    const auto muted = command.numberWithin(1, 0, 1);
    if (!muted) {
        session.send(QStringLiteral("ERROR|Nilai mute harus 0 atau 1"));
        return;
    }
    account->muted = *muted == 1;
    if (!write(*account)) {
        session.send(kNotStored);
        return;
    }
    audit(session, (account->muted ? QStringLiteral("muted ") : QStringLiteral("unmuted ")) + account->callsign);
    if (Session *target = sessionOf(account->id))
        target->send(QStringLiteral("MUTED|%1|%2").arg(QString::number(account->muted ? 1 : 0), byAdmin(session)));
    apply(*account);
}

void ControlServer::move(Session &session, const Command &command)
{
    Session *target = sessionOf(command.number(0));
    Room *room = findRoom(command.roomName(1));
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
    target->send(room->movedLine(session.account().callsign));
    enter(*target, *room);
}

/// Two forms: with 11 arguments an account's own record, with 12 an administrator's edit of any.
void ControlServer::updateUser(Session &session, const Command &command)
{
    bool isRead = false;
    auto account = m_store->account(command.number(0), &isRead);
    const bool ownForm = command.count() == kOwnFormArguments;
    const bool isOwn = account && account->id == session.account().id;
    if (!isRead) {
        session.send(kNotRead);
    } else if (!session.account().admin && (!isOwn || !ownForm)) {
        session.send(kAdminsOnly); // to a member also of an id that nobody has
    } else if (!account) {
        session.send(kUnknownUser);
    } else if (ownForm) {
        takeOwnForm(command, &*account);
        finishUpdate(session, *account);
    } else if (!isAdminForm(command)) {
        session.send(QStringLiteral("ERROR|Data user tidak valid"));
    } else {
        takeAdminForm(command, &*account);
        if (account->mayLogIn() && Permit::hasEnded(*account, m_today()))
            account->status = QStringLiteral("suspended");
        const bool staysAdmin = account->admin && account->mayLogIn();
        if (staysAdmin || !isOwnAccount(session, *account))
            finishUpdate(session, *account);
    }
}

void ControlServer::finishUpdate(Session &session, const Account &account)
{
    if (!store(account)) {
        session.send(kNotStored);
        return;
    }
    audit(session, QStringLiteral("edited ") + account.callsign);
    session.send(QStringLiteral("ADMIN_UPDATE_USER_OK"));
    if (Session *target = account.mayLogIn() ? nullptr : sessionOf(account.id)) {
        const bool banned = account.status == QLatin1String("banned");
        removeFromRoom(*target,
                       (banned ? QStringLiteral("BANNED|Dibanned ") : QStringLiteral("KICKED|Akun disuspend ")) +
                           byAdmin(session));
    } else {
        sendServerInfo(); // gateways and administrators may be more or fewer now
    }
}

void ControlServer::resetDevice(Session &session, const Command &command)
{
    auto account = accountFor(session, command);
    if (!account)
        return;
    account->hwid.clear();
    account->resetRequested = false;
    if (!store(*account)) {
        session.send(kNotStored);
        return;
    }
    audit(session, QStringLiteral("reset the device of ") + account->callsign);
    withdrawResetRequest(*account); // the answer to this administrator is the word to the others
}

void ControlServer::resetPassword(Session &session, const Command &command)
{
    auto account = accountFor(session, command);
    if (!account)
        return;
    const QString password = command.argument(1);
    if (password.isEmpty()) {
        session.send(QStringLiteral("ERROR|Password tidak boleh kosong"));
        return;
    }
    const QByteArray hash = Passwords::fitsLogin(password) ? Passwords::hash(password) : QByteArray();
    if (hash.isEmpty()) {
        session.send(QStringLiteral("ERROR|Password tidak boleh berisi spasi atau tanda kutip"));
        return;
    }
    account->passwordHash = hash;
    if (!store(*account)) {
        session.send(kNotStored);
        return;
    }
    audit(session, QStringLiteral("reset the password of ") + account->callsign);
    session.send(QStringLiteral("ADMIN_RESET_PASSWORD_OK|") + account->callsign);
}

void ControlServer::deleteUser(Session &session, const Command &command)
{
    const auto account = accountFor(session, command);
    if (!account || isOwnAccount(session, *account))
        return;
    if (!m_store->remove(account->id)) {
        session.send(kNotStored);
        return;
    }
    audit(session, QStringLiteral("deleted ") + account->callsign);
    session.send(QStringLiteral("ADMIN_DELETE_USER_OK"));
    if (account->resetRequested)
        withdrawResetRequest(*account);
    if (Session *target = sessionOf(account->id))
        removeFromRoom(*target, QStringLiteral("KICKED|Akun dihapus ") + byAdmin(session));
}
