#include "ui/setup/LoginDialog.h"

#include "app/Config.h"
#include "ui/Prompts.h"
#include "ui/setup/InputRules.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <QVariant>

namespace {

constexpr int kWidth = 400;
constexpr int kDefaultPort = 8080;

} // namespace

LoginDialog::LoginDialog(const QString &serverHost, Prompts &prompts, QWidget *parent)
    : QDialog(parent)
    , m_prompts(prompts)
{
    setObjectName(QStringLiteral("loginDialog"));
    setWindowTitle(QStringLiteral("Login ke eVOX SINAR"));
    setMinimumWidth(kWidth);
    createFields(serverHost);
    layOut();
    m_callsign->setFocus();
}

void LoginDialog::createFields(const QString &serverHost)
{
    m_server = new QLineEdit(serverHost, this);
    m_server->setObjectName(QStringLiteral("loginServerEdit"));
    m_server->setMaxLength(InputRules::kLongestHost);
    InputRules::refuseQuotes(*m_server);
    m_port = new QSpinBox(this);
    m_port->setObjectName(QStringLiteral("loginPortSpin"));
    m_port->setRange(1, InputRules::kHighestPort);
    m_port->setValue(kDefaultPort);
    m_callsign = new QLineEdit(this);
    m_callsign->setObjectName(QStringLiteral("loginCallsignEdit"));
    m_callsign->setPlaceholderText(QStringLiteral("Callsign Anda"));
    m_callsign->setMaxLength(InputRules::kLongestText);
    InputRules::refuseQuotes(*m_callsign);
    connect(m_callsign, &QLineEdit::textChanged, this, [this] { InputRules::makeCallsign(*m_callsign); });
    m_password = new QLineEdit(this);
    m_password->setObjectName(QStringLiteral("loginPasswordEdit"));
    m_password->setEchoMode(QLineEdit::Password);
    m_password->setPlaceholderText(QStringLiteral("Password"));
    m_password->setMaxLength(InputRules::kLongestPassword);
    InputRules::refuseQuotes(*m_password);
    m_error = new QLabel(this);
    m_error->setObjectName(QStringLiteral("loginErrorLabel"));
    m_error->setStyleSheet(QStringLiteral("color: #F44336; font-weight: bold;"));
}

void LoginDialog::layOut()
{
    auto *heading = new QLabel(windowTitle(), this);
    heading->setObjectName(QStringLiteral("dialogHeading"));
    heading->setAlignment(Qt::AlignCenter);
    auto *show = new QCheckBox(QStringLiteral("Tampilkan password"), this);
    show->setObjectName(QStringLiteral("loginShowPasswordCheck"));
    connect(show, &QCheckBox::toggled, this,
            [this](bool on) { m_password->setEchoMode(on ? QLineEdit::Normal : QLineEdit::Password); });
    auto *cancel = new QPushButton(QStringLiteral("Batal"), this);
    cancel->setObjectName(QStringLiteral("loginCancelButton"));
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto *login = new QPushButton(QStringLiteral("Login"), this);
    login->setObjectName(QStringLiteral("loginAcceptButton"));
    login->setProperty("meaning", QStringLiteral("good"));
    login->setDefault(true);
    connect(login, &QPushButton::clicked, this, &LoginDialog::logIn);

    auto *form = new QFormLayout;
    form->addRow(QStringLiteral("Server:"), m_server);
    form->addRow(QStringLiteral("Port:"), m_port);
    form->addRow(QStringLiteral("Callsign:"), m_callsign);
    form->addRow(QStringLiteral("Password:"), m_password);
    form->addRow(QString(), show);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cancel);
    buttons->addWidget(login);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addLayout(form);
    layout->addWidget(m_error);
    layout->addLayout(buttons);
}

void LoginDialog::logIn()
{
    const QString server = m_server->text().trimmed();
    const QString callsign = m_callsign->text().trimmed();
    const QString password = m_password->text();
    if (server.isEmpty() || callsign.isEmpty() || password.isEmpty()) {
        m_error->setText(QStringLiteral("Semua field harus diisi!"));
        return;
    }
    Config &config = Config::instance();
    config.setServerAddress(server);
    config.setServerPort(m_port->value());
    config.setCallsign(callsign);
    config.setPassword(password);
    config.setRememberPassword(true);
    config.setSetupCompleted(true);
    config.save();
    const QPointer<LoginDialog> self(this);
    m_prompts.information(QStringLiteral("Sukses"), QStringLiteral("Login berhasil!\nSilakan restart aplikasi."));
    if (self)
        accept();
}
