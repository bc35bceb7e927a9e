#pragma once

#include <QList>
#include <QMap>
#include <QStringList>
#include <QVariantMap>
#include <QWidget>

class QListWidgetItem;
class UserWidget;

/// The room selector and the stations of the room. Owns no network state: the main window pushes into it.
class RoomPanel final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RoomPanel)

public:
    explicit RoomPanel(QWidget *parent = nullptr);

    [[nodiscard]] QStringList availableRooms() const;
    [[nodiscard]] QString currentRoom() const; ///< empty: in no room
    [[nodiscard]] bool isAdmin() const;
    /// The row of a station, or nullptr. Valid until the next change of the list.
    [[nodiscard]] UserWidget *userWidget(const QString &callsign) const;

    void setAdmin(bool isAdmin);
    void setRooms(const QStringList &rooms);
    void setCurrentRoom(const QString &room);
    /// Shows exactly these room user records, in this order, as if every row were made anew.
    void setUsers(const QList<QVariantMap> &users, const QString &ownCallsign);
    void clearUsers();
    void updateUserState(const QString &callsign, bool transmitting, bool muted, bool approved);
    void setUserMuted(const QString &callsign, bool muted);
    void applyTheme(bool dark);

signals:
    void joinRoom(const QString &room);
    void leaveRoom();
    void userAction(const QString &action, const QString &callsign, int userId, const QString &room = {});

private slots:
    void onJoinClicked();
    void onLeaveClicked();
    void onUserContextMenu(const QPoint &pos);
    void onUserDoubleClicked(QListWidgetItem *item);
};
