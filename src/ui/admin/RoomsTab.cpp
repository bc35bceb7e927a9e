#include "ui/admin/RoomsTab.h"

#include "net/protocol/Commands.h"
#include "ui/Prompts.h"
#include "ui/admin/EmptyState.h"
#include "ui/admin/KeyboardChoice.h"
#include "ui/admin/ShownText.h"
#include "ui/admin/ToldEdit.h"
#include "ui/setup/InputRules.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QScrollBar>
#include <QSet>
#include <QShortcut>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace {

constexpr int kProposedMaximum = 50; // users of a new room, and of one whose limit is not known
constexpr int kDetailsWidth = 360;   // logical pixels
constexpr int kItemSpacing = 2;      // logical pixels
constexpr int kNameRole = Qt::UserRole;

const QString kAddRoom = QStringLiteral("Add Room");
const QString kDeleteRoom = QStringLiteral("Delete Room");

/// Lists of rooms travel with "," or "|" between the names, a name between double quotes, and all on one line.
const QRegularExpression &nameRule()
{
    static const QRegularExpression rule(QStringLiteral("\\A[^\",|\\x{00}-\\x{1f}]*\\z"));
    return rule;
}

/// The operator's order of the rooms that are still there, and the new ones behind them.
QStringList merged(const QStringList &ordered, const QStringList &rooms)
{
    const QSet<QString> present(rooms.cbegin(), rooms.cend());
    const QSet<QString> known(ordered.cbegin(), ordered.cend());
    QStringList result;
    for (const QString &room : ordered) {
        if (present.contains(room))
            result.append(room);
    }
    for (const QString &room : rooms) {
        if (!known.contains(room))
            result.append(room);
    }
    return result;
}

/// The item's text may be cut.
QString nameOf(const QListWidgetItem &item)
{
    return item.data(kNameRole).toString();
}

QPushButton *createButton(const QString &text, const char *name, const char *meaning, QWidget *parent)
{
    auto *button = new QPushButton(text, parent);
    button->setObjectName(QLatin1String(name));
    button->setProperty("meaning", QLatin1String(meaning));
    return button;
}

} // namespace

RoomsTab::RoomsTab(Prompts &prompts, QWidget *parent)
    : QWidget(parent)
    , m_prompts(prompts)
{
    setObjectName(QStringLiteral("roomsTab"));
    auto *layout = new QHBoxLayout(this);
    layout->addWidget(createOrder(), 1);
    layout->addWidget(createDetails());
    connect(m_list, &QListWidget::itemSelectionChanged, this, &RoomsTab::showDetails);
    connect(m_list->model(), &QAbstractItemModel::rowsMoved, this, &RoomsTab::onOrderChanged);
    showDetails();
}

QWidget *RoomsTab::createOrder()
{
    auto *side = new QWidget(this);
    auto *hint = new QLabel(QStringLiteral("drag to reorder"), side);
    hint->setObjectName(QStringLiteral("reorderHint"));
    hint->setProperty("hint", true);
    hint->setStyleSheet(QStringLiteral("font-size: 10px; font-style: italic;"));
    hint->setToolTip(QStringLiteral("Alt+Up, Alt+Down"));
    m_list = new QListWidget(side);
    m_list->setObjectName(QStringLiteral("roomsList"));
    m_list->setAccessibleName(QStringLiteral("Rooms"));
    m_list->setAccessibleDescription(QStringLiteral("Alt+Up and Alt+Down move the selected room"));
    m_list->setSpacing(kItemSpacing);
    m_list->setDragDropMode(QAbstractItemView::InternalMove);
    m_list->setDefaultDropAction(Qt::MoveAction);
    EmptyState::show(m_list, QStringLiteral("No rooms."));
    new KeyboardChoice(m_list);
    const auto moveBy = [this](const char *keys, int by) {
        auto *shortcut = new QShortcut(QKeySequence(QLatin1String(keys)), m_list);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this, [this, by] { moveSelected(by); });
    };
    moveBy("Alt+Up", -1);
    moveBy("Alt+Down", 1);

    auto *add = createButton(kAddRoom, "addRoomButton", "good", side);
    m_delete = createButton(kDeleteRoom, "deleteRoomButton", "danger", side);
    auto *save = createButton(QStringLiteral("Save Room Order"), "saveRoomOrderButton", "accent", side);
    connect(add, &QPushButton::clicked, this, &RoomsTab::onAddRoom);
    connect(m_delete, &QPushButton::clicked, this, &RoomsTab::onDeleteRoom);
    connect(save, &QPushButton::clicked, this, &RoomsTab::onSaveRoomOrder);
    m_orderStatus = new QLabel(side);
    m_orderStatus->setObjectName(QStringLiteral("roomOrderStatus"));
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(add);
    buttons->addWidget(m_delete);
    buttons->addWidget(save);
    buttons->addWidget(m_orderStatus, 1);
    auto *layout = new QVBoxLayout(side);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(hint);
    layout->addWidget(m_list);
    layout->addLayout(buttons);
    return side;
}

