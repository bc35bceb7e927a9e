// The control connection: connect, what follows a login, rooms, kick and ban, the UDP link.

#include "app/Config.h"
#include "app/Endpoints.h"
#include "app/HardwareId.h"
#include "audio/AudioEngine.h"
#include "gateway/LoginFlow.h"
#include "net/TcpClient.h"
#include "net/UdpAudio.h"
#include "net/protocol/Commands.h"
#include "radio/SerialManager.h"
#include "ui/MainActions.h"
#include "ui/MainWindow.h"
#include "ui/Prompts.h"
#include "ui/room/RoomPanel.h"
#include "ui/status/ControlPanel.h"

#include <QAction>
#include <QCoreApplication>
#include <QDebug>
#include <QPointer>

#include <chrono>
#include <utility>

namespace {

using std::chrono::milliseconds;

constexpr quint16 kUdpPort = 8082; // not configurable: the server's audio port is part of the protocol
constexpr int kDefaultServerPort = 8080;
constexpr int kHighestPort = 65535;
constexpr milliseconds kAutoJoinDelay{1000};
constexpr milliseconds kReadinessDelay{3000};
constexpr milliseconds kKeepaliveInterval{25000};
constexpr int kShownKeyPart = 16;

// How long passing status texts stand, in milliseconds; 0 is until the next one.
constexpr int kBriefly = 2000;
constexpr int kShortly = 3000;
constexpr int kReadably = 5000;
constexpr int kLong = 10000;

const char *okOrNull(const void *object)
{
    return object ? "OK" : "NULL";
}

} // namespace

void MainWindow::connectAutomatically()
{
    const Config &config = Config::instance();
    const QString address = config.serverAddress();
    if (!config.setupCompleted() || address.isEmpty())
        return;
    m_client->connectToServer(address, static_cast<quint16>(config.serverPort()));
    showStatus(QStringLiteral("Connecting to %1...").arg(address));
}

void MainWindow::onConnectToServer()
{
    const QPointer<MainWindow> self(this);
    const QString title = QStringLiteral("Connect to Server");
    const auto address = m_prompts.text(title, QStringLiteral("Server Address:"), m_endpoints.serverHost);
    if (!self || !address || address->isEmpty())
        return;
    const auto port = m_prompts.number(title, QStringLiteral("Port:"), kDefaultServerPort, 1, kHighestPort);
    if (!self || !port)
        return;
    m_client->connectToServer(*address, static_cast<quint16>(*port));
}

void MainWindow::onDisconnectFromServer()
{
    m_client->disconnectFromServer();
}

void MainWindow::armReconnect()
{
    if (!m_reconnectTimer->isActive() && !m_reconnectArmTimer->isActive())
        m_reconnectArmTimer->start();
}

void MainWindow::onReconnectTick()
{
    if (m_client->isConnected())
        return;
    if (m_client->socketState() != QAbstractSocket::UnconnectedState) {
        m_client->abortConnection(); // half open: try again at the next tick
        return;
    }
    const Config &config = Config::instance();
    const QString address = config.serverAddress();
    if (address.isEmpty())
        return;
    showStatus(QStringLiteral("Reconnecting to %1...").arg(address));
    m_client->connectToServer(address, static_cast<quint16>(config.serverPort()));
}

void MainWindow::onClientError(const QString &error)
{
    showStatus(QStringLiteral("Error: ") + error, kReadably);
    // A connection that never came up is lost as well: a gateway that starts before its router has to try again.
    if (!m_client->isConnected() && m_client->socketState() == QAbstractSocket::UnconnectedState)
        armReconnect();
}

void MainWindow::onNetworkConnected()
{
    const Config &config = Config::instance();
    showStatus(QStringLiteral("Connected to server"), kShortly);
    m_actions->apply(ConnectionState::Connected);
    m_serverAddress = config.serverAddress();
    qDebug().noquote() << "[MainWindow] onNetworkConnected - Server from config:" << m_serverAddress
                       << config.serverPort();
    m_actions->showConnected(true);
    ensureHardwareId();
    promptForLogin();
}

void MainWindow::ensureHardwareId()
{
    Config &config = Config::instance();
    if (!config.hwid().isEmpty())
        return;
    config.setHwid(generateHardwareId());
    config.save();
}

