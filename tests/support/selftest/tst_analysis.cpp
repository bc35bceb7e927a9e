#include "support/Signals.h"
#include "support/TestMain.h"
#include "support/WavFile.h"

#include <QTemporaryDir>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr int kRate = 48000;
constexpr int kSampleSize = 2;

qint16 sampleAt(const QByteArray &pcm, int index)
{
    qint16 sample = 0;
    std::memcpy(&sample, pcm.constData() + index * kSampleSize, kSampleSize);
    return sample;
}

/// The samples at another rate and volume, by linear interpolation.
QByteArray converted(const QByteArray &pcm, int fromRate, int toRate, double volume)
{
    const int count = pcm.size() / kSampleSize;
    QByteArray out;
    for (int i = 0; qint64{i} * fromRate / toRate < count - 1; ++i) {
        const double place = static_cast<double>(i) * fromRate / toRate;
        const int index = static_cast<int>(place);
        const double value = sampleAt(pcm, index) * (index + 1 - place) + sampleAt(pcm, index + 1) * (place - index);
        const auto sample = static_cast<qint16>(value * volume);
        out.append(reinterpret_cast<const char *>(&sample), kSampleSize);
    }
    return out;
}

/// Bursts whose loudness is as irregular as speech, different for each seed.
QByteArray babble(unsigned seed, int rate)
{
    QByteArray pcm;
    for (int burst = 0; burst < 30; ++burst) {
        seed = seed * 1103515245U + 12345U;
        const int amplitude = static_cast<int>(seed >> 16 & 0x3fff);
        const int milliseconds = 40 + static_cast<int>(seed >> 8 & 0x7f);
        pcm += Signals::sine(180 + burst * 13, rate, rate * milliseconds / 1000, amplitude);
    }
    return pcm;
}

} // namespace

class AnalysisTest final : public QObject
{
    Q_OBJECT

private slots:
    void measuresTones_data();
    void measuresTones();
    void measuresSilence();
    void mixes();
    void correlatesValues_data();
    void correlatesValues();
    void findsDelays_data();
    void findsDelays();
    void tellsDifferentSoundsApart();
    void noticesGaps();
    void followsASlip();
    void speaks();
    void keepsSoundsInFiles();
    void readsForeignFiles();
    void refusesBadFiles_data();
    void refusesBadFiles();
};

void AnalysisTest::measuresTones_data()
{
    QTest::addColumn<double>("frequency");
    QTest::addColumn<int>("amplitude");
    QTest::newRow("low and loud") << 300.0 << 30000;
    QTest::newRow("between two steps") << 1000.7 << 12000;
    QTest::newRow("high and faint") << 3400.0 << 100;
}

void AnalysisTest::measuresTones()
{
    QFETCH(double, frequency);
    QFETCH(int, amplitude);
    const QByteArray tone = Signals::sine(frequency, kRate, kRate, amplitude);
    QVERIFY(qAbs(Signals::toneAmplitude(tone, kRate, frequency) - amplitude) < amplitude * 0.02 + 1);
    QVERIFY(Signals::toneAmplitude(tone, kRate, frequency * 1.5) < amplitude * 0.02 + 1);
    QVERIFY(qAbs(Signals::rms(tone) - amplitude / M_SQRT2) < amplitude * 0.02 + 1);
}

void AnalysisTest::measuresSilence()
{
    const QByteArray silence = Signals::silence(kRate);
    QCOMPARE(Signals::rms(silence), 0.0);
    QCOMPARE(Signals::toneAmplitude(silence, kRate, 1000), 0.0);
    QCOMPARE(Signals::rms({}), 0.0);
    QCOMPARE(Signals::toneAmplitude({}, kRate, 1000), 0.0);
    const Signals::Likeness likeness = Signals::compare(babble(1, kRate), kRate, silence, kRate);
    QCOMPARE(likeness.similarity, 0.0);
    QCOMPARE(Signals::compare({}, kRate, silence, kRate).similarity, 0.0);
}

