#pragma once

#include "ui/admin/UserRecord.h"

#include <QSortFilterProxyModel>

#include <optional>

class UserTableModel;

/// The users of a table that are looked for, in the order of a column.
class UserFilterModel final : public QSortFilterProxyModel
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UserFilterModel)

public:
    /// A user has to meet all three.
    struct Filter
    {
        QString text;   ///< part of a name, a gateway's name or a callsign, in any case; empty: any
        QString status; ///< in small letters; empty: any
        std::optional<UserRecord::Type> type;

        [[nodiscard]] bool isActive() const { return !text.isEmpty() || !status.isEmpty() || type; }
        [[nodiscard]] bool accepts(const QVariantMap &user) const;
    };

    explicit UserFilterModel(UserTableModel *users, QObject *parent = nullptr);

    [[nodiscard]] const Filter &filter() const { return m_filter; }
    void setFilter(const Filter &filter);

protected:
    [[nodiscard]] bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;
    [[nodiscard]] bool lessThan(const QModelIndex &left, const QModelIndex &right) const override;

private:
    UserTableModel *m_users;
    Filter m_filter;
};
