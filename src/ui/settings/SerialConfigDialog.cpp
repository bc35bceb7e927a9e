#include "ui/settings/SerialConfigDialog.h"

#include "ui/settings/SerialFields.h"
#include "ui/settings/Settings.h"

#include <QHBoxLayout>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>
#include <QVariant>

SerialConfigDialog::SerialConfigDialog(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("serialConfigDialog"));
    setWindowTitle(QStringLiteral("Serial Configuration"));
    m_fields = new SerialFields({QStringLiteral("COS Pin:"), QStringLiteral("HIGH (active when signal HIGH)"),
                                 QStringLiteral("LOW (active when signal LOW)")},
                                this);
    m_fields->showSettings(StoredSettings::read());
    auto *saveButton = new QPushButton(QStringLiteral("Save"), this);
    saveButton->setObjectName(QStringLiteral("saveButton"));
    saveButton->setProperty("meaning", QStringLiteral("good"));
    saveButton->setDefault(true);
    connect(saveButton, &QPushButton::clicked, this, &SerialConfigDialog::save);
    auto *cancelButton = new QPushButton(QStringLiteral("Cancel"), this);
    cancelButton->setObjectName(QStringLiteral("cancelButton"));
    connect(cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(saveButton);
    buttons->addWidget(cancelButton);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_fields);
    layout->addStretch();
    layout->addLayout(buttons);
}

void SerialConfigDialog::save()
{
    Settings settings;
    m_fields->collect(settings);
    StoredSettings::writeSerial(settings);
    const QPointer<SerialConfigDialog> self(this); // whoever is told may delete it
    emit saved(settings.serialPort);
    if (self)
        accept();
}
