#include "ui/MainWindow.h"

#include "app/Config.h"
#include "app/Endpoints.h"
#include "app/Product.h"
#include "audio/AudioEngine.h"
#include "net/TcpClient.h"
#include "net/UdpAudio.h"
#include "radio/SerialManager.h"
#include "ui/MainActions.h"
#include "ui/Theme.h"
#include "ui/UpdateCheck.h"
#include "ui/admin/HwidRequests.h"
#include "ui/room/RoomPanel.h"
#include "ui/status/ControlPanel.h"

#include <QAction>
#include <QApplication>
#include <QAudioDeviceInfo>
#include <QCloseEvent>
#include <QDebug>
#include <QDesktopServices>
#include <QIcon>
#include <QLabel>
#include <QScreen>
#include <QScrollArea>
#include <QSplitter>
#include <QStatusBar>
#include <QStyle>
#include <QUrl>

#include <algorithm>
#include <chrono>

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kAutoConnectDelay{500};
constexpr milliseconds kReconnectArmDelay{3000};
constexpr milliseconds kReconnectInterval{10000};
constexpr milliseconds kUdpRetryDelay{10000};

constexpr int kColumnCharacters = 44; // the longest line of the status column and its margins

// The engine fixes its start-up values itself; these are what it uses.
constexpr int kSampleRate = 48000;
constexpr int kChannels = 1;
constexpr int kFrameSize = 960;
constexpr int kBitrate = 32000;
constexpr int kComplexity = 5;

/// The name of the device at a position of the system's list; empty for the system default. Asking for the list takes
/// tens of milliseconds, so the default does not ask.
QString deviceName(QAudio::Mode mode, int index)
{
    if (index < 0)
        return {};
    const auto devices = QAudioDeviceInfo::availableDevices(mode);
    return index < devices.size() ? devices.at(index).deviceName() : QString();
}

} // namespace

MainWindow::MainWindow(const Endpoints &endpoints, Prompts &prompts)
    : m_endpoints(endpoints)
    , m_prompts(prompts)
    , m_client(new TcpClient(this))
    , m_udp(new UdpAudio(this))
    , m_engine(new AudioEngine(this))
    , m_serial(new SerialManager(this))
{
    Config::instance().load();
    setWindowTitle(QStringLiteral("%1 v%2 (Build %3)").arg(Product::name(), Product::version(), Product::build()));
    setWindowIcon(QIcon(QStringLiteral(":/icons/app_ico")));
    const bool dark = Config::instance().darkTheme();
    Theme::apply(*qApp, dark); // before there is anything to style twice
    m_actions = new MainActions(this);
    m_updateCheck = new UpdateCheck(
        endpoints.webUrl, prompts, [](const QUrl &url) { QDesktopServices::openUrl(url); }, this);
    m_hwidRequests = new HwidRequests(m_client, this);
    createPanels();
    createStatusBar();
    setUpTimers();
    connectActions();
    connectServer();
    connectAudio();
    connectRadio();
    connectPanels();
    showTheme(dark);
    startAudio();
    openSerialPort();
    QTimer::singleShot(kAutoConnectDelay, this, &MainWindow::connectAutomatically);
}

MainWindow::~MainWindow()
{
    // The services speak while they close (QUIT, PTT off); nobody listens any more.
    for (QObject *service : std::initializer_list<QObject *>{m_client, m_udp, m_engine, m_serial}) {
        service->disconnect(this);
        delete service;
    }
}

void MainWindow::createPanels()
{
    m_roomPanel = new RoomPanel(this);
    m_controlPanel = new ControlPanel(this);
    // On a low screen the column scrolls; it is as wide as its longest line either way.
    auto *column = new QScrollArea(this);
    column->setWidget(m_controlPanel);
    column->setWidgetResizable(true);
    column->setFrameShape(QFrame::NoFrame);
    column->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const int needed = m_controlPanel->minimumSizeHint().expandedTo(m_controlPanel->minimumSize()).width() +
                       style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    // Not the characters alone: those of a narrow font leave less than the panel can do with.
    const int columnWidth = std::max(fontMetrics().averageCharWidth() * kColumnCharacters, needed);
    column->setMinimumWidth(columnWidth);
    auto *splitter = new QSplitter(Qt::Horizontal, this);
    splitter->addWidget(m_roomPanel);
    splitter->addWidget(column);
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 0);
    splitter->setChildrenCollapsible(false);
    setCentralWidget(splitter);
    resize(QSize(columnWidth * 5 / 2, columnWidth * 12 / 5).boundedTo(screen()->availableSize()));
    splitter->setSizes({columnWidth * 3 / 2, columnWidth});
}

void MainWindow::createStatusBar()
{
    m_audioErrorLabel = new QLabel(this);
    m_audioErrorLabel->setObjectName(QStringLiteral("audioError"));
    m_audioErrorLabel->setStyleSheet(QStringLiteral("color: #F44336; font-weight: bold;"));
    m_audioErrorLabel->hide();
    statusBar()->addPermanentWidget(m_audioErrorLabel);
    m_pingLabel = new QLabel(QStringLiteral("PING: -- ms"), this);
    m_pingLabel->setObjectName(QStringLiteral("ping"));
    statusBar()->addPermanentWidget(m_pingLabel);
    showStatus(QStringLiteral("Ready"));
}

