#include "ui/admin/HwidRequestsTab.h"

#include "net/protocol/Commands.h"
#include "ui/Prompts.h"
#include "ui/admin/EmptyState.h"

#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>

namespace {

constexpr int kDetailsRole = Qt::UserRole;
constexpr int kTimeRole = Qt::UserRole + 1;
constexpr int kItemSpacing = 2; // logical pixels

QString callsignOf(const QString &details)
{
    return details.section(QLatin1Char(':'), 0, 0);
}

/// 0 where the request names no id.
int userIdOf(const QString &details)
{
    return details.section(QLatin1Char(':'), 1).toInt();
}

} // namespace

HwidRequestsTab::HwidRequestsTab(Prompts &prompts, QWidget *parent)
    : QWidget(parent)
    , m_prompts(prompts)
    , m_list(new QListWidget(this))
{
    setObjectName(QStringLiteral("hwidRequestsTab"));
    auto *explanation = new QLabel(
        QStringLiteral("Daftar permintaan Reset HWID dari user.\nKlik kanan pada item untuk Approve atau Dismiss."),
        this);
    explanation->setObjectName(QStringLiteral("hwidExplanation"));
    explanation->setProperty("hint", true);
    explanation->setStyleSheet(QStringLiteral("font-size: 11px;"));
    m_list->setObjectName(QStringLiteral("hwidRequestsList"));
    m_list->setAccessibleName(QStringLiteral("HWID Requests"));
    m_list->setSpacing(kItemSpacing);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(explanation);
    layout->addWidget(m_list);
    createActions();
    connect(m_list, &QListWidget::itemSelectionChanged, this, &HwidRequestsTab::onSelectionChanged);
    onSelectionChanged();
    EmptyState::show(m_list, QStringLiteral("No HWID requests."));
}

// They make the context menu, which the keyboard's menu key opens as well.
void HwidRequestsTab::createActions()
{
    m_approve = new QAction(QStringLiteral("Approve Reset HWID"), m_list);
    m_approve->setObjectName(QStringLiteral("approveHwidAction"));
    m_dismiss = new QAction(QStringLiteral("Dismiss"), m_list);
    m_dismiss->setObjectName(QStringLiteral("dismissHwidAction"));
    m_dismiss->setShortcut(QKeySequence::Delete);
    m_dismiss->setShortcutContext(Qt::WidgetShortcut);
    connect(m_approve, &QAction::triggered, this, &HwidRequestsTab::approve);
    connect(m_dismiss, &QAction::triggered, this, &HwidRequestsTab::dismiss);
    m_list->addActions({m_approve, m_dismiss});
    m_list->setContextMenuPolicy(Qt::ActionsContextMenu);
}

int HwidRequestsTab::count() const
{
    return m_list->count();
}

QListWidgetItem *HwidRequestsTab::selected() const
{
    return m_list->selectedItems().value(0);
}

void HwidRequestsTab::onSelectionChanged()
{
    m_approve->setEnabled(selected());
    m_dismiss->setEnabled(selected());
}

void HwidRequestsTab::addRequest(const QString &details, const QDateTime &when)
{
    auto *item = new QListWidgetItem(QStringLiteral("%1  |  %2  |  Klik kanan untuk approve")
                                         .arg(callsignOf(details), when.toString(QStringLiteral("dd/MM/yyyy HH:mm"))));
    item->setForeground(QColor(QStringLiteral("#FF9800")));
    item->setData(kDetailsRole, details);
    item->setData(kTimeRole, when);
    m_list->addItem(item);
    if (count() > kMostRequests)
        remove(m_list->item(0));
    else
        emit countChanged(count());
}

void HwidRequestsTab::settleRequestsOf(const QString &callsign)
{
    for (int row = m_list->count() - 1; row >= 0; --row) {
        if (callsignOf(m_list->item(row)->data(kDetailsRole).toString()) == callsign)
            remove(m_list->item(row));
    }
}

void HwidRequestsTab::remove(QListWidgetItem *item)
{
    const QString details = item->data(kDetailsRole).toString();
    const QDateTime when = item->data(kTimeRole).toDateTime();
    delete item;
    emit countChanged(count());
    emit requestSettled(details, when);
}

void HwidRequestsTab::approve()
{
    QListWidgetItem *item = selected();
    if (!item)
        return;
    const QString details = item->data(kDetailsRole).toString();
    const QString callsign = callsignOf(details);
    int userId = userIdOf(details);
    if (userId < 1 && m_idOf)
        userId = m_idOf(callsign);
    if (userId < 1) {
        m_prompts.warning(QStringLiteral("HWID Reset"),
                          QStringLiteral("User %1 tidak ada dalam daftar user.").arg(callsign));
        return;
    }
    emit commandRequested(Commands::resetDevice(userId));
    settleRequestsOf(callsign); // one reset answers all that he asked
    m_prompts.information(
        QStringLiteral("HWID Reset"),
        QStringLiteral("HWID untuk %1 berhasil direset.\nUser dapat login dari perangkat baru.").arg(callsign));
}

void HwidRequestsTab::dismiss()
{
    if (QListWidgetItem *item = selected())
        remove(item);
}
