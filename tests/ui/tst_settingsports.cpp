#include "SettingsRig.h"
#include "support/FakeSerial.h"
#include "support/LogCapture.h"
#include "support/RadioBench.h"
#include "support/TestMain.h"
#include "ui/Theme.h"
#include "ui/settings/SerialPortCombo.h"

#include <QAbstractButton>
#include <QApplication>
#include <QAudioDeviceInfo>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QSlider>

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

QStringList items(const QComboBox &combo)
{
    QStringList texts;
    for (int i = 0; i < combo.count(); ++i)
        texts.append(combo.itemText(i));
    return texts;
}

QStringList names(QAudio::Mode mode)
{
    QStringList texts;
    const QList<QAudioDeviceInfo> devices = QAudioDeviceInfo::availableDevices(mode);
    for (const QAudioDeviceInfo &device : devices)
        texts.append(device.deviceName());
    return texts;
}

} // namespace

// What the settings dialog knows of the machine: its sound devices, its serial ports, the radio's carrier.
class SettingsPortsTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void listsAndLogsTheDevices();
    void savedDevice_data();
    void savedDevice();
    void refreshSelectsTheSavedDevices();
    void gainsShowTheirValues();

    void portLabel_data();
    void portLabel();
    void listsThePorts();
    void vanishedPortIsKept();
    void noPortStaysNone();
    void refreshKeepsTheChosenPort();

    void carrierLamp();

private:
    RadioBench m_bench;
};

void SettingsPortsTest::initTestCase()
{
    Theme::initResources();
    m_bench.useHere();
    QVERIFY(m_bench.start());
}

void SettingsPortsTest::listsAndLogsTheDevices()
{
    QStringList expected;
    for (const QString &name : names(QAudio::AudioInput))
        expected.append(q("[Settings] Input device ") + name);
    expected.append(q("[Settings] Saved input device index: 1"));
    for (const QString &name : names(QAudio::AudioOutput))
        expected.append(q("[Settings] Output device ") + name);
    expected.append(q("[Settings] Saved output device index: 0"));
    LogCapture log;
    const SettingsRig rig({{q("input_device"), 1}, {q("output_device"), 0}});
    QCOMPARE(items(*rig.find<QComboBox>("inputDeviceCombo")), names(QAudio::AudioInput));
    QCOMPARE(items(*rig.find<QComboBox>("outputDeviceCombo")), names(QAudio::AudioOutput));
    QCOMPARE(log.linesStartingWith(q("[Settings]")), expected);
    log.clear();
    rig.find<QAbstractButton>("refreshDevicesButton")->click();
    QCOMPARE(log.lines(), expected);
    QCOMPARE(rig.find<QComboBox>("inputDeviceCombo")->count(), names(QAudio::AudioInput).size());
}

void SettingsPortsTest::savedDevice_data()
{
    QTest::addColumn<int>("saved");
    QTest::addColumn<int>("shown");
    QTest::addColumn<bool>("found");
    QTest::newRow("system default") << -1 << 0 << false;
    QTest::newRow("first") << 0 << 0 << true;
    QTest::newRow("last") << 1 << 1 << true;
    QTest::newRow("just beyond the list") << 2 << 0 << false;
    QTest::newRow("far beyond the list") << 2147483647 << 0 << false;
}

void SettingsPortsTest::savedDevice()
{
    QFETCH(int, saved);
    QFETCH(int, shown);
    QFETCH(bool, found);
    LogCapture log;
    const SettingsRig rig({{q("output_device"), saved}});
    QCOMPARE(rig.find<QComboBox>("outputDeviceCombo")->count(), 2);
    QCOMPARE(rig.find<QComboBox>("outputDeviceCombo")->currentIndex(), shown);
    QCOMPARE(log.count(q("[Settings] Saved output device index: %1").arg(saved)), found ? 1 : 0);
    QCOMPARE(log.count(q("[Settings] Saved")), found ? 1 : 0);
}

void SettingsPortsTest::refreshSelectsTheSavedDevices()
{
    const SettingsRig rig({{q("input_device"), 2}, {q("output_device"), 1}});
    rig.find<QComboBox>("inputDeviceCombo")->setCurrentIndex(0);
    rig.find<QComboBox>("outputDeviceCombo")->setCurrentIndex(0);
    rig.find<QAbstractButton>("refreshDevicesButton")->click();
    QCOMPARE(rig.find<QComboBox>("inputDeviceCombo")->currentIndex(), 2);
    QCOMPARE(rig.find<QComboBox>("outputDeviceCombo")->currentIndex(), 1);
}