void MainWindow::setUpTimers()
{
    m_reconnectTimer = new QTimer(this);
    m_reconnectTimer->setObjectName(QStringLiteral("reconnectTimer"));
    m_reconnectTimer->setInterval(kReconnectInterval);
    connect(m_reconnectTimer, &QTimer::timeout, this, &MainWindow::onReconnectTick);

    m_reconnectArmTimer = new QTimer(this);
    m_reconnectArmTimer->setObjectName(QStringLiteral("reconnectArmTimer"));
    m_reconnectArmTimer->setInterval(kReconnectArmDelay);
    m_reconnectArmTimer->setSingleShot(true);
    m_reconnectArmTimer->setTimerType(Qt::PreciseTimer);
    connect(m_reconnectArmTimer, &QTimer::timeout, this, [this] {
        if (!m_reconnectTimer->isActive())
            m_reconnectTimer->start();
    });

    m_udpRetryTimer = new QTimer(this);
    m_udpRetryTimer->setObjectName(QStringLiteral("udpRetryTimer"));
    m_udpRetryTimer->setInterval(kUdpRetryDelay);
    m_udpRetryTimer->setSingleShot(true);
    connect(m_udpRetryTimer, &QTimer::timeout, this, &MainWindow::retryUdp);
}

void MainWindow::connectActions()
{
    connect(m_actions->connectToServer, &QAction::triggered, this, &MainWindow::onConnectToServer);
    connect(m_actions->disconnectFromServer, &QAction::triggered, this, &MainWindow::onDisconnectFromServer);
    connect(m_actions->exit, &QAction::triggered, this, &MainWindow::onExit);
    connect(m_actions->settings, &QAction::triggered, this, &MainWindow::onSettings);
    connect(m_actions->adminPanel, &QAction::triggered, this, &MainWindow::showAdminPanel);
    connect(m_actions->toolbarSettings, &QAction::triggered, this, &MainWindow::onSettings);
    connect(m_actions->darkTheme, &QAction::triggered, this, &MainWindow::onToggleTheme);
    connect(m_actions->joinRoom, &QAction::triggered, this, &MainWindow::onJoinRoom);
    connect(m_actions->toolbarJoin, &QAction::triggered, this, &MainWindow::onJoinRoom);
    connect(m_actions->leaveRoom, &QAction::triggered, this, &MainWindow::onLeaveRoom);
    connect(m_actions->toolbarLeave, &QAction::triggered, this, &MainWindow::onLeaveRoom);
    connect(m_actions->muteMicrophone, &QAction::toggled, this, &MainWindow::onMicMuteToggled);
    connect(m_actions->toolbarMicrophone, &QAction::toggled, this, &MainWindow::onMicMuteToggled);
    connect(m_actions->muteSpeaker, &QAction::toggled, this, &MainWindow::onSpeakerMuteToggled);
    connect(m_actions->toolbarSpeaker, &QAction::toggled, this, &MainWindow::onSpeakerMuteToggled);
    connect(m_actions->viewProfile, &QAction::triggered, this, &MainWindow::onViewProfile);
    connect(m_actions->editProfile, &QAction::triggered, this, &MainWindow::onEditProfile);
    connect(m_actions->changePassword, &QAction::triggered, this, &MainWindow::onChangePassword);
    connect(m_actions->resetDevice, &QAction::triggered, this, &MainWindow::onResetHwid);
    connect(m_actions->serialConfiguration, &QAction::triggered, this, &MainWindow::onSerialConfig);
    connect(m_actions->about, &QAction::triggered, this, &MainWindow::onAbout);
    connect(m_actions->checkForUpdates, &QAction::triggered, this, &MainWindow::onCheckUpdate);
    connect(m_actions->documentation, &QAction::triggered, this, &MainWindow::onDocumentation);
    connect(m_actions->tutorial, &QAction::triggered, this, &MainWindow::onTutorial);
    connect(m_actions->openLogFolder, &QAction::triggered, this, &MainWindow::onOpenLogFolder);
    connect(m_actions, &MainActions::roomChosen, m_client, &TcpClient::joinRoom);
}

