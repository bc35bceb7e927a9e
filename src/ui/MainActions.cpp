#include "ui/MainActions.h"

#include <QAction>
#include <QIcon>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

#include <initializer_list>

namespace {

QIcon icon(const char *name)
{
    return QIcon(QLatin1String(":/icons/") + QLatin1String(name));
}

struct MenuItem
{
    const char *objectName;
    const char *text;
    const char *shortcut;
    const char *statusTip;
};

QAction *addItem(QMenu *menu, const MenuItem &item)
{
    QAction *action = menu->addAction(QLatin1String(item.text));
    action->setObjectName(QLatin1String(item.objectName));
    action->setShortcut(QKeySequence(QLatin1String(item.shortcut)));
    action->setStatusTip(QLatin1String(item.statusTip));
    return action;
}

QAction *addTool(QToolBar *bar, const char *objectName, const char *text, const char *iconName, const char *toolTip)
{
    QAction *action = bar->addAction(icon(iconName), QLatin1String(text));
    action->setObjectName(QLatin1String(objectName));
    action->setToolTip(QLatin1String(toolTip));
    return action;
}

void enable(std::initializer_list<QAction *> actions, Change change)
{
    if (change == Change::Keep)
        return;
    for (QAction *action : actions)
        action->setEnabled(change == Change::Yes);
}

void show(QAction *action, Change change)
{
    if (change != Change::Keep)
        action->setVisible(change == Change::Yes);
}

} // namespace

MainActions::MainActions(QMainWindow *window)
    : QObject(window)
{
    createFileMenu(window);
    createViewMenu(window);
    createProfileMenu(window);
    createRoomMenu(window);
    createSerialMenu(window);
    createHelpMenu(window);
    createToolbar(window);
    apply(ConnectionState::Disconnected);
    setAdmin(false);
}

void MainActions::createFileMenu(QMainWindow *window)
{
    QMenu *file = window->menuBar()->addMenu(QStringLiteral("&File"));
    connectToServer =
        addItem(file, {"connectToServer", "&Connect to Server", "Ctrl+Shift+C", "Connect to eVOX SINAR server"});
    disconnectFromServer =
        addItem(file, {"disconnectFromServer", "&Disconnect from Server", "Ctrl+Shift+D", "Disconnect from server"});
    settings = addItem(file, {"settings", "&Settings", "Ctrl+,", "Configure application settings"});
    adminPanel = addItem(file, {"adminPanel", "&Admin Panel", "Ctrl+Shift+A", "Open admin panel (admin only)"});
    file->addSeparator();
    exit = addItem(file, {"exit", "E&xit", "Alt+F4", "Exit application"});
}

void MainActions::createViewMenu(QMainWindow *window)
{
    QMenu *view = window->menuBar()->addMenu(QStringLiteral("&View"));
    darkTheme = addItem(view, {"darkTheme", "&Dark Theme", "", "Toggle between light and dark theme"});
    darkTheme->setCheckable(true);
}

void MainActions::createProfileMenu(QMainWindow *window)
{
    QMenu *profile = window->menuBar()->addMenu(QStringLiteral("&Profile"));
    viewProfile = addItem(profile, {"viewProfile", "&View Profile", "", "View your profile information"});
    editProfile = addItem(profile, {"editProfile", "&Edit Profile", "", "Edit your profile"});
    changePassword = addItem(profile, {"changePassword", "&Change Password", "", "Change your password"});
    profile->addSeparator();
    resetDevice =
        addItem(profile, {"resetDevice", "&Reset HWID (Ganti Perangkat)", "", "Reset hardware ID for new device"});
}

void MainActions::createRoomMenu(QMainWindow *window)
{
    QMenu *room = window->menuBar()->addMenu(QStringLiteral("&Room"));
    joinRoom = addItem(room, {"joinRoom", "&Join Room", "Ctrl+J", "Join a room"});
    joinRoom->setIcon(icon("join_room"));
    leaveRoom = addItem(room, {"leaveRoom", "&Leave Room", "Ctrl+L", "Leave current room"});
    leaveRoom->setIcon(icon("leave_room"));
    room->addSeparator();
    muteMicrophone = addItem(room, {"muteMicrophone", "Mute &Microphone", "", ""});
    muteMicrophone->setCheckable(true);
    muteSpeaker = addItem(room, {"muteSpeaker", "Mute &Speaker", "", ""});
    muteSpeaker->setCheckable(true);
    room->addSeparator();
    moveToRoom = room->addMenu(icon("move_room"), QStringLiteral("&Move to Room"));
    moveToRoom->setObjectName(QStringLiteral("moveToRoom"));
}

void MainActions::createSerialMenu(QMainWindow *window)
{
    QMenu *serial = window->menuBar()->addMenu(QStringLiteral("&Serial"));
    serialConfiguration = addItem(
        serial, {"serialConfiguration", "&Serial Configuration", "Ctrl+Shift+P", "Configure serial port for PTT/COS"});
}

