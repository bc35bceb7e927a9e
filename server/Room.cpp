#include "server/Room.h"

#include "server/Passwords.h"
#include "server/Session.h"

#include <QStringList>

QString Room::emptyUserList() const
{
    return QStringLiteral("USER_LIST|%1||||||").arg(name);
}

QString Room::movedLine(const QString &by) const
{
    return QStringLiteral("MOVED|%1|%2|%3").arg(name, by, QString::fromLatin1(key.toBase64()));
}

void Room::renewKey()
{
    key = Passwords::randomBytes(kKeySize);
}

QString Room::userList() const
{
    QStringList ids;
    QStringList callsigns;
    QStringList names;
    QStringList transmitting;
    QStringList approved;
    QStringList muted;
    const auto flag = [](bool on) { return on ? QStringLiteral("1") : QStringLiteral("0"); };
    for (const Session *member : members) {
        const Account &account = member->account();
        ids.append(QString::number(account.id));
        callsigns.append(account.callsign);
        names.append(account.gatewayName.isEmpty() ? account.name : account.gatewayName);
        transmitting.append(member == talker ? QStringLiteral("TX") : QStringLiteral("RX"));
        approved.append(flag(account.approved));
        muted.append(flag(account.muted));
    }
    const auto joined = [](const QStringList &list) { return list.join(QLatin1Char(',')); };
    return QStringList{QStringLiteral("USER_LIST"),
                       name,
                       joined(ids),
                       joined(callsigns),
                       joined(names),
                       joined(transmitting),
                       joined(approved),
                       joined(muted)}
        .join(QLatin1Char('|'));
}
