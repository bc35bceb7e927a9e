#include "gateway/ConnectionState.h"

#include <array>
#include <cstddef>

namespace {

constexpr Change N = Change::No;
constexpr Change Y = Change::Yes;
constexpr Change K = Change::Keep;

// In the order of ConnectionState. Kicked leaves the enabled states alone: the disconnection that follows sets them.
constexpr std::array<ActionRules, 6> kRules{{
    // connect disconnect join joinShown leave leaveShown mute move liftsMutes
    {Y, N, N, Y, N, N, N, N, true},  // Disconnected
    {N, Y, Y, Y, N, N, K, K, false}, // Connected
    {K, K, N, N, Y, Y, Y, Y, false}, // InRoom
    {K, K, Y, Y, N, N, N, N, true},  // LeftRoom
    {K, K, K, Y, K, N, K, K, false}, // Kicked
    {K, K, Y, Y, N, N, K, K, false}, // Banned
}};

} // namespace

const ActionRules &actionRules(ConnectionState state)
{
    return kRules.at(static_cast<std::size_t>(state));
}
