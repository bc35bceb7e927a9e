#include "support/ChildProcess.h"

#include "support/Strays.h"
#include "support/Wait.h"

#include <QCoreApplication>
#include <QDebug>
#include <QElapsedTimer>
#include <QFileInfo>

#include <algorithm>
#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

constexpr std::chrono::milliseconds kPoliteEnd{3000};
constexpr std::chrono::milliseconds kShortProgram{20000};
constexpr std::chrono::milliseconds kLogPoll{20};
constexpr std::chrono::milliseconds kLastLines = 10 * kLogPoll; // of a program that has ended
constexpr int kMaxLogLines = 100000;
constexpr int kPrintedLines = 60;

QString newMark()
{
    static int s_number = 0;
    return QStringLiteral("%1-%2").arg(QCoreApplication::applicationPid()).arg(++s_number);
}

} // namespace

ChildProcess::ChildProcess(QObject *parent)
    : QProcess(parent)
    , m_mark(newMark())
{
    connect(this, &QProcess::readyReadStandardError, this, &ChildProcess::readLog);
    connect(&m_followLog, &QTimer::timeout, this, &ChildProcess::readLog);
    setProcessEnvironment(plainEnvironment());
}

ChildProcess::~ChildProcess()
{
    end();
}

QProcessEnvironment ChildProcess::plainEnvironment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"LD_PRELOAD", "QT_QPA_PLATFORM", "DBUS_SESSION_BUS_ADDRESS", "PULSE_SERVER",
                             "ALSA_CONFIG_PATH", "WAYLAND_DISPLAY", "SIMSERIAL"})
        environment.remove(QString::fromLatin1(name));
    return environment;
}

QByteArray ChildProcess::outputOf(const QString &program, const QStringList &arguments,
                                  const QProcessEnvironment &environment)
{
    ChildProcess child;
    child.setProcessEnvironment(environment);
    if (!child.begin(program, arguments) || !child.waitForEnd(kShortProgram))
        return {};
    if (child.exitStatus() != NormalExit || child.exitCode() != 0)
        return {};
    const QByteArray output = child.readAllStandardOutput();
    return output.isNull() ? QByteArray("") : output;
}

void ChildProcess::setLogFile(const QString &path)
{
    m_logFile.close(); // of an earlier program
    m_logFile.setFileName(path);
}

void ChildProcess::setProgramsLogFile(const QString &path)
{
    setLogFile(path);
    m_isProgramsLog = true;
}

bool ChildProcess::begin(const QString &program, const QStringList &arguments)
{
    m_rest.clear();
    m_log.clear();
    m_logFile.close();
    QProcessEnvironment environment = processEnvironment();
    environment.insert(QString::fromLatin1(Strays::kVariable), m_mark);
    setProcessEnvironment(environment);
    if (!m_logFile.fileName().isEmpty()) {
        setStandardErrorFile(m_isProgramsLog ? nullDevice() : m_logFile.fileName());
        m_followLog.start(kLogPoll);
    }
    start(program, arguments);
    if (waitForStarted())
        return true;
    qWarning().noquote() << "cannot start" << program << errorString();
    return false;
}

void ChildProcess::setupChildProcess()
{
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

void ChildProcess::signalGroup(int signal) const
{
    if (isRunning() && processId() > 0)
        ::kill(-static_cast<pid_t>(processId()), signal);
}

bool ChildProcess::isAnythingRunning() const
{
    return isRunning() || Strays::areLeft(m_mark);
}

void ChildProcess::end()
{
    signalGroup(SIGTERM);
    if (isRunning() && !waitForFinished(static_cast<int>(kPoliteEnd.count())))
        killNow();
    Strays::end(m_mark, kPoliteEnd);
}

void ChildProcess::killNow()
{
    signalGroup(SIGKILL);
    if (isRunning())
        waitForFinished();
    Strays::end(m_mark, std::chrono::milliseconds(0));
}

void ChildProcess::readLog()
{
    if (m_logFile.fileName().isEmpty())
        m_rest += readAllStandardError();
    else if (m_logFile.isOpen() || m_logFile.open(QIODevice::ReadOnly))
        m_rest += m_logFile.readAll();
    int begin = 0;
    for (int end = m_rest.indexOf('\n'); end >= 0; end = m_rest.indexOf('\n', begin)) {
        const QString line = QString::fromUtf8(m_rest.mid(begin, end - begin));
        if (m_log.size() < kMaxLogLines)
            m_log.append(m_isProgramsLog ? line.section(QLatin1Char(' '), 2) : line);
        begin = end + 1;
    }
    m_rest.remove(0, begin);
}

int ChildProcess::count(const QString &beginning) const
{
    return static_cast<int>(std::count_if(m_log.cbegin(), m_log.cend(),
                                          [&beginning](const QString &line) { return line.startsWith(beginning); }));
}

QString ChildProcess::lastLine(const QString &beginning) const
{
    const auto found = std::find_if(m_log.crbegin(), m_log.crend(),
                                    [&beginning](const QString &line) { return line.startsWith(beginning); });
    return found == m_log.crend() ? QString() : *found;
}

bool ChildProcess::waitForLog(const QString &beginning, int count, std::chrono::milliseconds timeout) const
{
    const auto written = [this, &beginning, count] { return this->count(beginning) >= count; };
    const auto isDecided = [this, written] { return written() || !isAnythingRunning(); };
    if (waitFor(isDecided, timeout) && waitFor(written, kLastLines))
        return true;
    if (!wasInterrupted()) {
        qWarning().noquote() << QFileInfo(program()).fileName() << "did not write" << count << "times" << beginning;
        printLog();
    }
    return false;
}

bool ChildProcess::waitForEnd(std::chrono::milliseconds timeout) const
{
    return waitFor([this] { return !isRunning(); }, timeout);
}

void ChildProcess::printLog() const
{
    for (const QString &line : m_log.mid(std::max(0, m_log.size() - kPrintedLines)))
        qInfo().noquote() << "   |" << line;
}
