#pragma once

#include <QHash>
#include <QString>
#include <QVector>

/// Slows down guessing: after kFailures refused logins within kWindow an address has to wait. Times are milliseconds
/// on any steady clock.
class LoginGuard final
{
public:
    static constexpr int kFailures = 10;
    static constexpr qint64 kWindow = 60000;

    [[nodiscard]] bool mayTry(const QString &address, qint64 now);
    void failed(const QString &address, qint64 now);

private:
    void forgetOld(qint64 now);

    QHash<QString, QVector<qint64>> m_failures;
    qint64 m_lastSweep = 0;
};
