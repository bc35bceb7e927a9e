#include "audio/EngineRig.h"
#include "audio/Pcm.h"
#include "audio/Tone.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <random>

namespace {

QList<QByteArray> packetsOf(const QByteArray &pcm)
{
    return encodedApart(pcm, firstQuality(), 960);
}

// The same frame in a packet of exactly that size: one frame with padding behind it.
QByteArray padded(const QByteArray &packet, int size)
{
    for (int padding = 0;; ++padding) {
        QByteArray grown;
        grown.append(static_cast<char>(packet[0] | 3)).append('\x41');
        for (int left = padding;; left -= 254) {
            grown.append(static_cast<char>(left >= 255 ? 255 : left));
            if (left < 255)
                break;
        }
        grown.append(packet.mid(1)).append(QByteArray(padding, '\0'));
        if (grown.size() >= size)
            return grown.size() == size ? grown : QByteArray();
    }
}

// What the queue gets for these packets, by a decoder of its own.
QByteArray decodedApart(const QList<QByteArray> &packets)
{
    OpusCodec codec;
    QByteArray all;
    codec.createDecoder(48000, 1);
    for (const QByteArray &packet : packets) {
        QByteArray pcm;
        codec.decode(packet, 960, pcm);
        all.append(Pcm::convertRate(pcm, 48000, 44100));
    }
    return all;
}

} // namespace

class TestAudioPlayback : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void startOpensOnce();
    void startWithoutDevice();
    void notPlayingDropsPayloads();
    void mutedSpeaker();
    void oneFrameBecomes882Samples();
    void packetSize_data();
    void packetSize();
    void payloadSize_data();
    void payloadSize();
    void wrongKeyIsDropped();
    void clearRoomTakesBarePackets();
    void playsWhatWasDecoded();
    void speakerGain_data();
    void speakerGain();
    void trimsToTheNewest200ms();
    void meterOfEveryFifthPacket();
    void lessThanAChunkWaits();
    void refusedChunkIsOfferedAgain();
    void fullDeviceIsOfferedWhatFits();
    void restOfChunkIsLost();
    void meterOfEveryFifthWrite();
    void outputTimerFeeds();
    void roomChange();
    void toneBetweenTwoEngines();
    void hostilePackets();
};

void TestAudioPlayback::initTestCase()
{
    QVERIFY(OpusLibrary::instance().load());
}

void TestAudioPlayback::startOpensOnce()
{
    LogCapture log;
    EngineRig rig;
    rig.engine.setOutputDevice(QStringLiteral("radio tx"));
    QVERIFY(log.contains(QStringLiteral("[Audio] Output device set to: radio tx")));
    log.clear();
    QVERIFY(rig.engine.startPlayback());
    QVERIFY(rig.engine.isPlaying());
    QCOMPARE(log.lines(), (QStringList{QStringLiteral("[Audio] Starting playback (should be called only once)"),
                                       QStringLiteral("[Audio] Playback started successfully")}));
    log.clear();
    QVERIFY(rig.engine.startPlayback());
    QCOMPARE(log.lines(), QStringList{QStringLiteral("[Audio] Playback already active, skipping")});
    QCOMPARE(rig.card->outputRequests.size(), 1);
    QCOMPARE(rig.card->outputRequests.first().deviceName, QStringLiteral("radio tx"));
    QCOMPARE(rig.card->outputRequests.first().sampleRate, 44100);
    log.clear();
    rig.engine.stopPlayback();
    rig.engine.stopPlayback();
    QCOMPARE(log.lines(), QStringList{QStringLiteral("[Audio] stopPlayback - should only happen on app exit!")});
    QVERIFY(!rig.card->output);
}

void TestAudioPlayback::startWithoutDevice()
{
    LogCapture log;
    EngineRig rig;
    rig.card->present = false;
    QVERIFY(!rig.engine.startPlayback());
    QVERIFY(!rig.engine.isPlaying());
    QCOMPARE(log.lines().last(), QStringLiteral("[Audio] Failed to start playback"));
    rig.card->present = true;
    QVERIFY(rig.engine.startPlayback());
}

void TestAudioPlayback::notPlayingDropsPayloads()
{
    EngineRig rig;
    QVERIFY(rig.init());
    rig.engine.onAudioReceived(packetsOf(Tone::sine(440, 48000, 960)).first());
    QCOMPARE(rig.engine.playbackBacklog(), 0);
    rig.feedOutput(1);
}

