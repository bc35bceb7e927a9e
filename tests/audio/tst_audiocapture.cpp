#include "audio/EngineRig.h"
#include "audio/Pcm.h"
#include "audio/Tone.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <QTimer>

class TestAudioCapture : public QObject
{
    Q_OBJECT

private slots:
    void constructionAndInit();
    void startNeedsInit();
    void startOpensOnce();
    void startWithoutDevice();
    void stopIsWrittenOnce();
    void shortReadsLoseNothing_data();
    void shortReadsLoseNothing();
    void oneFramePerTick();
    void timerPolls();
    void gain_data();
    void gain();
    void levelOfEveryFrame();
    void levelsOfWhatHasEnded();
    void mutedMicrophone();
    void keyText_data();
    void keyText();
    void invalidKeySwitchesOff();
    void encipheredFrames();
    void keyDuringCapture();
    void trialOpening();
    void stopFromListener();
    void qualityFromListener();
};

void TestAudioCapture::constructionAndInit()
{
    LogCapture log;
    {
        EngineRig rig;
        QCOMPARE(log.lines(), QStringList{QStringLiteral("[Audio] Engine created, timer interval: 10ms")});
        QCOMPARE(rig.engine.frameSize(), 960);
        QVERIFY(!rig.engine.isCapturing());
        QVERIFY(!rig.engine.isPlaying());
        QVERIFY(!rig.engine.isEncryptionEnabled());
        QVERIFY(rig.engine.init(8000, 2, 160, 6000, 10)); // the arguments do not count
        QCOMPARE(log.lines().last(), QStringLiteral("[Audio] Initialized: 48000 Hz, 32000 bps"));
        QCOMPARE(rig.engine.frameSize(), 960);
        log.clear();
    }
    QCOMPARE(log.lines(), QStringList{QStringLiteral("[Audio] Destructor called")});
}

void TestAudioCapture::startNeedsInit()
{
    EngineRig rig;
    QVERIFY(!rig.engine.startCapture());
    QVERIFY(rig.card->inputRequests.isEmpty());
    QVERIFY(!rig.engine.isCapturing());
}

void TestAudioCapture::startOpensOnce()
{
    LogCapture log;
    EngineRig rig;
    QVERIFY(rig.init());
    rig.engine.setInputDevice(QStringLiteral("radio mic"));
    QVERIFY(log.contains(QStringLiteral("[Audio] Input device set to: radio mic")));
    QVERIFY(rig.engine.startCapture());
    QVERIFY(rig.engine.startCapture());
    QVERIFY(rig.engine.isCapturing());
    QCOMPARE(log.count(QStringLiteral("[Audio] Capture started with timer polling")), 1);
    QCOMPARE(rig.card->inputRequests.size(), 1);
    QCOMPARE(rig.card->inputRequests.first().deviceName, QStringLiteral("radio mic"));
    QCOMPARE(rig.card->inputRequests.first().sampleRate, 48000);
    QCOMPARE(rig.card->inputRequests.first().channels, 1);
}

void TestAudioCapture::startWithoutDevice()
{
    EngineRig rig;
    QVERIFY(rig.init());
    rig.card->present = false;
    QVERIFY(!rig.engine.startCapture());
    QVERIFY(!rig.engine.isCapturing());
    rig.card->present = true;
    QVERIFY(rig.engine.startCapture());
}

void TestAudioCapture::stopIsWrittenOnce()
{
    LogCapture log;
    EngineRig rig;
    QVERIFY(rig.init());
    rig.engine.stopCapture();
    QCOMPARE(log.count(QStringLiteral("[Audio] Capture stopped")), 0);
    QVERIFY(rig.engine.startCapture());
    const QPointer<FakeInput> input = rig.card->input;
    rig.engine.stopCapture();
    rig.engine.stopCapture();
    QCOMPARE(log.count(QStringLiteral("[Audio] Capture stopped")), 1);
    QVERIFY(!rig.engine.isCapturing());
    QVERIFY2(!input, "the device was not closed");
    rig.engine.onCaptureTimer(); // a late tick
    QVERIFY(rig.payloads.isEmpty());
}

