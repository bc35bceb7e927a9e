#include "net/protocol/AudioDatagram.h"

#include <QtEndian>

QByteArray AudioDatagram::encode() const
{
    QByteArray datagram(kHeaderSize, Qt::Uninitialized);
    qToBigEndian(userId, datagram.data());
    datagram.append(payload);
    return datagram;
}

std::optional<AudioDatagram> AudioDatagram::decode(const QByteArray &datagram)
{
    if (datagram.size() <= kHeaderSize)
        return std::nullopt;
    return AudioDatagram{qFromBigEndian<quint32>(datagram.constData()), datagram.mid(kHeaderSize)};
}
