#include "ui/room/RoomPanel.h"

#include "ui/Theme.h"
#include "ui/room/StationList.h"
#include "ui/room/UserMenu.h"
#include "ui/room/UserWidget.h"

#include <QComboBox>
#include <QDebug>
#include <QHBoxLayout>
#include <QHash>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int kSpacing = 4;
constexpr int kControlHeight = 30;
constexpr int kStatusHeight = 36;
constexpr int kMostStatusHeight = 96; // four lines; a longer room name is cut
constexpr int kShortestSelector = 10; // characters
constexpr int kMostStations = 1000;

QString noRooms()
{
    return QStringLiteral("No rooms available");
}

QLabel *addBar(const QString &text, const QString &objectName, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setObjectName(objectName);
    label->setAlignment(Qt::AlignCenter);
    return label;
}

QString buttonStyle(const char *role)
{
    return QStringLiteral("QPushButton { background-color: %1; color: @onMeaning; border: 2px solid %1; "
                          "border-radius: 4px; padding: 2px 10px; font-weight: bold; } "
                          "QPushButton:hover { border-color: @onMeaning; } "
                          "QPushButton:focus { border-color: @text; } "
                          "QPushButton:disabled { background-color: @raised; color: @disabled; "
                          "border-color: @border; }")
        .arg(QLatin1String(role));
}

} // namespace

RoomPanel::RoomPanel(QWidget *parent)
    : QWidget(parent)
{
    Theme::initResources();
    auto *layout = new QVBoxLayout(this);
    layout->setSpacing(kSpacing);
    layout->setContentsMargins(kSpacing, kSpacing, kSpacing, kSpacing);
    m_title = addBar(QStringLiteral("ROOMS"), QStringLiteral("roomsTitle"), this);
    layout->addWidget(m_title);
    layout->addLayout(createSelectorRow());
    createStatusLabel();
    layout->addWidget(m_status);
    m_header = addBar(QStringLiteral("RF-Gateway Units"), QStringLiteral("usersHeader"), this);
    layout->addWidget(m_header);
    m_list = new StationList(this);
    m_list->setObjectName(QStringLiteral("userList"));
    m_list->setAccessibleName(m_header->text());
    layout->addWidget(m_list, 1);
    connect(m_list, &QListWidget::customContextMenuRequested, this, &RoomPanel::onUserContextMenu);
    setCurrentRoom({});
    applyTheme(false);
}

QHBoxLayout *RoomPanel::createSelectorRow()
{
    m_selector = new QComboBox(this);
    m_selector->setObjectName(QStringLiteral("roomSelector"));
    m_selector->setAccessibleName(m_title->text());
    m_selector->setMinimumHeight(kControlHeight);
    m_selector->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_selector->setMinimumContentsLength(kShortestSelector);
    m_joinButton = new QPushButton(QStringLiteral("Join"), this);
    m_leaveButton = new QPushButton(QStringLiteral("Leave"), this);
    m_joinButton->setObjectName(QStringLiteral("joinButton"));
    m_leaveButton->setObjectName(QStringLiteral("leaveButton"));
    auto *row = new QHBoxLayout;
    row->addWidget(m_selector, 3);
    for (QPushButton *button : {m_joinButton, m_leaveButton}) {
        button->setMinimumHeight(kControlHeight);
        button->setEnabled(false);
        row->addWidget(button, 1);
    }
    connect(m_joinButton, &QPushButton::clicked, this, &RoomPanel::onJoinClicked);
    connect(m_leaveButton, &QPushButton::clicked, this, &RoomPanel::onLeaveClicked);
    return row;
}

void RoomPanel::createStatusLabel()
{
    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("roomStatus"));
    m_status->setTextFormat(Qt::PlainText);
    m_status->setWordWrap(true);
    m_status->setAlignment(Qt::AlignCenter);
    m_status->setMinimumHeight(kStatusHeight);
    m_status->setMaximumHeight(kMostStatusHeight);
    m_status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // a long name must not widen the panel
}

QStringList RoomPanel::availableRooms() const
{
    QStringList rooms;
    for (int i = 0; i < m_selector->count(); ++i) {
        if (m_selector->itemText(i) != noRooms())
            rooms += m_selector->itemText(i);
    }
    return rooms;
}

QString RoomPanel::currentRoom() const
{
    return m_currentRoom;
}

bool RoomPanel::isAdmin() const
{
    return m_isAdmin;
}

UserWidget *RoomPanel::userWidget(const QString &callsign) const
{
    return m_list->userWidget(callsign);
}

void RoomPanel::setAdmin(bool isAdmin)
{
    m_isAdmin = isAdmin;
}

void RoomPanel::setRooms(const QStringList &rooms)
{
    m_selector->clear();
    m_selector->addItems(rooms.isEmpty() ? QStringList{noRooms()} : rooms);
    m_joinButton->setEnabled(!rooms.isEmpty());
}

void RoomPanel::setCurrentRoom(const QString &room)
{
    m_currentRoom = room;
    const bool joined = !room.isEmpty();
    m_status->setText(joined ? QStringLiteral("Currently joining the room : ") + room
                             : QStringLiteral("Belum bergabung di room"));
    Theme::restyle(*m_status, joined ? QStringLiteral("background-color: #012B61; color: #FFFFFF; font-size: 14px; "
                                                      "font-weight: bold; padding: 4px; border-radius: 4px;")
                                     : QStringLiteral("background-color: #F44336; color: #FFFFFF; font-size: 13px; "
                                                      "font-weight: bold; padding: 4px; border-radius: 4px;"));
    m_joinButton->setEnabled(!joined && hasRooms());
    m_leaveButton->setEnabled(joined);
}