void MainWindow::onLoginSucceeded()
{
    m_wrongPasswords = 0;
    m_retryPromptOpen = false;
    const int userId = m_client->userId();
    const bool isAdmin = m_client->isAdmin();
    endOldPermitWarning();
    showStatus(QStringLiteral("Login successful"));
    qDebug() << "[MainWindow] Login successful, userId:" << userId;
    qDebug() << "[MainWindow] m_client:" << okOrNull(m_client);
    qDebug() << "[MainWindow] m_client->isAdmin():" << isAdmin;
    qDebug() << "[MainWindow] m_adminPanelAction:" << okOrNull(m_actions->adminPanel);

    m_udp->setUserId(userId);
    qDebug() << "[MainWindow] UDP user ID set to:" << userId;
    restartUdp();

    m_client->sendCommand(Commands::audioQuality());
    qDebug() << "[MainWindow] Requested audio quality from server";
    m_client->sendCommand(Commands::rooms());
    m_client->sendCommand(Commands::profile());

    qDebug() << "[MainWindow] Admin access:" << isAdmin;
    m_actions->setAdmin(isAdmin);
    m_roomPanel->setAdmin(isAdmin);
    m_actions->toolbarJoin->setEnabled(true);

    armAutoJoin();
    QTimer::singleShot(kReadinessDelay, this, &MainWindow::refreshReadiness);
    // Once more at every login of a run, not uniquely: a later key then tells its story twice, which is known and
    // harmless, as handling a key again changes nothing.
    connect(m_client, &TcpClient::roomKeyReceived, this, &MainWindow::onRoomKeyReceived);
}

void MainWindow::armAutoJoin()
{
    const QString room = Config::instance().defaultRoom();
    if (room.isEmpty())
        return;
    QTimer::singleShot(kAutoJoinDelay, this, [this, room] {
        joinAutomatically(room);
        if (m_client->isConnected())
            m_autoJoinRoom = room; // an answer is due
    });
}

void MainWindow::joinAutomatically(const QString &room)
{
    qDebug().noquote() << "[MainWindow] Auto-joining default room:" << room;
    m_client->joinRoom(room);
}

/// The list of rooms may have replaced the default after the automatic join was armed. Without this a gateway whose
/// room was deleted would stay out of every room until somebody comes.
void MainWindow::onAutoJoinRefused(const QString &refusedRoom)
{
    const QString room = Config::instance().defaultRoom();
    if (!room.isEmpty() && room != refusedRoom && m_roomPanel->currentRoom().isEmpty())
        joinAutomatically(room);
}

void MainWindow::restartUdp()
{
    m_udpRetryTimer->stop();
    m_udp->stop();
    m_udp->enableUdp(m_serverAddress, kUdpPort, m_client->udpToken());
    m_udp->setUserId(m_client->userId());
    qDebug() << "[MainWindow] UDP re-enabled for new room";
}

void MainWindow::onRoomListReceived(const QStringList &rooms)
{
    m_roomPanel->setRooms(rooms);
    showStatus(QStringLiteral("Rooms loaded: %1").arg(rooms.size()));
    Config &config = Config::instance();
    const QString old = config.defaultRoom();
    const auto replacement = LoginFlow::replacementRoom(old, rooms);
    if (!replacement)
        return;
    config.setDefaultRoom(*replacement);
    qDebug().noquote()
        << QStringLiteral("[MainWindow] Default room '%1' tidak ada di server, diganti ke '%2'").arg(old, *replacement);
    showStatus(QStringLiteral("Default room diubah ke: %1").arg(*replacement), kReadably);
}

void MainWindow::onJoinRoom()
{
    if (!m_client->isConnected())
        return;
    const QString title = QStringLiteral("Join Room");
    const QStringList rooms = m_roomPanel->availableRooms();
    if (rooms.isEmpty()) {
        m_prompts.information(title, QStringLiteral("No rooms available"));
        return;
    }
    const QPointer<MainWindow> self(this);
    const auto room = m_prompts.choice(title, QStringLiteral("Select room:"), rooms);
    if (self && room && !room->isEmpty())
        m_client->joinRoom(*room);
}

void MainWindow::onJoinRoomResult(bool success, const QString &room)
{
    // The answer may have waited in the buffer of a connection that is gone.
    if (!m_client->isConnected())
        return;
    const QString autoJoinRoom = std::exchange(m_autoJoinRoom, {}); // one more try, not one after the other
    if (!success) {
        if (!autoJoinRoom.isEmpty())
            onAutoJoinRefused(autoJoinRoom);
        return;
    }
    m_roomPanel->setCurrentRoom(room);
    m_controlPanel->setInRoom(true);
    refreshReadiness();
    m_actions->apply(ConnectionState::InRoom);
    runAudio();
    showStatus(QStringLiteral("Joined room: ") + room);
}

void MainWindow::runAudio()
{
    if (!m_engine->isPlaying())
        m_engine->startPlayback();
    if (!m_engine->isCapturing())
        m_engine->startCapture();
}

