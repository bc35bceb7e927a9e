#pragma once

#include "gateway/ConnectionState.h"
#include "net/protocol/Commands.h"

#include <QList>
#include <QMainWindow>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QVariantMap>

class AdminPanel;
class AudioEngine;
class ChangePasswordDialog;
class ControlPanel;
class HwidRequests;
class MainActions;
class Prompts;
class QLabel;
class RoomPanel;
class SerialManager;
class TcpClient;
class UdpAudio;
class UpdateCheck;
struct Endpoints;
struct Settings;

/// The gateway controller: owns the services and the panels, wires them and carries out what gateway/ decides. Also
/// the program's only main window.
///
/// Prompts block while the event loop runs on. After each of them the window may be gone and the connection may be
/// another one: both are asked again.
class MainWindow final : public QMainWindow
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MainWindow)

public:
    /// Reads the configuration anew, opens playback and the serial port and arms the automatic connect. The endpoints
    /// and the prompts outlive the window.
    MainWindow(const Endpoints &endpoints, Prompts &prompts);
    ~MainWindow() override;

public slots:
    void onConnectToServer();
    void onDisconnectFromServer();
    void onJoinRoom();
    void onLeaveRoom();
    void onNetworkConnected();
    void onNetworkDisconnected();
    void onLoginResult(bool success, const QString &message);
    void onRoomListReceived(const QStringList &rooms);
    void onUdpReady();
    void onUdpFailed();
    void onToggleTheme();
    void onExit();
    void onSettings();
    void showAdminPanel();
    void onViewProfile();
    void onEditProfile();
    void onChangePassword();
    void onResetHwid();
    void onSerialConfig();
    void onAbout();
    void onCheckUpdate();
    void onDocumentation();
    void onTutorial();
    void onOpenLogFolder();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    // MainWindow.cpp: construction and wiring
    void createPanels();
    void createStatusBar();
    void connectActions();
    void connectServer();
    void connectAudio();
    void connectRadio();
    void connectPanels();
    void setUpTimers();
    void startAudio();
    void chooseSoundDevices();
    void openSerialPort();
    void showStatus(const QString &text, int milliseconds = 0);

    // MainWindowLogin.cpp: prompts and refusals
    void promptForLogin();
    [[nodiscard]] bool askCallsign();
    void askMissingPassword();
    void askPassword();
    void sendLogin(const QString &callsign, const QString &password);
    void reportLoginFailure(const QString &message);
    void offerDeviceReset();
    void askPasswordAgain();
    void cancelRetry();
    void giveUpLogin();

    // MainWindowSession.cpp: connection, rooms, UDP
    void connectAutomatically();
    void onReconnectTick();
    void armReconnect();
    void ensureHardwareId();
    void onLoginSucceeded();
    void armAutoJoin();
    void joinAutomatically(const QString &room);
    void onAutoJoinRefused(const QString &refusedRoom);
    void restartUdp();
    void retryUdp();
    void onJoinRoomResult(bool success, const QString &room);
    void runAudio();
    void onRoomKeyReceived(const QString &key);
    void onPanelLeave();
    void forgetRoom();
    void onKicked(const QString &reason);
    void onBanned(const QString &reason);
    void onClientError(const QString &error);
    void refreshReadiness();

    // MainWindowRelay.cpp: carrier, keying, mutes, audio in and out
    void onCosChanged(bool active);
    void startTransmission();
    void stopTransmission();
    void onAudioEncoded(const QByteArray &payload);
    void onUdpAudioReceived(const QByteArray &payload);
    void onTcpAudioReceived(const QByteArray &payload, uint userId);
    void onRoomUsersReceived(const QList<QVariantMap> &users);
    void applyKeying(bool remoteTalks);
    void onMicMuteToggled(bool muted);
    void onSpeakerMuteToggled(bool muted);
    void markOwnMutes();
    void onAdminMuted(bool muted, const QString &reason);

    // MainWindowTools.cpp: theme, user actions, records for the panels
    void showTheme(bool dark);
    void onPingUpdated(float latencyMs);
    void onLicenseWarning(const QString &message);
    void endOldPermitWarning();
    void onUserAction(const QString &action, const QString &callsign, int userId, const QString &room);
    void muteUser(const QString &callsign, int userId, bool muted);
    void requestUserInfo(const QString &callsign);
    void moveUser(const QString &callsign, int userId, const QString &room);
    void onUserInfoReceived(const QVariantMap &info);
    void onServerInfo(const QVariantMap &info);
    void onAudioQuality(const QVariantMap &quality);
    void onGatewayInfo(const QVariantMap &info);
    void onAllUsers(const QList<QVariantMap> &users);
    void onUserProfile(const QVariantMap &profile);
    void onAdminNotification(const QString &type, const QString &message);

    // MainWindowDialogs.cpp: the dialogs of the menus
    void applySettings(const Settings &settings);
    [[nodiscard]] QVariantMap ownProfile() const;
    void updateProfile(const Commands::OwnProfile &profile);
    void requestPasswordChange(const QString &oldPassword, const QString &newPassword);
    void onPasswordChanged(bool success, const QString &message);
    void forgetPasswordRequest();
    void onSerialConfigured(const QString &port);
    void openWebPage(const QString &path);

    const Endpoints &m_endpoints;
    Prompts &m_prompts;

    TcpClient *m_client = nullptr;
    UdpAudio *m_udp = nullptr;
    AudioEngine *m_engine = nullptr;
    SerialManager *m_serial = nullptr;
    RoomPanel *m_roomPanel = nullptr;
    ControlPanel *m_controlPanel = nullptr;
    MainActions *m_actions = nullptr;
    UpdateCheck *m_updateCheck = nullptr;
    QLabel *m_pingLabel = nullptr;
    QLabel *m_audioErrorLabel = nullptr;

    QTimer *m_reconnectTimer = nullptr;    ///< attempts, once armed
    QTimer *m_reconnectArmTimer = nullptr; ///< the pause between a loss and the arming
    QTimer *m_udpRetryTimer = nullptr;
    QTimer *m_keepaliveTimer = nullptr; ///< made when UDP is first ready

    QString m_serverAddress;                         ///< the host of the present control connection
    QString m_autoJoinRoom;                          ///< of the automatic join that is not answered yet; empty: none
    HwidRequests *m_hwidRequests = nullptr;          ///< of this session, for a panel that is opened later
    QPointer<AdminPanel> m_adminPanel;               ///< while it is open
    QPointer<ChangePasswordDialog> m_passwordDialog; ///< while it is there
    QString m_requestedPassword; ///< the new one that the server was asked to take; empty: no answer is due
    QVariantMap m_serverInfo;    ///< as the server last told it on this connection
    QVariantMap m_ownProfile;    ///< the own account as the server last told it; empty before
    QString m_infoRequest;       ///< callsign whose record was asked for
    int m_wrongPasswords = 0;
    bool m_retryPromptOpen = false;
    bool m_permitWarned = false; ///< by the login that is about to succeed
    bool m_udpFailed = false;
    bool m_transmitting = false; ///< TX_START was sent, and since then no TX_STOP and the carrier has not fallen
    bool m_radioKeyed = false;   ///< keyed for audio of the room
};
