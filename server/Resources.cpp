#include "server/Resources.h"

#include <QFile>

// Outside any namespace, as the macro wants it: the resources of a static library are not registered by themselves.
static void registerResources()
{
    Q_INIT_RESOURCE(server);
}

QByteArray builtInFile(const char *name)
{
    registerResources();
    QFile file(QStringLiteral(":/server/") + QLatin1String(name));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s is not built in", name);
    return file.readAll();
}
