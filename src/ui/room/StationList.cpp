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
    return m_rows.value(callsign).widget;
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
    for (const Row &row : qAsConst(m_rows))
        row.widget->setSpeakerMuted(false);
}

void StationList::clearStations()
{
    clear();
    m_rows.clear();
}

void StationList::setState(const QString &callsign, bool transmitting, bool muted, bool approved)
{
    const Row row = m_rows.value(callsign);
    if (!row.widget)
        return;
    row.widget->setApproved(approved);
    row.widget->setTransmitting(transmitting);
    row.widget->setMicMuted(muted);
    writeState(row.item, transmitting, muted, approved);
}

void StationList::writeState(QListWidgetItem *item, bool transmitting, bool muted, bool approved)
{
    // Each changed value would have all rows laid out again, and none of them changes a row's size.
    const QSignalBlocker quiet(model());
    const bool isStyled = item->data(ApprovedRole).isValid() && item->data(ApprovedRole).toBool() == approved &&
                          item->data(TransmittingRole).toBool() == transmitting;
    item->setData(ApprovedRole, approved);
    item->setData(MutedRole, muted);
    item->setData(TransmittingRole, transmitting);
    if (isStyled)
        return;
    paintItem(item, transmitting, approved);
    update(indexFromItem(item));
}

bool StationList::rowShows(int row, const Station &station) const
{
    const Row shown = m_rows.value(station.callsign);
    return shown.item && shown.item == item(row) && shown.widget->displayName() == station.displayName &&
           shown.widget->userId() == station.userId && shown.widget->isSelf() == station.isSelf;
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
    QListWidgetItem *current = view.hasCurrent ? m_rows.value(view.current).item : nullptr;
    // Without this a removed row would hand the selection on to its neighbour, another station.
    setCurrentItem(current, view.isSelected ? QItemSelectionModel::ClearAndSelect : QItemSelectionModel::Clear);
    QListWidgetItem *topmost = view.hasTopmost ? m_rows.value(view.topmost).item : nullptr;
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
        if (const QListWidgetItem *elsewhere = m_rows.value(station.callsign).item)
            removeRow(this->row(elsewhere));
        insertRow(row, station);
    }
}

void StationList::insertRow(int row, const Station &station)
{
    auto *item = new QListWidgetItem;
    item->setSizeHint(QSize(0, kRowHeight)); // as wide as the list, whatever a name would like
    insertItem(row, item);
    auto *widget = new UserWidget(station.displayName, station.callsign, station.userId, station.isSelf, this);
    setItemWidget(item, widget);
    m_rows.insert(station.callsign, {item, widget});
}

void StationList::removeRow(int row)
{
    if (const UserWidget *widget = userWidget(item(row)))
        m_rows.remove(widget->callsign());
    delete takeItem(row);
}
