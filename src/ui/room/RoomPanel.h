#pragma once

#include <QList>
#include <QMap>
#include <QStringList>
#include <QVariantMap>
#include <QWidget>

class QComboBox;
class QHBoxLayout;
class QLabel;
class QListWidgetItem;
class QPushButton;
class StationList;
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
    /// Shows exactly these room user records, in this order, as if every row were made anew. Of records with the same
    /// callsign the last one stays; of a list no room can have (more than 1000 stations) only the beginning. A station
    /// shows as muted when its record says so or a mute was set with setUserMuted().
    void setUsers(const QList<QVariantMap> &users, const QString &ownCallsign);
    /// Empties the list. The mutes set with setUserMuted() are kept.
    void clearUsers();
    /// What was set with setUserMuted(), also a lifted mute, wins over @p muted. Does nothing for a station that is not
    /// listed.
    void updateUserState(const QString &callsign, bool transmitting, bool muted, bool approved);
    /// Remembered for the whole run, also for a station that is not listed yet.
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
    /// Connected to nothing: a double click on a station is no request.
    void onUserDoubleClicked(QListWidgetItem *item);

private:
    [[nodiscard]] QHBoxLayout *createSelectorRow();
    void createStatusLabel();
    [[nodiscard]] bool hasRooms() const;

    QLabel *m_title = nullptr;
    QComboBox *m_selector = nullptr;
    QPushButton *m_joinButton = nullptr;
    QPushButton *m_leaveButton = nullptr;
    QLabel *m_status = nullptr;
    QLabel *m_header = nullptr;
    StationList *m_list = nullptr;
    QString m_currentRoom;
    QMap<QString, bool> m_savedMuteStates; ///< by callsign; outlives every rebuild of the list
    bool m_isAdmin = false;
};
