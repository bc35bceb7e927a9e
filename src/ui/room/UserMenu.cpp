#include "ui/room/UserMenu.h"

#include "ui/ElidedLabel.h"

namespace {

constexpr int kMostCharacters = 300; // measured at most
constexpr int kMostTextWidth = 320;  // logical pixels

} // namespace

UserMenu::UserMenu(const Station &station, bool isAdmin, const QStringList &rooms, QWidget *parent)
    : QMenu(parent)
    , m_station(station)
{
    setStyleSheet(QStringLiteral("QMenu { padding: 4px; } QMenu::item { padding: 8px 20px; }"));
    addTitle();
    addSeparator();
    if (m_station.isSelf)
        addOwnChoices(rooms);
    else if (isAdmin)
        addAdminChoices(rooms);
    else
        addAction(QStringLiteral("Admin actions only"))->setEnabled(false);
}

void UserMenu::addTitle()
{
    const QString own = m_station.isSelf ? QStringLiteral(" (You)") : QString();
    QAction *title = addAction(entryText(m_station.callsign) + own);
    title->setEnabled(false);
    title->setFont(QFont(QStringLiteral("Segoe UI"), 10, QFont::Bold));
}

/// The two mutes never show what is muted now: each choice asks for the other state, whatever it is.
void UserMenu::addOwnChoices(const QStringList &rooms)
{
    addChoice(QStringLiteral("Mute Microphone"), QStringLiteral("self_mute_mic"))->setCheckable(true);
    addChoice(QStringLiteral("Mute Speaker"), QStringLiteral("self_mute_speaker"))->setCheckable(true);
    addSeparator();
    addRooms(rooms);
}

void UserMenu::addAdminChoices(const QStringList &rooms)
{
    if (m_station.isApproved)
        addChoice(QStringLiteral("Revoke Approval"), QStringLiteral("revoke"));
    else
        addChoice(QStringLiteral("Approve User"), QStringLiteral("approve"));
    addSeparator();
    if (m_station.isMicMuted)
        addChoice(QStringLiteral("Unmute User"), QStringLiteral("unmute"));
    else
        addChoice(QStringLiteral("Mute User"), QStringLiteral("mute"));
    addChoice(QStringLiteral("Kick User"), QStringLiteral("kick"));
    addChoice(QStringLiteral("Ban User"), QStringLiteral("ban"));
    addSeparator();
    addRooms(rooms);
    addSeparator();
    // Carries the callsign only: who handles it looks the station up by that, not by the id.
    connect(addAction(QStringLiteral("User Info")), &QAction::triggered, this,
            [this] { emit chosen(QStringLiteral("info"), m_station.callsign, 0, {}); });
}

void UserMenu::addRooms(const QStringList &rooms)
{
    QMenu *move = addMenu(QStringLiteral("Move to Room"));
    for (const QString &room : rooms) {
        connect(move->addAction(entryText(room)), &QAction::triggered, this,
                [this, room] { emit chosen(QStringLiteral("move"), m_station.callsign, m_station.userId, room); });
    }
}

QAction *UserMenu::addChoice(const QString &text, const QString &action)
{
    QAction *choice = addAction(text);
    connect(choice, &QAction::triggered, this,
            [this, action] { emit chosen(action, m_station.callsign, m_station.userId, {}); });
    return choice;
}

QString UserMenu::entryText(const QString &text) const
{
    const QString line = ElidedLabel::oneLine(text.left(kMostCharacters));
    QString shown = fontMetrics().elidedText(line, Qt::ElideRight, kMostTextWidth);
    shown.replace(QLatin1Char('&'), QLatin1String("&&"));
    return shown;
}
