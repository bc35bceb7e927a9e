#include "audio/Pcm.h"
#include "support/TestMain.h"

#include <QVector>
#include <QtMath>

#include <limits>

using Samples = QVector<int>;

namespace {

QByteArray bytesOf(const Samples &samples)
{
    QByteArray pcm(samples.size() * Pcm::kBytesPerSample, Qt::Uninitialized);
    for (int i = 0; i < samples.size(); ++i)
        Pcm::samples(pcm)[i] = static_cast<qint16>(samples[i]);
    return pcm;
}

Samples samplesOf(const QByteArray &pcm)
{
    Samples samples;
    for (int i = 0; i < Pcm::sampleCount(pcm.size()); ++i)
        samples.append(Pcm::samples(pcm)[i]);
    return samples;
}

Samples sine(int amplitude, int count)
{
    Samples samples;
    for (int i = 0; i < count; ++i)
        samples.append(qRound(amplitude * qSin(2 * M_PI * 1000 * i / 48000)));
    return samples;
}

} // namespace

class TestPcm : public QObject
{
    Q_OBJECT

private slots:
    void gain_data();
    void gain();
    void everySampleAtEveryOrdinaryGain();
    void gainLeavesOddByte();
    void level_data();
    void level();
    void levelOfTooFewBytes();
    void convertRate_data();
    void convertRate();
    void convertedCount_data();
    void convertedCount();
    void convertedSineKeepsItsShape();
    void nothingToConvert_data();
    void nothingToConvert();
};

void TestPcm::gain_data()
{
    QTest::addColumn<int>("percent");
    QTest::addColumn<Samples>("in");
    QTest::addColumn<Samples>("out");

    QTest::addRow("150 clamps at both ends") << 150 << Samples{30000, -30000} << Samples{32767, -32768};
    QTest::addRow("50 truncates toward zero") << 50 << Samples{3, -3, 1, -1} << Samples{1, -1, 0, 0};
    QTest::addRow("unity") << 100 << Samples{32767, -32768, 0} << Samples{32767, -32768, 0};
    QTest::addRow("80") << 80 << Samples{100, -101, 32767} << Samples{80, -80, 26213};
    QTest::addRow("0 is silence") << 0 << Samples{32767, -32768, 5} << Samples{0, 0, 0};
    QTest::addRow("just fits") << 200 << Samples{16383, -16384} << Samples{32766, -32768};
    QTest::addRow("negative inverts") << -100 << Samples{5, -32768} << Samples{-5, 32767};
    QTest::addRow("widest 32-bit gain") << 32767 << Samples{1, -32768, 32767} << Samples{327, -32768, 32767};
    QTest::addRow("beyond 32 bits") << std::numeric_limits<int>::max() << Samples{1, 0, -1}
                                    << Samples{32767, 0, -32768};
    QTest::addRow("beyond 32 bits, negative")
        << std::numeric_limits<int>::min() << Samples{-32768, 0, 32767} << Samples{32767, 0, -32768};
}

void TestPcm::gain()
{
    QFETCH(int, percent);
    QFETCH(Samples, in);
    QFETCH(Samples, out);
    QByteArray pcm = bytesOf(in);
    Pcm::applyGain(pcm, percent);
    QCOMPARE(samplesOf(pcm), out);
}

void TestPcm::everySampleAtEveryOrdinaryGain()
{
    constexpr int kSamples = 65536;
    QByteArray all(kSamples * Pcm::kBytesPerSample, Qt::Uninitialized);
    for (int i = 0; i < kSamples; ++i)
        Pcm::samples(all)[i] = static_cast<qint16>(i - 32768);
    for (const int percent :
         {1, 3, 7, 49, 50, 51, 80, 99, 101, 120, 150, 199, 200, 333, 511, 512, 513, 1000, -1, -77}) {
        QByteArray scaled = all;
        Pcm::applyGain(scaled, percent);
        int wrong = 0;
        for (int i = 0; i < kSamples; ++i)
            wrong += Pcm::samples(qAsConst(scaled))[i] != qBound(-32768, (i - 32768) * percent / 100, 32767);
        QVERIFY2(wrong == 0, qPrintable(QStringLiteral("%1 samples at %2 %").arg(wrong).arg(percent)));
    }
}

void TestPcm::gainLeavesOddByte()
{
    QByteArray pcm = bytesOf({100}) + 'x';
    Pcm::applyGain(pcm, 50);
    QCOMPARE(pcm, bytesOf({50}) + 'x');
}

