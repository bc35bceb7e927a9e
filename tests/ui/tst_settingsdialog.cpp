#include "SettingsRig.h"
#include "app/Config.h"
#include "support/FakeSerial.h"
#include "support/LogCapture.h"
#include "support/RadioBench.h"
#include "support/TestMain.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QStatusBar>
#include <QTabWidget>

namespace {

constexpr int kPatience = 30000; // ms

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

/// Every key of the dialog, none at its default.
QJsonObject everyKey()
{
    return {{q("auto_start"), true},
            {q("auto_login"), false},
            {q("server_address"), q("hill.example")},
            {q("server_port"), 9000},
            {q("default_room"), q("Rag Chew")},
            {q("remember_password"), true},
            {q("input_device"), 1},
            {q("output_device"), 1},
            {q("mic_gain"), 33},
            {q("speaker_gain"), 44},
            {q("serial_port"), q("ttyUSB7")},
            {q("baudrate"), 115200},
            {q("ptt_pin"), q("BOTH")},
            {q("cos_pin"), q("DSR")},
            {q("cos_logic_high"), false}};
}

QStringList items(const QComboBox &combo)
{
    QStringList texts;
    for (int i = 0; i < combo.count(); ++i)
        texts.append(combo.itemText(i));
    return texts;
}

} // namespace

class SettingsDialogTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void looksAsAnnounced();
    void offersItsChoices_data();
    void offersItsChoices();
    void autoJoinIsOnlyShown();
    void showsTheDefaults();
    void showsEveryKey();
    void foreignValuesShowAsDefaults_data();
    void foreignValuesShowAsDefaults();
    void writesEveryKey();
    void writesWhatWasRead();
    void roomIsTakenAsTyped_data();
    void roomIsTakenAsTyped();
    void reportsTheSettings_data();
    void reportsTheSettings();
    void logsAndTellsTheOwner_data();
    void logsAndTellsTheOwner();
    void cancelChangesNothing();
    void ownerMayDeleteTheDialog_data();
    void ownerMayDeleteTheDialog();
    void unwritableFile();
    void startsWithTheSystem();

private:
    static void change(const SettingsRig &rig);

    RadioBench m_bench;
};

void SettingsDialogTest::initTestCase()
{
    Theme::initResources();
    m_bench.useHere();
    QVERIFY(m_bench.start());
}

void SettingsDialogTest::looksAsAnnounced()
{
    const SettingsRig rig;
    QCOMPARE(rig.dialog->windowTitle(), q("Settings"));
    const auto *tabs = rig.find<QTabWidget>("settingsTabs");
    QStringList titles;
    for (int i = 0; i < tabs->count(); ++i)
        titles.append(tabs->tabText(i));
    QCOMPARE(titles, (QStringList{q("General"), q("Server"), q("Audio"), q("Serial/PTT")}));
    QStringList groups;
    for (const auto *group : rig.dialog->findChildren<QGroupBox *>())
        groups.append(group->title());
    groups.sort();
    QCOMPARE(groups, (QStringList{q("COS Logic"), q("COS Signal Indicator"), q("Input Device (Microphone/Radio RX)"),
                                  q("Output Device (Speaker/Radio TX)"), q("PTT Control"), q("Serial Port"),
                                  q("Server Connection"), q("Startup"), q("Volume Control (Soundcard)")}));
    QStringList labels;
    for (const auto *label : rig.dialog->findChildren<QLabel *>()) {
        if (label->buddy())
            labels.append(label->text());
    }
    labels.sort();
    QCOMPARE(labels, (QStringList{q("Baudrate:"), q("Default Room:"), q("Input Device:"), q("Microphone Gain:"),
                                  q("Output Device:"), q("PTT Pin:"), q("Port:"), q("Port:"), q("Server Address:"),
                                  q("Signal Pin (COS):"), q("Speaker Gain:")}));
    QCOMPARE(rig.find<QCheckBox>("autoStartCheck")->text(), q("Run application when Windows starts"));
    QCOMPARE(rig.find<QCheckBox>("autoLoginCheck")->text(), q("Auto login when application starts"));
    QCOMPARE(rig.find<QCheckBox>("rememberPasswordCheck")->text(), q("Remember password (auto-login)"));
    QCOMPARE(rig.find<QCheckBox>("rememberPasswordCheck")->toolTip(), q("Save password locally to skip login dialog"));
    QVERIFY(rig.find<QLineEdit>("serverAddressEdit")->placeholderText().contains(q("192.168.1.1")));
    QCOMPARE(rig.find<QRadioButton>("cosHighRadio")->text(), q("HIGH (default) - COS active when signal HIGH"));
    QCOMPARE(rig.find<QRadioButton>("cosLowRadio")->text(), q("LOW - COS active when signal LOW"));
    QCOMPARE(rig.find<QLabel>("cosHintLabel")->text(),
             q("PTT test hanya melalui sinyal COS dari radio.\nTekan PTT di radio Anda."));
    QCOMPARE(rig.find<QPushButton>("testInputButton")->text(), q("Test Input"));
    QCOMPARE(rig.find<QPushButton>("testOutputButton")->text(), q("Test Output"));
    QCOMPARE(rig.find<QPushButton>("refreshDevicesButton")->text(), q("Refresh Devices"));
    QCOMPARE(rig.find<QPushButton>("applyButton")->text(), q("Apply"));
    QCOMPARE(rig.find<QPushButton>("applyButton")->property("meaning").toString(), q("accent"));
    QCOMPARE(rig.find<QPushButton>("saveButton")->text(), q("Save"));
    QCOMPARE(rig.find<QPushButton>("saveButton")->property("meaning").toString(), q("good"));
    QCOMPARE(rig.find<QPushButton>("cancelButton")->text(), q("Cancel"));
}

