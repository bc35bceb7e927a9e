#pragma once

#include <QHash>
#include <QString>
#include <QVector>

/// Slows down guessing and flooding: after so many refused logins, registrations or checked passwords within kWindow an
/// address has to wait. Of IPv6 it is the network of 64 bits that counts, which one host has to itself. Times are
/// milliseconds on any steady clock.
class LoginGuard final
{
public:
    static constexpr int kFailures = 10;
    static constexpr qint64 kWindow = 60000;

    explicit LoginGuard(int most = kFailures)
        : m_most(most)
    {
    }

    [[nodiscard]] bool mayTry(const QString &address, qint64 now);
    /// One more try that counts.
    void count(const QString &address, qint64 now);

private:
    void forgetOld(qint64 now);

    int m_most;
    QHash<QString, QVector<qint64>> m_tries;
    qint64 m_lastSweep = 0;
};
