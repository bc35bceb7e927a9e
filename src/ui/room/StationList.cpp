#include "ui/room/StationList.h"

#include "ui/room/UserWidget.h"

#include <QScrollBar>
#include <QSet>

namespace {

constexpr int kRowHeight = 36;
constexpr int kLeastHeight = 200;
constexpr int kFontPoints = 11;

void paintItem(QListWidgetItem *item, bool transmitting, bool approved)
{
    const QString family = QStringLiteral("Segoe UI");
    if (transmitting) {
        item->setBackground(QColor(QStringLiteral("#F44336")));
        item->setForeground(QColor(QStringLiteral("#FFFFFF")));
        item->setFont(QFont(family, kFontPoints, QFont::Bold));
    } else {
        item->setBackground(QColor(Qt::transparent));
        item->setForeground(QColor(approved ? QStringLiteral("#212121") : QStringLiteral("#888888")));
        item->setFont(QFont(family, kFontPoints, QFont::Normal));
    }
}

} // namespace

/// Where the operator was: told by station, as rows come and go.
struct StationList::View
{
    QString current;
    bool hasCurrent = false;
    bool isSelected = false;
    QString topmost; ///< the first station in sight
    bool hasTopmost = false;
    int topmostY = 0; ///< of its row, in pixels from the upper edge
};

StationList::StationList(QWidget *parent)
    : QListWidget(parent)
{
    setAlternatingRowColors(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setUniformItemSizes(true);
    setMinimumHeight(kLeastHeight);
}

UserWidget *StationList::userWidget(const QString &callsign) const
{
    return userWidget(m_items.value(callsign));
}

UserWidget *StationList::userWidget(const QListWidgetItem *item) const
{
    return item ? qobject_cast<UserWidget *>(itemWidget(const_cast<QListWidgetItem *>(item))) : nullptr;
}

void StationList::setStations(const QVector<Station> &stations)
{
    bool changed = stations.size() != count();
    for (int row = 0; !changed && row < stations.size(); ++row)
        changed = !rowShows(row, stations.at(row));
    if (changed) {
        const View before = view();
        arrange(stations);
        restore(before);
    }
    for (int row = 0; row < count(); ++row)
        userWidget(item(row))->setSpeakerMuted(false);
}

void StationList::clearStations()
{
    clear();
    m_items.clear();
}

void StationList::setState(const QString &callsign, bool transmitting, bool muted, bool approved)
{
    QListWidgetItem *item = m_items.value(callsign);
    UserWidget *widget = userWidget(item);
    if (!widget)
        return;
    widget->setApproved(approved);
    widget->setTransmitting(transmitting);
    widget->setMicMuted(muted);
    const bool isStyled =
        item->data(TransmittingRole) == QVariant(transmitting) && item->data(ApprovedRole) == QVariant(approved);
    item->setData(ApprovedRole, approved);
    item->setData(MutedRole, muted);
    item->setData(TransmittingRole, transmitting);
    if (!isStyled) // most of a list is as it was; styling lays the whole list out again
        paintItem(item, transmitting, approved);
}

bool StationList::rowShows(int row, const Station &station) const
{
    const UserWidget *widget = userWidget(item(row));
    return widget && widget->callsign() == station.callsign && widget->displayName() == station.displayName &&
           widget->userId() == station.userId && widget->isSelf() == station.isSelf;
}

StationList::View StationList::view() const
{
    View view;
    if (const UserWidget *widget = userWidget(currentItem())) {
        view.hasCurrent = true;
        view.current = widget->callsign();
        view.isSelected = currentItem()->isSelected();
    }
    const QListWidgetItem *top = itemAt(0, 0);
    if (const UserWidget *widget = userWidget(top)) {
        view.hasTopmost = true;
        view.topmost = widget->callsign();
        view.topmostY = visualItemRect(top).top();
    }
    return view;
}

void StationList::restore(const View &view)
{
    QListWidgetItem *current = view.hasCurrent ? m_items.value(view.current) : nullptr;
    // Without this a removed row would hand the selection on to its neighbour, another station.
    setCurrentItem(current, view.isSelected ? QItemSelectionModel::ClearAndSelect : QItemSelectionModel::Clear);
    QListWidgetItem *topmost = view.hasTopmost ? m_items.value(view.topmost) : nullptr;
    if (!topmost)
        return;
    doItemsLayout(); // else the scroll bar's range is still that of the former rows
    verticalScrollBar()->setValue(verticalScrollBar()->value() + visualItemRect(topmost).top() - view.topmostY);
}

void StationList::arrange(const QVector<Station> &stations)
{
    QSet<QString> wanted;
    for (const Station &station : stations)
        wanted.insert(station.callsign);
    for (int row = count() - 1; row >= 0; --row) {
        const UserWidget *widget = userWidget(item(row));
        if (!widget || !wanted.contains(widget->callsign()))
            removeRow(row);
    }
    for (int row = 0; row < stations.size(); ++row) {
        const Station &station = stations.at(row);
        if (rowShows(row, station))
            continue;
        // The one in the way went further down: cheaper to move that one row than all that follow it.
        if (rowShows(row + 1, station)) {
            removeRow(row);
            continue;
        }
        if (QListWidgetItem *elsewhere = m_items.value(station.callsign))
            removeRow(this->row(elsewhere));
        insertRow(row, station);
    }
}

void StationList::insertRow(int row, const Station &station)
{
    auto *item = new QListWidgetItem;
    item->setSizeHint(QSize(0, kRowHeight)); // as wide as the list, whatever a name would like
    insertItem(row, item);
    setItemWidget(item, new UserWidget(station.displayName, station.callsign, station.userId, station.isSelf, this));
    m_items.insert(station.callsign, item);
}

void StationList::removeRow(int row)
{
    if (const UserWidget *widget = userWidget(item(row)))
        m_items.remove(widget->callsign());
    delete takeItem(row);
}
