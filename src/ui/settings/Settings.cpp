#include "ui/settings/Settings.h"

#include "app/Config.h"

namespace {

void setSerial(Config &config, const Settings &settings)
{
    config.setValue(QStringLiteral("serial_port"), settings.serialPort);
    config.setValue(QStringLiteral("baudrate"), settings.baudrate);
    config.setValue(QStringLiteral("ptt_pin"), settings.pttPin);
    config.setValue(QStringLiteral("cos_pin"), settings.cosPin);
    config.setValue(QStringLiteral("cos_logic_high"), settings.cosLogicHigh);
}

} // namespace

Settings StoredSettings::read()
{
    const Config &config = Config::instance();
    Settings settings;
    settings.autoStart = config.value(QStringLiteral("auto_start")).toBool(settings.autoStart);
    settings.autoLogin = config.autoLogin();
    settings.serverAddress = config.serverAddress();
    settings.serverPort = config.serverPort();
    settings.defaultRoom = config.defaultRoom();
    settings.rememberPassword = config.rememberPassword();
    settings.inputDevice = config.inputDevice();
    settings.outputDevice = config.outputDevice();
    settings.micGain = config.micGain();
    settings.speakerGain = config.speakerGain();
    settings.serialPort = config.serialPort();
    settings.baudrate = config.baudrate();
    settings.pttPin = config.pttPin();
    settings.cosPin = config.cosPin();
    settings.cosLogicHigh = config.cosLogicHigh();
    return settings;
}

void StoredSettings::write(const Settings &settings)
{
    Config &config = Config::instance();
    config.setValue(QStringLiteral("auto_start"), settings.autoStart);
    config.setAutoLogin(settings.autoLogin);
    config.setServerAddress(settings.serverAddress);
    config.setServerPort(settings.serverPort);
    config.setDefaultRoom(settings.defaultRoom);
    config.setRememberPassword(settings.rememberPassword);
    config.setValue(QStringLiteral("input_device"), settings.inputDevice);
    config.setValue(QStringLiteral("output_device"), settings.outputDevice);
    config.setValue(QStringLiteral("mic_gain"), settings.micGain);
    config.setValue(QStringLiteral("speaker_gain"), settings.speakerGain);
    setSerial(config, settings);
    config.setAutoStart(settings.autoStart);
    config.save();
}

void StoredSettings::writeSerial(const Settings &settings)
{
    Config &config = Config::instance();
    setSerial(config, settings);
    config.save();
}
