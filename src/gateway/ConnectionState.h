#pragma once

/// What just happened to the connection, as far as the window's actions are concerned.
enum class ConnectionState {
    Disconnected, ///< no control connection
    Connected,    ///< control connection up, in no room
    InRoom,       ///< a room was joined
    LeftRoom,     ///< the operator left the room; the connection stays
    Kicked,       ///< removed by an administrator; the connection is about to go
    Banned,       ///< removed for good; the connection is about to go
};

/// What a state does to one property of an action. Keep leaves it as the earlier state set it.
enum class Change { No, Yes, Keep };

/// The effect of a state on the window's actions; one row of a table.
struct ActionRules
{
    Change canConnect;
    Change canDisconnect;
    Change canJoin;
    Change joinShown;
    Change canLeave;
    Change leaveShown;
    Change canMute;
    Change canMove;  ///< the "Move to Room" menu
    bool liftsMutes; ///< both mute actions are unchecked
};

[[nodiscard]] const ActionRules &actionRules(ConnectionState state);
