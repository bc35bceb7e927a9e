#include "audio/RoomCipher.h"

#include "audio/SodiumLibrary.h"

namespace {

unsigned char *bytes(QByteArray &array)
{
    return reinterpret_cast<unsigned char *>(array.data());
}

const unsigned char *bytes(const QByteArray &array)
{
    return reinterpret_cast<const unsigned char *>(array.constData());
}

unsigned long long length(int size)
{
    return static_cast<unsigned long long>(size);
}

} // namespace

bool RoomCipher::setKey(const QByteArray &key)
{
    if (key.size() != kKeySize)
        return false;
    m_key = key;
    return true;
}

QByteArray RoomCipher::seal(const QByteArray &packet) const
{
    const SodiumLibrary &sodium = SodiumLibrary::instance();
    QByteArray payload(packet.size() + kOverhead, Qt::Uninitialized);
    unsigned char *nonce = bytes(payload);
    sodium.randombytes_buf(nonce, kNonceSize);
    const int refused =
        sodium.crypto_secretbox_easy(nonce + kNonceSize, bytes(packet), length(packet.size()), nonce, bytes(m_key));
    return refused != 0 ? QByteArray() : payload;
}

std::optional<QByteArray> RoomCipher::open(const QByteArray &payload) const
{
    if (payload.size() < kOverhead)
        return std::nullopt;
    QByteArray packet(payload.size() - kOverhead, Qt::Uninitialized);
    const unsigned char *nonce = bytes(payload);
    const int refused = SodiumLibrary::instance().crypto_secretbox_open_easy(
        bytes(packet), nonce + kNonceSize, length(payload.size() - kNonceSize), nonce, bytes(m_key));
    if (refused != 0)
        return std::nullopt;
    return packet;
}
