// New gateways introduce themselves, before anybody has an account for them.

#include "server/Command.h"
#include "server/ControlServer.h"
#include "server/Passwords.h"
#include "server/Registration.h"
#include "server/Session.h"

#include <QDebug>

namespace {

const QString kNotStored = QStringLiteral("Pendaftaran tidak dapat disimpan, coba lagi nanti");

} // namespace

void ControlServer::registerGateway(Session &session, const Command &command)
{
    const bool byAdmin = session.isLoggedIn() && session.account().admin;
    QString refusal = byAdmin ? QString() : registrationRefusal(session);
    if (refusal.isEmpty())
        refusal = enroll(command);
    if (!refusal.isEmpty()) {
        session.send(QStringLiteral("REGISTER_FAILED|") + refusal);
        return;
    }
    audit(session, QStringLiteral("registered ") + cleanName(command.argument(1)).toUpper());
    session.send(m_autoApprove ? QStringLiteral("REGISTER_OK|Pendaftaran berhasil, akun langsung aktif")
                               : QStringLiteral("REGISTER_OK|Pendaftaran berhasil, menunggu persetujuan admin"));
}

/// Every application counts, also one that succeeds: it costs a password hash and leaves an account behind.
bool ControlServer::mayRegister(const Session &session)
{
    const bool may = m_registrationGuard.mayTry(session.address(), m_clock());
    if (may)
        m_registrationGuard.count(session.address(), m_clock());
    return may;
}

/// Why a stranger may not apply now; empty when he may.
QString ControlServer::registrationRefusal(const Session &session)
{
    if (!mayRegister(session))
        return QStringLiteral("Terlalu banyak pendaftaran, coba lagi nanti");
    const auto pending = m_store->pendingCount();
    if (!pending)
        return kNotStored;
    return *pending < kMostPending
               ? QString()
               : QStringLiteral("Terlalu banyak pendaftaran yang menunggu persetujuan, coba lagi nanti");
}

/// Adds the account; the reason, in the words that the applicant reads, when it cannot be had.
QString ControlServer::enroll(const Command &command)
{
    Registration registration = Registration::read(command, m_today());
    if (!registration.refusal.isEmpty())
        return registration.refusal;
    Account &account = registration.account;
    bool isRead = false;
    if (m_store->account(account.callsign, &isRead))
        return QStringLiteral("Callsign sudah terdaftar");
    if (!isRead)
        return kNotStored;
    account.passwordHash = Passwords::hash(registration.password);
    account.status = m_autoApprove ? QStringLiteral("active") : QStringLiteral("pending");
    account.approved = m_autoApprove;
    if (account.passwordHash.isEmpty() || !m_store->add(&account))
        return kNotStored;
    return {};
}
