#include "ui/admin/AdminPanel.h"

#include "net/TcpClient.h"
#include "net/protocol/Commands.h"
#include "ui/Prompts.h"
#include "ui/admin/AllUsersTab.h"
#include "ui/admin/AudioQualityTab.h"
#include "ui/admin/HwidRequests.h"
#include "ui/admin/HwidRequestsTab.h"
#include "ui/admin/OnlineUsersTab.h"
#include "ui/admin/PendingTab.h"
#include "ui/admin/RoomsTab.h"
#include "ui/admin/UserRecord.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <chrono>

namespace {

constexpr QSize kMinimumSize(900, 600); // logical pixels
constexpr QSize kUsualSize(1120, 680);  // every title of the table of accounts is readable
constexpr QSize kFrame(20, 60);         // the window manager's, around the panel
constexpr std::chrono::milliseconds kRefreshDelay{500};

} // namespace

AdminPanel::AdminPanel(TcpClient *client, Prompts &prompts, QWidget *parent, HwidRequests *requests)
    : QDialog(parent)
    , m_client(client)
    , m_requests(requests ? requests : new HwidRequests(client, this))
    , m_refresh(new QTimer(this))
    , m_tabs(new QTabWidget(this))
    , m_onlineUsers(new OnlineUsersTab(this))
    , m_rooms(new RoomsTab(prompts, this))
    , m_allUsers(new AllUsersTab(prompts, this))
    , m_audioQuality(new AudioQualityTab(prompts, this))
    , m_pending(new PendingTab(prompts, this))
    , m_hwidRequests(new HwidRequestsTab(*m_requests, prompts, this))
    , m_notice(new QLabel(QStringLiteral("Not connected to the server"), this))
{
    setObjectName(QStringLiteral("adminPanelDialog"));
    setWindowTitle(QStringLiteral("Admin Panel"));
    setMinimumSize(kMinimumSize);
    resize(kUsualSize.boundedTo(screen()->availableSize() - kFrame).expandedTo(kMinimumSize));
    m_refresh->setSingleShot(true);
    m_refresh->setInterval(kRefreshDelay);
    connect(m_refresh, &QTimer::timeout, this, &AdminPanel::onRefreshAll);
    layOut();
    connectTabs();
    connectClient();
    onRefreshAll();
    send(Commands::adminAudioQuality());
}

void AdminPanel::layOut()
{
    auto *header = new QLabel(QStringLiteral("Admin Panel - eVOX SINAR Server"), this);
    header->setObjectName(QStringLiteral("adminHeader"));
    header->setStyleSheet(QStringLiteral("font-size: 16px; font-weight: bold;"));
    m_tabs->setObjectName(QStringLiteral("adminTabs"));
    m_tabs->addTab(m_onlineUsers, QStringLiteral("Online Users"));
    m_tabs->addTab(m_rooms, QStringLiteral("Rooms"));
    m_tabs->addTab(m_allUsers, QStringLiteral("All Users"));
    m_tabs->addTab(m_audioQuality, QStringLiteral("Audio Quality"));
    m_tabs->addTab(m_pending, QStringLiteral("Pending Approval"));
    m_tabs->addTab(m_hwidRequests, QString());
    showRequestCount(m_hwidRequests->count());
    m_notice->setObjectName(QStringLiteral("adminConnectionNotice"));
    m_notice->setStyleSheet(QStringLiteral("color: #F44336; font-weight: bold;"));
    auto *refresh = new QPushButton(QStringLiteral("Refresh All"), this);
    refresh->setObjectName(QStringLiteral("refreshAllButton"));
    refresh->setShortcut(Qt::Key_F5);
    connect(refresh, &QPushButton::clicked, this, &AdminPanel::onRefreshAll);
    auto *close = new QPushButton(QStringLiteral("Close"), this);
    close->setObjectName(QStringLiteral("closeButton"));
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_notice);
    buttons->addStretch();
    buttons->addWidget(refresh);
    buttons->addWidget(close);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(header);
    layout->addWidget(m_tabs);
    layout->addLayout(buttons);
    // Enter in a field is for that field; a dialog would press its first button.
    const auto all = findChildren<QPushButton *>();
    for (QPushButton *button : all)
        button->setAutoDefault(false);
}

void AdminPanel::connectTabs()
{
    connect(m_rooms, &RoomsTab::commandRequested, this, &AdminPanel::send);
    connect(m_rooms, &RoomsTab::refreshRequested, m_refresh, QOverload<>::of(&QTimer::start));
    connect(m_allUsers, &AllUsersTab::commandRequested, this, &AdminPanel::send);
    connect(m_allUsers, &AllUsersTab::approveRequested, this, &AdminPanel::approve);
    connect(m_allUsers, &AllUsersTab::revokeRequested, this, &AdminPanel::revoke);
    connect(m_allUsers, &AllUsersTab::refreshRequested, m_refresh, QOverload<>::of(&QTimer::start));
    connect(m_pending, &PendingTab::approveRequested, this, &AdminPanel::approve);
    connect(m_pending, &PendingTab::refreshRequested, m_refresh, QOverload<>::of(&QTimer::start));
    connect(m_audioQuality, &AudioQualityTab::commandRequested, this, &AdminPanel::send);
    connect(m_hwidRequests, &HwidRequestsTab::commandRequested, this, &AdminPanel::send);
    m_hwidRequests->setIdLookup([this](const QString &callsign) { return m_allUsers->idOf(callsign); });
    connect(m_hwidRequests, &HwidRequestsTab::countChanged, this, &AdminPanel::showRequestCount);
}

