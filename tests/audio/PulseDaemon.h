#pragma once

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

/// A sound server of the test's own: no hardware, no desktop session, one folder. Radios are null sinks: what is played
/// into "<radio>_rx" is heard on the source "<radio>_mic", what is played into "<radio>_tx" on "<radio>_tx.monitor".
class PulseDaemon final
{
public:
    /// The first radio is the default device of both directions.
    explicit PulseDaemon(const QStringList &radios);
    ~PulseDaemon();
    PulseDaemon(const PulseDaemon &) = delete;
    PulseDaemon &operator=(const PulseDaemon &) = delete;

    /// Points this process and its children to the daemon. Before the first use of Qt Multimedia.
    void useHere() const;
    /// False when it did not come up; also after kill(), at the same address.
    [[nodiscard]] bool start();
    void kill();

    /// Ends a player or a recorder that is no longer listened to.
    struct Ender
    {
        void operator()(QProcess *process) const;
    };
    using Process = std::unique_ptr<QProcess, Ender>;

    /// Starts to play 16-bit mono samples.
    [[nodiscard]] Process play(const QByteArray &pcm, int rate, const QString &sink) const;
    /// Starts to record; the samples come out of the process's standard output. Null when it does not begin.
    [[nodiscard]] Process record(int rate, const QString &source) const;

private:
    [[nodiscard]] QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    void writeFiles(const QStringList &radios) const;

    QTemporaryDir m_folder;
    Process m_process;
};