void TestAudioCapture::shortReadsLoseNothing_data()
{
    QTest::addColumn<int>("portion");
    for (const int portion : {1, 2, 333, 960, 1919, 1920, 100000})
        QTest::addRow("%d bytes per read", portion) << portion;
}

void TestAudioCapture::shortReadsLoseNothing()
{
    QFETCH(int, portion);
    EngineRig rig;
    QVERIFY(rig.init());
    QVERIFY(rig.engine.startCapture());
    rig.card->input->portion = portion;
    const QByteArray pcm = Tone::sine(440, 48000, 960 * 4);
    rig.capture(pcm);
    // Packet for packet what an encoder makes of the unbroken samples.
    QCOMPARE(rig.payloads, encodedApart(pcm, firstQuality(), 960));
    QCOMPARE(rig.payloads.size(), 4);
}

void TestAudioCapture::oneFramePerTick()
{
    EngineRig rig;
    QVERIFY(rig.init());
    QVERIFY(rig.engine.startCapture());
    rig.card->input->pending = Tone::sine(440, 48000, 960 * 3);
    for (int tick = 1; tick <= 3; ++tick) {
        rig.engine.onCaptureTimer();
        QCOMPARE(rig.payloads.size(), tick);
        QCOMPARE(rig.card->input->pending.size(), (3 - tick) * EngineRig::kFrameBytes);
    }
    rig.engine.onCaptureTimer();
    QCOMPARE(rig.payloads.size(), 3);
}

void TestAudioCapture::timerPolls()
{
    EngineRig rig;
    QVERIFY(rig.init());
    QVERIFY(rig.engine.startCapture());
    rig.card->input->pending = Tone::sine(440, 48000, 960 * 5);
    QTRY_COMPARE(rig.payloads.size(), 5);
    const int reads = rig.card->input->reads;
    QTRY_VERIFY(rig.card->input->reads > reads); // it goes on asking
}

void TestAudioCapture::gain_data()
{
    QTest::addColumn<int>("percent");
    for (const int percent : {0, 50, 100, 150, 400})
        QTest::addRow("%d %%", percent) << percent;
}

void TestAudioCapture::gain()
{
    QFETCH(int, percent);
    EngineRig rig;
    QVERIFY(rig.init());
    QVERIFY(rig.engine.startCapture());
    rig.engine.setMicGain(percent);
    const QByteArray pcm = Tone::sine(440, 48000, 960 * 3);
    rig.capture(pcm);

    QByteArray scaled = pcm;
    for (int i = 0; i < Pcm::sampleCount(pcm.size()); ++i) {
        const int value = Pcm::samples(pcm)[i] * percent / 100;
        Pcm::samples(scaled)[i] = static_cast<qint16>(qBound(-32768, value, 32767));
    }
    QCOMPARE(rig.payloads, encodedApart(scaled, firstQuality(), 960));
    QCOMPARE(rig.engine.inputLevel(), Pcm::level(scaled.right(EngineRig::kFrameBytes)));
}

void TestAudioCapture::levelOfEveryFrame()
{
    EngineRig rig;
    QVERIFY(rig.init());
    QVERIFY(rig.engine.startCapture());
    rig.capture(QByteArray(EngineRig::kFrameBytes, '\0'));
    rig.capture(Tone::sine(1000, 48000, 960, 32767));
    rig.capture(Tone::sine(1000, 48000, 960, 3277));
    const QList<QPair<int, int>> expected{{0, 0}, {56, 0}, {38, 0}};
    QCOMPARE(rig.levels, expected);
    QCOMPARE(rig.engine.inputLevel(), 38);
}