void SettingsDialogTest::offersItsChoices_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("choices");
    QTest::newRow("rooms") << q("defaultRoomCombo")
                           << QStringList{q("Lobby"),           q("DX Cluster"),        q("Rag Chew"), q("Emergency"),
                                          q("Radio Technical"), q("VHF Nusantara Net"), q("Technical")};
    QTest::newRow("speeds") << q("baudrateCombo") << QStringList{q("1200"),  q("2400"),  q("4800"),  q("9600"),
                                                                 q("19200"), q("38400"), q("57600"), q("115200")};
    QTest::newRow("PTT pins") << q("pttPinCombo") << QStringList{q("RTS"), q("DTR"), q("BOTH")};
    QTest::newRow("COS pins") << q("cosPinCombo") << QStringList{q("CTS"), q("DCD"), q("DSR")};
}

void SettingsDialogTest::offersItsChoices()
{
    QFETCH(QString, name);
    const SettingsRig rig;
    QTEST(items(*rig.find<QComboBox>(name)), "choices");
    QCOMPARE(rig.find<QComboBox>(name)->isEditable(), name == q("defaultRoomCombo"));
}

void SettingsDialogTest::autoJoinIsOnlyShown()
{
    const SettingsRig rig;
    const auto *box = rig.find<QCheckBox>("autoJoinCheck");
    QCOMPARE(box->text(), q("Auto Join"));
    QVERIFY(box->isChecked());
    QVERIFY(!box->isEnabled());
    QCOMPARE(box->toolTip(), q("Room default selalu diikuti otomatis setelah login"));
}

void SettingsDialogTest::showsTheDefaults()
{
    const SettingsRig rig;
    QVERIFY(!rig.find<QCheckBox>("autoStartCheck")->isChecked());
    QVERIFY(rig.find<QCheckBox>("autoLoginCheck")->isChecked());
    QCOMPARE(rig.find<QLineEdit>("serverAddressEdit")->text(), Config::instance().serverAddress());
    QVERIFY(!rig.find<QLineEdit>("serverAddressEdit")->text().isEmpty());
    QCOMPARE(rig.find<QSpinBox>("serverPortSpin")->value(), 8080);
    QCOMPARE(rig.find<QSpinBox>("serverPortSpin")->minimum(), 1);
    QCOMPARE(rig.find<QSpinBox>("serverPortSpin")->maximum(), 65535);
    QCOMPARE(rig.find<QComboBox>("defaultRoomCombo")->currentText(), q("Lobby"));
    QVERIFY(!rig.find<QCheckBox>("rememberPasswordCheck")->isChecked());
    QCOMPARE(rig.find<QComboBox>("inputDeviceCombo")->currentIndex(), 0);
    QCOMPARE(rig.find<QComboBox>("outputDeviceCombo")->currentIndex(), 0);
    QCOMPARE(rig.find<QSlider>("micGainSlider")->value(), 100);
    QCOMPARE(rig.find<QSlider>("speakerGainSlider")->value(), 80);
    QCOMPARE(rig.find<QComboBox>("baudrateCombo")->currentText(), q("9600"));
    QCOMPARE(rig.find<QComboBox>("pttPinCombo")->currentText(), q("RTS"));
    QCOMPARE(rig.find<QComboBox>("cosPinCombo")->currentText(), q("CTS"));
    QVERIFY(rig.find<QRadioButton>("cosHighRadio")->isChecked());
    QVERIFY(!rig.find<QRadioButton>("cosLowRadio")->isChecked());
}