void MainWindow::onRoomKeyReceived(const QString &key)
{
    qDebug().noquote() << "[MainWindow] Room key received:" << key.left(kShownKeyPart) + QLatin1String("...");
    m_client->discardPendingAudio();
    m_engine->clearBuffers();
    m_engine->resetDecoder();
    qDebug() << "[MainWindow] Audio buffers cleared and decoder reset";
    m_engine->setEncryptionKey(key);
    runAudio();
    if (!m_udp->isReady() || m_udpFailed) {
        qDebug() << "[MainWindow] UDP not ready, reinitializing for new room...";
        restartUdp();
    } else {
        qDebug() << "[MainWindow] UDP healthy, resending token for new room...";
        m_udp->resendToken(m_client->udpToken());
    }
    showStatus(QStringLiteral("Encryption key updated and buffers cleared"), kBriefly);
}

void MainWindow::onLeaveRoom()
{
    m_client->sendCommand(Commands::leave());
    if (m_engine->isCapturing()) {
        m_engine->stopCapture();
        qDebug() << "[MainWindow] Capture stopped (left room)";
    }
    m_client->sendCommand(Commands::leave()); // the command goes out twice on purpose
    forgetRoom();
    m_actions->apply(ConnectionState::LeftRoom);
    showStatus(QStringLiteral("Left room"));
}

void MainWindow::onPanelLeave()
{
    m_client->sendCommand(Commands::leave());
    forgetRoom();
    m_actions->apply(ConnectionState::LeftRoom);
    showStatus(QStringLiteral("Left room"));
}

void MainWindow::forgetRoom()
{
    m_roomPanel->setCurrentRoom({});
    m_roomPanel->clearUsers();
    m_controlPanel->setInRoom(false);
    refreshReadiness();
}

void MainWindow::onNetworkDisconnected()
{
    m_autoJoinRoom.clear();
    showStatus(QStringLiteral("Disconnected"));
    m_actions->apply(ConnectionState::Disconnected);
    m_actions->showConnected(false);
    m_actions->setRooms({});
    m_roomPanel->setRooms({});
    m_roomPanel->setCurrentRoom({});
    m_roomPanel->clearUsers();
    m_controlPanel->setInRoom(false);
    m_controlPanel->setSerialReady(false);
    m_controlPanel->updateReadiness();
}

void MainWindow::onKicked(const QString &reason)
{
    forgetRoom();
    m_actions->apply(ConnectionState::Kicked);
    const QPointer<MainWindow> self(this);
    m_prompts.warning(QStringLiteral("Dikeluarkan dari Server"),
                      QStringLiteral("Anda telah dikeluarkan oleh administrator.\n\nAlasan: ") + reason);
    if (self)
        showStatus(QStringLiteral("Kicked: ") + reason, kLong);
}

void MainWindow::onBanned(const QString &reason)
{
    forgetRoom();
    m_actions->apply(ConnectionState::Banned);
    const QPointer<MainWindow> self(this);
    m_prompts.critical(QStringLiteral("Akun Dibanned"),
                       QStringLiteral("Akun Anda telah dibanned oleh administrator.\n\nAlasan: %1"
                                      "\n\nHubungi administrator untuk informasi lebih lanjut.")
                           .arg(reason));
    if (self)
        showStatus(QStringLiteral("Banned - Hubungi admin"));
}

void MainWindow::onUdpReady()
{
    qDebug() << "[MainWindow] UDP is ready!";
    showStatus(QStringLiteral("UDP audio ready"), kShortly);
    m_udpFailed = false;
    m_udpRetryTimer->stop();
    if (!m_keepaliveTimer) {
        m_keepaliveTimer = new QTimer(this);
        m_keepaliveTimer->setObjectName(QStringLiteral("keepaliveTimer"));
        m_keepaliveTimer->setInterval(kKeepaliveInterval);
        connect(m_keepaliveTimer, &QTimer::timeout, m_udp, &UdpAudio::sendKeepalive);
    }
    m_keepaliveTimer->start();
    qDebug() << "[MainWindow] UDP keepalive timer started (25s interval)";
}

void MainWindow::onUdpFailed()
{
    qDebug() << "[MainWindow] ***** UDP FAILED SIGNAL *****";
    qDebug() << "[MainWindow] UDP failed, will retry automatically";
    showStatus(QStringLiteral("UDP connection lost - auto-retrying..."), kReadably);
    m_udpFailed = true;
    m_udpRetryTimer->start();
}

/// The link itself gives up after one try of each step; without this a gateway whose datagrams were lost for a moment
/// would stay silent until somebody changes the room.
void MainWindow::retryUdp()
{
    if (m_udpFailed && m_client->isConnected() && !m_client->udpToken().isEmpty())
        restartUdp();
}

void MainWindow::refreshReadiness()
{
    m_controlPanel->setSerialReady(m_serial->isOpen());
    m_controlPanel->updateReadiness();
}
