#include "support/RadioBench.h"

#include "support/Wait.h"

#include <QFile>

#include <algorithm>

namespace {

constexpr std::chrono::milliseconds kStart{20000};
constexpr std::chrono::milliseconds kPlayerLatency{60};
constexpr std::chrono::milliseconds kRecorderLatency{20};
constexpr std::chrono::milliseconds kSpare{30000}; // for a machine with much else to do
constexpr int kSampleSize = 2;                     // bytes

std::chrono::nanoseconds now()
{
    return std::chrono::steady_clock::now().time_since_epoch();
}

std::chrono::nanoseconds durationOf(int bytes)
{
    return std::chrono::nanoseconds(qint64{bytes / kSampleSize} * std::nano::den / Recorder::kRate);
}

int bytesOf(std::chrono::nanoseconds duration)
{
    return static_cast<int>(duration.count() / 1000 * Recorder::kRate / std::micro::den) * kSampleSize;
}

QStringList rawFormat(int rate, std::chrono::milliseconds latency)
{
    return {QStringLiteral("--raw"), QStringLiteral("--format=s16le"), QStringLiteral("--channels=1"),
            QStringLiteral("--rate=%1").arg(rate), QStringLiteral("--latency-msec=%1").arg(latency.count())};
}

void write(const QString &path, const QString &text)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(text.toUtf8());
}

} // namespace

Recorder::Recorder(const QProcessEnvironment &environment, const QString &source)
{
    connect(&m_process, &QProcess::readyReadStandardOutput, this, &Recorder::read);
    m_process.setProcessEnvironment(environment);
    (void)m_process.begin(QStringLiteral("pacat"),
                          QStringList{QStringLiteral("--record"), QStringLiteral("--device=") + source} +
                              rawFormat(kRate, kRecorderLatency));
}

bool Recorder::isRecording() const
{
    return waitFor([this] { return !m_pcm.isEmpty(); }, kStart);
}

void Recorder::read()
{
    m_pcm += m_process.readAllStandardOutput();
    // The chunk that came with the least delay tells best when the recording began.
    m_beginning = std::min(m_beginning, now() - durationOf(m_pcm.size()));
}

Sound Recorder::between(std::chrono::nanoseconds from, std::chrono::nanoseconds to) const
{
    const int begin = bytesOf(std::max(std::chrono::nanoseconds(0), from - m_beginning));
    const int end = bytesOf(std::max(std::chrono::nanoseconds(0), to - m_beginning));
    return {m_pcm.mid(begin, std::max(0, end - begin)), kRate};
}

bool Recorder::waitUntilNow() const
{
    const int size = bytesOf(now() - m_beginning);
    return waitFor([this, size] { return m_pcm.size() >= size; }, kSpare);
}

bool Recorder::waitForMore(std::chrono::milliseconds duration) const
{
    const int size = m_pcm.size() + bytesOf(duration);
    return waitFor([this, size] { return m_pcm.size() >= size; }, duration + kSpare);
}

RadioBench::RadioBench()
{
    writeFiles();
}

void RadioBench::writeFiles() const
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
    write(path("default.pa"),
          QStringLiteral("load-module module-native-protocol-unix socket=%1 auth-anonymous=1\n"
                         "load-module module-null-sink sink_name=receiver rate=48000 channels=1 format=s16le"
                         " norewinds=1\n"
                         "load-module module-null-sink sink_name=transmitter rate=44100 channels=1 format=s16le"
                         " norewinds=1\n"
                         "load-module module-remap-source source_name=microphone master=receiver.monitor remix=no\n"
                         "set-default-sink transmitter\n"
                         "set-default-source microphone\n")
              .arg(path("pulse.sock")));
    write(path("asound.conf"), QStringLiteral("# empty: hides the plug-in devices of ALSA\n"));
}

void RadioBench::addTo(QProcessEnvironment &environment) const
{
    environment.insert(QStringLiteral("PULSE_SERVER"), QStringLiteral("unix:") + path("pulse.sock"));
    environment.insert(QStringLiteral("PULSE_CLIENTCONFIG"), path("client.conf"));
    environment.insert(QStringLiteral("PULSE_RUNTIME_PATH"), m_folder.path());
    environment.insert(QStringLiteral("PULSE_STATE_PATH"), m_folder.path());
    environment.insert(QStringLiteral("ALSA_CONFIG_PATH"), path("asound.conf"));
}

void RadioBench::useHere() const
{
    QProcessEnvironment variables;
    addTo(variables);
    const QStringList names = variables.keys();
    for (const QString &name : names)
        qputenv(name.toLatin1().constData(), QFile::encodeName(variables.value(name)));
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
}

QProcessEnvironment RadioBench::environment() const
{
    QProcessEnvironment environment = ChildProcess::plainEnvironment();
    addTo(environment);
    return environment;
}

bool RadioBench::start()
{
    QProcessEnvironment own = environment();
    own.remove(QStringLiteral("PULSE_SERVER"));
    own.insert(QStringLiteral("HOME"), m_folder.path());
    own.insert(QStringLiteral("PULSE_CONFIG"), path("daemon.conf"));
    m_server.setProcessEnvironment(own);
    QFile::remove(path("pulse.sock"));
    if (!m_server.begin(QStringLiteral("pulseaudio"),
                        {QStringLiteral("-n"), QStringLiteral("--file=") + path("default.pa"),
                         QStringLiteral("--daemonize=no"), QStringLiteral("--use-pid-file=no"),
                         QStringLiteral("--disallow-exit=yes"), QStringLiteral("--log-target=stderr")}))
        return false;
    const QProcessEnvironment client = environment();
    std::unique_ptr<ChildProcess> question;
    const auto answers = [&question, &client] {
        if (question && !question->isRunning() && question->exitCode() == 0)
            return true;
        if (!question || !question->isRunning()) {
            question = std::make_unique<ChildProcess>();
            question->setProcessEnvironment(client);
            (void)question->begin(QStringLiteral("pactl"), {QStringLiteral("info")});
        }
        return false;
    };
    if (waitFor([&] { return !m_server.isRunning() || (QFile::exists(path("pulse.sock")) && answers()); }, kStart) &&
        m_server.isRunning())
        return true;
    m_server.printLog();
    return false;
}

std::unique_ptr<ChildProcess> RadioBench::playIntoReceiver(const Sound &sound) const
{
    auto player = std::make_unique<ChildProcess>();
    player->setProcessEnvironment(environment());
    if (!player->begin(QStringLiteral("pacat"),
                       QStringList{QStringLiteral("--playback"), QStringLiteral("--device=receiver")} +
                           rawFormat(sound.rate, kPlayerLatency)))
        return {};
    player->write(sound.pcm);
    player->closeWriteChannel();
    return player;
}

bool RadioBench::playAllIntoReceiver(const Sound &sound) const
{
    const std::unique_ptr<ChildProcess> player = playIntoReceiver(sound);
    const std::chrono::milliseconds length(static_cast<int>(sound.seconds() * 1000));
    return player && player->waitForEnd(length + kSpare) && player->exitCode() == 0;
}

std::unique_ptr<Recorder> RadioBench::record(const QString &source) const
{
    auto recorder = std::make_unique<Recorder>(environment(), source);
    return recorder->isRecording() ? std::move(recorder) : nullptr;
}

std::unique_ptr<Recorder> RadioBench::recordReceiver() const
{
    return record(QStringLiteral("receiver.monitor"));
}

std::unique_ptr<Recorder> RadioBench::recordTransmitter() const
{
    return record(QStringLiteral("transmitter.monitor"));
}