void SettingsDialogTest::showsEveryKey()
{
    const SettingsRig rig(everyKey());
    QVERIFY(rig.find<QCheckBox>("autoStartCheck")->isChecked());
    QVERIFY(!rig.find<QCheckBox>("autoLoginCheck")->isChecked());
    QCOMPARE(rig.find<QLineEdit>("serverAddressEdit")->text(), q("hill.example"));
    QCOMPARE(rig.find<QSpinBox>("serverPortSpin")->value(), 9000);
    QCOMPARE(rig.find<QComboBox>("defaultRoomCombo")->currentText(), q("Rag Chew"));
    QVERIFY(rig.find<QCheckBox>("rememberPasswordCheck")->isChecked());
    QCOMPARE(rig.find<QComboBox>("inputDeviceCombo")->currentIndex(), 1);
    QCOMPARE(rig.find<QComboBox>("outputDeviceCombo")->currentIndex(), 1);
    QCOMPARE(rig.find<QSlider>("micGainSlider")->value(), 33);
    QCOMPARE(rig.find<QSlider>("speakerGainSlider")->value(), 44);
    QCOMPARE(rig.find<QComboBox>("serialPortCombo")->currentData().toString(), q("ttyUSB7"));
    QCOMPARE(rig.find<QComboBox>("baudrateCombo")->currentText(), q("115200"));
    QCOMPARE(rig.find<QComboBox>("pttPinCombo")->currentText(), q("BOTH"));
    QCOMPARE(rig.find<QComboBox>("cosPinCombo")->currentText(), q("DSR"));
    QVERIFY(rig.find<QRadioButton>("cosLowRadio")->isChecked());
}

void SettingsDialogTest::foreignValuesShowAsDefaults_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<QJsonValue>("written");
    QTest::newRow("speed not offered") << q("baudrate") << QJsonValue(14400) << QJsonValue(9600);
    QTest::newRow("PTT pin in lower case") << q("ptt_pin") << QJsonValue(q("dtr")) << QJsonValue(q("RTS"));
    QTest::newRow("COS pin unknown") << q("cos_pin") << QJsonValue(q("RI")) << QJsonValue(q("CTS"));
    QTest::newRow("gain too high") << q("mic_gain") << QJsonValue(250) << QJsonValue(100);
    QTest::newRow("gain negative") << q("speaker_gain") << QJsonValue(-1) << QJsonValue(0);
    QTest::newRow("port out of range") << q("server_port") << QJsonValue(70000) << QJsonValue(8080);
    QTest::newRow("flag of another type") << q("auto_start") << QJsonValue(q("yes")) << QJsonValue(false);
    QTest::newRow("room of another type") << q("default_room") << QJsonValue(5) << QJsonValue(q("Lobby"));
    QTest::newRow("device negative") << q("input_device") << QJsonValue(-7) << QJsonValue(0);
}

void SettingsDialogTest::foreignValuesShowAsDefaults()
{
    QFETCH(QString, key);
    QFETCH(QJsonValue, value);
    const SettingsRig rig(QJsonObject{{key, value}});
    rig.dialog->onApply();
    QTEST(rig.config.saved().value(key), "written");
}

