#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

#include <array>
#include <memory>

/// Where a datagram comes from: an address in the system's own form, comparable and hashable.
struct Endpoint
{
    std::array<quint8, 28> bytes{}; ///< the socket address; the rest is zero
    quint8 size = 0;                ///< used bytes, 0: nowhere

    [[nodiscard]] bool isNull() const { return size == 0; }
    friend bool operator==(const Endpoint &a, const Endpoint &b) { return a.size == b.size && a.bytes == b.bytes; }
};

[[nodiscard]] uint qHash(const Endpoint &endpoint, uint seed = 0);

/// A bound UDP socket that reads into one buffer of its own: no allocation per datagram.
class DatagramSocket final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DatagramSocket)

public:
    explicit DatagramSocket(QObject *parent = nullptr);
    ~DatagramSocket() override;

    /// Port 0 takes any free one.
    [[nodiscard]] bool bind(const QString &address, quint16 port, QString *error);
    [[nodiscard]] quint16 port() const;

    /// The next waiting datagram: bytes to read into `data` (at most `capacity`), -1 when none waits. A datagram that
    /// is longer than the capacity reads as capacity + 1.
    [[nodiscard]] int receive(char *data, int capacity, Endpoint *from);
    void send(const char *data, int size, const Endpoint &to);

signals:
    void readyRead();

private:
    class Private;
    std::unique_ptr<Private> d;
};
