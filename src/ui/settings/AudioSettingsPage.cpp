#include "ui/settings/AudioSettingsPage.h"

#include "ui/Prompts.h"
#include "ui/settings/InputTest.h"
#include "ui/settings/OutputTest.h"
#include "ui/settings/Settings.h"
#include "ui/settings/SoundCheck.h"

#include <QComboBox>
#include <QDebug>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QVBoxLayout>

namespace {

constexpr int kHighestGain = 100;    // percent
constexpr int kLeastCharacters = 24; // a long device name does not widen the dialog

QString inputTitle()
{
    return QStringLiteral("Test Input");
}

QString outputTitle()
{
    return QStringLiteral("Test Output");
}

QString percent(int value)
{
    return QStringLiteral("%1%").arg(value);
}

QPushButton *createButton(const QString &text, const char *name, QWidget *parent)
{
    auto *button = new QPushButton(text, parent);
    button->setObjectName(QLatin1String(name));
    return button;
}

QList<QAudioDeviceInfo> devicesOf(QAudio::Mode mode)
{
    QList<QAudioDeviceInfo> devices = QAudioDeviceInfo::availableDevices(mode);
    // Where there is no device, the toolkit lists one without a name.
    if (devices.size() == 1 && devices.first().deviceName().isEmpty())
        devices.clear();
    return devices;
}

/// @p direction is "input" or "output", @p label the same with a capital.
void fill(QComboBox &combo, const QList<QAudioDeviceInfo> &devices, const char *label, const char *direction, int saved)
{
    combo.clear();
    for (const QAudioDeviceInfo &device : devices) {
        qDebug().noquote() << "[Settings]" << label << "device" << device.deviceName();
        combo.addItem(device.deviceName());
        combo.setItemData(combo.count() - 1, device.deviceName(), Qt::ToolTipRole);
    }
    if (saved < 0 || saved >= combo.count())
        return;
    combo.setCurrentIndex(saved);
    qDebug().noquote() << "[Settings] Saved" << direction << "device index:" << saved;
}

} // namespace

AudioSettingsPage::AudioSettingsPage(Prompts &prompts, QWidget *parent)
    : QWidget(parent)
    , m_prompts(prompts)
    , m_inputTest(new InputTest(this))
    , m_outputTest(new OutputTest(this))
{
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(createDevice("Input Device (Microphone/Radio RX)", "Input Device:", "inputDeviceCombo", m_input));
    layout->addWidget(
        createDevice("Output Device (Speaker/Radio TX)", "Output Device:", "outputDeviceCombo", m_output));
    layout->addWidget(createGains());
    layout->addLayout(createTests());
    layout->addStretch();
    connect(m_inputTest, &InputTest::finished, this, &AudioSettingsPage::showInputVerdict);
    connect(m_outputTest, &OutputTest::finished, this, &AudioSettingsPage::showOutputQuestion);
}

QWidget *AudioSettingsPage::createDevice(const char *title, const char *label, const char *name, QComboBox *&combo)
{
    auto *group = new QGroupBox(QLatin1String(title), this);
    combo = new QComboBox(group);
    combo->setObjectName(QLatin1String(name));
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    combo->setMinimumContentsLength(kLeastCharacters);
    auto *form = new QFormLayout(group);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(QLatin1String(label), combo);
    return group;
}

QWidget *AudioSettingsPage::createGains()
{
    auto *group = new QGroupBox(QStringLiteral("Volume Control (Soundcard)"), this);
    auto *form = new QFormLayout(group);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    m_micGain = addGain(form, QStringLiteral("Microphone Gain:"), QStringLiteral("micGain"));
    m_speakerGain = addGain(form, QStringLiteral("Speaker Gain:"), QStringLiteral("speakerGain"));
    return group;
}