/// Turns every control away from its default.
void SettingsDialogTest::change(const SettingsRig &rig)
{
    rig.find<QCheckBox>("autoStartCheck")->setChecked(true);
    rig.find<QCheckBox>("autoLoginCheck")->setChecked(false);
    rig.find<QLineEdit>("serverAddressEdit")->setText(q(" hill.example "));
    rig.find<QSpinBox>("serverPortSpin")->setValue(9000);
    rig.find<QComboBox>("defaultRoomCombo")->lineEdit()->setText(q("Bukit Barat "));
    rig.find<QCheckBox>("rememberPasswordCheck")->setChecked(true);
    rig.find<QComboBox>("inputDeviceCombo")->setCurrentIndex(1);
    rig.find<QComboBox>("outputDeviceCombo")->setCurrentIndex(1);
    rig.find<QSlider>("micGainSlider")->setValue(33);
    rig.find<QSlider>("speakerGainSlider")->setValue(44);
    rig.find<QComboBox>("serialPortCombo")->setCurrentIndex(0);
    rig.find<QComboBox>("baudrateCombo")->setCurrentText(q("115200"));
    rig.find<QComboBox>("pttPinCombo")->setCurrentText(q("BOTH"));
    rig.find<QComboBox>("cosPinCombo")->setCurrentText(q("DSR"));
    rig.find<QRadioButton>("cosLowRadio")->setChecked(true);
}

void SettingsDialogTest::writesEveryKey()
{
    FakeSerial port;
    port.plugIn();
    const SettingsRig rig(QJsonObject{{q("callsign"), q("YH0AB")}});
    change(rig);
    rig.dialog->onApply();
    QJsonObject expected = everyKey();
    expected.insert(q("default_room"), q("Bukit Barat"));
    expected.insert(q("serial_port"), port.portName());
    expected.insert(q("callsign"), q("YH0AB")); // others are kept
    QCOMPARE(rig.config.saved(), expected);
    QCOMPARE(Config::instance().values(), expected);
}

void SettingsDialogTest::writesWhatWasRead()
{
    const SettingsRig rig(everyKey());
    rig.dialog->onApply();
    QCOMPARE(rig.config.saved(), everyKey());
}

void SettingsDialogTest::roomIsTakenAsTyped_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("room");
    QTest::newRow("beginning of another") << q("Radio") << q("Radio");
    QTest::newRow("other case") << q("lobby") << q("lobby");
    QTest::newRow("quotes") << q("\"Bukit\"") << q("Bukit");
    QTest::newRow("spaces around it") << q(" Rag Chew ") << q("Rag Chew");
    QTest::newRow("too long") << QString(300, QLatin1Char('x')) << QString(100, QLatin1Char('x'));
}

void SettingsDialogTest::roomIsTakenAsTyped()
{
    QFETCH(QString, typed);
    const SettingsRig rig;
    rig.find<QTabWidget>("settingsTabs")->setCurrentIndex(1);
    QLineEdit *edit = rig.find<QComboBox>("defaultRoomCombo")->lineEdit();
    edit->clear();
    QTest::keyClicks(edit, typed);
    QTest::keyClick(edit, Qt::Key_Return);
    QTEST(rig.config.saved().value(q("default_room")).toString(), "room");
}

void SettingsDialogTest::reportsTheSettings_data()
{
    QTest::addColumn<QString>("button");
    QTest::newRow("Save") << q("saveButton");
    QTest::newRow("Apply") << q("applyButton");
}

void SettingsDialogTest::reportsTheSettings()
{
    QFETCH(QString, button);
    const SettingsRig rig(everyKey());
    QSignalSpy applied(rig.dialog, &SettingsDialog::settingsApplied);
    QSignalSpy savedSpy(rig.dialog, &SettingsDialog::settingsSaved);
    rig.find<QPushButton>(button)->click();
    QCOMPARE(applied.size(), 1);
    QCOMPARE(savedSpy.size(), 0); // both make the owner put the settings to use
    const auto settings = applied.first().first().value<Settings>();
    QVERIFY(settings.autoStart);
    QVERIFY(!settings.autoLogin);
    QCOMPARE(settings.serverAddress, q("hill.example"));
    QCOMPARE(settings.serverPort, 9000);
    QCOMPARE(settings.defaultRoom, q("Rag Chew"));
    QVERIFY(settings.rememberPassword);
    QCOMPARE(settings.inputDevice, 1);
    QCOMPARE(settings.outputDevice, 1);
    QCOMPARE(settings.micGain, 33);
    QCOMPARE(settings.speakerGain, 44);
    QCOMPARE(settings.serialPort, q("ttyUSB7"));
    QCOMPARE(settings.baudrate, 115200);
    QCOMPARE(settings.pttPin, q("BOTH"));
    QCOMPARE(settings.cosPin, q("DSR"));
    QVERIFY(!settings.cosLogicHigh);
}