bool RoomPanel::hasRooms() const
{
    return m_selector->count() > 0 && m_selector->itemText(0) != noRooms();
}

void RoomPanel::setUsers(const QList<QVariantMap> &users, const QString &ownCallsign)
{
    const auto callsignOf = [](const QVariantMap &user) { return user.value(QStringLiteral("callsign")).toString(); };
    QHash<QString, int> lastOf;
    const int considered = std::min(users.size(), kMostStations);
    if (considered < users.size())
        qDebug() << "[RoomPanel] User list cut to" << considered << "of" << users.size();
    for (int i = 0; i < considered; ++i)
        lastOf.insert(callsignOf(users.at(i)), i);

    QVector<StationList::Station> stations;
    for (int i = 0; i < considered; ++i) {
        const QString callsign = callsignOf(users.at(i));
        if (lastOf.value(callsign) != i)
            continue;
        const QString name = users.at(i).value(QStringLiteral("name")).toString();
        const bool isSelf = !ownCallsign.isEmpty() && callsign == ownCallsign;
        const int userId = users.at(i).value(QStringLiteral("user_id")).toInt();
        stations += {callsign, name.isEmpty() ? callsign : name, userId, isSelf};
    }
    m_list->setStations(stations);
    for (int i = 0; i < considered; ++i) {
        const QVariantMap &user = users.at(i);
        const QString callsign = callsignOf(user);
        if (lastOf.value(callsign) != i)
            continue;
        const bool transmitting = user.value(QStringLiteral("is_transmitting")).toBool();
        const bool muted = user.value(QStringLiteral("is_muted")).toBool();
        const bool approved = user.value(QStringLiteral("approved")).toBool();
        updateUserState(callsign, transmitting, muted, approved);
        // A mute that was lifted here may have been set again by another administrator.
        if (muted)
            m_list->setState(callsign, transmitting, true, approved);
    }
}

void RoomPanel::clearUsers()
{
    m_list->clearStations();
}

void RoomPanel::updateUserState(const QString &callsign, bool transmitting, bool muted, bool approved)
{
    m_list->setState(callsign, transmitting, m_savedMuteStates.value(callsign, muted), approved);
}

void RoomPanel::setUserMuted(const QString &callsign, bool muted)
{
    if (UserWidget *widget = m_list->userWidget(callsign))
        widget->setMicMuted(muted);
    m_savedMuteStates.insert(callsign, muted);
    qDebug().noquote() << "[RoomPanel] Mute state saved:" << callsign << muted;
}

void RoomPanel::applyTheme(bool dark)
{
    const QString bar = QStringLiteral("background-color: @title; color: @titleText; font-weight: bold; "
                                       "padding: 6px; border-radius: 4px;");
    Theme::restyle(*m_title, Theme::filled(bar, dark));
    Theme::restyle(*m_header, Theme::filled(bar, dark));
    Theme::restyle(*m_selector,
                   Theme::filled(QStringLiteral("QComboBox { background-color: @field; color: @text; }"), dark));
    Theme::restyle(*m_joinButton, Theme::filled(buttonStyle("@good"), dark));
    Theme::restyle(*m_leaveButton, Theme::filled(buttonStyle("@danger"), dark));
    // A row's labels do not know whether the item under them is selected, so the text's colour suits both grounds and
    // the icons bring their own. A transmitting row is pale in both themes and needs dark text in both; the margin lets
    // the item's own ground and the selection be seen round it.
    Theme::restyle(
        *m_list,
        Theme::filled(
            QStringLiteral("QListWidget { background-color: @field; alternate-background-color: @alternate; } "
                           "QListWidget::item:selected { background-color: @selection; } "
                           "UserWidget { margin: 2px; border-radius: 3px; } "
                           "UserWidget QLabel { color: @selectionText; background-color: @field; border-radius: 4px; } "
                           "UserWidget ElidedLabel { background-color: transparent; } "
                           "UserWidget[transmitting=\"true\"] QLabel { color: #212121; }"),
            dark));
}

void RoomPanel::onJoinClicked()
{
    const QString room = m_selector->currentText();
    if (!room.isEmpty() && room != noRooms())
        emit joinRoom(room);
}

void RoomPanel::onLeaveClicked()
{
    m_joinButton->setEnabled(true); // at once: joining again need not wait for the server's answer
    m_leaveButton->setEnabled(false);
    emit leaveRoom();
}

void RoomPanel::onUserContextMenu(const QPoint &pos)
{
    const QListWidgetItem *item = m_list->itemAt(pos);
    if (!item) {
        qDebug() << "[RoomPanel] No item at position";
        return;
    }
    const UserWidget *widget = m_list->userWidget(item);
    if (!widget) {
        qDebug() << "[RoomPanel] No UserWidget";
        return;
    }
    QStringList rooms = availableRooms();
    rooms.removeAll(m_currentRoom);
    const UserMenu::Station station{widget->callsign(), widget->userId(), widget->isSelf(), widget->isApproved(),
                                    widget->isMicMuted()};
    // The event loop runs on under the menu: the row may go meanwhile, and at the program's end so may the panel.
    const QPointer<UserMenu> menu = new UserMenu(station, m_isAdmin, rooms, this);
    connect(menu, &UserMenu::chosen, this, &RoomPanel::userAction);
    menu->exec(m_list->viewport()->mapToGlobal(pos));
    delete menu;
}

void RoomPanel::onUserDoubleClicked(QListWidgetItem *) {}
