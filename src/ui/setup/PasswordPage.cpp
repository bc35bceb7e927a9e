#include "ui/setup/PasswordPage.h"

#include "ui/setup/GatewayData.h"
#include "ui/setup/InputRules.h"
#include "ui/setup/SetupWizard.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRandomGenerator>
#include <QScrollArea>
#include <QVBoxLayout>

PasswordPage::PasswordPage(const GatewayData &proposal, QWidget *parent)
    : QWizardPage(parent)
{
    setTitle(QStringLiteral("Password & Review"));
    setSubTitle(QStringLiteral("Buat password dan periksa kembali data Anda"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(createPasswordGroup(proposal));
    layout->addWidget(createReviewGroup(), 1);
}

QWidget *PasswordPage::createPasswordGroup(const GatewayData &proposal)
{
    auto *group = new QGroupBox(QStringLiteral("Password Gateway"), this);
    m_password = new QLineEdit(proposal.password, group);
    m_password->setObjectName(QStringLiteral("passwordEdit"));
    m_password->setEchoMode(QLineEdit::Password);
    m_password->setPlaceholderText(QStringLiteral("Min. 8 karakter"));
    m_password->setMaxLength(InputRules::kLongestPassword);
    InputRules::refuseQuotes(*m_password);
    auto *show = new QCheckBox(QStringLiteral("Tampilkan"), group);
    show->setObjectName(QStringLiteral("showPasswordCheck"));
    auto *generate = new QPushButton(QStringLiteral("Generate Password"), group);
    generate->setObjectName(QStringLiteral("generateButton"));
    registerField(QStringLiteral("password*"), m_password);

    connect(show, &QCheckBox::toggled, m_password,
            [this](bool on) { m_password->setEchoMode(on ? QLineEdit::Normal : QLineEdit::Password); });
    connect(generate, &QPushButton::clicked, m_password, [this] { m_password->setText(generatePassword()); });

    auto *tools = new QHBoxLayout;
    tools->addWidget(show);
    tools->addStretch();
    tools->addWidget(generate);
    auto *form = new QFormLayout(group);
    form->addRow(QStringLiteral("Password:"), m_password);
    form->addRow(QString(), tools);
    return group;
}

QWidget *PasswordPage::createReviewGroup()
{
    auto *group = new QGroupBox(QStringLiteral("Review Data"), this);
    m_review = new QLabel(QStringLiteral("Data akan ditampilkan di sini"));
    m_review->setObjectName(QStringLiteral("reviewLabel"));
    m_review->setTextFormat(Qt::PlainText);
    m_review->setStyleSheet(QStringLiteral("font-family: Consolas, \"DejaVu Sans Mono\", monospace;"));
    m_review->setWordWrap(true);
    m_review->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    auto *area = new QScrollArea(group); // the longest values need more lines than the page has
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidget(m_review);
    auto *layout = new QVBoxLayout(group);
    layout->addWidget(area);
    return group;
}

QString PasswordPage::generatePassword()
{
    static const QString alphabet = QStringLiteral("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789");
    QString password;
    for (int i = 0; i < kGeneratedLength; ++i) {
        const quint32 random = QRandomGenerator::system()->generate();
        password += alphabet.at(static_cast<int>(random % static_cast<quint32>(alphabet.size())));
    }
    return password;
}

QString PasswordPage::reviewOf(const GatewayData &data)
{
    // Put together, not filled in: what was typed may contain a "%1".
    const QStringList lines{
        QStringLiteral("Server  : ") + data.serverAddress + QLatin1Char(':') + QString::number(data.serverPort),
        QStringLiteral("Room    : ") + data.defaultRoom,
        QStringLiteral("Callsign: ") + data.callsign,
        QStringLiteral("Gateway : ") + data.gatewayName,
        QStringLiteral("Freq    : ") + data.frequency,
        QStringLiteral("Lokasi  : ") + data.location,
        QStringLiteral("PIC     : ") + data.picName + QLatin1String(" (") + data.picCallsign + QLatin1Char(')'),
        QStringLiteral("Email   : ") + data.email,
        QStringLiteral("WA      : ") + data.whatsapp,
    };
    return lines.join(QLatin1Char('\n'));
}

// A mandatory field is only complete when it differs from what it began with; an earlier attempt's password need not.
bool PasswordPage::isComplete() const
{
    return !m_password->text().isEmpty();
}

void PasswordPage::initializePage()
{
    if (const auto *setup = qobject_cast<SetupWizard *>(wizard()))
        m_review->setText(reviewOf(setup->gatewayData()));
}
