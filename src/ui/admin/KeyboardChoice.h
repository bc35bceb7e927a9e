#pragma once

#include <QObject>

class QAbstractItemView;

/// Lets the keys that move in a view, open its menu or activate a row choose the row that is framed. When Tab reaches a
/// view, its first row is framed and nothing is chosen; on the only row, Home or Down would move nowhere and choose
/// nothing either.
class KeyboardChoice final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(KeyboardChoice)

public:
    /// Belongs to its view from now on.
    explicit KeyboardChoice(QAbstractItemView *view);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void chooseCurrent();

    QAbstractItemView *m_view;
};
