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
    label->watch(view->model());
    label->refresh();
}

EmptyState::EmptyState(QAbstractItemView *view)
    : QLabel(view)
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
    cover(*view->viewport());
}

void EmptyState::watch(const QAbstractItemModel *model)
{
    if (m_model)
        m_model->disconnect(this);
    m_model = model;
    if (!model)
        return;
    connect(model, &QAbstractItemModel::rowsInserted, this, &EmptyState::refresh);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &EmptyState::refresh);
    connect(model, &QAbstractItemModel::modelReset, this, &EmptyState::refresh);
    connect(model, &QAbstractItemModel::layoutChanged, this, &EmptyState::refresh);
}

void EmptyState::refresh()
{
    setVisible(!m_model || m_model->rowCount() == 0);
}

/// Over the rows only: the header above them stays to be seen.
void EmptyState::cover(const QWidget &viewport)
{
    setGeometry(viewport.geometry());
    raise();
}

bool EmptyState::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::Move)
        cover(*static_cast<QWidget *>(watched));
    return QLabel::eventFilter(watched, event);
}
