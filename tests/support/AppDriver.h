#pragma once

#include "support/DriverLine.h"

#include <QJsonArray>
#include <QJsonValue>
#include <QProcessEnvironment>
#include <QString>

#include <chrono>
#include <functional>

/// A user in front of a running program: sees its windows and works with mouse and keyboard. What cannot be done yet
/// is tried again until it can be; whatever fails prints what was expected and the windows that are open instead.
/// A driven program ends when its driver does.
class AppDriver final
{
public:
    static constexpr std::chrono::milliseconds kPatience{15000};

    AppDriver();
    AppDriver(const AppDriver &) = delete;
    AppDriver &operator=(const AppDriver &) = delete;

    /// What loads the driver into a program that is started with this environment.
    void addTo(QProcessEnvironment &environment) const;

    /// Waits for the n-th program to be there: the second is the one that the first has started in its place.
    [[nodiscard]] bool waitForProgram(int number = 1, std::chrono::milliseconds timeout = std::chrono::seconds(30));
    [[nodiscard]] qint64 pid() const { return m_line.pid(); }
    [[nodiscard]] const QStringList &arguments() const { return m_line.arguments(); }

    [[nodiscard]] bool waitForWindow(const QString &title, std::chrono::milliseconds timeout = kPatience);
    /// A message box with exactly this text, in front of everything else.
    [[nodiscard]] bool waitForBox(const QString &title, const QString &text,
                                  std::chrono::milliseconds timeout = kPatience);
    /// Clicks the button of the message box in front.
    [[nodiscard]] bool answer(const QString &button);

    /// Undefined when there is no such widget or property.
    [[nodiscard]] QJsonValue property(const QString &widget, const QString &property);
    [[nodiscard]] bool waitForProperty(const QString &widget, const QString &property, const QJsonValue &value,
                                       std::chrono::milliseconds timeout = kPatience);
    [[nodiscard]] bool waitForText(const QString &widget, const QString &text)
    {
        return waitForProperty(widget, QStringLiteral("text"), text);
    }
    /// The object name of the widget that has the keyboard.
    [[nodiscard]] QString focus();

    [[nodiscard]] bool click(const QString &widget);
    /// Opens the context menu of the widget that has the keyboard.
    [[nodiscard]] bool openMenu();
    /// Clicks an entry of the menu that is open.
    [[nodiscard]] bool choose(const QString &entry);
    [[nodiscard]] bool type(const QString &text);
    /// "Return", "Shift+Tab", "Ctrl+A".
    [[nodiscard]] bool key(const QString &name);
    /// Presses Tab until the widget has the keyboard.
    [[nodiscard]] bool tabTo(const QString &widget);
    /// The window in front as a PNG file.
    [[nodiscard]] bool screenshot(const QString &path);

    /// Why the program refuses the action now; empty when it has been done.
    [[nodiscard]] QString tryClick(const QString &widget);
    [[nodiscard]] QString tryChoose(const QString &entry);
    [[nodiscard]] QString tryKey(const QString &name);
    [[nodiscard]] QString tryType(const QString &text);

private:
    [[nodiscard]] QString attempt(const QJsonObject &request);
    [[nodiscard]] bool insist(const QJsonObject &request);
    [[nodiscard]] QJsonArray windows();
    /// Waits for the condition, and complains with what was expected.
    [[nodiscard]] bool expect(const QString &what, const std::function<bool()> &condition,
                              std::chrono::milliseconds timeout = kPatience);

    DriverLine m_line;
};
