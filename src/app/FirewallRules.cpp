#include "app/FirewallRules.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QProcess>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds kCheckTimeout{3000};
constexpr std::chrono::milliseconds kAddTimeout{5000};
constexpr std::chrono::milliseconds kKillTimeout{1000};

const QLatin1String kRuleName("eVOX SINAR");

/// One command line of the system's shell.
class ShellCommand final
{
public:
    ShellCommand(const QString &command, std::chrono::milliseconds timeout)
    {
        start(command);
        m_finished = m_process.waitForFinished(static_cast<int>(timeout.count()));
        m_output = QString::fromLocal8Bit(m_process.readAllStandardOutput());
        if (!m_finished && m_process.state() != QProcess::NotRunning) {
            m_process.kill();
            m_process.waitForFinished(static_cast<int>(kKillTimeout.count()));
        }
    }

    /// What it has written so far, also when it did not finish in time.
    [[nodiscard]] QString output() const { return m_output; }
    [[nodiscard]] bool succeeded() const
    {
        return m_finished && m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0;
    }

private:
    void start(const QString &command)
    {
        const QString shell = QStringLiteral("cmd.exe");
#ifdef Q_OS_WIN
        // The shell takes the rest of its command line as it stands; quoted as one argument, the quotes round the names
        // would reach the command with backslashes.
        m_process.setNativeArguments(QStringLiteral("/c ") + command);
        m_process.start(shell, QStringList());
#else
        m_process.start(shell, {QStringLiteral("/c"), command});
#endif
    }

    QProcess m_process;
    QString m_output;
    bool m_finished = false;
};

bool isRuleMissing()
{
    const ShellCommand check(QStringLiteral("netsh advfirewall firewall show rule name=\"%1\"").arg(kRuleName),
                             kCheckTimeout);
    // Any other answer counts as a rule that is there, also silence and a Windows in another language: rules that
    // cannot be checked would be added again at each start.
    return check.output().contains(QLatin1String("No rules match"));
}

void addRule(const QString &direction, const QString &program)
{
    const QString command = QStringLiteral("netsh advfirewall firewall add rule name=\"%1\" dir=%2 action=allow "
                                           "program=\"%3\" enable=yes")
                                .arg(kRuleName, direction, program);
    if (ShellCommand(command, kAddTimeout).succeeded())
        qInfo().noquote() << "[FIREWALL] Rule added:" << kRuleName << direction << program;
    else
        qWarning().noquote() << "[FIREWALL] Failed (may need admin):" << kRuleName << direction;
}

} // namespace

void setupFirewallRules()
{
    if (!isRuleMissing()) {
        qDebug().noquote() << "[FIREWALL] Rule already exists:" << kRuleName;
        return;
    }
    const QString program = QDir::toNativeSeparators(QCoreApplication::applicationFilePath());
    for (const char *direction : {"in", "out"})
        addRule(QLatin1String(direction), program);
}
