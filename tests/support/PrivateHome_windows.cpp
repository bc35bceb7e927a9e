#include "support/PrivateHome.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

#include <initguid.h>
#include <knownfolders.h>
#include <shlobj.h>
#include <windows.h>

struct PrivateHome::Earlier
{
    QString hive;
};

namespace {

const wchar_t *wide(const QString &text)
{
    return reinterpret_cast<const wchar_t *>(text.utf16());
}

} // namespace

/// This process alone sees a hive of its own as the user's, and in it the folder as that of the applications' data.
PrivateHome::PrivateHome(const QString &folder)
    : m_earlier(std::make_unique<Earlier>())
{
    m_earlier->hive = QStringLiteral("Software\\e-VOX SINAR tests\\%1").arg(QCoreApplication::applicationPid());
    HKEY hive = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, wide(m_earlier->hive), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS,
                        nullptr, &hive, nullptr) != ERROR_SUCCESS ||
        RegOverridePredefKey(HKEY_CURRENT_USER, hive) != ERROR_SUCCESS)
        qFatal("no registry of its own");
    RegCloseKey(hive);
    const QString native = QDir::toNativeSeparators(folder);
    for (const KNOWNFOLDERID &which : {FOLDERID_RoamingAppData, FOLDERID_LocalAppData})
        SHSetKnownFolderPath(which, 0, nullptr, wide(native));
    // A test must never write into the data of the person who runs it.
    if (QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) != folder ||
        !QStandardPaths::writableLocation(QStandardPaths::AppDataLocation).startsWith(folder))
        qFatal("the folder of the applications' data cannot be moved");
}

PrivateHome::~PrivateHome()
{
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegDeleteTreeW(HKEY_CURRENT_USER, wide(m_earlier->hive));
}
