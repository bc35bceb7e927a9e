#include "ui/admin/EmptyState.h"

#include <QAbstractItemView>
#include <QEvent>
#include <QVariant>

namespace {

constexpr int kMargin = 24; // logical pixels

} // namespace

void EmptyState::show(QAbstractItemView *view, const QString &text)
{
    auto *label = view->findChild<EmptyState *>(QString(), Qt::FindDirectChildrenOnly);
    if (!label)
        label = new EmptyState(view);
    label->setText(text);
    label->watchModel();
    label->refresh();
}

EmptyState::EmptyState(QAbstractItemView *view)
    : QLabel(view)
    , m_view(view)
{
    setObjectName(QStringLiteral("emptyState"));
    setProperty("hint", true);
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignCenter);
    setWordWrap(true);
    setMargin(kMargin);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    view->viewport()->installEventFilter(this);
    cover();
}

void EmptyState::watchModel()
{
    const QAbstractItemModel *model = m_view->model();
    if (!model)
        return;
    model->disconnect(this); // called again: each is told once
    connect(model, &QAbstractItemModel::rowsInserted, this, &EmptyState::refresh);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &EmptyState::refresh);
    connect(model, &QAbstractItemModel::modelReset, this, &EmptyState::refresh);
    connect(model, &QAbstractItemModel::layoutChanged, this, &EmptyState::refresh);
}

void EmptyState::refresh()
{
    const QAbstractItemModel *model = m_view->model();
    setVisible(!model || model->rowCount(m_view->rootIndex()) == 0);
}

/// Over the rows only: the header above them stays to be seen.
void EmptyState::cover()
{
    setGeometry(m_view->viewport()->geometry());
    raise();
}

bool EmptyState::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::Move)
        cover();
    return QLabel::eventFilter(watched, event);
}
