// For systems without the calls of the other implementation.

#include "server/DatagramSocket.h"
#include "server/ListenAddress.h"

#include <QHash>
#include <QHostAddress>
#include <QUdpSocket>

#include <cstring>

namespace {

constexpr int kAddressSize = 16;

Endpoint pack(const QHostAddress &address, quint16 port)
{
    Endpoint endpoint;
    const Q_IPV6ADDR bytes = address.toIPv6Address();
    std::memcpy(endpoint.bytes.data(), &bytes, kAddressSize);
    std::memcpy(endpoint.bytes.data() + kAddressSize, &port, sizeof port);
    endpoint.size = kAddressSize + sizeof port;
    return endpoint;
}

} // namespace

uint qHash(const Endpoint &endpoint, uint seed)
{
    return qHashBits(endpoint.bytes.data(), endpoint.size, seed);
}

class DatagramSocket::Private
{
public:
    QUdpSocket socket;
};

DatagramSocket::DatagramSocket(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>())
{
    connect(&d->socket, &QUdpSocket::readyRead, this, &DatagramSocket::readyRead);
}

DatagramSocket::~DatagramSocket() = default;

bool DatagramSocket::bind(const QString &address, quint16 port, QString *error)
{
    const bool bound = d->socket.bind(listenAddress(address), port, QUdpSocket::DontShareAddress);
    if (!bound)
        *error = d->socket.errorString();
    return bound;
}

quint16 DatagramSocket::port() const
{
    return d->socket.localPort();
}

int DatagramSocket::receive(char *data, int capacity, Endpoint *from)
{
    const qint64 size = d->socket.hasPendingDatagrams() ? d->socket.pendingDatagramSize() : -1;
    QHostAddress address;
    quint16 port = 0;
    // Also when none waits: after a notice, Qt gives no further one until it is asked.
    const qint64 received = d->socket.readDatagram(data, capacity, &address, &port);
    *from = pack(address, port);
    if (received < 0)
        return size < 0 ? -1 : 0;
    return size > capacity ? capacity + 1 : static_cast<int>(received);
}

void DatagramSocket::send(const char *data, int size, const Endpoint &to)
{
    Q_IPV6ADDR bytes;
    quint16 port = 0;
    std::memcpy(&bytes, to.bytes.data(), kAddressSize);
    std::memcpy(&port, to.bytes.data() + kAddressSize, sizeof port);
    QHostAddress address(bytes);
    bool isIpv4 = false;
    const quint32 ipv4 = address.toIPv4Address(&isIpv4);
    d->socket.writeDatagram(data, size, isIpv4 ? QHostAddress(ipv4) : address, port);
}
