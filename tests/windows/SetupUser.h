#pragma once

#include "windows/WinePrefix.h"

#include <QString>

#include <functional>
#include <memory>

/// Somebody who installs and removes the program by hand, page by page. Each walk is false, after printing where it
/// stopped, when it does not get to its end.
class SetupUser final
{
public:
    /// `press` is the Windows program that presses buttons; a path of this computer.
    SetupUser(const WinePrefix &windows, const QString &press);

    /// Called with a page's name when it is shown; false ends the walk.
    void onShown(const std::function<bool(const QString &)> &look) { m_look = look; }

    /// With what the pages offer, and without starting the program at the end.
    [[nodiscard]] bool install(const QString &setup);
    [[nodiscard]] bool uninstall(const QString &uninstaller, bool deletesSettings);

private:
    [[nodiscard]] std::unique_ptr<ChildProcess> begin(const QString &program) const;
    /// Looks at the page with this button, and presses it.
    [[nodiscard]] bool page(const QString &name, const QString &title, const QString &button);
    [[nodiscard]] bool press(const QStringList &arguments) const;

    const WinePrefix &m_windows;
    QString m_press;
    std::function<bool(const QString &)> m_look;
};
