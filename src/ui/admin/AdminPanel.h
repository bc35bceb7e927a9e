#pragma once

#include <QDateTime>
#include <QDialog>
#include <QPointer>
#include <QVariantMap>

class AllUsersTab;
class AudioQualityTab;
class HwidRequests;
class HwidRequestsTab;
class OnlineUsersTab;
class PendingTab;
class Prompts;
class QLabel;
class QTabWidget;
class QTimer;
class RoomsTab;
class TcpClient;

/// Where an administrator manages the server: accounts, rooms, audio quality and requests. The tabs know records and
/// command lines only; the panel carries them from and to the connection, which is not its own and may go and come.
/// Closes, and sends no more, when its administrator is none any more or another account logs in.
class AdminPanel final : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AdminPanel)

public:
    /// Asks for everything at once. Without a client the panel stays empty. The requests for a device reset may be
    /// older than the panel, and outlive it; without them it has its own.
    AdminPanel(TcpClient *client, Prompts &prompts, QWidget *parent = nullptr, HwidRequests *requests = nullptr);

public slots:
    void onRefreshAll();
    void onApproveUser();
    void onRevokeUser();
    void onResetHwid();
    void onEditUser();
    void onDeleteUser();
    void onApplyAudioQuality();
    void onAddRoom();
    void onDeleteRoom();
    void onEditRoom();
    void onFilterAllUsers();
    /// What the rooms take at most, from a "SERVER_INFO" record; one that does not say so changes nothing.
    void showServerInfo(const QVariantMap &info);
    /// A device-reset request, @p details as TcpClient::adminNotification() tells them. Those that come while the panel
    /// exists it lists itself.
    void addHwidRequest(const QString &details, const QDateTime &when);

private:
    void layOut();
    void connectTabs();
    void connectClient();
    void send(const QString &line);
    void approve(int userId);
    void revoke(int userId);
    void onLoginResult(bool success);
    void onOwnProfile(const QVariantMap &profile);
    void end();
    void showRequestCount(int count);
    void showConnection(bool connected);

    QPointer<TcpClient> m_client;
    HwidRequests *m_requests;
    QTimer *m_refresh;
    QTabWidget *m_tabs;
    OnlineUsersTab *m_onlineUsers;
    RoomsTab *m_rooms;
    AllUsersTab *m_allUsers;
    AudioQualityTab *m_audioQuality;
    PendingTab *m_pending;
    HwidRequestsTab *m_hwidRequests;
    QLabel *m_notice;
    int m_account = 0;      ///< user id of the administrator; 0: nobody has logged in yet
    bool m_isEnded = false; ///< somebody else has logged in, or no administrator any more
};
