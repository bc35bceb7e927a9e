#include "WidgetChecks.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QWidget>

namespace {

constexpr QSize kSmallScreen(1024 / 2, 600 / 2); // logical pixels
constexpr int kWindowFrame = 24;

} // namespace

QStringList WidgetChecks::cutOff(const QWidget &window)
{
    QStringList texts;
    for (const auto *widget : window.findChildren<QWidget *>()) {
        const auto *label = qobject_cast<const QLabel *>(widget);
        const auto *button = qobject_cast<const QAbstractButton *>(widget);
        if (!widget->isVisible() || (!label && !button))
            continue;
        const bool wraps = label && label->wordWrap();
        const QSize needed = wraps ? QSize(0, label->heightForWidth(label->width())) : widget->minimumSizeHint();
        if (needed.width() > widget->width() || needed.height() > widget->height())
            texts.append(widget->property("text").toString());
    }
    return texts;
}

QString WidgetChecks::tooBig(const QWidget &window)
{
    const QSize least = window.minimumSizeHint().expandedTo(window.minimumSize());
    if (least.width() <= kSmallScreen.width() && least.height() <= kSmallScreen.height() - kWindowFrame)
        return {};
    return QStringLiteral("needs %1x%2").arg(least.width()).arg(least.height());
}

QStringList WidgetChecks::tabOrder(QWidget &window)
{
    QStringList names;
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window))
        return names;
    while (QWidget *focus = QApplication::focusWidget()) {
        if (names.contains(focus->objectName()))
            break;
        names.append(focus->objectName());
        QTest::keyClick(focus, Qt::Key_Tab);
    }
    return names;
}
