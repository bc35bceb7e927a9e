#pragma once

#include <QByteArray>
#include <QString>

/// Secrets of the server: Argon2id password hashes, random keys and tokens. Hashing takes some tens of milliseconds.
namespace Passwords {

/// Must be called once before anything else; false when the library cannot start.
[[nodiscard]] bool initialize();
/// The hash in libsodium's text form; empty when there is not enough memory.
[[nodiscard]] QByteArray hash(const QString &password);
[[nodiscard]] bool matches(const QByteArray &hash, const QString &password);
[[nodiscard]] QByteArray randomBytes(int count);
/// Passwords travel unquoted when somebody logs in and quoted when he changes his own, so that one with a blank or a
/// quote could never be used.
[[nodiscard]] bool fitsLogin(const QString &password);

} // namespace Passwords