QWidget *RoomsTab::createDetails()
{
    auto *group = new QGroupBox(QStringLiteral("Room Details"), this);
    group->setObjectName(QStringLiteral("roomDetailsGroup"));
    group->setFixedWidth(kDetailsWidth);
    m_hint = new QLabel(QStringLiteral("Select a room to edit"), group);
    m_hint->setObjectName(QStringLiteral("roomHint"));
    m_hint->setProperty("hint", true);
    m_fields = new QWidget(group);
    m_name = new ToldEdit(InputRules::kLongestText, m_fields);
    m_name->setObjectName(QStringLiteral("roomNameEdit"));
    m_name->setValidator(new QRegularExpressionValidator(nameRule(), m_name));
    m_maximum = new QSpinBox(m_fields);
    m_maximum->setObjectName(QStringLiteral("roomMaximumSpin"));
    m_maximum->setSpecialValueText(QStringLiteral("No limit"));
    m_limitHint =
        new QLabel(QStringLiteral("The server does not tell the present limit. Saving sets the one above."), m_fields);
    m_limitHint->setObjectName(QStringLiteral("roomLimitHint"));
    m_limitHint->setProperty("hint", true);
    m_limitHint->setWordWrap(true);
    auto *save = createButton(QStringLiteral("Save Changes"), "saveRoomButton", "accent", m_fields);
    connect(save, &QPushButton::clicked, this, &RoomsTab::onEditRoom);
    connect(m_name, &ToldEdit::returnPressed, this, &RoomsTab::onEditRoom);
    auto *form = new QFormLayout(m_fields);
    form->setContentsMargins(0, 0, 0, 0);
    form->addRow(QStringLiteral("Name:"), m_name);
    form->addRow(QStringLiteral("Max Users:"), m_maximum);
    form->addRow(QString(), m_limitHint);
    form->addRow(QString(), save);
    auto *layout = new QVBoxLayout(group);
    layout->addWidget(m_hint);
    layout->addWidget(m_fields);
    layout->addStretch();
    return group;
}

QStringList RoomsTab::rooms() const
{
    QStringList names;
    for (int row = 0; row < m_list->count(); ++row)
        names.append(nameOf(*m_list->item(row)));
    return names;
}

QString RoomsTab::selectedRoom() const
{
    const QListWidgetItem *item = m_list->selectedItems().value(0);
    return item ? nameOf(*item) : QString();
}

bool RoomsTab::isReordered() const
{
    return rooms() != m_saved || (!m_sent.isEmpty() && rooms() != m_sent);
}

void RoomsTab::showRooms(const QStringList &rooms)
{
    QStringList ordered = this->rooms();
    QString selected = selectedRoom();
    const Renaming renaming = std::exchange(m_renaming, {});
    const bool isRenamed =
        !rooms.contains(renaming.from) && rooms.contains(renaming.to) && !ordered.contains(renaming.to);
    if (isRenamed) {
        std::replace(ordered.begin(), ordered.end(), renaming.from, renaming.to);
        if (selected == renaming.from) {
            selected = renaming.to;
            m_edited = renaming.to; // with the limit that was saved: the server may tell none
            showLimits(m_limits);
        }
    }
    const bool wasReordered = isReordered();
    const bool isNew = rooms != m_saved;
    const bool isAsSent = !m_sent.isEmpty() && rooms == m_sent;
    m_sent.clear();
    m_saved = rooms;
    if (const QStringList shown = wasReordered ? merged(ordered, rooms) : rooms; shown != this->rooms())
        fill(shown, selected);
    if (isAsSent && !isReordered())
        showOrderSaved();
    else if (wasReordered || isNew)
        onOrderChanged();
}

