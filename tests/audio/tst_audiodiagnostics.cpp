#include "audio/EngineRig.h"
#include "audio/Tone.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <QRegularExpression>

// The counters belong to the process: each test here has one to itself, and takes two engines to show it.
class TestAudioDiagnostics : public QObject
{
    Q_OBJECT

private slots:
    void encodes();
    void enciphering();
    void decipherFailures();
    void decodeFailuresAndErrors();
    void noKeyInTheLog();
};

void TestAudioDiagnostics::encodes()
{
    LogCapture log;
    const QByteArray pcm = Tone::sine(440, 48000, 960 * 4);
    QList<QByteArray> packets;
    for (int round = 0; round < 2; ++round) {
        EngineRig rig;
        QVERIFY(rig.init());
        QVERIFY(rig.engine.startCapture());
        rig.capture(pcm);
        packets.append(rig.payloads);
    }
    const QStringList lines = log.linesStartingWith(QStringLiteral("[Opus] Encode #"));
    QCOMPARE(lines.size(), 5);
    for (int i = 0; i < lines.size(); ++i) {
        QCOMPARE(lines[i], QStringLiteral("[Opus] Encode # %1 PCM size: 1920 frame size: 960 encoded size: %2 "
                                          "sample rate: 48000 bitrate: 32000 complexity: 5")
                               .arg(i + 1)
                               .arg(packets[i].size()));
    }
}

void TestAudioDiagnostics::enciphering()
{
    LogCapture log;
    EngineRig first;
    for (int i = 0; i < 3; ++i)
        first.engine.encryptAudio(QByteArray(60, 'p'));
    EngineRig second;
    second.engine.setEncryptionKey(roomKey());
    for (int i = 0; i < 60; ++i)
        second.engine.encryptAudio(QByteArray(60, 'p'));
    for (int i = 0; i < 60; ++i)
        first.engine.encryptAudio(QByteArray(60, 'p'));
    const QString raw = QStringLiteral("[TX] encryptAudio - encryption disabled, sending raw");
    const QString sealed = QStringLiteral("[TX] encryptAudio # %1 raw size: 60 encrypted size: 100 key size: 32");
    QCOMPARE(log.linesStartingWith(QStringLiteral("[TX] ")),
             (QStringList{raw, raw, raw, sealed.arg(4), sealed.arg(5)}));
}

void TestAudioDiagnostics::decipherFailures()
{
    LogCapture log;
    for (int round = 0; round < 3; ++round) {
        EngineRig rig;
        QVERIFY(rig.startBoth());
        rig.engine.setEncryptionKey(roomKey());
        for (int i = 0; i < 37; ++i)
            rig.engine.onAudioReceived(QByteArray(39 + i, 'x'));
    }
    QStringList expected;
    for (const int number : {1, 2, 3, 4, 5, 50, 100}) {
        expected.append(
            QStringLiteral("[Audio] Decrypt FAILED # %1 dataSize: %2").arg(number).arg(39 + (number - 1) % 37));
    }
    QCOMPARE(log.linesStartingWith(QStringLiteral("[Audio] Decrypt FAILED")), expected);
}

void TestAudioDiagnostics::decodeFailuresAndErrors()
{
    LogCapture log;
    EngineRig rig;
    QVERIFY(rig.startBoth());
    for (int i = 0; i < 60; ++i)
        rig.engine.onAudioReceived(QByteArray(9, 'x'));
    for (int i = 0; i < 101; ++i)
        rig.engine.onAudioReceived(QByteArray(20, '\xff')); // more frames than a packet may have
    QStringList failures;
    for (const int number : {1, 2, 3, 4, 5, 50})
        failures.append(QStringLiteral("[Audio] Decode FAILED # %1 opusSize: 9 frameSize: 960").arg(number));
    for (const int number : {100, 150})
        failures.append(QStringLiteral("[Audio] Decode FAILED # %1 opusSize: 20 frameSize: 960").arg(number));
    QCOMPARE(log.linesStartingWith(QStringLiteral("[Audio] Decode FAILED")), failures);
    const QString error = QStringLiteral("[Opus] Decode error: -4 size: 20");
    QCOMPARE(log.linesStartingWith(QStringLiteral("[Opus] Decode error:")), (QStringList{error, error}));
}

void TestAudioDiagnostics::noKeyInTheLog()
{
    LogCapture log;
    EngineRig rig;
    QVERIFY(rig.startBoth());
    const QByteArray key = QByteArray::fromHex("00112233445566778899aabbccddeeff0123456789abcdeffedcba9876543210");
    rig.engine.setEncryptionKey(QString::fromLatin1(key.toBase64()));
    rig.capture(Tone::sine(440, 48000, 960 * 10));
    for (const QByteArray &payload : qAsConst(rig.payloads))
        rig.engine.onAudioReceived(payload);
    const QString all = log.lines().join(QLatin1Char('\n'));
    QVERIFY(all.contains(QStringLiteral("[Audio] Encryption key updated")));
    QVERIFY(!all.contains(QString::fromLatin1(key.toBase64())));
    QVERIFY(!all.contains(QString::fromLatin1(key.toHex()), Qt::CaseInsensitive));
}

EVOX_TEST_MAIN(TestAudioDiagnostics, QCoreApplication)
#include "tst_audiodiagnostics.moc"