QSlider *AudioSettingsPage::addGain(QFormLayout *form, const QString &label, const QString &name)
{
    auto *slider = new QSlider(Qt::Horizontal, form->parentWidget());
    slider->setObjectName(name + QLatin1String("Slider"));
    slider->setRange(0, kHighestGain);
    auto *value = new QLabel(percent(kHighestGain), form->parentWidget());
    value->setObjectName(name + QLatin1String("Label"));
    value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    value->setMinimumWidth(value->sizeHint().width()); // the slider keeps its length
    value->setText(percent(slider->value()));
    connect(slider, &QSlider::valueChanged, value, [value](int gain) { value->setText(percent(gain)); });
    auto *row = new QHBoxLayout;
    row->addWidget(slider, 1);
    row->addWidget(value);
    auto *caption = new QLabel(label, form->parentWidget());
    caption->setBuddy(slider);
    form->addRow(caption, row);
    return slider;
}

QLayout *AudioSettingsPage::createTests()
{
    m_testInput = createButton(inputTitle(), "testInputButton", this);
    connect(m_testInput, &QPushButton::clicked, this, &AudioSettingsPage::testInput);
    m_testOutput = createButton(outputTitle(), "testOutputButton", this);
    connect(m_testOutput, &QPushButton::clicked, this, &AudioSettingsPage::testOutput);
    auto *row = new QHBoxLayout;
    row->addWidget(m_testInput);
    row->addWidget(m_testOutput);
    row->addStretch();
    return row;
}

void AudioSettingsPage::collect(Settings &settings) const
{
    settings.inputDevice = m_input->currentIndex();
    settings.outputDevice = m_output->currentIndex();
    settings.micGain = m_micGain->value();
    settings.speakerGain = m_speakerGain->value();
}

void AudioSettingsPage::showSettings(const Settings &settings)
{
    m_micGain->setValue(settings.micGain);
    m_speakerGain->setValue(settings.speakerGain);
}

// The devices are known by their positions alone, as everywhere in the program: when their order changes, another one
// is selected.
void AudioSettingsPage::refreshDevices(int inputDevice, int outputDevice)
{
    m_inputs = devicesOf(QAudio::AudioInput);
    fill(*m_input, m_inputs, "Input", "input", inputDevice);
    fill(*m_output, devicesOf(QAudio::AudioOutput), "Output", "output", outputDevice);
}

void AudioSettingsPage::testInput()
{
    const int index = m_input->currentIndex();
    if (index < 0) {
        m_prompts.warning(inputTitle(), QStringLiteral("No input device selected!"));
        return;
    }
    showInputRunning(true);
    if (m_inputTest->start(m_inputs.at(index)))
        return;
    showInputRunning(false);
    m_prompts.warning(inputTitle(), QStringLiteral("Failed to start!"));
}

void AudioSettingsPage::showInputVerdict(int level)
{
    showInputRunning(false);
    if (SoundCheck::isHeard(level)) {
        m_prompts.information(inputTitle(), QStringLiteral("Input device working!\nLevel: %1%").arg(level));
        return;
    }
    m_prompts.warning(
        inputTitle(),
        QStringLiteral("No audio detected.\nLevel: %1%\n\nCheck microphone connection and try again.").arg(level));
}

void AudioSettingsPage::testOutput()
{
    showOutputRunning(true);
    if (m_outputTest->start())
        return;
    showOutputRunning(false);
    m_prompts.warning(outputTitle(), QStringLiteral("Failed to play test tone.\n\nCheck speaker connection."));
}

void AudioSettingsPage::showOutputQuestion()
{
    showOutputRunning(false);
    m_prompts.information(outputTitle(), QStringLiteral("Test tone played.\n\nDid you hear the beep sound?"));
}

void AudioSettingsPage::stopTests()
{
    m_inputTest->stop();
    m_outputTest->stop();
    showInputRunning(false);
    showOutputRunning(false);
}

void AudioSettingsPage::showInputRunning(bool running)
{
    m_testInput->setText(running ? QStringLiteral("Recording...") : inputTitle());
    m_testInput->setEnabled(!running);
}

void AudioSettingsPage::showOutputRunning(bool running)
{
    m_testOutput->setText(running ? QStringLiteral("Playing...") : outputTitle());
    m_testOutput->setEnabled(!running);
}
