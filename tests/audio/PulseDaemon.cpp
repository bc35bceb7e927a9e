#include "audio/PulseDaemon.h"

#include <QFile>
#include <QTest>

#include <csignal>
#include <sys/prctl.h>
#include <utility>

namespace {

constexpr int kStartTimeout = 20000; // ms

void write(const QString &path, const QString &text)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(text.toUtf8());
}

// Ends with this test, even when the test crashes.
class BoundProcess final : public QProcess
{
protected:
    void setupChildProcess() override { prctl(PR_SET_PDEATHSIG, SIGKILL); }
};

QStringList rawFormat(int rate)
{
    return {QStringLiteral("--raw"), QStringLiteral("--format=s16le"), QStringLiteral("--channels=1"),
            QStringLiteral("--rate=%1").arg(rate)};
}

} // namespace

PulseDaemon::PulseDaemon(const QStringList &radios)
    : m_process(new BoundProcess)
{
    writeFiles(radios);
}

PulseDaemon::~PulseDaemon()
{
    kill();
}

void PulseDaemon::writeFiles(const QStringList &radios) const
{
    write(path("client.conf"), QStringLiteral("autospawn = no\n"
                                              "default-server = unix:%1\n"
                                              "enable-shm = no\n"
                                              "auto-connect-localhost = no\n"
                                              "auto-connect-display = no\n")
                                   .arg(path("pulse.sock")));
    write(path("daemon.conf"), QStringLiteral("exit-idle-time = -1\n"
                                              "high-priority = no\n"
                                              "realtime-scheduling = no\n"
                                              "enable-shm = no\n"
                                              "flat-volumes = no\n"
                                              "default-sample-format = s16le\n"
                                              "default-sample-rate = 48000\n"
                                              "alternate-sample-rate = 44100\n"
                                              "default-fragment-size-msec = 10\n"));
    // Rewinding a null sink holds the first byte back by up to 1.6 s.
    QString script =
        QStringLiteral("load-module module-native-protocol-unix socket=%1 auth-anonymous=1\n").arg(path("pulse.sock"));
    for (const QString &radio : radios) {
        script += QStringLiteral(
                      "load-module module-null-sink sink_name=%1_rx rate=48000 channels=1 format=s16le norewinds=1\n"
                      "load-module module-null-sink sink_name=%1_tx rate=44100 channels=1 format=s16le norewinds=1\n"
                      "load-module module-remap-source source_name=%1_mic master=%1_rx.monitor remix=no\n")
                      .arg(radio);
    }
    script += QStringLiteral("set-default-sink %1_tx\nset-default-source %1_mic\n").arg(radios.first());
    write(path("default.pa"), script);
    write(path("asound.conf"), QStringLiteral("# empty: hides the plug-in devices of ALSA\n"));
}

void PulseDaemon::useHere() const
{
    qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(path("pulse.sock")));
    qputenv("PULSE_CLIENTCONFIG", QFile::encodeName(path("client.conf")));
    qputenv("PULSE_RUNTIME_PATH", QFile::encodeName(m_folder.path()));
    qputenv("PULSE_STATE_PATH", QFile::encodeName(m_folder.path()));
    qputenv("ALSA_CONFIG_PATH", QFile::encodeName(path("asound.conf")));
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
}

bool PulseDaemon::start()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("PULSE_SERVER"));
    environment.remove(QStringLiteral("LD_PRELOAD"));
    environment.insert(QStringLiteral("HOME"), m_folder.path());
    environment.insert(QStringLiteral("PULSE_CONFIG"), path("daemon.conf"));
    m_process->setProcessEnvironment(environment);
    m_process->setProcessChannelMode(QProcess::MergedChannels);
    m_process->setStandardOutputFile(path("pulse.log"));
    QFile::remove(path("pulse.sock"));
    m_process->start(QStringLiteral("pulseaudio"),
                     {QStringLiteral("-n"), QStringLiteral("--file=") + path("default.pa"),
                      QStringLiteral("--daemonize=no"), QStringLiteral("--use-pid-file=no"),
                      QStringLiteral("--disallow-exit=yes"), QStringLiteral("--log-target=stderr")});
    const auto answers = [] {
        QProcess question;
        question.start(QStringLiteral("pactl"), {QStringLiteral("info")});
        return question.waitForFinished() && question.exitCode() == 0;
    };
    return QTest::qWaitFor([this, answers] { return QFile::exists(path("pulse.sock")) && answers(); }, kStartTimeout);
}

void PulseDaemon::Ender::operator()(QProcess *process) const
{
    process->blockSignals(true); // its last words find nobody any more
    process->kill();
    process->waitForFinished();
    delete process;
}

void PulseDaemon::kill()
{
    m_process->kill();
    m_process->waitForFinished();
}

PulseDaemon::Process PulseDaemon::play(const QByteArray &pcm, int rate, const QString &sink) const
{
    Process player(new BoundProcess);
    player->start(QStringLiteral("pacat"),
                  QStringList{QStringLiteral("--playback"), QStringLiteral("--device=") + sink} + rawFormat(rate));
    player->write(pcm);
    player->closeWriteChannel();
    return player;
}

PulseDaemon::Process PulseDaemon::record(int rate, const QString &source) const
{
    Process recorder(new BoundProcess);
    recorder->start(QStringLiteral("pacat"),
                    QStringList{QStringLiteral("--record"), QStringLiteral("--latency-msec=50"),
                                QStringLiteral("--device=") + source} +
                        rawFormat(rate));
    return recorder->waitForReadyRead(kStartTimeout) ? std::move(recorder) : Process();
}
