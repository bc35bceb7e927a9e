#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QWidgetList>

/// What a user sees of the program: its windows, the widgets in them and their properties. Changes nothing.
namespace WidgetFinder {

/// Visible windows: class, name, title, modal; of a message box also text, informativeText and its buttons' texts.
[[nodiscard]] QJsonArray windows();
/// One window, as above.
[[nodiscard]] QJsonObject describedWindow(const QWidget &window);
/// The window that has the keyboard: an open popup, the modal window, the active one, or the only visible one.
[[nodiscard]] QWidget *frontWindow();
/// Widgets of that object name, the front window's and visible ones first. A window is given by its title or object
/// name; empty: any window.
[[nodiscard]] QWidgetList named(const QString &name, const QString &window);
/// Class, name, window, visible, enabled and, where there is one, text.
[[nodiscard]] QJsonObject described(const QWidget &widget);
/// "windowTitle", "checked", "echoMode" ...; enumerators by name. Undefined when the widget has no such property or
/// one that cannot be written down. "plainText" of a label is its text without markup.
[[nodiscard]] QJsonValue property(const QWidget &widget, const QString &name);
/// A button's text without its mnemonic.
[[nodiscard]] QString plainLabel(const QString &text);

} // namespace WidgetFinder
