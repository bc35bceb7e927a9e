#pragma once

#include <QByteArray>
#include <QHash>
#include <QHostAddress>
#include <QObject>
#include <QUdpSocket>

#include <memory>
#include <random>
#include <unordered_map>

/// Stands between clients and the UDP side of a server, counts the audio datagrams and spoils some of them as a bad
/// line does. Control words always pass. Each client has a socket of its own towards the server.
class LossyProxy final : public QObject
{
    Q_OBJECT

public:
    /// Shares of the audio datagrams, 0 to 1, in both directions; the same ones for the same seed.
    struct Weather
    {
        double loss = 0;
        double duplication = 0;
        double reordering = 0; ///< arrive after their successor
        quint32 seed = 1;
    };
    /// Audio datagrams by the user id in their header.
    struct Counts
    {
        QHash<quint32, int> sent;      ///< by clients
        QHash<quint32, int> delivered; ///< to clients
        int lost = 0;
        int duplicated = 0;
        int reordered = 0;
    };

    explicit LossyProxy(QObject *parent = nullptr);

    /// False when the address and port are taken.
    [[nodiscard]] bool listen(const QHostAddress &address, quint16 port);
    [[nodiscard]] quint16 port() const { return m_socket.localPort(); }
    void setServer(const QHostAddress &address, quint16 port);
    void setWeather(const Weather &weather);

    [[nodiscard]] const Counts &counts() const { return m_counts; }
    /// Of all senders together.
    [[nodiscard]] int sent() const;
    [[nodiscard]] int delivered() const;

private:
    struct Client
    {
        QHostAddress address;
        quint16 port = 0;
        QUdpSocket socket;
        QByteArray heldUp;   ///< towards the server
        QByteArray heldDown; ///< towards the client
    };

    [[nodiscard]] Client &clientAt(const QHostAddress &address, quint16 port);
    void onClientDatagram();
    void onServerDatagram(Client &client);
    /// What comes out of the line for one datagram that went in.
    [[nodiscard]] QList<QByteArray> transported(const QByteArray &datagram, QByteArray &held);
    [[nodiscard]] bool happens(double share);

    QUdpSocket m_socket;
    QHostAddress m_server;
    quint16 m_serverPort = 0;
    Weather m_weather;
    Counts m_counts;
    std::mt19937 m_random;
    std::unordered_map<quint64, std::unique_ptr<Client>> m_clients;
};
