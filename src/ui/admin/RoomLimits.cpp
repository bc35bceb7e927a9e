#include "ui/admin/RoomLimits.h"

#include <cmath>
#include <limits>

namespace {

constexpr int kLongestName = 200; // characters; no room that can be edited has more

std::optional<int> usersOf(const QVariant &value)
{
    switch (value.userType()) { // what a JSON number becomes, and nothing that merely reads like one
    case QMetaType::Double:
    case QMetaType::Int:
    case QMetaType::LongLong: break;
    default: return std::nullopt;
    }
    const double users = value.toDouble();
    if (!(users >= 0 && users <= std::numeric_limits<int>::max()) || std::floor(users) < users)
        return std::nullopt;
    return static_cast<int>(users);
}

} // namespace

std::optional<RoomLimits::Map> RoomLimits::read(const QVariantMap &serverInfo)
{
    const auto told = serverInfo.constFind(QStringLiteral("room_limits"));
    if (told == serverInfo.cend())
        return std::nullopt;
    Map limits;
    const QVariantMap rooms = told->toMap();
    for (auto room = rooms.cbegin(); room != rooms.cend() && limits.size() < kMostRooms; ++room) {
        const auto users = usersOf(room.value());
        if (users && room.key().size() <= kLongestName)
            limits.insert(room.key(), *users);
    }
    return limits;
}
