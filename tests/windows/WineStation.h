#pragma once

#include "support/Station.h"
#include "windows/WinePrefix.h"

/// A gateway on Windows: the program that is installed there, on Wine's. Its radio is the prefix's COM5.
class WineStation final : public Station
{
public:
    WineStation(const Settings &settings, const Display &display);

    /// Before start().
    [[nodiscard]] WinePrefix &windows() { return m_windows; }
    /// C:\…\evox-sinar.exe
    void setProgram(const QString &path) { m_program = path; }
    /// In the environment of the program, from the next start on.
    void setVariable(const QString &name, const QString &value) { m_variables.insert(name, value); }
    /// Where the driver's plugin for Windows and what it imports are: folders of this computer.
    void setDriverFolders(const QString &plugins, const QString &libraries);
    /// Early on the PATH of Windows.
    void setPath(const QStringList &folders) { m_path = folders; }

    [[nodiscard]] QString configurationFolder() const override;

protected:
    [[nodiscard]] bool startProgram(ChildProcess &program) const override;
    [[nodiscard]] QString serialPort() const override { return WinePrefix::serialPort(); }

private:
    WinePrefix m_windows;
    QString m_program;
    QString m_plugins;
    QString m_libraries;
    QStringList m_path;
    QProcessEnvironment m_variables;
};
