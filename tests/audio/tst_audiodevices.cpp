#include "audio/EngineRig.h"
#include "audio/Pcm.h"
#include "audio/PulseDaemon.h"
#include "audio/QtSoundCard.h"
#include "audio/Tone.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <QTimer>

namespace {

constexpr int kPatience = 30000; // ms

// Hands on what a real input delivers and keeps a copy.
class Tap final : public QIODevice
{
    Q_OBJECT

public:
    Tap(QIODevice *source, QByteArray *copy)
        : m_source(source)
        , m_copy(copy)
    {
        open(ReadOnly | Unbuffered);
    }
    [[nodiscard]] bool isSequential() const override { return true; }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        const qint64 read = m_source ? m_source->read(data, size) : -1;
        if (read > 0)
            m_copy->append(data, static_cast<int>(read));
        return read;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QPointer<QIODevice> m_source;
    QByteArray *m_copy;
};

class TappedStream final : public SoundStream
{
public:
    TappedStream(std::unique_ptr<SoundStream> stream, QByteArray *copy)
        : m_stream(std::move(stream))
        , m_tap(std::make_unique<Tap>(m_stream->device(), copy))
    {
    }
    [[nodiscard]] QIODevice *device() const override { return m_stream->device() ? m_tap.get() : nullptr; }
    [[nodiscard]] int bytesFree() const override { return m_stream->bytesFree(); }
    [[nodiscard]] bool isOfNamedDevice() const override { return m_stream->isOfNamedDevice(); }

private:
    std::unique_ptr<SoundStream> m_stream;
    std::unique_ptr<Tap> m_tap;
};

class TappedSoundCard final : public SoundCard
{
public:
    explicit TappedSoundCard(QByteArray *captured)
        : m_captured(captured)
    {
    }
    [[nodiscard]] std::unique_ptr<SoundStream> openInput(const Request &request) override
    {
        std::unique_ptr<SoundStream> stream = m_card.openInput(request);
        return stream ? std::make_unique<TappedStream>(std::move(stream), m_captured) : nullptr;
    }
    [[nodiscard]] std::unique_ptr<SoundStream> openOutput(const Request &request) override
    {
        return m_card.openOutput(request);
    }

private:
    QtSoundCard m_card;
    QByteArray *m_captured;
};

// An engine on the real sound server.
class Station
{
public:
    Station()
    {
        QObject::connect(&engine, &AudioEngine::audioEncoded, &engine,
                         [this](const QByteArray &payload) { payloads.append(payload); });
        QObject::connect(&engine, &AudioEngine::audioLevelChanged, &engine, [this] { ++levels; });
    }
    bool start() { return engine.init(0, 0, 0, 0, 0) && engine.startCapture() && engine.startPlayback(); }

    QByteArray captured;
    QList<QByteArray> payloads;
    int levels = 0;
    AudioEngine engine{std::make_unique<TappedSoundCard>(&captured), nullptr};
};

// Sends a tone to an engine as a room would: a payload for each frame's time, for as long as it lives.
class Talker
{
public:
    Talker(AudioEngine &engine, double frequency, int frameMilliseconds = 20)
    {
        const int frame = 48 * frameMilliseconds;
        m_packets = encodedApart(Tone::sine(frequency, 48000, frame * 50), firstQuality(), frame);
        QObject::connect(&m_timer, &QTimer::timeout, &engine,
                         [this, &engine] { engine.onAudioReceived(m_packets[m_next++ % m_packets.size()]); });
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.start(frameMilliseconds);
    }

private:
    QTimer m_timer;
    QList<QByteArray> m_packets;
    int m_next = 0;
};

// Whether some 200 ms of it are that tone.
bool contains(const QByteArray &pcm, int rate, double frequency)
{
    const int window = rate / 5 * Pcm::kBytesPerSample;
    for (int begin = 0; begin + window <= pcm.size(); begin += window / 4 / 2 * 2) {
        const QByteArray part = pcm.mid(begin, window);
        if (Tone::rms(part) > 4000 && qAbs(Tone::frequency(part, rate) - frequency) < 6)
            return true;
    }
    return false;
}

} // namespace

