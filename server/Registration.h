#pragma once

#include "server/AccountStore.h"

#include <QDate>
#include <QString>

class Command;

/// A gateway's application for an account, read from its REGISTER_GATEWAY line: either an account with the password for
/// it, or the reason why not.
struct Registration
{
    static constexpr int kFieldCount = 10;
    static constexpr int kLongestText = 200;     ///< characters
    static constexpr int kLongestPassword = 128; ///< characters

    Account account; ///< without an id, a password hash and a decision about it
    QString password;
    QString refusal; ///< in Indonesian, for the applicant; empty: the application is good

    /// Judges the fields alone; whether the callsign is taken is not known here. A permit that ends `today` is valid.
    [[nodiscard]] static Registration read(const Command &command, const QDate &today);
};
