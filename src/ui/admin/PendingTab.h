#pragma once

#include <QList>
#include <QVariantMap>
#include <QWidget>

class Prompts;
class QLabel;
class UserTableView;

/// The users who wait for an administrator's approval. The chosen one is approved with the button, a double click or
/// the context menu.
class PendingTab final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PendingTab)

public:
    explicit PendingTab(Prompts &prompts, QWidget *parent = nullptr);

signals:
    void approveRequested(int userId);
    /// Somebody was approved: the lists are to be asked for anew.
    void refreshRequested();

public slots:
    void showUsers(const QList<QVariantMap> &users);
    void onApproveSelected();

private:
    void createTable();

    Prompts &m_prompts;
    UserTableView *m_table = nullptr;
    QLabel *m_total = nullptr;
};
