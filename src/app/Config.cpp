#include "app/Config.h"

#include "app/AutoStart.h"
#include "app/Endpoints.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSaveFile>
#include <QStandardPaths>

namespace {

constexpr int kDefaultServerPort = 8080;
constexpr int kHighestPort = 65535;
constexpr int kDefaultMicGain = 100;
constexpr int kDefaultSpeakerGain = 80;
constexpr int kDefaultBaudrate = 9600;

// The password stands in this file in plain text: nobody else may read it.
constexpr QFileDevice::Permissions kOwnerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

void warnNotSaved(const QString &path, const QString &error)
{
    qWarning().noquote() << "[Config] Failed to save to:" << path << "Error:" << error;
}

} // namespace

Config::Config()
{
    load();
}

Config &Config::instance()
{
    static Config config;
    return config;
}

QString Config::filePath()
{
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    folder.mkpath(QStringLiteral("."));
    return folder.filePath(QStringLiteral("config.json"));
}

void Config::load()
{
    m_values = {};
    const QString path = filePath();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qDebug() << "[Config] No config file, using defaults";
        return;
    }
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    if (!document.isObject())
        return;
    m_values = document.object();
    qDebug().noquote() << "[Config] Loaded from:" << path;
}

void Config::save() const
{
    const QString path = filePath();
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        warnNotSaved(path, file.errorString());
        return;
    }
    file.setPermissions(kOwnerOnly);
    file.write(QJsonDocument(m_values).toJson(QJsonDocument::Indented));
    if (!file.commit()) {
        warnNotSaved(path, file.errorString());
        return;
    }
    qDebug().noquote() << "[Config] Saved to:" << path;
}

void Config::setAutoStart(bool enabled)
{
    AutoStart::set(enabled, QCoreApplication::applicationFilePath());
}

QString Config::text(const char *key, const QString &fallback) const
{
    return m_values.value(QLatin1String(key)).toString(fallback);
}

int Config::number(const char *key, int fallback) const
{
    return m_values.value(QLatin1String(key)).toInt(fallback);
}

bool Config::flag(const char *key, bool fallback) const
{
    return m_values.value(QLatin1String(key)).toBool(fallback);
}

QString Config::serverAddress() const
{
    return text("server_address", Endpoints::builtIn().serverHost);
}

QString Config::defaultRoom() const
{
    return text("default_room", QStringLiteral("Lobby"));
}

QString Config::serialPort() const
{
    return text("serial_port");
}

QString Config::pttPin() const
{
    return text("ptt_pin", QStringLiteral("RTS"));
}

QString Config::cosPin() const
{
    return text("cos_pin", QStringLiteral("CTS"));
}

QString Config::callsign() const
{
    return text("callsign");
}

QString Config::hwid() const
{
    return text("hwid");
}

QString Config::password() const
{
    return text("password");
}

int Config::serverPort() const
{
    const int port = number("server_port", kDefaultServerPort);
    return port >= 1 && port <= kHighestPort ? port : kDefaultServerPort;
}

int Config::inputDevice() const
{
    return number("input_device", -1);
}

int Config::outputDevice() const
{
    return number("output_device", -1);
}

int Config::micGain() const
{
    return number("mic_gain", kDefaultMicGain);
}

int Config::speakerGain() const
{
    return number("speaker_gain", kDefaultSpeakerGain);
}

int Config::baudrate() const
{
    return number("baudrate", kDefaultBaudrate);
}

bool Config::cosLogicHigh() const
{
    return flag("cos_logic_high", true);
}

bool Config::autoLogin() const
{
    return flag("auto_login", true);
}

bool Config::rememberPassword() const
{
    return flag("remember_password", false);
}

bool Config::setupCompleted() const
{
    return flag("setup_completed", false);
}

bool Config::darkTheme() const
{
    return flag("dark_theme", false);
}

void Config::setAutoLogin(bool on)
{
    setValue(QStringLiteral("auto_login"), on);
}

void Config::setServerAddress(const QString &host)
{
    setValue(QStringLiteral("server_address"), host);
}

void Config::setServerPort(int port)
{
    setValue(QStringLiteral("server_port"), port);
}

void Config::setDefaultRoom(const QString &room)
{
    setValue(QStringLiteral("default_room"), room);
}

void Config::setRememberPassword(bool on)
{
    setValue(QStringLiteral("remember_password"), on);
}

void Config::setHwid(const QString &hwid)
{
    setValue(QStringLiteral("hwid"), hwid);
}

void Config::setCallsign(const QString &callsign)
{
    setValue(QStringLiteral("callsign"), callsign);
}

void Config::setPassword(const QString &password)
{
    setValue(QStringLiteral("password"), password);
}

void Config::setSetupCompleted(bool done)
{
    setValue(QStringLiteral("setup_completed"), done);
}
