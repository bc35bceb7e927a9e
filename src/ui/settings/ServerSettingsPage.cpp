#include "ui/settings/ServerSettingsPage.h"

#include "ui/settings/Settings.h"
#include "ui/setup/InputRules.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QSpinBox>
#include <QVBoxLayout>

ServerSettingsPage::ServerSettingsPage(QWidget *parent)
    : QWidget(parent)
{
    auto *group = new QGroupBox(QStringLiteral("Server Connection"), this);
    createFields(group);
    auto *form = new QFormLayout(group);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(QStringLiteral("Server Address:"), m_address);
    form->addRow(QStringLiteral("Port:"), m_port);
    form->addRow(QStringLiteral("Default Room:"), m_room);
    form->addRow(m_rememberPassword);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(group);
    layout->addStretch();
}

void ServerSettingsPage::createFields(QWidget *parent)
{
    m_address = new QLineEdit(parent);
    m_address->setObjectName(QStringLiteral("serverAddressEdit"));
    m_address->setPlaceholderText(QStringLiteral("radio.example.id / 192.168.1.1"));
    m_address->setMaxLength(InputRules::kLongestHost);
    m_port = new QSpinBox(parent);
    m_port->setObjectName(QStringLiteral("serverPortSpin"));
    m_port->setRange(1, InputRules::kHighestPort);
    m_room = new QComboBox(parent);
    m_room->setObjectName(QStringLiteral("defaultRoomCombo"));
    m_room->setEditable(true);
    m_room->setInsertPolicy(QComboBox::NoInsert);
    m_room->setCompleter(nullptr); // "Radio" is a room of its own, not the beginning of "Radio Technical"
    m_room->addItems({QStringLiteral("Lobby"), QStringLiteral("DX Cluster"), QStringLiteral("Rag Chew"),
                      QStringLiteral("Emergency"), QStringLiteral("Radio Technical"),
                      QStringLiteral("VHF Nusantara Net"), QStringLiteral("Technical")});
    m_room->lineEdit()->setMaxLength(InputRules::kLongestText);
    InputRules::refuseQuotes(*m_room->lineEdit());
    m_rememberPassword = new QCheckBox(QStringLiteral("Remember password (auto-login)"), parent);
    m_rememberPassword->setObjectName(QStringLiteral("rememberPasswordCheck"));
    m_rememberPassword->setToolTip(QStringLiteral("Save password locally to skip login dialog"));
}

void ServerSettingsPage::collect(Settings &settings) const
{
    settings.serverAddress = m_address->text().trimmed();
    settings.serverPort = m_port->value();
    settings.defaultRoom = m_room->currentText().trimmed();
    settings.rememberPassword = m_rememberPassword->isChecked();
}

void ServerSettingsPage::showSettings(const Settings &settings)
{
    m_address->setText(settings.serverAddress);
    m_port->setValue(settings.serverPort);
    m_room->setCurrentText(settings.defaultRoom);
    m_rememberPassword->setChecked(settings.rememberPassword);
}
