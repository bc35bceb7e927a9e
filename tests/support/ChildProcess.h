#pragma once

#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QTimer>

#include <chrono>

/// A program that runs beside the test and never outlives it: it leads a process group of its own, which ends with this
/// object, and the system kills it when the test itself is killed. What it starts detached ends with this object too.
/// Its standard error is kept line by line.
class ChildProcess final : public QProcess
{
    Q_OBJECT

public:
    explicit ChildProcess(QObject *parent = nullptr);
    ~ChildProcess() override;

    /// What this process has, without the settings that tie it to a desktop session, a screen or a sound server.
    [[nodiscard]] static QProcessEnvironment plainEnvironment();
    /// Runs a short program to its end while the event loop goes on; its standard output, or a null array when it
    /// failed or is missing.
    [[nodiscard]] static QByteArray outputOf(const QString &program, const QStringList &arguments,
                                             const QProcessEnvironment &environment = plainEnvironment());

    /// Before begin(): standard error goes through this file, so that a program that starts itself anew and ends can
    /// leave it to its successor, whose lines follow.
    void setLogFile(const QString &path);
    /// Likewise, where the program itself keeps this file, each line after its time and its level.
    void setProgramsLogFile(const QString &path);
    /// False, with a warning that says why, when the program cannot be started.
    [[nodiscard]] bool begin(const QString &program, const QStringList &arguments = {});
    [[nodiscard]] bool isRunning() const { return state() != NotRunning; }
    /// Whether it or something that it has started still runs.
    [[nodiscard]] bool isAnythingRunning() const;
    /// Asks the group to end and kills it when it has not after three seconds; what was started detached, likewise.
    void end();
    /// Kills the group, and what was started detached, at once.
    void killNow();

    [[nodiscard]] const QStringList &log() const { return m_log; }
    [[nodiscard]] int count(const QString &beginning) const;
    /// The last line that begins so; empty when there is none.
    [[nodiscard]] QString lastLine(const QString &beginning) const;
    /// Waits for so many lines that begin so, from the program's start on; false, after printing the log's end, when
    /// they do not come or the program ends.
    [[nodiscard]] bool waitForLog(const QString &beginning, int count = 1,
                                  std::chrono::milliseconds timeout = std::chrono::seconds(30)) const;
    [[nodiscard]] bool waitForEnd(std::chrono::milliseconds timeout = std::chrono::seconds(30)) const;
    /// Prints the last lines of the log, for whoever reads a failed test.
    void printLog() const;

protected:
    void setupChildProcess() override;

private:
    void signalGroup(int signal) const;
    void readLog();

    QString m_mark; ///< in the environment of everything that comes of this process
    QFile m_logFile;
    bool m_isProgramsLog = false;
    QTimer m_followLog;
    QByteArray m_rest;
    QStringList m_log;
};
