#include "ui/admin/UserActionsDelegate.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QIcon>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

namespace {

using Button = UserActionsDelegate::Button;

constexpr int kSide = 22; // logical pixels
constexpr int kIcon = 16;
constexpr int kGap = 6;
constexpr int kMargin = 6;

struct Look
{
    Button button;
    const char *icon;
    const char *tip;
};

constexpr Look kLooks[] = {
    {Button::Edit, ":/icons/edit", "Edit user details"},
    {Button::Delete, ":/icons/delete", "Delete user"},
};

} // namespace

UserActionsDelegate::UserActionsDelegate(QObject *parent)
    : QStyledItemDelegate(parent)
{
}

QRect UserActionsDelegate::area(Button button, const QRect &cell)
{
    if (button == Button::None)
        return {};
    const int x = cell.x() + kMargin + (button == Button::Delete ? kSide + kGap : 0);
    return {x, cell.center().y() - kSide / 2, kSide, kSide};
}

Button UserActionsDelegate::buttonAt(const QPoint &position, const QRect &cell)
{
    for (const Look &look : kLooks) {
        if (area(look.button, cell).contains(position))
            return look.button;
    }
    return Button::None;
}

void UserActionsDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    for (const Look &look : kLooks) {
        QRect icon(0, 0, kIcon, kIcon);
        icon.moveCenter(area(look.button, option.rect).center());
        QIcon(QLatin1String(look.icon)).paint(painter, icon);
    }
}

bool UserActionsDelegate::editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                                      const QModelIndex &index)
{
    const auto *mouse = dynamic_cast<QMouseEvent *>(event);
    if (!mouse || mouse->button() != Qt::LeftButton)
        return QStyledItemDelegate::editorEvent(event, model, option, index);
    const Button button = buttonAt(mouse->pos(), option.rect);
    if (event->type() == QEvent::MouseButtonPress) {
        m_pressedCell = index;
        m_pressed = button;
        return false; // the press chooses the row as well
    }
    if (event->type() != QEvent::MouseButtonRelease)
        return QStyledItemDelegate::editorEvent(event, model, option, index);
    const bool isClick = m_pressedCell == index && m_pressed == button;
    m_pressed = Button::None;
    if (!isClick || button == Button::None)
        return false;
    if (button == Button::Edit)
        emit editClicked();
    else
        emit deleteClicked();
    return true;
}

bool UserActionsDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                                    const QModelIndex &index)
{
    Q_UNUSED(index)
    if (event->type() != QEvent::ToolTip)
        return false;
    const Button button = buttonAt(event->pos(), option.rect);
    for (const Look &look : kLooks) {
        if (look.button == button) {
            QToolTip::showText(event->globalPos(), QString::fromLatin1(look.tip), view->viewport());
            return true;
        }
    }
    QToolTip::hideText();
    return true;
}