// Each direction tells the other's level too, and would keep it up for ever.
void TestAudioCapture::levelsOfWhatHasEnded()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    for (const QByteArray &packet : encodedApart(Tone::sine(1000, 48000, 960 * 10), firstQuality(), 960))
        rig.engine.onAudioReceived(packet);
    const int heard = rig.engine.outputLevel();
    QVERIFY(heard > 0);
    rig.capture(QByteArray(25 * EngineRig::kFrameBytes, '\0')); // half a second
    QCOMPARE(rig.levels.last(), qMakePair(0, heard));
    rig.capture(Tone::sine(1000, 48000, 960, 3277));
    QCOMPARE(rig.levels.last(), qMakePair(38, 0));
    rig.engine.setMicMuted(true);
    QCOMPARE(rig.engine.inputLevel(), 0);
}

void TestAudioCapture::mutedMicrophone()
{
    LogCapture log;
    EngineRig rig;
    QVERIFY(rig.init());
    QVERIFY(rig.engine.startCapture());
    rig.engine.setMicMuted(true);
    QVERIFY(rig.engine.isMicMuted());
    rig.capture(Tone::sine(440, 48000, 960));
    QVERIFY(rig.levels.isEmpty());
    QVERIFY(rig.payloads.isEmpty());
    QCOMPARE(rig.card->input->reads, 0);
    QVERIFY(rig.engine.isCapturing());
    rig.engine.setMicMuted(false);
    rig.engine.onCaptureTimer(); // the device has kept what it could
    QCOMPARE(rig.payloads.size(), 1);
    QCOMPARE(log.linesStartingWith(QStringLiteral("[Audio] Mic muted:")),
             (QStringList{QStringLiteral("[Audio] Mic muted: true"), QStringLiteral("[Audio] Mic muted: false")}));
}

void TestAudioCapture::keyText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("enabled");
    const auto ofLength = [](int length) { return QString::fromLatin1(QByteArray(length, 'k').toBase64()); };
    QTest::addRow("31 bytes") << ofLength(31) << false;
    QTest::addRow("32 bytes") << ofLength(32) << true;
    QTest::addRow("33 bytes") << ofLength(33) << false;
    QTest::addRow("empty") << QString() << false;
    QTest::addRow("no Base64") << QStringLiteral("!!! not a key \u00e4") << false;
    QTest::addRow("64 bytes") << ofLength(64) << false;
}

void TestAudioCapture::keyText()
{
    QFETCH(QString, text);
    QFETCH(bool, enabled);
    LogCapture log;
    EngineRig rig;
    log.clear();
    rig.engine.setEncryptionKey(text);
    QCOMPARE(rig.engine.isEncryptionEnabled(), enabled);
    if (enabled)
        QCOMPARE(log.lines().last(), QStringLiteral("[Audio] Encryption key updated (playback continues)"));
    else
        QVERIFY(log.lines().isEmpty());
    const QByteArray packet(60, 'p');
    QCOMPARE(rig.engine.encryptAudio(packet).size(), enabled ? 100 : 60);
}

void TestAudioCapture::invalidKeySwitchesOff()
{
    EngineRig rig;
    rig.engine.setEncryptionKey(roomKey());
    const QByteArray payload = rig.engine.encryptAudio("packet");
    rig.engine.setEncryptionKey(QStringLiteral("short"));
    QVERIFY(!rig.engine.isEncryptionEnabled());
    QCOMPARE(rig.engine.encryptAudio("packet"), QByteArray("packet"));
    bool attempted = true;
    QVERIFY(!rig.engine.tryOpen(payload, &attempted));
    QVERIFY(!attempted);
}

