#include "ui/admin/HwidRequestsTab.h"

#include "net/protocol/Commands.h"
#include "ui/Prompts.h"
#include "ui/admin/EmptyState.h"
#include "ui/admin/HwidRequests.h"
#include "ui/admin/KeyboardChoice.h"
#include "ui/admin/ShownText.h"

#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace {

constexpr int kItemSpacing = 2; // logical pixels

constexpr int kCallsignRole = Qt::UserRole; // the item's text may be cut

QListWidgetItem *createItem(const HwidRequests::Request &request)
{
    // Joined, not filled in: a callsign may hold a "%2".
    auto *item = new QListWidgetItem(shownText(request.callsign) + QLatin1String("  |  ") +
                                     request.when.toString(QStringLiteral("dd/MM/yyyy HH:mm")) +
                                     QLatin1String("  |  Klik kanan untuk approve"));
    item->setForeground(QColor(QStringLiteral("#FF9800")));
    item->setData(kCallsignRole, request.callsign);
    return item;
}

} // namespace

HwidRequestsTab::HwidRequestsTab(HwidRequests &requests, Prompts &prompts, QWidget *parent)
    : QWidget(parent)
    , m_requests(requests)
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
    EmptyState::show(m_list, QStringLiteral("No HWID requests."));
    new KeyboardChoice(m_list);
    connect(&m_requests, &HwidRequests::changed, this, &HwidRequestsTab::refill);
    refill();
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
    // Not inside the menu: the box would return there, and the menu may be gone with the panel.
    connect(m_approve, &QAction::triggered, this, &HwidRequestsTab::approve, Qt::QueuedConnection);
    connect(m_dismiss, &QAction::triggered, this, &HwidRequestsTab::dismiss);
    m_list->addActions({m_approve, m_dismiss});
    m_list->setContextMenuPolicy(Qt::ActionsContextMenu);
}

int HwidRequestsTab::count() const
{
    return m_list->count();
}

int HwidRequestsTab::chosenRow() const
{
    return m_list->row(m_list->selectedItems().value(0));
}

void HwidRequestsTab::onSelectionChanged()
{
    m_approve->setEnabled(chosenRow() >= 0);
    m_dismiss->setEnabled(chosenRow() >= 0);
}

/// Who was chosen stays chosen; nobody takes the place of one that is gone.
void HwidRequestsTab::refill()
{
    const QListWidgetItem *before = m_list->selectedItems().value(0);
    const QString chosen = before ? before->data(kCallsignRole).toString() : QString();
    const bool hasChosen = before != nullptr;
    const int scrolled = m_list->verticalScrollBar()->value();
    {
        const QSignalBlocker silent(m_list);
        m_list->clear();
        for (const HwidRequests::Request &request : m_requests.all()) {
            m_list->addItem(createItem(request));
            if (hasChosen && request.callsign == chosen)
                m_list->setCurrentRow(m_list->count() - 1);
        }
    }
    m_list->doItemsLayout();
    m_list->verticalScrollBar()->setValue(scrolled);
    onSelectionChanged();
    emit countChanged(count());
}

void HwidRequestsTab::approve()
{
    const int row = chosenRow();
    if (row < 0)
        return;
    const HwidRequests::Request request = m_requests.all().at(row);
    const QString callsign = shownText(request.callsign);
    const int userId = request.userId < 1 && m_idOf ? m_idOf(request.callsign) : request.userId;
    if (userId < 1) {
        m_prompts.warning(QStringLiteral("HWID Reset"),
                          QStringLiteral("User %1 tidak ada dalam daftar user.").arg(callsign));
        return;
    }
    emit commandRequested(Commands::resetDevice(userId));
    m_requests.settle(request.callsign);
    m_prompts.information(
        QStringLiteral("HWID Reset"),
        QStringLiteral("HWID untuk %1 berhasil direset.\nUser dapat login dari perangkat baru.").arg(callsign));
}

void HwidRequestsTab::dismiss()
{
    m_requests.dismiss(chosenRow());
}