void AnalysisTest::mixes()
{
    const QByteArray hiss = Signals::noise(kRate, 100);
    QVERIFY(qAbs(Signals::rms(hiss) - 100 / std::sqrt(3.0)) < 2);
    const QByteArray sum = Signals::mixed(hiss, Signals::sine(1000, kRate, kRate / 2), kRate / 4);
    QCOMPARE(sum.size(), hiss.size());
    QCOMPARE(sum.left(kRate / 4 * kSampleSize), hiss.left(kRate / 4 * kSampleSize));
    QVERIFY(Signals::toneAmplitude(sum.mid(kRate / 4 * kSampleSize, kRate), kRate, 1000) > 11900);
    const QByteArray loud = Signals::sine(1000, kRate, 48, 30000);
    QCOMPARE(sampleAt(Signals::mixed(loud, loud, 0), 12), qint16(32767));
    QCOMPARE(Signals::mixed(loud, loud, 40).size(), loud.size());
}

void AnalysisTest::correlatesValues_data()
{
    QTest::addColumn<QVector<double>>("heard");
    QTest::addColumn<double>("similarity");
    QTest::addColumn<int>("lag");
    QTest::newRow("the same") << QVector<double>{1, 5, 2, 8} << 1.0 << 0;
    QTest::newRow("louder and later") << QVector<double>{0, 0, 0, 2, 10, 4, 16} << 1.0 << 3;
    QTest::newRow("earlier, its end silent") << QVector<double>{5, 2, 8, 0, 0} << 0.94 << -1;
    QTest::newRow("constant") << QVector<double>{3, 3, 3, 3} << 0.0 << 0;
}

void AnalysisTest::correlatesValues()
{
    QFETCH(QVector<double>, heard);
    QFETCH(double, similarity);
    QFETCH(int, lag);
    const Signals::Match match = Signals::correlate({1, 5, 2, 8}, heard);
    if (similarity > 0) {
        QCOMPARE(match.lag, lag);
        QVERIFY2(qAbs(match.similarity - similarity) < 0.06, qPrintable(QString::number(match.similarity)));
    } else {
        QVERIFY(match.similarity < 0.7); // only its edge against the silence around it
    }
}

void AnalysisTest::findsDelays_data()
{
    QTest::addColumn<int>("delay"); // ms
    QTest::addColumn<int>("rate");
    QTest::addColumn<double>("volume");
    QTest::newRow("none") << 0 << kRate << 1.0;
    QTest::newRow("short") << 35 << kRate << 1.0;
    QTest::newRow("long, another rate, faint") << 740 << 44100 << 0.2;
}

void AnalysisTest::findsDelays()
{
    QFETCH(int, delay);
    QFETCH(int, rate);
    QFETCH(double, volume);
    const QByteArray said = babble(7, kRate);
    const QByteArray heard =
        Signals::silence(rate * delay / 1000) + converted(said, kRate, rate, volume) + Signals::silence(rate / 2);
    const Signals::Likeness likeness = Signals::compare(said, kRate, heard, rate);
    QVERIFY2(likeness.similarity > 0.98, qPrintable(QString::number(likeness.similarity)));
    QVERIFY(qAbs(likeness.delay.count() - delay) <= Signals::kEnvelopeStep.count());
}

void AnalysisTest::tellsDifferentSoundsApart()
{
    const Signals::Likeness likeness = Signals::compare(babble(1, kRate), kRate, babble(2, kRate), kRate);
    QVERIFY2(likeness.similarity < 0.6, qPrintable(QString::number(likeness.similarity)));
}

void AnalysisTest::noticesGaps()
{
    const QByteArray said = babble(3, kRate);
    QByteArray heard = said;
    const int third = heard.size() / 6 * kSampleSize;
    heard.replace(third, third, Signals::silence(third / kSampleSize));
    const double whole = Signals::compare(said, kRate, said, kRate).similarity;
    const double torn = Signals::compare(said, kRate, heard, kRate).similarity;
    QVERIFY(whole > 0.99);
    QVERIFY2(torn < 0.9, qPrintable(QString::number(torn)));
}

