#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// The decisions on the way from a fresh connection to a login.
namespace LoginFlow {

/// What the configuration holds when the connection comes up.
struct Credentials
{
    QString callsign;
    QString password;
    bool rememberPassword = false;
};

enum class Step {
    LogIn,              ///< everything is stored and may be used
    AskCallsign,        ///< nothing is known: callsign, then password
    AskMissingPassword, ///< the callsign is known, the password was never stored
    ConfirmPassword,    ///< both are stored, but the password is to be asked for each time
};

[[nodiscard]] Step firstStep(const Credentials &credentials);

enum class Failure {
    WrongPassword,
    Banned,
    Suspended,
    UnknownDevice,
    UnknownCallsign,
    ActiveElsewhere,
    Other,
};

/// Reads the server's words, ignoring case; the first match in the order of Failure wins.
[[nodiscard]] Failure classifyFailure(const QString &message);

/// How many wrong passwords in a row are followed by another question.
constexpr int kPasswordAttempts = 3;

/// Whether the wrongPasswords-th refusal in a row (from 1) is followed by another question.
[[nodiscard]] constexpr bool mayTryAgain(int wrongPasswords)
{
    return wrongPasswords <= kPasswordAttempts;
}

/// The room to take as default instead of one that the server does not have; nothing when it has it (compared with
/// case), when no default is set, or when there are no rooms at all.
[[nodiscard]] std::optional<QString> replacementRoom(const QString &defaultRoom, const QStringList &rooms);

} // namespace LoginFlow
