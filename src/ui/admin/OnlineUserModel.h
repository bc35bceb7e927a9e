#pragma once

#include <QAbstractTableModel>
#include <QList>
#include <QSet>
#include <QSortFilterProxyModel>
#include <QString>
#include <QVariantMap>
#include <QVector>

#include <optional>

/// Who is logged in, as a table over the server's records: callsign, name, room, status, muted.
class OnlineUserModel final : public QAbstractTableModel
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OnlineUserModel)

public:
    enum Column { Callsign, Name, Room, Status, Muted, ColumnCount };
    static constexpr int kWholeTextRole = Qt::UserRole; ///< of a cell; texts are shown on one line of bounded length

    explicit OnlineUserModel(QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    /// The user's id; 0 for a row that is not there.
    [[nodiscard]] int userId(int row) const;
    /// The row of the user; -1 when he is not listed.
    [[nodiscard]] int rowOf(int userId) const;

    void setUsers(const QList<QVariantMap> &users);
    /// The registered users, whose records tell who is muted: where a user's own one does not, they do.
    void setAccounts(const QList<QVariantMap> &accounts);

private:
    struct User
    {
        int id = 0;
        QString callsign;
        QString name;
        QString room;
        std::optional<bool> isMuted;
    };
    [[nodiscard]] QString text(const User &user, int column) const;

    QVector<User> m_users;
    QSet<int> m_muted; ///< ids of registered users
};

/// The rows that match a search text, in callsign or name, and that are in one room.
class OnlineUserFilter final : public QSortFilterProxyModel
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OnlineUserFilter)

public:
    explicit OnlineUserFilter(QObject *parent = nullptr);

    /// In any case, anywhere in the text; empty: everybody.
    void setSearch(const QString &search);
    /// Null: every room.
    void setRoom(const QString &room);

protected:
    [[nodiscard]] bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

private:
    QString m_search;
    QString m_room;
};
