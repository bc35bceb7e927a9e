#pragma once

#include "net/protocol/Commands.h"

#include <QList>
#include <QStringList>
#include <QVariantMap>
#include <QWidget>

class Prompts;
class QAction;
class QComboBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QToolBar;
class UserTableView;

/// Every registered user: to be looked for, approved, edited, freed of a device and deleted, and gateways to be added.
/// Asks for commands, sends none itself; a command is for the user of the chosen row.
class AllUsersTab final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AllUsersTab)

public:
    explicit AllUsersTab(Prompts &prompts, QWidget *parent = nullptr);

    /// Of the list that was shown last; empty for an id that is not in it.
    [[nodiscard]] QString callsignOf(int userId) const;
    /// 0 for a callsign that is not in the list, in any case of its letters.
    [[nodiscard]] int idOf(const QString &callsign) const;

signals:
    void commandRequested(const QString &line);
    void approveRequested(int userId);
    void revokeRequested(int userId);
    /// Something was asked for that changes the lists.
    void refreshRequested();

public slots:
    void showUsers(const QList<QVariantMap> &users);
    void onApproveUser();
    void onRevokeUser();
    void onResetHwid();
    void onEditUser();
    void onDeleteUser();
    void onFilterAllUsers();
    void onAddGateway();
    /// The server's answer to a gateway that was added here; any other one is not for this tab.
    void onRegisterResult(bool success, const QString &message);
    /// The connection is another one: what was asked for is answered no more, and nobody is approved for it.
    void forgetRegistrations();

private:
    [[nodiscard]] QHBoxLayout *createHeader();
    [[nodiscard]] QHBoxLayout *createFilters();
    [[nodiscard]] QToolBar *createToolBar();
    void createTable();
    /// The id of the chosen user; without one, tells so and returns 0.
    [[nodiscard]] int chosenUser();
    void registerGateway(const Commands::Registration &registration, bool approve);
    void approveListed();
    void showTotal();

    Prompts &m_prompts;
    QLineEdit *m_search = nullptr;
    QComboBox *m_status = nullptr;
    QComboBox *m_type = nullptr;
    UserTableView *m_table = nullptr;
    QLabel *m_total = nullptr;
    struct Registration
    {
        QString callsign;
        bool isApproved = false; ///< what the form said
    };
    QList<Registration> m_registering; ///< those that the server has not answered yet, in the order of asking
    QStringList m_toApprove;           ///< callsigns that are registered, as far as the order of the answers tells
};
