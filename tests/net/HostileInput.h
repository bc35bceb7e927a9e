#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// Whatever a network may send, through the real classes: the common ground of the fuzz targets and of the test that
/// throws mutations. Each function says what did not hold, or nothing when all is well.
namespace HostileInput {

/// Diagnostics are swallowed from here on; a warning that is none of the program's own is held against the input.
void watchDiagnostics();

/// The bytes of a control connection, once as a whole and once in pieces of that size (at least 1): both must raise
/// the same signals in the same order, with whole records.
[[nodiscard]] QString feedControlConnection(const QByteArray &bytes, int piece);

/// Signals that the control connections have raised so far.
[[nodiscard]] qint64 signalsRaised();

/// Datagrams to a link whose handshake has begun: audio comes out only of an audio datagram, and only when ready.
[[nodiscard]] QString feedAudioLink(const QList<QByteArray> &datagrams);

} // namespace HostileInput
