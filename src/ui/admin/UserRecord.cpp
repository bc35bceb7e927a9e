#include "ui/admin/UserRecord.h"

#include <QDateTime>

#include <limits>

namespace {

const QString kId = QStringLiteral("id");
const QString kCallsign = QStringLiteral("callsign");
const QString kName = QStringLiteral("name");
const QString kGatewayName = QStringLiteral("gateway_name");
const QString kPicName = QStringLiteral("responsible_name");
const QString kPicCallsign = QStringLiteral("responsible_callsign");
const QString kStatus = QStringLiteral("status");
const QString kExpiry = QStringLiteral("license_expiry");
const QString kFrequency = QStringLiteral("frequency");
const QString kLocation = QStringLiteral("location");
const QString kLastLogin = QStringLiteral("last_login");
const QString kEmail = QStringLiteral("email");
const QString kWhatsapp = QStringLiteral("whatsapp");
const QString kApproved = QStringLiteral("approved");
const QString kAdmin = QStringLiteral("is_admin");
const QString kMuted = QStringLiteral("is_muted");
const QString kDevice = QStringLiteral("registered_hwid");

constexpr int kLongestTime = 40; // characters of a date, a time, its fractions and its zone

QString text(const QVariantMap &record, const QString &key)
{
    const auto found = record.constFind(key);
    return found == record.cend() ? QString() : found->toString();
}

} // namespace

namespace UserRecord {

int id(const QVariantMap &record)
{
    const auto found = record.constFind(kId);
    if (found == record.cend())
        return 0;
    bool isNumber = false;
    const double number = found->toDouble(&isNumber); // what a JSON number is
    const bool fits = isNumber && number >= 1 && number <= std::numeric_limits<int>::max();
    return fits ? static_cast<int>(number) : 0;
}

QString callsign(const QVariantMap &record)
{
    return text(record, kCallsign);
}

QString name(const QVariantMap &record)
{
    const QString own = text(record, kName);
    return own.isEmpty() ? picName(record) : own;
}

QString gatewayName(const QVariantMap &record)
{
    return text(record, kGatewayName);
}

QString picName(const QVariantMap &record)
{
    return text(record, kPicName);
}

QString picCallsign(const QVariantMap &record)
{
    return text(record, kPicCallsign);
}

QString status(const QVariantMap &record)
{
    const QString told = text(record, kStatus);
    return told.isEmpty() ? QStringLiteral("active") : told.toLower();
}

QString expiry(const QVariantMap &record)
{
    return text(record, kExpiry);
}

QString frequency(const QVariantMap &record)
{
    return text(record, kFrequency);
}

QString location(const QVariantMap &record)
{
    return text(record, kLocation);
}

QString lastLogin(const QVariantMap &record)
{
    return text(record, kLastLogin).replace(QLatin1Char('T'), QLatin1Char(' '));
}

QString localLastLogin(const QVariantMap &record)
{
    const QDateTime time = QDateTime::fromString(text(record, kLastLogin).left(kLongestTime), Qt::ISODate);
    return time.isValid() ? time.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm")) : lastLogin(record);
}

QString email(const QVariantMap &record)
{
    return text(record, kEmail);
}

QString whatsapp(const QVariantMap &record)
{
    return text(record, kWhatsapp);
}

bool isApproved(const QVariantMap &record)
{
    return record.value(kApproved).toBool();
}

bool isMuted(const QVariantMap &record)
{
    return record.value(kMuted).toBool();
}

bool isAdmin(const QVariantMap &record)
{
    return record.value(kAdmin).toBool();
}

bool hasDevice(const QVariantMap &record)
{
    const QVariant device = record.value(kDevice);
    // Texts such as "false" and "0" are told for none as well.
    return device.type() == QVariant::String ? QVariant(device.toString().trimmed()).toBool() : device.toBool();
}

Type typeOf(const QVariantMap &record)
{
    if (isAdmin(record))
        return Type::Admin;
    const bool isGateway =
        callsign(record).startsWith(QLatin1String("YH"), Qt::CaseInsensitive) || !gatewayName(record).isEmpty();
    return isGateway ? Type::Gateway : Type::Personal;
}

QString deviceText(const QVariantMap &record)
{
    return hasDevice(record) ? QStringLiteral("Registered") : QStringLiteral("Not Registered");
}

} // namespace UserRecord
