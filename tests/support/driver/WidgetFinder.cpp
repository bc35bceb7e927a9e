#include "support/driver/WidgetFinder.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QMetaProperty>
#include <QTextDocument>
#include <QVariant>

#include <algorithm>

namespace {

QString className(const QWidget &widget)
{
    return QString::fromLatin1(widget.metaObject()->className());
}

QWidgetList visibleWindows()
{
    QWidgetList windows;
    const QWidgetList all = QApplication::topLevelWidgets();
    std::copy_if(all.begin(), all.end(), std::back_inserter(windows), [](const QWidget *window) {
        return window->isVisible() && window->windowType() != Qt::ToolTip && window->windowType() != Qt::Desktop;
    });
    return windows;
}

/// Smaller is looked at first.
int rank(const QWidget *widget, const QWidget *front)
{
    return (widget->window() == front ? 0 : 2) + (widget->isVisible() ? 0 : 1);
}

} // namespace

QJsonArray WidgetFinder::windows()
{
    QJsonArray all;
    const QWidgetList windows = visibleWindows();
    for (const QWidget *window : windows)
        all.append(describedWindow(*window));
    return all;
}

QJsonObject WidgetFinder::describedWindow(const QWidget &window)
{
    QJsonObject described{{QStringLiteral("class"), className(window)},
                          {QStringLiteral("name"), window.objectName()},
                          {QStringLiteral("title"), window.windowTitle()},
                          {QStringLiteral("modal"), window.isModal()}};
    if (const auto *box = qobject_cast<const QMessageBox *>(&window)) {
        QJsonArray buttons;
        const QList<QAbstractButton *> all = box->buttons();
        for (const QAbstractButton *button : all)
            buttons.append(plainLabel(button->text()));
        described.insert(QStringLiteral("text"), box->text());
        described.insert(QStringLiteral("informativeText"), box->informativeText());
        described.insert(QStringLiteral("buttons"), buttons);
    }
    return described;
}

QWidget *WidgetFinder::frontWindow()
{
    if (QWidget *popup = QApplication::activePopupWidget())
        return popup;
    if (QWidget *modal = QApplication::activeModalWidget())
        return modal;
    if (QWidget *active = QApplication::activeWindow())
        return active;
    const QWidgetList windows = visibleWindows();
    return windows.size() == 1 ? windows.first() : nullptr;
}

QWidgetList WidgetFinder::named(const QString &name, const QString &window)
{
    QWidgetList found;
    const QWidgetList all = QApplication::allWidgets();
    std::copy_if(all.begin(), all.end(), std::back_inserter(found), [&](const QWidget *widget) {
        const QWidget *own = widget->window();
        return widget->objectName() == name &&
               (window.isEmpty() || own->objectName() == window || own->windowTitle() == window);
    });
    const QWidget *front = frontWindow();
    std::stable_sort(found.begin(), found.end(), [front](const QWidget *left, const QWidget *right) {
        return rank(left, front) < rank(right, front);
    });
    return found;
}

QJsonObject WidgetFinder::described(const QWidget &widget)
{
    QJsonObject described{{QStringLiteral("class"), className(widget)},
                          {QStringLiteral("name"), widget.objectName()},
                          {QStringLiteral("window"), widget.window()->windowTitle()},
                          {QStringLiteral("visible"), widget.isVisible()},
                          {QStringLiteral("enabled"), widget.isEnabled()}};
    const QJsonValue text = property(widget, QStringLiteral("text"));
    if (text.isString())
        described.insert(QStringLiteral("text"), text);
    return described;
}

QJsonValue WidgetFinder::property(const QWidget &widget, const QString &name)
{
    if (const auto *label = qobject_cast<const QLabel *>(&widget); label && name == QLatin1String("plainText")) {
        QTextDocument document;
        if (Qt::mightBeRichText(label->text()))
            document.setHtml(label->text());
        else
            document.setPlainText(label->text());
        return document.toPlainText();
    }
    const int index = widget.metaObject()->indexOfProperty(name.toLatin1().constData());
    const QMetaProperty property = widget.metaObject()->property(index);
    const QVariant value = index < 0 ? QVariant() : property.read(&widget);
    if (property.isFlagType())
        return QString::fromLatin1(property.enumerator().valueToKeys(value.toInt()));
    if (property.isEnumType())
        return QString::fromLatin1(property.enumerator().valueToKey(value.toInt()));
    const QJsonValue written = QJsonValue::fromVariant(value);
    return written.isNull() ? QJsonValue(QJsonValue::Undefined) : written;
}

QString WidgetFinder::plainLabel(const QString &text)
{
    const QString mark = QStringLiteral("&");
    QStringList parts = text.split(mark + mark);
    for (QString &part : parts)
        part.remove(mark);
    return parts.join(mark);
}
