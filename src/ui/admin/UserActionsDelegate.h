#pragma once

#include <QStyledItemDelegate>

/// Two small buttons in a cell, "Edit" and "Delete", that are drawn and not widgets.
class UserActionsDelegate final : public QStyledItemDelegate
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UserActionsDelegate)

public:
    explicit UserActionsDelegate(QObject *parent = nullptr);

    enum class Button { None, Edit, Delete };
    /// Where a button of a cell is; @p cell in the view's coordinates.
    [[nodiscard]] static QRect area(Button button, const QRect &cell);

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;

signals:
    void editClicked();
    void deleteClicked();

protected:
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

private:
    [[nodiscard]] static Button buttonAt(const QPoint &position, const QRect &cell);

    QPersistentModelIndex m_pressedCell;
    Button m_pressed = Button::None;
};
