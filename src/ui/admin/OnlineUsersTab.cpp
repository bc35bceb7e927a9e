#include "ui/admin/OnlineUsersTab.h"

#include "ui/admin/EmptyState.h"
#include "ui/admin/KeyboardChoice.h"
#include "ui/admin/OnlineUserModel.h"
#include "ui/admin/ShownText.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTableView>
#include <QVBoxLayout>

namespace {

constexpr int kLongestSearch = 100;                   // characters
constexpr int kColumnWidths[] = {120, 240, 200, 100}; // logical pixels; the last column takes the rest

QString totalText(int users)
{
    return QStringLiteral("Total: %1 users online").arg(users);
}

} // namespace

OnlineUsersTab::OnlineUsersTab(QWidget *parent)
    : QWidget(parent)
    , m_model(new OnlineUserModel(this))
    , m_filter(new OnlineUserFilter(this))
    , m_table(new QTableView(this))
    , m_total(new QLabel(totalText(0), this))
{
    setObjectName(QStringLiteral("onlineUsersTab"));
    m_filter->setSourceModel(m_model);
    m_total->setObjectName(QStringLiteral("onlineTotalLabel"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(createFilters());
    layout->addWidget(m_table);
    layout->addWidget(m_total);
    createTable();
}

QWidget *OnlineUsersTab::createFilters()
{
    auto *bar = new QWidget(this);
    m_search = new QLineEdit(bar);
    m_search->setObjectName(QStringLiteral("onlineSearchEdit"));
    m_search->setPlaceholderText(QStringLiteral("Search callsign or name..."));
    m_search->setAccessibleName(m_search->placeholderText());
    m_search->setMaxLength(kLongestSearch);
    m_search->setClearButtonEnabled(true);
    m_room = new QComboBox(bar);
    m_room->setObjectName(QStringLiteral("onlineRoomFilter"));
    m_room->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_room->setMinimumContentsLength(20);
    m_room->addItem(QStringLiteral("All Rooms"));
    auto *label = new QLabel(QStringLiteral("Room:"), bar);
    label->setBuddy(m_room);
    auto *row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_search, 1);
    row->addWidget(label);
    row->addWidget(m_room);
    connect(m_search, &QLineEdit::textChanged, this, &OnlineUsersTab::applyFilters);
    connect(m_room, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &OnlineUsersTab::applyFilters);
    return bar;
}

void OnlineUsersTab::createTable()
{
    m_table->setObjectName(QStringLiteral("onlineUsersTable"));
    m_table->setAccessibleName(QStringLiteral("Online Users"));
    m_table->setModel(m_filter);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setTabKeyNavigation(false); // Tab goes on to the next control
    m_table->setAlternatingRowColors(true);
    m_table->setWordWrap(false);
    m_table->setShowGrid(false);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->horizontalHeader()->setHighlightSections(false);
    for (int column = 0; column < int(std::size(kColumnWidths)); ++column)
        m_table->setColumnWidth(column, kColumnWidths[column]);
    m_table->setSortingEnabled(true);
    m_table->sortByColumn(OnlineUserModel::Callsign, Qt::AscendingOrder);
    new KeyboardChoice(m_table);
    showEmptyText();
}

void OnlineUsersTab::showUsers(const QList<QVariantMap> &users)
{
    const int selected = m_model->userId(m_filter->mapToSource(m_table->currentIndex()).row());
    const int scrolled = m_table->verticalScrollBar()->value();
    m_model->setUsers(users);
    m_total->setText(totalText(users.size()));
    showEmptyText();
    const int row = selected > 0 ? m_model->rowOf(selected) : -1;
    const QModelIndex index = m_filter->mapFromSource(m_model->index(row, OnlineUserModel::Callsign));
    if (index.isValid())
        m_table->setCurrentIndex(index);
    else
        m_table->doItemsLayout(); // the scroll bar's range
    m_table->verticalScrollBar()->setValue(scrolled);
}

void OnlineUsersTab::showAccounts(const QList<QVariantMap> &accounts)
{
    m_model->setAccounts(accounts);
}

QString OnlineUsersTab::chosenRoom() const
{
    return m_room->currentData().toString(); // the first entry has none
}

void OnlineUsersTab::showRooms(const QStringList &rooms)
{
    const QString chosen = chosenRoom();
    {
        const QSignalBlocker silent(m_room);
        while (m_room->count() > 1)
            m_room->removeItem(m_room->count() - 1);
        for (const QString &room : rooms)
            m_room->addItem(shownText(room), room);
        // A room may bear the name of the first entry, which is not one of them.
        m_room->setCurrentIndex(chosen.isNull() ? 0 : rooms.indexOf(chosen) + 1);
    }
    applyFilters();
}

void OnlineUsersTab::applyFilters()
{
    m_filter->setSearch(m_search->text().trimmed());
    m_filter->setRoom(chosenRoom());
    showEmptyText();
}

void OnlineUsersTab::showEmptyText()
{
    EmptyState::show(m_table, m_model->rowCount() == 0 ? QStringLiteral("No users online.")
                                                       : QStringLiteral("No user matches the search."));
}
