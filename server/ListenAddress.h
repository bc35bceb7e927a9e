#pragma once

#include <QHostAddress>

/// The address to listen on. Bound literally, "::" would turn IPv4 away; it means every address of this machine.
[[nodiscard]] inline QHostAddress listenAddress(const QString &text)
{
    const QHostAddress address(text);
    return address == QHostAddress(QHostAddress::AnyIPv6) ? QHostAddress(QHostAddress::Any) : address;
}
