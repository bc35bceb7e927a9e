#pragma once

#include <QDateTime>
#include <QObject>
#include <QSet>
#include <QString>
#include <QVariantMap>
#include <QVector>

class TcpClient;

/// Who asks to log in from another device, in the order of asking: what an administrator has not settled yet. A user
/// is listed once, however often he asks. Ends with the account that was logged in; lives as long as its owner says,
/// longer than any panel that shows it.
///
/// The server keeps no dismissal and tells all that is open at every login again, before it answers the first question
/// for the rooms. A request that was dismissed is taken for such a repetition there, and for a new one at any other
/// time.
class HwidRequests final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(HwidRequests)

public:
    static constexpr int kMost = 500; ///< beyond them the oldest goes

    struct Request
    {
        QString callsign;
        int userId = 0; ///< 0: not told
        QDateTime when; ///< the last time that it came
    };

    /// Listens to the client, which may be null or go first.
    explicit HwidRequests(const TcpClient *client, QObject *parent = nullptr);

    [[nodiscard]] const QVector<Request> &all() const { return m_requests; }

public slots:
    /// @p details: callsign and user id with a ":" between them.
    void add(const QString &details, const QDateTime &when);
    /// The device was reset: what this callsign asked for is done.
    void settle(const QString &callsign);
    /// Takes the request at that place away, and its repetitions.
    void dismiss(int place);
    /// Whoever was an account and is none any more asks for nothing.
    void keepOnly(const QList<QVariantMap> &accounts);

signals:
    void changed();

private:
    struct Dismissal
    {
        Request request;
        bool isRepeated = false; ///< the server will tell it again, at this login
    };

    void connectClient(const TcpClient *client);
    void onLogin(int userId, bool isAdmin);
    void expectRepetitions(bool expected);
    [[nodiscard]] bool isRepetition(const Request &request);
    [[nodiscard]] bool isAccount(const Request &request) const;

    QVector<Request> m_requests;
    QVector<Dismissal> m_dismissed;
    QSet<int> m_accountIds;       ///< of the list of accounts that came last
    QSet<QString> m_accountCalls; ///< likewise, in capitals
    int m_login = 0;              ///< user id of the account that the requests are told to; 0: none yet
};