void MainWindow::connectServer()
{
    connect(m_client, &TcpClient::connected, m_reconnectArmTimer, &QTimer::stop);
    connect(m_client, &TcpClient::connected, m_reconnectTimer, &QTimer::stop);
    connect(m_client, &TcpClient::connected, this, &MainWindow::onNetworkConnected);
    connect(m_client, &TcpClient::disconnected, this, &MainWindow::onNetworkDisconnected);
    connect(m_client, &TcpClient::disconnected, this, &MainWindow::armReconnect);
    connect(m_client, &TcpClient::disconnected, this, [this] { m_serverInfo.clear(); });
    connect(m_client, &TcpClient::disconnected, this, &MainWindow::forgetPasswordRequest);
    connect(m_client, &TcpClient::errorOccurred, this, &MainWindow::onClientError);
    connect(m_client, &TcpClient::loginResult, this, &MainWindow::onLoginResult);
    connect(m_client, &TcpClient::licenseWarning, this, &MainWindow::onLicenseWarning);
    connect(m_client, &TcpClient::roomListReceived, this, &MainWindow::onRoomListReceived);
    connect(m_client, &TcpClient::roomListReceived, m_actions, &MainActions::setRooms);
    connect(m_client, &TcpClient::joinRoomResult, this, &MainWindow::onJoinRoomResult);
    connect(m_client, &TcpClient::roomUsersReceived, this, &MainWindow::onRoomUsersReceived);
    connect(m_client, &TcpClient::kicked, this, &MainWindow::onKicked);
    connect(m_client, &TcpClient::banned, this, &MainWindow::onBanned);
    connect(m_client, &TcpClient::adminMuted, this, &MainWindow::onAdminMuted);
    connect(m_client, &TcpClient::audioReceived, this, &MainWindow::onTcpAudioReceived);
    connect(m_client, &TcpClient::pingUpdated, this, &MainWindow::onPingUpdated);
    connect(m_client, &TcpClient::pingUpdated, m_controlPanel, &ControlPanel::setPing);
    connect(m_client, &TcpClient::serverInfoReceived, this, &MainWindow::onServerInfo);
    connect(m_client, &TcpClient::audioQualityReceived, this, &MainWindow::onAudioQuality);
    connect(m_client, &TcpClient::gatewayInfoReceived, this, &MainWindow::onGatewayInfo);
    connect(m_client, &TcpClient::allUsersReceived, this, &MainWindow::onAllUsers);
    connect(m_client, &TcpClient::userProfileReceived, this, &MainWindow::onUserProfile);
    connect(m_client, &TcpClient::userPasswordChanged, this, &MainWindow::onPasswordChanged);
    connect(m_client, &TcpClient::userInfoReceived, this, &MainWindow::onUserInfoReceived);
    connect(m_client, &TcpClient::adminNotification, this, &MainWindow::onAdminNotification);
    connect(m_udp, &UdpAudio::udpReady, this, &MainWindow::onUdpReady);
    connect(m_udp, &UdpAudio::udpFailed, this, &MainWindow::onUdpFailed);
    connect(m_udp, &UdpAudio::audioReceived, this, &MainWindow::onUdpAudioReceived);
}

void MainWindow::connectAudio()
{
    connect(m_engine, &AudioEngine::audioEncoded, this, &MainWindow::onAudioEncoded);
    connect(m_engine, &AudioEngine::audioLevelChanged, m_controlPanel, [this](int input, int output) {
        m_controlPanel->setInputLevel(input);
        m_controlPanel->setOutputLevel(output);
    });
    // Not in the passing status text: a gateway without a codec has to say so for as long as it runs.
    connect(m_engine, &AudioEngine::error, m_audioErrorLabel, [this](const QString &message) {
        m_audioErrorLabel->setText(message);
        m_audioErrorLabel->show();
    });
}

void MainWindow::connectRadio()
{
    connect(m_serial, &SerialManager::cosChanged, this, &MainWindow::onCosChanged);
}

void MainWindow::connectPanels()
{
    connect(m_roomPanel, &RoomPanel::joinRoom, m_client, &TcpClient::joinRoom);
    connect(m_roomPanel, &RoomPanel::leaveRoom, this, &MainWindow::onPanelLeave);
    connect(m_roomPanel, &RoomPanel::userAction, this, &MainWindow::onUserAction);
}

void MainWindow::startAudio()
{
    const Config &config = Config::instance();
    m_engine->init(kSampleRate, kChannels, kFrameSize, kBitrate, kComplexity);
    m_engine->setMicGain(config.micGain());
    m_engine->setSpeakerGain(config.speakerGain());
    chooseSoundDevices();
    m_engine->startPlayback();
    qDebug() << "[MainWindow] Playback started (once at startup)";
}

/// For the next time that capture and playback are opened.
void MainWindow::chooseSoundDevices()
{
    const Config &config = Config::instance();
    m_engine->setInputDevice(deviceName(QAudio::AudioInput, config.inputDevice()));
    m_engine->setOutputDevice(deviceName(QAudio::AudioOutput, config.outputDevice()));
}

void MainWindow::openSerialPort()
{
    const Config &config = Config::instance();
    const QString port = config.serialPort();
    const bool open = !port.isEmpty() &&
                      m_serial->open(port, config.baudrate(), config.pttPin(), config.cosPin(), config.cosLogicHigh());
    m_actions->showSerialPort(open ? port : QString());
    refreshReadiness();
}

void MainWindow::showStatus(const QString &text, int milliseconds)
{
    statusBar()->showMessage(text, milliseconds);
}

void MainWindow::onExit()
{
    close();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    event->accept();
    // Without this an open box would keep a program without a window alive.
    QCoreApplication::quit();
}