void AnalysisTest::followsASlip()
{
    const QByteArray said = babble(3, kRate);
    QByteArray heard = said;
    heard.insert(kRate * kSampleSize * 3 / 2, Signals::silence(kRate / 10)); // 100 ms after 1.5 s
    const double slipped = Signals::compare(said, kRate, heard, kRate).similarity;
    QVERIFY2(slipped > 0.85, qPrintable(QString::number(slipped)));
    const double whole = Signals::correlate(Signals::envelope(said, kRate), Signals::envelope(heard, kRate)).similarity;
    QVERIFY(whole < slipped);
}

void AnalysisTest::speaks()
{
    const Sound one = speech(QStringLiteral("Good evening from the gateway in Bandung."));
    const Sound two = speech(QStringLiteral("The quick brown fox jumps over the lazy dog."));
    QVERIFY2(!one.isNull(), "espeak-ng is missing");
    QVERIFY(one.seconds() > 1);
    QVERIFY(Signals::rms(one.pcm) > 500);
    const double other = Signals::compare(one.pcm, one.rate, two.pcm, two.rate).similarity;
    QVERIFY2(other < 0.6, qPrintable(QString::number(other)));
    QVERIFY(Signals::compare(one.pcm, one.rate, converted(one.pcm, one.rate, 44100, 0.5), 44100).similarity > 0.98);
}

void AnalysisTest::keepsSoundsInFiles()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("tone.wav"));
    const Sound tone{Signals::sine(440, 44100, 1001), 44100};
    QVERIFY(WavFile::write(path, tone));
    QString error;
    const Sound read = WavFile::read(path, &error);
    QVERIFY2(!read.isNull(), qPrintable(error));
    QCOMPARE(read.rate, tone.rate);
    QCOMPARE(read.pcm, tone.pcm);
    QVERIFY(!WavFile::write(folder.filePath(QStringLiteral("none/tone.wav")), tone));
}

void AnalysisTest::readsForeignFiles()
{
    // Two channels, an extra chunk of odd size, and the size of the samples unknown to the writer.
    const auto text = [](const char *hex) { return QByteArray::fromHex(hex); };
    const QByteArray bytes = "RIFF" + text("ffffffff") + "WAVELIST" + text("03000000") + "abc" + text("00") + "fmt " +
                             text("10000000 0100 0200 401f0000 007d0000 0400 1000") + "data" + text("ffffffff") +
                             text("0a00 1400 f6ff ecff 0100");
    const Sound sound = WavFile::parse(bytes);
    QCOMPARE(sound.rate, 8000);
    QCOMPARE(sound.pcm, text("0f00 f1ff")); // (10 + 20) / 2, (-10 - 20) / 2; half a frame is left out
}

void AnalysisTest::refusesBadFiles_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const auto text = [](const char *hex) { return QByteArray::fromHex(hex); };
    const QByteArray head = "RIFF" + text("00000000") + "WAVE";
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("something else") << QByteArray("PNG and so on, not a sound");
    QTest::newRow("no chunks") << head;
    QTest::newRow("cut in the format") << head + "fmt " + text("10000000 0100");
    QTest::newRow("8 bits") << head + "fmt " + text("10000000 0100 0100 401f0000 401f0000 0100 0800");
    QTest::newRow("compressed") << head + "fmt " + text("10000000 0600 0100 401f0000 401f0000 0100 1000");
    QTest::newRow("no channels") << head + "fmt " + text("10000000 0100 0000 401f0000 803e0000 0200 1000");
    QTest::newRow("rate 0") << head + "fmt " + text("10000000 0100 0100 00000000 00000000 0200 1000");
    QTest::newRow("rate beyond any card") << head + "fmt " + text("10000000 0100 0100 ffffffff 00000000 0200 1000");
    QTest::newRow("samples without a format") << head + "data" + text("02000000 0100");
    QTest::newRow("endless") << head + "fmt " + text("10000000 0100 0100 01000000 02000000 0200 1000") + "data" +
                                    text("ffffffff") + QByteArray(2000, '\0');
}

void AnalysisTest::refusesBadFiles()
{
    QFETCH(QByteArray, bytes);
    QString error;
    QVERIFY(WavFile::parse(bytes, &error).isNull());
    QVERIFY(!error.isEmpty());
}

EVOX_TEST_MAIN(AnalysisTest, QCoreApplication)
#include "tst_analysis.moc"
