#pragma once

#include "support/ChildProcess.h"
#include "support/Display.h"
#include "support/FakeSerial.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// A Windows that has never been used: a Wine prefix of its own with a desktop on the display. The radio is its COM5.
class WinePrefix final
{
public:
    struct Result
    {
        int exitCode = -1; ///< -1: it did not start, crashed or did not end
        QByteArray output;
    };

    WinePrefix(const Display &display, const FakeSerial &radio);
    WinePrefix(const WinePrefix &) = delete;
    WinePrefix &operator=(const WinePrefix &) = delete;

    /// Makes it and starts its desktop; false, after printing why, when that fails. Takes some 15 seconds.
    [[nodiscard]] bool start();

    [[nodiscard]] static QString serialPort() { return QStringLiteral("COM5"); }
    /// Where Windows keeps the user's things, such as C:\users\NAME.
    [[nodiscard]] QString userFolder() const;
    /// This computer's path of a file on C:, and the other way round of any file.
    [[nodiscard]] QString toUnix(const QString &path) const;
    [[nodiscard]] static QString toWindows(const QString &path);

    /// For "wine", and what it is to run.
    [[nodiscard]] QProcessEnvironment environment() const;
    /// Runs a Windows program and whatever it starts to their end.
    [[nodiscard]] Result run(const QStringList &command, const QProcessEnvironment &environment) const;
    [[nodiscard]] Result run(const QStringList &command) const { return run(command, environment()); }
    /// A value of the registry as text; null when it is not there.
    [[nodiscard]] QString registryValue(const QString &key, const QString &name) const;

private:
    void writeFonts() const;
    [[nodiscard]] bool make() const;
    [[nodiscard]] bool append(const QString &file, const QString &text) const;
    [[nodiscard]] bool isServerReady() const;

    const Display &m_display;
    const FakeSerial &m_radio;
    QTemporaryDir m_home;
    ChildProcess m_server;
    ChildProcess m_desktop; // ends first
};
