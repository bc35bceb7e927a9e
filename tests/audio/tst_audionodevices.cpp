#include "audio/AudioEngine.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <QTemporaryDir>

// A machine without a sound server, and without a card.
class TestAudioNoDevices : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void nothingOpens();

private:
    QTemporaryDir m_folder;
};

void TestAudioNoDevices::initTestCase()
{
    const QByteArray nowhere = QFile::encodeName(m_folder.filePath(QStringLiteral("nothing")));
    qputenv("PULSE_SERVER", "unix:" + nowhere);
    qputenv("PULSE_RUNTIME_PATH", QFile::encodeName(m_folder.path()));
    QFile silence(QString::fromUtf8(nowhere) + QStringLiteral(".conf"));
    QVERIFY(silence.open(QIODevice::WriteOnly));
    qputenv("ALSA_CONFIG_PATH", QFile::encodeName(silence.fileName()));
}

void TestAudioNoDevices::nothingOpens()
{
    LogCapture log;
    log.expectWarning(QString()); // the sound system's own complaints
    AudioEngine engine;
    QVERIFY(engine.init(0, 0, 0, 0, 0));
    engine.setInputDevice(QStringLiteral("radio mic"));
    engine.setOutputDevice(QStringLiteral("radio tx"));
    QVERIFY(!engine.startCapture());
    QVERIFY(!engine.isCapturing());
    QVERIFY(!engine.startPlayback());
    QVERIFY(!engine.isPlaying());
    QCOMPARE(log.lines().last(), QStringLiteral("[Audio] Failed to start playback"));
    engine.onCaptureTimer();
    engine.onOutputBufferTimer();
    engine.onAudioReceived(QByteArray(100, 'x'));
    engine.applyQuality(24000, 16000, 5, 20);
    QVERIFY(!engine.isCapturing());
}

EVOX_TEST_MAIN(TestAudioNoDevices, QCoreApplication)
#include "tst_audionodevices.moc"
