// Login, the own account, and who is there.

#include "server/Answers.h"
#include "server/AudioPresets.h"
#include "server/Command.h"
#include "server/ControlServer.h"
#include "server/Passwords.h"
#include "server/Permit.h"
#include "server/Session.h"
#include "server/UserRecords.h"

#include <QDateTime>
#include <QDebug>
#include <QJsonDocument>

namespace {

constexpr int kTokenBytes = 24;
constexpr int kShortestPassword = 6;
constexpr int kLongestHwid = 128;

QString compact(const QJsonObject &object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

/// Whether it takes over from the device that an administrator has freed the account from.
bool isNewDevice(const Account &account, const QString &hwid, const Session &active)
{
    return account.hwid.isEmpty() && !hwid.isEmpty() && !active.hwid().isEmpty();
}

/// What administrators are told of an account that asks for another device.
QString resetRequest(const Account &account)
{
    return QStringLiteral("ADMIN_NOTIFICATION|HWID_RESET_REQUEST|%1|%2")
        .arg(account.callsign, QString::number(account.id));
}

} // namespace

void ControlServer::ping(Session &session, const Command &command)
{
    Q_UNUSED(command)
    session.send(QStringLiteral("PONG"));
}

void ControlServer::quit(Session &session, const Command &command)
{
    Q_UNUSED(command)
    session.close();
}

void ControlServer::login(Session &session, const Command &command)
{
    const auto refuse = [&session](const QString &reason) { session.send(QStringLiteral("LOGIN_FAILED|") + reason); };
    if (!mayTryPassword(session)) {
        refuse(QStringLiteral("Terlalu banyak percobaan login, coba lagi nanti"));
        return;
    }
    const QString hwid = command.argument(2).left(kLongestHwid).trimmed();
    bool isRead = false;
    auto account = m_store->account(command.argument(0).toUpper(), &isRead);
    if (!isRead) { // no guess
        refuse(QStringLiteral("Akun tidak dapat dibaca, coba lagi nanti"));
        return;
    }
    const QString refusal =
        account ? refusalFor(&*account, command.argument(1), hwid) : QStringLiteral("Callsign tidak terdaftar");
    if (!refusal.isEmpty()) {
        m_guard.count(session.address(), m_clock());
        refuse(refusal);
        return;
    }
    showOut(session);
    signOff(session); // one connection, one account
    completeLogin(session, *account, hwid);
}

/// Why the account may not log in, in the words that clients know; empty when it may.
QString ControlServer::refusalFor(Account *account, const QString &password, const QString &hwid)
{
    if (!Passwords::matches(account->passwordHash, password))
        return QStringLiteral("Password salah");
    if (account->status == QLatin1String("banned"))
        return QStringLiteral("Akun dibanned");
    if (account->mayLogIn() && Permit::hasEnded(*account, m_today()))
        static_cast<void>(suspend(*account)); // refused either way
    if (account->status == QLatin1String("suspended") || Permit::hasEnded(*account, m_today()))
        return QStringLiteral("Akun disuspend");
    if (!account->hwid.isEmpty() && account->hwid != hwid)
        return QStringLiteral("Perangkat ini tidak terdaftar untuk akun Anda");
    const Session *active = sessionOf(account->id);
    if (active && active->hwid() != hwid && !isNewDevice(*account, hwid, *active))
        return QStringLiteral("Akun sedang digunakan di perangkat lain");
    return {};
}

/// The account of this connection goes to a newer one, of the device with that identifier.
void ControlServer::takeOver(Session &old, const QString &hwid)
{
    if (old.hwid() != hwid) {
        removeFromRoom(old, QStringLiteral("KICKED|Akun dipakai di perangkat baru"));
    } else if (m_clock() - old.heardAt() < kSignOfLife) {
        // Another program on the device, or on one with the same identifier. Were it only closed, it would come back by
        // itself and take the account again, and so would this one, for ever; a client that is told so asks its
        // operator.
        removeFromRoom(old, QStringLiteral("KICKED|Akun login lagi dari program lain"));
    } else { // it died unnoticed
        showOut(old);
        signOff(old);
        old.close();
    }
}

void ControlServer::completeLogin(Session &session, Account account, const QString &hwid)
{
    if (Session *old = sessionOf(account.id))
        takeOver(*old, hwid);
    const Account before = account;
    if (account.hwid.isEmpty())
        account.hwid = hwid;
    account.lastLogin = QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
    // A full disk must not keep the gateways off the air: what is noted here may be noted the next time.
    session.logIn(write(account) ? account : before, hwid);
    const QByteArray token = Passwords::randomBytes(kTokenBytes).toHex();
    m_relay.addMember(account.id, token);
    audit(session, QStringLiteral("logged in"));
    session.send(QStringList{QStringLiteral("LOGIN_OK"), QString::fromLatin1(token), account.callsign,
                             account.admin ? QStringLiteral("True") : QStringLiteral("False"),
                             QString::number(account.id), account.name, Permit::warning(account, m_today())}
                     .join(QLatin1Char('|')));
    if (account.muted)
        session.send(QStringLiteral("MUTED|1|oleh admin"));
    if (session.account().admin)
        sendResetRequests(session);
    sendServerInfo();
}

void ControlServer::watchPermits()
{
    const QDate today = m_today();
    if (today == m_permitsSeen)
        return;
    bool isDone = false;
    const QList<Account> accounts = m_store->accounts(&isDone);
    for (const Account &account : accounts) {
        if (account.mayLogIn() && Permit::hasEnded(account, today))
            isDone = suspend(account) && isDone;
    }
    if (isDone)
        m_permitsSeen = today;
}

/// The permit has ended; whoever is on the air with it is turned out. False when the database does not take it.
bool ControlServer::suspend(Account account)
{
    account.status = QStringLiteral("suspended");
    if (!store(account))
        return false;
    qInfo().noquote() << account.callsign << "suspended, the permit ended on" << account.expiry;
    if (Session *session = sessionOf(account.id))
        removeFromRoom(*session, QStringLiteral("KICKED|Akun disuspend, izin radio berakhir ") + account.expiry);
    return true;
}

void ControlServer::getProfile(Session &session, const Command &command)
{
    Q_UNUSED(command)
    sendProfile(session);
}

void ControlServer::sendProfile(Session &session)
{
    session.send(QStringLiteral("USER_PROFILE|") + compact(userRecord(session.account(), true)));
}

void ControlServer::getInfo(Session &session, const Command &command)
{
    bool isRead = false;
    const auto account = m_store->account(command.argument(0).toUpper(), &isRead);
    if (!account) {
        session.send(isRead ? QStringLiteral("ERROR|Callsign tidak ditemukan") : Answers::kNotRead);
        return;
    }
    QJsonObject record = userRecord(*account, sessionOf(account->id) != nullptr);
    if (!session.account().admin && account->id != session.account().id) {
        for (const char *key : {"registered_hwid", "email", "whatsapp", "last_login"})
            record.remove(QLatin1String(key)); // theirs to share, not the server's
    }
    session.send(QStringLiteral("USER_INFO_RESULT|") + compact(record));
}

void ControlServer::changePassword(Session &session, const Command &command)
{
    const auto fail = [&session](const QString &reason) {
        session.send(QStringLiteral("USER_CHANGE_PASSWORD_FAIL|") + reason);
    };
    Account account = session.account();
    if (!mayTryPassword(session)) {
        fail(QStringLiteral("Terlalu banyak percobaan, coba lagi nanti"));
    } else if (!Passwords::matches(account.passwordHash, command.argument(0))) {
        m_guard.count(session.address(), m_clock());
        fail(QStringLiteral("Password lama salah"));
    } else if (command.argument(1).size() < kShortestPassword) {
        fail(QStringLiteral("Password minimal %1 karakter").arg(kShortestPassword));
    } else if (!Passwords::fitsLogin(command.argument(1))) {
        fail(QStringLiteral("Password tidak boleh berisi spasi atau tanda kutip"));
    } else {
        account.passwordHash = Passwords::hash(command.argument(1));
        if (account.passwordHash.isEmpty() || !store(account)) {
            fail(QStringLiteral("Perubahan tidak dapat disimpan"));
            return;
        }
        audit(session, QStringLiteral("changed the password"));
        session.send(QStringLiteral("USER_CHANGE_PASSWORD_OK"));
    }
}

void ControlServer::requestDeviceReset(Session &session, const Command &command)
{
    if (!m_guard.mayTry(session.address(), m_clock())) {
        session.send(QStringLiteral("ERROR|Terlalu banyak percobaan, coba lagi nanti"));
        return;
    }
    const QString callsign = session.isLoggedIn() ? session.account().callsign : command.argument(0).toUpper();
    bool isRead = false;
    auto account = m_store->account(callsign, &isRead);
    if (!session.isLoggedIn())
        m_guard.count(session.address(), m_clock()); // anybody may ask, but not without end
    const bool isNew = account && !account->resetRequested;
    if (isNew)
        account->resetRequested = true;
    if (!isRead || (isNew && !store(*account))) {
        session.send(Answers::kNotStored);
        return;
    }
    if (isNew)
        sendToAdmins(resetRequest(*account));
    session.send(QStringLiteral("USER_REQUEST_HWID_RESET_OK"));
}

/// Those that came while no administrator was there.
void ControlServer::sendResetRequests(Session &admin)
{
    for (const Account &account : m_store->accounts()) {
        if (account.resetRequested)
            admin.send(resetRequest(account));
    }
}

/// Granted by one administrator, or void: the others need not decide any more.
void ControlServer::withdrawResetRequest(const Account &account)
{
    sendToAdmins(QStringLiteral("ADMIN_RESET_HWID_OK|") + account.callsign);
}

void ControlServer::getQuality(Session &session, const Command &command)
{
    Q_UNUSED(command)
    sendQuality(session);
}

void ControlServer::onlineUsers(Session &session, const Command &command)
{
    Q_UNUSED(command)
    QStringList entries;
    for (const Session *other : qAsConst(m_sessions)) {
        if (!other->isLoggedIn())
            continue;
        const Account &account = other->account();
        entries.append(QStringList{QString::number(account.id), account.callsign, account.name,
                                   other->room() ? other->room()->name : QString(),
                                   account.admin ? QStringLiteral("True") : QStringLiteral("False")}
                           .join(QLatin1Char(',')));
    }
    session.send(QStringLiteral("ONLINE_USERS|") + entries.join(QLatin1Char(';')));
}
