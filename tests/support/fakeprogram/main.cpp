// Stands in for a program of the system: answers by the plan beside it, and notes how it is called.

#include "support/FakeProgramFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <thread>
#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace {

constexpr std::chrono::minutes kForAsLongAsAnyTest{10};

#ifdef Q_OS_WIN

// As it stands: what is quoted how is the caller's doing.
QString commandLine(int, char *[])
{
    const QString whole = QString::fromWCharArray(GetCommandLineW());
    const bool quoted = whole.startsWith(QLatin1Char('"'));
    const int end = whole.indexOf(quoted ? QLatin1Char('"') : QLatin1Char(' '), 1);
    return end < 0 ? QString() : whole.mid(end + 1).trimmed();
}

QString folder()
{
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return QFileInfo(QString::fromWCharArray(path)).path();
}

// As an access violation ends a process, without the system's debugger.
[[noreturn]] void crash()
{
    TerminateProcess(GetCurrentProcess(), 0xC0000005);
    std::abort();
}

#else

QString commandLine(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return arguments.join(QLatin1Char(' '));
}

QString folder()
{
    return QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))).path();
}

[[noreturn]] void crash()
{
    std::signal(SIGSEGV, SIG_DFL); // a sanitizer would report it
    std::raise(SIGSEGV);
    std::abort();
}

#endif

QJsonObject chosen(const QJsonArray &plan, const QString &call, const QString &earlier)
{
    using namespace FakeProgramFiles;
    for (const QJsonValue &value : plan) {
        const QJsonObject reply = value.toObject();
        if (call.contains(reply.value(kWhen).toString()) && earlier.contains(reply.value(kAfter).toString()))
            return reply;
    }
    return {};
}

void write(std::FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stream);
    std::fflush(stream);
}

} // namespace

int main(int argc, char *argv[])
{
    using namespace FakeProgramFiles;
    const QDir here(folder());
    QFile planFile(here.filePath(kPlan));
    QFile callsFile(here.filePath(kCalls));
    if (!planFile.open(QIODevice::ReadOnly) || !callsFile.open(QIODevice::ReadWrite))
        return EXIT_FAILURE;
    const QString call = commandLine(argc, argv);
    const QString earlier = QString::fromUtf8(callsFile.readAll());
    callsFile.write(call.toUtf8() + '\n');
    callsFile.close();

    const QJsonObject reply = chosen(QJsonDocument::fromJson(planFile.readAll()).array(), call, earlier);
    write(stdout, reply.value(kOutput).toString());
    write(stderr, reply.value(kErrorOutput).toString());
    if (reply.value(kHangs).toBool())
        std::this_thread::sleep_for(kForAsLongAsAnyTest);
    if (reply.value(kCrashes).toBool())
        crash();
    return reply.value(kExitCode).toInt();
}