void TestAudioPlayback::mutedSpeaker()
{
    LogCapture log;
    EngineRig rig;
    QVERIFY(rig.startBoth());
    const QList<QByteArray> packets = packetsOf(Tone::sine(440, 48000, 960 * 3));
    rig.engine.onAudioReceived(packets[0]);
    rig.engine.setSpeakerMuted(true);
    QVERIFY(rig.engine.isSpeakerMuted());
    rig.engine.onAudioReceived(packets[1]);
    rig.feedOutput(3);
    QCOMPARE(rig.card->output->writes, 0);
    QCOMPARE(rig.engine.playbackBacklog(), EngineRig::kChunkBytes);
    rig.engine.setSpeakerMuted(false);
    rig.feedOutput(3); // goes on with what stood there
    QCOMPARE(rig.card->output->played.size(), EngineRig::kChunkBytes);
    QCOMPARE(
        log.linesStartingWith(QStringLiteral("[Audio] Speaker muted:")),
        (QStringList{QStringLiteral("[Audio] Speaker muted: true"), QStringLiteral("[Audio] Speaker muted: false")}));
}

void TestAudioPlayback::oneFrameBecomes882Samples()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    rig.engine.onAudioReceived(packetsOf(Tone::sine(440, 48000, 960)).first());
    QCOMPARE(rig.engine.playbackBacklog(), 882 * 2);
}

void TestAudioPlayback::packetSize_data()
{
    QTest::addColumn<QByteArray>("packet");
    QTest::addColumn<bool>("plays");
    const QByteArray real = packetsOf(Tone::sine(440, 48000, 960)).first();
    QTest::addRow("none") << QByteArray() << false;
    QTest::addRow("9 bytes") << real.left(9) << false;
    QTest::addRow("10 bytes") << real.left(10) << true; // the codec makes something of any start of a packet
    QTest::addRow("whole") << real << true;
    QTest::addRow("4000 bytes") << padded(real, 4000) << true;
    QTest::addRow("4001 bytes") << padded(real, 4001) << false;
    QTest::addRow("no packet of the codec") << QByteArray(20, '\xff') << false;
}

void TestAudioPlayback::packetSize()
{
    QFETCH(QByteArray, packet);
    QFETCH(bool, plays);
    EngineRig rig;
    QVERIFY(rig.startBoth());
    rig.engine.onAudioReceived(packet);
    QCOMPARE(rig.engine.playbackBacklog(), plays ? EngineRig::kChunkBytes : 0);
}

void TestAudioPlayback::payloadSize_data()
{
    QTest::addColumn<int>("message");
    QTest::addColumn<int>("payload");
    QTest::addColumn<QString>("line");
    QTest::addRow("empty message is not opened") << 0 << 40 << QStringLiteral("[Audio] Decrypt FAILED #");
    QTest::addRow("one byte opens and is no packet") << 1 << 41 << QStringLiteral("[Audio] Decode FAILED #");
}

void TestAudioPlayback::payloadSize()
{
    QFETCH(int, message);
    QFETCH(int, payload);
    QFETCH(QString, line);
    EngineRig rig;
    QVERIFY(rig.startBoth());
    rig.engine.setEncryptionKey(roomKey());
    const QByteArray sealed = rig.engine.encryptAudio(QByteArray(message, 'p'));
    QCOMPARE(sealed.size(), payload);
    LogCapture log;
    // Enough to reach a fiftieth, whatever has been counted before.
    for (int i = 0; i < 50; ++i)
        rig.engine.onAudioReceived(sealed);
    QVERIFY(!log.lines().isEmpty());
    QCOMPARE(log.count(line), log.lines().size());
}

void TestAudioPlayback::wrongKeyIsDropped()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    rig.engine.setEncryptionKey(roomKey('a'));
    const QByteArray packet = packetsOf(Tone::sine(440, 48000, 960)).first();
    const QByteArray sealed = rig.engine.encryptAudio(packet);
    rig.engine.setEncryptionKey(roomKey('b'));
    rig.engine.onAudioReceived(sealed);
    rig.engine.onAudioReceived(packet); // a bare packet is none for this room
    rig.engine.onAudioReceived(QByteArray(39, 'x'));
    QCOMPARE(rig.engine.playbackBacklog(), 0);
    rig.engine.setEncryptionKey(roomKey('a'));
    rig.engine.onAudioReceived(sealed);
    QCOMPARE(rig.engine.playbackBacklog(), EngineRig::kChunkBytes);
}

void TestAudioPlayback::clearRoomTakesBarePackets()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    rig.engine.setEncryptionKey(roomKey());
    rig.engine.setEncryptionKey(QStringLiteral("none"));
    rig.engine.onAudioReceived(packetsOf(Tone::sine(440, 48000, 960)).first());
    QCOMPARE(rig.engine.playbackBacklog(), EngineRig::kChunkBytes);
}

