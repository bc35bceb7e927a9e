#include "support/PrivateHome.h"

#include <QFile>

struct PrivateHome::Earlier
{
    QByteArray dataHome = qgetenv("XDG_DATA_HOME");
    QByteArray configHome = qgetenv("XDG_CONFIG_HOME");
};

PrivateHome::PrivateHome(const QString &folder)
    : m_earlier(std::make_unique<Earlier>())
{
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder));
}

PrivateHome::~PrivateHome()
{
    qputenv("XDG_DATA_HOME", m_earlier->dataHome);
    qputenv("XDG_CONFIG_HOME", m_earlier->configHome);
}
