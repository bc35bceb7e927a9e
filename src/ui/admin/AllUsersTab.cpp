#include "ui/admin/AllUsersTab.h"

#include "ui/Prompts.h"
#include "ui/admin/AddGatewayDialog.h"
#include "ui/admin/EditUserDialog.h"
#include "ui/admin/ShownText.h"
#include "ui/admin/UserRecord.h"
#include "ui/admin/UserTableView.h"
#include "ui/setup/InputRules.h"

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QToolBar>
#include <QVBoxLayout>

#include <utility>

namespace {

using Column = UserTableModel::Column;
using Type = UserRecord::Type;

struct ToolRow
{
    const char *text;
    const char *tip;
    const char *icon;
    const char *name;
    void (AllUsersTab::*slot)();
};

constexpr ToolRow kTools[] = {
    {"Approve", "Grant transmit approval", ":/icons/approve", "approveAction", &AllUsersTab::onApproveUser},
    {"Revoke", "Revoke transmit approval", ":/icons/revoke", "revokeAction", &AllUsersTab::onRevokeUser},
    {"Reset HWID", "Allow login from new device", ":/icons/reset", "resetHwidAction", &AllUsersTab::onResetHwid},
    {"Edit", "Edit user details", ":/icons/edit", "editAction", &AllUsersTab::onEditUser},
    {"Delete", "Delete user", ":/icons/delete", "deleteAction", &AllUsersTab::onDeleteUser},
};

} // namespace

AllUsersTab::AllUsersTab(Prompts &prompts, QWidget *parent)
    : QWidget(parent)
    , m_prompts(prompts)
{
    setObjectName(QStringLiteral("allUsersTab"));
    createTable();
    m_total = new QLabel(this);
    m_total->setObjectName(QStringLiteral("allUsersTotal"));
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(createHeader());
    layout->addLayout(createFilters());
    layout->addWidget(createToolBar());
    layout->addWidget(m_table);
    layout->addWidget(m_total);
    setTabOrder(m_type, m_table);
    showTotal();
}

QHBoxLayout *AllUsersTab::createHeader()
{
    auto *heading = new QLabel(QStringLiteral("All Registered Users"), this);
    heading->setObjectName(QStringLiteral("allUsersHeading"));
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    auto *add = new QPushButton(QStringLiteral("Add Gateway"), this);
    add->setObjectName(QStringLiteral("addGatewayButton"));
    add->setProperty("meaning", QStringLiteral("good"));
    add->setAutoDefault(false);
    connect(add, &QPushButton::clicked, this, &AllUsersTab::onAddGateway);
    auto *row = new QHBoxLayout;
    row->addWidget(heading);
    row->addStretch();
    row->addWidget(add);
    return row;
}

QHBoxLayout *AllUsersTab::createFilters()
{
    m_search = new QLineEdit(this);
    m_search->setObjectName(QStringLiteral("allUsersSearch"));
    m_search->setPlaceholderText(QStringLiteral("Search..."));
    m_search->setAccessibleName(QStringLiteral("Search users"));
    m_search->setMaxLength(InputRules::kLongestText);
    m_status = new QComboBox(this);
    m_status->setObjectName(QStringLiteral("statusFilter"));
    m_status->setAccessibleName(QStringLiteral("Status filter"));
    m_status->addItem(QStringLiteral("All Status"), QString());
    for (const char *status : {"Active", "Pending", "Suspended", "Banned"})
        m_status->addItem(QLatin1String(status), QString::fromLatin1(status).toLower());
    m_type = new QComboBox(this);
    m_type->setObjectName(QStringLiteral("typeFilter"));
    m_type->setAccessibleName(QStringLiteral("Type filter"));
    m_type->addItem(QStringLiteral("All Types"));
    m_type->addItem(QStringLiteral("Gateway"), static_cast<int>(Type::Gateway));
    m_type->addItem(QStringLiteral("Personal"), static_cast<int>(Type::Personal));
    m_type->addItem(QStringLiteral("Admin"), static_cast<int>(Type::Admin));
    connect(m_search, &QLineEdit::textChanged, this, &AllUsersTab::onFilterAllUsers);
    for (QComboBox *filter : {m_status, m_type})
        connect(filter, qOverload<int>(&QComboBox::currentIndexChanged), this, &AllUsersTab::onFilterAllUsers);
    auto *row = new QHBoxLayout;
    row->addWidget(m_search, 1);
    row->addWidget(m_status);
    row->addWidget(m_type);
    return row;
}

