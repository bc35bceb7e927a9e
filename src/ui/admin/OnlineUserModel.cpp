#include "ui/admin/OnlineUserModel.h"

#include "ui/admin/ShownText.h"
#include "ui/admin/UserRecord.h"

#include <algorithm>

namespace {

constexpr const char *kHeaders[] = {"Callsign", "Name", "Room", "Status", "Muted"};
static_assert(std::size(kHeaders) == OnlineUserModel::ColumnCount);

QString textOf(const QVariantMap &record, const char *key)
{
    return record.value(QLatin1String(key)).toString();
}

std::optional<bool> mutedIn(const QVariantMap &record)
{
    if (!record.contains(QStringLiteral("is_muted")))
        return std::nullopt;
    return UserRecord::isMuted(record);
}

} // namespace

OnlineUserModel::OnlineUserModel(QObject *parent)
    : QAbstractTableModel(parent)
{
}

int OnlineUserModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_users.size();
}

int OnlineUserModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString OnlineUserModel::text(const User &user, int column) const
{
    switch (column) {
    case Callsign: return user.callsign;
    case Name: return user.name;
    case Room: return user.room;
    case Status: return QStringLiteral("Online"); // only who is, is listed
    default: return user.isMuted.value_or(m_muted.contains(user.id)) ? QStringLiteral("Yes") : QStringLiteral("-");
    }
}

QVariant OnlineUserModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_users.size() || (role != Qt::DisplayRole && role != kWholeTextRole))
        return {};
    const QString whole = text(m_users.at(index.row()), index.column());
    return role == kWholeTextRole ? whole : shownText(whole);
}

QVariant OnlineUserModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= ColumnCount)
        return {};
    return QString::fromLatin1(kHeaders[section]);
}

int OnlineUserModel::userId(int row) const
{
    return row >= 0 && row < m_users.size() ? m_users.at(row).id : 0;
}

int OnlineUserModel::rowOf(int userId) const
{
    const auto found =
        std::find_if(m_users.cbegin(), m_users.cend(), [userId](const User &user) { return user.id == userId; });
    return found == m_users.cend() ? -1 : static_cast<int>(found - m_users.cbegin());
}

void OnlineUserModel::setUsers(const QList<QVariantMap> &users)
{
    beginResetModel();
    m_users.clear();
    m_users.reserve(users.size());
    for (const QVariantMap &user : users)
        m_users.append({user.value(QStringLiteral("id")).toInt(), textOf(user, "callsign"), textOf(user, "name"),
                        textOf(user, "room"), mutedIn(user)});
    endResetModel();
}

void OnlineUserModel::setAccounts(const QList<QVariantMap> &accounts)
{
    m_muted.clear();
    for (const QVariantMap &account : accounts) {
        if (UserRecord::isMuted(account))
            m_muted.insert(UserRecord::id(account));
    }
    m_muted.remove(0); // records without an id
    if (!m_users.isEmpty())
        emit dataChanged(index(0, Muted), index(m_users.size() - 1, Muted));
}

OnlineUserFilter::OnlineUserFilter(QObject *parent)
    : QSortFilterProxyModel(parent)
{
    setSortCaseSensitivity(Qt::CaseInsensitive);
}

void OnlineUserFilter::setSearch(const QString &search)
{
    m_search = search;
    invalidateFilter();
}

void OnlineUserFilter::setRoom(const QString &room)
{
    m_room = room;
    invalidateFilter();
}

bool OnlineUserFilter::filterAcceptsRow(int row, const QModelIndex &parent) const
{
    const auto text = [this, row, &parent](int column, int role = Qt::DisplayRole) {
        return sourceModel()->index(row, column, parent).data(role).toString();
    };
    if (!m_room.isNull() && text(OnlineUserModel::Room, OnlineUserModel::kWholeTextRole) != m_room)
        return false;
    return m_search.isEmpty() || text(OnlineUserModel::Callsign).contains(m_search, Qt::CaseInsensitive) ||
           text(OnlineUserModel::Name).contains(m_search, Qt::CaseInsensitive);
}
