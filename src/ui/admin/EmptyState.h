#pragma once

#include <QLabel>
#include <QPointer>

class QAbstractItemModel;
class QAbstractItemView;

/// The words that stand in a list or table while it has no rows. Belongs to its view, lets the mouse through, and
/// stays in place when the view is scrolled sideways. Never asks its view, which may be half destroyed when its model
/// tells of its end.
class EmptyState final : public QLabel
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(EmptyState)

public:
    /// Shows the text, plain, whenever the view has no rows. The view has its model by now; called again, it takes the
    /// new text and the view's present model.
    static void show(QAbstractItemView *view, const QString &text);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit EmptyState(QAbstractItemView *view);
    void watch(const QAbstractItemModel *model);
    void refresh();
    void cover(const QWidget &viewport);

    QPointer<const QAbstractItemModel> m_model;
};
