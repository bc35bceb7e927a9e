#include "server/Registration.h"

#include "server/Command.h"
#include "server/Passwords.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace {

enum Field { GatewayName, Callsign, Frequency, Expiry, Location, Operator, Responsible, Password, Email, Phone };

constexpr int kLongestNumber = 40; // characters of a frequency, a date or a telephone number

struct Rule
{
    Field field;
    const char *name; // as the applicant knows it
    bool mandatory;
    int longest; // characters
};

constexpr Rule kRules[] = {
    {GatewayName, "Nama gateway", true, Registration::kLongestText},
    {Callsign, "Callsign", true, kLongestNumber},
    {Frequency, "Frekuensi", false, kLongestNumber},
    {Expiry, "Masa berlaku izin", false, kLongestNumber},
    {Location, "Lokasi", false, Registration::kLongestText},
    {Operator, "Nama operator", true, Registration::kLongestText},
    {Responsible, "Callsign penanggung jawab", false, kLongestNumber},
    {Password, "Password", true, Registration::kLongestPassword},
    {Email, "Email", false, Registration::kLongestText},
    {Phone, "Nomor WhatsApp", false, kLongestNumber},
};

bool matches(const QString &text, const char *pattern)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(QLatin1String(pattern))).match(text).hasMatch();
}

bool isNone(const QString &text)
{
    return text.isEmpty() || text == QLatin1String("-");
}

/// "-" says that there is nothing to say.
QString orNothing(const QString &text)
{
    return isNone(text) ? QString() : text;
}

QString presenceAndLength(const QStringList &fields)
{
    for (const Rule &rule : kRules) {
        const QString &field = fields.at(rule.field);
        if (rule.mandatory && cleanName(field).isEmpty())
            return QStringLiteral("%1 wajib diisi").arg(QLatin1String(rule.name));
        if (field.size() > rule.longest)
            return QStringLiteral("%1 terlalu panjang (maksimal %2 karakter)")
                .arg(QLatin1String(rule.name))
                .arg(rule.longest);
    }
    return {};
}

QString expiryRefusal(const QString &text, const QDate &today)
{
    const QDate date = matches(text, "[0-9]{4}-[0-9]{2}-[0-9]{2}") ? QDate::fromString(text, Qt::ISODate) : QDate();
    if (!date.isValid())
        return QStringLiteral("Masa berlaku izin harus tanggal yyyy-MM-dd");
    return date < today ? QStringLiteral("Masa berlaku izin sudah lewat") : QString();
}

QString refusalOf(const Account &account, const QString &password, const QDate &today)
{
    if (!matches(account.callsign, "YH[0-9][A-Z]{2,4}"))
        return QStringLiteral("Format callsign harus YH[0-9][A-Z]{2,4}");
    if (!account.responsibleCallsign.isEmpty() && !matches(account.responsibleCallsign, "Y[B-H][0-9][A-Z]{2,4}"))
        return QStringLiteral("Format callsign penanggung jawab tidak valid");
    if (!Passwords::fitsLogin(password))
        return QStringLiteral("Password tidak boleh berisi spasi atau tanda kutip");
    if (!account.email.isEmpty() && !matches(account.email, "[^@\\s]+@[^@\\s]+"))
        return QStringLiteral("Format email tidak valid");
    if (!isNone(account.whatsapp) && !matches(account.whatsapp, "[0-9 +-]*[0-9][0-9 +-]*"))
        return QStringLiteral("Nomor WhatsApp hanya boleh berisi angka, spasi, + dan -");
    return account.expiry.isEmpty() ? QString() : expiryRefusal(account.expiry, today);
}

Account accountOf(const QStringList &fields)
{
    const auto name = [&fields](Field field) { return cleanName(fields.at(field)); };
    const auto text = [&fields](Field field) { return cleanText(fields.at(field)); };
    Account account;
    account.gatewayName = name(GatewayName);
    account.callsign = name(Callsign).toUpper();
    account.frequency = text(Frequency);
    account.expiry = orNothing(text(Expiry));
    account.location = text(Location);
    account.name = name(Operator);
    account.responsibleCallsign = orNothing(name(Responsible).toUpper());
    account.email = orNothing(text(Email));
    account.whatsapp = text(Phone);
    return account;
}

} // namespace

Registration Registration::read(const Command &command, const QDate &today)
{
    Registration registration;
    if (command.count() != kFieldCount) {
        registration.refusal = QStringLiteral("Pendaftaran harus berisi %1 isian tanpa tanda kutip").arg(kFieldCount);
        return registration;
    }
    QStringList fields;
    for (int i = 0; i < kFieldCount; ++i)
        fields.append(command.argument(i));
    registration.refusal = presenceAndLength(fields);
    if (!registration.refusal.isEmpty())
        return registration;
    registration.account = accountOf(fields);
    registration.password = fields.at(Password);
    registration.refusal = refusalOf(registration.account, registration.password, today);
    return registration;
}
