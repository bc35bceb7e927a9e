#pragma once

#include <QString>
#include <QStringList>

/// Where the run-time libraries are looked for. Pure, but for the question whether a file exists.
namespace LibraryFinder {

/// The folders in the order in which they are searched: beside the program, its "libs", the current folder, and last
/// the folder of a development build.
[[nodiscard]] QStringList searchFolders(const QString &applicationFolder, const QString &currentFolder,
                                        const QString &buildFolder);
/// The base name with the platform's suffix: ".dll" on Windows, ".so" elsewhere.
[[nodiscard]] QString fileName(const QString &baseName);
/// The path of the first file of that name; empty when no folder has one.
[[nodiscard]] QString find(const QStringList &folders, const QString &fileName);

} // namespace LibraryFinder