void MainActions::createHelpMenu(QMainWindow *window)
{
    QMenu *help = window->menuBar()->addMenu(QStringLiteral("&Help"));
    about = addItem(help, {"about", "&About e-VOX SINAR", "", "About this application"});
    checkForUpdates = addItem(help, {"checkForUpdates", "&Check for Updates", "", "Check for new version"});
    documentation = addItem(help, {"documentation", "&Documentation", "", "Open online documentation"});
    tutorial = addItem(help, {"tutorial", "&Tutorial", "", "Open online tutorial"});
    help->addSeparator();
    openLogFolder =
        addItem(help, {"openLogFolder", "Buka Folder &Log", "", "Buka folder berkas log untuk laporan masalah"});
}

void MainActions::createToolbar(QMainWindow *window)
{
    QToolBar *bar = window->addToolBar(QStringLiteral("Main Toolbar"));
    bar->setObjectName(QStringLiteral("mainToolbar"));
    bar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    bar->setMovable(false);
    bar->toggleViewAction()->setEnabled(false); // its context menu would hide it for good
    connectionIndicator = addTool(bar, "connectionIndicator", "Disconnected", "connection_off", "Connection Status");
    serialIndicator = addTool(bar, "serialIndicator", "Serial", "serial_off", "Serial Not Connected");
    serialIndicator->setEnabled(false);
    pttIndicator = addTool(bar, "pttIndicator", "PTT", "ptt_off", "PTT Inactive");
    bar->addSeparator();
    toolbarMicrophone = addTool(bar, "toolbarMicrophone", "MIC", "mic_on", "Mute Microphone");
    toolbarMicrophone->setCheckable(true);
    toolbarSpeaker = addTool(bar, "toolbarSpeaker", "SPK", "speaker_on", "Mute Speaker");
    toolbarSpeaker->setCheckable(true);
    bar->addSeparator();
    toolbarJoin = addTool(bar, "toolbarJoin", "JOIN", "join_room", "Join Room");
    toolbarLeave = addTool(bar, "toolbarLeave", "LEAVE", "leave_room", "Leave Room");
    bar->addSeparator();
    toolbarSettings = addTool(bar, "toolbarSettings", "Settings", "settings", "Settings");
}

void MainActions::apply(ConnectionState state)
{
    const ActionRules &rules = actionRules(state);
    enable({connectToServer}, rules.canConnect);
    enable({disconnectFromServer}, rules.canDisconnect);
    enable({joinRoom, toolbarJoin}, rules.canJoin);
    enable({leaveRoom, toolbarLeave}, rules.canLeave);
    show(toolbarJoin, rules.joinShown);
    show(toolbarLeave, rules.leaveShown);
    if (rules.liftsMutes) {
        toolbarMicrophone->setChecked(false);
        toolbarSpeaker->setChecked(false);
    }
    enable({muteMicrophone, muteSpeaker, toolbarMicrophone, toolbarSpeaker}, rules.canMute);
    enable({moveToRoom->menuAction()}, rules.canMove);
}

void MainActions::setAdmin(bool isAdmin)
{
    adminPanel->setEnabled(isAdmin);
}

void MainActions::setRooms(const QStringList &rooms)
{
    moveToRoom->clear();
    for (const QString &room : rooms) {
        QString label = room;
        label.replace(QLatin1Char('&'), QLatin1String("&&")); // a name, not a shortcut
        connect(moveToRoom->addAction(label), &QAction::triggered, this, [this, room] { emit roomChosen(room); });
    }
}

void MainActions::showConnected(bool connected)
{
    const QString text = connected ? QStringLiteral("Connected") : QStringLiteral("Disconnected");
    connectionIndicator->setIcon(icon(connected ? "connection_on" : "connection_off"));
    connectionIndicator->setText(text);
    connectionIndicator->setToolTip(text);
}

void MainActions::showCarrier(bool active)
{
    pttIndicator->setIcon(icon(active ? "ptt_on" : "ptt_off"));
    pttIndicator->setToolTip(active ? QStringLiteral("PTT Active - Transmitting") : QStringLiteral("PTT Inactive"));
}

void MainActions::showCarrierStoppedByMute()
{
    pttIndicator->setIcon(icon("ptt_off"));
    pttIndicator->setToolTip(QStringLiteral("PTT Inactive (Mic Muted)"));
}

void MainActions::showMicMuted(bool muted)
{
    toolbarMicrophone->setIcon(icon(muted ? "mic_off" : "mic_on"));
    toolbarMicrophone->setChecked(muted);
    muteMicrophone->setChecked(muted);
}

void MainActions::showSpeakerMuted(bool muted)
{
    toolbarSpeaker->setIcon(icon(muted ? "speaker_off" : "speaker_on"));
    toolbarSpeaker->setChecked(muted);
    muteSpeaker->setChecked(muted);
}

void MainActions::showSerialPort(const QString &portName)
{
    const bool open = !portName.isEmpty();
    serialIndicator->setIcon(icon(open ? "serial_on" : "serial_off"));
    serialIndicator->setToolTip(open ? QStringLiteral("Serial: ") + portName : QStringLiteral("Serial Not Configured"));
    serialIndicator->setEnabled(open);
}

void MainActions::showSerialConfigured(const QString &portName)
{
    serialIndicator->setIcon(icon("serial_on"));
    serialIndicator->setToolTip(QStringLiteral("Serial Configured: ") + portName);
    serialIndicator->setEnabled(true);
}

void MainActions::showTheme(bool dark)
{
    darkTheme->setChecked(dark);
    darkTheme->setText(dark ? QStringLiteral("&Light Theme") : QStringLiteral("&Dark Theme"));
}
