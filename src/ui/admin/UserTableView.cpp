#include "ui/admin/UserTableView.h"

#include "ui/admin/EmptyState.h"
#include "ui/admin/KeyboardChoice.h"
#include "ui/admin/UserActionsDelegate.h"

#include <QHeaderView>
#include <QScrollBar>

#include <algorithm>

namespace {

using Column = UserTableModel::Column;

constexpr int kRowPadding = 10;  // logical pixels over a line of text
constexpr int kCellPadding = 10; // beside one
constexpr int kNarrowest = 6;    // digits of a column

/// What a column's texts need, in digits; 0: the column shares the room that is left.
int usualWidth(Column column)
{
    switch (column) {
    case Column::Id: return 4;
    case Column::Callsign: return 11;
    case Column::Name:
    case Column::GatewayName:
    case Column::Location:
    case Column::Email: return 0;
    case Column::Status: return 9;
    case Column::Approved: return 12;
    case Column::Expiry: return 10;
    case Column::LastLogin: return 15;
    case Column::Device: return 13;
    case Column::WhatsApp: return 16;
    case Column::Actions: return 7;
    }
    return 0;
}

} // namespace

UserTableView::UserTableView(const QVector<Column> &columns, const QString &emptyText, QWidget *parent)
    : QTableView(parent)
    , m_emptyText(emptyText)
    , m_model(new UserTableModel(columns, this))
    , m_filter(new UserFilterModel(m_model, this))
{
    setModel(m_filter);
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false); // the key leaves the table
    setAlternatingRowColors(true);
    setShowGrid(false);
    setWordWrap(false);
    setUpHeaders(columns);
    setSortingEnabled(true);
    sortByColumn(0, Qt::AscendingOrder);
    new KeyboardChoice(this);
    showEmptyText();
}

void UserTableView::setUpHeaders(const QVector<Column> &columns)
{
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed); // no row is measured
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kRowPadding);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setTextElideMode(Qt::ElideRight);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    const int digit = fontMetrics().horizontalAdvance(QLatin1Char('0'));
    horizontalHeader()->setMinimumSectionSize(kNarrowest * digit);
    for (int i = 0; i < columns.size(); ++i) {
        const int width = usualWidth(columns.at(i)) * digit;
        if (width > 0)
            setColumnWidth(i, std::max(horizontalHeader()->sectionSizeHint(i), width + kCellPadding));
        else
            horizontalHeader()->setSectionResizeMode(i, QHeaderView::Stretch);
        if (columns.at(i) == Column::Actions) {
            auto *actions = new UserActionsDelegate(this);
            setItemDelegateForColumn(i, actions);
            // Whoever is told may open a box or delete the view, which the mouse has not left yet.
            connect(actions, &UserActionsDelegate::editClicked, this, &UserTableView::editClicked,
                    Qt::QueuedConnection);
            connect(actions, &UserActionsDelegate::deleteClicked, this, &UserTableView::deleteClicked,
                    Qt::QueuedConnection);
        }
    }
}

int UserTableView::chosenRow() const
{
    // The current row alone is not enough: the first one becomes it as soon as the keyboard reaches the table.
    const QModelIndexList rows = selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.first().row();
}

int UserTableView::idOfRow(int row) const
{
    const QModelIndex source = m_filter->mapToSource(m_filter->index(row, 0));
    return source.isValid() ? m_model->idAt(source.row()) : 0;
}

int UserTableView::chosenUserId() const
{
    const int row = chosenRow();
    return row < 0 ? 0 : idOfRow(row);
}

QVariantMap UserTableView::chosenUser() const
{
    const int row = chosenRow();
    return row < 0 ? QVariantMap() : m_model->users().at(m_filter->mapToSource(m_filter->index(row, 0)).row());
}

QModelIndex UserTableView::indexOf(int userId) const
{
    const int row = m_model->rowOf(userId);
    return row < 0 ? QModelIndex() : m_filter->mapFromSource(m_model->index(row, 0));
}

void UserTableView::showUsers(const QList<QVariantMap> &users)
{
    const Place before = place();
    m_model->setUsers(users);
    showEmptyText();
    restore(before);
}

void UserTableView::setFilter(const UserFilterModel::Filter &filter)
{
    const Place before = place();
    m_filter->setFilter(filter);
    restore(before);
}

void UserTableView::showEmptyText()
{
    EmptyState::show(this, users().isEmpty() ? m_emptyText : QStringLiteral("No user matches the search."));
}

UserTableView::Place UserTableView::place() const
{
    const int top = rowAt(0);
    return {chosenUserId(), top < 0 ? 0 : idOfRow(top), verticalScrollBar()->value(), horizontalScrollBar()->value()};
}

void UserTableView::restore(const Place &place)
{
    executeDelayedItemsLayout(); // the scroll bars' ranges
    const QModelIndex chosen = indexOf(place.chosenId);
    if (chosen.isValid())
        selectionModel()->setCurrentIndex(chosen, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    else // the view chooses a neighbour for a row that goes, and a command would meet somebody else
        selectionModel()->clear();
    const QModelIndex top = indexOf(place.topId);
    if (top.isValid() && place.top > 0)
        scrollTo(top, PositionAtTop);
    else
        verticalScrollBar()->setValue(place.top);
    horizontalScrollBar()->setValue(place.left);
}
