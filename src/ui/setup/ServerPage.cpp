#include "ui/setup/ServerPage.h"

#include "ui/setup/GatewayData.h"
#include "ui/setup/InputRules.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QVariant>

ServerPage::ServerPage(const GatewayData &proposal, QWidget *parent)
    : QWizardPage(parent)
{
    setTitle(QStringLiteral("Konfigurasi Server"));
    setSubTitle(QStringLiteral("Masukkan informasi koneksi ke server eVOX SINAR"));

    auto *address = new QLineEdit(InputRules::withoutQuotes(proposal.serverAddress), this);
    address->setObjectName(QStringLiteral("serverAddressEdit"));
    address->setMaxLength(InputRules::kLongestHost);
    InputRules::refuseQuotes(*address);
    auto *port = new QSpinBox(this);
    port->setObjectName(QStringLiteral("serverPortSpin"));
    port->setRange(1, InputRules::kHighestPort);
    port->setValue(proposal.serverPort);
    auto *room = new QLineEdit(InputRules::withoutQuotes(proposal.defaultRoom), this);
    room->setObjectName(QStringLiteral("defaultRoomEdit"));
    room->setMaxLength(InputRules::kLongestText);
    room->setPlaceholderText(QStringLiteral("Nama room default, contoh: == LOBBY =="));
    InputRules::refuseQuotes(*room);
    auto *hint = new QLabel(QStringLiteral("Nama room bisa diubah di Settings setelah login pertama."), this);
    hint->setProperty("hint", true);
    hint->setWordWrap(true);
    registerField(QStringLiteral("serverAddress"), address);
    registerField(QStringLiteral("serverPort"), port);
    registerField(QStringLiteral("defaultRoom"), room);

    auto *form = new QFormLayout(this);
    form->addRow(QStringLiteral("Alamat Server:"), address);
    form->addRow(QStringLiteral("Port:"), port);
    form->addRow(QStringLiteral("Default Room:"), room);
    form->addRow(QString(), hint);
}
