#include "support/Strays.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QList>
#include <QThread>

#include <algorithm>
#include <csignal>
#include <sys/prctl.h>
#include <sys/wait.h>

namespace {

constexpr std::chrono::milliseconds kPoll{5};
constexpr std::chrono::milliseconds kKilled{5000}; // after that the system itself is in trouble

/// Living processes with the mark; one that has ended has no environment any more.
QList<pid_t> marked(const QString &mark)
{
    const QByteArray entry = QByteArray(Strays::kVariable) + '=' + mark.toLatin1();
    QList<pid_t> found;
    const QStringList processes = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &process : processes) {
        bool isNumber = false;
        const pid_t id = process.toInt(&isNumber);
        QFile environment(QStringLiteral("/proc/%1/environ").arg(process));
        if (isNumber && environment.open(QIODevice::ReadOnly) && environment.readAll().split('\0').contains(entry))
            found.append(id);
    }
    return found;
}

/// Signals until none is left. Looked up anew each time: one of them may just be starting another.
bool signalUntilGone(const QString &mark, int signal, std::chrono::milliseconds timeout)
{
    QElapsedTimer clock;
    clock.start();
    QList<pid_t> signalled;
    for (;;) {
        const QList<pid_t> left = marked(mark);
        for (const pid_t process : left) {
            if (!signalled.contains(process)) {
                ::kill(process, signal);
                signalled.append(process);
            }
        }
        // Only what has been adopted is this process's to bury; of the others their parent hears. A process loses its
        // environment a moment before it can be buried.
        const bool allBuried = std::all_of(signalled.cbegin(), signalled.cend(),
                                           [](pid_t process) { return ::waitpid(process, nullptr, WNOHANG) != 0; });
        if (left.isEmpty() && allBuried)
            return true;
        if (clock.hasExpired(timeout.count()))
            return false;
        QThread::msleep(static_cast<unsigned long>(kPoll.count()));
    }
}

} // namespace

void Strays::adopt()
{
    prctl(PR_SET_CHILD_SUBREAPER, 1);
}

bool Strays::areLeft(const QString &mark)
{
    return !marked(mark).isEmpty();
}

void Strays::end(const QString &mark, std::chrono::milliseconds politely)
{
    if (politely.count() > 0 && signalUntilGone(mark, SIGTERM, politely))
        return;
    if (!signalUntilGone(mark, SIGKILL, kKilled))
        qWarning("a program outlives its test");
}
