#pragma once

#include "support/ChildProcess.h"
#include "support/Display.h"
#include "support/FakeSerial.h"
#include "support/RadioBench.h"

#include <QJsonObject>
#include <QString>
#include <QTemporaryDir>

class AppDriver;

/// One gateway: the real program with a configuration, a sound card and a radio of its own. A carrier is CTS, the
/// transmitter is keyed by RTS.
class Station
{
public:
    struct Settings
    {
        QString callsign;
        QString password;
        QString server; ///< host; its UDP port is always 8082
        quint16 port = 8080;
        QString room = QStringLiteral("Lobby");
        QJsonObject more; ///< further configuration values
        /// Otherwise the program finds only `more` and its radio, and begins with its first start.
        bool isSetUp = true;
    };

    /// Without a display the windows are drawn into memory.
    explicit Station(const Settings &settings, const Display *display = nullptr);
    virtual ~Station() = default;
    Station(const Station &) = delete;
    Station &operator=(const Station &) = delete;

    /// Before start(), and as long as the station: the program's windows are used through this driver, and a program
    /// that starts itself anew is followed.
    void setDriver(const AppDriver &driver) { m_driver = &driver; }
    /// Starts the sound server and the program; false, after printing why, when either does not start.
    [[nodiscard]] bool start();
    /// The program once more, when it has ended, with what it has stored.
    [[nodiscard]] bool startAgain() { return startProgram(m_program); }
    /// Waits until the program has a room key and its audio link is up, for the n-th time.
    [[nodiscard]] bool waitForRoom(int times = 1, std::chrono::milliseconds timeout = std::chrono::seconds(30)) const;

    [[nodiscard]] QString callsign() const { return m_settings.callsign; }
    /// The configuration file as it stands; empty when there is none.
    [[nodiscard]] QByteArray configuration() const;
    [[nodiscard]] const ChildProcess &program() const { return m_program; }
    [[nodiscard]] FakeSerial &radio() { return m_radio; }
    [[nodiscard]] RadioBench &sound() { return m_sound; }
    /// What the radio's squelch says; waits until the program has seen it.
    [[nodiscard]] bool setCarrier(bool present);

    /// Payloads that did not open with the room's key so far: of one to five each is told, then every fiftieth.
    [[nodiscard]] int decipherFailures() const;
    /// Keys typed into the main window, in xdotool's names.
    [[nodiscard]] bool type(const QStringList &keys) const;
    [[nodiscard]] bool screenshot(const QString &path) const;

protected:
    // Where and how the program runs.
    [[nodiscard]] virtual bool startProgram(ChildProcess &program) const;
    [[nodiscard]] virtual QString configurationFolder() const;
    [[nodiscard]] virtual QString serialPort() const { return m_radio.portName(); }

    [[nodiscard]] const Display *display() const { return m_display; }
    [[nodiscard]] const AppDriver *driver() const { return m_driver; }
    [[nodiscard]] const RadioBench &bench() const { return m_sound; }

private:
    [[nodiscard]] QString window() const;
    [[nodiscard]] QJsonObject configuredAccount() const;
    [[nodiscard]] bool writeConfiguration() const;
    [[nodiscard]] QProcessEnvironment environment() const;

    Settings m_settings;
    const Display *m_display;
    const AppDriver *m_driver = nullptr;
    QTemporaryDir m_home;
    FakeSerial m_radio;
    RadioBench m_sound;
    ChildProcess m_program;
};
