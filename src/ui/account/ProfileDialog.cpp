#include "ui/account/ProfileDialog.h"

QString ProfileDialog::textFor(const QVariantMap &record, const Local &local)
{
    // Filled line by line: a server text with a "%1" in it must not be filled again.
    const QStringList lines{
        QStringLiteral("Callsign     : ") + textOf(record, "callsign"),
        QStringLiteral("Gateway      : ") + textOf(record, "gateway_name"),
        QStringLiteral("Frequency    : ") + textOf(record, "frequency"),
        QStringLiteral("Location     : ") + textOf(record, "location"),
        QStringLiteral("PIC          : ") + textOf(record, "name", "responsible_name") + QLatin1String(" (") +
            textOf(record, "responsible_callsign") + QLatin1Char(')'),
        QStringLiteral("Email        : ") + textOf(record, "email"),
        QStringLiteral("WhatsApp     : ") + textOf(record, "whatsapp"),
        QStringLiteral("Status       : ") + textOf(record, "status"),
        QStringLiteral("Approved     : ") + yesNo(record.value(QStringLiteral("approved")).toBool()),
        QStringLiteral("HWID         : ") + (local.hwid.isEmpty() ? QStringLiteral("Not set") : local.hwid),
        QStringLiteral("Auto Login   : ") + yesNo(local.autoLogin),
        QStringLiteral("Remember Pwd : ") + yesNo(local.rememberPassword),
    };
    return lines.join(QLatin1Char('\n'));
}

ProfileDialog::ProfileDialog(const QVariantMap &record, const Local &local, QWidget *parent)
    : ReadoutDialog(QStringLiteral("My Profile - ") + textOf(record, "callsign"), QStringLiteral("PROFILE INFO"),
                    textFor(record, local), parent)
{
}
