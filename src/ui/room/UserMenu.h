#pragma once

#include <QMenu>
#include <QStringList>

/// What can be done with one station. Works on copies, so that the row may go while the menu is open; carries nothing
/// out, each choice is one signal.
class UserMenu final : public QMenu
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UserMenu)

public:
    struct Station
    {
        QString callsign;
        int userId = 0;
        bool isSelf = false;
        bool isApproved = false;
        bool isMicMuted = false;
    };

    /// @p rooms are those that the station can be moved to.
    UserMenu(const Station &station, bool isAdmin, const QStringList &rooms, QWidget *parent = nullptr);

signals:
    void chosen(const QString &action, const QString &callsign, int userId, const QString &room);

private:
    void addTitle();
    void addOwnChoices(const QStringList &rooms);
    void addAdminChoices(const QStringList &rooms);
    void addRooms(const QStringList &rooms);
    QAction *addChoice(const QString &text, const QString &action);
    /// A text from the server as an entry's text: one line, of bounded width, its "&" no shortcut.
    [[nodiscard]] QString entryText(const QString &text) const;

    const Station m_station;
};
