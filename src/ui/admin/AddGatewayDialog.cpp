#include "ui/admin/AddGatewayDialog.h"

#include "ui/ElidedLabel.h"
#include "ui/setup/InputRules.h"

#include <QCheckBox>
#include <QDate>
#include <QFormLayout>
#include <QFrame>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace {

constexpr int kYears = 5; // of a permit
constexpr int kWidth = 460;
constexpr int kHeight = 560; // logical pixels; fits a screen of 600

QString textOf(const QLineEdit *edit)
{
    return ElidedLabel::oneLine(edit->text()).trimmed(); // what was pasted may have several lines
}

QString orDash(const QLineEdit *edit)
{
    const QString text = textOf(edit);
    return text.isEmpty() ? QStringLiteral("-") : text;
}

} // namespace

AddGatewayDialog::AddGatewayDialog(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("addGatewayDialog"));
    setWindowTitle(QStringLiteral("Add Gateway"));
    auto *area = new QScrollArea(this); // on a small screen the fields are scrolled
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidget(createFields());
    m_error = new QLabel(this);
    m_error->setObjectName(QStringLiteral("addGatewayError"));
    m_error->setStyleSheet(QStringLiteral("color: #F44336; font-weight: bold;"));
    auto *cancel = new QPushButton(QStringLiteral("Cancel"), this);
    cancel->setObjectName(QStringLiteral("addGatewayCancelButton"));
    cancel->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto *add = new QPushButton(QStringLiteral("Add Gateway"), this);
    add->setObjectName(QStringLiteral("addGatewaySubmitButton"));
    add->setProperty("meaning", QStringLiteral("good"));
    add->setDefault(true);
    connect(add, &QPushButton::clicked, this, &AddGatewayDialog::submit);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(add);
    buttons->addWidget(cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(area);
    layout->addWidget(m_error);
    layout->addLayout(buttons);
    resize(kWidth, kHeight);
    m_callsign->setFocus();
}

QLineEdit *AddGatewayDialog::addField(QFormLayout *form, const QString &label, const char *name, int longest,
                                      const QString &placeholder)
{
    auto *edit = new QLineEdit(this);
    edit->setObjectName(QLatin1String(name));
    edit->setMaxLength(longest);
    edit->setPlaceholderText(placeholder);
    InputRules::refuseQuotes(*edit);
    form->addRow(label, edit);
    return edit;
}

QWidget *AddGatewayDialog::createFields()
{
    using namespace InputRules;
    auto *gateway = new QGroupBox(QStringLiteral("Gateway Information"));
    auto *gatewayForm = new QFormLayout(gateway);
    m_callsign = addField(gatewayForm, QStringLiteral("Callsign (YH...):"), "addCallsignEdit", kLongestNumber,
                          QStringLiteral("e.g. YH8RXX"));
    connect(m_callsign, &QLineEdit::textChanged, this, [this] { makeCallsign(*m_callsign); });
    m_gatewayName = addField(gatewayForm, QStringLiteral("Gateway Name:"), "addGatewayNameEdit", kLongestText);
    m_frequency = addField(gatewayForm, QStringLiteral("Frequency:"), "addFrequencyEdit", kLongestNumber,
                           QStringLiteral("e.g. 146.440 MHz"));
    m_location = addField(gatewayForm, QStringLiteral("Location:"), "addLocationEdit", kLongestText);

    auto *pic = new QGroupBox(QStringLiteral("Person in Charge (PIC)"));
    auto *picForm = new QFormLayout(pic);
    m_picName = addField(picForm, QStringLiteral("PIC Name:"), "addPicNameEdit", kLongestText);
    m_picCallsign = addField(picForm, QStringLiteral("PIC Callsign:"), "addPicCallsignEdit", kLongestNumber);
    connect(m_picCallsign, &QLineEdit::textChanged, this, [this] { makeCallsign(*m_picCallsign); });
    m_email = addField(picForm, QStringLiteral("Email:"), "addEmailEdit", kLongestText);
    m_whatsapp = addField(picForm, QStringLiteral("WhatsApp:"), "addWhatsappEdit", kLongestNumber,
                          QStringLiteral("e.g. 08123456789"));

    auto *fields = new QWidget(this);
    auto *layout = new QVBoxLayout(fields);
    layout->addWidget(gateway);
    layout->addWidget(pic);
    auto *accountForm = new QFormLayout;
    m_password = addField(accountForm, QStringLiteral("Password:"), "addPasswordEdit", kLongestPassword,
                          QStringLiteral("Initial password"));
    m_password->setEchoMode(QLineEdit::PasswordEchoOnEdit); // read to be passed on, not to lie open
    m_approved = new QCheckBox(QStringLiteral("Approved (can transmit immediately)"), fields);
    m_approved->setObjectName(QStringLiteral("addApprovedCheck"));
    accountForm->addRow(QString(), m_approved);
    layout->addLayout(accountForm);
    layout->addStretch();
    return fields;
}

QString AddGatewayDialog::refusal() const
{
    if (!textOf(m_callsign).startsWith(QLatin1String("YH")))
        return QStringLiteral("Callsign harus diawali YH!");
    if (textOf(m_gatewayName).isEmpty())
        return QStringLiteral("Gateway Name tidak boleh kosong!");
    if (textOf(m_picName).isEmpty())
        return QStringLiteral("PIC Name tidak boleh kosong!");
    if (textOf(m_password).isEmpty())
        return QStringLiteral("Password tidak boleh kosong!");
    return {};
}

Commands::Registration AddGatewayDialog::registration(const QDate &today) const
{
    Commands::Registration registration;
    registration.gatewayName = textOf(m_gatewayName);
    registration.callsign = textOf(m_callsign);
    registration.frequency = orDash(m_frequency);
    registration.permitExpiry = today.addYears(kYears).toString(QStringLiteral("yyyy-MM-dd"));
    registration.location = orDash(m_location);
    registration.operatorName = textOf(m_picName);
    registration.responsibleCallsign = orDash(m_picCallsign);
    registration.password = ElidedLabel::oneLine(m_password->text());
    registration.email = orDash(m_email);
    registration.phone = orDash(m_whatsapp);
    return registration;
}

void AddGatewayDialog::submit()
{
    const QString reason = refusal();
    m_error->setText(reason);
    if (!reason.isEmpty())
        return;
    const Commands::Registration gateway = registration(QDate::currentDate());
    const bool approve = m_approved->isChecked();
    accept();
    emit submitted(gateway, approve); // last: whoever is told may open a box and delete the dialog
}