class TestAudioDevices : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void captureIsUnbroken();
    void inputByName_data();
    void inputByName();
    void outputByName_data();
    void outputByName();
    void onlyTheNamedDevice();
    void longFrames_data();
    void longFrames();
    void unsupportedOutputRate();
    void muteAndUnmute();
    void qualityWhileCapturing();
    void hostileQualityWhileCapturing();
    void soundServerComesBack();
    void soundServerStaysAway();

private:
    PulseDaemon m_daemon{{QStringLiteral("radio"), QStringLiteral("other")}};
};

void TestAudioDevices::initTestCase()
{
    m_daemon.useHere();
    QVERIFY(m_daemon.start());
}

void TestAudioDevices::captureIsUnbroken()
{
    Station station;
    QVERIFY(station.start());
    const QByteArray played = Tone::noise(3 * 48000);
    const auto player = m_daemon.play(played, 48000, QStringLiteral("radio_rx"));
    QTRY_VERIFY_WITH_TIMEOUT(station.captured.contains(played.right(1000)), kPatience);
    QVERIFY2(station.captured.contains(played), "the captured samples are not the ones that were played");

    const QByteArray whole = station.captured.left(station.payloads.size() * EngineRig::kFrameBytes);
    QCOMPARE(station.payloads, encodedApart(whole, firstQuality(), 960));
    QVERIFY(station.payloads.size() >= 150);
    QCOMPARE(station.levels, station.payloads.size());
    QVERIFY(station.captured.size() - whole.size() < EngineRig::kFrameBytes);
}

void TestAudioDevices::inputByName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("sink");
    QTest::addRow("default") << QString() << QStringLiteral("radio_rx");
    QTest::addRow("by name") << QStringLiteral("other_mic") << QStringLiteral("other_rx");
    QTest::addRow("no such device") << QStringLiteral("nothing") << QStringLiteral("radio_rx");
    QTest::addRow("other case") << QStringLiteral("OTHER_MIC") << QStringLiteral("radio_rx");
}

void TestAudioDevices::inputByName()
{
    QFETCH(QString, name);
    QFETCH(QString, sink);
    Station station;
    station.engine.setInputDevice(name);
    QVERIFY(station.start());
    const auto player = m_daemon.play(Tone::sine(700, 48000, 48000), 48000, sink);
    QTRY_VERIFY_WITH_TIMEOUT(contains(station.captured, 48000, 700), kPatience);
}

void TestAudioDevices::outputByName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("sink");
    QTest::addColumn<bool>("found");
    QTest::addRow("default") << QString() << QStringLiteral("radio_tx") << false;
    QTest::addRow("by name") << QStringLiteral("other_tx") << QStringLiteral("other_tx") << true;
    QTest::addRow("no such device") << QStringLiteral("nothing") << QStringLiteral("radio_tx") << false;
}

void TestAudioDevices::outputByName()
{
    QFETCH(QString, name);
    QFETCH(QString, sink);
    QFETCH(bool, found);
    const auto recorder = m_daemon.record(44100, sink + QStringLiteral(".monitor"));
    QVERIFY(recorder);
    LogCapture log;
    Station station;
    station.engine.setOutputDevice(name);
    QVERIFY(station.start());
    const QString line = QStringLiteral("[Audio] Using selected output: ") + name;
    QCOMPARE(log.contains(line), found);
    QCOMPARE(log.count(QStringLiteral("[Audio] Using nearest format:")), 0);

    const Talker talker(station.engine, 660);
    QByteArray heard;
    connect(recorder.get(), &QProcess::readyRead, &station.engine, [&] { heard += recorder->readAll(); });
    QTRY_VERIFY_WITH_TIMEOUT(contains(heard, 44100, 660), kPatience);
    QVERIFY(station.engine.outputLevel() > 0);
}