void TestAudioPlayback::playsWhatWasDecoded()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    rig.engine.setEncryptionKey(roomKey());
    const QList<QByteArray> packets = packetsOf(Tone::sine(440, 48000, 960 * 10));
    for (const QByteArray &packet : packets)
        rig.engine.onAudioReceived(rig.engine.encryptAudio(packet));
    rig.feedOutput(20);
    QCOMPARE(rig.card->output->played, decodedApart(packets));
    QCOMPARE(rig.card->output->writes, 10);
}

void TestAudioPlayback::speakerGain_data()
{
    QTest::addColumn<int>("percent");
    for (const int percent : {0, 50, 100, 150, 1000})
        QTest::addRow("%d %%", percent) << percent;
}

void TestAudioPlayback::speakerGain()
{
    QFETCH(int, percent);
    EngineRig rig;
    QVERIFY(rig.startBoth());
    rig.engine.setSpeakerGain(percent);
    const QList<QByteArray> packets = packetsOf(Tone::sine(440, 48000, 960 * 3));
    for (const QByteArray &packet : packets)
        rig.engine.onAudioReceived(packet);
    rig.feedOutput(3);
    const QByteArray unity = decodedApart(packets);
    QCOMPARE(rig.card->output->played.size(), unity.size());
    for (int i = 0; i < Pcm::sampleCount(unity.size()); ++i) {
        const int expected = qBound(-32768, Pcm::samples(unity)[i] * percent / 100, 32767);
        QCOMPARE(int(Pcm::samples(qAsConst(rig.card->output->played))[i]), expected);
    }
}

void TestAudioPlayback::trimsToTheNewest200ms()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    const QList<QByteArray> packets = packetsOf(Tone::sine(440, 48000, 960 * 26));
    for (int i = 0; i < 25; ++i)
        rig.engine.onAudioReceived(packets[i]);
    QCOMPARE(rig.engine.playbackBacklog(), 44100);
    rig.engine.onAudioReceived(packets[25]);
    QCOMPARE(rig.engine.playbackBacklog(), 17640);
    rig.feedOutput(10);
    QCOMPARE(rig.card->output->played, decodedApart(packets).right(17640));
}

void TestAudioPlayback::meterOfEveryFifthPacket()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    rig.engine.setSpeakerGain(0); // the meter shows what was received
    const QList<QByteArray> packets = packetsOf(Tone::sine(1000, 48000, 960 * 20, 32000));
    for (const QByteArray &packet : packets)
        rig.engine.onAudioReceived(packet);
    QCOMPARE(rig.levels.size(), 4);
    QVERIFY2(qAbs(rig.engine.outputLevel() - 56) <= 2, qPrintable(QString::number(rig.engine.outputLevel())));
    QCOMPARE(rig.levels.last(), qMakePair(0, rig.engine.outputLevel()));
}

void TestAudioPlayback::lessThanAChunkWaits()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    rig.engine.applyQuality(48000, 32000, 5, 10);
    rig.engine.onAudioReceived(
        encodedApart(Tone::sine(440, 48000, 480), {OpusApplication::Audio, 48000, 1, 32000, 5}, 480).first());
    QCOMPARE(rig.engine.playbackBacklog(), 882);
    rig.engine.applyQuality(48000, 32000, 5, 20);
    rig.feedOutput(3);
    QCOMPARE(rig.card->output->writes, 0);
    QCOMPARE(rig.engine.playbackBacklog(), 882);
}

void TestAudioPlayback::refusedChunkIsOfferedAgain()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    const QList<QByteArray> packets = packetsOf(Tone::sine(440, 48000, 960 * 3));
    for (const QByteArray &packet : packets)
        rig.engine.onAudioReceived(packet);
    rig.card->output->answers = {0, -1, 0};
    rig.feedOutput(3);
    QCOMPARE(rig.card->output->writes, 3);
    QCOMPARE(rig.engine.playbackBacklog(), 3 * EngineRig::kChunkBytes);
    rig.feedOutput(3);
    QCOMPARE(rig.card->output->played, decodedApart(packets));
}

void TestAudioPlayback::fullDeviceIsOfferedWhatFits()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    const QList<QByteArray> packets = packetsOf(Tone::sine(440, 48000, 960 * 2));
    for (const QByteArray &packet : packets)
        rig.engine.onAudioReceived(packet);
    rig.card->output->room = 1; // less than a sample
    rig.feedOutput(3);
    QCOMPARE(rig.card->output->writes, 0);
    rig.card->output->room = 509;
    rig.feedOutput(1);
    QCOMPARE(rig.card->output->played.size(), 508);
    rig.card->output->room = EngineRig::kChunkBytes;
    rig.feedOutput(1);
    QCOMPARE(rig.card->output->played, decodedApart(packets).left(508 + EngineRig::kChunkBytes));
}