void TestPcm::level_data()
{
    QTest::addColumn<Samples>("samples");
    QTest::addColumn<int>("expected");

    // int((20 log10(rms / 32767) + 65) / 60 * 55), worked out elsewhere.
    QTest::addRow("no samples") << Samples{} << 0;
    QTest::addRow("silence") << Samples{0, 0, 0} << 0;
    QTest::addRow("rms below one") << Samples{0, 0, 0, 1} << 0;
    QTest::addRow("rms of one") << Samples{2, 0, 0, 0} << 0;
    QTest::addRow("just under -65 dB") << Samples(960, 18) << 0;
    QTest::addRow("first step") << Samples(960, 21) << 1;
    QTest::addRow("constant 100") << Samples(960, 100) << 13;
    QTest::addRow("constant 1000") << Samples(960, -1000) << 31;
    QTest::addRow("tenth of full scale, sine") << sine(3277, 960) << 38;
    QTest::addRow("half of full scale, sine") << sine(16384, 960) << 51;
    QTest::addRow("full scale, sine") << sine(32767, 960) << 56;
    QTest::addRow("full scale, square") << Samples{32767, -32767} << 59;
    QTest::addRow("lowest sample") << Samples(48000, -32768) << 59; // the sum needs 64 bits
}

void TestPcm::level()
{
    QFETCH(Samples, samples);
    QFETCH(int, expected);
    QCOMPARE(Pcm::level(bytesOf(samples)), expected);
}

void TestPcm::levelOfTooFewBytes()
{
    QCOMPARE(Pcm::level(QByteArray()), 0);
    QCOMPARE(Pcm::level(QByteArray("\x7f", 1)), 0);
    QCOMPARE(Pcm::level(bytesOf({1000}) + '\x7f'), 31);
}

void TestPcm::convertRate_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<Samples>("in");
    QTest::addColumn<Samples>("out");

    QTest::addRow("48000 to 44100") << 48000 << 44100 << Samples{0, 100, 200, 300} << Samples{0, 108, 217};
    QTest::addRow("negative values round down") << 48000 << 44100 << Samples{0, -1, -2, -3} << Samples{0, -2, -3};
    QTest::addRow("up, the last sample repeats")
        << 8000 << 44100 << Samples{0, 1000} << Samples{0, 181, 362, 544, 725, 906, 1000, 1000, 1000, 1000, 1000};
    QTest::addRow("lowest sample stays") << 24000 << 44100 << Samples(3, -32768) << Samples(5, -32768);
    QTest::addRow("extremes") << 48000 << 44100 << Samples{32767, -32768, 32767, -32768}
                              << Samples{32767, -26974, 21177};
    QTest::addRow("too little for one sample") << 48000 << 44100 << Samples{7} << Samples{};
}

void TestPcm::convertRate()
{
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(Samples, in);
    QFETCH(Samples, out);
    QCOMPARE(samplesOf(Pcm::convertRate(bytesOf(in), from, to)), out);
}

void TestPcm::convertedCount_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("in");
    QTest::addColumn<int>("out");
    QTest::addRow("20 ms of 48 kHz") << 48000 << 960 << 882;
    QTest::addRow("20 ms of 24 kHz") << 24000 << 480 << 882;
    QTest::addRow("20 ms of 12 kHz") << 12000 << 240 << 882;
    QTest::addRow("10 ms of 48 kHz") << 48000 << 480 << 441;
    QTest::addRow("120 ms of 48 kHz") << 48000 << 5760 << 5292;
    QTest::addRow("2.5 ms of 8 kHz") << 8000 << 20 << 110;
    QTest::addRow("nothing") << 48000 << 0 << 0;
}

void TestPcm::convertedCount()
{
    QFETCH(int, from);
    QFETCH(int, in);
    QFETCH(int, out);
    QCOMPARE(samplesOf(Pcm::convertRate(bytesOf(Samples(in, 1)), from, 44100)).size(), out);
}

void TestPcm::convertedSineKeepsItsShape()
{
    const Samples converted = samplesOf(Pcm::convertRate(bytesOf(sine(20000, 960)), 48000, 44100));
    QCOMPARE(converted.size(), 882);
    for (int i = 0; i < converted.size() - 1; ++i) {
        const double expected = 20000 * qSin(2 * M_PI * 1000 * i / 44100);
        // Straight lines between samples of a 1 kHz sine are off by at most a(wT)^2/8 = 43; the fixed-point step
        // drifts by less than a hundredth of a sample.
        QVERIFY2(qAbs(converted[i] - expected) < 60, qPrintable(QStringLiteral("sample %1").arg(i)));
    }
}

void TestPcm::nothingToConvert_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addRow("equal rates") << 44100 << 44100;
    QTest::addRow("no source rate") << 0 << 44100;
    QTest::addRow("negative source rate") << -48000 << 44100;
    QTest::addRow("no target rate") << 48000 << 0;
}

void TestPcm::nothingToConvert()
{
    QFETCH(int, from);
    QFETCH(int, to);
    const QByteArray pcm = bytesOf({1, -2, 3});
    QCOMPARE(Pcm::convertRate(pcm, from, to), pcm);
}

EVOX_TEST_MAIN(TestPcm, QCoreApplication)
#include "tst_pcm.moc"
