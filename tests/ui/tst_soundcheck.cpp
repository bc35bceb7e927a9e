#include "support/TestMain.h"
#include "ui/settings/SoundCheck.h"

#include <QVector>
#include <QtMath>

namespace {

constexpr int kRate = 48000; // Hz

QByteArray pcm(const QVector<qint16> &samples)
{
    return {reinterpret_cast<const char *>(samples.constData()), samples.size() * 2};
}

QVector<qint16> samplesOf(const QByteArray &bytes)
{
    const auto *begin = reinterpret_cast<const qint16 *>(bytes.constData());
    return {begin, begin + bytes.size() / 2};
}

} // namespace

class SoundCheckTest final : public QObject
{
    Q_OBJECT

private slots:
    void asksForPlainPcm();
    void levelOfRecording_data();
    void levelOfRecording();
    void heardAboveTen_data();
    void heardAboveTen();
    void toneIsHalfASecond_data();
    void toneIsHalfASecond();
    void toneIsTheSameOnEveryChannel();
    void toneOfImpossibleFormats();
};

void SoundCheckTest::asksForPlainPcm()
{
    const QAudioFormat format = SoundCheck::format();
    QCOMPARE(format.sampleRate(), 48000);
    QCOMPARE(format.channelCount(), 1);
    QCOMPARE(format.sampleSize(), 16);
    QCOMPARE(format.sampleType(), QAudioFormat::SignedInt);
    QCOMPARE(format.byteOrder(), QAudioFormat::LittleEndian);
    QCOMPARE(format.codec(), QStringLiteral("audio/pcm"));
}

void SoundCheckTest::levelOfRecording_data()
{
    QTest::addColumn<QByteArray>("recording");
    QTest::addColumn<int>("level");
    QTest::newRow("nothing") << QByteArray() << 0;
    QTest::newRow("one byte") << QByteArray("\x7f") << 0;
    QTest::newRow("silence") << pcm({0, 0, 0}) << 0;
    QTest::newRow("loudest of exactly 10") << pcm({0, 3604, -1}) << 10;
    QTest::newRow("least of 11") << pcm({0, 3605, -1}) << 11;
    QTest::newRow("negative") << pcm({5, -3605, 5}) << 11;
    QTest::newRow("highest sample") << pcm({32767}) << 99;
    QTest::newRow("lowest sample") << pcm({-32768}) << 100;
    QTest::newRow("odd last byte is no sample") << pcm({100}) + '\x7f' << 0;
}

void SoundCheckTest::levelOfRecording()
{
    QFETCH(QByteArray, recording);
    QTEST(SoundCheck::level(recording), "level");
}

void SoundCheckTest::heardAboveTen_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("heard");
    QTest::newRow("0") << 0 << false;
    QTest::newRow("10") << 10 << false;
    QTest::newRow("11") << 11 << true;
    QTest::newRow("100") << 100 << true;
}

void SoundCheckTest::heardAboveTen()
{
    QFETCH(int, level);
    QTEST(SoundCheck::isHeard(level), "heard");
}

void SoundCheckTest::toneIsHalfASecond_data()
{
    QTest::addColumn<int>("rate");
    QTest::addColumn<int>("samples");
    QTest::newRow("48000 Hz") << 48000 << 24000;
    QTest::newRow("44100 Hz") << 44100 << 22050;
    QTest::newRow("11025 Hz") << 11025 << 5512;
}

void SoundCheckTest::toneIsHalfASecond()
{
    QFETCH(int, rate);
    const QVector<qint16> tone = samplesOf(SoundCheck::tone(rate, 1));
    QTEST(tone.size(), "samples");
    for (int i = 0; i < tone.size(); ++i)
        QCOMPARE(int{tone.at(i)}, static_cast<int>(16000 * qSin(2 * M_PI * 440 * i / rate)));
}

void SoundCheckTest::toneIsTheSameOnEveryChannel()
{
    const QVector<qint16> mono = samplesOf(SoundCheck::tone(kRate, 1));
    const QVector<qint16> stereo = samplesOf(SoundCheck::tone(kRate, 2));
    QCOMPARE(stereo.size(), 2 * mono.size());
    for (int i = 0; i < mono.size(); ++i) {
        QCOMPARE(stereo.at(2 * i), mono.at(i));
        QCOMPARE(stereo.at(2 * i + 1), mono.at(i));
    }
}

void SoundCheckTest::toneOfImpossibleFormats()
{
    QVERIFY(SoundCheck::tone(-1, 1).isEmpty());
    QVERIFY(SoundCheck::tone(0, 1).isEmpty());
    QVERIFY(SoundCheck::tone(2147483647, 1).isEmpty());
    QVERIFY(SoundCheck::tone(kRate, -1).isEmpty());
    QVERIFY(SoundCheck::tone(kRate, 2147483647).isEmpty());
}

EVOX_TEST_MAIN(SoundCheckTest, QCoreApplication)
#include "tst_soundcheck.moc"
