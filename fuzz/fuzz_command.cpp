// Whatever a client may send to the server as a line: its words, the texts cleaned for others, and a registration.

#include "server/Command.h"
#include "server/Registration.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

constexpr int kLongest = 200; // characters

bool isFreeOf(const QString &separators, const QString &text)
{
    for (const QChar character : text) {
        if (character.category() == QChar::Other_Control || separators.contains(character))
            return false;
    }
    return text.size() <= kLongest && text == text.simplified();
}

bool isClean(const QString &text)
{
    return isFreeOf(QStringLiteral("|\""), text);
}

bool isCleanName(const QString &text)
{
    return isFreeOf(QStringLiteral("|,;\""), text);
}

/// What is accepted has all that an account needs and nothing that breaks a line of the protocol.
bool isSane(const Registration &registration)
{
    const Account &a = registration.account;
    if (!registration.refusal.isEmpty())
        return !registration.refusal.contains(u'|');
    for (const QString &name : {a.gatewayName, a.callsign, a.name, a.responsibleCallsign}) {
        if (!isCleanName(name))
            return false;
    }
    for (const QString &text : {a.frequency, a.expiry, a.location, a.email, a.whatsapp}) {
        if (!isClean(text))
            return false;
    }
    return a.callsign.startsWith(QLatin1String("YH")) && !a.gatewayName.isEmpty() && !a.name.isEmpty() &&
           !registration.password.isEmpty() && !registration.password.contains(u' ') && !a.approved && !a.admin;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString line = QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const Command command(line);
    if (command.count() > line.size() || !command.argument(command.count()).isNull())
        std::abort();
    for (int i = 0; i < command.count(); ++i) {
        static_cast<void>(command.number(i));
        if (!line.contains(command.rest(i)) || !isClean(cleanText(command.argument(i), kLongest)) ||
            !isCleanName(cleanName(command.argument(i), kLongest)))
            std::abort();
    }
    if (!isSane(Registration::read(command, QDate(2026, 1, 1))))
        std::abort();
    return 0;
}
