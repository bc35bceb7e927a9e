#include "ui/settings/SerialFields.h"

#include "ui/settings/SerialPortCombo.h"
#include "ui/settings/Settings.h"

#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {

QComboBox *createCombo(const char *name, const QStringList &items, QWidget *parent)
{
    auto *combo = new QComboBox(parent);
    combo->setObjectName(QLatin1String(name));
    combo->addItems(items);
    return combo;
}

void choose(QComboBox &combo, const QString &text, const QString &fallback)
{
    const int index = combo.findText(text);
    combo.setCurrentIndex(index >= 0 ? index : combo.findText(fallback));
}

QFormLayout *createForm(QGroupBox *group)
{
    auto *form = new QFormLayout(group);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    return form;
}

} // namespace

SerialFields::SerialFields(const Texts &texts, QWidget *parent)
    : QWidget(parent)
{
    auto *layout = new QGridLayout(this); // two groups side by side, for screens of little height
    layout->setContentsMargins({});
    layout->addWidget(createPort(), 0, 0);
    layout->addWidget(createPins(texts.cosPin), 0, 1);
    layout->addWidget(createLogic(texts), 1, 0, 1, 2);
    layout->setColumnStretch(0, 1); // the port's name is the longest text
}

QWidget *SerialFields::createPort()
{
    auto *group = new QGroupBox(QStringLiteral("Serial Port"), this);
    m_port = new SerialPortCombo(group);
    m_port->setObjectName(QStringLiteral("serialPortCombo"));
    m_baudrate = createCombo("baudrateCombo",
                             {QStringLiteral("1200"), QStringLiteral("2400"), QStringLiteral("4800"),
                              QStringLiteral("9600"), QStringLiteral("19200"), QStringLiteral("38400"),
                              QStringLiteral("57600"), QStringLiteral("115200")},
                             group);
    QFormLayout *form = createForm(group);
    form->addRow(QStringLiteral("Port:"), m_port);
    form->addRow(QStringLiteral("Baudrate:"), m_baudrate);
    return group;
}

QWidget *SerialFields::createPins(const QString &cosLabel)
{
    auto *group = new QGroupBox(QStringLiteral("PTT Control"), this);
    m_pttPin =
        createCombo("pttPinCombo", {QStringLiteral("RTS"), QStringLiteral("DTR"), QStringLiteral("BOTH")}, group);
    m_cosPin = createCombo("cosPinCombo", {QStringLiteral("CTS"), QStringLiteral("DCD"), QStringLiteral("DSR")}, group);
    QFormLayout *form = createForm(group);
    form->addRow(QStringLiteral("PTT Pin:"), m_pttPin);
    form->addRow(cosLabel, m_cosPin);
    return group;
}

QWidget *SerialFields::createLogic(const Texts &texts)
{
    auto *group = new QGroupBox(QStringLiteral("COS Logic"), this);
    m_cosHigh = new QRadioButton(texts.cosHigh, group);
    m_cosHigh->setObjectName(QStringLiteral("cosHighRadio"));
    m_cosLow = new QRadioButton(texts.cosLow, group);
    m_cosLow->setObjectName(QStringLiteral("cosLowRadio"));
    auto *layout = new QVBoxLayout(group);
    layout->addWidget(m_cosHigh);
    layout->addWidget(m_cosLow);
    return group;
}

void SerialFields::collect(Settings &settings) const
{
    settings.serialPort = m_port->port();
    settings.baudrate = m_baudrate->currentText().toInt();
    settings.pttPin = m_pttPin->currentText();
    settings.cosPin = m_cosPin->currentText();
    settings.cosLogicHigh = m_cosHigh->isChecked();
}

void SerialFields::showSettings(const Settings &settings)
{
    const Settings defaults;
    m_port->showPorts(settings.serialPort);
    choose(*m_baudrate, QString::number(settings.baudrate), QString::number(defaults.baudrate));
    choose(*m_pttPin, settings.pttPin, defaults.pttPin);
    choose(*m_cosPin, settings.cosPin, defaults.cosPin);
    m_cosHigh->setChecked(settings.cosLogicHigh);
    m_cosLow->setChecked(!settings.cosLogicHigh);
}

void SerialFields::refreshPorts()
{
    m_port->showPorts(m_port->port());
}
