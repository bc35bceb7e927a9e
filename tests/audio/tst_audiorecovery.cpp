#include "audio/EngineRig.h"
#include "audio/Tone.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <QTimer>

namespace {

const QString kCaptureLost = QStringLiteral("[Audio] Capture device lost, reopening it");
const QString kPlaybackLost = QStringLiteral("[Audio] Playback device lost, reopening it");

// What the engine's own five-second timer does.
void lookAtDevices(AudioEngine &engine)
{
    QMetaObject::invokeMethod(&engine, "checkDevices");
}

} // namespace

class TestAudioRecovery : public QObject
{
    Q_OBJECT

private slots:
    void watchRunsEveryFiveSeconds();
    void lostCardComesBack();
    void waitsQuietly();
    void secondLossIsLoggedAgain();
    void stopEndsTheWait();
    void silentInputIsReopened();
    void mutedInputIsNotSilent();
    void deadOutputIsReopened();
    void busyOutputIsLeftAlone();
    void qualityWhileCardIsAway();
    void playbackResumesWithRecentAudio();
};

void TestAudioRecovery::watchRunsEveryFiveSeconds()
{
    EngineRig rig;
    QVERIFY(rig.init());
    const auto isWatching = [&rig] {
        const QList<QTimer *> timers = rig.engine.findChildren<QTimer *>();
        return std::any_of(timers.cbegin(), timers.cend(),
                           [](const QTimer *timer) { return timer->interval() == 5000 && timer->isActive(); });
    };
    QVERIFY(!isWatching());
    QVERIFY(rig.engine.startCapture());
    QVERIFY(isWatching());
    rig.engine.stopCapture();
    lookAtDevices(rig.engine);
    QVERIFY2(!isWatching(), "there is nothing to watch");
    QVERIFY(rig.engine.startPlayback());
    QVERIFY(isWatching());
}

void TestAudioRecovery::lostCardComesBack()
{
    LogCapture log;
    EngineRig rig;
    QVERIFY(rig.startBoth());
    rig.card->unplug();
    rig.engine.onCaptureTimer();
    rig.engine.onOutputBufferTimer();
    QVERIFY(rig.engine.isCapturing());
    QVERIFY(rig.engine.isPlaying());
    lookAtDevices(rig.engine);
    QCOMPARE(log.count(kCaptureLost), 1);
    QCOMPARE(log.count(kPlaybackLost), 1);

    rig.card->present = true;
    lookAtDevices(rig.engine);
    const QByteArray pcm = Tone::sine(440, 48000, 960);
    rig.capture(pcm);
    QCOMPARE(rig.payloads.size(), 1);
    rig.engine.onAudioReceived(rig.payloads.first());
    rig.feedOutput(1);
    QCOMPARE(rig.card->output->played.size(), EngineRig::kChunkBytes);
}

void TestAudioRecovery::waitsQuietly()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    rig.card->unplug();
    LogCapture log;
    for (int i = 0; i < 100; ++i) {
        lookAtDevices(rig.engine);
        rig.engine.onCaptureTimer();
        rig.engine.onOutputBufferTimer();
    }
    QCOMPARE(log.lines(), (QStringList{kCaptureLost, kPlaybackLost}));
    QCOMPARE(rig.card->inputRequests.size(), 101);
    QCOMPARE(rig.card->outputRequests.size(), 101);
    QVERIFY(rig.card->outputRequests.first().reportChoice);
    QVERIFY(!rig.card->outputRequests.last().reportChoice);
}

void TestAudioRecovery::secondLossIsLoggedAgain()
{
    LogCapture log;
    EngineRig rig;
    QVERIFY(rig.startBoth());
    for (int loss = 1; loss <= 2; ++loss) {
        rig.card->unplug();
        lookAtDevices(rig.engine);
        QCOMPARE(log.count(kCaptureLost), loss);
        QCOMPARE(log.count(kPlaybackLost), loss);
        rig.card->present = true;
        lookAtDevices(rig.engine);
        rig.capture(Tone::sine(440, 48000, 960));
        rig.engine.onAudioReceived(rig.payloads.last());
        rig.feedOutput(1);
    }
}

