#pragma once

#include "server/AccountStore.h"

#include <QDate>
#include <QString>

/// The radio permit of an account. Its last day counts; an account without a date has no end.
namespace Permit {

[[nodiscard]] bool hasEnded(const Account &account, const QDate &today);
/// For the holder, from 30 days before the end; otherwise empty.
[[nodiscard]] QString warning(const Account &account, const QDate &today);

} // namespace Permit