void AdminPanel::connectClient()
{
    showConnection(m_client && m_client->isConnected());
    if (!m_client)
        return;
    m_account = m_client->userId();
    const TcpClient *client = m_client;
    connect(client, &TcpClient::onlineUsersReceived, m_onlineUsers, &OnlineUsersTab::showUsers);
    connect(client, &TcpClient::roomListReceived, m_onlineUsers, &OnlineUsersTab::showRooms);
    connect(client, &TcpClient::roomListReceived, m_rooms, &RoomsTab::showRooms);
    connect(client, &TcpClient::serverInfoReceived, this, &AdminPanel::showServerInfo);
    connect(client, &TcpClient::allUsersReceived, m_onlineUsers, &OnlineUsersTab::showAccounts);
    connect(client, &TcpClient::allUsersReceived, m_allUsers, &AllUsersTab::showUsers);
    connect(client, &TcpClient::registerResult, m_allUsers, &AllUsersTab::onRegisterResult);
    connect(client, &TcpClient::pendingUsersReceived, m_pending, &PendingTab::showUsers);
    connect(client, &TcpClient::audioQualityReceived, m_audioQuality, &AudioQualityTab::showQuality);
    connect(client, &TcpClient::hwidReset, m_refresh, QOverload<>::of(&QTimer::start));
    connect(client, &TcpClient::connected, this, [this] { showConnection(true); });
    connect(client, &TcpClient::disconnected, this, [this] {
        showConnection(false);
        m_rooms->showLimits({}); // they may change meanwhile; the server tells them again
    });
    connect(client, &TcpClient::connected, m_allUsers, &AllUsersTab::forgetRegistrations);
    connect(client, &TcpClient::loginResult, this, &AdminPanel::onLoginResult);
    connect(client, &TcpClient::userProfileReceived, this, &AdminPanel::onOwnProfile);
}

/// The connection is back, and what the tabs show may be hours old.
void AdminPanel::onLoginResult(bool success)
{
    if (!success || m_isEnded)
        return;
    if (m_account == 0)
        m_account = m_client->userId();
    if (m_client->isAdmin() && m_client->userId() == m_account)
        m_refresh->start();
    else
        end();
}

void AdminPanel::onOwnProfile(const QVariantMap &profile)
{
    const bool isOwn = m_account > 0 && UserRecord::id(profile) == m_account;
    if (isOwn && profile.contains(QStringLiteral("is_admin")) && !UserRecord::isAdmin(profile))
        end();
}

/// A box or a dialog may be open over the panel; what it asks for is sent no more.
void AdminPanel::end()
{
    m_isEnded = true;
    m_refresh->stop();
    const auto dialogs = findChildren<QDialog *>();
    for (QDialog *dialog : dialogs)
        dialog->close();
    close();
}

void AdminPanel::send(const QString &line)
{
    if (m_client && !m_isEnded)
        m_client->sendCommand(line);
}

void AdminPanel::onRefreshAll()
{
    send(Commands::onlineUsers());
    send(Commands::rooms());
    send(Commands::allUsers());
    send(Commands::pendingUsers());
}

void AdminPanel::approve(int userId)
{
    if (userId >= 1 && m_client && !m_isEnded)
        m_client->approveUser(userId);
}

void AdminPanel::revoke(int userId)
{
    if (userId >= 1 && m_client && !m_isEnded)
        m_client->unapproveUser(userId);
}

void AdminPanel::onApproveUser()
{
    m_allUsers->onApproveUser();
}

void AdminPanel::onRevokeUser()
{
    m_allUsers->onRevokeUser();
}

void AdminPanel::onResetHwid()
{
    m_allUsers->onResetHwid();
}

void AdminPanel::onEditUser()
{
    m_allUsers->onEditUser();
}

void AdminPanel::onDeleteUser()
{
    m_allUsers->onDeleteUser();
}

void AdminPanel::onApplyAudioQuality()
{
    m_audioQuality->onApplyAudioQuality();
}

void AdminPanel::onAddRoom()
{
    m_rooms->onAddRoom();
}

void AdminPanel::onDeleteRoom()
{
    m_rooms->onDeleteRoom();
}

void AdminPanel::onEditRoom()
{
    m_rooms->onEditRoom();
}

void AdminPanel::onFilterAllUsers()
{
    m_allUsers->onFilterAllUsers();
}

void AdminPanel::showServerInfo(const QVariantMap &info)
{
    if (const auto limits = RoomLimits::read(info))
        m_rooms->showLimits(*limits);
}

void AdminPanel::addHwidRequest(const QString &details, const QDateTime &when)
{
    m_requests->add(details, when);
}

void AdminPanel::showRequestCount(int count)
{
    const QString title =
        count > 0 ? QStringLiteral("HWID Requests (%1) !").arg(count) : QStringLiteral("HWID Requests (0)");
    m_tabs->setTabText(m_tabs->indexOf(m_hwidRequests), title);
}

void AdminPanel::showConnection(bool connected)
{
    m_notice->setVisible(!connected);
}