void TestAudioDevices::onlyTheNamedDevice()
{
    QtSoundCard card;
    SoundCard::Request request{QStringLiteral("nothing"), 44100, 1, false};
    for (const bool onlyNamed : {false, true}) {
        request.onlyNamed = onlyNamed;
        request.deviceName = QStringLiteral("nothing");
        QCOMPARE(card.openInput(request) == nullptr, onlyNamed);
        QCOMPARE(card.openOutput(request) == nullptr, onlyNamed);
        request.deviceName = QStringLiteral("other_mic");
        const auto input = card.openInput(request);
        QVERIFY(input && input->isOfNamedDevice());
        request.deviceName = QStringLiteral("other_tx");
        const auto output = card.openOutput(request);
        QVERIFY(output && output->isOfNamedDevice());
    }
    request = {QString(), 44100, 1, false};
    const auto fallback = card.openOutput(request);
    QVERIFY(fallback && !fallback->isOfNamedDevice());
}

void TestAudioDevices::longFrames_data()
{
    QTest::addColumn<int>("milliseconds");
    for (const int milliseconds : {40, 60})
        QTest::addRow("%d ms", milliseconds) << milliseconds;
}

// The chunks of some do not add up to what the sound server wants before it begins to play.
void TestAudioDevices::longFrames()
{
    QFETCH(int, milliseconds);
    const auto recorder = m_daemon.record(44100, QStringLiteral("radio_tx.monitor"));
    QVERIFY(recorder);
    Station station;
    QVERIFY(station.start());
    station.engine.applyQuality(48000, 32000, 5, milliseconds);
    const Talker talker(station.engine, 660, milliseconds);
    QByteArray heard;
    connect(recorder.get(), &QProcess::readyRead, &station.engine,
            [&] { heard = (heard + recorder->readAll()).right(44100); });
    QTRY_VERIFY_WITH_TIMEOUT(contains(heard, 44100, 660), kPatience);
}

void TestAudioDevices::unsupportedOutputRate()
{
    LogCapture log;
    QtSoundCard card;
    SoundCard::Request request{QString(), 10000000, 1, true};
    const auto stream = card.openOutput(request);
    QCOMPARE(log.count(QStringLiteral("[Audio] Using nearest format:")), 1);
    QVERIFY(log.lines().last().endsWith(QStringLiteral(" Hz")));
    request.reportChoice = false;
    const auto quiet = card.openOutput(request);
    QCOMPARE(log.count(QStringLiteral("[Audio] Using nearest format:")), 1);
    QCOMPARE(stream != nullptr, quiet != nullptr);
}

void TestAudioDevices::muteAndUnmute()
{
    Station station;
    QVERIFY(station.start());
    QTRY_VERIFY_WITH_TIMEOUT(station.payloads.size() > 5, kPatience);
    station.engine.setMicMuted(true);
    const int before = station.payloads.size();
    const int levels = station.levels;
    // A second engine's frames tell that time enough has passed.
    Station witness;
    QVERIFY(witness.start());
    QTRY_VERIFY_WITH_TIMEOUT(witness.payloads.size() > 10, kPatience);
    QCOMPARE(station.payloads.size(), before);
    QCOMPARE(station.levels, levels);
    station.engine.setMicMuted(false);
    QTRY_VERIFY_WITH_TIMEOUT(station.payloads.size() > before + 10, kPatience);
}

void TestAudioDevices::qualityWhileCapturing()
{
    Station station;
    QVERIFY(station.start());
    QTRY_VERIFY_WITH_TIMEOUT(!station.payloads.isEmpty(), kPatience);
    station.engine.applyQuality(24000, 24000, 5, 20);
    station.captured.clear();
    station.payloads.clear();
    const auto player = m_daemon.play(Tone::sine(700, 48000, 48000), 48000, QStringLiteral("radio_rx"));
    QTRY_VERIFY_WITH_TIMEOUT(contains(station.captured, 24000, 700), kPatience);
    QVERIFY(station.payloads.size() >= station.captured.size() / (480 * 2) - 1);
    QVERIFY(station.engine.isPlaying());
}

