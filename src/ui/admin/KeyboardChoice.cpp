#include "ui/admin/KeyboardChoice.h"

#include <QAbstractItemView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QPointer>

namespace {

bool choosesRow(const QKeyEvent &event)
{
    switch (event.key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Menu: return true;
    case Qt::Key_F10: return event.modifiers().testFlag(Qt::ShiftModifier);
    default: return false;
    }
}

} // namespace

KeyboardChoice::KeyboardChoice(QAbstractItemView *view)
    : QObject(view)
    , m_view(view)
{
    view->installEventFilter(this);
}

bool KeyboardChoice::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress || !choosesRow(*static_cast<QKeyEvent *>(event)))
        return QObject::eventFilter(watched, event);
    chooseCurrent();
    const QPointer<KeyboardChoice> self(this);
    watched->event(event); // may open a dialog, and close the panel
    if (self)
        chooseCurrent(); // with Ctrl the view takes the choice back when it moves within a row
    return true;
}

void KeyboardChoice::chooseCurrent()
{
    const QModelIndex current = m_view->currentIndex();
    if (current.isValid() && !m_view->selectionModel()->hasSelection())
        m_view->selectionModel()->select(current, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}
