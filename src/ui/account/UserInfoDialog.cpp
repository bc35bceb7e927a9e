#include "ui/account/UserInfoDialog.h"

#include <QDialogButtonBox>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace {

QString field(const QVariantMap &record, const char *key, const char *otherKey = nullptr, const char *fallback = "-")
{
    QString text = record.value(QLatin1String(key)).toString();
    if (text.isEmpty() && otherKey)
        text = record.value(QLatin1String(otherKey)).toString();
    return text.isEmpty() ? QString::fromLatin1(fallback) : text;
}

} // namespace

QString UserInfoDialog::textFor(const QVariantMap &record)
{
    QString lastLogin = field(record, "last_login");
    lastLogin.replace(QLatin1Char('T'), QLatin1Char(' '));
    const QString approved =
        record.value(QStringLiteral("approved")).toBool() ? QStringLiteral("Yes") : QStringLiteral("No");
    // Filled line by line: a server text with a "%1" in it must not be filled again.
    const QStringList lines{
        QStringLiteral("Name        : ") + field(record, "gateway_name", "name"),
        QStringLiteral("Callsign    : ") + field(record, "callsign"),
        QStringLiteral("ID          : ") + field(record, "id", "user_id"),
        QStringLiteral("Freq        : ") + field(record, "frequency"),
        QStringLiteral("Loc         : ") + field(record, "location"),
        QStringLiteral("PIC         : ") + field(record, "responsible_name") + QLatin1String(" (") +
            field(record, "responsible_callsign") + QLatin1Char(')'),
        QStringLiteral("Email       : ") + field(record, "email"),
        QStringLiteral("WA          : ") + field(record, "whatsapp"),
        QStringLiteral("Status      : ") + field(record, "status", nullptr, "active"),
        QStringLiteral("Approved    : ") + approved,
        QStringLiteral("Expiry      : ") + field(record, "license_expiry"),
        QStringLiteral("Last Login  : ") + lastLogin,
        QStringLiteral("HWID        : ") + field(record, "registered_hwid"),
        QStringLiteral("PING        : -- ms"),
        QStringLiteral("Version     : -"),
    };
    return lines.join(QLatin1Char('\n'));
}

UserInfoDialog::UserInfoDialog(const QVariantMap &record, QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(QStringLiteral("RF-Gateway Info - ") + field(record, "callsign"));
    setStyleSheet(QStringLiteral("QDialog { background-color: #1A1A1A; }"));

    auto *header = new QLabel(QStringLiteral("RF-GATEWAY INFO"), this);
    header->setStyleSheet(
        QStringLiteral("font-weight: bold; color: #00FF00; font-size: 14px; padding: 4px 0; background: transparent;"));
    auto *rule = new QFrame(this);
    rule->setFixedHeight(1);
    rule->setStyleSheet(QStringLiteral("background-color: #00FF00; border: none;"));
    auto *block = new QLabel(textFor(record), this);
    block->setObjectName(QStringLiteral("infoText"));
    block->setTextFormat(Qt::PlainText);
    block->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    block->setStyleSheet(
        QStringLiteral("background-color: #0D0D0D; color: #00FF00; border: 1px solid #333; border-radius: 6px; "
                       "padding: 12px; font-family: Consolas, \"DejaVu Sans Mono\", monospace; font-size: 12px;"));
    auto *area = new QScrollArea(this); // a hostile record may be longer than the screen
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidget(block);
    area->setMinimumSize(460, 300);
    auto *buttons = new QDialogButtonBox(this);
    QPushButton *closeButton = buttons->addButton(QStringLiteral("Close"), QDialogButtonBox::RejectRole);
    closeButton->setDefault(true);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(header);
    layout->addWidget(rule);
    layout->addWidget(area);
    layout->addWidget(buttons);
}
