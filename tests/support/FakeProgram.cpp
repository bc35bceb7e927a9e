#include "support/FakeProgram.h"

#include "support/FakeProgramFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

FakeProgram::FakeProgram(const QString &name, const QList<Reply> &replies)
    : m_path(qgetenv("PATH"))
    , m_workingFolder(QDir::currentPath())
{
    using namespace FakeProgramFiles;
    QJsonArray plan;
    for (const Reply &reply : replies) {
        plan.append(QJsonObject{{kOutput, QString::fromUtf8(reply.output)},
                                {kErrorOutput, QString::fromUtf8(reply.errorOutput)},
                                {kExitCode, reply.exitCode},
                                {kHangs, reply.ending == Ending::Hangs},
                                {kCrashes, reply.ending == Ending::Crashes},
                                {kWhen, QString::fromUtf8(reply.when)},
                                {kAfter, QString::fromUtf8(reply.after)}});
    }
    QFile file(m_folder.filePath(kPlan));
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(plan).toJson()) < 0)
        qFatal("no plan for a fake %s", qPrintable(name));
    standIn(name);
}

FakeProgram::~FakeProgram()
{
    QDir::setCurrent(m_workingFolder);
    qputenv("PATH", m_path);
}

void FakeProgram::standIn(const QString &name)
{
    const QFileInfo test(QCoreApplication::applicationFilePath());
    const QString suffix = test.suffix().isEmpty() ? QString() : QLatin1Char('.') + test.suffix();
    const QString program = name.endsWith(suffix) ? name : name + suffix;
    if (!QFile::copy(test.dir().filePath(QLatin1String("evox-fake-program") + suffix), m_folder.filePath(program)))
        qFatal("no fake %s", qPrintable(name));
#ifdef Q_OS_WIN
    QDir::setCurrent(m_folder.path());
#else
    qputenv("PATH", QFile::encodeName(m_folder.path()) + ':' + m_path);
#endif
}

QStringList FakeProgram::calls() const
{
    QFile file(m_folder.filePath(FakeProgramFiles::kCalls));
    QStringList calls;
    if (file.open(QIODevice::ReadOnly)) {
        calls = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
        calls.removeLast(); // each ends with a line feed
    }
    return calls;
}
