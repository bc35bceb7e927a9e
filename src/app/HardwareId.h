#pragma once

#include <QByteArray>
#include <QNetworkInterface>
#include <QString>
#include <QVector>

class Config;

/// The identifier of this PC that the server binds an account to: 32 lower-case hexadecimal characters, the first
/// half of the SHA-256 of five machine facts. Has no side effects and always answers; runs "wmic" for at most 3 s.
[[nodiscard]] QString generateHardwareId();

namespace HardwareId {

struct Interface
{
    QNetworkInterface::InterfaceFlags flags;
    QString address; ///< six pairs of hexadecimal digits with colons between them
};

/// The address of the first interface that is up, running and not a loopback; "00:00:00:00:00:00" where there is none.
[[nodiscard]] QString macAddress(const QVector<Interface> &interfaces);

/// The processor identifier in the output of "wmic cpu get ProcessorId": its second non-empty line, trimmed. The
/// output is the console's 8-bit text, or UTF-16 when it begins with a byte-order mark. Empty when there is none.
[[nodiscard]] QString processorIdFromWmic(const QByteArray &output);

/// The digest of the five facts: host name, MAC address, processor identifier, product type, kernel version.
[[nodiscard]] QString digest(const QStringList &facts);

/// Gives a completed setup that has no identifier yet a fresh one, saves it, and logs the text with the identifier's
/// beginning. Harmless otherwise.
void ensureStored(Config *config, const char *logText);

} // namespace HardwareId
