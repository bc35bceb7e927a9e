#include "ui/admin/UserFilterModel.h"

#include "ui/admin/UserTableModel.h"

bool UserFilterModel::Filter::accepts(const QVariantMap &user) const
{
    if (type && UserRecord::typeOf(user) != *type)
        return false;
    if (!status.isEmpty() && UserRecord::status(user) != status)
        return false;
    const auto holds = [this](const QString &part) { return part.contains(text, Qt::CaseInsensitive); };
    return text.isEmpty() || holds(UserRecord::callsign(user)) || holds(UserRecord::gatewayName(user)) ||
           holds(UserRecord::name(user));
}

UserFilterModel::UserFilterModel(UserTableModel *users, QObject *parent)
    : QSortFilterProxyModel(parent)
    , m_users(users)
{
    setSourceModel(users);
}

void UserFilterModel::setFilter(const Filter &filter)
{
    m_filter = filter;
    invalidateFilter();
}

bool UserFilterModel::filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const
{
    Q_UNUSED(sourceParent) // a table has one level only
    return !m_filter.isActive() || m_filter.accepts(m_users->users().at(sourceRow));
}

bool UserFilterModel::lessThan(const QModelIndex &left, const QModelIndex &right) const
{
    return m_users->isLess(left.column(), left.row(), right.row());
}
