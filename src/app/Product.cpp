#include "app/Product.h"

namespace Product {

QString name()
{
    return QStringLiteral("e-VOX SINAR");
}

QString organisation()
{
    return QStringLiteral("SINAR");
}

QString version()
{
    return QStringLiteral(EVOX_VERSION);
}

QString build()
{
    return QStringLiteral(EVOX_BUILD_DATE);
}

QString applicationVersion()
{
    return QStringLiteral("4.0.1");
}

} // namespace Product
