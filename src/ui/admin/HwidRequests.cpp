#include "ui/admin/HwidRequests.h"

#include "net/TcpClient.h"
#include "ui/admin/UserRecord.h"

#include <algorithm>

namespace {

using Request = HwidRequests::Request;

Request parsed(const QString &details, const QDateTime &when)
{
    const int userId = details.section(QLatin1Char(':'), 1).toInt();
    return {details.section(QLatin1Char(':'), 0, 0), std::max(userId, 0), when};
}

bool isSameCall(const QString &left, const QString &right)
{
    return left.compare(right, Qt::CaseInsensitive) == 0;
}

bool isOfSameUser(const Request &left, const Request &right)
{
    return left.userId > 0 && right.userId > 0 ? left.userId == right.userId
                                               : isSameCall(left.callsign, right.callsign);
}

} // namespace

HwidRequests::HwidRequests(const TcpClient *client, QObject *parent)
    : QObject(parent)
{
    if (client)
        connectClient(client);
}

void HwidRequests::connectClient(const TcpClient *client)
{
    connect(client, &TcpClient::adminNotification, this, [this](const QString &type, const QString &details) {
        if (type == QLatin1String("HWID_RESET_REQUEST"))
            add(details, QDateTime::currentDateTime());
    });
    connect(client, &TcpClient::hwidReset, this, &HwidRequests::settle);
    connect(client, &TcpClient::allUsersReceived, this, &HwidRequests::keepOnly);
    connect(client, &TcpClient::loginResult, this, [this, client](bool success) {
        if (success)
            onLogin(client->userId(), client->isAdmin());
    });
    connect(client, &TcpClient::roomListReceived, this, [this] { expectRepetitions(false); });
}

void HwidRequests::add(const QString &details, const QDateTime &when)
{
    const Request request = parsed(details, when);
    const auto isOfUser = [&request](const Request &other) { return isOfSameUser(other, request); };
    const auto listed = std::find_if(m_requests.begin(), m_requests.end(), isOfUser);
    if (listed != m_requests.end()) {
        listed->when = when;
        if (request.userId > 0)
            *listed = request;
    } else if (isRepetition(request)) {
        return;
    } else {
        m_requests.append(request);
        if (m_requests.size() > kMost)
            m_requests.removeFirst();
    }
    emit changed();
}

/// Forgets a dismissal that the request shows to be one of the past.
bool HwidRequests::isRepetition(const Request &request)
{
    const auto dismissal = std::find_if(m_dismissed.begin(), m_dismissed.end(), [&request](const Dismissal &other) {
        return isOfSameUser(other.request, request);
    });
    if (dismissal == m_dismissed.end())
        return false;
    if (dismissal->isRepeated)
        return true;
    m_dismissed.erase(dismissal);
    return false;
}

void HwidRequests::settle(const QString &callsign)
{
    const auto isHis = [&callsign](const Request &request) { return isSameCall(request.callsign, callsign); };
    const auto wasHis = [&isHis](const Dismissal &dismissal) { return isHis(dismissal.request); };
    m_dismissed.erase(std::remove_if(m_dismissed.begin(), m_dismissed.end(), wasHis), m_dismissed.end());
    const auto rest = std::remove_if(m_requests.begin(), m_requests.end(), isHis);
    if (rest == m_requests.end())
        return;
    m_requests.erase(rest, m_requests.end());
    emit changed();
}

void HwidRequests::dismiss(int place)
{
    if (place < 0 || place >= m_requests.size())
        return;
    m_dismissed.append({m_requests.takeAt(place), false});
    if (m_dismissed.size() > kMost)
        m_dismissed.removeFirst();
    emit changed();
}

void HwidRequests::keepOnly(const QList<QVariantMap> &accounts)
{
    QVector<Request> known; // one that was in no list may be in the next
    std::copy_if(m_requests.cbegin(), m_requests.cend(), std::back_inserter(known),
                 [this](const Request &request) { return isAccount(request); });
    m_accountIds.clear();
    m_accountCalls.clear();
    for (const QVariantMap &account : accounts) {
        m_accountIds.insert(UserRecord::id(account));
        m_accountCalls.insert(UserRecord::callsign(account).toUpper());
    }
    const auto isGone = [this, &known](const Request &request) {
        const auto isIt = [&request](const Request &other) { return isOfSameUser(other, request); };
        return !isAccount(request) && std::any_of(known.cbegin(), known.cend(), isIt);
    };
    const auto rest = std::remove_if(m_requests.begin(), m_requests.end(), isGone);
    if (rest == m_requests.end())
        return;
    m_requests.erase(rest, m_requests.end());
    emit changed();
}

bool HwidRequests::isAccount(const Request &request) const
{
    return request.userId > 0 ? m_accountIds.contains(request.userId)
                              : m_accountCalls.contains(request.callsign.toUpper());
}

void HwidRequests::onLogin(int userId, bool isAdmin)
{
    const bool isAnother = m_login > 0 && m_login != userId;
    m_login = userId;
    if (isAnother || !isAdmin) {
        m_dismissed.clear();
        m_accountIds.clear();
        m_accountCalls.clear();
        m_requests.clear();
        emit changed();
    }
    expectRepetitions(true);
}

void HwidRequests::expectRepetitions(bool expected)
{
    for (Dismissal &dismissal : m_dismissed)
        dismissal.isRepeated = expected;
}
