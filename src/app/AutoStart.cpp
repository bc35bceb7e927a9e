#include "app/AutoStart.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QSettings>
#include <QStandardPaths>
#include <QString>

#ifdef Q_OS_WIN

void AutoStart::set(bool enabled, const QString &programPath)
{
    QSettings run(QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Run"),
                  QSettings::NativeFormat);
    const QString name = QStringLiteral("eVOX-SINAR");
    if (enabled)
        run.setValue(name, QDir::toNativeSeparators(programPath));
    else
        run.remove(name);
}

#else

void AutoStart::set(bool enabled, const QString &programPath)
{
    const QDir config(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation));
    const QString path = config.filePath(QStringLiteral("autostart/eVOX-SINAR.desktop"));
    if (!enabled) {
        QFile::remove(path);
        return;
    }
    // Inside the quotes of an Exec key these four are escaped with a backslash, the backslash first. Every backslash is
    // then doubled, as in any value of the file, and so is a percent sign.
    QString quoted = programPath;
    for (const char *reserved : {"\\", "\"", "`", "$"})
        quoted.replace(QLatin1String(reserved), QLatin1String("\\") + QLatin1String(reserved));
    quoted.replace(QLatin1String("\\"), QLatin1String("\\\\"));
    quoted.replace(QLatin1Char('%'), QLatin1String("%%"));
    config.mkpath(QStringLiteral("autostart"));
    QSaveFile entry(path);
    if (!entry.open(QIODevice::WriteOnly))
        return;
    entry.write(
        QStringLiteral("[Desktop Entry]\nType=Application\nName=e-VOX SINAR\nExec=\"%1\"\n").arg(quoted).toUtf8());
    entry.commit();
}

#endif
