// Datagrams that the relay forwards per CPU second in rooms of 25, against a bare receive-and-send loop with the same
// fan-out.

#include "Bench.h"
#include "server/UdpRelay.h"

#include <QCoreApplication>

#include <arpa/inet.h>
#include <cstring>
#include <ctime>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kMembers = 25;
constexpr int kDatagrams = 4000;
constexpr int kBurst = 50; // sent before the relay gets its turn
constexpr int kPayload = 124;

double cpuSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

sockaddr_in localAddress(quint16 port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

int boundSocket(sockaddr_in *address)
{
    const int fd = socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK, 0);
    *address = localAddress(0);
    bind(fd, reinterpret_cast<sockaddr *>(address), sizeof *address);
    socklen_t size = sizeof *address;
    getsockname(fd, reinterpret_cast<sockaddr *>(address), &size);
    return fd;
}

/// The listeners never read: their queues fill up, and what does not fit is dropped by the system for both sides alike.
class Audience
{
public:
    Audience()
    {
        for (int i = 0; i < kMembers; ++i) {
            sockaddr_in address{};
            m_sockets.push_back(boundSocket(&address));
            m_addresses.push_back(address);
        }
    }
    ~Audience()
    {
        for (const int fd : m_sockets)
            close(fd);
    }
    Audience(const Audience &) = delete;
    Audience &operator=(const Audience &) = delete;

    [[nodiscard]] int talker() const { return m_sockets.front(); }
    [[nodiscard]] const std::vector<int> &sockets() const { return m_sockets; }
    [[nodiscard]] const std::vector<sockaddr_in> &addresses() const { return m_addresses; }

private:
    std::vector<int> m_sockets;
    std::vector<sockaddr_in> m_addresses;
};

void sendTo(int fd, quint16 port, const char *data, std::size_t size)
{
    const sockaddr_in to = localAddress(port);
    sendto(fd, data, size, 0, reinterpret_cast<const sockaddr *>(&to), sizeof to);
}

/// Forwarded datagrams per CPU second of whatever `serve` does between the bursts.
double throughput(const Audience &audience, quint16 port, const std::function<qint64()> &serve)
{
    const std::vector<char> datagram(4 + kPayload, '\1');
    double cpu = 0;
    qint64 forwarded = 0;
    for (int sent = 0; sent < kDatagrams; sent += kBurst) {
        for (int i = 0; i < kBurst; ++i)
            sendTo(audience.talker(), port, datagram.data(), datagram.size());
        const double begin = cpuSeconds();
        forwarded += serve();
        cpu += cpuSeconds() - begin;
    }
    return static_cast<double>(forwarded) / cpu;
}

double ours()
{
    const Audience audience;
    UdpRelay relay;
    QString error;
    if (!relay.open(QStringLiteral("127.0.0.1"), 0, &error))
        return 0;
    for (int id = 1; id <= kMembers; ++id) {
        const QByteArray token = QByteArray::number(id);
        relay.addMember(id, token);
        relay.setRoom(id, QStringLiteral("Lobby"));
        const QByteArray text = "TOKEN:" + token;
        sendTo(audience.sockets()[static_cast<std::size_t>(id - 1)], relay.port(), text.constData(),
               static_cast<std::size_t>(text.size()));
    }
    relay.setTalker(QStringLiteral("Lobby"), 1);
    QCoreApplication::processEvents();
    return throughput(audience, relay.port(), [&relay] {
        const qint64 before = relay.forwarded();
        QCoreApplication::processEvents();
        return relay.forwarded() - before;
    });
}

double bare()
{
    const Audience audience;
    sockaddr_in address{};
    const int fd = boundSocket(&address);
    std::vector<char> buffer(4096);
    const double rate = throughput(audience, ntohs(address.sin_port), [&] {
        qint64 forwarded = 0;
        sockaddr_in from{};
        socklen_t size = sizeof from;
        ssize_t received = 0;
        while ((received = recvfrom(fd, buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr *>(&from), &size)) >
               0) {
            for (std::size_t i = 1; i < audience.addresses().size(); ++i) {
                sendto(fd, buffer.data(), static_cast<std::size_t>(received), MSG_DONTWAIT,
                       reinterpret_cast<const sockaddr *>(&audience.addresses()[i]), sizeof(sockaddr_in));
                ++forwarded;
            }
        }
        return forwarded;
    });
    close(fd);
    return rate;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    const auto rates = Bench::compare(ours, bare);
    Bench::printRow("server: datagrams forwarded per CPU second, 25-member rooms", rates.ours, rates.baseline, "1/s",
                    0.6, Bench::Better::Higher);
    return 0;
}
