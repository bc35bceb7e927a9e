#include "gateway/LoginFlow.h"

#include <array>

namespace LoginFlow {

Step firstStep(const Credentials &credentials)
{
    if (credentials.callsign.isEmpty())
        return Step::AskCallsign;
    if (credentials.password.isEmpty())
        return Step::AskMissingPassword;
    return credentials.rememberPassword ? Step::LogIn : Step::ConfirmPassword;
}

Failure classifyFailure(const QString &message)
{
    struct Row
    {
        const char *words;
        const char *alsoWords; ///< must be there too; nullptr: nothing more
        Failure failure;
    };
    static constexpr std::array<Row, 6> kRows{{
        {"Password salah", nullptr, Failure::WrongPassword},
        {"dibanned", nullptr, Failure::Banned},
        {"disuspend", nullptr, Failure::Suspended},
        {"Perangkat", "tidak terdaftar", Failure::UnknownDevice},
        {"Callsign tidak terdaftar", nullptr, Failure::UnknownCallsign},
        {"perangkat lain", nullptr, Failure::ActiveElsewhere},
    }};
    const auto has = [&message](const char *words) {
        return !words || message.contains(QLatin1String(words), Qt::CaseInsensitive);
    };
    for (const Row &row : kRows) {
        if (has(row.words) && has(row.alsoWords))
            return row.failure;
    }
    return Failure::Other;
}

std::optional<QString> replacementRoom(const QString &defaultRoom, const QStringList &rooms)
{
    if (defaultRoom.isEmpty() || rooms.isEmpty() || rooms.contains(defaultRoom))
        return std::nullopt;
    return rooms.first();
}

} // namespace LoginFlow
