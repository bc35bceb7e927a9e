#include "ui/setup/ContactPage.h"

#include "ui/setup/GatewayData.h"
#include "ui/setup/InputRules.h"

#include <QFormLayout>
#include <QLineEdit>

ContactPage::ContactPage(const GatewayData &proposal, QWidget *parent)
    : QWizardPage(parent)
{
    setTitle(QStringLiteral("Informasi Kontak"));
    setSubTitle(QStringLiteral("Data kontak (opsional)"));

    auto *email = new QLineEdit(InputRules::withoutQuotes(proposal.email), this);
    email->setObjectName(QStringLiteral("emailEdit"));
    email->setPlaceholderText(QStringLiteral("operator@contoh.id"));
    auto *whatsapp = new QLineEdit(InputRules::withoutQuotes(proposal.whatsapp), this);
    whatsapp->setObjectName(QStringLiteral("whatsappEdit"));
    whatsapp->setPlaceholderText(QStringLiteral("08123456789"));
    email->setMaxLength(InputRules::kLongestText);
    whatsapp->setMaxLength(InputRules::kLongestNumber);
    InputRules::refuseQuotes(*email);
    InputRules::refuseQuotes(*whatsapp);
    registerField(QStringLiteral("email"), email);
    registerField(QStringLiteral("whatsapp"), whatsapp);

    auto *form = new QFormLayout(this);
    form->addRow(QStringLiteral("Email:"), email);
    form->addRow(QStringLiteral("WhatsApp:"), whatsapp);
}
