#pragma once

#include <QJsonObject>
#include <QString>

/// The program's settings: one JSON object for the whole process, kept in "config.json" of the user's application data
/// folder. A key is present only once some part has assigned it; readers apply the defaults. Nothing is written to
/// disk until save() is called. GUI thread only, apart from the first instance().
class Config final
{
public:
    Config(const Config &) = delete;
    Config &operator=(const Config &) = delete;

    /// The shared object; the first call loads the file.
    [[nodiscard]] static Config &instance();
    /// The path of "config.json"; creates its folder when missing.
    [[nodiscard]] static QString filePath();

    /// Replaces the object with the file's. A missing or malformed file leaves it empty.
    void load();
    /// Writes the whole object. A failure is logged and leaves the old file as it was.
    void save() const;
    /// Makes the program start with the user's session, or not.
    void setAutoStart(bool enabled);

    /// The object itself, for keys without an accessor.
    [[nodiscard]] const QJsonObject &values() const { return m_values; }
    [[nodiscard]] QJsonValue value(const QString &key) const { return m_values.value(key); }
    void setValue(const QString &key, const QJsonValue &value) { m_values.insert(key, value); }
    void remove(const QString &key) { m_values.remove(key); }

    [[nodiscard]] QString serverAddress() const; ///< missing: the built-in server host
    [[nodiscard]] QString defaultRoom() const;   ///< missing: "Lobby"
    [[nodiscard]] QString serialPort() const;    ///< empty: none
    [[nodiscard]] QString pttPin() const;        ///< missing: "RTS"
    [[nodiscard]] QString cosPin() const;        ///< missing: "CTS"
    [[nodiscard]] QString callsign() const;
    [[nodiscard]] QString hwid() const;
    [[nodiscard]] QString password() const;
    [[nodiscard]] int serverPort() const;        ///< 1..65535, missing or out of range: 8080
    [[nodiscard]] int inputDevice() const;       ///< index, -1: system default
    [[nodiscard]] int outputDevice() const;      ///< index, -1: system default
    [[nodiscard]] int micGain() const;           ///< percent, missing: 100
    [[nodiscard]] int speakerGain() const;       ///< percent, missing: 80
    [[nodiscard]] int baudrate() const;          ///< bit/s, missing: 9600
    [[nodiscard]] bool cosLogicHigh() const;     ///< missing: true
    [[nodiscard]] bool autoLogin() const;        ///< missing: true, unlike remember_password
    [[nodiscard]] bool rememberPassword() const; ///< missing: false, unlike auto_login
    [[nodiscard]] bool setupCompleted() const;   ///< missing: false
    [[nodiscard]] bool darkTheme() const;        ///< missing: false

    void setAutoLogin(bool on);
    void setServerAddress(const QString &host);
    void setServerPort(int port);
    void setDefaultRoom(const QString &room);
    void setRememberPassword(bool on);
    void setHwid(const QString &hwid);
    void setCallsign(const QString &callsign);
    void setPassword(const QString &password);
    void setSetupCompleted(bool done);

private:
    Config();
    ~Config() = default;

    [[nodiscard]] QString text(const char *key, const QString &fallback = {}) const;
    [[nodiscard]] int number(const char *key, int fallback) const;
    [[nodiscard]] bool flag(const char *key, bool fallback) const;

    QJsonObject m_values;
};
