#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QTcpServer>

class QTcpSocket;

/// A callsign registry on a port of its own: answers each callsign with the page that the test gives it, at once or
/// when told to.
class FakeRegistry final : public QObject
{
    Q_OBJECT

public:
    explicit FakeRegistry(QObject *parent = nullptr);

    [[nodiscard]] QString url() const;
    /// A station's or person's page; an item is left out when its text is null.
    [[nodiscard]] static QByteArray entry(const QString &name, const QString &address, const QString &validity = {},
                                          const QString &status = {});
    [[nodiscard]] static QByteArray notFound();

    /// Other callsigns are not found.
    void list(const QString &callsign, const QByteArray &page) { m_pages.insert(callsign, page); }
    /// The HTTP status line's number and text from now on.
    void setStatus(const QByteArray &status) { m_status = status; }
    /// Whether answers wait until release().
    void hold(bool on) { m_holds = on; }
    /// Answers what waits, in the order of the questions.
    void release();
    /// Closes the connections of what waits, in the middle of their answers.
    void cutOff();
    /// From now on nobody is there.
    void close() { m_server.close(); }

    [[nodiscard]] int requestCount() const { return m_requests.size(); }
    /// The callsigns asked for, in order.
    [[nodiscard]] QStringList callsigns() const;
    /// A whole request with its headers.
    [[nodiscard]] QByteArray request(int index) const { return m_requests.value(index); }

private:
    struct Waiting
    {
        QPointer<QTcpSocket> socket;
        QByteArray answer;
    };

    void onConnection();
    void onRequest(QTcpSocket *socket, const QByteArray &request);
    [[nodiscard]] QByteArray answerTo(const QString &callsign) const;

    QTcpServer m_server;
    QHash<QString, QByteArray> m_pages;
    QByteArray m_status = "200 OK";
    bool m_holds = false;
    QList<QByteArray> m_requests;
    QList<Waiting> m_waiting;
};