void TestAudioRecovery::stopEndsTheWait()
{
    EngineRig rig;
    QVERIFY(rig.init());
    QVERIFY(rig.engine.startCapture());
    rig.card->unplug();
    lookAtDevices(rig.engine);
    rig.engine.stopCapture();
    QVERIFY(!rig.engine.isCapturing());
    rig.card->present = true;
    const int attempts = rig.card->inputRequests.size();
    lookAtDevices(rig.engine);
    QCOMPARE(rig.card->inputRequests.size(), attempts);
    QVERIFY(rig.engine.startCapture());
}

// A card that is pulled out may leave its stream open: then nothing comes in any more.
void TestAudioRecovery::silentInputIsReopened()
{
    EngineRig rig;
    QVERIFY(rig.init());
    QVERIFY(rig.engine.startCapture());
    lookAtDevices(rig.engine); // it has had no time yet
    QCOMPARE(rig.card->inputRequests.size(), 1);
    rig.capture(Tone::sine(440, 48000, 960));
    lookAtDevices(rig.engine);
    QCOMPARE(rig.card->inputRequests.size(), 1);
    rig.engine.onCaptureTimer();
    lookAtDevices(rig.engine);
    QCOMPARE(rig.card->inputRequests.size(), 2);
}

void TestAudioRecovery::mutedInputIsNotSilent()
{
    EngineRig rig;
    QVERIFY(rig.init());
    QVERIFY(rig.engine.startCapture());
    rig.engine.setMicMuted(true);
    for (int i = 0; i < 5; ++i) {
        rig.engine.onCaptureTimer();
        lookAtDevices(rig.engine);
    }
    rig.engine.setMicMuted(false);
    lookAtDevices(rig.engine); // it has had no time yet
    QCOMPARE(rig.card->inputRequests.size(), 1);
    lookAtDevices(rig.engine);
    QCOMPARE(rig.card->inputRequests.size(), 2);
}

void TestAudioRecovery::deadOutputIsReopened()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    const QList<QByteArray> packets = encodedApart(Tone::sine(440, 48000, 960), firstQuality(), 960);
    rig.engine.onAudioReceived(packets.first());
    for (int i = 0; i < 500; ++i)
        rig.card->output->answers.append(0);
    rig.feedOutput(499);
    lookAtDevices(rig.engine);
    QCOMPARE(rig.card->outputRequests.size(), 1);
    rig.feedOutput(1);
    lookAtDevices(rig.engine);
    QCOMPARE(rig.card->outputRequests.size(), 2);
    rig.feedOutput(1);
    QCOMPARE(rig.card->output->played.size(), EngineRig::kChunkBytes); // what was refused is played
}

void TestAudioRecovery::busyOutputIsLeftAlone()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    const QByteArray packet = encodedApart(Tone::sine(440, 48000, 960), firstQuality(), 960).first();
    for (int round = 0; round < 10; ++round) {
        rig.engine.onAudioReceived(packet);
        for (int i = 0; i < 300; ++i)
            rig.card->output->answers.append(0);
        rig.feedOutput(301);
        lookAtDevices(rig.engine);
    }
    QCOMPARE(rig.card->outputRequests.size(), 1);
}

void TestAudioRecovery::qualityWhileCardIsAway()
{
    EngineRig rig;
    QVERIFY(rig.init());
    QVERIFY(rig.engine.startCapture());
    rig.card->unplug();
    rig.engine.applyQuality(24000, 16000, 5, 20);
    QVERIFY(rig.engine.isCapturing());
    rig.card->present = true;
    lookAtDevices(rig.engine);
    QCOMPARE(rig.card->inputRequests.last().sampleRate, 24000);
    rig.card->input->pending = Tone::sine(440, 24000, 480 * 3);
    QTRY_COMPARE(rig.payloads.size(), 3); // polled by the timer, too
}

void TestAudioRecovery::playbackResumesWithRecentAudio()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    rig.card->unplug();
    for (const QByteArray &packet : encodedApart(Tone::sine(440, 48000, 960 * 200), firstQuality(), 960)) {
        rig.engine.onAudioReceived(packet);
        rig.engine.onOutputBufferTimer();
    }
    QVERIFY(rig.engine.playbackBacklog() >= 17640);
    QVERIFY(rig.engine.playbackBacklog() <= 44100);
    rig.card->present = true;
    lookAtDevices(rig.engine);
    rig.feedOutput(1);
    QCOMPARE(rig.card->output->played.size(), EngineRig::kChunkBytes);
}

EVOX_TEST_MAIN(TestAudioRecovery, QCoreApplication)
#include "tst_audiorecovery.moc"
