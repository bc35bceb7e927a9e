#pragma once

#include "gateway/ConnectionState.h"

#include <QObject>
#include <QStringList>

class QAction;
class QMainWindow;
class QMenu;

/// Every action of the main window, its menus and its toolbar. apply() is the only place that enables, disables, shows
/// or hides for the state of the connection. Owned by the window; the window connects the actions.
class MainActions final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MainActions)

public:
    explicit MainActions(QMainWindow *window);

    void apply(ConnectionState state);
    void setAdmin(bool isAdmin);
    /// The entries of "Move to Room".
    void setRooms(const QStringList &rooms);
    void showConnected(bool connected);
    void showCarrier(bool active);
    void showCarrierStoppedByMute();
    void showMicMuted(bool muted);
    void showSpeakerMuted(bool muted);
    /// The port that was opened at start, or an empty name for none.
    void showSerialPort(const QString &portName);
    /// The port that was chosen for the next opening.
    void showSerialConfigured(const QString &portName);
    void showTheme(bool dark);

    QAction *connectToServer = nullptr;
    QAction *disconnectFromServer = nullptr;
    QAction *settings = nullptr;
    /// Follows the account's rights.
    QAction *adminPanel = nullptr;
    QAction *exit = nullptr;
    QAction *darkTheme = nullptr;
    QAction *viewProfile = nullptr;
    QAction *editProfile = nullptr;
    QAction *changePassword = nullptr;
    QAction *resetDevice = nullptr;
    QAction *joinRoom = nullptr;
    QAction *leaveRoom = nullptr;
    QAction *muteMicrophone = nullptr;
    QAction *muteSpeaker = nullptr;
    QMenu *moveToRoom = nullptr;
    QAction *serialConfiguration = nullptr;
    QAction *about = nullptr;
    QAction *checkForUpdates = nullptr;
    QAction *documentation = nullptr;
    QAction *tutorial = nullptr;
    QAction *openLogFolder = nullptr;

    QAction *connectionIndicator = nullptr;
    QAction *serialIndicator = nullptr;
    QAction *pttIndicator = nullptr;
    QAction *toolbarMicrophone = nullptr;
    QAction *toolbarSpeaker = nullptr;
    QAction *toolbarJoin = nullptr;
    QAction *toolbarLeave = nullptr;
    QAction *toolbarSettings = nullptr;

signals:
    /// A room of the "Move to Room" menu was chosen.
    void roomChosen(const QString &room);

private:
    void createFileMenu(QMainWindow *window);
    void createViewMenu(QMainWindow *window);
    void createProfileMenu(QMainWindow *window);
    void createRoomMenu(QMainWindow *window);
    void createSerialMenu(QMainWindow *window);
    void createHelpMenu(QMainWindow *window);
    void createToolbar(QMainWindow *window);
};
