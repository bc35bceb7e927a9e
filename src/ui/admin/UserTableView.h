#pragma once

#include "ui/admin/UserFilterModel.h"
#include "ui/admin/UserTableModel.h"

#include <QTableView>

/// A table of users, sorted by the column whose title is clicked. The chosen user and the place that is scrolled to
/// are kept by the user's id when the list arrives anew.
class UserTableView final : public QTableView
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UserTableView)

public:
    /// Says the text while there is no user at all.
    UserTableView(const QVector<UserTableModel::Column> &columns, const QString &emptyText, QWidget *parent);

    [[nodiscard]] int shownCount() const { return m_filter->rowCount(); }
    [[nodiscard]] const UserFilterModel::Filter &filter() const { return m_filter->filter(); }
    /// Every user, also those that the filter hides.
    [[nodiscard]] const QList<QVariantMap> &users() const { return m_model->users(); }
    [[nodiscard]] bool hasChosenUser() const { return chosenRow() >= 0; }
    /// 0 without one, and for one whose record has no id.
    [[nodiscard]] int chosenUserId() const;
    /// The record of the chosen user; empty without one.
    [[nodiscard]] QVariantMap chosenUser() const;

    void showUsers(const QList<QVariantMap> &users);
    /// A chosen user that the filter hides is chosen no longer.
    void setFilter(const UserFilterModel::Filter &filter);

signals:
    void editClicked();   ///< the row's own button; the row is the chosen one
    void deleteClicked(); ///< likewise

private:
    struct Place
    {
        int chosenId = 0;
        int topId = 0;
        int top = 0;  ///< value of the vertical scroll bar
        int left = 0; ///< and of the other one
    };

    void setUpHeaders(const QVector<UserTableModel::Column> &columns);
    void showEmptyText();
    [[nodiscard]] int chosenRow() const; ///< -1: none
    [[nodiscard]] int idOfRow(int row) const;
    [[nodiscard]] QModelIndex indexOf(int userId) const;
    [[nodiscard]] Place place() const;
    void restore(const Place &place);

    QString m_emptyText;
    UserTableModel *m_model;
    UserFilterModel *m_filter;
};
