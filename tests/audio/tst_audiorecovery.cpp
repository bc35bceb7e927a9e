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
    void namedCardIsNotReplaced();
    void cardInPlaceOfANamedOneComesBack();
    void missingCardIsWaitedFor();
    void stopEndsTheWaitForAMissingCard();
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

// The computer's own microphone must not go to the room because the radio's card was gone for a moment.
void TestAudioRecovery::namedCardIsNotReplaced()
{
    EngineRig rig;
    const QString radio = QStringLiteral("radio");
    rig.card->named = radio;
    rig.engine.setInputDevice(radio);
    rig.engine.setOutputDevice(radio);
    QVERIFY(rig.startBoth());
    rig.card->unplug();
    rig.card->present = true; // the computer's own
    rig.card->named.clear();
    lookAtDevices(rig.engine);
    rig.engine.applyQuality(24000, 16000, 5, 20);
    QVERIFY(!rig.card->input);
    QVERIFY(!rig.card->output);
    QVERIFY(rig.engine.isCapturing());
    QVERIFY(rig.engine.isPlaying());
    rig.card->named = radio;
    lookAtDevices(rig.engine);
    QVERIFY(rig.card->input);
    QVERIFY(rig.card->output);

    rig.card->unplug();
    rig.card->present = true;
    rig.card->named.clear();
    rig.engine.setInputDevice(QString()); // the operator wants the computer's own
    rig.engine.setOutputDevice(QString());
    lookAtDevices(rig.engine);
    QVERIFY(rig.card->input);
    QVERIFY(rig.card->output);
}

void TestAudioRecovery::cardInPlaceOfANamedOneComesBack()
{
    EngineRig rig;
    rig.engine.setInputDevice(QStringLiteral("radio"));
    rig.engine.setOutputDevice(QStringLiteral("radio"));
    QVERIFY(rig.startBoth());
    rig.card->unplug();
    rig.card->present = true;
    lookAtDevices(rig.engine);
    QVERIFY(rig.card->input);
    QVERIFY(rig.card->output);
}

void TestAudioRecovery::missingCardIsWaitedFor()
{
    EngineRig rig;
    QVERIFY(rig.init());
    rig.card->present = false;
    QVERIFY(!rig.engine.startCapture());
    QVERIFY(!rig.engine.startPlayback());
    LogCapture log;
    for (int i = 0; i < 10; ++i)
        lookAtDevices(rig.engine);
    QVERIFY(!rig.engine.isCapturing());
    QVERIFY(!rig.engine.isPlaying());
    QCOMPARE(log.lines(), QStringList());
    rig.engine.applyQuality(24000, 16000, 5, 20); // does not end the wait
    rig.card->present = true;
    lookAtDevices(rig.engine);
    QVERIFY(rig.engine.isCapturing());
    QVERIFY(rig.engine.isPlaying());
    QCOMPARE(rig.card->inputRequests.last().sampleRate, 24000);
    lookAtDevices(rig.engine);
    QCOMPARE(log.count(QStringLiteral("[Audio] Capture started with timer polling")), 1);
    QCOMPARE(log.count(QStringLiteral("[Audio] Playback started successfully")), 1);
}

void TestAudioRecovery::stopEndsTheWaitForAMissingCard()
{
    EngineRig rig;
    QVERIFY(rig.init());
    rig.card->present = false;
    QVERIFY(!rig.engine.startCapture());
    rig.engine.stopCapture();
    rig.card->present = true;
    lookAtDevices(rig.engine);
    QVERIFY(!rig.engine.isCapturing());
    QCOMPARE(rig.card->inputRequests.size(), 1);
}

EVOX_TEST_MAIN(TestAudioRecovery, QCoreApplication)
#include "tst_audiorecovery.moc"