void SettingsDialogTest::logsAndTellsTheOwner_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("status");
    QTest::addColumn<QString>("lastLine");
    QTest::addColumn<bool>("open");
    QTest::newRow("Save") << q("saveButton") << q("Settings saved") << q("[Settings] Saved and closing dialog")
                          << false;
    QTest::newRow("Apply") << q("applyButton") << q("Settings applied") << q("[Settings] Applied (dialog stays open)")
                           << true;
}

void SettingsDialogTest::logsAndTellsTheOwner()
{
    QFETCH(QString, button);
    QFETCH(QString, status);
    QFETCH(QString, lastLine);
    const SettingsRig rig;
    bool stored = false;
    connect(rig.dialog, &SettingsDialog::settingsApplied, this, [&](const Settings &settings) {
        stored = rig.config.saved().value(q("server_port")) == QJsonValue(settings.serverPort);
        rig.window.statusBar()->showMessage(q("the owner's own words"));
    });
    QSignalSpy messages(rig.window.statusBar(), &QStatusBar::messageChanged);
    LogCapture log;
    rig.find<QPushButton>(button)->click();
    QVERIFY2(stored, "the settings were reported before they were in the file");
    QCOMPARE(log.lines(), (QStringList{q("[Config] Saved to: ") + Config::filePath(),
                                       q("[Settings] Config saved to: ") + Config::filePath(), lastLine}));
    QCOMPARE(rig.window.statusBar()->currentMessage(), status);
    QTEST(rig.dialog->isVisible(), "open");
    messages.clear();
    QVERIFY2(messages.wait(kPatience), "the status text stays");
    QCOMPARE(rig.window.statusBar()->currentMessage(), QString());
}

void SettingsDialogTest::cancelChangesNothing()
{
    const SettingsRig rig(everyKey());
    QSignalSpy applied(rig.dialog, &SettingsDialog::settingsApplied);
    rig.find<QCheckBox>("autoStartCheck")->setChecked(false);
    rig.find<QSlider>("micGainSlider")->setValue(1);
    rig.find<QPushButton>("cancelButton")->click();
    QVERIFY(!rig.dialog->isVisible());
    QCOMPARE(applied.size(), 0);
    QCOMPARE(rig.config.saved(), everyKey());
    QCOMPARE(Config::instance().values(), everyKey());
}

void SettingsDialogTest::ownerMayDeleteTheDialog_data()
{
    reportsTheSettings_data();
}

void SettingsDialogTest::ownerMayDeleteTheDialog()
{
    QFETCH(QString, button);
    const SettingsRig rig;
    connect(rig.dialog, &SettingsDialog::settingsApplied, this, [&rig] { delete rig.dialog; });
    if (button == q("saveButton"))
        rig.dialog->onSave();
    else
        rig.dialog->onApply();
    QVERIFY(!rig.dialog);
}

void SettingsDialogTest::unwritableFile()
{
    const SettingsRig rig;
    LogCapture log;
    log.expectWarning(q("[Config] Failed to save to:"));
    QVERIFY(QFile::remove(Config::filePath()) || !QFile::exists(Config::filePath()));
    QVERIFY(QDir().mkpath(Config::filePath())); // a folder in its place
    QSignalSpy applied(rig.dialog, &SettingsDialog::settingsApplied);
    rig.dialog->onSave();
    QCOMPARE(log.count(q("[Config] Failed to save to:")), 1);
    QCOMPARE(applied.size(), 1);
    QVERIFY(!rig.dialog->isVisible());
}

void SettingsDialogTest::startsWithTheSystem()
{
    const SettingsRig rig;
    const QString entry = rig.config.folder() + q("/autostart/eVOX-SINAR.desktop");
    QVERIFY(!QFile::exists(entry));
    rig.find<QCheckBox>("autoStartCheck")->setChecked(true);
    rig.dialog->onApply();
    QVERIFY(QFile::exists(entry));
    rig.find<QCheckBox>("autoStartCheck")->setChecked(false);
    rig.dialog->onApply();
    QVERIFY(!QFile::exists(entry));
}

EVOX_TEST_MAIN(SettingsDialogTest, QApplication)
#include "tst_settingsdialog.moc"
