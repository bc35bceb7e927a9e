#include "ui/admin/PendingTab.h"

#include "ui/Prompts.h"
#include "ui/admin/UserTableView.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

using Column = UserTableModel::Column;

QString totalText(int count)
{
    return QStringLiteral("Total: %1 pending").arg(count);
}

} // namespace

PendingTab::PendingTab(Prompts &prompts, QWidget *parent)
    : QWidget(parent)
    , m_prompts(prompts)
{
    setObjectName(QStringLiteral("pendingTab"));
    auto *heading = new QLabel(QStringLiteral("Users Waiting for Approval"), this);
    heading->setObjectName(QStringLiteral("pendingHeading"));
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    createTable();
    m_total = new QLabel(totalText(0), this);
    m_total->setObjectName(QStringLiteral("pendingTotal"));
    auto *approve = new QPushButton(QStringLiteral("Approve Selected"), this);
    approve->setObjectName(QStringLiteral("approveSelectedButton"));
    approve->setProperty("meaning", QStringLiteral("good"));
    approve->setAutoDefault(false);
    connect(approve, &QPushButton::clicked, this, &PendingTab::onApproveSelected);
    auto *footer = new QHBoxLayout;
    footer->addWidget(m_total, 1);
    footer->addWidget(approve);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addWidget(m_table);
    layout->addLayout(footer);
}

void PendingTab::createTable()
{
    m_table = new UserTableView({Column::Callsign, Column::Name, Column::Email, Column::WhatsApp},
                                QStringLiteral("No users waiting for approval"), this);
    m_table->setObjectName(QStringLiteral("pendingTable"));
    m_table->setAccessibleName(QStringLiteral("Users Waiting for Approval"));
    auto *approve = new QAction(QIcon(QStringLiteral(":/icons/approve")), QStringLiteral("Approve"), m_table);
    approve->setObjectName(QStringLiteral("approvePendingAction"));
    m_table->addAction(approve);
    m_table->setContextMenuPolicy(Qt::ActionsContextMenu);
    // Not inside the menu or the mouse event: a box would return there, and they may be gone with the panel.
    connect(approve, &QAction::triggered, this, &PendingTab::onApproveSelected, Qt::QueuedConnection);
    connect(m_table, &UserTableView::doubleClicked, this, &PendingTab::onApproveSelected, Qt::QueuedConnection);
}

void PendingTab::showUsers(const QList<QVariantMap> &users)
{
    m_table->showUsers(users);
    m_total->setText(totalText(users.size()));
}

void PendingTab::onApproveSelected()
{
    if (!m_table->hasChosenUser()) {
        m_prompts.warning(QStringLiteral("Error"), QStringLiteral("Please select a user first."));
        return;
    }
    const int userId = m_table->chosenUserId();
    if (userId < 1)
        return;
    emit approveRequested(userId);
    emit refreshRequested();
}
