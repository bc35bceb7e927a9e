#include "audio/EngineRig.h"
#include "audio/Tone.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <limits>

namespace {

constexpr int kHuge = std::numeric_limits<int>::max();
constexpr int kLowest = std::numeric_limits<int>::min();

} // namespace

class TestAudioQuality : public QObject
{
    Q_OBJECT

private slots:
    void frameSize_data();
    void frameSize();
    void absurdNumbers_data();
    void absurdNumbers();
    void encoderTakesTheNumbers_data();
    void encoderTakesTheNumbers();
    void generalAudioInsteadOfVoice();
    void notCapturingStaysStopped();
    void captureIsReopened();
    void playbackStaysOpen();
    void lowerRatePlaysAtTheSameSpeed();
    void refusedRateSilencesUntilTheNext();
    void beforeInit();
};

void TestAudioQuality::frameSize_data()
{
    QTest::addColumn<int>("rate");
    QTest::addColumn<int>("duration");
    QTest::addColumn<int>("samples");
    QTest::addRow("48000 Hz, 20 ms") << 48000 << 20 << 960;
    QTest::addRow("24000 Hz, 20 ms") << 24000 << 20 << 480;
    QTest::addRow("12000 Hz, 20 ms") << 12000 << 20 << 240;
    QTest::addRow("48000 Hz, 10 ms") << 48000 << 10 << 480;
    QTest::addRow("48000 Hz, 60 ms") << 48000 << 60 << 2880;
    QTest::addRow("a rate that the codec has not") << 44100 << 20 << 882;
    QTest::addRow("rounds down") << 11025 << 5 << 55;
}

void TestAudioQuality::frameSize()
{
    QFETCH(int, rate);
    QFETCH(int, duration);
    QFETCH(int, samples);
    LogCapture log;
    EngineRig rig;
    QVERIFY(rig.init());
    rig.engine.applyQuality(rate, 32000, 5, duration);
    QCOMPARE(rig.engine.frameSize(), samples);
    QCOMPARE(log.lines().last(), QStringLiteral("[Audio] Quality applied, frameSize: %1").arg(samples));
}

void TestAudioQuality::absurdNumbers_data()
{
    QTest::addColumn<int>("rate");
    QTest::addColumn<int>("bitrate");
    QTest::addColumn<int>("complexity");
    QTest::addColumn<int>("duration");
    QTest::addColumn<int>("samples");
    QTest::addRow("all zero") << 0 << 0 << 0 << 0 << 960;
    QTest::addRow("all huge") << kHuge << kHuge << kHuge << kHuge << 48000;
    QTest::addRow("all lowest") << kLowest << kLowest << kLowest << kLowest << 960;
    QTest::addRow("no duration") << 24000 << 16000 << 5 << 0 << 480;
    QTest::addRow("negative duration") << 48000 << 32000 << 5 << -20 << 960;
    QTest::addRow("no rate") << 0 << 32000 << 5 << 10 << 480;
    QTest::addRow("frame of hours") << 48000 << 32000 << 5 << kHuge << 48000;
    QTest::addRow("rate of one") << 1 << 32000 << 5 << 20 << 1;
    QTest::addRow("product beyond 32 bits") << 48000 << 32000 << 5 << 44740 << 48000;
    QTest::addRow("200 ms, more than the codec takes") << 48000 << 32000 << 5 << 200 << 9600;
}

void TestAudioQuality::absurdNumbers()
{
    QFETCH(int, rate);
    QFETCH(int, bitrate);
    QFETCH(int, complexity);
    QFETCH(int, duration);
    QFETCH(int, samples);
    EngineRig rig;
    QVERIFY(rig.startBoth());
    const QByteArray packet = encodedApart(Tone::sine(440, 48000, 960), firstQuality(), 960).first();
    rig.engine.onAudioReceived(packet);
    rig.engine.applyQuality(rate, bitrate, complexity, duration);
    QCOMPARE(rig.engine.frameSize(), samples);
    QVERIFY(rig.engine.isCapturing());
    QVERIFY(rig.engine.isPlaying());
    rig.capture(Tone::sine(440, 48000, samples * 2));
    rig.engine.onAudioReceived(packet);
    rig.engine.resetDecoder();
    rig.feedOutput(10);
    // And back to something sensible.
    rig.engine.applyQuality(48000, 32000, 5, 20);
    rig.payloads.clear();
    rig.capture(Tone::sine(440, 48000, 960));
    QCOMPARE(rig.payloads.size(), 1);
}

void TestAudioQuality::encoderTakesTheNumbers_data()
{
    QTest::addColumn<int>("rate");
    QTest::addColumn<int>("bitrate");
    QTest::addColumn<int>("complexity");
    QTest::addColumn<int>("duration");
    QTest::addRow("high") << 48000 << 64000 << 10 << 20;
    QTest::addRow("standard") << 48000 << 32000 << 5 << 20;
    QTest::addRow("low") << 24000 << 16000 << 5 << 20;
    QTest::addRow("minimal") << 12000 << 8000 << 0 << 20;
    QTest::addRow("short frames") << 48000 << 32000 << 5 << 10;
    QTest::addRow("long frames") << 16000 << 24000 << 5 << 60;
}

