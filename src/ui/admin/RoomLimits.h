#pragma once

#include <QHash>
#include <QString>
#include <QVariantMap>

#include <optional>

/// How many users each room takes, as far as the server has said so.
namespace RoomLimits {

using Map = QHash<QString, int>; ///< by the room's name; 0: no limit

constexpr int kMostRooms = 10000;

/// Of a "SERVER_INFO" record; nothing where it does not speak of limits. What is no number of users is left out, so
/// that it counts as not known.
[[nodiscard]] std::optional<Map> read(const QVariantMap &serverInfo);

} // namespace RoomLimits
