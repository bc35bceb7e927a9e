#include "app/HardwareId.h"

#include "app/Config.h"

#include <QCryptographicHash>
#include <QDebug>
#include <QNetworkInterface>
#include <QProcess>
#include <QStringList>
#include <QSysInfo>
#include <QTextCodec>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds kWmicTimeout{3000};
constexpr int kIdentifierLength = 32;
constexpr int kLoggedLength = 16;

QString firstMacAddress()
{
    const auto interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface &interface : interfaces) {
        const auto flags = interface.flags();
        if (flags.testFlag(QNetworkInterface::IsUp) && flags.testFlag(QNetworkInterface::IsRunning) &&
            !flags.testFlag(QNetworkInterface::IsLoopBack))
            return interface.hardwareAddress();
    }
    return QStringLiteral("00:00:00:00:00:00");
}

QString processorId()
{
    QProcess wmic;
    wmic.start(QStringLiteral("wmic"), {QStringLiteral("cpu"), QStringLiteral("get"), QStringLiteral("ProcessorId")});
    if (wmic.waitForFinished(static_cast<int>(kWmicTimeout.count()))) {
        QString id = HardwareId::processorIdFromWmic(wmic.readAllStandardOutput());
        if (!id.isEmpty())
            return id;
    } else {
        wmic.kill();
        wmic.waitForFinished(static_cast<int>(kWmicTimeout.count()));
    }
    return QSysInfo::currentCpuArchitecture();
}

} // namespace

QString HardwareId::processorIdFromWmic(const QByteArray &output)
{
    const QTextCodec *codec = QTextCodec::codecForUtfText(output, QTextCodec::codecForLocale());
    int line = 0;
    const auto lines = codec->toUnicode(output).split(QLatin1Char('\n'));
    for (const QString &text : lines) {
        QString trimmed = text.trimmed();
        if (!trimmed.isEmpty() && ++line == 2)
            return trimmed;
    }
    return {};
}

QString HardwareId::digest(const QStringList &facts)
{
    const QByteArray joined = facts.join(QLatin1Char('|')).toUtf8();
    const QByteArray hash = QCryptographicHash::hash(joined, QCryptographicHash::Sha256);
    return QString::fromLatin1(hash.toHex().left(kIdentifierLength));
}

QString generateHardwareId()
{
    return HardwareId::digest({QSysInfo::machineHostName(), firstMacAddress(), processorId(), QSysInfo::productType(),
                               QSysInfo::kernelVersion()});
}

void HardwareId::ensureStored(Config *config, const char *logText)
{
    if (!config->setupCompleted() || !config->hwid().isEmpty())
        return;
    config->setHwid(generateHardwareId());
    config->save();
    qDebug().noquote() << logText << config->hwid().left(kLoggedLength) + QLatin1String("...");
}