void RoomsTab::fill(const QStringList &rooms, const QString &selected)
{
    const int scrolled = m_list->verticalScrollBar()->value();
    {
        const QSignalBlocker silent(m_list);
        m_list->clear();
        for (const QString &room : rooms) {
            auto *item = new QListWidgetItem(shownText(room), m_list);
            item->setData(kNameRole, room);
        }
        m_list->setCurrentRow(selected.isEmpty() ? -1 : rooms.indexOf(selected));
    }
    m_list->verticalScrollBar()->setValue(scrolled);
    showDetails();
}

void RoomsTab::showLimits(const RoomLimits::Map &limits)
{
    m_limits = limits;
    showLimitHint();
    const auto told = limits.constFind(m_edited);
    if (told == limits.cend())
        return;
    if (m_maximum->value() == m_shownMaximum)
        showMaximum(*told);
    m_shownMaximum = *told; // what was entered stays
}

void RoomsTab::onOrderChanged()
{
    m_orderStatus->setStyleSheet(QString());
    m_orderStatus->setText(isReordered() ? QStringLiteral("Room order not saved yet") : QString());
}

void RoomsTab::showOrderSaved()
{
    m_orderStatus->setStyleSheet(QStringLiteral("color: #4CAF50; font-weight: bold;"));
    m_orderStatus->setText(QStringLiteral("Room order saved!"));
}

void RoomsTab::moveSelected(int by)
{
    const int row = m_list->row(m_list->selectedItems().value(0));
    const int target = row + by;
    if (row < 0 || target < 0 || target >= m_list->count())
        return;
    m_list->model()->moveRow(QModelIndex(), row, QModelIndex(), by > 0 ? target + 1 : target);
    m_list->scrollToItem(m_list->item(target));
}

void RoomsTab::showDetails()
{
    const QString room = selectedRoom();
    m_hint->setVisible(room.isEmpty());
    m_fields->setVisible(!room.isEmpty());
    m_delete->setEnabled(!room.isEmpty());
    if (room == m_edited)
        return; // what was typed stays
    m_edited = room;
    m_name->tell(room);
    showMaximum(m_limits.value(room, kProposedMaximum));
    showLimitHint();
}

void RoomsTab::showMaximum(int users)
{
    m_maximum->setRange(0, std::max(users, kMostUsers)); // a larger one would be cut
    m_maximum->setValue(users);
    m_shownMaximum = users;
}

void RoomsTab::showLimitHint()
{
    m_limitHint->setVisible(!m_limits.contains(m_edited));
}

void RoomsTab::onAddRoom()
{
    const QPointer<RoomsTab> self(this);
    const QString name = m_prompts.text(kAddRoom, QStringLiteral("Room Name:")).value_or(QString()).trimmed();
    if (!self || name.isEmpty())
        return;
    if (name.size() > InputRules::kLongestText || !nameRule().match(name).hasMatch()) {
        m_prompts.warning(kAddRoom, QStringLiteral("A room name has at most 100 characters, none of them \" , or |"));
        return;
    }
    const auto maximum = m_prompts.number(kAddRoom, QStringLiteral("Max Users:"), kProposedMaximum, 0, kMostUsers);
    if (!self || !maximum)
        return;
    emit commandRequested(Commands::createRoom(name, *maximum));
    emit refreshRequested();
}

void RoomsTab::onDeleteRoom()
{
    const QString room = selectedRoom();
    if (room.isEmpty())
        return;
    const QPointer<RoomsTab> self(this);
    const bool confirmed = m_prompts.confirm(
        kDeleteRoom, QStringLiteral("Are you sure you want to delete room '%1'?").arg(shownText(room)));
    if (!self || !confirmed)
        return;
    emit commandRequested(Commands::deleteRoom(room));
    emit refreshRequested();
}

void RoomsTab::onEditRoom()
{
    const QString room = selectedRoom();
    const QString name = m_name->value();
    if (room.isEmpty() || name.isEmpty())
        return;
    m_renaming = {room, name};
    emit commandRequested(Commands::editRoom(room, name, m_maximum->value()));
    emit refreshRequested();
}

void RoomsTab::onSaveRoomOrder()
{
    m_sent = rooms();
    if (m_sent.isEmpty())
        return;
    emit commandRequested(Commands::setRoomOrder(m_sent));
    showOrderSaved();
}
