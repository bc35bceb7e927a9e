#pragma once

#include <QString>
#include <QVariantMap>

/// How the server's records of registered users are read. Every key may be missing and every value of any type.
namespace UserRecord {

enum class Type { Gateway, Personal, Admin };

/// The number that commands name the user by, 1 or more; 0 when the record has none.
[[nodiscard]] int id(const QVariantMap &record);
[[nodiscard]] QString callsign(const QVariantMap &record);
/// The person's name; the one of the person in charge when there is no other.
[[nodiscard]] QString name(const QVariantMap &record);
[[nodiscard]] QString gatewayName(const QVariantMap &record);
[[nodiscard]] QString picName(const QVariantMap &record); ///< of the person in charge
[[nodiscard]] QString picCallsign(const QVariantMap &record);
/// In small letters; "active" when there is none.
[[nodiscard]] QString status(const QVariantMap &record);
[[nodiscard]] QString expiry(const QVariantMap &record); ///< yyyy-MM-dd, or empty
[[nodiscard]] QString frequency(const QVariantMap &record);
[[nodiscard]] QString location(const QVariantMap &record);
[[nodiscard]] QString lastLogin(const QVariantMap &record); ///< as the server tells it, usually UTC
/// To the minute, in this PC's time; as the server tells it when that is no time.
[[nodiscard]] QString localLastLogin(const QVariantMap &record);
[[nodiscard]] QString email(const QVariantMap &record);
[[nodiscard]] QString whatsapp(const QVariantMap &record);
[[nodiscard]] bool isApproved(const QVariantMap &record); ///< to transmit
[[nodiscard]] bool isMuted(const QVariantMap &record);
[[nodiscard]] bool isAdmin(const QVariantMap &record);
[[nodiscard]] bool hasDevice(const QVariantMap &record); ///< is bound to one

/// An administrator is nothing else; a gateway has a gateway's callsign or name.
[[nodiscard]] Type typeOf(const QVariantMap &record);

/// "Registered" or "Not Registered".
[[nodiscard]] QString deviceText(const QVariantMap &record);

} // namespace UserRecord
