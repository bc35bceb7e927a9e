#include "audio/LibraryFinder.h"

#include <QFileInfo>

namespace {

#ifdef Q_OS_WIN
constexpr char kSuffix[] = ".dll";
#else
constexpr char kSuffix[] = ".so";
#endif

} // namespace

QStringList LibraryFinder::searchFolders(const QString &applicationFolder, const QString &currentFolder,
                                         const QString &buildFolder)
{
    return {applicationFolder, applicationFolder + QStringLiteral("/libs"), currentFolder, buildFolder};
}

QString LibraryFinder::fileName(const QString &baseName)
{
    return baseName + QLatin1String(kSuffix);
}

QString LibraryFinder::find(const QStringList &folders, const QString &fileName)
{
    for (const QString &folder : folders) {
        QString path = folder + QLatin1Char('/') + fileName;
        if (QFileInfo(path).isFile())
            return path;
    }
    return {};
}
