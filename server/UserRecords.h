#pragma once

#include "server/AccountStore.h"

#include <QJsonObject>

/// An account as clients see it; the password hash never leaves the server.
[[nodiscard]] QJsonObject userRecord(const Account &account, bool online);
