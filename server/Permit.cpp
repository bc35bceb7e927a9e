#include "server/Permit.h"

namespace Permit {

namespace {

constexpr int kWarningDays = 30;

QDate endOf(const Account &account)
{
    return QDate::fromString(account.expiry, Qt::ISODate);
}

} // namespace

bool hasEnded(const Account &account, const QDate &today)
{
    const QDate end = endOf(account);
    return end.isValid() && end < today;
}

QString warning(const Account &account, const QDate &today)
{
    const QDate end = endOf(account);
    const qint64 days = today.daysTo(end);
    return end.isValid() && days <= kWarningDays
               ? QStringLiteral("Izin radio berakhir %1 (%2 hari lagi)").arg(account.expiry).arg(days)
               : QString();
}

} // namespace Permit
