#include "audio/RuntimeLibrary.h"

#include "audio/LibraryFinder.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>

bool RuntimeLibrary::open(const Description &description)
{
    const QStringList folders = LibraryFinder::searchFolders(
        QCoreApplication::applicationDirPath(), QDir::currentPath(), QLatin1String(description.buildFolder));
    const QString path = LibraryFinder::find(folders, LibraryFinder::fileName(QLatin1String(description.baseName)));
    if (path.isEmpty()) {
        qDebug().noquote() << description.notFound;
        return false;
    }
    qDebug().noquote() << description.loading << path;
    m_library.setFileName(path);
    if (!m_library.load()) {
        qDebug().noquote() << description.loadFailed << m_library.errorString();
        return false;
    }
    return true;
}

void RuntimeLibrary::close()
{
    m_library.unload();
}

QString RuntimeLibrary::text(const char *name) const
{
    if (!m_library.isLoaded())
        return {};
    const auto function = reinterpret_cast<const char *(*)()>(m_library.resolve(name));
    return function ? QString::fromUtf8(function()) : QString();
}
