// Prints what Qt knows of this computer and the hardware identifier is made from, one a line: the host's name, the
// address of the first network interface in use, the system's kind and the kernel's version.

#include <QCoreApplication>
#include <QNetworkInterface>
#include <QSysInfo>

#include <algorithm>
#include <cstdio>

namespace {

QString firstAddress()
{
    const QList<QNetworkInterface> all = QNetworkInterface::allInterfaces();
    const auto inUse = std::find_if(all.begin(), all.end(), [](const QNetworkInterface &one) {
        const auto flags = one.flags();
        return flags.testFlag(QNetworkInterface::IsUp) && flags.testFlag(QNetworkInterface::IsRunning) &&
               !flags.testFlag(QNetworkInterface::IsLoopBack);
    });
    return inUse == all.end() ? QStringLiteral("00:00:00:00:00:00") : inUse->hardwareAddress();
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    for (const QString &fact :
         {QSysInfo::machineHostName(), firstAddress(), QSysInfo::productType(), QSysInfo::kernelVersion()})
        std::printf("%s\n", fact.toUtf8().constData());
    return 0;
}
