#pragma once

#include "support/ChildProcess.h"
#include "support/WavFile.h"

#include <QByteArray>
#include <QTemporaryDir>

#include <chrono>
#include <memory>

/// What a sound device hears, from the moment it was made.
class Recorder final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Recorder)

public:
    static constexpr int kRate = 44100; // Hz

    Recorder(const QProcessEnvironment &environment, const QString &source);

    /// Waits for the first samples.
    [[nodiscard]] bool isRecording() const;
    [[nodiscard]] Sound sound() const { return {m_pcm, kRate}; }
    /// The monotonic time of the first sample, to some ten milliseconds.
    [[nodiscard]] std::chrono::nanoseconds beginning() const { return m_beginning; }
    /// What was heard between two monotonic times; shorter where nothing was recorded.
    [[nodiscard]] Sound between(std::chrono::nanoseconds from, std::chrono::nanoseconds to) const;
    /// Waits until the recording reaches this moment.
    [[nodiscard]] bool waitUntilNow() const;
    /// Waits for `duration` more of recorded sound, whatever it is.
    [[nodiscard]] bool waitForMore(std::chrono::milliseconds duration) const;

private:
    void read();

    QByteArray m_pcm;
    std::chrono::nanoseconds m_beginning{std::chrono::nanoseconds::max()};
    ChildProcess m_process; // ends first: it still speaks when it is told to end
};

/// One station's sound card without any hardware: a sound server of its own, in one folder. What is played into the
/// receiver is heard on the default source; what a program plays by default is what the transmitter is fed.
class RadioBench final
{
public:
    RadioBench();
    ~RadioBench() = default;
    RadioBench(const RadioBench &) = delete;
    RadioBench &operator=(const RadioBench &) = delete;

    /// False, after printing why, when the server does not come up. Also after kill(), at the same address.
    [[nodiscard]] bool start();
    /// The server dies as it would in a crash.
    void kill() { m_server.killNow(); }

    void addTo(QProcessEnvironment &environment) const;
    /// Points this process to the server. Before the first use of Qt Multimedia.
    void useHere() const;

    /// The radio hears this; the process ends when it has been played.
    [[nodiscard]] std::unique_ptr<ChildProcess> playIntoReceiver(const Sound &sound) const;
    /// Plays it to the end.
    [[nodiscard]] bool playAllIntoReceiver(const Sound &sound) const;
    /// What the radio hears, and what its transmitter is fed. Null when nothing can be recorded.
    [[nodiscard]] std::unique_ptr<Recorder> recordReceiver() const;
    [[nodiscard]] std::unique_ptr<Recorder> recordTransmitter() const;

private:
    [[nodiscard]] QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    [[nodiscard]] QProcessEnvironment environment() const;
    [[nodiscard]] std::unique_ptr<Recorder> record(const QString &source) const;
    void writeFiles() const;

    QTemporaryDir m_folder;
    ChildProcess m_server;
};
