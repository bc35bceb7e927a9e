#pragma once

#include <QAbstractTableModel>
#include <QList>
#include <QVariantMap>
#include <QVector>

/// What the server says of registered users, a row each. Shows the kept records as they are: no cell has an item of
/// its own, so that thousands of users cost no more than their records.
class UserTableModel final : public QAbstractTableModel
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UserTableModel)

public:
    enum class Column {
        Id,
        Callsign,
        Name,
        GatewayName, ///< the person in charge where there is no gateway
        Status,
        Approved,
        Expiry,
        Location,
        LastLogin,
        Device,
        Email,
        WhatsApp,
        Actions ///< empty: the view draws buttons there
    };

    /// Shows these columns, in this order.
    explicit UserTableModel(QVector<Column> columns, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    /// Texts are cut to one line of bounded length.
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;

    [[nodiscard]] const QVector<Column> &columns() const { return m_columns; }
    [[nodiscard]] const QList<QVariantMap> &users() const { return m_users; }
    [[nodiscard]] int idAt(int row) const { return m_ids.at(row); } ///< 0: the record has none
    /// The first row of that user, or -1.
    [[nodiscard]] int rowOf(int userId) const { return userId < 1 ? -1 : m_ids.indexOf(userId); }
    /// Ids by number, texts without regard to case.
    [[nodiscard]] bool isLess(int column, int leftRow, int rightRow) const;

    void setUsers(const QList<QVariantMap> &users);

private:
    QVector<Column> m_columns;
    QList<QVariantMap> m_users;
    QVector<int> m_ids; ///< of the users, in their order
};
