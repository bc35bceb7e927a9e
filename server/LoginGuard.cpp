#include "server/LoginGuard.h"

#include <QHostAddress>

#include <algorithm>
#include <iterator>

namespace {

constexpr int kNetworkBits = 64; // of an IPv6 address; the host chooses the rest as it likes

/// What the tries are counted for. The hosts of a link share its local network, and IPv4 arrives as mapped addresses
/// where both are listened for.
QString keyOf(const QString &text)
{
    const QHostAddress address(text);
    bool isIpv4 = false;
    const quint32 ipv4 = address.toIPv4Address(&isIpv4);
    if (isIpv4)
        return QHostAddress(ipv4).toString();
    if (address.protocol() != QAbstractSocket::IPv6Protocol || address.isLinkLocal())
        return text;
    Q_IPV6ADDR bytes = address.toIPv6Address();
    std::fill(std::begin(bytes.c) + kNetworkBits / 8, std::end(bytes.c), quint8(0));
    return QHostAddress(bytes).toString();
}

} // namespace

bool LoginGuard::mayTry(const QString &address, qint64 now)
{
    forgetOld(now);
    const QVector<qint64> times = m_tries.value(keyOf(address));
    return std::count_if(times.cbegin(), times.cend(), [now](qint64 time) { return now - time < kWindow; }) < m_most;
}

void LoginGuard::count(const QString &address, qint64 now)
{
    QVector<qint64> &times = m_tries[keyOf(address)];
    times.append(now);
    if (times.size() > m_most)
        times.removeFirst();
}

void LoginGuard::forgetOld(qint64 now)
{
    if (now - m_lastSweep < kWindow)
        return;
    m_lastSweep = now;
    for (auto it = m_tries.begin(); it != m_tries.end();) {
        if (now - it.value().last() >= kWindow)
            it = m_tries.erase(it);
        else
            ++it;
    }
}
