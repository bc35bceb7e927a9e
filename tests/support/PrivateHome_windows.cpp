#include "support/PrivateHome.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

#include <windows.h>

namespace {

const QString kTestFolder = QStringLiteral("/qttest"); // Qt's own, beside everybody's data

const wchar_t *wide(const QString &text)
{
    return reinterpret_cast<const wchar_t *>(text.utf16());
}

} // namespace

struct PrivateHome::Private
{
    HANDLE turn = nullptr;
    QString folder;
    QString hive;
};

/// The folder is the same for every process, so they take turns.
PrivateHome::PrivateHome()
    : m_private(std::make_unique<Private>())
{
    m_private->turn = CreateMutexW(nullptr, FALSE, L"e-VOX SINAR test home");
    WaitForSingleObject(m_private->turn, INFINITE);
    QStandardPaths::setTestModeEnabled(true);
    const QString path = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    const int end = path.indexOf(kTestFolder);
    if (end < 0)
        qFatal("%s is no folder for tests", qPrintable(path));
    m_private->folder = path.left(end + kTestFolder.size());
    QDir(m_private->folder).removeRecursively();

    m_private->hive = QStringLiteral("Software\\e-VOX SINAR tests\\%1").arg(QCoreApplication::applicationPid());
    HKEY hive = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, wide(m_private->hive), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                        nullptr, &hive, nullptr) != ERROR_SUCCESS ||
        RegOverridePredefKey(HKEY_CURRENT_USER, hive) != ERROR_SUCCESS)
        qFatal("no registry of its own");
    RegCloseKey(hive);
}

PrivateHome::~PrivateHome()
{
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegDeleteTreeW(HKEY_CURRENT_USER, wide(m_private->hive));
    QDir(m_private->folder).removeRecursively();
    QStandardPaths::setTestModeEnabled(false);
    ReleaseMutex(m_private->turn);
    CloseHandle(m_private->turn);
}

QString PrivateHome::folder() const
{
    return m_private->folder;
}