void TestAudioCapture::encipheredFrames()
{
    EngineRig rig;
    QVERIFY(rig.init());
    rig.engine.setEncryptionKey(roomKey());
    QVERIFY(rig.engine.startCapture());
    const QByteArray pcm = Tone::sine(440, 48000, 960 * 3);
    rig.capture(pcm);
    const QList<QByteArray> packets = encodedApart(pcm, firstQuality(), 960);
    QCOMPARE(rig.payloads.size(), packets.size());
    RoomCipher cipher;
    QVERIFY(cipher.setKey(QByteArray(32, 'k')));
    for (int i = 0; i < packets.size(); ++i) {
        QCOMPARE(rig.payloads[i].size(), packets[i].size() + 40);
        QCOMPARE(cipher.open(rig.payloads[i]).value_or(QByteArray()), packets[i]);
    }
}

void TestAudioCapture::keyDuringCapture()
{
    EngineRig rig;
    QVERIFY(rig.init());
    QVERIFY(rig.engine.startCapture());
    const QPointer<FakeInput> input = rig.card->input;
    const QByteArray pcm = Tone::sine(440, 48000, 960 * 2);
    rig.capture(pcm.left(EngineRig::kFrameBytes));
    rig.engine.setEncryptionKey(roomKey());
    QVERIFY(input);
    rig.capture(pcm.mid(EngineRig::kFrameBytes));
    const QList<QByteArray> packets = encodedApart(pcm, firstQuality(), 960);
    QCOMPARE(rig.payloads.value(0), packets.value(0));
    QCOMPARE(rig.payloads.value(1).size(), packets.value(1).size() + 40);
}

void TestAudioCapture::trialOpening()
{
    EngineRig rig;
    bool attempted = true;
    QVERIFY(!rig.engine.tryOpen(QByteArray(100, 'x'), &attempted));
    QVERIFY2(!attempted, "there is no key yet");

    rig.engine.setEncryptionKey(roomKey());
    const QByteArray payload = rig.engine.encryptAudio("packet");
    QCOMPARE(rig.engine.tryOpen(payload, &attempted).value_or(QByteArray()), QByteArray("packet"));
    QVERIFY(attempted);
    QVERIFY(!rig.engine.tryOpen(QByteArray(39, 'x'), &attempted));
    QVERIFY2(!attempted, "39 bytes are too few to try");
    QVERIFY(!rig.engine.tryOpen(QByteArray(40, 'x'), &attempted));
    QVERIFY(attempted);
    QVERIFY(!rig.engine.tryOpen(QByteArray(40, 'x'), nullptr));
    rig.engine.setEncryptionKey(roomKey('z'));
    QVERIFY(!rig.engine.tryOpen(payload, &attempted));
    QVERIFY(attempted);
}

void TestAudioCapture::stopFromListener()
{
    EngineRig rig;
    QVERIFY(rig.init());
    QVERIFY(rig.engine.startCapture());
    connect(&rig.engine, &AudioEngine::audioEncoded, &rig.engine, [&rig] { rig.engine.stopCapture(); });
    rig.card->input->pending = Tone::sine(440, 48000, 960 * 2);
    QTRY_COMPARE(rig.payloads.size(), 1);
    QVERIFY(!rig.engine.isCapturing());
    QVERIFY(rig.engine.startCapture());
}

// The level is told before the frame is encoded: whoever listens may change the frame size in between.
void TestAudioCapture::qualityFromListener()
{
    EngineRig rig;
    QVERIFY(rig.init());
    QVERIFY(rig.engine.startCapture());
    connect(&rig.engine, &AudioEngine::audioLevelChanged, &rig.engine,
            [&rig] { rig.engine.applyQuality(48000, 32000, 5, 120); });
    rig.card->input->pending = Tone::sine(440, 48000, 960);
    rig.engine.onCaptureTimer();
    QCOMPARE(rig.engine.frameSize(), 5760);
    QCOMPARE(rig.payloads.size(), 1); // the old frame, whole
    QVERIFY(rig.engine.isCapturing());
}

EVOX_TEST_MAIN(TestAudioCapture, QCoreApplication)
#include "tst_audiocapture.moc"