void TestAudioPlayback::restOfChunkIsLost()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    const QList<QByteArray> packets = packetsOf(Tone::sine(440, 48000, 960 * 2));
    for (const QByteArray &packet : packets)
        rig.engine.onAudioReceived(packet);
    rig.card->output->answers = {508};
    rig.feedOutput(2);
    const QByteArray all = decodedApart(packets);
    QCOMPARE(rig.card->output->played, all.left(508) + all.mid(EngineRig::kChunkBytes));
}

void TestAudioPlayback::meterOfEveryFifthWrite()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    rig.engine.setSpeakerGain(50);
    const QList<QByteArray> packets = packetsOf(Tone::sine(1000, 48000, 960 * 20, 32000));
    for (const QByteArray &packet : packets)
        rig.engine.onAudioReceived(packet);
    rig.levels.clear();
    rig.feedOutput(20);
    QCOMPARE(rig.levels.size(), 4);
    // Half of what was received: the meter follows the gain here. 20 log10(0.5) is 5.5 steps.
    QVERIFY2(qAbs(rig.engine.outputLevel() - 51) <= 2, qPrintable(QString::number(rig.engine.outputLevel())));
}

void TestAudioPlayback::outputTimerFeeds()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    const QList<QByteArray> packets = packetsOf(Tone::sine(440, 48000, 960 * 5));
    for (const QByteArray &packet : packets)
        rig.engine.onAudioReceived(packet);
    QTRY_COMPARE(rig.card->output->played, decodedApart(packets));
}

void TestAudioPlayback::roomChange()
{
    LogCapture log;
    EngineRig rig;
    QVERIFY(rig.startBoth());
    rig.engine.setEncryptionKey(roomKey('a'));
    const QList<QByteArray> before = packetsOf(Tone::noise(960 * 5));
    for (const QByteArray &packet : before)
        rig.engine.onAudioReceived(rig.engine.encryptAudio(packet));
    log.clear();
    const QPointer<FakeOutput> output = rig.card->output;
    rig.engine.clearBuffers();
    rig.engine.resetDecoder();
    rig.engine.setEncryptionKey(roomKey('b'));
    QCOMPARE(log.lines(), (QStringList{QStringLiteral("[Audio] Buffers cleared (playback continues)"),
                                       QStringLiteral("[Audio] Decoder reset successfully"),
                                       QStringLiteral("[Audio] Encryption key updated (playback continues)")}));
    QVERIFY2(output, "the device was closed");

    const QList<QByteArray> after = packetsOf(Tone::sine(440, 48000, 960 * 2));
    for (const QByteArray &packet : after)
        rig.engine.onAudioReceived(rig.engine.encryptAudio(packet));
    rig.feedOutput(2);
    QCOMPARE(output->played, decodedApart(after)); // nothing of the old room, not even in the decoder's memory
}

void TestAudioPlayback::toneBetweenTwoEngines()
{
    EngineRig sender;
    EngineRig receiver;
    QVERIFY(sender.startBoth());
    QVERIFY(receiver.startBoth());
    sender.engine.setEncryptionKey(roomKey());
    receiver.engine.setEncryptionKey(roomKey());
    connect(&sender.engine, &AudioEngine::audioEncoded, &receiver.engine, [&receiver](const QByteArray &payload) {
        receiver.engine.onAudioReceived(payload);
        receiver.engine.onOutputBufferTimer();
    });
    sender.capture(Tone::sine(880, 48000, 960 * 50));
    const QByteArray heard = receiver.card->output->played;
    QCOMPARE(heard.size(), 50 * EngineRig::kChunkBytes);
    const QByteArray settled = heard.mid(5 * EngineRig::kChunkBytes);
    QVERIFY(qAbs(Tone::frequency(settled, 44100) - 880) < 2);
    QVERIFY(qAbs(Tone::rms(settled) - 12000 / std::sqrt(2.0)) < 1500);
}

void TestAudioPlayback::hostilePackets()
{
    EngineRig rig;
    QVERIFY(rig.startBoth());
    std::minstd_rand random(7);
    for (int i = 0; i < 20000; ++i) {
        if (i == 10000)
            rig.engine.setEncryptionKey(roomKey());
        if (i == 15000)
            rig.engine.applyQuality(44100, 1, 1, 1); // no decoder any more
        QByteArray payload(static_cast<int>(random() % 200), Qt::Uninitialized);
        for (char &byte : payload)
            byte = static_cast<char>(random());
        rig.engine.onAudioReceived(payload);
        rig.engine.onOutputBufferTimer();
        QVERIFY(rig.engine.playbackBacklog() <= 44100);
    }
}

EVOX_TEST_MAIN(TestAudioPlayback, QCoreApplication)
#include "tst_audioplayback.moc"
