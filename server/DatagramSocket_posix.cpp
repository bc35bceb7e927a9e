// The system's own calls: a relay sends each datagram to every other member of a room.

#include "server/DatagramSocket.h"

#include <QHash>
#include <QHostAddress>
#include <QSocketNotifier>

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int kSocketBuffer = 1 << 20; // bytes; a burst of many rooms must fit

socklen_t fill(sockaddr_storage *storage, const QHostAddress &address, quint16 port)
{
    if (address.protocol() == QAbstractSocket::IPv4Protocol) {
        sockaddr_in in{};
        in.sin_family = AF_INET;
        in.sin_port = htons(port);
        in.sin_addr.s_addr = htonl(address.toIPv4Address());
        std::memcpy(storage, &in, sizeof in);
        return sizeof in;
    }
    sockaddr_in6 in{};
    in.sin6_family = AF_INET6;
    in.sin6_port = htons(port);
    const Q_IPV6ADDR bytes = address.toIPv6Address(); // "any" is all zeros: both versions
    std::memcpy(&in.sin6_addr, &bytes, sizeof in.sin6_addr);
    std::memcpy(storage, &in, sizeof in);
    return sizeof in;
}

/// For the address's own version of IP, IPv6 with IPv4 as well. Negative, with errno, when there is none.
int openSocket(const QHostAddress &address)
{
    const bool isIpv4 = address.protocol() == QAbstractSocket::IPv4Protocol;
    const int fd = ::socket(isIpv4 ? AF_INET : AF_INET6, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return fd;
    const int off = 0;
    if (!isIpv4)
        ::setsockopt(fd, IPPROTO_IPV6, IPV6_V6ONLY, &off, sizeof off);
    ::setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &kSocketBuffer, sizeof kSocketBuffer);
    ::setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &kSocketBuffer, sizeof kSocketBuffer);
    return fd;
}

} // namespace

uint qHash(const Endpoint &endpoint, uint seed)
{
    return qHashBits(endpoint.bytes.data(), endpoint.size, seed);
}

class DatagramSocket::Private
{
public:
    int fd = -1;
    std::unique_ptr<QSocketNotifier> notifier;
};

DatagramSocket::DatagramSocket(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>())
{
}

DatagramSocket::~DatagramSocket()
{
    d->notifier.reset();
    if (d->fd >= 0)
        ::close(d->fd);
}

bool DatagramSocket::bind(const QString &address, quint16 port, QString *error)
{
    QHostAddress host(address);
    d->fd = openSocket(host);
    if (d->fd < 0 && errno == EAFNOSUPPORT && host == QHostAddress(QHostAddress::AnyIPv6)) {
        host = QHostAddress(QHostAddress::AnyIPv4); // a machine without IPv6: every address it has
        d->fd = openSocket(host);
    }
    sockaddr_storage storage{};
    const socklen_t size = fill(&storage, host, port);
    if (d->fd < 0 || ::bind(d->fd, reinterpret_cast<const sockaddr *>(&storage), size) != 0) {
        *error = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    d->notifier = std::make_unique<QSocketNotifier>(d->fd, QSocketNotifier::Read);
    connect(d->notifier.get(), &QSocketNotifier::activated, this, &DatagramSocket::readyRead);
    return true;
}

quint16 DatagramSocket::port() const
{
    sockaddr_storage storage{};
    socklen_t size = sizeof storage;
    ::getsockname(d->fd, reinterpret_cast<sockaddr *>(&storage), &size);
    return ntohs(storage.ss_family == AF_INET6 ? reinterpret_cast<const sockaddr_in6 *>(&storage)->sin6_port
                                               : reinterpret_cast<const sockaddr_in *>(&storage)->sin_port);
}

int DatagramSocket::receive(char *data, int capacity, Endpoint *from)
{
    from->bytes = {};
    auto size = static_cast<socklen_t>(from->bytes.size());
    const ssize_t received = ::recvfrom(d->fd, data, static_cast<size_t>(capacity), MSG_TRUNC,
                                        reinterpret_cast<sockaddr *>(from->bytes.data()), &size);
    if (received < 0)
        return -1;
    from->size = static_cast<quint8>(size);
    return received > capacity ? capacity + 1 : static_cast<int>(received);
}

void DatagramSocket::send(const char *data, int size, const Endpoint &to)
{
    // A full buffer drops it, as the network would.
    static_cast<void>(::sendto(d->fd, data, static_cast<size_t>(size), MSG_DONTWAIT,
                               reinterpret_cast<const sockaddr *>(to.bytes.data()), to.size));
}