void TestAudioDevices::hostileQualityWhileCapturing()
{
    LogCapture log;
    log.expectWarning(QString()); // the sound system has its own opinion of such rates
    Station station;
    QVERIFY(station.start());
    for (const int rate : {2147483647, 1, 0, -48000, 7, 999999}) {
        station.engine.applyQuality(rate, 2147483647, 100, 2147483647);
        QVERIFY(station.engine.isCapturing());
    }
    station.engine.applyQuality(48000, 32000, 5, 20);
    station.payloads.clear();
    QTRY_VERIFY_WITH_TIMEOUT(station.payloads.size() > 5, kPatience);
}

void TestAudioDevices::soundServerComesBack()
{
    LogCapture log;
    log.expectWarning(QString()); // so has it of a server that goes away
    Station station;
    QVERIFY(station.start());
    const Talker talker(station.engine, 660);
    QTRY_VERIFY_WITH_TIMEOUT(station.payloads.size() > 5, kPatience);

    // Back at once, as a session's sound server is: Qt knocks again one single time, after three seconds.
    m_daemon.kill();
    QVERIFY(m_daemon.start());
    QTRY_COMPARE_WITH_TIMEOUT(log.count(QStringLiteral("[Audio] Capture device lost, reopening it")), 1, kPatience);
    QTRY_COMPARE_WITH_TIMEOUT(log.count(QStringLiteral("[Audio] Playback device lost, reopening it")), 1, kPatience);
    QVERIFY(station.engine.isCapturing());
    QVERIFY(station.engine.isPlaying());
    station.captured.clear();
    station.payloads.clear();
    QTRY_VERIFY_WITH_TIMEOUT(station.payloads.size() > 10, kPatience);
    const auto player = m_daemon.play(Tone::sine(700, 48000, 2 * 48000), 48000, QStringLiteral("radio_rx"));
    QTRY_VERIFY_WITH_TIMEOUT(contains(station.captured, 48000, 700), kPatience);
    const auto recorder = m_daemon.record(44100, QStringLiteral("radio_tx.monitor"));
    QVERIFY(recorder);
    QByteArray heard;
    connect(recorder.get(), &QProcess::readyRead, &station.engine, [&] { heard += recorder->readAll(); });
    QTRY_VERIFY_WITH_TIMEOUT(contains(heard, 44100, 660), kPatience);
    QCOMPARE(log.count(QStringLiteral("[Audio] Capture device lost, reopening it")), 1);
}

void TestAudioDevices::soundServerStaysAway()
{
    LogCapture log;
    log.expectWarning(QString());
    Station station;
    QVERIFY(station.start());
    QTRY_VERIFY_WITH_TIMEOUT(station.payloads.size() > 5, kPatience);
    m_daemon.kill();
    QTRY_COMPARE_WITH_TIMEOUT(log.count(QStringLiteral("[Audio] Playback device lost, reopening it")), 1, kPatience);
    for (int i = 0; i < 20; ++i) {
        QMetaObject::invokeMethod(&station.engine, "checkDevices");
        station.engine.onCaptureTimer();
        station.engine.onOutputBufferTimer();
    }
    station.engine.applyQuality(24000, 16000, 5, 20);
    QVERIFY(station.engine.isCapturing());
    QVERIFY(station.engine.isPlaying());
    QCOMPARE(log.count(QStringLiteral("[Audio] Playback device lost, reopening it")), 1);
}

EVOX_TEST_MAIN(TestAudioDevices, QCoreApplication)
#include "tst_audiodevices.moc"
