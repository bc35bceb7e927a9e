#pragma once

#include <QJsonValue>
#include <QString>

#include <functional>

class QWidget;

/// What a user can do to the program, and only that: no action reaches a widget that is hidden, disabled, out of view
/// or behind a modal window.
namespace UserActions {

/// Either why the user cannot do it, or what is done when it may begin.
struct Action
{
    QString refusal;
    std::function<void()> begin;
};

/// The left button on the widget's middle; of a radio button or check box, on its mark and text.
[[nodiscard]] Action click(QWidget *widget);
/// The button of the message box in front whose text, without its mnemonic, is this.
[[nodiscard]] Action answer(const QString &button);
/// Printable ASCII, into the widget that has the keyboard.
[[nodiscard]] Action type(const QString &text);
/// "Return", "Shift+Tab", "Ctrl+A": to the widget that has the keyboard, or else to the window in front.
[[nodiscard]] Action key(const QString &name);

/// What the menu key opens, at the widget that has the keyboard.
[[nodiscard]] Action contextMenu();
/// The left button on the entry of the menu in front whose text, without its mnemonic, is this.
[[nodiscard]] Action choose(const QString &entry);

/// The widget that keys go to; nullptr without one.
[[nodiscard]] QWidget *focusWidget();
/// The front window, or the one of this title or object name, as a PNG file; why not, or nothing.
[[nodiscard]] QString screenshot(const QString &window, const QString &path);

} // namespace UserActions
