#pragma once

#include <QMetaType>
#include <QString>

/// What the operator chooses in the settings: one member per control that is stored. The defaults are those of an
/// empty configuration, apart from the server address.
struct Settings
{
    bool autoStart = false;
    bool autoLogin = true;
    QString serverAddress;
    int serverPort = 8080; ///< 1..65535
    QString defaultRoom = QStringLiteral("Lobby");
    bool rememberPassword = false;
    int inputDevice = -1;  ///< position in the system's list of capture devices; -1 means the default
    int outputDevice = -1; ///< position in the system's list of playback devices; -1 means the default
    int micGain = 100;     ///< percent
    int speakerGain = 80;  ///< percent
    QString serialPort;    ///< empty: none
    int baudrate = 9600;   ///< bit/s
    QString pttPin = QStringLiteral("RTS");
    QString cosPin = QStringLiteral("CTS");
    bool cosLogicHigh = true;
};

Q_DECLARE_METATYPE(Settings)

/// The way of the settings from and to the configuration.
namespace StoredSettings {

/// A missing key reads as its default.
[[nodiscard]] Settings read();
/// Writes every key, makes the program start with the user's session or not, and saves the file. A file that cannot
/// be written is logged.
void write(const Settings &settings);
/// The same for the keys of the serial port alone.
void writeSerial(const Settings &settings);

} // namespace StoredSettings
