#include "BenchProcess.h"

#include <QCoreApplication>
#include <QFile>

BenchProcess::BenchProcess(const QString &program, const QString &home, QProcessEnvironment environment)
{
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), home);
    environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("*=false"));
    m_process.setProcessEnvironment(environment);
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_process.start(QCoreApplication::applicationDirPath() + QLatin1Char('/') + program, {});
}

BenchProcess::~BenchProcess()
{
    m_process.kill();
    m_process.waitForFinished();
}

bool BenchProcess::waitForPaint()
{
    while (m_process.waitForReadyRead()) {
        if (m_process.readAllStandardOutput().contains("painted"))
            return true;
    }
    return false;
}

double BenchProcess::residentMegabytes() const
{
    QFile status(QStringLiteral("/proc/%1/status").arg(m_process.processId()));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const auto lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toDouble() / 1024;
    }
    return 0;
}