void TestAudioQuality::encoderTakesTheNumbers()
{
    QFETCH(int, rate);
    QFETCH(int, bitrate);
    QFETCH(int, complexity);
    QFETCH(int, duration);
    EngineRig rig;
    QVERIFY(rig.startBoth());
    rig.engine.applyQuality(rate, bitrate, complexity, duration);
    const int frame = rig.engine.frameSize();
    const QByteArray pcm = Tone::noise(frame * 5);
    rig.capture(pcm);
    QCOMPARE(rig.payloads, encodedApart(pcm, {OpusApplication::Audio, rate, 1, bitrate, complexity}, frame));
    QCOMPARE(rig.payloads.size(), 5);
}

void TestAudioQuality::generalAudioInsteadOfVoice()
{
    EngineRig rig;
    QVERIFY(rig.init());
    QVERIFY(rig.engine.startCapture());
    const QByteArray pcm = Tone::noise(960 * 5);
    rig.capture(pcm);
    const QList<QByteArray> voice = rig.payloads;
    rig.payloads.clear();
    rig.engine.applyQuality(48000, 32000, 5, 20);
    rig.capture(pcm);
    QCOMPARE(voice, encodedApart(pcm, firstQuality(), 960));
    QCOMPARE(rig.payloads, encodedApart(pcm, {OpusApplication::Audio, 48000, 1, 32000, 5}, 960));
    QVERIFY(voice != rig.payloads);
}

void TestAudioQuality::notCapturingStaysStopped()
{
    LogCapture log;
    EngineRig rig;
    QVERIFY(rig.init());
    rig.engine.applyQuality(24000, 16000, 5, 20);
    QVERIFY(!rig.engine.isCapturing());
    QVERIFY(rig.card->inputRequests.isEmpty());
    QCOMPARE(log.count(QStringLiteral("[Audio] Capture")), 0);
    QVERIFY(rig.engine.startCapture());
    QCOMPARE(rig.card->inputRequests.first().sampleRate, 24000);
}

void TestAudioQuality::captureIsReopened()
{
    LogCapture log;
    EngineRig rig;
    QVERIFY(rig.init());
    QVERIFY(rig.engine.startCapture());
    const QPointer<FakeInput> before = rig.card->input;
    rig.card->input->pending = QByteArray(1000, 'x');
    rig.engine.onCaptureTimer(); // half a frame of the old rate is on its way
    log.clear();
    rig.engine.applyQuality(24000, 16000, 5, 20);
    QCOMPARE(log.lines(), (QStringList{QStringLiteral("[Audio] Capture stopped"),
                                       QStringLiteral("[Audio] Capture started with timer polling"),
                                       QStringLiteral("[Audio] Quality applied, frameSize: 480")}));
    QVERIFY(!before);
    QVERIFY(rig.engine.isCapturing());
    QCOMPARE(rig.card->inputRequests.last().sampleRate, 24000);
    const QByteArray pcm = Tone::sine(440, 24000, 480 * 3);
    rig.capture(pcm);
    QCOMPARE(rig.payloads, encodedApart(pcm, {OpusApplication::Audio, 24000, 1, 16000, 5}, 480));
}

void TestAudioQuality::playbackStaysOpen()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    const QPointer<FakeOutput> before = rig.card->output;
    rig.engine.applyQuality(12000, 8000, 5, 20);
    QVERIFY(before);
    QCOMPARE(rig.card->outputRequests.size(), 1);
}

void TestAudioQuality::lowerRatePlaysAtTheSameSpeed()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    rig.engine.applyQuality(12000, 16000, 5, 20);
    for (const QByteArray &packet :
         encodedApart(Tone::sine(600, 12000, 240 * 50), {OpusApplication::Audio, 12000, 1, 16000, 5}, 240)) {
        rig.engine.onAudioReceived(packet);
        rig.feedOutput(1);
    }
    const QByteArray heard = rig.card->output->played;
    QCOMPARE(heard.size(), 50 * EngineRig::kChunkBytes);
    QVERIFY(qAbs(Tone::frequency(heard.mid(5 * EngineRig::kChunkBytes), 44100) - 600) < 2);
}

void TestAudioQuality::refusedRateSilencesUntilTheNext()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    rig.engine.applyQuality(44100, 32000, 5, 20);
    rig.capture(Tone::sine(440, 44100, 882 * 2));
    QVERIFY(rig.payloads.isEmpty());
    QCOMPARE(rig.levels.size(), 2); // the meter goes on
    rig.engine.onAudioReceived(encodedApart(Tone::sine(440, 48000, 960), firstQuality(), 960).first());
    QCOMPARE(rig.engine.playbackBacklog(), 0);

    rig.engine.applyQuality(48000, 32000, 5, 20);
    rig.capture(Tone::sine(440, 48000, 960));
    QCOMPARE(rig.payloads.size(), 1);
    rig.engine.onAudioReceived(rig.payloads.first());
    QCOMPARE(rig.engine.playbackBacklog(), EngineRig::kChunkBytes);
}

void TestAudioQuality::beforeInit()
{
    EngineRig rig;
    rig.engine.applyQuality(24000, 16000, 5, 20);
    QCOMPARE(rig.engine.frameSize(), 480);
    QVERIFY(!rig.engine.startCapture());
    QVERIFY(rig.init());
    QCOMPARE(rig.engine.frameSize(), 960); // a session begins with its own quality
}

EVOX_TEST_MAIN(TestAudioQuality, QCoreApplication)
#include "tst_audioquality.moc"
