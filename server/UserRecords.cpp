#include "server/UserRecords.h"

QJsonObject userRecord(const Account &account, bool online)
{
    return {{QStringLiteral("id"), account.id},
            {QStringLiteral("user_id"), account.id},
            {QStringLiteral("callsign"), account.callsign},
            {QStringLiteral("gateway_name"), account.gatewayName},
            {QStringLiteral("name"), account.name},
            {QStringLiteral("responsible_name"), account.name},
            {QStringLiteral("responsible_callsign"), account.responsibleCallsign},
            {QStringLiteral("frequency"), account.frequency},
            {QStringLiteral("location"), account.location},
            {QStringLiteral("email"), account.email},
            {QStringLiteral("whatsapp"), account.whatsapp},
            {QStringLiteral("status"), account.status},
            {QStringLiteral("approved"), account.approved},
            {QStringLiteral("is_muted"), account.muted},
            {QStringLiteral("is_admin"), account.admin},
            {QStringLiteral("license_expiry"), account.expiry},
            {QStringLiteral("registered_hwid"), account.hwid},
            {QStringLiteral("last_login"), account.lastLogin},
            {QStringLiteral("is_online"), online}};
}
