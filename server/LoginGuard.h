#pragma once

#include <QHash>
#include <QString>
#include <QVector>

/// Slows down guessing and flooding: after kFailures refused logins, or as many registrations, within kWindow an
/// address has to wait. Times are milliseconds on any steady clock.
class LoginGuard final
{
public:
    static constexpr int kFailures = 10;
    static constexpr qint64 kWindow = 60000;

    [[nodiscard]] bool mayTry(const QString &address, qint64 now);
    /// One more try that counts.
    void count(const QString &address, qint64 now);

private:
    void forgetOld(qint64 now);

    QHash<QString, QVector<qint64>> m_failures;
    qint64 m_lastSweep = 0;
};
