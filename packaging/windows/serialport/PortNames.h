#pragma once

#include <QString>

/// Only with the prefix does Windows open ports beyond COM9.
namespace PortNames {

inline const QLatin1String kPrefix("\\\\.\\");

inline QString location(const QString &name)
{
    return name.startsWith(kPrefix) ? name : kPrefix + name;
}

inline QString name(const QString &location)
{
    return location.startsWith(kPrefix) ? location.mid(kPrefix.size()) : location;
}

} // namespace PortNames
