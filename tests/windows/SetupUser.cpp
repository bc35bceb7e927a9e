#include "windows/SetupUser.h"

#include "support/Wait.h"

#include <QDebug>

namespace {

const QString kSetup = QStringLiteral("e-VOX SINAR Setup");
const QString kUninstall = QStringLiteral("e-VOX SINAR Uninstall");
constexpr std::chrono::minutes kEnd{1};

} // namespace

SetupUser::SetupUser(const WinePrefix &windows, const QString &press)
    : m_windows(windows)
    , m_press(WinePrefix::toWindows(press))
{
}

std::unique_ptr<ChildProcess> SetupUser::begin(const QString &program) const
{
    auto process = std::make_unique<ChildProcess>();
    process->setProcessEnvironment(m_windows.environment());
    return process->begin(QStringLiteral("wine"), {program}) ? std::move(process) : nullptr;
}

bool SetupUser::press(const QStringList &arguments) const
{
    if (m_windows.run(QStringList{m_press} + arguments).exitCode == 0)
        return true;
    qWarning().noquote() << "there is no" << arguments;
    return false;
}

bool SetupUser::page(const QString &name, const QString &title, const QString &button)
{
    return press({QStringLiteral("--wait"), title, button}) && (!m_look || m_look(name)) && press({title, button});
}

bool SetupUser::install(const QString &setup)
{
    const std::unique_ptr<ChildProcess> process = begin(setup);
    const QString next = QStringLiteral("Next >");
    return process &&
           page(QStringLiteral("setup-language"), QStringLiteral("Installer Language"), QStringLiteral("OK")) &&
           page(QStringLiteral("setup-licence"), kSetup, QStringLiteral("I Agree")) &&
           page(QStringLiteral("setup-users"), kSetup, next) && page(QStringLiteral("setup-folder"), kSetup, next) &&
           page(QStringLiteral("setup-parts"), kSetup, QStringLiteral("Install")) &&
           page(QStringLiteral("setup-end"), kSetup, QStringLiteral("Start e-VOX SINAR")) &&
           press({kSetup, QStringLiteral("Finish")}) &&
           waitFor([&process] { return !process->isAnythingRunning(); }, kEnd) && process->exitCode() == 0;
}

bool SetupUser::uninstall(const QString &uninstaller, bool deletesSettings)
{
    const std::unique_ptr<ChildProcess> process = begin(uninstaller);
    return process && page(QStringLiteral("uninstall"), kUninstall, QStringLiteral("Uninstall")) &&
           page(QStringLiteral("uninstall-settings"), kUninstall,
                deletesSettings ? QStringLiteral("Yes") : QStringLiteral("No")) &&
           page(QStringLiteral("uninstall-end"), kUninstall, QStringLiteral("Close")) &&
           waitFor([&process] { return !process->isAnythingRunning(); }, kEnd);
}
