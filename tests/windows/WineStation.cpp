#include "windows/WineStation.h"

#include "app/Product.h"
#include "support/AppDriver.h"

#include <QFile>

#include <algorithm>

WineStation::WineStation(const Settings &settings, const Display &display)
    : Station(settings, &display)
    , m_windows(display, radio())
{
}

void WineStation::setDriverFolders(const QString &plugins, const QString &libraries)
{
    m_plugins = plugins;
    m_libraries = libraries;
}

QString WineStation::configurationFolder() const
{
    return m_windows.toUnix(m_windows.userFolder() +
                            QStringLiteral("\\AppData\\Roaming\\%1\\%2").arg(Product::organisation(), Product::name()));
}

bool WineStation::startProgram(ChildProcess &program) const
{
    QProcessEnvironment environment = m_windows.environment();
    bench().addTo(environment);
    if (driver())
        driver()->addTo(environment);
    environment.insert(QStringLiteral("QT_PLUGIN_PATH"), WinePrefix::toWindows(m_plugins));
    QStringList path = m_path + QStringList{m_libraries};
    std::transform(path.begin(), path.end(), path.begin(), &WinePrefix::toWindows);
    environment.insert(QStringLiteral("WINEPATH"), path.join(QLatin1Char(';')));
    environment.insert(m_variables);
    // Wine keeps this computer's Qt from meddling, unless it is told so.
    const QStringList names = environment.keys();
    for (const QString &name : names) {
        if (name.startsWith(QLatin1String("QT_")))
            environment.insert(QStringLiteral("WINE") + name, environment.value(name));
    }
    program.setProcessEnvironment(environment);
    program.setStandardOutputFile(QProcess::nullDevice());
    const QString log = configurationFolder() + QStringLiteral("/logs/evox-sinar.log");
    QFile::remove(log);
    program.setProgramsLogFile(log);
    return program.begin(QStringLiteral("wine"), {m_program});
}
