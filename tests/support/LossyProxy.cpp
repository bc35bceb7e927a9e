#include "support/LossyProxy.h"

#include <QNetworkDatagram>
#include <QtEndian>

#include <numeric>

namespace {

constexpr int kHeader = 4; // bytes: the user id

/// The user id's first byte is 0 for any real user; every control word begins with a letter.
bool isAudio(const QByteArray &datagram)
{
    return datagram.size() > kHeader && datagram.at(0) == '\0';
}

quint32 userOf(const QByteArray &datagram)
{
    return qFromBigEndian<quint32>(datagram.constData());
}

int total(const QHash<quint32, int> &counts)
{
    return std::accumulate(counts.cbegin(), counts.cend(), 0);
}

} // namespace

LossyProxy::LossyProxy(QObject *parent)
    : QObject(parent)
{
    connect(&m_socket, &QUdpSocket::readyRead, this, &LossyProxy::onClientDatagram);
}

bool LossyProxy::listen(const QHostAddress &address, quint16 port)
{
    return m_socket.bind(address, port, QUdpSocket::DontShareAddress);
}

void LossyProxy::setServer(const QHostAddress &address, quint16 port)
{
    m_server = address;
    m_serverPort = port;
}

void LossyProxy::setWeather(const Weather &weather)
{
    m_weather = weather;
    m_random.seed(weather.seed);
}

int LossyProxy::sent() const
{
    return total(m_counts.sent);
}

int LossyProxy::delivered() const
{
    return total(m_counts.delivered);
}

LossyProxy::Client &LossyProxy::clientAt(const QHostAddress &address, quint16 port)
{
    std::unique_ptr<Client> &client = m_clients[(quint64{address.toIPv4Address()} << 16) | port];
    if (!client) {
        client = std::make_unique<Client>();
        client->address = address;
        client->port = port;
        client->socket.bind(m_socket.localAddress(), 0);
        Client *self = client.get();
        connect(&client->socket, &QUdpSocket::readyRead, this, [this, self] { onServerDatagram(*self); });
    }
    return *client;
}

void LossyProxy::onClientDatagram()
{
    while (m_socket.hasPendingDatagrams()) {
        const QNetworkDatagram datagram = m_socket.receiveDatagram();
        Client &client = clientAt(datagram.senderAddress(), static_cast<quint16>(datagram.senderPort()));
        if (isAudio(datagram.data()))
            ++m_counts.sent[userOf(datagram.data())];
        for (const QByteArray &out : transported(datagram.data(), client.heldUp))
            client.socket.writeDatagram(out, m_server, m_serverPort);
    }
}

void LossyProxy::onServerDatagram(Client &client)
{
    while (client.socket.hasPendingDatagrams()) {
        const QByteArray datagram = client.socket.receiveDatagram().data();
        for (const QByteArray &out : transported(datagram, client.heldDown)) {
            if (isAudio(out))
                ++m_counts.delivered[userOf(out)];
            m_socket.writeDatagram(out, client.address, client.port);
        }
    }
}

QList<QByteArray> LossyProxy::transported(const QByteArray &datagram, QByteArray &held)
{
    if (!isAudio(datagram))
        return {datagram};
    if (happens(m_weather.loss)) {
        ++m_counts.lost;
        return {};
    }
    if (held.isEmpty() && happens(m_weather.reordering)) {
        ++m_counts.reordered;
        held = datagram;
        return {};
    }
    QList<QByteArray> out{datagram};
    if (happens(m_weather.duplication)) {
        ++m_counts.duplicated;
        out.append(datagram);
    }
    if (!held.isEmpty())
        out.append(held);
    held.clear();
    return out;
}

bool LossyProxy::happens(double share)
{
    return std::uniform_real_distribution<double>(0, 1)(m_random) < share;
}
