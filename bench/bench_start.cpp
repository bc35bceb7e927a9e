// From the start of a program to its first painted window, and what it then holds in memory.

#include "Bench.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <cstdlib>

namespace {

struct Started
{
    double milliseconds = 0;
    double residentMegabytes = 0;
};

double residentMegabytes(qint64 pid)
{
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const auto lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toDouble() / 1024;
    }
    return 0;
}

Started start(const QString &program, const QString &home)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), home);
    environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("*=false"));
    process.setProcessEnvironment(environment);
    process.setStandardErrorFile(QProcess::nullDevice());
    Started started;
    started.milliseconds =
        1000 * Bench::secondsOf([&] {
            process.start(QCoreApplication::applicationDirPath() + QLatin1Char('/') + program, {});
            while (process.waitForReadyRead() && !process.readAllStandardOutput().contains("painted")) {
            }
        });
    if (process.state() != QProcess::Running) {
        std::fprintf(stderr, "%s did not paint\n", qPrintable(program));
        std::exit(1);
    }
    started.residentMegabytes = residentMegabytes(process.processId());
    process.kill();
    process.waitForFinished();
    return started;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    const QTemporaryDir home;
    const auto timeOf = [&home](const char *program) {
        return start(QString::fromLatin1(program), home.path()).milliseconds;
    };
    const auto times = Bench::compare([&] { return timeOf("start_gateway"); }, [&] { return timeOf("start_empty"); });
    Bench::printRow("start to first painted window", times.ours, times.baseline, "ms", 1.5);
    return 0;
}
