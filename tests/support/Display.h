#pragma once

#include "support/ChildProcess.h"

#include <QString>

/// A screen for programs with windows: the one that is there, or a virtual one.
class Display final
{
public:
    enum class Choice { AlwaysVirtual, RealIfPresent };

    explicit Display(Choice choice = Choice::AlwaysVirtual);

    /// False, after printing why, when no screen comes up.
    [[nodiscard]] bool start();
    void addTo(QProcessEnvironment &environment) const;
    /// Whether somebody may be looking at it.
    [[nodiscard]] bool isReal() const { return !m_name.isEmpty() && !m_server.isRunning(); }

    /// The number of the process's main window; empty while none is shown.
    [[nodiscard]] QString windowOf(qint64 process, const QString &title) const;
    /// Gives the window the keyboard and types these keys, in xdotool's names, one after the other.
    [[nodiscard]] bool type(const QString &window, const QStringList &keys) const;
    /// The window as a PNG file.
    [[nodiscard]] bool screenshot(const QString &window, const QString &path) const;

private:
    [[nodiscard]] QProcessEnvironment environment() const;

    Choice m_choice;
    QString m_name; ///< as in DISPLAY
    ChildProcess m_server;
};