QToolBar *AllUsersTab::createToolBar()
{
    auto *bar = new QToolBar(this);
    bar->setObjectName(QStringLiteral("allUsersToolBar"));
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    for (const ToolRow &row : kTools) {
        auto *action = new QAction(QIcon(QLatin1String(row.icon)), QLatin1String(row.text), this);
        action->setObjectName(QLatin1String(row.name));
        action->setToolTip(QLatin1String(row.tip));
        // Not inside the menu or the mouse event: a box would return there, and they may be gone with the panel.
        connect(action, &QAction::triggered, this, row.slot, Qt::QueuedConnection);
        bar->addAction(action);
        m_table->addAction(action);
        QWidget *button = bar->widgetForAction(action);
        button->setObjectName(QLatin1String(row.name) + QLatin1String("Button"));
        button->setFocusPolicy(Qt::TabFocus);
        if (row.slot == &AllUsersTab::onDeleteUser) {
            action->setShortcut(QKeySequence::Delete);
            action->setShortcutContext(Qt::WidgetShortcut); // in the table, not in the search field
        }
    }
    return bar;
}

void AllUsersTab::createTable()
{
    m_table = new UserTableView({Column::Id, Column::Callsign, Column::GatewayName, Column::Status, Column::Approved,
                                 Column::Expiry, Column::Location, Column::LastLogin, Column::Device, Column::Actions},
                                QStringLiteral("No users"), this);
    m_table->setObjectName(QStringLiteral("allUsersTable"));
    m_table->setAccessibleName(QStringLiteral("All Registered Users"));
    m_table->setContextMenuPolicy(Qt::ActionsContextMenu);
    const auto edit = [this](const QModelIndex &index) {
        if (index.column() != m_table->model()->columnCount() - 1) // which has buttons of its own
            onEditUser();
    };
    connect(m_table, &UserTableView::activated, this, edit, Qt::QueuedConnection);
    connect(m_table, &UserTableView::editClicked, this, &AllUsersTab::onEditUser);
    connect(m_table, &UserTableView::deleteClicked, this, &AllUsersTab::onDeleteUser);
}

QString AllUsersTab::callsignOf(int userId) const
{
    for (const QVariantMap &user : m_table->users()) {
        if (UserRecord::id(user) == userId)
            return userId < 1 ? QString() : UserRecord::callsign(user);
    }
    return {};
}

int AllUsersTab::idOf(const QString &callsign) const
{
    for (const QVariantMap &user : m_table->users()) {
        if (!callsign.isEmpty() && UserRecord::callsign(user).compare(callsign, Qt::CaseInsensitive) == 0)
            return UserRecord::id(user);
    }
    return 0;
}

void AllUsersTab::showUsers(const QList<QVariantMap> &users)
{
    m_table->showUsers(users);
    showTotal();
    approveListed();
}

void AllUsersTab::onFilterAllUsers()
{
    UserFilterModel::Filter filter;
    filter.text = m_search->text().trimmed();
    filter.status = m_status->currentData().toString();
    if (m_type->currentData().isValid())
        filter.type = static_cast<Type>(m_type->currentData().toInt());
    m_table->setFilter(filter);
    showTotal();
}

void AllUsersTab::showTotal()
{
    QString text = QStringLiteral("Total: %1 users").arg(m_table->shownCount());
    if (m_table->filter().isActive())
        text += QLatin1String(" (filtered)");
    m_total->setText(text);
}

