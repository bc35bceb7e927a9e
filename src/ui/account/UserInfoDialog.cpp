#include "ui/account/UserInfoDialog.h"

#include <QRegularExpression>

QString UserInfoDialog::textFor(const QVariantMap &record)
{
    QString lastLogin = textOf(record, "last_login");
    // Only between a date and a time: a zone or a word has a "T" too.
    static const QRegularExpression separator(QStringLiteral("(?<=[0-9])T(?=[0-9])"));
    lastLogin.replace(separator, QStringLiteral(" "));
    // Filled line by line: a server text with a "%1" in it must not be filled again.
    const QStringList lines{
        QStringLiteral("Name        : ") + textOf(record, "gateway_name", "name"),
        QStringLiteral("Callsign    : ") + textOf(record, "callsign"),
        QStringLiteral("ID          : ") + textOf(record, "id", "user_id"),
        QStringLiteral("Freq        : ") + textOf(record, "frequency"),
        QStringLiteral("Loc         : ") + textOf(record, "location"),
        QStringLiteral("PIC         : ") + textOf(record, "responsible_name") + QLatin1String(" (") +
            textOf(record, "responsible_callsign") + QLatin1Char(')'),
        QStringLiteral("Email       : ") + textOf(record, "email"),
        QStringLiteral("WA          : ") + textOf(record, "whatsapp"),
        QStringLiteral("Status      : ") + textOf(record, "status", nullptr, "active"),
        QStringLiteral("Approved    : ") + yesNo(record.value(QStringLiteral("approved")).toBool()),
        QStringLiteral("Expiry      : ") + textOf(record, "license_expiry"),
        QStringLiteral("Last Login  : ") + lastLogin,
        QStringLiteral("HWID        : ") + textOf(record, "registered_hwid"),
        QStringLiteral("PING        : -- ms"),
        QStringLiteral("Version     : -"),
    };
    return lines.join(QLatin1Char('\n'));
}

UserInfoDialog::UserInfoDialog(const QVariantMap &record, QWidget *parent)
    : ReadoutDialog(QStringLiteral("RF-Gateway Info - ") + textOf(record, "callsign"),
                    QStringLiteral("RF-GATEWAY INFO"), textFor(record), parent)
{
}
