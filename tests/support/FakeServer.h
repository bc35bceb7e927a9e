#pragma once

#include <QByteArray>
#include <QHash>
#include <QHostAddress>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QTcpServer>
#include <QUdpSocket>

class QTcpSocket;

/// A scripted server for one client: a control connection on a free port of a 127.0.0.x of its own, and a UDP peer on
/// port 8082 of the same address, as the client expects. Records what arrives and sends what it is told.
class FakeServer final : public QObject
{
    Q_OBJECT

public:
    static constexpr quint16 kUdpPort = 8082;

    /// Listens at once; takes an address on which no other test listens.
    explicit FakeServer(QObject *parent = nullptr);

    [[nodiscard]] QString host() const { return m_address.toString(); }
    [[nodiscard]] quint16 port() const { return m_tcp.serverPort(); }
    [[nodiscard]] bool isClientConnected() const;
    /// Connections accepted so far.
    [[nodiscard]] int connections() const { return m_connections; }

    /// Whole command lines in order of arrival, without their line ends.
    [[nodiscard]] const QStringList &lines() const { return m_lines; }
    [[nodiscard]] int count(const QString &beginning) const;
    /// The bytes of the control connection as they came.
    [[nodiscard]] const QByteArray &received() const { return m_received; }
    [[nodiscard]] const QList<QByteArray> &datagrams() const { return m_datagrams; }
    [[nodiscard]] int datagramCount(const QByteArray &beginning) const;
    void clear();

    /// Waits until count lines that begin so have come; false after five seconds without.
    [[nodiscard]] bool waitForLine(const QString &beginning, int count = 1);
    [[nodiscard]] bool waitForDatagram(const QByteArray &beginning, int count = 1);
    [[nodiscard]] bool waitForClient(int connections = 1);

    /// Answers every line that begins so with these lines.
    void answer(const QString &beginning, const QStringList &replies) { m_replies.insert(beginning, replies); }
    /// Whether PING, TOKEN and KEEPALIVE datagrams are answered. Both at first.
    void answerPing(bool on) { m_answersPing = on; }
    void answerToken(bool on) { m_answersToken = on; }

    /// One line, with its line end added.
    void send(const QString &line);
    void sendRaw(const QByteArray &bytes);
    /// To the address that the last datagram came from.
    void sendDatagram(const QByteArray &datagram);
    /// Closes the connection; with a reset, without the usual goodbye.
    void drop(bool reset = false);
    /// Stops and starts to accept connections, on the same port.
    void stopListening();
    void listenAgain();

private:
    void onNewConnection();
    void onReadyRead();
    void onDatagram();

    QHostAddress m_address;
    QTcpServer m_tcp;
    QUdpSocket m_udp;
    QTcpSocket *m_client = nullptr;
    QHostAddress m_peerAddress;
    quint16 m_peerPort = 0;
    quint16 m_port = 0;
    int m_connections = 0;
    bool m_answersPing = true;
    bool m_answersToken = true;
    QByteArray m_received;
    QByteArray m_pending;
    QStringList m_lines;
    QList<QByteArray> m_datagrams;
    QHash<QString, QStringList> m_replies;
};
