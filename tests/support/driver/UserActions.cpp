#include "support/driver/UserActions.h"

#include "support/driver/WidgetFinder.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QKeySequence>
#include <QMenu>
#include <QMessageBox>
#include <QPixmap>
#include <QPointer>
#include <QRadioButton>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTest>

#include <algorithm>

namespace {

using UserActions::Action;

Action refused(const QString &why)
{
    return {why, {}};
}

/// These two take a click only there, however wide they are.
QRect hitArea(const QWidget &widget)
{
    const auto *button = qobject_cast<const QAbstractButton *>(&widget);
    const bool isRadio = qobject_cast<const QRadioButton *>(&widget) != nullptr;
    if (!button || (!isRadio && !qobject_cast<const QCheckBox *>(&widget)))
        return widget.rect();
    QStyleOptionButton option;
    option.initFrom(&widget);
    option.text = button->text();
    option.icon = button->icon();
    option.iconSize = button->iconSize();
    const auto area = isRadio ? QStyle::SE_RadioButtonClickRect : QStyle::SE_CheckBoxClickRect;
    return widget.style()->subElementRect(area, &option, &widget);
}

QPoint clickPoint(const QWidget &widget)
{
    return (widget.visibleRegion().boundingRect() & hitArea(widget)).center();
}

QString whyNotReachable(const QWidget &widget)
{
    if (!widget.isVisible())
        return QStringLiteral("is hidden");
    if (!widget.isEnabled())
        return QStringLiteral("is disabled");
    const QWidget *window = widget.window();
    const QWidget *front = QApplication::activeModalWidget();
    if (front && front != window && !front->isAncestorOf(window))
        return QStringLiteral("is behind the window \"%1\"").arg(front->windowTitle());
    const QPoint point = clickPoint(widget);
    if (!widget.visibleRegion().contains(point))
        return QStringLiteral("is out of view");
    const QWidget *hit = window->childAt(widget.mapTo(window, point));
    if (hit && hit != &widget && !widget.isAncestorOf(hit))
        return QStringLiteral("is covered by \"%1\"").arg(hit->objectName());
    return {};
}

/// Without a window manager nobody else gives a new window the keyboard.
void activate(QWidget *window)
{
    if (window && !window->isActiveWindow() && window->windowType() != Qt::Popup)
        window->activateWindow();
}

/// Keys that come before a window has the keyboard would be no shortcuts of it.
QString whyNoKeysYet(const QWidget &widget)
{
    QWidget *window = widget.window();
    activate(window);
    const bool takesKeys = window->isActiveWindow() || window->windowType() == Qt::Popup;
    return takesKeys ? QString() : QStringLiteral("\"%1\" has not got the keyboard yet").arg(window->windowTitle());
}

bool isTypeable(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() >= ' ' && c.unicode() <= '~'; });
}

} // namespace

Action UserActions::click(QWidget *widget)
{
    if (const QString why = whyNotReachable(*widget); !why.isEmpty())
        return refused(QStringLiteral("\"%1\" %2").arg(widget->objectName(), why));
    return {{}, [target = QPointer<QWidget>(widget)] {
                if (!target)
                    return;
                activate(target->window());
                QTest::mouseClick(target, Qt::LeftButton, {}, clickPoint(*target));
            }};
}

Action UserActions::answer(const QString &button)
{
    const auto *box = qobject_cast<QMessageBox *>(WidgetFinder::frontWindow());
    if (!box)
        return refused(QStringLiteral("the window in front is no message box"));
    const QList<QAbstractButton *> buttons = box->buttons();
    for (QAbstractButton *candidate : buttons) {
        if (WidgetFinder::plainLabel(candidate->text()) == button)
            return click(candidate);
    }
    return refused(QStringLiteral("the message box has no button \"%1\"").arg(button));
}

Action UserActions::type(const QString &text)
{
    if (!isTypeable(text))
        return refused(QStringLiteral("only printable ASCII can be typed"));
    QWidget *target = focusWidget();
    if (!target)
        return refused(QStringLiteral("no widget has the keyboard"));
    return {whyNoKeysYet(*target), [text] {
                for (const QChar c : text) {
                    // A key may move the focus or open a window; the next one goes where a user's would.
                    if (QWidget *now = focusWidget())
                        QTest::keyClick(now, c.toLatin1());
                }
            }};
}

Action UserActions::key(const QString &name)
{
    const QKeySequence sequence = QKeySequence::fromString(name, QKeySequence::PortableText);
    constexpr int kModifiers = static_cast<int>(Qt::KeyboardModifierMask);
    if (sequence.count() != 1 || (sequence[0] & ~kModifiers) == Qt::Key_unknown)
        return refused(QStringLiteral("there is no key \"%1\"").arg(name));
    QWidget *window = WidgetFinder::frontWindow();
    if (!window)
        return refused(QStringLiteral("no window is open"));
    QWidget *focused = focusWidget();
    return {whyNoKeysYet(*window), [combination = sequence[0], target = QPointer<QWidget>(focused ? focused : window)] {
                if (!target)
                    return;
                QTest::keyClick(target, static_cast<Qt::Key>(combination & ~kModifiers),
                                Qt::KeyboardModifiers(combination & kModifiers));
            }};
}

Action UserActions::contextMenu()
{
    QWidget *target = focusWidget();
    if (!target)
        return refused(QStringLiteral("no widget has the keyboard"));
    return {{}, [target = QPointer<QWidget>(target)] {
                if (!target)
                    return;
                const QPoint place = target->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
                QContextMenuEvent event(QContextMenuEvent::Keyboard, place, target->mapToGlobal(place));
                QCoreApplication::sendEvent(target, &event);
            }};
}

Action UserActions::choose(const QString &entry)
{
    auto *menu = qobject_cast<QMenu *>(WidgetFinder::frontWindow());
    if (!menu)
        return refused(QStringLiteral("no menu is open"));
    const QList<QAction *> entries = menu->actions();
    const auto found = std::find_if(entries.begin(), entries.end(), [&entry](const QAction *candidate) {
        return candidate->isVisible() && WidgetFinder::plainLabel(candidate->text()) == entry;
    });
    if (found == entries.end() || !(*found)->isEnabled())
        return refused(QStringLiteral("the menu has no entry \"%1\" that can be chosen").arg(entry));
    return {{}, [target = QPointer<QMenu>(menu), place = menu->actionGeometry(*found).center()] {
                if (target)
                    QTest::mouseClick(target.data(), Qt::LeftButton, {}, place);
            }};
}

QWidget *UserActions::focusWidget()
{
    const QWidget *window = WidgetFinder::frontWindow();
    QWidget *focused = window ? window->focusWidget() : nullptr;
    return focused && focused->isVisible() && focused->isEnabled() ? focused : nullptr;
}

QString UserActions::screenshot(const QString &window, const QString &path)
{
    QWidget *target = WidgetFinder::frontWindow();
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *candidate : windows) {
        if (!window.isEmpty() && candidate->isVisible() &&
            (candidate->windowTitle() == window || candidate->objectName() == window))
            target = candidate;
    }
    if (!target)
        return QStringLiteral("no window is open");
    return target->grab().save(path, "PNG") ? QString() : QStringLiteral("cannot write ") + path;
}