void SettingsPortsTest::gainsShowTheirValues()
{
    const SettingsRig rig({{q("mic_gain"), 0}});
    for (const QString &name : {q("micGain"), q("speakerGain")}) {
        auto *slider = rig.find<QSlider>(name + q("Slider"));
        const auto *label = rig.find<QLabel>(name + q("Label"));
        QCOMPARE(slider->minimum(), 0);
        QCOMPARE(slider->maximum(), 100);
        QCOMPARE(label->text(), q("%1%").arg(slider->value()));
        slider->setValue(57);
        QCOMPARE(label->text(), q("57%"));
    }
}

void SettingsPortsTest::portLabel_data()
{
    QTest::addColumn<QString>("description");
    QTest::addColumn<QString>("manufacturer");
    QTest::addColumn<QString>("label");
    QTest::newRow("description") << q("USB Serial") << q("Prolific") << q("COM3 - USB Serial");
    QTest::newRow("no description") << QString() << q("Prolific") << q("COM3 - Prolific");
    QTest::newRow("location only") << QString() << QString() << q("COM3 - \\\\.\\COM3");
}

void SettingsPortsTest::portLabel()
{
    QFETCH(QString, description);
    QFETCH(QString, manufacturer);
    QTEST(SerialPortCombo::labelOf(q("COM3"), description, manufacturer, q("\\\\.\\COM3")), "label");
}

void SettingsPortsTest::listsThePorts()
{
    FakeSerial first;
    first.plugIn();
    FakeSerial second;
    second.plugIn();
    const SettingsRig rig({{q("serial_port"), second.portName()}});
    const auto *combo = rig.find<QComboBox>("serialPortCombo");
    QCOMPARE(combo->count(), 2);
    QCOMPARE(combo->itemData(0).toString(), first.portName());
    QVERIFY(combo->itemText(0).startsWith(first.portName() + q(" - ")));
    QCOMPARE(combo->currentIndex(), 1);
    QCOMPARE(combo->currentData().toString(), second.portName());
}

void SettingsPortsTest::vanishedPortIsKept()
{
    FakeSerial port;
    port.plugIn();
    const SettingsRig rig({{q("serial_port"), q("COM9")}});
    const auto *combo = rig.find<QComboBox>("serialPortCombo");
    QCOMPARE(combo->count(), 2);
    QCOMPARE(combo->currentText(), q("COM9 (tidak terdeteksi)"));
    QCOMPARE(combo->currentData().toString(), q("COM9"));
    rig.dialog->onSave();
    QCOMPARE(rig.config.saved().value(q("serial_port")), QJsonValue(q("COM9")));
}

void SettingsPortsTest::noPortStaysNone()
{
    FakeSerial port;
    port.plugIn();
    const SettingsRig rig;
    QCOMPARE(rig.find<QComboBox>("serialPortCombo")->count(), 1);
    QCOMPARE(rig.find<QComboBox>("serialPortCombo")->currentIndex(), -1);
    rig.dialog->onSave();
    QCOMPARE(rig.config.saved().value(q("serial_port")), QJsonValue(QString()));
}

void SettingsPortsTest::refreshKeepsTheChosenPort()
{
    FakeSerial first;
    first.plugIn();
    const SettingsRig rig({{q("serial_port"), q("COM9")}});
    auto *combo = rig.find<QComboBox>("serialPortCombo");
    combo->setCurrentIndex(0);
    FakeSerial second;
    second.plugIn();
    rig.dialog->onRefreshDevices();
    QCOMPARE(combo->count(), 2);
    QCOMPARE(combo->currentData().toString(), first.portName());
    first.pull();
    rig.dialog->onRefreshDevices();
    QCOMPARE(combo->currentData().toString(), first.portName());
    QCOMPARE(combo->currentText(), first.portName() + q(" (tidak terdeteksi)"));
}

void SettingsPortsTest::carrierLamp()
{
    const SettingsRig rig;
    const auto *icon = rig.find<QLabel>("cosIcon");
    const auto *caption = rig.find<QLabel>("cosCaption");
    const auto picture = [icon] { return icon->pixmap(Qt::ReturnByValue).toImage(); };
    const QImage idle = picture();
    QVERIFY(!idle.isNull());
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(caption->text(), q("Tekan PTT Radio"));
        QCOMPARE(caption->styleSheet(), q("font-size: 14px; font-weight: bold; color: #666;"));
        QCOMPARE(icon->accessibleName(), q("Tekan PTT Radio"));
        QCOMPARE(picture(), idle);
        rig.dialog->setCosActive(true);
        QCOMPARE(caption->text(), q("PTT Active"));
        QCOMPARE(caption->styleSheet(), q("font-size: 14px; font-weight: bold; color: #F44336;"));
        QCOMPARE(icon->accessibleName(), q("PTT Active"));
        QVERIFY(picture() != idle);
        rig.dialog->setCosActive(false);
    }
}

EVOX_TEST_MAIN(SettingsPortsTest, QApplication)
#include "tst_settingsports.moc"
