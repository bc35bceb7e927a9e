#include "ui/account/ChangePasswordDialog.h"

#include "ui/ElidedLabel.h"
#include "ui/account/AccountFields.h"
#include "ui/setup/InputRules.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace {

constexpr int kLeastWidth = 400;     // logical pixels
constexpr int kLongestMessage = 300; // characters of the server's reason
const char *const kRefused = "color: #F44336; font-weight: bold;";
const char *const kSending = "color: #FF9800; font-weight: bold;";
/// Orange in both themes; the button is the only one of its colour.
const char *const kOrange = "QPushButton:enabled { background-color: #FF9800; color: #212121; border-color: #FF9800; }"
                            "QPushButton:enabled:focus { border-color: palette(window-text); }";

} // namespace

ChangePasswordDialog::ChangePasswordDialog(std::function<bool()> isConnected, QWidget *parent)
    : QDialog(parent)
    , m_isConnected(std::move(isConnected))
{
    setObjectName(QStringLiteral("changePasswordDialog"));
    setWindowTitle(QStringLiteral("Change Password"));
    setMinimumWidth(kLeastWidth);
    m_old = makeField("oldPasswordEdit", QStringLiteral("Current password"));
    m_new = makeField("newPasswordEdit", QStringLiteral("New password (min. 6 characters)"));
    m_confirm = makeField("confirmPasswordEdit", QStringLiteral("Confirm new password"));
    layOut();
    m_old->setFocus();
}

QLineEdit *ChangePasswordDialog::makeField(const char *name, const QString &placeholder)
{
    QLineEdit *edit = AccountFields::makeEdit(QLatin1String(name), InputRules::kLongestPassword, {}, this);
    edit->setEchoMode(QLineEdit::Password);
    edit->setPlaceholderText(placeholder);
    return edit;
}

void ChangePasswordDialog::layOut()
{
    m_message = new QLabel(this);
    m_message->setObjectName(QStringLiteral("messageLabel"));
    m_message->setTextFormat(Qt::PlainText); // the server's reason is part of it
    m_message->setWordWrap(true);
    m_message->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::MinimumExpanding); // no reason widens the dialog
    m_change = new QPushButton(QStringLiteral("Change Password"), this);
    m_change->setObjectName(QStringLiteral("changeButton"));
    m_change->setStyleSheet(QLatin1String(kOrange));
    m_change->setDefault(true);
    connect(m_change, &QPushButton::clicked, this, &ChangePasswordDialog::request);
    auto *cancel = new QPushButton(QStringLiteral("Cancel"), this);
    cancel->setObjectName(QStringLiteral("cancelButton"));
    cancel->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    auto *form = new QFormLayout;
    form->addRow(QStringLiteral("Old Password:"), m_old);
    form->addRow(QStringLiteral("New Password:"), m_new);
    form->addRow(QStringLiteral("Confirm:"), m_confirm);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_change);
    buttons->addWidget(cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_message, 1);
    layout->addLayout(buttons);
}

/// The first thing that speaks against the request; empty: nothing does.
QString ChangePasswordDialog::problem() const
{
    if (m_new->text() != m_confirm->text())
        return QStringLiteral("Password baru tidak cocok!");
    if (m_new->text().size() < kShortestPassword)
        return QStringLiteral("Password minimal 6 karakter!");
    if (m_old->text().isEmpty())
        return QStringLiteral("Masukkan password lama!");
    if (!m_isConnected())
        return QStringLiteral("Tidak terhubung ke server!");
    return {};
}

void ChangePasswordDialog::request()
{
    const QString refusal = problem();
    if (!refusal.isEmpty()) {
        showMessage(refusal, QLatin1String(kRefused));
        return;
    }
    m_change->setEnabled(false);
    showMessage(QStringLiteral("Mengirim..."), QLatin1String(kSending));
    m_isWaiting = true;
    emit changeRequested(m_old->text(), m_new->text());
}

void ChangePasswordDialog::onPasswordChanged(bool success, const QString &message)
{
    if (!m_isWaiting)
        return;
    m_isWaiting = false;
    if (success) {
        emit changed(); // whoever is told may close the dialog: nothing follows
        return;
    }
    m_change->setEnabled(true);
    showMessage(QLatin1String("Gagal: ") + ElidedLabel::oneLine(message.left(kLongestMessage)),
                QLatin1String(kRefused));
}

void ChangePasswordDialog::showMessage(const QString &text, const QString &styleSheet)
{
    m_message->setStyleSheet(styleSheet);
    m_message->setText(text);
    const int needed = layout()->totalHeightForWidth(width());
    if (height() < needed)
        resize(width(), needed);
}
