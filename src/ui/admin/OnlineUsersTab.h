#pragma once

#include <QList>
#include <QStringList>
#include <QVariantMap>
#include <QWidget>

class OnlineUserFilter;
class OnlineUserModel;
class QComboBox;
class QLabel;
class QLineEdit;
class QTableView;

/// Who is logged in and in which room, to be searched and sorted. Changes nothing at the server.
class OnlineUsersTab final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OnlineUsersTab)

public:
    explicit OnlineUsersTab(QWidget *parent = nullptr);

public slots:
    /// Replaces the table. Who was selected stays selected, and the table stays scrolled where it was.
    void showUsers(const QList<QVariantMap> &users);
    /// Every registered user; tells who is muted.
    void showAccounts(const QList<QVariantMap> &accounts);
    /// The rooms to choose from. The chosen one stays chosen as long as it is there.
    void showRooms(const QStringList &rooms);

private:
    [[nodiscard]] QWidget *createFilters();
    void createTable();
    /// Null for every room.
    [[nodiscard]] QString chosenRoom() const;
    void applyFilters();
    void showEmptyText();

    OnlineUserModel *m_model;
    OnlineUserFilter *m_filter;
    QLineEdit *m_search = nullptr;
    QComboBox *m_room = nullptr;
    QTableView *m_table;
    QLabel *m_total;
};
