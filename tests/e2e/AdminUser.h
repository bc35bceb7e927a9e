#pragma once

#include "support/AppDriver.h"

#include <QString>

/// An administrator in front of the program: the panel and the list of stations beside it. Each step returns false,
/// after printing why, when it does not come about.
class AdminUser final
{
public:
    enum class Tab { OnlineUsers, Rooms, AllUsers, AudioQuality, Pending, HwidRequests };

    explicit AdminUser(AppDriver &driver);

    [[nodiscard]] bool openPanel();
    [[nodiscard]] bool showTab(Tab tab);

    /// The only account in the tab of accounts that matches the callsign, as the server has it now.
    [[nodiscard]] bool findAccount(const QString &callsign);
    /// Approves the only account that waits.
    [[nodiscard]] bool approvePending();
    /// Opens the editor of the account, gives it this status, approved if it is the active one, and saves.
    [[nodiscard]] bool setStatus(const QString &callsign, const QString &status);
    [[nodiscard]] bool deleteAccount(const QString &callsign);
    /// Approves the only request for a new device, which is this callsign's.
    [[nodiscard]] bool approveDevice(const QString &callsign);
    [[nodiscard]] bool setAudioQuality(const QString &preset);

    /// From the menu of the station that entered the administrator's room last.
    [[nodiscard]] bool actOnLastStation(const QString &choice);

private:
    [[nodiscard]] bool confirmBox(const QString &title, const QString &text, const QString &button);
    [[nodiscard]] bool chooseFirstRow(const QString &list);
    [[nodiscard]] bool editStatus(const QString &status);

    AppDriver &m_driver;
};
