#include "app/HardwareId.h"

#include "app/Config.h"

#include <QCryptographicHash>
#include <QDebug>
#include <QProcess>
#include <QStringList>
#include <QSysInfo>
#include <QTextCodec>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds kWmicTimeout{3000};
constexpr int kIdentifierLength = 32;
constexpr int kLoggedLength = 16;

QVector<HardwareId::Interface> interfacesOfThisPc()
{
    QVector<HardwareId::Interface> interfaces;
    const auto all = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface &interface : all)
        interfaces.append({interface.flags(), interface.hardwareAddress()});
    return interfaces;
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

QString HardwareId::macAddress(const QVector<Interface> &interfaces)
{
    for (const Interface &interface : interfaces) {
        if (interface.flags.testFlag(QNetworkInterface::IsUp) &&
            interface.flags.testFlag(QNetworkInterface::IsRunning) &&
            !interface.flags.testFlag(QNetworkInterface::IsLoopBack))
            return interface.address;
    }
    return QStringLiteral("00:00:00:00:00:00");
}

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
    return HardwareId::digest({QSysInfo::machineHostName(), HardwareId::macAddress(interfacesOfThisPc()), processorId(),
                               QSysInfo::productType(), QSysInfo::kernelVersion()});
}

void HardwareId::ensureStored(Config *config, const char *logText)
{
    if (!config->setupCompleted() || !config->hwid().isEmpty())
        return;
    config->setHwid(generateHardwareId());
    config->save();
    qDebug().noquote() << logText << config->hwid().left(kLoggedLength) + QLatin1String("...");
}
