#include "server/LoginGuard.h"

#include <algorithm>

bool LoginGuard::mayTry(const QString &address, qint64 now)
{
    forgetOld(now);
    const QVector<qint64> times = m_failures.value(address);
    return std::count_if(times.cbegin(), times.cend(), [now](qint64 time) { return now - time < kWindow; }) < kFailures;
}

void LoginGuard::count(const QString &address, qint64 now)
{
    QVector<qint64> &times = m_failures[address];
    times.append(now);
    if (times.size() > kFailures)
        times.removeFirst();
}

void LoginGuard::forgetOld(qint64 now)
{
    if (now - m_lastSweep < kWindow)
        return;
    m_lastSweep = now;
    for (auto it = m_failures.begin(); it != m_failures.end();) {
        if (now - it.value().last() >= kWindow)
            it = m_failures.erase(it);
        else
            ++it;
    }
}
