#pragma once

#include <QByteArray>

#include <optional>

/// Seals and opens audio payloads under the room's key: 24 random bytes of nonce, 16 bytes of authenticator, then the
/// ciphertext. Needs the libsodium table to be loaded, except for the key itself.
class RoomCipher final
{
public:
    static constexpr int kKeySize = 32;
    static constexpr int kNonceSize = 24;
    static constexpr int kAuthenticatorSize = 16;
    static constexpr int kOverhead =
        kNonceSize + kAuthenticatorSize; ///< bytes that a payload is longer than its packet

    [[nodiscard]] bool hasKey() const { return !m_key.isEmpty(); }
    /// Takes a key of exactly 32 bytes; any other length returns false and leaves the earlier key.
    bool setKey(const QByteArray &key);

    /// The payload of one packet; empty when the cipher refuses. A key has to be set.
    [[nodiscard]] QByteArray seal(const QByteArray &packet) const;
    /// The packet of one payload; nothing when the payload is shorter than 40 bytes, was sealed under another key or
    /// was altered. A key has to be set.
    [[nodiscard]] std::optional<QByteArray> open(const QByteArray &payload) const;

private:
    QByteArray m_key;
};
