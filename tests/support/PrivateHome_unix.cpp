#include "support/PrivateHome.h"

#include <QFile>
#include <QTemporaryDir>

struct PrivateHome::Private
{
    QTemporaryDir folder;
    QByteArray dataHome = qgetenv("XDG_DATA_HOME");
    QByteArray configHome = qgetenv("XDG_CONFIG_HOME");
};

PrivateHome::PrivateHome()
    : m_private(std::make_unique<Private>())
{
    for (const char *variable : {"XDG_DATA_HOME", "XDG_CONFIG_HOME"})
        qputenv(variable, QFile::encodeName(folder()));
}

PrivateHome::~PrivateHome()
{
    qputenv("XDG_DATA_HOME", m_private->dataHome);
    qputenv("XDG_CONFIG_HOME", m_private->configHome);
}

QString PrivateHome::folder() const
{
    return m_private->folder.path();
}