int AllUsersTab::chosenUser()
{
    if (m_table->hasChosenUser())
        return m_table->chosenUserId();
    m_prompts.warning(QStringLiteral("Error"), QStringLiteral("Please select a user first."));
    return 0;
}

void AllUsersTab::onApproveUser()
{
    const int userId = chosenUser();
    if (userId < 1)
        return;
    emit approveRequested(userId);
    emit refreshRequested();
}

void AllUsersTab::onRevokeUser()
{
    const int userId = chosenUser();
    if (userId < 1)
        return;
    emit revokeRequested(userId);
    emit refreshRequested();
}

void AllUsersTab::onResetHwid()
{
    const int userId = chosenUser();
    if (userId < 1)
        return;
    const QString callsign = shownText(UserRecord::callsign(m_table->chosenUser()));
    emit commandRequested(Commands::resetDevice(userId));
    m_prompts.information(QStringLiteral("Reset HWID"), QStringLiteral("HWID for %1 has been reset.").arg(callsign));
}

void AllUsersTab::onEditUser()
{
    if (chosenUser() < 1)
        return;
    auto *dialog = new EditUserDialog(m_table->chosenUser(), m_prompts, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &EditUserDialog::commandRequested, this, &AllUsersTab::commandRequested);
    connect(dialog, &EditUserDialog::refreshRequested, this, &AllUsersTab::refreshRequested);
    dialog->open();
}

void AllUsersTab::onDeleteUser()
{
    const int userId = chosenUser();
    if (userId < 1)
        return;
    const QPointer<AllUsersTab> self(this);
    const bool confirmed =
        m_prompts.confirm(QStringLiteral("Delete User"), QStringLiteral("Are you sure you want to delete this user?\n\n"
                                                                        "This action cannot be undone!"));
    if (!confirmed || !self)
        return;
    emit commandRequested(Commands::deleteUser(userId));
    emit refreshRequested();
}

void AllUsersTab::onAddGateway()
{
    auto *dialog = new AddGatewayDialog(this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &AddGatewayDialog::submitted, this, &AllUsersTab::registerGateway);
    dialog->open();
}

/// The registration itself cannot say that the account is approved: that is told once its id is known.
void AllUsersTab::registerGateway(const Commands::Registration &registration, bool approve)
{
    m_registering.append({registration.callsign, approve});
    emit commandRequested(Commands::registerGateway(registration));
    // Joined, not filled in: a password may hold a "%2".
    m_prompts.information(QStringLiteral("Success"), QLatin1String("Gateway ") + registration.callsign +
                                                         QLatin1String(" berhasil ditambahkan!\nPassword: ") +
                                                         registration.password);
}

void AllUsersTab::onRegisterResult(bool success, const QString &message)
{
    if (m_registering.isEmpty())
        return;
    const Registration registration = m_registering.takeFirst();
    if (!success) {
        m_prompts.warning(QStringLiteral("Add Gateway"), shownText(message));
        return;
    }
    if (registration.isApproved)
        m_toApprove.append(registration.callsign);
    emit refreshRequested();
}

void AllUsersTab::forgetRegistrations()
{
    m_registering.clear();
    m_toApprove.clear();
}

/// No answer says whose it is, and a registration may stay without one. Only when all are answered it is certain that
/// none of the answers was another one's; before that somebody else's account could be approved.
void AllUsersTab::approveListed()
{
    if (!m_registering.isEmpty())
        return;
    const QStringList awaited = std::exchange(m_toApprove, {});
    bool approves = false;
    for (const QString &callsign : awaited) {
        const int userId = idOf(callsign);
        if (userId < 1) { // a list that was on its way already does not know it yet
            m_toApprove.append(callsign);
            continue;
        }
        emit approveRequested(userId);
        approves = true;
    }
    if (approves)
        emit refreshRequested();
}
