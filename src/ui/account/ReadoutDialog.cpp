#include "ui/account/ReadoutDialog.h"

#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace {

constexpr int kLeastWidth = 300; // logical pixels of the block; less than a small screen has
constexpr int kLeastHeight = 120;

} // namespace

QString ReadoutDialog::textOf(const QVariantMap &record, const char *key, const char *otherKey, const char *fallback)
{
    QString text = record.value(QLatin1String(key)).toString();
    if (text.isEmpty() && otherKey)
        text = record.value(QLatin1String(otherKey)).toString();
    return text.isEmpty() ? QString::fromLatin1(fallback) : text;
}

QString ReadoutDialog::yesNo(bool yes)
{
    return yes ? QStringLiteral("Yes") : QStringLiteral("No");
}

ReadoutDialog::ReadoutDialog(const QString &title, const QString &heading, const QString &facts, QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(title);
    setStyleSheet(QStringLiteral("QDialog { background-color: #1A1A1A; }"));

    auto *header = new QLabel(heading, this);
    header->setObjectName(QStringLiteral("headingLabel"));
    header->setStyleSheet(QStringLiteral("font-weight: bold; color: #00FF00; font-size: 14px; padding: 4px 0;"));
    auto *rule = new QFrame(this);
    rule->setFixedHeight(1);
    rule->setStyleSheet(QStringLiteral("background-color: #00FF00; border: none;"));
    auto *block = new QLabel(facts);
    block->setObjectName(QStringLiteral("infoText"));
    block->setTextFormat(Qt::PlainText);
    block->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    block->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    block->setFocusPolicy(Qt::StrongFocus); // selectable text is reached by clicking only unless told
    block->setStyleSheet(
        QStringLiteral("background-color: #0D0D0D; color: #00FF00; border: 1px solid #333; border-radius: 6px; "
                       "padding: 12px; font-family: Consolas, monospace; font-size: 12px; line-height: 1.6;"));
    auto *area = new QScrollArea(this); // a hostile record may be longer than the screen
    area->setObjectName(QStringLiteral("infoArea"));
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus); // the block itself is reached
    area->setWidget(block);
    area->setMinimumSize(kLeastWidth, kLeastHeight);
    auto *closeButton = new QPushButton(QStringLiteral("Close"), this);
    closeButton->setObjectName(QStringLiteral("closeButton"));
    closeButton->setDefault(true);
    closeButton->setFocus();
    connect(closeButton, &QPushButton::clicked, this, &QDialog::reject);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(header);
    layout->addWidget(rule);
    layout->addWidget(area, 1);
    layout->addWidget(closeButton, 0, Qt::AlignRight);
}
